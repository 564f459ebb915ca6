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

// A library with one interface, IThing, that has the given functions.
platform::TlbLibrary ThingLibrary(std::vector<platform::TlbMember> functions) {
  platform::TlbLibrary lib = Library("L", "{00000000-0000-0000-0000-0000000000AA}");
  lib.types.push_back(TypeInfo("IThing", "interface", "{00000000-0000-0000-0000-0000000000AB}"));
  lib.types[0].functions = std::move(functions);
  return lib;
}

platform::TlbType Imported(platform::TlbType type, platform::TlbImport origin) {
  type.imported = std::make_shared<platform::TlbImport>(std::move(origin));
  return type;
}

TEST(TypeLibIdl, RefusesWhatIdlCannotSayOrWidlCannotStoreAndSaysWhere) {
  platform::TlbParam date = Param("When", Type(vt::kDate));
  date.hasDefault = true;
  date.defaultValue = {vt::kDate, 0, 0, {}};
  const platform::TlbType font = Imported(Type(0, "Font"), {"stdole2.tlb", {}, "dispatch", {}, -1});
  const std::pair<platform::TlbMember, const char*> cases[] = {
      {Function("Owner", 2, Type(vt::kUserDefined)),
       "IThing.Owner uses a type IDL cannot name (variant type 29, unresolved)"},
      {Function("At", 1, Type(vt::kVoid), {date}),
       "IThing.At gives When a default widl cannot store (12/30/1899, variant type 7)"},
      {Function("Log", 1, Type(vt::kVoid), {Param("", Type(vt::kI4))}),
       "IThing.Log has parameter 1 without a name, which widl cannot store"},
      {Function("Face", 2, Imported(Type(vt::kUserDefined), {"", "{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}", "", {}, 3})),
       "IThing.Face uses Imported__3, a type of another library that does not say which"},
      {Function("Font", 2, font), "IThing.Font uses Font of stdole2.tlb, a name the library gives a type of its own"},
  };
  for (const auto& [member, message] : cases) {
    platform::TlbLibrary lib = ThingLibrary({member});
    lib.types.push_back(TypeInfo("Font", "interface"));
    const rt::Result<std::string> idl = TypeLibIdl(lib);
    EXPECT_EQ(idl.ok() ? "written" : idl.error().description, message);
  }
}

// stdole's types come from stdole2.tlb whatever the library calls that file;
// an unnamed type from elsewhere gets a name made of where it is.
TEST(TypeLibIdl, ImportsEachTypeFromTheFileOfItsLibrary) {
  const platform::TlbImport stdole{"STDOLE2.TLB", "{00020430-0000-0000-C000-000000000046}", "dispatch", {}, -1};
  const platform::TlbImport other{"C:\\Shared\\Other.tlb", "{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}", {}, {}, 7};
  const rt::Result<std::string> idl = TypeLibIdl(ThingLibrary({Function(
      "Use", 1, Type(vt::kVoid), {Param("F", Imported(Type(0, "Font"), stdole)),
                                  Param("O", Imported(Type(vt::kByRefFlag | vt::kUserDefined), other))})}));
  ASSERT_TRUE(idl.ok()) << idl.error().description;
  for (const char* text : {"importlib(\"stdole2.tlb\");\n    importlib(\"C:\\\\Shared\\\\Other.tlb\");",
                           "\ndispinterface Font;", "\ntypedef [public] long Imported_C__Shared_Other_tlb_7;",
                           "void Use([in] Font* F, [in, out] Imported_C__Shared_Other_tlb_7* O);"})
    EXPECT_NE(idl->find(text), std::string::npos) << text << "\n" << *idl;
}

}  // namespace
}  // namespace sentrune
