// The projection of stored libraries into the view the type library API
// shows: on the committed fixtures of both formats, and on libraries built
// by hand in shapes no compiler writes (alias cycles, imported defaults,
// interface-kind duals as SLTG stores them, wide enum values).
#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "tlb_test_files.h"
#include "platform/tlb/sltg_reader.h"
#include "platform/tlb/typelib_projection.h"
#include "platform/tlb/typelib_source_portable.h"
#include "support/expected_file.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using platform::TlbLibrary;
using platform::TlbMember;
using platform::TlbType;
using testing::DecodeFixture;
using testing::Facts;

// A projected type as text: the VT's or the user type's name, then [] for an
// array and & by reference.
std::string Text(const TlbType& type) {
  static const std::map<int, const char*> kNames = {{0, ""},          {2, "I2"},        {3, "I4"},    {5, "R8"},
                                                    {8, "BSTR"},      {9, "IDispatch"}, {11, "Bool"}, {12, "Variant"},
                                                    {13, "IUnknown"}, {19, "UI4"},      {24, "void"}, {25, "HRESULT"}};
  const int base = type.code & 0xFFF;
  const std::string name = kNames.count(base) ? kNames.at(base) : "#" + std::to_string(base);
  return type.userTypeName + name + (type.code & vt::kArrayFlag ? "[]" : "") + (type.code & vt::kByRefFlag ? "&" : "");
}
std::string Text(const platform::TlbValue& value) {
  return std::to_string(value.vt) + ":" + std::to_string(value.integer) +
         (value.real != 0 ? "/" + std::to_string(value.real) : "") + value.text;
}
// "I4(BSTR Key, I4 Start opt=3:1)": the return type and the parameters.
std::string Signature(const TlbMember& member) {
  std::string text = Text(member.type) + "(";
  for (const auto& param : member.params) {
    text += (&param == &member.params[0] ? "" : ", ") + Text(param.type) + " " + param.name +
            (param.optional ? " opt" : "") + (param.hasDefault ? "=" + Text(param.defaultValue) : "");
  }
  return text + ")";
}
// One line per library, type and member with everything the model reader
// reads, in the order stored.
std::string Lines(const TlbLibrary& library) {
  std::string text = "library " + library.name + " " + library.guid + " " + library.helpString + " " +
                     std::to_string(library.majorVersion) + "." + std::to_string(library.minorVersion) + "\n";
  for (const auto& type : library.types) {
    text += "type " + type.name + " " + type.kind + " " + type.guid + " " + type.helpString + " " +
            std::to_string(type.flags) + " " + std::to_string(type.defaultInterface) + " " +
            std::to_string(type.defaultSource) + "\n";
    for (const auto& member : type.functions) {
      text += " " + member.name + " " + std::to_string(member.memberId) + " " + std::to_string(member.invokeKind) +
              " " + std::to_string(member.flags) + " " + Signature(member) + " " + member.helpString + "\n";
    }
    for (const auto& member : type.variables) {
      text += " " + member.name + " " + std::to_string(member.memberId) + " " + Text(member.type) + " " +
              (member.value ? Text(*member.value) : "") + " " + member.helpString + "\n";
    }
  }
  return text;
}

// What the readers store and the projection shows for the compiled fixtures
// and the SLTG sample, against committed copies checked by hand against the
// IDL and what the system's type library API shows for the same libraries.
// The 64-bit and PE-embedded copies project alike; the SLTG variant (the long
// name table header, the block directory reversed) stores the same.
TEST(FixtureProjection, FixturesMatchTheirCommittedRenderings) {
  const std::tuple<const char*, testing::Decoder, const char*> fixtures[] = {
      {"typelib/widgets.tlb", ReadMsft, "widgets"},
      {"typelib/shapes.tlb", ReadMsft, "shapes"},
      {"sltg/sample.tlb", ReadSltg, "sltg-sample"}};
  for (const auto& [name, decode, copy] : fixtures) {
    const RawLibrary raw = DecodeFixture(name, decode);
    std::string text;
    for (const std::string& line : Facts(raw)) text += line + "\n";
    testing::ExpectMatchesFile(text + "projected:\n" + Lines(ProjectLibrary(raw)),
                               std::string("typelib/") + copy + ".decoded.txt");
  }
  EXPECT_EQ(Facts(DecodeFixture("sltg/sample-variant.tlb", ReadSltg)),
            Facts(DecodeFixture("sltg/sample.tlb", ReadSltg)));
  const std::string widgets = Lines(ProjectLibrary(DecodeFixture("typelib/widgets.tlb")));
  const testing::Decoder firstResource = [](std::span<const uint8_t> bytes) { return ReadTypeLibBytes(bytes, 1); };
  for (const char* name : {"typelib/widgets64.tlb", "typelib/widgets.dll"})
    EXPECT_EQ(Lines(ProjectLibrary(DecodeFixture(name, firstResource))), widgets) << name;
}

