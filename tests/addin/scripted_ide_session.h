#pragma once
// The fixture of the scenarios: Sentrune.dll loaded into the scripted IDE
// as the Add-In Manager loads it, with options of the scenario's choosing.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "platform/win32/win32_text.h"
#include "scripted_ide_addin.h"
#include "scripted_ide_boxes.h"
#include "scripted_ide_command_bars.h"
#include "scripted_ide_fire.h"
#include "scripted_ide_vbe.h"
#include "support/temp_folder.h"

namespace sentrune::testing::ide {

namespace fs = std::filesystem;

// A session: the DLL copy in "addin\", the IDE, and COM in this thread's
// single-threaded apartment, as the IDE's own.
class Session : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    fs::create_directories(fs::path(folder_.path()) / "addin");
    addin_ = std::make_unique<LoadedAddin>(fs::path(folder_.path()) / "addin");
    ASSERT_EQ(addin_->Register(), S_OK);
  }
  void TearDown() override {
    addin_.reset();
    ide_.reset();
    CoUninitialize();
  }

  // The IDE starts (unless the scenario started it), then the Add-In
  // Manager loads the add-in.
  void Start() {
    if (!ide_) ide_ = std::make_unique<ScriptedIde>();
    ASSERT_TRUE(addin_->Listed());
    ASSERT_EQ(addin_->Create(), S_OK);
    ASSERT_EQ(addin_->Connect(ide_->vbe()), S_OK);
  }

  // Everything the add-in was handed is given back, and it let go of every
  // event it attached to.
  void ExpectAllReleased() {
    for (const SinkRecord& sink : ide_->state().sinks) EXPECT_EQ(sink.sink, nullptr) << "cookie " << sink.cookie;
    EXPECT_EQ(ide_->vbe()->references(), 1);
    EXPECT_EQ(LiveObjects(), 1) << "objects besides the VBE still held";
  }

  // Options as the add-in reads them, in Sentrune.ini beside the DLL copy.
  void WriteOptions(const std::string& settings) { folder_.Write("addin/Sentrune.ini", "[Settings]\r\n" + settings); }
  // The Widgets example in "Widgets\", with the options of `sentrune demo`:
  // every step of an ActiveX DLL without asking, one backup of each kind,
  // builds copied to "Release\".
  void CopyWidgetsAskingNothing(const std::string& moreSettings = "") {
    fs::copy(fs::path(SENTRUNE_SOURCE_DIR) / "examples/Widgets", fs::path(folder_.path()) / "Widgets",
             fs::copy_options::recursive);
    // Not a first run, which would write the start values over these.
    std::string settings = "Standard_EXE_CreateBackup=2\r\n";
    for (const char* step : {"CreateBackup", "CompareCompsBefore", "ManageComp", "CompareCompsAfter",
                             "UpdateCompatIfReqd", "CreateSnapshot", "CopyComponents", "BackupComponents"})
      settings += std::string("ActiveX_DLL_") + step + "=1\r\n";
    WriteOptions(settings + "ActiveX_DLL_ReleaseFolder=" + WindowsPath("Release") + "\\\r\nBackupFileCount=1\r\n" +
                 moreSettings);
  }
  // Clicks the menu item of that caption (its "&" included), as the IDE
  // raises the click; false when there is no such item.
  bool Click(const std::wstring& caption) {
    for (const auto& control : ide_->state().added) {
      if (control->deleted || control->caption != caption) continue;
      ScriptedObject* item = NewControl(ide_->state_ptr(), control);
      FireClick(ide_->state(), item);
      item->Release();
      return true;
    }
    return false;
  }
  std::string WindowsPath(const std::string& relative) const {
    return win32::Narrow((fs::path(folder_.path()) / relative).make_preferred().wstring());
  }

  TempFolder folder_;
  // Whoever sits at the IDE: answers every box the add-in shows, so that
  // none waits for ever.
  BoxAnswerer developer_;
  std::unique_ptr<LoadedAddin> addin_;
  std::unique_ptr<ScriptedIde> ide_;
};

}  // namespace sentrune::testing::ide
