#pragma once
// The committed type library fixtures read by the real portable readers over
// an in-memory file system: "C:\F\<name>" holds tests/fixtures/typelib/<name>.
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "host/addin_state.h"
#include "platform/portable/ini_file.h"
#include "platform/portable/typelib_source_portable.h"
#include "platform/portable/version_resources_portable.h"
#include "support/fake_env.h"
#include "support/fake_ui.h"
#include "typelib/parse_tlb.h"

namespace sentrune::testing {

inline std::string FixturePath(const std::string& name) {
  return std::string(SENTRUNE_SOURCE_DIR) + "/tests/fixtures/typelib/" + name;
}

inline std::string ReadHostFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

class FixtureWorld {
 public:
  FakeEnv env;
  FakeUi ui;
  portable::PortableProfileFiles profiles{env.Files()};
  portable::PortableVersionResources versions{env.Files()};
  portable::PortableTypeLibSource typelibs{env.Files()};
  AddinState state{Platform{env, ui, profiles, versions, typelibs}};

  // Copies the fixture in (once) and returns its Windows path.
  std::string Fixture(const std::string& name) { return AddHostFile(FixturePath(name), name); }

  // Copies a host file in as "C:\F\<name>" (once) and returns that path.
  std::string AddHostFile(const std::string& hostPath, const std::string& name) {
    const std::string path = "C:\\F\\" + name;
    if (!env.Files().Exists(path)) env.Files().AddFile(path, ReadHostFile(hostPath));
    return path;
  }

  clsParseTLB Load(const std::string& name) {
    clsParseTLB model(state);
    EXPECT_EQ(model.ParseTypeLib(Fixture(name)), 0) << name;
    return model;
  }
};

}  // namespace sentrune::testing
