#include "platform/portable/msft_reader.h"

#include <gtest/gtest.h>

#include "msft_test_files.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using testing::DecodeFixture;
using testing::RawFunction;
using testing::RawType;

const RawTypeDesc& Desc(const RawLibrary& library, int32_t index) {
  static const RawTypeDesc kNone{};
  if (index < 0 || static_cast<size_t>(index) >= library.typeDescs.size()) {
    ADD_FAILURE() << "descriptor index " << index << " out of range";
    return kNone;
  }
  return library.typeDescs[static_cast<size_t>(index)];
}

// The descriptor a chain of pointers (and arrays) ends in.
const RawTypeDesc& Innermost(const RawLibrary& library, int32_t index) {
  const RawTypeDesc* desc = &Desc(library, index);
  for (int i = 0; i < 8 && desc->element >= 0; ++i) desc = &Desc(library, desc->element);
  return *desc;
}

TEST(MsftReader, ReadsLibraryAndTypeInfoAttributes) {
  const RawLibrary library = DecodeFixture("widgets.tlb");
  EXPECT_EQ(library.name, "Widgets");
  EXPECT_EQ(library.guid, "{5E1A0C01-7D3B-4C2E-9F10-000000000001}");
  EXPECT_EQ(library.helpString, "Widgets and their parts");
  EXPECT_EQ(library.majorVersion, 1);
  EXPECT_EQ(library.minorVersion, 0);
  ASSERT_EQ(library.types.size(), 7u);

  const RawTypeInfo& widget = RawType(library, "_Widget");
  EXPECT_EQ(widget.kind, TypeKind::kDispatch);
  EXPECT_EQ(widget.flags, 0x11D0);  // dispatchable, automation, nonextensible, dual, hidden
  EXPECT_EQ(widget.guid, "{5E1A0C01-7D3B-4C2E-9F10-000000000101}");
  EXPECT_EQ(widget.pointerSize, 4);
  // Seven inherited slots plus one per stored function.
  EXPECT_EQ(widget.vtableSize, (7 + widget.funcs.size()) * 4);

  const RawTypeInfo& colors = RawType(library, "WidgetColors");
  EXPECT_EQ(colors.kind, TypeKind::kEnum);
  EXPECT_EQ(colors.helpString, "Colours a widget can take");
  EXPECT_EQ(RawType(library, "Widget").helpString, "A widget");
  EXPECT_EQ(RawType(library, "Part").flags, 0);  // noncreatable: no TYPEFLAG_FCANCREATE
}

TEST(MsftReader, Win64LibrariesUseEightBytePointers) {
  const RawLibrary narrow = DecodeFixture("widgets.tlb");
  const RawLibrary wide = DecodeFixture("widgets64.tlb");
  const RawTypeInfo& widget = RawType(wide, "_Widget");
  EXPECT_EQ(widget.pointerSize, 8);
  EXPECT_EQ(widget.vtableSize, 2 * RawType(narrow, "_Widget").vtableSize);
  EXPECT_EQ(widget.funcs.size(), RawType(narrow, "_Widget").funcs.size());
}

TEST(MsftReader, ReadsFunctionsWithTheirKindsFlagsAndParameters) {
  const RawLibrary library = DecodeFixture("widgets.tlb");
  const RawTypeInfo& widget = RawType(library, "_Widget");

  const RawFunc& find = RawFunction(widget, "Find");
  EXPECT_EQ(find.memberId, 0x60030000);
  EXPECT_EQ(find.helpString, "Finds a part by its key");
  EXPECT_EQ(find.funcKind, 1);  // stored in vtable form
  EXPECT_EQ(Desc(library, find.returnType).vt, vt::kHresult);
  ASSERT_EQ(find.params.size(), 3u);
  EXPECT_EQ(find.params[0].name, "Key");
  EXPECT_EQ(find.params[0].flags, 0x1);
  EXPECT_EQ(find.params[1].flags, 0x1 | 0x10 | 0x20);
  EXPECT_EQ(find.params[2].flags, 0x2 | 0x8);
  EXPECT_EQ(Desc(library, find.params[2].type).vt, vt::kPtr);
  EXPECT_EQ(Innermost(library, find.params[2].type).vt, vt::kI4);

  EXPECT_EQ(RawFunction(widget, "Font", 8).memberId, 0x68030001);
  EXPECT_EQ(RawFunction(widget, "Lookup").params[1].flags, 0x1 | 0x4);

  const RawFunc& names = RawFunction(widget, "SetNames");
  const RawTypeDesc& byRefArray = Desc(library, names.params[0].type);
  EXPECT_EQ(byRefArray.vt, vt::kPtr);
  EXPECT_EQ(Desc(library, byRefArray.element).vt, vt::kSafeArray);
  EXPECT_EQ(Innermost(library, names.params[0].type).vt, vt::kBstr);
}

