#include "settings/frm_options.h"

#include <gtest/gtest.h>

#include <tuple>

#include "settings_harness.h"

namespace sentrune {
namespace {

using test::SettingsHarness;

struct OptionsForm {
  OptionsForm() {
    handler.InitOptionDefaults();
    form.FillGrid();
  }
  SettingsHarness h;
  OptionsHandler handler{h.state};
  frmOptions form{handler};
};

TEST(OptionsGrid, SectionsRowsNestingAndShownValues) {
  OptionsForm f;
  f.handler.options().CreateBackup[2] = 2;
  f.handler.options().ManageComp[2] = 1;
  f.handler.options().CompareCompsBefore[2] = 5;  // any value above 0 runs the step
  f.handler.options().CopyComponents[2] = 0;
  f.form.FillGrid();
  const platform::FormView view = f.form.View();
  std::vector<std::string> titles;
  for (const auto& row : view.rows)
    if (row.isSection) titles.push_back(row.cells[0]);
  EXPECT_EQ(titles, (std::vector<std::string>{"Standard EXE", "ActiveX EXE", "ActiveX DLL", "ActiveX OCX",
                                              "General Options"}));

  // Standard EXE builds no component to keep compatible: no such rows.
  std::vector<std::string> standardKeys;
  for (const clsConfigItem& item : f.form.Items())
    if (item.CFGKey.rfind("Standard_EXE_", 0) == 0) standardKeys.push_back(item.CFGKey);
  EXPECT_EQ(standardKeys,
            (std::vector<std::string>{"Standard_EXE_CreateSnapshot", "Standard_EXE_CreateBackup",
                                      "Standard_EXE_CopyComponents", "Standard_EXE_BackupComponents",
                                      "Standard_EXE_ReleaseFolder"}));
  ASSERT_EQ(view.rows.size(), 5u + 5u + 3 * 10u + 15u);

  // The ActiveX DLL section: description, level and shown value per row.
  const size_t dll = 1 + 5 + 1 + 10 + 1;
  const std::vector<std::tuple<std::string, int, std::string>> expected = {
      {"Create project snapshot After compile", 1, "Prompt"},
      {"Create backup of component Before compile", 1, "Prompt"},
      {"Verify Compatibility Settings", 1, "Yes"},
      {"Compare components Before compile", 1, "Yes"},
      {"Compare components After compile", 1, "Prompt"},
      {"Update Compatible Component if Required", 2, "Prompt"},
      {"Backup Compatible Component first", 2, "Prompt"},
      {"Copy component to release folder After compile", 1, "No"},
      {"Backup component in release folder first", 2, "Prompt"},
      {"Release Folder", 2, "C:\\"}};
  for (size_t i = 0; i < expected.size(); ++i) {
    const auto& [description, level, shown] = expected[i];
    EXPECT_EQ(view.rows[dll + i].cells, (std::vector<std::string>{description, shown}));
    EXPECT_EQ(view.rows[dll + i].level, level);
  }
  EXPECT_EQ(f.form.CellText("TrackTime"), "Yes");
  EXPECT_EQ(f.form.CellText("SnapIsReadOnly"), "No");
  EXPECT_EQ(f.form.CellText("BackupFileCount"), "0");
}

TEST(OptionsSave, ConvertsEachKindAndReloads) {
  OptionsForm f;
  f.h.SetIni("[Settings]\r\nStandard_EXE_ManageComp=1\r\n");
  ASSERT_TRUE(f.form.SetValue("activex_dll_createbackup", "yes").ok());
  ASSERT_TRUE(f.form.SetValue("ActiveX_DLL_CopyComponents", "PROMPT").ok());
  ASSERT_TRUE(f.form.SetValue("ActiveX_EXE_ReleaseFolder", "").ok());
  ASSERT_TRUE(f.form.SetValue("ActiveX_EXE_CopyComponents", "1").ok());
  ASSERT_TRUE(f.form.SetValue("TrackTime", "0").ok());
  ASSERT_TRUE(f.form.SetValue("BackupFileCount", " 25 ").ok());
  ASSERT_TRUE(f.form.SetValue("BackupFolderName", "Old Builds").ok());
  EXPECT_TRUE(f.form.Changed());
  EXPECT_EQ(f.form.SaveSettings(), 0);

  const std::string ini = f.h.Ini();
  for (const char* line : {"ActiveX_DLL_CreateBackup=1", "ActiveX_DLL_CopyComponents=2",
                           "ActiveX_EXE_ReleaseFolder=", "TrackTime=0", "BackupFileCount=25",
                           "BackupFolderName=Old Builds", "SnapIsReadOnly=0", "Standard_EXE_ManageComp=1"})
    EXPECT_NE(ini.find(std::string("\r\n") + line + "\r\n"), std::string::npos) << line;

  const OptionSet& o = f.handler.options();
  EXPECT_EQ(o.CreateBackup[2], 1);
  EXPECT_EQ(o.CopyComponents[1], 0);  // no release folder, no copy
  EXPECT_EQ(o.BackupFileCount, 25);
  EXPECT_EQ(o.BackupFolderName, "Old Builds\\");
  EXPECT_FALSE(f.form.Changed());
  EXPECT_TRUE(f.form.SettingsSaved2);

  // Unchanged: nothing is written.
  f.h.env.Files().ClearRecord();
  EXPECT_EQ(f.form.SaveSettings(), 0);
  EXPECT_TRUE(f.h.env.Files().Record().written.empty());
}

TEST(OptionsSave, ARefusedWriteIsReportedAndKeepsTheFormChanged) {
  OptionsForm f;
  f.h.SetIni("[Settings]\r\n");
  ASSERT_TRUE(f.h.env.Files().SetAttributes(SettingsHarness::kIni, 33).ok());
  f.form.ResetToStartValues();
  EXPECT_EQ(f.form.SaveSettings(), rt::errnum::kPathFileAccessError);
  EXPECT_TRUE(f.form.Changed());
  EXPECT_FALSE(f.form.SettingsSaved2);
  ASSERT_EQ(f.h.ui.boxes.size(), 1u);
  EXPECT_EQ(f.h.ui.boxes[0].title, "frmOptions:SaveSettings");
  EXPECT_EQ(f.h.Ini(), "[Settings]\r\n");
}

TEST(OptionsSetValue, RefusalsNameTheKeyAndChangeNothing) {
  OptionsForm f;
  const std::string before = f.form.CellText("ActiveX_DLL_CreateBackup");
  struct Case {
    const char* key;
    const char* text;
    const char* expectedInMessage;
  };
  const Case cases[] = {
      {"ActiveX_DLL_CreateBackup", "maybe", "Yes, No or Prompt"},
      {"TrackTime", "Prompt", "Yes or No"},
      {"BackupFileCount", "-1", "whole number"},
      {"BackupFileCount", "2147483648", "whole number"},
      {"VerifyClass", "two\r\nlines", "single line"},
      {"Standard_EXE_ManageComp", "1", "no option"},  // not shown for Standard EXE
      {"ClearVBW", "1", "no option"},                 // not shown at all
      {"ReleaseFolder", "C:\\x", "no option"},         // per-type without a prefix
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.key) + " = " + c.text);
    const rt::Status status = f.form.SetValue(c.key, c.text);
    ASSERT_FALSE(status.ok());
    EXPECT_NE(status.error().description.find(c.key), std::string::npos);
    EXPECT_NE(status.error().description.find(c.expectedInMessage), std::string::npos);
  }
  EXPECT_FALSE(f.form.Changed());
  EXPECT_EQ(f.form.CellText("ActiveX_DLL_CreateBackup"), before);
  EXPECT_EQ(f.form.SaveSettings(), 0);
  EXPECT_EQ(f.h.Ini(), "<missing>");
}