// A stored library built by hand.
class Library {
 public:
  int32_t Desc(uint16_t code, int32_t element = -1) { return Push({code, element, {}}); }
  int32_t Local(int32_t index) { return Push({vt::kUserDefined, -1, LocalRef(index)}); }
  int32_t Imported(std::string name, std::optional<TypeKind> kind) {
    return Push({vt::kUserDefined, -1, {RawRef::Kind::kImported, -1, std::move(name), kind, ""}});
  }
  static RawRef LocalRef(int32_t index) { return {RawRef::Kind::kLocal, index, "", {}, ""}; }
  RawTypeInfo& Add(std::string name, TypeKind kind) {
    raw.types.emplace_back();
    raw.types.back().name = std::move(name);
    raw.types.back().kind = kind;
    return raw.types.back();
  }
  // A function "F" whose single parameter has the given type.
  static RawFunc TakingA(int32_t type, int32_t memberId = 1) {
    RawFunc func;
    func.memberId = memberId;
    func.name = "F";
    func.params.push_back(RawParam{"p", 1, type, {}});
    return func;
  }
  // The projected type of a parameter of the given type.
  TlbType ParamType(int32_t type) {
    Add("IHolder", TypeKind::kInterface).funcs.push_back(TakingA(type));
    const TlbLibrary projected = ProjectLibrary(raw);
    raw.types.pop_back();
    return projected.types.back().functions.at(0).params.at(0).type;
  }

  RawLibrary raw;

 private:
  int32_t Push(RawTypeDesc desc) {
    raw.typeDescs.push_back(std::move(desc));
    return static_cast<int32_t>(raw.typeDescs.size() - 1);
  }
};

TEST(ProjectionRules, ParameterTypesThroughPointersAliasesAndBrokenReferences) {
  Library lib;
  lib.Add("Decimal", TypeKind::kAlias).aliasType = 0;  // typedef Decimal Decimal
  ASSERT_EQ(lib.Local(0), 0);
  lib.Add("IThing", TypeKind::kInterface);
  lib.Add("Point", TypeKind::kRecord);
  lib.Add("ThingAlias", TypeKind::kAlias).aliasType = lib.Local(1);
  const TlbType unresolved{vt::kUserDefined, ""};
  const std::pair<int32_t, TlbType> cases[] = {
      // What cannot be resolved gives code 29 without a name.
      {0, unresolved},
      {lib.Desc(vt::kPtr, 0), {vt::kByRefFlag | vt::kUserDefined, ""}},
      {12345, unresolved},
      {lib.Imported("", TypeKind::kInterface), unresolved},
      {lib.Imported("NotStdole", TypeKind::kAlias), unresolved},
      // Known imported types keep their names; pointers to them are the object reference.
      {lib.Desc(vt::kPtr, lib.Imported("Recordset", TypeKind::kDispatch)), {0, "Recordset"}},
      {lib.Desc(vt::kPtr, lib.Imported("OLE_COLOR", TypeKind::kAlias)), {vt::kByRefFlag | vt::kUI4, ""}},
      {lib.Desc(vt::kPtr, lib.Desc(vt::kPtr, lib.Local(1))), {vt::kByRefFlag, "IThing"}},
      {lib.Desc(vt::kPtr, lib.Local(3)), {0, "IThing"}},
      {lib.Desc(vt::kCArray, lib.Local(2)), {vt::kArrayFlag, "Point"}},
  };
  for (const auto& [desc, type] : cases) EXPECT_EQ(lib.ParamType(desc), type) << desc;
}

