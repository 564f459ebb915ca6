// The model's views: the tree, the XML file and the viewer form. The JSON is
// checked with every model in parse_test.cpp.
#include <gtest/gtest.h>

#include "settings/options_handler.h"
#include "support/expected_file.h"
#include "typelib/frm_tlb_info.h"
#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;

// "key | text" per node, depth-first, two blanks per level.
void Flatten(const std::vector<platform::TreeNode>& nodes, int depth, std::string& out) {
  for (const auto& n : nodes) {
    out += std::string(depth * 2, ' ') + n.key + " | " + n.text + "\n";
    Flatten(n.children, depth + 1, out);
  }
}

// Library facts, the groups, and "None" under an empty group.
TEST(BuildTree, LaysOutLibraryFactsGroupsAndNoneChildren) {
  platform::TlbLibrary lib = WidgetsLibrary();
  lib.types[1] = TypeInfo("Point", "interface", "{P}", 16);  // no record: a hidden interface stays out
  TypelibWorld world;
  world.AddComponent("C:\\B\\W.dll", lib);
  world.versions.Set("C:\\B\\W.dll", {0x00010000, 0x00000007});
  std::vector<platform::TreeNode> tree{{"old", "old", {}}};
  world.Load("C:\\B\\W.dll").BuildTree(tree);
  std::string lines;
  Flatten(tree, 0, lines);  // the stale node is replaced
  ExpectMatchesFile(lines, "typelib/widgets.tree.txt");
}

// The viewer: panes, comparison, and the XML export checked whole; then the
// model's own default XML name and a failed write.
TEST(TlbViewer, PanesComparisonAndXmlExport) {
  TypelibWorld world;
  OptionsHandler options{world.state};
  frmTLBInfo form{world.state, options};
  world.AddComponent("C:\\A\\Widgets.dll", WidgetsLibrary());
  platform::TlbLibrary newer = WidgetsLibrary();
  newer.types.back().name = "IHelper2";
  world.AddComponent("C:\\B\\Widgets.dll", newer);
  world.env.Files().AddFolder("C:\\Out");
  form.Form_Load();
  // A cancelled pick and a missing file leave the pane as it was.
  for (auto file : {std::optional<std::string>{}, std::optional<std::string>{"C:\\A\\Missing.dll"},
                    std::optional<std::string>{"C:\\A\\Widgets.dll"}}) {
    world.ui.QueueOpenFile(file);
    form.mnuSelectFile_Click(frmTLBInfo::kLeft);
  }
  EXPECT_EQ(form.Pane(frmTLBInfo::kLeft)[0].key, "C:\\A\\Widgets.dll");
  EXPECT_FALSE(form.CommandsEnabled().runComparison);

  world.ui.QueueOpenFile("C:\\B\\Widgets.dll");
  form.mnuSelectFile_Click(frmTLBInfo::kRight);
  form.mnuRunComparison_Click();
  EXPECT_TRUE(world.ui.forms.at(0).text.starts_with("2 Differences Found.\r\n--> Widgets [C:\\B\\Widgets.dll] "
                                                     "contains a Class named 'IHelper2'"));
  world.ui.QueueSaveFile("C:\\Out\\w.xml");
  form.subGenerateXML(frmTLBInfo::kRight);
  ExpectMatchesFile(world.env.Files().Contents("C:\\Out\\w.xml").value_or(""), "typelib/widgets.xml");

  const clsParseTLB& m = *form.Model(frmTLBInfo::kRight);
  EXPECT_EQ(m.BuildXML(""), "C:\\B\\Widgets.dll.xml");
  world.env.Files().FailNext(FsOp::kWrite, "C:\\Out\\x.xml", rt::errnum::kPermissionDenied);
  const size_t boxes = world.ui.boxes.size();
  EXPECT_EQ(m.BuildXML("C:\\Out\\x.xml"), "");
  EXPECT_EQ(world.ui.boxes.size(), boxes + 1);
}

}  // namespace
}  // namespace sentrune::testing
