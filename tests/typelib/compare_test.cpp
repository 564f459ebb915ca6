// Comparing two models: libraries widl compiled, each variant of the base
// differing in one respect and read by the real portable readers; then the
// rules those fixtures cannot show (what is not part of a key, the phrases
// for missing containers, the library-level details).
#include <gtest/gtest.h>

#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;
namespace vt = platform::vt;
using Strings = std::vector<std::string>;

struct Variant {
  const char* file;
  bool ignoreMinor;
  CompatLevel level;
  Strings differences;  // "%A" stands for the variant's label, "%B" for the base's
};

std::string Expand(std::string text, const std::string& file) {
  for (size_t at = text.find("%A"); at != std::string::npos; at = text.find("%A"))
    text.replace(at, 2, "Widgets [C:\\F\\" + file + "]");
  for (size_t at = text.find("%B"); at != std::string::npos; at = text.find("%B"))
    text.replace(at, 2, "Widgets [C:\\F\\widgets.tlb]");
  return text;
}

TEST(Fixtures, EachVariantGivesItsDifferencesAndLevel) {
  const std::string missing = "' which doesn't exist in ";
  const Variant variants[] = {
      {"widgets_member_added.tlb", true, CompatLevel::kCompatible,
       {"Widgets contains a Method named 'Sub Polish(ByVal Times As Long)" + missing + "Widgets"}},
      {"widgets_member_removed.tlb", true, CompatLevel::kIncompatible,
       {"%B contains a Method named 'Sub Clear()" + missing + "%A"}},
      {"widgets_byref_to_byval.tlb", true, CompatLevel::kIncompatible,
       {"%B contains a Method named 'Sub Resize(Width As Long, ByVal Height As Long)" + missing + "%A",
        "Widgets contains a Method named 'Sub Resize(ByVal Width As Long, ByVal Height As Long)" + missing +
            "Widgets"}},
      {"widgets_enum_added.tlb", true, CompatLevel::kCompatible,
       {"Widgets contains an Enum Member named 'wgYellow" + missing + "Widgets"}},
      {"widgets_record_field.tlb", true, CompatLevel::kIncompatible,
       {"%B contains a UDT Type Member named 'Count As Long" + missing + "%A",
        "Widgets contains a UDT Type Member named 'Count As Integer" + missing + "Widgets"}},
      {"widgets_class_guid.tlb", true, CompatLevel::kIncompatible,
       {"%B GUID Doesn't match %A GUID", "Widgets GUID Doesn't match Widgets GUID"}},
      {"widgets_version.tlb", true, CompatLevel::kIdentical, {}},
      {"widgets_version.tlb", false, CompatLevel::kCompatible, {"TLB Version String Doesn't Match"}},
      {"widgets_renamed.tlb", true, CompatLevel::kIncompatible, {"Library Name Doesn't Match."}},
      {"widgets64.tlb", false, CompatLevel::kIdentical, {}},
  };
  FixtureWorld world;
  const clsParseTLB base = world.Load("widgets.tlb");
  for (const Variant& v : variants) {
    SCOPED_TRACE(v.file);
    const clsParseTLB built = world.Load(v.file);
    const auto differences = built.CompareDetailed(base, v.ignoreMinor, false);
    Strings texts;
    for (const auto& d : differences) texts.push_back(d.text);
    Strings expected;
    for (const auto& text : v.differences) expected.push_back(Expand(text, v.file));
    EXPECT_EQ(texts, expected);
    EXPECT_EQ(CompatibilityLevel(differences), v.level);
  }
}

// A component file compiled by widl: its version resource is read, and
// hidden or restricted members stay out of the VB-style declarations.
TEST(Fixtures, ComponentFileCarriesItsVersionAndRendersVbStyleDeclarations) {
  FixtureWorld world;
  const clsParseTLB dll = world.Load("widgets.dll");
  EXPECT_NE(dll.FileVersionString(), "0.0.0.0");
  EXPECT_EQ(world.Load("widgets.tlb").FileVersionString(), "0.0.0.0");
  EXPECT_EQ(dll.Classes().size(), 2u);  // Widget and Part; their interfaces are folded in
  const clsClass* widget = dll.Classes().Find("Widget");
  ASSERT_NE(widget, nullptr);
  EXPECT_TRUE(widget->Methods.Contains("Sub SetNames(Names() As String)"));
  EXPECT_FALSE(widget->Methods.Contains("Sub Refresh()") || widget->Methods.Contains("Sub Internal()"));
}

