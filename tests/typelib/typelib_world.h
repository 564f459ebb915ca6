#pragma once
// The add-in's outside world for type library tests: fakes for files, user,
// versions and type libraries, a real INI engine over the fake files, and a
// small VB-style library to start from; and the committed fixtures read by
// the real portable readers, "C:\F\<name>" holding
// tests/fixtures/typelib/<name>.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "state/addin_state.h"
#include "platform/ini/ini_file.h"
#include "runtime/text.h"
#include "support/fake_env.h"
#include "support/fake_typelib_source.h"
#include "support/fake_ui.h"
#include "support/host_files.h"
#include "support/test_addin.h"
#include "typelib/parse_tlb.h"

namespace sentrune::testing {

// File versions by path, without regard to case; records every path asked.
struct FakeVersions : platform::VersionResources {
  void Set(const std::string& path, platform::FileVersion version) { versions[rt::LCase(path)] = version; }
  std::optional<platform::FileVersion> FileVersionOf(const std::string& path) override {
    asked.push_back(path);
    const auto hit = versions.find(rt::LCase(path));
    return hit == versions.end() ? std::nullopt : std::optional(hit->second);
  }
  std::map<std::string, platform::FileVersion> versions;
  std::vector<std::string> asked;
};

// The model of the library at `path`, which must read.
inline clsParseTLB Parsed(AddinState& state, const std::string& path) {
  clsParseTLB model(state);
  EXPECT_EQ(model.ParseTypeLib(path), 0) << path;
  return model;
}

class TypelibWorld {
 public:
  FakeEnv env;
  FakeUi ui;
  portable::PortableProfileFiles profiles{env.Files()};
  FakeVersions versions;
  FakeTypeLibSource typelibs;
  AddinState state{Platform{env, ui, profiles, versions, typelibs}};

  // A component file on disk whose type library is `library`.
  void AddComponent(const std::string& path, platform::TlbLibrary library,
                    rt::DateTime mtime = FakeFileSystem::kDefaultTime) {
    env.Files().AddFile(path, "MZ", mtime);
    typelibs.Add(path, std::move(library));
  }

  clsParseTLB Load(const std::string& path) { return Parsed(state, path); }
  clsParseTLB Load(const std::string& path, platform::TlbLibrary library) {
    AddComponent(path, std::move(library));
    return Load(path);
  }
};

// Library "Widgets": enum WidgetColor, record Point, class Widget (with an
// event) and an interface IHelper that no coclass claims.
inline platform::TlbLibrary WidgetsLibrary() {
  using namespace tlb;
  namespace vt = platform::vt;
  platform::TlbLibrary lib = Library("Widgets", "{11111111-0000-0000-0000-000000000001}");
  lib.helpString = "Widget library";
  platform::TlbTypeInfo color = TypeInfo("WidgetColor", "enum");
  color.variables = {Constant("colRed", 0), Constant("colGreen", 1, "green")};
  lib.types.push_back(color);
  platform::TlbTypeInfo point = TypeInfo("Point", "record");
  point.variables = {Field("X", Type(vt::kI4)), Field("Y", Type(vt::kI4))};
  lib.types.push_back(point);
  AddVbClass(lib, "Widget", "{11111111-0000-0000-0000-000000000002}",
             {Function("Caption", 2, Type(vt::kBstr), {}, "The caption"),
              Function("Caption", 4, Type(vt::kVoid), {Param("", Type(vt::kBstr))}),
              Function("Find", 1, Type(vt::kI4), {Param("Key", Type(vt::kBstr))}),
              Function("Move", 1, Type(vt::kVoid), {Param("P", Type(vt::kByRefFlag, "Point"))})},
             {Function("Changed", 1, Type(vt::kVoid), {Param("Index", Type(vt::kI4))})});
  platform::TlbTypeInfo helper = TypeInfo("IHelper", "interface", "{11111111-0000-0000-0000-000000000003}");
  helper.functions = {Function("Run", 1, Type(vt::kHresult))};
  lib.types.push_back(helper);
  return lib;
}

inline std::string FixturePath(const std::string& name) { return (FixtureFolder() / "typelib" / name).string(); }

struct FixtureWorld : TestAddin {
  // Copies the fixture in (once) and returns its Windows path.
  std::string Fixture(const std::string& name) { return AddHostFile(FixturePath(name), name); }

  // Copies a host file in as "C:\F\<name>" (once) and returns that path.
  std::string AddHostFile(const std::string& hostPath, const std::string& name) {
    const std::string path = "C:\\F\\" + name;
    if (!files().Exists(path)) files().AddFile(path, ReadHostFile(hostPath));
    return path;
  }

  clsParseTLB Load(const std::string& name) { return Parsed(state, Fixture(name)); }
};

}  // namespace sentrune::testing
