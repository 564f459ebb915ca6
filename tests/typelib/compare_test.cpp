// Comparing two models: libraries widl compiled, each variant of the base
// differing in one respect and read by the real portable readers; then the
// rules those fixtures cannot show (what is not part of a key, the phrases
// for missing containers, the library-level details). The differences, with
// the item, member and change each record carries, are checked whole
// against tests/fixtures/typelib/*.compare.txt.
#include <gtest/gtest.h>

#include "runtime/text.h"
#include "support/expected_file.h"
#include "typelib/tlb_json.h"
#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

using namespace tlb;

// A heading, the level, then each difference: its text, and below it what
// the structured record says of it (the item, member, change and values).
std::string Report(const std::string& heading, const std::vector<TlbDifference>& differences) {
  std::string text = "== " + heading + ": " + CompatLevelName(CompatibilityLevel(differences)) + "\n";
  nlohmann::ordered_json records = DifferencesJson(differences);
  for (size_t i = 0; i < differences.size(); ++i) {
    EXPECT_EQ(records[i]["message"], rt::Replace(differences[i].text, "\r\n", "\n"));
    records[i].erase("message");
    text += differences[i].text + "\n    " + records[i].dump() + "\n";
  }
  return text;
}

TEST(Fixtures, EachVariantGivesItsDifferencesAndLevel) {
  const std::pair<const char*, bool> variants[] = {
      {"widgets_member_added.tlb", true}, {"widgets_member_removed.tlb", true}, {"widgets_byref_to_byval.tlb", true},
      {"widgets_enum_added.tlb", true},   {"widgets_record_field.tlb", true},   {"widgets_class_guid.tlb", true},
      {"widgets_version.tlb", true},      {"widgets_version.tlb", false},       {"widgets_renamed.tlb", true},
      {"widgets64.tlb", false}};
  FixtureWorld world;
  const clsParseTLB base = world.Load("widgets.tlb");
  std::string report;
  for (const auto& [file, ignoreMinor] : variants)
    report += Report(std::string(file) + (ignoreMinor ? " ignoring minor" : ""),
                     world.Load(file).CompareDetailed(base, ignoreMinor, false));
  ExpectMatchesFile(report, "typelib/variants.compare.txt");
}

platform::TlbTypeInfo& Find(platform::TlbLibrary& lib, const std::string& name) {
  return *std::find_if(lib.types.begin(), lib.types.end(), [&](const auto& t) { return t.name == name; });
}

// A new build ("this") against its model ("Other"), each edited from the
// in-memory Widgets library.
TEST(Compare, EditsOfTheInMemoryLibrary) {
  std::string report;
  const auto compare = [&](const char* heading, const platform::TlbLibrary& built, const platform::TlbLibrary& model,
                           bool ignoreMinor, bool details = false) {
    TypelibWorld world;
    const clsParseTLB a = world.Load("C:\\Build\\Widgets.dll", built);
    report += Report(heading, a.CompareDetailed(world.Load("C:\\Model\\Widgets.dll", model), ignoreMinor, details));
  };
  platform::TlbLibrary built = WidgetsLibrary(), model = WidgetsLibrary();
  Find(built, "WidgetColor").variables[1].value->integer = 7;
  Find(built, "_Widget").functions[2].name = "FIND";
  Find(built, "_Widget").functions[0].helpString = "Another help";
  compare("values, case and help are not part of keys", built, model, false);

  built = WidgetsLibrary();
  Find(built, "Widget").guid = "{99999999-0000-0000-0000-000000000002}";
  Find(built, "__Widget").functions.push_back(Function("Closed", 1, Type(platform::vt::kVoid)));
  Find(built, "_Widget").functions.erase(Find(built, "_Widget").functions.begin());  // Property Get gone
  built.types.pop_back();                                                             // IHelper gone
  model.types.push_back(TypeInfo("Shape", "enum"));
  model.types.push_back(TypeInfo("Size", "record"));
  compare("missing containers and members", built, model, true);

  built = WidgetsLibrary();
  built.minorVersion = 1;
  built.helpString = "New help";
  compare("library details", built, WidgetsLibrary(), false, true);
  built = WidgetsLibrary();
  built.name = "widgets";
  compare("library names compare exactly", built, WidgetsLibrary(), true);
  ExpectMatchesFile(report, "typelib/edits.compare.txt");
}

}  // namespace
}  // namespace sentrune::testing
