#include "typelib/frm_tlb_info.h"

#include <gtest/gtest.h>

#include "settings/options_handler.h"
#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

struct Viewer {
  TypelibWorld world;
  OptionsHandler options{world.state};
  frmTLBInfo form{world.state, options};
};

TEST(TlbViewer, CheckMarksStartFromTheStoreAndAreSavedWhenToggled) {
  Viewer v;
  v.form.Form_Load();
  EXPECT_TRUE(v.form.mnuIgnoreMinorDiffs());
  EXPECT_FALSE(v.form.mnuShowDetails());
  EXPECT_EQ(v.form.Pane(frmTLBInfo::kLeft)[0].text, "No TypeLib Selected");
  EXPECT_EQ(v.form.Pane(frmTLBInfo::kRight)[0].key, "Root");
  v.form.mnuIgnoreMinorDiffs_Click();
  v.form.mnuShowDetails_Click();
  EXPECT_EQ(v.options.GetOption("Main_IgnoreMinor"), "False");
  EXPECT_EQ(v.options.GetOption("Main_ShowDetails"), "True");

  frmTLBInfo again(v.world.state, v.options);
  again.Form_Load();
  EXPECT_FALSE(again.mnuIgnoreMinorDiffs());
  EXPECT_TRUE(again.mnuShowDetails());
  EXPECT_EQ(again.height, -1);
  again.height = 5000;
  again.splitterPos = 1200;
  again.Form_Unload();
  EXPECT_EQ(v.options.GetOption("Main_Height"), "5000");
  EXPECT_EQ(v.options.GetOption("Main_SplitterPos"), "1200");
}

TEST(TlbViewer, PanesComparisonAndXmlExport) {
  Viewer v;
  v.world.AddComponent("C:\\A\\Widgets.dll", WidgetsLibrary());
  platform::TlbLibrary newer = WidgetsLibrary();
  newer.types.back().name = "IHelper2";
  v.world.AddComponent("C:\\B\\Widgets.dll", newer);
  v.world.env.Files().AddFolder("C:\\Out");
  v.form.Form_Load();
  for (auto file : {std::optional<std::string>{}, std::optional<std::string>{"C:\\A\\Missing.dll"},
                    std::optional<std::string>{"C:\\A\\Widgets.dll"}}) {
    v.world.ui.QueueOpenFile(file);
    v.form.mnuSelectFile_Click(frmTLBInfo::kLeft);
  }
  EXPECT_EQ(v.world.ui.pickerTitles[0], "Select a component to inspect.");
  EXPECT_EQ(v.form.Pane(frmTLBInfo::kLeft)[0].key, "C:\\A\\Widgets.dll");
  EXPECT_FALSE(v.form.CommandsEnabled().runComparison);

  v.world.ui.QueueOpenFile("C:\\B\\Widgets.dll");
  v.form.mnuSelectFile_Click(frmTLBInfo::kRight);
  v.form.mnuRunComparison_Click();
  EXPECT_EQ(v.world.ui.forms.at(0).caption, "Comparison Results");
  EXPECT_EQ(v.world.ui.forms.at(0).text,
            "2 Differences Found.\r\n"
            "--> Widgets [C:\\B\\Widgets.dll] contains a Class named 'IHelper2' which doesn't exist in "
            "Widgets [C:\\A\\Widgets.dll]\r\n"
            "--> Widgets contains a Class named 'IHelper' which doesn't exist in Widgets\r\n");
  v.world.ui.QueueOpenFile("C:\\A\\Widgets.dll");
  v.form.mnuSelectFile_Click(frmTLBInfo::kRight);
  v.form.mnuRunComparison_Click();
  EXPECT_EQ(v.world.ui.forms.at(1).text, "0 Differences Found.\r\n");

  v.world.ui.QueueSaveFile("C:\\Out\\w.xml");
  v.form.subGenerateXML(frmTLBInfo::kRight);
  EXPECT_EQ(v.world.ui.pickerTitles.back(), "Select Name and Path for XML File");
  EXPECT_TRUE(v.world.env.Files().Exists("C:\\Out\\w.xml"));
}

}  // namespace
}  // namespace sentrune::testing
