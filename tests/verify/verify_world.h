#pragma once
// The verifier's outside world: the type library world's fakes plus a
// registry in which tests register type libraries, and a headless IDE with
// the shipped templates in the add-in's folder and a project "App".
#include <string>

#include "platform/headless/headless_ide.h"
#include "platform/registry.h"
#include "settings/option_set.h"
#include "support/test_registry.h"
#include "typelib/typelib_world.h"
#include "verify/c_verify_installation.h"
#include "verify/insert_components.h"

namespace sentrune::testing {

struct VerifyWorld : TypelibWorld {
  TestRegistry registry;

  // HKCR\TypeLib\{guid}\version\locale\win32 = file.
  void Register(const std::string& guid, const std::string& version, const std::string& file,
                const std::string& locale = "0") {
    registry.AddString(platform::kHkeyClassesRoot, "TypeLib\\" + guid + "\\" + version + "\\" + locale + "\\win32", "",
                       file);
  }
  // A component file with a type library of that GUID and version, and a
  // file version resource.
  void AddLibrary(const std::string& path, const std::string& guid, uint16_t major, uint16_t minor,
                  platform::FileVersion version = {0x00060001, 0x00610052}) {
    AddComponent(path, tlb::Library("Lib", guid, major, minor));
    versions.Set(path, version);
  }
  // The first component of the built-in list, registered and installed.
  void InstallOle() {
    const VerifyItem& ole = BuiltInVerifyList()[0];
    Register(ole.guid, "2.0", "C:\\Windows\\System32\\stdole2.tlb");
    AddLibrary("C:\\Windows\\System32\\stdole2.tlb", ole.guid, 2, 0, {0x00030032, 0x13960000});
  }
};

inline std::string ShippedTemplate(const std::string& name) {
  return ReadHostFile(std::string(SENTRUNE_SOURCE_DIR) + "/share/" + name);
}

inline constexpr const char* kWidgetsGuid = "{11111111-0000-0000-0000-000000000001}";
inline const std::string kWidgetsReference =
    "Reference=*\\G{11111111-0000-0000-0000-000000000001}#1.2#0#C:\\Lib\\Widgets.dll#Widgets\r\n";

struct ProjectWorld : VerifyWorld {
  static constexpr const char* kProject = "C:\\Src\\App\\App.vbp";

  headless::HeadlessIde ide{env.Files(), &typelibs};
  OptionSet options;

  ProjectWorld() {
    options.VerifyClass = "cVerifyInstallation";
    options.AlignControl = "AlignmentHelper";
    options.FilteredReferenceList = "|STDOLE2.TLB|";
    for (const char* name : {"VerifyClassTemplate.txt", "AlignmentHelper.ctl"})
      env.Files().AddFile(std::string("C:\\Addin\\") + name, ShippedTemplate(name));
    AddLibrary("C:\\Lib\\Widgets.dll", kWidgetsGuid, 1, 2, {0x00020000, 0x00030004});
    AddLibrary("C:\\Windows\\System32\\stdole2.tlb", "{00020430-0000-0000-C000-000000000046}", 2, 0);
    AddLibrary(std::string(FakeEnv::kSystem) + "\\tlbinf32.dll", kTlbInfGuid, 1, 0);
    env.Files().AddFile("C:\\Src\\App\\Main.bas", "Attribute VB_Name = \"Main\"\r\n");
  }

  // Writes App.vbp with these reference lines and opens it.
  void OpenApp(const std::string& references, const std::string& type = "Exe") {
    env.Files().AddFile(kProject, "Type=" + type + "\r\n" + references + "Module=Main; Main.bas\r\nName=\"App\"\r\n");
    ASSERT_TRUE(ide.Open(kProject).ok());
  }
  std::string ProjectText() { return env.Files().Contents(kProject).value_or(""); }
};

}  // namespace sentrune::testing