TEST(OptionsSetValue, AcceptedSpellingsAreShownCanonically) {
  OptionsForm f;
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"ActiveX_OCX_BackupCompat", "yes", "Yes"},
      {"ActiveX_OCX_BackupCompat", "2", "Prompt"},
      {"filteredreferencelist", "|a.dll|", "|a.dll|"}};
  for (const auto& [key, typed, shown] : cases) {
    ASSERT_TRUE(f.form.SetValue(key, typed).ok()) << key << " = " << typed;
    EXPECT_EQ(f.form.CellText(key), shown);
  }
}

TEST(OptionsForm, ResetBrowseAndRememberedSize) {
  OptionsForm f;
  f.handler.options().BackupFileCount = 99;
  f.form.FillGrid();
  f.form.ResetToStartValues();
  EXPECT_EQ(f.form.CellText("BackupFileCount"), "0");
  EXPECT_EQ(f.form.CellText("ActiveX_EXE_CopyComponents"), "No");
  EXPECT_TRUE(f.form.Changed());

  f.form.SetChanged(false);
  f.h.ui.QueueFolder("");  // cancelled
  ASSERT_TRUE(f.form.BrowseFolder("ActiveX_EXE_ReleaseFolder").ok());
  EXPECT_EQ(f.form.CellText("ActiveX_EXE_ReleaseFolder"), "C:\\");
  EXPECT_FALSE(f.form.Changed());
  f.h.ui.QueueFolder("D:\\Release");
  ASSERT_TRUE(f.form.BrowseFolder("ActiveX_EXE_ReleaseFolder").ok());
  EXPECT_EQ(f.form.CellText("ActiveX_EXE_ReleaseFolder"), "D:\\Release");
  EXPECT_TRUE(f.form.Changed());
  EXPECT_EQ(f.h.ui.browseTitles, (std::vector<std::string>{"Set Release Folder", "Set Release Folder"}));
  EXPECT_FALSE(f.form.BrowseFolder("TrackTime").ok());

  f.h.SetIni("[Settings]\r\nOptions_Height=7000\r\nOptions_Width=junk\r\n");
  frmOptions opened(f.handler);
  const int32_t designWidth = opened.Width;
  opened.Open();
  EXPECT_EQ(opened.Height, 7000);
  EXPECT_EQ(opened.Width, designWidth);
  opened.Width = 9100;
  opened.Close();
  EXPECT_EQ(f.h.Ini(), "[Settings]\r\nOptions_Height=7000\r\nOptions_Width=9100\r\n");
}

}  // namespace
}  // namespace sentrune
