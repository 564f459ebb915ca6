// The Widgets variants differ from the base library in exactly the respect
// their names say, the 64-bit and PE-embedded copies in none, as the
// projection sees them. The comparison tests rely on that.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "msft_test_files.h"
#include "pe_test_files.h"
#include "platform/portable/msft_reader.h"
#include "platform/portable/pe_image.h"
#include "platform/portable/typelib_projection.h"

namespace sentrune::portable {
namespace {

using platform::TlbLibrary;

std::string Text(const platform::TlbType& type) {
  return std::to_string(type.code) + (type.userTypeName.empty() ? "" : ":" + type.userTypeName);
}

std::string Text(const platform::TlbValue& value) {
  return std::to_string(value.vt) + "/" + std::to_string(value.integer) + "/" +
         std::to_string(value.real) + "/" + value.text;
}

// One line per library, type and member with everything the model reader
// reads. Enum constants leave out their member IDs, which shift when one is
// inserted.
std::set<std::string> Lines(const TlbLibrary& library) {
  std::set<std::string> lines;
  lines.insert("library " + library.name + " " + library.guid + " " + library.helpString + " " +
               std::to_string(library.majorVersion) + "." + std::to_string(library.minorVersion));
  for (const auto& type : library.types) {
    lines.insert("type " + type.name + " " + type.kind + " " + type.guid + " " + type.helpString + " " +
                 std::to_string(type.flags) + " " + std::to_string(type.defaultInterface) + " " +
                 std::to_string(type.defaultSource));
    for (const auto& member : type.functions) {
      std::string line = type.name + "." + member.name + " " + std::to_string(member.memberId) + " " +
                         std::to_string(member.invokeKind) + " " + std::to_string(member.flags) + " " +
                         Text(member.type) + " " + member.helpString + " (";
      for (const auto& param : member.params) {
        line += param.name + " " + Text(param.type) + " " + std::to_string(param.optional) +
                std::to_string(param.hasDefault) + " " + (param.hasDefault ? Text(param.defaultValue) : "") + ", ";
      }
      lines.insert(line + ")");
    }
    for (const auto& member : type.variables) {
      lines.insert(type.name + "." + member.name + " " + Text(member.type) + " " +
                   (member.value ? Text(*member.value) : "") + " " + member.helpString);
    }
  }
  return lines;
}

std::vector<std::string> Minus(const std::set<std::string>& a, const std::set<std::string>& b) {
  std::vector<std::string> out;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(out));
  return out;
}

TEST(WidgetsVariants, EachVariantChangesOneThing) {
  struct Variant {
    const char* file;
    size_t removed, added;
    const char* everyChangedLineHas;
  };
  const Variant variants[] = {
      {"widgets_member_added.tlb", 0, 1, "_Widget.Polish "},
      {"widgets_member_removed.tlb", 1, 0, "_Widget.Clear "},
      {"widgets_byref_to_byval.tlb", 1, 1, "_Widget.Resize "},
      {"widgets_return_changed.tlb", 1, 1, "_Widget.Find "},
      {"widgets_enum_added.tlb", 0, 1, "WidgetColors.wgYellow "},
      {"widgets_enum_value.tlb", 1, 1, "WidgetColors.wgGreen "},
      {"widgets_record_field.tlb", 1, 1, "WidgetInfo.Count "},
      {"widgets_class_guid.tlb", 1, 1, "type Widget coclass "},
      {"widgets_version.tlb", 1, 1, "library "},
      {"widgets_helpstring.tlb", 1, 1, "library "},
      {"widgets_renamed.tlb", 1, 1, "library "},
  };
  const auto base = Lines(testing::ProjectFixture("widgets.tlb"));
  for (const Variant& variant : variants) {
    const auto changed = Lines(testing::ProjectFixture(variant.file));
    const auto removed = Minus(base, changed);
    const auto added = Minus(changed, base);
    EXPECT_EQ(removed.size(), variant.removed) << variant.file;
    EXPECT_EQ(added.size(), variant.added) << variant.file;
    for (const auto* lines : {&removed, &added}) {
      for (const std::string& line : *lines) {
        EXPECT_NE(line.find(variant.everyChangedLineHas), std::string::npos) << variant.file << ": " << line;
      }
    }
  }
}

TEST(WidgetsVariants, Win64AndEmbeddedCopiesProjectAlike) {
  const auto base = Lines(testing::ProjectFixture("widgets.tlb"));
  EXPECT_EQ(Lines(testing::ProjectFixture("widgets64.tlb")), base);

  const auto image = testing::TypeLibFixture("widgets.dll");
  auto parsed = PeImage::Parse(image);
  ASSERT_TRUE(parsed.ok()) << parsed.error().description;
  auto resource = parsed->FindResource(ResourceId::Named(kTypeLibResourceType), ResourceId::Number(1));
  ASSERT_TRUE(resource.has_value());
  auto raw = ReadMsft(*resource);
  ASSERT_TRUE(raw.ok()) << raw.error().description;
  EXPECT_EQ(Lines(ProjectLibrary(*raw)), base);
}

}  // namespace
}  // namespace sentrune::portable