TEST(MsftReader, ResolvesLocalAndImportedReferences) {
  const RawLibrary library = DecodeFixture("widgets.tlb");
  const RawTypeInfo& widget = RawType(library, "_Widget");

  ASSERT_EQ(widget.impls.size(), 1u);
  const RawRef& base = widget.impls[0].ref;
  EXPECT_EQ(base.kind, RawRef::Kind::kImported);
  EXPECT_EQ(base.importedName, "IDispatch");
  EXPECT_EQ(base.importedGuid, "{00020400-0000-0000-C000-000000000046}");
  EXPECT_EQ(base.importedKind, TypeKind::kInterface);

  // stdole's IFontDisp is an alias without a GUID: imported by position.
  const RawRef& font = Innermost(library, RawFunction(widget, "Font", 2).params[0].type).ref;
  EXPECT_EQ(font.kind, RawRef::Kind::kImported);
  EXPECT_EQ(font.importedName, "IFontDisp");
  EXPECT_EQ(font.importedKind, TypeKind::kAlias);
  const RawRef& picture = Innermost(library, RawFunction(widget, "Picture", 2).params[0].type).ref;
  EXPECT_EQ(picture.importedName, "IPictureDisp");
  EXPECT_TRUE(picture.importedGuid.empty());

  const RawRef& info = Innermost(library, RawFunction(widget, "Describe").params[0].type).ref;
  ASSERT_EQ(info.kind, RawRef::Kind::kLocal);
  EXPECT_EQ(library.types[static_cast<size_t>(info.localIndex)].name, "WidgetInfo");

  const RawTypeInfo& coclass = RawType(library, "Widget");
  ASSERT_EQ(coclass.impls.size(), 2u);
  EXPECT_EQ(library.types[static_cast<size_t>(coclass.impls[0].ref.localIndex)].name, "_Widget");
  EXPECT_EQ(coclass.impls[0].flags, 1);
  EXPECT_EQ(library.types[static_cast<size_t>(coclass.impls[1].ref.localIndex)].name, "__Widget");
  EXPECT_EQ(coclass.impls[1].flags, 3);
}

TEST(MsftReader, ReadsConstantsAndDefaultValues) {
  const RawLibrary library = DecodeFixture("widgets.tlb");
  const RawTypeInfo& colors = RawType(library, "WidgetColors");
  ASSERT_EQ(colors.vars.size(), 4u);
  EXPECT_EQ(colors.vars[1].name, "wgGreen");
  EXPECT_EQ(colors.vars[1].varKind, 2);
  ASSERT_TRUE(colors.vars[1].value.has_value());
  EXPECT_EQ(colors.vars[1].value->integer, 1);
  EXPECT_EQ(colors.vars[3].value->integer, -1);

  const RawFunc& configure = RawFunction(RawType(library, "_Widget"), "Configure");
  ASSERT_EQ(configure.params.size(), 12u);
  auto value = [&](size_t i) {
    EXPECT_TRUE(configure.params[i].defaultValue.has_value()) << configure.params[i].name;
    return configure.params[i].defaultValue.value_or(platform::TlbValue{});
  };
  EXPECT_EQ(value(0), (platform::TlbValue{vt::kI2, 10, 0, ""}));
  EXPECT_EQ(value(1), (platform::TlbValue{vt::kI4, -42, 0, ""}));
  EXPECT_EQ(value(2), (platform::TlbValue{vt::kUI1, 200, 0, ""}));
  EXPECT_EQ(value(3), (platform::TlbValue{vt::kI4, -100000, 0, ""}));  // stored, not packed
  EXPECT_EQ(value(4), (platform::TlbValue{vt::kBstr, 0, 0, "He said \"hi\"\tand left \xC3\xA9"}));
  EXPECT_EQ(value(5), (platform::TlbValue{vt::kBstr, 0, 0, ""}));
  EXPECT_EQ(value(6), (platform::TlbValue{vt::kBool, -1, 0, ""}));
  EXPECT_EQ(value(7), (platform::TlbValue{vt::kBool, 0, 0, ""}));
  EXPECT_EQ(value(9), (platform::TlbValue{vt::kDispatch, 0, 0, ""}));
  EXPECT_EQ(value(10), (platform::TlbValue{vt::kI4, 2, 0, ""}));
  EXPECT_FALSE(configure.params[11].defaultValue.has_value());
  EXPECT_EQ(configure.params[11].flags, 0x1 | 0x10);
}

}  // namespace
}  // namespace sentrune::portable
