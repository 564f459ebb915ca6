#include "typelib/tlb_render.h"

#include <gtest/gtest.h>

#include "support/fake_typelib_source.h"
#include "typelib/tlb_idl.h"

namespace sentrune {
namespace {

using namespace testing::tlb;
namespace vt = platform::vt;

TEST(MemberDeclaration, TypesKindWordsParametersReturnsAndNames) {
  const std::pair<uint16_t, const char*> types[] = {
      {72, " As CLSID"}, {18, " As <Unsupported Variant Type(VT_UI2)>"},
      {16, " As <Unsupported Variant Type>"},
      // The base code is masked: a vector of longs reads Long, by-reference is invisible.
      {0x1003, " As Long"}, {0x4000 | 8, " As String"}, {0x6000 | 12, "() As Variant"}};
  for (const auto& [code, text] : types) EXPECT_EQ(sfncTranslateType(code), text) << code;
  EXPECT_EQ(TypeText(Type(0x6000, "Point")), "() As Point");

  platform::TlbParam optional = Param("o", Type(vt::kVariant));
  optional.optional = true;
  platform::TlbParam byRefDefault = Param("x", Type(0x4000 | vt::kI4));
  byRefDefault.hasDefault = true;
  byRefDefault.defaultValue = {vt::kI4, -5, 0, {}};
  const std::pair<platform::TlbMember, const char*> cases[] = {
      // Only the whole code 24/25 makes a Sub: an HRESULT array is a Function.
      {Function("Run", 1, Type(vt::kHresult)), "Sub Run()"},
      {Function("Codes", 1, Type(0x2000 | vt::kHresult)), "Function Codes()() As HRESULT"},
      {Function("Move", 1, Type(vt::kVoid), {Param("P", Type(vt::kByRefFlag, "Point")), Param("N", Type(0x4003))}),
       "Sub Move(P As Point, N As Long)"},
      {Function("Font", 8, Type(vt::kVoid), {Param("", Type(0, "Font"))}), "Property Set Font(ByVal  As Font)"},
      // A Let writes its value as RHS, with two blanks when it is alone.
      {Function("Value", 4, Type(vt::kVoid), {Param("v", Type(vt::kI4))}), "Property Let Value(RHS  As Long)"},
      {Function("Item", 4, Type(vt::kVoid), {Param("Index", Type(vt::kI4)), Param("", Type(vt::kVariant))}),
       "Property Let Item(ByVal Index As Long, RHS As Variant)"},
      // "Const" is cut from the whole text, but only for invoke kind 0.
      {Function("MaxConstant", 0, Type(vt::kI4)), " Maxant()"},
      {Function("ConstX", 1, Type(vt::kVoid)), "Sub ConstX()"},
      {Function("G", 1, Type(vt::kVoid), {byRefDefault, optional}),
       "Sub G(Optional x As Long = -5, Optional ByVal o As Variant)"},
  };
  for (const auto& [member, text] : cases) EXPECT_EQ(MemberDeclaration(member), text) << text;
}

TEST(DefaultValueText, EveryKindOfValue) {
  auto v = [](uint16_t type, int64_t integer, double real = 0, std::string text = {}) {
    return platform::TlbValue{type, integer, real, std::move(text)};
  };
  const std::pair<platform::TlbValue, const char*> values[] = {
      {v(vt::kBool, -1), "True"},           {v(vt::kR4, 0, 1e20), "1E+20"},
      {v(vt::kCy, 12500), "1.25"},          {v(vt::kDate, 0, 36526), "1/1/2000"},
      {v(vt::kError, 0x80020004), "-2147352572"}, {v(vt::kDate, 0, 36526.75), "1/1/2000 6:00:00 PM"},
      {v(vt::kBstr, 0, 0, "it's"), "\"it's\""},
      // Printable runs and character codes are checked with widgets.dll's
      // defaults; a character beyond 16 bits is two UTF-16 codes.
      {v(vt::kBstr, 0, 0, "\xF0\x9F\x98\x80"), "Chr$(55357) & Chr$(56832) "},
  };
  for (const auto& [value, text] : values) EXPECT_EQ(DefaultValueText(value), text) << text;
}

TEST(StripScope, KeepsTheTextAfterTheScopeWordWithoutComment) {
  EXPECT_EQ(sfncStripScopeDefAndHelp("Public PROPERTY Let Tag(RHS  As String) 'Tag", "Property"),
            "Let Tag(RHS  As String)");
  // A quote inside a default string is taken for a comment as well.
  EXPECT_EQ(sfncStripScopeDefAndHelp("Public Property Get P(Optional ByVal s As String = \"it's\") As Long",
                                     "Property"),
            "Get P(Optional ByVal s As String = \"it");
}

TEST(TypeLibIdl, RefusesATypeItCannotNameAndSaysWhere) {
  platform::TlbLibrary lib = Library("L", "{00000000-0000-0000-0000-0000000000AA}");
  lib.types.push_back(TypeInfo("IThing", "interface", "{00000000-0000-0000-0000-0000000000AB}"));
  lib.types[0].functions = {Function("Owner", 2, Type(vt::kUserDefined))};
  const rt::Result<std::string> idl = TypeLibIdl(lib);
  ASSERT_FALSE(idl.ok());
  EXPECT_EQ(idl.error().description, "IThing.Owner uses a type IDL cannot name (variant type 29, unresolved or imported)");
}

}  // namespace
}  // namespace sentrune
