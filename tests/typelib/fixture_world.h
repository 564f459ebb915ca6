#pragma once
// The committed type library fixtures read by the real portable readers over
// an in-memory file system: "C:\F\<name>" holds tests/fixtures/typelib/<name>.
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/test_addin.h"
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

struct FixtureWorld : TestAddin {
  // Copies the fixture in (once) and returns its Windows path.
  std::string Fixture(const std::string& name) { return AddHostFile(FixturePath(name), name); }

  // Copies a host file in as "C:\F\<name>" (once) and returns that path.
  std::string AddHostFile(const std::string& hostPath, const std::string& name) {
    const std::string path = "C:\\F\\" + name;
    if (!files().Exists(path)) files().AddFile(path, ReadHostFile(hostPath));
    return path;
  }

  clsParseTLB Load(const std::string& name) {
    clsParseTLB model(state);
    EXPECT_EQ(model.ParseTypeLib(Fixture(name)), 0) << name;
    return model;
  }
};

}  // namespace sentrune::testing
