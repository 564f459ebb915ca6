// Reading a library into the model: what is kept, folded and dropped, and
// how failures show. Models are checked whole as JSON against
// tests/fixtures/typelib/*.model.json.
#include <gtest/gtest.h>

#include "support/expected_file.h"
#include "typelib/tlb_json.h"
#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;
namespace vt = platform::vt;

// "file.dll\2" is resource 2 of file.dll: date and version are the file's.
TEST(ParseTypeLib, ReadsLibraryFactsAndFoldsHiddenInterfacesIntoTheirCoclass) {
  TypelibWorld world;
  world.env.Files().AddFile("C:\\Build\\Widgets.dll", "MZ", {2004, 5, 6, 14, 3, 9});
  world.typelibs.Add("C:\\Build\\Widgets.dll\\2", WidgetsLibrary());
  world.versions.Set("C:\\Build\\Widgets.dll", {0x00010002, 0x00030004});
  const clsParseTLB m = world.Load("C:\\Build\\Widgets.dll\\2");
  EXPECT_EQ(m.FileDate(), (rt::DateTime{2004, 5, 6, 14, 3, 9}));
  // The hidden _Widget and __Widget appear only through the coclass.
  ExpectMatchesFile(TypeLibJson(m), "typelib/widgets.model.json");

  // Compiled by widl: the component file's version resource is read, and
  // hidden or restricted members stay out of the VB-style declarations.
  FixtureWorld compiled;
  for (const std::string name : {"widgets.dll", "shapes.tlb"})
    ExpectMatchesFile(TypeLibJson(compiled.Load(name)), "typelib/" + name + ".model.json");
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
  ExpectMatchesFile(TypeLibJson(m), "typelib/top-level.model.json");
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
  // The boxes, then the trace: a reader's error was pending while its box
  // showed (the missing file's was not), and is cleared after.
  std::string shown;
  for (const AskedBox& box : world.ui.boxes) shown += box.title + " | " + std::to_string(box.style) + " | " + box.prompt + "\n";
  ExpectMatchesFile(shown + "----\n" + world.env.Files().Contents(world.state.trace.path()).value_or(""),
                    "typelib/failures.txt");
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
