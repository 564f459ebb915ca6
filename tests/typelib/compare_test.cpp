// Comparison rules the widl fixtures cannot show: what is not part of a key,
// the phrases for missing containers, and the library-level details.
#include <gtest/gtest.h>

#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;
namespace vt = platform::vt;
using Strings = std::vector<std::string>;

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
}

TEST(Compare, LevelFollowsPassAndKind) {
  const auto level = [](std::vector<std::pair<int, DiffKind>> found) {
    std::vector<TlbDifference> differences;
    for (const auto& [pass, kind] : found) differences.push_back({pass, kind, "x"});
    return CompatibilityLevel(differences);
  };
  EXPECT_EQ(level({}), CompatLevel::kIdentical);
  EXPECT_EQ(level({{2, DiffKind::kMethod}, {2, DiffKind::kClassGuid}}), CompatLevel::kCompatible);
  EXPECT_EQ(level({{1, DiffKind::kLibraryHelpString}, {1, DiffKind::kLibraryVersion}}), CompatLevel::kCompatible);
  EXPECT_EQ(level({{2, DiffKind::kMethod}, {1, DiffKind::kEnumMember}}), CompatLevel::kIncompatible);
  EXPECT_EQ(level({{1, DiffKind::kLibraryGuid}}), CompatLevel::kIncompatible);
}

}  // namespace
}  // namespace sentrune::testing
