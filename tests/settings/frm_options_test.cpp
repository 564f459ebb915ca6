#include "settings/frm_options.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/expected_file.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

struct OptionsForm {
  OptionsForm() {
    handler.InitOptionDefaults();
    form.FillGrid();
  }
  TestAddin h;
  OptionsHandler handler{h.state};
  frmOptions form{handler};
};

// Every row: its level as indent, then its cells. Standard EXE builds no
// component to keep compatible and shows five rows only; a step that depends
// on another is nested under it.
TEST(OptionsGrid, SectionsRowsNestingAndShownValues) {
  OptionsForm f;
  f.handler.options().CreateBackup[2] = 2;
  f.handler.options().ManageComp[2] = 1;
  f.handler.options().CompareCompsBefore[2] = 5;  // any value above 0 runs the step
  f.handler.options().CopyComponents[2] = 0;
  f.form.FillGrid();
  std::string grid;
  for (const auto& row : f.form.View().rows) {
    grid += std::string(2 * row.level, ' ') + (row.isSection ? "== " : "") + row.cells.at(0);
    for (size_t i = 1; i < row.cells.size(); ++i) grid += " | " + row.cells[i];
    grid += "\n";
  }
  ExpectMatchesFile(grid, "settings/options.grid.txt");
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

  ExpectMatchesFile(f.h.Ini(), "settings/options.saved.ini");  // a key it does not show stays

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
  ASSERT_TRUE(f.h.files().SetAttributes(TestAddin::kIni, 33).ok());
  f.form.ResetToStartValues();
  EXPECT_EQ(f.form.SaveSettings(), rt::errnum::kPathFileAccessError);
  EXPECT_TRUE(f.form.Changed());
  EXPECT_FALSE(f.form.SettingsSaved2);
  EXPECT_EQ(f.h.ui.Titles(), Strings{"frmOptions:SaveSettings"});
  EXPECT_EQ(f.h.Ini(), "[Settings]\r\n");
}

// The messages are checked whole: each names the key. Standard EXE does not
// show ManageComp, ClearVBW is not shown at all, and a per-type key needs its
// prefix.
TEST(OptionsSetValue, RefusalsNameTheKeyAndChangeNothing) {
  OptionsForm f;
  const std::string before = f.form.CellText("ActiveX_DLL_CreateBackup");
  const std::pair<const char*, const char*> cases[] = {
      {"ActiveX_DLL_CreateBackup", "maybe"}, {"TrackTime", "Prompt"},          {"BackupFileCount", "-1"},
      {"BackupFileCount", "2147483648"},     {"VerifyClass", "two\r\nlines"},   {"Standard_EXE_ManageComp", "1"},
      {"ClearVBW", "1"},                     {"ReleaseFolder", "C:\\x"}};
  std::string messages;
  for (const auto& [key, text] : cases) {
    const rt::Status status = f.form.SetValue(key, text);
    messages += status.ok() ? std::string("accepted\n") : status.error().description + "\n";
  }
  ExpectMatchesFile(messages, "settings/options.refusals.txt");
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
}  // namespace sentrune::testing
