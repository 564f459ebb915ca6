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
  // Standard EXE builds no component to keep compatible: five rows only.
  ASSERT_EQ(view.rows.size(), 5u + 5u + 3 * 10u + 15u);

  // The ActiveX DLL section: level and shown value per row, the steps that
  // depend on another nested under it.
  const size_t dll = 1 + 5 + 1 + 10 + 1;
  const std::vector<std::pair<int, std::string>> expected = {
      {1, "Prompt"}, {1, "Prompt"}, {1, "Yes"},    {1, "Yes"},    {1, "Prompt"},
      {2, "Prompt"}, {2, "Prompt"}, {1, "No"},     {2, "Prompt"}, {2, "C:\\"}};
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(view.rows[dll + i].level, expected[i].first) << i;
    EXPECT_EQ(view.rows[dll + i].cells[1], expected[i].second) << i;
  }
  EXPECT_EQ(view.rows[dll].cells[0], "Create project snapshot After compile");
  EXPECT_EQ(f.form.CellText("TrackTime"), "Yes");
  EXPECT_EQ(f.form.CellText("SnapIsReadOnly"), "No");
  EXPECT_EQ(f.form.CellText("BackupFileCount"), "0");
}

TEST(OptionsSave, ConvertsEachKindShowsItCanonicallyAndReloads) {
  OptionsForm f;
  f.h.SetIni("[Settings]\r\nStandard_EXE_ManageComp=1\r\n");
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"activex_dll_createbackup", "yes", "Yes"},       {"ActiveX_DLL_CopyComponents", "PROMPT", "Prompt"},
      {"ActiveX_OCX_BackupCompat", "2", "Prompt"},      {"ActiveX_EXE_ReleaseFolder", "", ""},
      {"ActiveX_EXE_CopyComponents", "1", "Yes"},       {"TrackTime", "0", "No"},
      {"BackupFileCount", " 25 ", "25"},                {"BackupFolderName", "Old Builds", "Old Builds"},
      {"filteredreferencelist", "|a.dll|", "|a.dll|"}};
  for (const auto& [key, typed, shown] : cases) {
    ASSERT_TRUE(f.form.SetValue(key, typed).ok()) << key << " = " << typed;
    EXPECT_EQ(f.form.CellText(key), shown);
  }
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
  f.h.files().ClearRecord();
  EXPECT_EQ(f.form.SaveSettings(), 0);
  EXPECT_TRUE(f.h.files().Record().written.empty());
}

TEST(OptionsSave, ARefusedWriteIsReportedAndKeepsTheFormChanged) {
  OptionsForm f;
  f.h.SetIni("[Settings]\r\n");
  ASSERT_TRUE(f.h.files().SetAttributes(SettingsHarness::kIni, 33).ok());
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
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"ActiveX_DLL_CreateBackup", "maybe", "Yes, No or Prompt"},
      {"TrackTime", "Prompt", "Yes or No"},
      {"BackupFileCount", "-1", "whole number"},
      {"BackupFileCount", "2147483648", "whole number"},
      {"VerifyClass", "two\r\nlines", "single line"},
      {"Standard_EXE_ManageComp", "1", "no option"},  // not shown for Standard EXE
      {"ClearVBW", "1", "no option"},                 // not shown at all
      {"ReleaseFolder", "C:\\x", "no option"},         // per-type without a prefix
  };
  for (const auto& [key, text, expectedInMessage] : cases) {
    SCOPED_TRACE(std::string(key) + " = " + text);
    const rt::Status status = f.form.SetValue(key, text);
    ASSERT_FALSE(status.ok());
    EXPECT_NE(status.error().description.find(key), std::string::npos);
    EXPECT_NE(status.error().description.find(expectedInMessage), std::string::npos);
  }
  EXPECT_FALSE(f.form.Changed());
  EXPECT_EQ(f.form.CellText("ActiveX_DLL_CreateBackup"), before);
  EXPECT_EQ(f.form.SaveSettings(), 0);
  EXPECT_EQ(f.h.Ini(), "<missing>");
}

TEST(OptionsForm, ResetBrowseAndRememberedSize) {
  OptionsForm f;
  f.handler.options().BackupFileCount = 99;
  f.form.FillGrid();
  f.form.ResetToStartValues();
  EXPECT_EQ(f.form.CellText("BackupFileCount"), "0");
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
