// The model of libraries widl compiled, read by the real portable readers:
// each variant of the base library differs in one respect.
#include <gtest/gtest.h>

#include "typelib/fixture_world.h"

namespace sentrune::testing {
namespace {

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

}  // namespace
}  // namespace sentrune::testing
