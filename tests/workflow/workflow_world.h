#pragma once
// One project open in the headless IDE over the fake file system, with a
// project sink listening to it, and builds of the Widgets example component
// (real PE files with their type libraries) to "compile".
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/headless/headless_ide.h"
#include "settings/options_handler.h"
#include "support/host_files.h"
#include "support/test_addin.h"
#include "tracking/activity_tracker.h"
#include "workflow/cls_project.h"
#include "workflow/frm_addin_main.h"

namespace sentrune::testing {

// 1.1 adds members to 1.0.
inline const std::string& Widgets(const std::string& version) {
  static const std::string v10 = ReadHostFile(SENTRUNE_SOURCE_DIR "/examples/Widgets/builds/Widgets-1.0.dll"),
                           v11 = ReadHostFile(SENTRUNE_SOURCE_DIR "/examples/Widgets/builds/Widgets-1.1.dll");
  return version == "1.0" ? v10 : v11;
}

inline constexpr const char* kProjectFile = "C:\\Src\\Widgets\\Widgets.vbp";
inline constexpr const char* kComponent = "C:\\Src\\Widgets\\bin\\Widgets.dll";
inline constexpr rt::DateTime kFirstBuild{2004, 5, 6, 14, 3, 9};
inline constexpr rt::DateTime kSecondBuild{2004, 5, 7, 9, 30, 0};

struct WorkflowWorld : TestAddin {
  headless::HeadlessIde ide{files(), &typelibs};
  OptionsHandler handler{state};
  OptionSet& options = handler.options();
  ActivityTracker tracker{state, handler.options(), ide};
  frmAddinMain mainForm;
  std::function<void(const BuildEnd&)> buildEnded;
  WorkflowServices services{state, handler, ide, tracker, mainForm, buildEnded};
  platform::ProjectPtr project;
  std::unique_ptr<clsProject> sink;

  // "OleDll" (ActiveX DLL) or "Exe" (Standard EXE). Every step starts
  // switched off; tests switch on what they look at. `prepare` puts further
  // files in place before the project is opened.
  explicit WorkflowWorld(const std::string& type = "OleDll", const std::string& extraLines = "",
                         const std::function<void(FakeFileSystem&)>& prepare = {}) {
    handler.InitOptionDefaults();
    SetEveryStep(0);
    options.TrackHistory = false;
    options.BackupFileCount = 0;
    options.SnapIsReadOnly = false;
    for (auto& folder : options.ReleaseFolder) folder = "C:\\Release\\";
    files().AddFile("C:\\Src\\Widgets\\Widget.cls", "VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Widget\"\r\n");
    files().AddFile(kProjectFile, "Type=" + type +
                                      "\r\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Windows\\"
                                      "System32\\stdole2.tlb#OLE Automation\r\nClass=Widget; Widget.cls\r\n" +
                                      extraLines +
                                      "ExeName32=\"Widgets.dll\"\r\nPath32=\"bin\"\r\nName=\"Widgets\"\r\n"
                                      "CompatibleMode=\"0\"\r\n");
    files().AddFolder("C:\\Src\\Widgets\\bin");
    if (prepare) prepare(files());
    auto opened = ide.Open(kProjectFile);
    EXPECT_TRUE(opened.ok());
    if (opened.ok()) project = opened->projects.front();
    sink = std::make_unique<clsProject>(services);
    sink->SetCProject(project);
  }

  void SetEveryStep(int16_t value) {
    for (auto* option : {&options.CreateSnapshot, &options.CreateBackup, &options.ManageComp,
                         &options.CompareCompsBefore, &options.CompareCompsAfter, &options.UpdateCompatIfReqd,
                         &options.CopyComponents, &options.BackupComponents})
      option->fill(value);
  }

  // What the IDE does for a build: announce the write, write, report it.
  void Build(const std::string& version, const rt::DateTime& written) {
    ASSERT_TRUE(ide.FireRequestWriteFile(project, kComponent).ok());
    files().AddFile(kComponent, Widgets(version), written);
    ASSERT_TRUE(ide.FireAfterWriteFile(project, platform::vbext_ft_Exe, kComponent, 0).ok());
  }

  Strings Captions() const {
    Strings captions;
    for (const auto& question : ui.fileQuestions) captions.push_back(question.caption);
    return captions;
  }

  Strings Steps() const {
    Strings steps;
    for (const auto& step : sink->Report().steps) steps.push_back(step.procedure + "=" + std::to_string(step.code));
    return steps;
  }
};

}  // namespace sentrune::testing