TEST(ProjectionRules, LinkPairTakesTheFirstFlaggedInterfaceOnly) {
  Library lib;
  lib.Add("_A", TypeKind::kDispatch);
  lib.Add("_B", TypeKind::kDispatch);
  const RawRef a = Library::LocalRef(0), b = Library::LocalRef(1);
  const RawRef imported{RawRef::Kind::kImported, -1, "IDispatch", TypeKind::kInterface, ""};
  lib.Add("Imported", TypeKind::kCoclass).impls = {{imported, 1}, {a, 1}, {b, 3}};
  lib.Add("Unflagged", TypeKind::kCoclass).impls = {{a, 0}, {b, 2}};
  lib.Add("Restricted", TypeKind::kCoclass).impls = {{a, 0}, {b, 5}, {a, 1}, {a, 7}, {b, 3}};
  const TlbLibrary projected = ProjectLibrary(lib.raw);
  auto pair = [&](size_t i) {
    return std::pair(projected.types[i].defaultInterface, projected.types[i].defaultSource);
  };
  EXPECT_EQ(pair(2), std::make_pair(-1, 1));   // an import gives none, with no fallback
  EXPECT_EQ(pair(3), std::make_pair(-1, -1));  // nothing flagged default
  EXPECT_EQ(pair(4), std::make_pair(1, 0));    // restricted ignored, first of each wins
}

TEST(ProjectionRules, InterfaceKindDualsShowTheDispatchView) {
  Library lib;
  const int32_t hresult = lib.Desc(vt::kHresult);
  RawTypeInfo& base = lib.Add("IBase", TypeKind::kInterface);
  base.flags = 0x1140;
  base.funcs.push_back(Library::TakingA(lib.Desc(vt::kI4), 5));
  base.funcs.back().returnType = hresult;
  RawTypeInfo& dual = lib.Add("IDual", TypeKind::kInterface);
  dual.flags = 0x1140;
  dual.funcs.push_back(Library::TakingA(lib.Desc(vt::kPtr, lib.Desc(vt::kBstr)), 6));
  dual.funcs.back().params[0].flags = 0x2 | 0x8;
  dual.funcs.back().returnType = hresult;
  // The bases point at each other: the chain stops instead of looping.
  lib.raw.types[0].impls = {{Library::LocalRef(1), 0}};
  lib.raw.types[1].impls = {{Library::LocalRef(0), 0}};

  const platform::TlbTypeInfo view = ProjectLibrary(lib.raw).types[1];
  EXPECT_EQ(view.kind, "dispatch");
  EXPECT_EQ(view.flags, 0x1040u);
  ASSERT_EQ(view.functions.size(), 9u);
  EXPECT_EQ(view.functions[7].type.code, vt::kVoid);
  EXPECT_EQ(view.functions[8].type, (TlbType{vt::kBstr, ""}));
  EXPECT_TRUE(view.functions[8].params.empty());
}

TEST(ProjectionRules, TextsThatDualViewsRepeatSurviveTheMovingProjection) {
  // The base's texts appear in its own projection and in the dual's view,
  // whichever of the two comes first in the library.
  for (const bool baseFirst : {true, false}) {
    Library lib;
    RawTypeInfo base;
    base.name = "IBase";
    base.funcs.push_back(Library::TakingA(lib.Desc(vt::kBstr), 5));
    base.funcs.back().helpString = "help text longer than a short string";
    base.funcs.back().params[0].name = "parameterWithALongName";
    base.funcs.back().params[0].defaultValue = platform::TlbValue{vt::kBstr, 0, 0, "a default long enough to allocate"};
    RawTypeInfo dual;
    dual.name = "IDual";
    dual.kind = TypeKind::kDispatch;
    dual.flags = 0x1140;
    dual.impls = {{Library::LocalRef(baseFirst ? 0 : 1), 0}};
    lib.raw.types = baseFirst ? std::vector<RawTypeInfo>{base, dual} : std::vector<RawTypeInfo>{dual, base};

    const TlbLibrary projected = ProjectLibrary(std::move(lib.raw));
    for (const TlbMember* member : {&projected.types[baseFirst ? 0 : 1].functions.at(0),
                                    &projected.types[baseFirst ? 1 : 0].functions.at(7)}) {
      EXPECT_EQ(member->name, "F") << baseFirst;
      EXPECT_EQ(member->helpString, base.funcs[0].helpString) << baseFirst;
      EXPECT_EQ(member->params.at(0).name, "parameterWithALongName") << baseFirst;
      EXPECT_EQ(member->params.at(0).defaultValue.text, "a default long enough to allocate") << baseFirst;
    }
  }
}

TEST(ProjectionRules, LongDualChainsCannotMultiplyTheOutput) {
  // Each dual derives from the one before; in full the views would repeat
  // about a million functions.
  Library lib;
  const int32_t hresult = lib.Desc(vt::kHresult);
  for (int32_t i = 0; i < 200; ++i) {
    RawTypeInfo& dual = lib.Add("IDual" + std::to_string(i), TypeKind::kDispatch);
    dual.flags = 0x1140;
    if (i > 0) dual.impls = {{Library::LocalRef(i - 1), 0}};
    for (int32_t f = 0; f < 50; ++f) dual.funcs.push_back(Library::TakingA(hresult, i * 100 + f));
  }
  const TlbLibrary projected = ProjectLibrary(lib.raw);
  size_t total = 0;
  for (const auto& type : projected.types) total += type.functions.size();
  EXPECT_LT(total, 200000u);
  EXPECT_EQ(projected.types[2].functions.size(), 7u + 3 * 50);  // short chains are whole
}