platform::TlbTypeInfo& Find(platform::TlbLibrary& lib, const std::string& name) {
  return *std::find_if(lib.types.begin(), lib.types.end(), [&](const auto& t) { return t.name == name; });
}

// A new build ("this") against its model ("Other").
Strings Compare(const platform::TlbLibrary& built, const platform::TlbLibrary& model, bool ignoreMinor = true,
                bool details = false) {
  TypelibWorld world;
  const clsParseTLB a = world.Load("C:\\Build\\Widgets.dll", built);
  const clsParseTLB b = world.Load("C:\\Model\\Widgets.dll", model);
  return a.Compare(b, ignoreMinor, details);
}

TEST(Compare, ValuesCaseAndHelpAreNotPartOfKeys) {
  platform::TlbLibrary changed = WidgetsLibrary();
  Find(changed, "WidgetColor").variables[1].value->integer = 7;
  Find(changed, "_Widget").functions[2].name = "FIND";
  Find(changed, "_Widget").functions[0].helpString = "Another help";
  EXPECT_EQ(Compare(changed, WidgetsLibrary(), false), Strings{});
}

TEST(Compare, MissingContainersAndMembersUseTheirOwnPhrases) {
  platform::TlbLibrary built = WidgetsLibrary();
  Find(built, "Widget").guid = "{99999999-0000-0000-0000-000000000002}";
  Find(built, "__Widget").functions.push_back(Function("Closed", 1, Type(vt::kVoid)));
  Find(built, "_Widget").functions.erase(Find(built, "_Widget").functions.begin());  // Property Get gone
  built.types.pop_back();                                                             // IHelper gone
  platform::TlbLibrary model = WidgetsLibrary();
  model.types.push_back(TypeInfo("Shape", "enum"));
  model.types.push_back(TypeInfo("Size", "record"));
  const std::string b = "Widgets [C:\\Model\\Widgets.dll]";
  const std::string a = "' which doesn't exist in Widgets [C:\\Build\\Widgets.dll]";
  EXPECT_EQ(Compare(built, model),
            (Strings{b + " contains an Enum named 'Shape" + a, b + " contains a Type(UDT) named 'Size" + a,
                     b + " GUID Doesn't match Widgets [C:\\Build\\Widgets.dll] GUID",
                     b + " contains a Property named 'Get Caption() As String" + a,
                     b + " contains a Class named 'IHelper" + a,
                     // The second pass never shows paths.
                     "Widgets GUID Doesn't match Widgets GUID",
                     "Widgets contains a Event named 'Closed()' which doesn't exist in Widgets"}));
}

TEST(Compare, LibraryLevelDetailsAndExactNames) {
  platform::TlbLibrary built = WidgetsLibrary();
  built.minorVersion = 1;
  built.helpString = "New help";
  EXPECT_EQ(Compare(built, WidgetsLibrary(), false, true),
            (Strings{"HelpString Doesn't Match\r\nHelpString (A) = New help\r\nHelpString (B) = Widget library",
                     "TLB Version String Doesn't Match\r\nTLB Version String (A) = 1.1\r\nTLB Version String (B) = 1.0"}));

  // Library names compare exactly, unlike type-level keys.
  platform::TlbLibrary lower = WidgetsLibrary();
  lower.name = "widgets";
  EXPECT_EQ(Compare(lower, WidgetsLibrary()), Strings{"Library Name Doesn't Match."});
  // The help string is a minor difference; the other levels are checked on the compiled fixtures.
  EXPECT_EQ(CompatibilityLevel({{1, DiffKind::kLibraryHelpString, "x"}}), CompatLevel::kCompatible);
}

}  // namespace
}  // namespace sentrune::testing
