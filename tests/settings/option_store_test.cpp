// The option store: the INI manager underneath, and the options handler that
// loads and saves the add-in's options through it.
#include "settings/options_handler.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "settings/ini_manager.h"
#include "support/expected_file.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

// An absent key in the section gives the default, an empty value stays
// empty; writes drop NULs, and a refused write is a result, not an error.
TEST(IniManager, ReadsWritesAndKeepsTheOutcome) {
  TestAddin h;
  modINIManager module(h.state);
  EXPECT_EQ(module.INIGetSetting("Settings", "Key", "fallback"), "fallback");  // no file
  h.SetIni("[Settings]\r\nKey=\r\nLong=" + std::string(400, 'L') + "\r\n[Other]\r\nOther=x\r\n");
  EXPECT_EQ(module.INIGetSetting("Settings", "Key", "fallback"), "");
  EXPECT_EQ(module.INIGetSetting("Settings", "Other", "fallback"), "fallback");
  EXPECT_EQ(module.INIGetSetting("Settings", "Long", ""), std::string(254, 'L'));

  ASSERT_TRUE(h.files().DeleteFile(TestAddin::kIni).ok());
  module.INISaveSetting("Settings", "Name", std::string("a\0b\0\0c", 6));
  EXPECT_EQ(h.Ini(), "[Settings]\r\nName=abc\r\n");
  EXPECT_TRUE(module.GetIniManager().LastWriteSucceeded());
  ASSERT_TRUE(h.files().SetAttributes(TestAddin::kIni, 33).ok());
  module.INISaveSetting("Settings", "Name", "changed");
  EXPECT_FALSE(module.GetIniManager().LastWriteSucceeded());
  EXPECT_EQ(h.Ini(), "[Settings]\r\nName=abc\r\n");
  EXPECT_TRUE(h.ui.boxes.empty());

  // The shared instance is named after the module.
  h.env.SetModuleFolder("D:\\Tools");
  h.env.SetModuleName("Other");
  modINIManager other(h.state);
  EXPECT_EQ(other.GetIniManager().Path(), "D:\\Tools\\Other.ini");
  EXPECT_EQ(&other.GetIniManager(), &other.GetIniManager());
}

class ThrowingProfiles : public platform::ProfileFiles {
 public:
  std::string GetString(const std::string&, const std::string&, const std::string& d, uint32_t,
                        const std::string&) override {
    return d;
  }
  bool WriteString(const std::string&, const std::string&, const std::string&, const std::string&) override {
    throw std::runtime_error("store exploded");
  }
};

TEST(IniManager, UnexpectedErrorsOfASaveAreReportedNotThrown) {
  TestAddin h;
  ThrowingProfiles throwing;
  AddinState state(Platform{h.env, h.ui, throwing, h.versions, h.typelibs});
  modINIManager module(state);
  EXPECT_NO_THROW(module.INISaveSetting("Settings", "Key", "v"));
  EXPECT_EQ(h.ui.Titles(), Strings{"modINIManager:INISaveSetting"});
  EXPECT_EQ(h.ui.Prompts(), Strings{"store exploded"});
  EXPECT_FALSE(state.err.pending());
}

TEST(OptionLoad, ConversionsCaseInsensitiveKeysAndTheRulesAfterReading) {
  TestAddin h;
  const std::string ini =
      "[settings]\r\n"
      "standard_exe_createbackup = 1\r\n"
      "ActiveX_DLL_CreateBackup=True\r\n"
      "ActiveX_OCX_CreateBackup=2.5\r\n"
      "TRACKTIME=-1\r\n"
      "TrackHistory=false\r\n"
      "BackupFileCount=1,000\r\n"
      "ActiveX_DLL_CopyComponents=1\r\nActiveX_DLL_ReleaseFolder=\r\n"
      "ActiveX_EXE_CopyComponents=1\r\nBackupFolderName=Backups\\\r\n";
  h.SetIni(ini);
  OptionsHandler handler(h.state);
  handler.LoadOptions();
  const OptionSet& o = handler.options();
  EXPECT_EQ(o.CreateBackup[0], 1);
  EXPECT_EQ(o.CreateBackup[2], -1);
  EXPECT_EQ(o.CreateBackup[3], 2);  // halves round to even
  EXPECT_TRUE(o.TrackTime);
  EXPECT_FALSE(o.TrackHistory);
  EXPECT_EQ(o.BackupFileCount, 1000);
  // An empty release folder turns copying off, in memory only.
  EXPECT_EQ(o.CopyComponents[2], 0);
  EXPECT_EQ(o.CopyComponents[1], 1);
  EXPECT_EQ(o.BackupFolderName, "Backups\\");  // kept, not doubled
  EXPECT_EQ(h.Ini(), ini);
  EXPECT_TRUE(h.ui.boxes.empty());
}

TEST(OptionLoad, TheFirstBadTextAbandonsTheRest) {
  for (const char* bad : {"abc", "70000", ""}) {
    SCOPED_TRACE(bad);
    TestAddin h;
    h.SetIni(std::string("[Settings]\r\nStandard_EXE_CreateBackup=0\r\nActiveX_EXE_CompareCompsBefore=1\r\n") +
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
    EXPECT_EQ(h.ui.Titles(), Strings{"modOptionsHandler:LoadOptions"});
    EXPECT_NE(h.ui.Prompts().at(0).find("ActiveX_EXE_CompareCompsAfter"), std::string::npos);
    EXPECT_FALSE(h.state.err.pending());
  }
}

// An empty store gives the read defaults, not the start values, and reading
// writes nothing; the first run writes the start values once and loads them.
TEST(FirstRun, WritesTheStartValuesOnceAndLoadsThem) {
  TestAddin h;
  OptionsHandler handler(h.state);
  handler.InitOptionDefaults();
  EXPECT_EQ(handler.options().BackupFileCount, 0);
  handler.LoadOptions();
  EXPECT_EQ(handler.options().BackupFileCount, 10);
  EXPECT_EQ(handler.options().SnapAdditionalFiles, "vbw,scc,stn");
  EXPECT_EQ(handler.options().BackupFolderName, "History\\");
  EXPECT_EQ(h.Ini(), "<missing>");
  handler.InitOptionDefaults();
  LoadOptionsWithFirstRun(handler);
  ExpectMatchesFile(h.Ini(), "settings/first-run.ini");
  EXPECT_EQ(handler.options().BackupFileCount, 0);

  h.files().ClearRecord();
  OptionsHandler second(h.state);
  second.InitOptionDefaults();
  LoadOptionsWithFirstRun(second);
  EXPECT_TRUE(h.files().Record().written.empty());
  EXPECT_EQ(second.options().BackupFileCount, 0);
  EXPECT_TRUE(second.options().TrackTime);
}

}  // namespace
}  // namespace sentrune::testing
