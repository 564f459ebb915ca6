// The model's views: the tree, the XML file, the JSON, and the viewer form.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "settings/options_handler.h"
#include "typelib/frm_tlb_info.h"
#include "typelib/tlb_json.h"
#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;
using Strings = std::vector<std::string>;

// "key | text" per node, depth-first, two blanks per level.
void Flatten(const std::vector<platform::TreeNode>& nodes, int depth, Strings& out) {
  for (const auto& n : nodes) {
    out.push_back(std::string(depth * 2, ' ') + n.key + " | " + n.text);
    Flatten(n.children, depth + 1, out);
  }
}

TEST(BuildTree, LaysOutLibraryFactsGroupsAndNoneChildren) {
  namespace vt = platform::vt;
  platform::TlbLibrary lib = Library("Mini", "{G}", 2, 5);
  platform::TlbTypeInfo e = TypeInfo("E", "enum");
  e.variables = {Constant("a", -1, "first")};
  platform::TlbTypeInfo one = TypeInfo("IOne", "interface", "{I}");
  one.functions = {Function("Tag", 2, Type(vt::kI4), {}, "the tag"), Function("Go", 1, Type(vt::kVoid))};
  lib.types = {e, one};
  TypelibWorld world;
  world.AddComponent("C:\\B\\M.dll", lib, {2004, 5, 6, 14, 3, 9});
  world.versions.Set("C:\\B\\M.dll", {0x00010000, 0x00000007});
  std::vector<platform::TreeNode> tree{{"old", "old", {}}};
  world.Load("C:\\B\\M.dll").BuildTree(tree);
  Strings lines;
  Flatten(tree, 0, lines);
  ASSERT_EQ(lines.size(), 22u);  // the stale node is replaced
  const std::pair<size_t, const char*> spots[] = {
      {4, "  C:\\B\\M.dll\\FileDate | FileDate: 5/6/2004 2:03:09 PM"},
      {7, "  C:\\B\\M.dll\\File Version | File Version: 1.0.0.7"},
      {10, "      C:\\B\\M.dll\\Enums\\E\\a | a = -1 'first"},
      {12, "    C:\\B\\M.dll\\Types\\None | None"},
      {17, "        C:\\B\\M.dll\\Classes\\IOne\\Properties\\Get Tag() As Long | Get Tag() As Long 'the tag"},
      {21, "        C:\\B\\M.dll\\Classes\\IOne\\Events\\None | None"}};
  for (const auto& [at, line] : spots) EXPECT_EQ(lines[at], line);
}

// The default name and the file's layout are checked through `sentrune inspect --xml`.
TEST(BuildXML, TagsMembersByTheirDeclarationAndReportsAFailedWrite) {
  TypelibWorld world;
  const clsParseTLB m = world.Load("C:\\B\\Widgets.dll", WidgetsLibrary());
  EXPECT_EQ(m.BuildXML(""), "C:\\B\\Widgets.dll.xml");
  const std::string xml = world.env.Files().Contents("C:\\B\\Widgets.dll.xml").value_or("");
  EXPECT_NE(xml.find("\r\n               <Get_Caption()_As_String>\r\n"), std::string::npos) << xml;
  world.env.Files().FailNext(FsOp::kWrite, "C:\\Out\\x.xml", rt::errnum::kPermissionDenied);
  EXPECT_EQ(m.BuildXML("C:\\Out\\x.xml"), "");
  EXPECT_EQ(world.ui.boxes.size(), 1u);
}

TEST(TypeLibJson, KeepsTheFixedShapeAndOrder) {
  TypelibWorld world;
  const auto json = nlohmann::ordered_json::parse(TypeLibJson(world.Load("C:\\W.dll", WidgetsLibrary())));
  Strings keys;
  for (const auto& [key, value] : json.items()) keys.push_back(key);
  EXPECT_EQ(keys, (Strings{"Library", "HelpString", "GUID", "TLBVersionString", "FileVersionString", "Enums",
                           "Types", "Classes"}));
  EXPECT_EQ(json["Enums"][0]["Members"][1].dump(), R"({"MemberName":"colGreen","MemberValue":1,"MemberHelp":"green"})");
  EXPECT_EQ(json["Classes"][0]["Events"][0]["MemberName"], "Changed(ByVal Index As Long)");
  EXPECT_EQ(json["Classes"][1]["Events"].dump(), "[]");
}

struct Viewer {
  TypelibWorld world;
  OptionsHandler options{world.state};
  frmTLBInfo form{world.state, options};
};

TEST(TlbViewer, PanesComparisonAndXmlExport) {
  Viewer v;
  v.world.AddComponent("C:\\A\\Widgets.dll", WidgetsLibrary());
  platform::TlbLibrary newer = WidgetsLibrary();
  newer.types.back().name = "IHelper2";
  v.world.AddComponent("C:\\B\\Widgets.dll", newer);
  v.world.env.Files().AddFolder("C:\\Out");
  v.form.Form_Load();
  // A cancelled pick and a missing file leave the pane as it was.
  for (auto file : {std::optional<std::string>{}, std::optional<std::string>{"C:\\A\\Missing.dll"},
                    std::optional<std::string>{"C:\\A\\Widgets.dll"}}) {
    v.world.ui.QueueOpenFile(file);
    v.form.mnuSelectFile_Click(frmTLBInfo::kLeft);
  }
  EXPECT_EQ(v.form.Pane(frmTLBInfo::kLeft)[0].key, "C:\\A\\Widgets.dll");
  EXPECT_FALSE(v.form.CommandsEnabled().runComparison);

  v.world.ui.QueueOpenFile("C:\\B\\Widgets.dll");
  v.form.mnuSelectFile_Click(frmTLBInfo::kRight);
  v.form.mnuRunComparison_Click();
  EXPECT_TRUE(v.world.ui.forms.at(0).text.starts_with("2 Differences Found.\r\n--> Widgets [C:\\B\\Widgets.dll] "
                                                       "contains a Class named 'IHelper2'"));
  v.world.ui.QueueSaveFile("C:\\Out\\w.xml");
  v.form.subGenerateXML(frmTLBInfo::kRight);
  EXPECT_TRUE(v.world.env.Files().Exists("C:\\Out\\w.xml"));
}

}  // namespace
}  // namespace sentrune::testing
