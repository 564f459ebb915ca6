#include <gtest/gtest.h>

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
  EXPECT_EQ(lines, (Strings{
                       "C:\\B\\M.dll | C:\\B\\M.dll",
                       "  C:\\B\\M.dll\\Library | Library: Mini",
                       "  C:\\B\\M.dll\\HelpString | HelpString: ",
                       "  C:\\B\\M.dll\\File | File: C:\\B\\M.dll",
                       "  C:\\B\\M.dll\\FileDate | FileDate: 5/6/2004 2:03:09 PM",
                       "  C:\\B\\M.dll\\GUID | GUID: {G}",
                       "  C:\\B\\M.dll\\TLB Version | TLB Version: 2.5",
                       "  C:\\B\\M.dll\\File Version | File Version: 1.0.0.7",
                       "  C:\\B\\M.dll\\Enums | Enums",
                       "    C:\\B\\M.dll\\Enums\\E | E",
                       "      C:\\B\\M.dll\\Enums\\E\\a | a = -1 'first",
                       "  C:\\B\\M.dll\\Types | Types",
                       "    C:\\B\\M.dll\\Types\\None | None",
                       "  C:\\B\\M.dll\\Classes | Classes",
                       "    C:\\B\\M.dll\\Classes\\IOne | IOne",
                       "      C:\\B\\M.dll\\Classes\\IOne\\GUID | GUID: {I}",
                       "      C:\\B\\M.dll\\Classes\\IOne\\Properties | Properties",
                       "        C:\\B\\M.dll\\Classes\\IOne\\Properties\\Get Tag() As Long | Get Tag() As Long 'the tag",
                       "      C:\\B\\M.dll\\Classes\\IOne\\Methods | Methods",
                       "        C:\\B\\M.dll\\Classes\\IOne\\Methods\\Sub Go() | Sub Go()",
                       "      C:\\B\\M.dll\\Classes\\IOne\\Events | Events",
                       "        C:\\B\\M.dll\\Classes\\IOne\\Events\\None | None",
                   }));
}

TEST(BuildXML, WritesBesideTheComponentByDefaultAndReportsTheName) {
  TypelibWorld world;
  const clsParseTLB m = world.Load("C:\\B\\Widgets.dll", WidgetsLibrary());
  EXPECT_EQ(m.BuildXML(""), "C:\\B\\Widgets.dll.xml");
  const std::string xml = world.env.Files().Contents("C:\\B\\Widgets.dll.xml").value_or("");
  EXPECT_TRUE(xml.starts_with("   <Widgets.dll>\r\n      <Library>\r\n      Library: Widgets\r\n"
                              "      </Library>\r\n"))
      << xml;
  EXPECT_NE(xml.find("<Get_Caption()_As_String>"), std::string::npos);
  EXPECT_TRUE(xml.ends_with("   </Widgets.dll>\r\n"));

  world.env.Files().AddFolder("C:\\Out");
  EXPECT_EQ(m.BuildXML("C:\\Out\\w.xml"), "C:\\Out\\w.xml");
  world.env.Files().FailNext(FsOp::kWrite, "C:\\Out\\x.xml", rt::errnum::kPermissionDenied);
  EXPECT_EQ(m.BuildXML("C:\\Out\\x.xml"), "");
  ASSERT_EQ(world.ui.boxes.size(), 1u);
  EXPECT_EQ(world.ui.boxes[0].style, 16);
}

}  // namespace
}  // namespace sentrune::testing
