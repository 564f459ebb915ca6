#include <gtest/gtest.h>

#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;
namespace vt = platform::vt;
using Strings = std::vector<std::string>;

template <class Collection>
Strings Keys(const Collection& items) {
  Strings keys;
  for (const auto& entry : items) keys.push_back(entry.key());
  return keys;
}

// "file.dll\2" is resource 2 of file.dll: date and version are the file's.
TEST(ParseTypeLib, ReadsLibraryFactsAndFoldsHiddenInterfacesIntoTheirCoclass) {
  TypelibWorld world;
  world.env.Files().AddFile("C:\\Build\\Widgets.dll", "MZ", {2004, 5, 6, 14, 3, 9});
  world.typelibs.Add("C:\\Build\\Widgets.dll\\2", WidgetsLibrary());
  world.versions.Set("C:\\Build\\Widgets.dll", {0x00010002, 0x00030004});
  const clsParseTLB m = world.Load("C:\\Build\\Widgets.dll\\2");
  EXPECT_EQ(m.TLBVersionString(), "1.0");
  EXPECT_EQ(m.FileVersionString(), "1.2.3.4");
  EXPECT_EQ(m.FileDate(), (rt::DateTime{2004, 5, 6, 14, 3, 9}));

  // The hidden _Widget and __Widget appear only through the coclass.
  EXPECT_EQ(Keys(m.Classes()), (Strings{"Widget", "IHelper"}));
  const clsClass& widget = *m.Classes().Find("Widget");
  EXPECT_EQ(widget.Properties.Find("Get Caption() As String")->MemberHelp, "The caption");
  EXPECT_EQ(Keys(widget.Methods), (Strings{"Function Find(ByVal Key As String) As Long", "Sub Move(P As Point)"}));
  EXPECT_EQ(Keys(widget.Events), Strings{"Changed(ByVal Index As Long)"});
}

TEST(ParseTypeLib, WhatCountsAsTopLevelAndWhichMembersAreKept) {
  platform::TlbLibrary lib = Library("L", "{G}");
  lib.types.push_back(TypeInfo("Hidden", "interface", "{A}", 16));              // exactly hidden: gone
  lib.types.push_back(TypeInfo("HiddenDual", "dispatch", "{B}", 16 | 0x1000));  // hidden + more: stays
  lib.types.push_back(TypeInfo("Claimed", "interface", "{C}"));
  platform::TlbTypeInfo secret = TypeInfo("Secret", "coclass", "{D}", 16);  // a hidden coclass still claims
  secret.defaultInterface = 2;
  lib.types.push_back(secret);
  platform::TlbTypeInfo e = TypeInfo("Shape", "enum");
  e.variables = {Constant("Neg", 0xFFFFFFFF), Constant("Twice", 1), Constant("twice", 2)};
  lib.types.push_back(e);
  platform::TlbTypeInfo shape = TypeInfo("Shape", "interface", "{E}");  // "Enum Shape" and "Shape" are distinct
  shape.functions = {Function("Shown", 1, Type(vt::kVoid)), Function("Hidden", 1, Type(vt::kVoid)),
                     Function("Restricted", 1, Type(vt::kVoid)), Function("shown", 1, Type(vt::kVoid))};
  shape.functions[1].flags = 0x40;
  shape.functions[2].flags = 0x1;
  lib.types.push_back(shape);
  lib.types.push_back(TypeInfo("Dup", "interface", "{F1}"));
  lib.types.push_back(TypeInfo("Dup", "coclass", "{F2}"));  // same key: the first one stays
  TypelibWorld world;
  const clsParseTLB m = world.Load("C:\\x.tlb", lib);
  EXPECT_EQ(Keys(m.Classes()), (Strings{"HiddenDual", "Shape", "Dup"}));
  EXPECT_EQ(m.Classes().Find("Dup")->ClassGUID, "{F1}");
  EXPECT_EQ(Keys(m.Classes().Find("Shape")->Methods), Strings{"Sub Shown()"});
  const clsEnumOrType& shapes = *m.Enums().Find("Shape");
  EXPECT_EQ(Keys(shapes.Members), (Strings{"Neg", "Twice"}));
  EXPECT_EQ(shapes.Members.Find("Neg")->MemberValue, -1);
  EXPECT_EQ(shapes.Members.Find("Twice")->MemberValue, 1);
}

TEST(ParseTypeLib, FailuresShowTheirBoxAndReturnTheirNumber) {
  TypelibWorld world;
  clsParseTLB m(world.state);
  world.env.Files().AddFile("C:\\readme.txt", "text");
  world.typelibs.Fail("C:\\readme.txt", rt::MakeError(rt::errnum::kNotATypeLibrary, "no type library"));
  world.env.Files().AddFile("C:\\broken.tlb", "MSFT");
  world.typelibs.Fail("C:\\broken.tlb", rt::MakeError(rt::errnum::kCantLoadTypeLibrary, "bad offset"));
  EXPECT_EQ(m.ParseTypeLib("C:\\Missing.dll"), 53);
  EXPECT_EQ(m.ParseTypeLib("C:\\readme.txt"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(m.ParseTypeLib("C:\\broken.tlb"), rt::errnum::kCantLoadTypeLibrary);
  ASSERT_EQ(world.ui.boxes.size(), 3u);
  EXPECT_EQ(world.ui.boxes[0].prompt, "Can't find the file\r\n[C:\\Missing.dll]");
  EXPECT_EQ(world.ui.boxes[1].title, "Not an ActiveX Component");
  EXPECT_EQ(world.ui.boxes[2].prompt, "Error -2147312566\r\nbad offset");
  // A reader's error was pending while its box showed, and is cleared after.
  const std::string trace = world.env.Files().Contents(world.state.trace.path()).value_or("");
  EXPECT_NE(trace.find("'Title: clsParseTLB:ParseTypeLib"), std::string::npos);
  EXPECT_EQ(trace.find("File Not Found!"), std::string::npos);
  EXPECT_FALSE(world.state.err.pending());
}

TEST(ParseTypeLib, QuietReadHandsBackTheMessageAndAReparseStartsFresh) {
  TypelibWorld world;
  world.AddComponent("C:\\a.dll", WidgetsLibrary());
  world.AddComponent("C:\\b.dll", Library("Other", "{O}"));
  clsParseTLB m(world.state);
  EXPECT_TRUE(m.ReadTypeLib("C:\\a.dll").ok());
  EXPECT_TRUE(m.ReadTypeLib("C:\\b.dll").ok());
  EXPECT_TRUE(m.Classes().empty() && m.Enums().empty());
  EXPECT_EQ(m.ReadTypeLib("C:\\none.dll").message, "Can't find the file\r\n[C:\\none.dll]");
  EXPECT_TRUE(world.ui.boxes.empty());
}

}  // namespace
}  // namespace sentrune::testing
