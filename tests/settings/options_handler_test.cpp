#include "settings/options_handler.h"

#include <gtest/gtest.h>

#include "settings_harness.h"

namespace sentrune {
namespace {

using test::SettingsHarness;

TEST(OptionStore, GetOptionTellsAbsentFromEmpty) {
  SettingsHarness h;
  OptionsHandler handler(h.state);
  h.SetIni("[Settings]\r\nEmpty=\r\n[Other]\r\nTrackTime=1\r\n");
  EXPECT_EQ(handler.GetOption("Empty", "x"), "");
  EXPECT_EQ(handler.GetOption("TrackTime", "x"), "x");  // only section "Settings" counts
  EXPECT_EQ(handler.GetOption("Missing"), "");
  handler.SaveOption("TrackTime", "1");
  EXPECT_EQ(h.Ini(), "[Settings]\r\nEmpty=\r\nTrackTime=1\r\n[Other]\r\nTrackTime=1\r\n");
}

TEST(OptionLoad, AnEmptyStoreGivesTheReadDefaultsNotTheStartValues) {
  SettingsHarness h;
  OptionsHandler handler(h.state);
  handler.InitOptionDefaults();
  const OptionSet& o = handler.options();
  EXPECT_EQ(o.BackupFileCount, 0);
  EXPECT_TRUE(o.TrackTime);
  EXPECT_EQ(o.CopyComponents[2], 0);
  EXPECT_EQ(o.BackupFolderName, "History");

  handler.LoadOptions();
  EXPECT_EQ(o.BackupFileCount, 10);
  EXPECT_FALSE(o.TrackTime);
  EXPECT_EQ(o.CopyComponents[2], 2);
  EXPECT_EQ(o.BackupFolderName, "History\\");
  EXPECT_EQ(o.SnapAdditionalFiles, "vbw,scc,stn");
  EXPECT_EQ(h.Ini(), "<missing>");  // reading writes nothing
}

TEST(OptionLoad, ConversionsAndCaseInsensitiveKeys) {
  SettingsHarness h;
  h.SetIni(
      "[settings]\r\n"
      "standard_exe_createbackup = 1\r\n"
      "ActiveX_DLL_CreateBackup=True\r\n"
      "ActiveX_OCX_CreateBackup=2.5\r\n"
      "TRACKTIME=-1\r\n"
      "TrackHistory=false\r\n"
      "BackupFileCount=1,000\r\n");
  OptionsHandler handler(h.state);
  handler.LoadOptions();
  const OptionSet& o = handler.options();
  EXPECT_EQ(o.CreateBackup[0], 1);
  EXPECT_EQ(o.CreateBackup[2], -1);
  EXPECT_EQ(o.CreateBackup[3], 2);  // halves round to even
  EXPECT_TRUE(o.TrackTime);
  EXPECT_FALSE(o.TrackHistory);
  EXPECT_EQ(o.BackupFileCount, 1000);
  EXPECT_TRUE(h.ui.boxes.empty());
}

TEST(OptionLoad, EmptyReleaseFolderTurnsCopyingOffInMemoryOnly) {
  SettingsHarness h;
  const std::string ini =
      "[Settings]\r\nActiveX_DLL_CopyComponents=1\r\nActiveX_DLL_ReleaseFolder=\r\n"
      "ActiveX_EXE_CopyComponents=1\r\nBackupFolderName=Backups\\\r\n";
  h.SetIni(ini);
  OptionsHandler handler(h.state);
  handler.LoadOptions();
  EXPECT_EQ(handler.options().CopyComponents[2], 0);
  EXPECT_EQ(handler.options().CopyComponents[1], 1);
  EXPECT_EQ(handler.options().BackupFolderName, "Backups\\");  // kept, not doubled
  EXPECT_EQ(h.Ini(), ini);
}

TEST(OptionLoad, TheFirstBadTextAbandonsTheRest) {
  for (const char* bad : {"abc", "70000", ""}) {
    SCOPED_TRACE(bad);
    SettingsHarness h;
    h.SetIni(std::string("[Settings]\r\nStandard_EXE_CreateBackup=0\r\n") +
             "ActiveX_EXE_CompareCompsBefore=1\r\n" +
             "ActiveX_EXE_CompareCompsAfter=" + bad + "\r\nActiveX_EXE_BackupCompat=0\r\nTrackTime=0\r\n");
    OptionsHandler handler(h.state);
    handler.InitOptionDefaults();
    handler.LoadOptions();
    const OptionSet& o = handler.options();
    EXPECT_EQ(o.CreateBackup[0], 0);        // read before the failure
    EXPECT_EQ(o.CompareCompsBefore[1], 1);  // read before the failure
    EXPECT_EQ(o.CompareCompsAfter[1], 2);   // the failing one keeps its value
    EXPECT_EQ(o.BackupCompat[1], 2);        // never read
    EXPECT_TRUE(o.TrackTime);               // never read
    EXPECT_EQ(o.BackupFolderName, "History");  // the final rules did not run either
    ASSERT_EQ(h.ui.boxes.size(), 1u);
    EXPECT_EQ(h.ui.boxes[0].title, "modOptionsHandler:LoadOptions");
    EXPECT_NE(h.ui.boxes[0].prompt.find("ActiveX_EXE_CompareCompsAfter"), std::string::npos);
    EXPECT_FALSE(h.state.err.pending());
  }
}

TEST(FirstRun, WritesTheStartValuesOnceAndLoadsThem) {
  SettingsHarness h;
  OptionsHandler handler(h.state);
  handler.InitOptionDefaults();
  LoadOptionsWithFirstRun(handler);
  const std::string ini = h.Ini();
  EXPECT_NE(ini.find("\r\nStandard_EXE_CreateBackup=2\r\n"), std::string::npos);
  EXPECT_NE(ini.find("\r\nActiveX_OCX_CopyComponents=0\r\n"), std::string::npos);
  EXPECT_NE(ini.find("\r\nSnapAdditionalFiles=\r\n"), std::string::npos);
  EXPECT_EQ(ini.find("Standard_EXE_ManageComp"), std::string::npos);
  EXPECT_EQ(ini.find("ClearVBW"), std::string::npos);
  EXPECT_EQ(ini.find("Options_"), std::string::npos);

  OptionsHandler later(h.state);
  later.LoadOptions();
  EXPECT_EQ(later.options().BackupFileCount, 0);
  EXPECT_TRUE(later.options().TrackTime);
  EXPECT_EQ(handler.options().BackupFileCount, 0);
  EXPECT_EQ(handler.options().BackupFolderName, "History\\");

  h.env.Files().ClearRecord();
  OptionsHandler second(h.state);
  second.InitOptionDefaults();
  LoadOptionsWithFirstRun(second);
  EXPECT_TRUE(h.env.Files().Record().written.empty());
  EXPECT_EQ(second.options().BackupFileCount, 0);
}

}  // namespace
}  // namespace sentrune
