#include "typelib/tlb_render.h"

#include <gtest/gtest.h>

#include "support/fake_typelib_source.h"

namespace sentrune {
namespace {

using namespace testing::tlb;
namespace vt = platform::vt;

TEST(TranslateType, TableAliasesFlagsAndUnsupportedCodes) {
  const std::pair<uint16_t, const char*> cases[] = {
      {2, " As Integer"}, {22, " As Integer"}, {3, " As Long"}, {10, " As Long"}, {8, " As String"},
      {31, " As String"}, {13, " As Unknown"}, {20, " As Unknown"}, {17, " As Byte"}, {19, " As ULong"},
      {23, " As UInt"}, {25, " As HRESULT"}, {72, " As CLSID"},
      {18, " As <Unsupported Variant Type(VT_UI2)>"}, {21, " As <Unsupported Variant Type(VT_UI8)>"},
      {29, " As <Unsupported Variant Type(VT_USERDEFINED)>"}, {16, " As <Unsupported Variant Type>"},
      // The base code is masked: a vector of longs reads Long, by-reference is invisible.
      {0x1003, " As Long"}, {0x4000 | 8, " As String"}, {0x2000 | 8, "() As String"},
      {0x6000 | 12, "() As Variant"}};
  for (const auto& [code, text] : cases) EXPECT_EQ(sfncTranslateType(code), text) << code;
  EXPECT_EQ(TypeText(Type(0, "Point")), " As Point");
  EXPECT_EQ(TypeText(Type(0x6000, "Point")), "() As Point");
}

TEST(MemberDeclaration, KindWordsParametersAndReturns) {
  EXPECT_EQ(MemberDeclaration(Function("Find", 1, Type(vt::kI4), {Param("Key", Type(vt::kBstr))})),
            "Function Find(ByVal Key As String) As Long");
  EXPECT_EQ(MemberDeclaration(Function("Run", 1, Type(vt::kHresult))), "Sub Run()");
  EXPECT_EQ(MemberDeclaration(Function("Stop", 1, Type(vt::kVoid))), "Sub Stop()");
  // Only the whole code 24/25 makes a Sub: an HRESULT array is a Function.
  EXPECT_EQ(MemberDeclaration(Function("Codes", 1, Type(0x2000 | vt::kHresult))),
            "Function Codes()() As HRESULT");
  EXPECT_EQ(MemberDeclaration(Function("GetItems", 1, Type(0x2000 | vt::kBstr))),
            "Function GetItems()() As String");
  EXPECT_EQ(MemberDeclaration(Function("Move", 1, Type(vt::kVoid),
                                       {Param("P", Type(vt::kByRefFlag, "Point")), Param("N", Type(0x4003))})),
            "Sub Move(P As Point, N As Long)");
  EXPECT_EQ(MemberDeclaration(Function("Caption", 2, Type(vt::kBstr))), "Property Get Caption() As String");
  EXPECT_EQ(MemberDeclaration(Function("Font", 8, Type(vt::kVoid), {Param("", Type(0, "Font"))})),
            "Property Set Font(ByVal  As Font)");
  EXPECT_EQ(MemberDeclaration(Function("_B_str_Mid", 1, Type(vt::kBstr))), "Function Mid$() As String");
  EXPECT_EQ(MemberDeclaration(Function("_B_var_Mid", 1, Type(vt::kVariant))), "Function Mid() As Variant");
  EXPECT_EQ(MemberDeclaration(Function("_Other", 1, Type(vt::kVoid))), "Sub _Other()");
}

TEST(MemberDeclaration, LetWritesItsValueAsRhsWithTwoBlanksWhenAlone) {
  EXPECT_EQ(MemberDeclaration(Function("Value", 4, Type(vt::kVoid), {Param("v", Type(vt::kI4))})),
            "Property Let Value(RHS  As Long)");
  EXPECT_EQ(MemberDeclaration(Function("Item", 4, Type(vt::kVoid),
                                       {Param("Index", Type(vt::kI4)), Param("", Type(vt::kVariant))})),
            "Property Let Item(ByVal Index As Long, RHS As Variant)");
}

TEST(MemberDeclaration, ConstIsCutFromTheWholeTextOnlyForInvokeKindZero) {
  EXPECT_EQ(MemberDeclaration(Function("MaxConstant", 0, Type(vt::kI4))), " Maxant()");
  EXPECT_EQ(MemberDeclaration(Function("ConstX", 1, Type(vt::kVoid))), "Sub ConstX()");
}

TEST(MemberDeclaration, OptionalAndDefaultValuesOfEveryKind) {
  auto withDefault = [](platform::TlbType type, platform::TlbValue value) {
    platform::TlbParam p = Param("x", type);
    p.hasDefault = true;
    p.defaultValue = std::move(value);
    return MemberDeclaration(Function("F", 1, Type(vt::kVoid), {p}));
  };
  auto v = [](uint16_t type, int64_t integer, double real = 0, std::string text = {}) {
    return platform::TlbValue{type, integer, real, std::move(text)};
  };
  EXPECT_EQ(withDefault(Type(vt::kI4), v(vt::kI4, -5)), "Sub F(Optional ByVal x As Long = -5)");
  EXPECT_EQ(withDefault(Type(0x4000 | vt::kI4), v(vt::kI4, 7)), "Sub F(Optional x As Long = 7)");
  EXPECT_EQ(withDefault(Type(vt::kBool), v(vt::kBool, -1)), "Sub F(Optional ByVal x As Boolean = True)");
  EXPECT_EQ(withDefault(Type(vt::kBool), v(vt::kBool, 0)), "Sub F(Optional ByVal x As Boolean = False)");
  EXPECT_EQ(withDefault(Type(vt::kDispatch), v(vt::kDispatch, 0)), "Sub F(Optional ByVal x As Object = Nothing)");
  EXPECT_EQ(withDefault(Type(vt::kVariant), v(vt::kEmpty, 0)), "Sub F(Optional ByVal x As Variant = )");

  const std::pair<platform::TlbValue, const char*> values[] = {
      {v(vt::kUI4, 4294967295), "4294967295"},
      {v(vt::kR4, 0, 0.1), "0.1"},
      {v(vt::kR4, 0, 1e20), "1E+20"},
      {v(vt::kR8, 0, 0.1), "0.1"},
      {v(vt::kR8, 0, 1.0 / 3), "0.333333333333333"},
      {v(vt::kCy, 12500), "1.25"},
      {v(vt::kCy, -50000), "-5"},
      {v(vt::kDate, 0, 36526), "1/1/2000"},
      {v(vt::kDate, 0, 36526.75), "1/1/2000 6:00:00 PM"},
      {v(vt::kDate, 0, 36526 + 30.0 / 86400), "1/1/2000 12:00:30 AM"},
      {v(vt::kError, 0x80020004), "-2147352572"},
      {v(vt::kNull, 0), ""},
      {v(vt::kBstr, 0, 0, "it's"), "\"it's\""},
  };
  for (const auto& [value, text] : values) EXPECT_EQ(DefaultValueText(value), text) << text;

  platform::TlbParam optional = Param("o", Type(vt::kVariant));
  optional.optional = true;
  EXPECT_EQ(MemberDeclaration(Function("G", 1, Type(vt::kVoid), {Param("a", Type(vt::kI2)), optional})),
            "Sub G(ByVal a As Integer, Optional ByVal o As Variant)");
}

TEST(StringLiteral, PrintableRunsAndCharacterCodes) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "\"\""},
      {"abc", "\"abc\""},
      {"\t", "Chr$(9) "},
      {"a\x01" "b", "\"a\" & Chr$(1) & \"b\""},
      {"\t\n", "Chr$(9) & Chr$(10) "},
      {"say \"hi\"", "\"say \" & Chr$(34) & \"hi\" & Chr$(34) "},
      {"caf\xC3\xA9", "\"caf\" & Chr$(233) "},
      {"\xF0\x9F\x98\x80", "Chr$(55357) & Chr$(56832) "},
  };
  for (const auto& [text, literal] : cases) EXPECT_EQ(sfncParseForNonPrintable(text), literal) << literal;
}

TEST(StripScope, KeepsTheTextAfterTheScopeWordWithoutComment) {
  EXPECT_EQ(sfncStripScopeDefAndHelp("Public Property Get Caption() As String 'The caption", "Property"),
            "Get Caption() As String");
  EXPECT_EQ(sfncStripScopeDefAndHelp("Public PROPERTY Let Tag(RHS  As String)", "Property"), "Let Tag(RHS  As String)");
  // A quote inside a default string is taken for a comment as well.
  EXPECT_EQ(sfncStripScopeDefAndHelp("Public Property Get P(Optional ByVal s As String = \"it's\") As Long",
                                     "Property"),
            "Get P(Optional ByVal s As String = \"it");
}

}  // namespace
}  // namespace sentrune