TEST(ProjectionRules, EnumValuesAreCutTo32Bits) {
  Library lib;
  RawTypeInfo& colors = lib.Add("Colors", TypeKind::kEnum);
  for (int64_t value : {int64_t{0xFFFFFFFF}, int64_t{0x100000005}, int64_t{-7}}) {
    colors.vars.push_back(RawVar{0, "v", "", 0, 2, -1, platform::TlbValue{vt::kI8, value, 0, ""}});
  }
  std::vector<int64_t> values;
  const platform::TlbLibrary projected = ProjectLibrary(lib.raw);
  for (const TlbMember& variable : projected.types[0].variables) values.push_back(variable.value->integer);
  EXPECT_EQ(values, (std::vector<int64_t>{-1, 5, -7}));
}

// Wine's own libraries, projected as the system's loader presents them
// (checked against it under Wine by the win32 tests).
std::optional<TlbLibrary> WineLibrary(std::string_view name) {
  const auto path = testing::WineFile("x86_64", name);
  if (!path) return std::nullopt;
  auto raw = ReadTypeLibBytes(testing::ReadHostBytes(*path), 1);
  EXPECT_TRUE(raw.ok()) << name << ": " << (raw.ok() ? "" : raw.error().description);
  return raw.ok() ? std::optional(ProjectLibrary(std::move(*raw))) : std::nullopt;
}
const platform::TlbTypeInfo& TypeNamed(const TlbLibrary& library, std::string_view name, size_t skip = 0) {
  for (const auto& type : library.types) {
    if (type.name == name && skip-- == 0) return type;
  }
  ADD_FAILURE() << "no type " << name;
  static const platform::TlbTypeInfo kNone;
  return kNone;
}
const TlbMember& FunctionNamed(const platform::TlbTypeInfo& type, std::string_view name) {
  for (const auto& function : type.functions) {
    if (function.name == name) return function;
  }
  ADD_FAILURE() << "no function " << name;
  static const TlbMember kNone;
  return kNone;
}

TEST(WineLibraries, AliasesDefaultsAndRepeatedTypedefsAsTheSystemShowsThem) {
  const auto stdole = WineLibrary("stdole2.tlb");
  const auto mshtml = WineLibrary("mshtml.tlb");
  const auto animation = WineLibrary("uianimation.dll");
  if (!stdole || !mshtml || !animation) GTEST_SKIP() << "Wine's libraries are not installed";
  // An alias keeps the GUID it is stored with; one stored without has none.
  EXPECT_EQ(TypeNamed(*stdole, "OLE_COLOR").guid, "{66504301-BE0F-101A-8BBB-00AA00300CAB}");
  EXPECT_EQ(TypeNamed(*stdole, "IFontDisp").guid, "{00000000-0000-0000-0000-000000000000}");
  // widl stores the null default of an optional VARIANT* as a value of type
  // VARIANT, which no VARIANT holds by value: there is none.
  const platform::TlbParam& priority =
      FunctionNamed(TypeNamed(*mshtml, "IHTMLCSSStyleDeclaration"), "setProperty").params.at(2);
  EXPECT_EQ(priority.name, "pvarPropertyPriority");
  EXPECT_TRUE(priority.optional && priority.hasDefault);
  EXPECT_EQ(priority.defaultValue, platform::TlbValue{});
  // widl writes the typedef UI_ANIMATION_KEYFRAME (a pointer to a record it
  // names) once per use; each reference reaches its own copy by position.
  const TlbType keyframe{vt::kByRefFlag, "__WIDL_uianimation_typelib_generated_name_0000000B"};
  const TlbMember& repeat = FunctionNamed(TypeNamed(*animation, "IUIAnimationStoryboard"), "RepeatBetweenKeyframes");
  EXPECT_EQ(repeat.params.at(0).type, keyframe);
  EXPECT_EQ(repeat.params.at(1).type, keyframe);
  EXPECT_EQ(TypeNamed(*animation, "UI_ANIMATION_KEYFRAME", 6).kind, "alias");
}

}  // namespace
}  // namespace sentrune::portable
