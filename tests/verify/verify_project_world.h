#pragma once
// A headless IDE over the verifier's world, with the shipped templates in the
// add-in's folder and a project "App" in C:\Src\App.
#include <fstream>
#include <sstream>
#include <string>

#include "platform/headless/headless_ide.h"
#include "settings/option_set.h"
#include "verify/insert_components.h"
#include "verify/verify_world.h"

namespace sentrune::testing {

inline std::string ShippedTemplate(const std::string& name) {
  std::ifstream in(std::string(SENTRUNE_SOURCE_DIR) + "/share/" + name, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

struct ProjectWorld : VerifyWorld {
  static constexpr const char* kWidgetsGuid = "{11111111-0000-0000-0000-000000000001}";
  static constexpr const char* kProject = "C:\\Src\\App\\App.vbp";

  headless::HeadlessIde ide{env.Files(), &typelibs};
  OptionSet options;

  ProjectWorld() {
    options.VerifyClass = "cVerifyInstallation";
    options.AlignControl = "AlignmentHelper";
    options.FilteredReferenceList = "|STDOLE2.TLB|";
    env.Files().AddFile("C:\\Addin\\VerifyClassTemplate.txt", ShippedTemplate("VerifyClassTemplate.txt"));
    env.Files().AddFile("C:\\Addin\\AlignmentHelper.ctl", ShippedTemplate("AlignmentHelper.ctl"));
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
  std::vector<std::string> Prompts() const {
    std::vector<std::string> prompts;
    for (const AskedBox& box : ui.boxes) prompts.push_back(box.prompt);
    return prompts;
  }
};

inline std::string WidgetsReference() {
  return "Reference=*\\G{11111111-0000-0000-0000-000000000001}#1.2#0#C:\\Lib\\Widgets.dll#Widgets\r\n";
}

}  // namespace sentrune::testing
