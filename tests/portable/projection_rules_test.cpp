// Projection rules on stored libraries built by hand: shapes that neither
// fixture compiler writes (alias cycles, imported defaults, interface-kind
// duals as SLTG stores them, wide enum values).
#include <gtest/gtest.h>

#include "platform/portable/typelib_projection.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using platform::TlbType;

class Library {
 public:
  int32_t Desc(uint16_t code, int32_t element = -1) {
    raw.typeDescs.push_back(RawTypeDesc{code, element, {}});
    return Last();
  }
  int32_t Local(int32_t index) {
    raw.typeDescs.push_back(RawTypeDesc{vt::kUserDefined, -1, {RawRef::Kind::kLocal, index, "", {}, ""}});
    return Last();
  }
  int32_t Imported(std::string name, std::optional<TypeKind> kind) {
    raw.typeDescs.push_back(
        RawTypeDesc{vt::kUserDefined, -1, {RawRef::Kind::kImported, -1, std::move(name), kind, ""}});
    return Last();
  }
  RawTypeInfo& Add(std::string name, TypeKind kind) {
    raw.types.push_back(RawTypeInfo{});
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
  TlbType ParamType(int32_t type) {
    RawTypeInfo& holder = Add("IHolder", TypeKind::kInterface);
    holder.funcs.push_back(TakingA(type));
    const platform::TlbLibrary projected = ProjectLibrary(raw);
    raw.types.pop_back();
    return projected.types.back().functions.at(0).params.at(0).type;
  }

  RawLibrary raw;

 private:
  int32_t Last() const { return static_cast<int32_t>(raw.typeDescs.size() - 1); }
};

TEST(ProjectionRules, UnresolvableTypesGiveCode29WithoutAName) {
  Library lib;
  // typedef Decimal Decimal: the alias's target is the alias itself.
  lib.Add("Decimal", TypeKind::kAlias).aliasType = 0;
  ASSERT_EQ(lib.Local(0), 0);
  EXPECT_EQ(lib.ParamType(0), (TlbType{vt::kUserDefined, ""}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, 0)), (TlbType{vt::kByRefFlag | vt::kUserDefined, ""}));

  EXPECT_EQ(lib.ParamType(lib.Local(99)), (TlbType{vt::kUserDefined, ""}));
  EXPECT_EQ(lib.ParamType(12345), (TlbType{vt::kUserDefined, ""}));
  EXPECT_EQ(lib.ParamType(lib.Imported("", TypeKind::kInterface)), (TlbType{vt::kUserDefined, ""}));
  EXPECT_EQ(lib.ParamType(lib.Imported("NotStdole", TypeKind::kAlias)), (TlbType{vt::kUserDefined, ""}));
  // Imported types that are known keep their names; pointers to them are the
  // object reference.
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Imported("Recordset", TypeKind::kDispatch))),
            (TlbType{0, "Recordset"}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Imported("IFontDisp", TypeKind::kAlias))),
            (TlbType{0, "Font"}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Imported("OLE_COLOR", TypeKind::kAlias))),
            (TlbType{vt::kByRefFlag | vt::kUI4, ""}));
}

TEST(ProjectionRules, PointerLevelsAndAliasesOfObjects) {
  Library lib;
  lib.Add("IThing", TypeKind::kInterface);
  lib.Add("ThingAlias", TypeKind::kAlias).aliasType = lib.Local(0);
  lib.Add("Point", TypeKind::kRecord);
  const int32_t thing = lib.Local(0);
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Desc(vt::kPtr, lib.Desc(vt::kI4)))),
            (TlbType{vt::kByRefFlag | vt::kI4, ""}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Desc(vt::kPtr, thing))), (TlbType{vt::kByRefFlag, "IThing"}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Local(1))), (TlbType{0, "IThing"}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kPtr, lib.Local(2))), (TlbType{vt::kByRefFlag, "Point"}));
  EXPECT_EQ(lib.ParamType(lib.Desc(vt::kCArray, lib.Local(2))), (TlbType{vt::kArrayFlag, "Point"}));
}

TEST(ProjectionRules, LinkPairTakesTheFirstFlaggedInterfaceOnly) {
  Library lib;
  lib.Add("_A", TypeKind::kDispatch);
  lib.Add("_B", TypeKind::kDispatch);
  const RawRef a{RawRef::Kind::kLocal, 0, "", {}, ""};
  const RawRef b{RawRef::Kind::kLocal, 1, "", {}, ""};
  const RawRef imported{RawRef::Kind::kImported, -1, "IDispatch", TypeKind::kInterface, ""};
  lib.Add("Imported", TypeKind::kCoclass).impls = {{imported, 1}, {a, 1}, {b, 3}};
  lib.Add("Unflagged", TypeKind::kCoclass).impls = {{a, 0}, {b, 2}};
  lib.Add("Restricted", TypeKind::kCoclass).impls = {{a, 0}, {b, 5}, {a, 1}, {a, 7}, {b, 3}};
  const platform::TlbLibrary projected = ProjectLibrary(lib.raw);
  auto pair = [&](size_t i) {
    return std::make_pair(projected.types[i].defaultInterface, projected.types[i].defaultSource);
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
  RawFunc get = Library::TakingA(lib.Desc(vt::kPtr, lib.Desc(vt::kBstr)), 6);
  get.name = "G";
  get.params[0].flags = 0x2 | 0x8;
  get.returnType = hresult;
  dual.funcs.push_back(get);
  // The bases point at each other: the chain stops instead of looping.
  lib.raw.types[0].impls = {{{RawRef::Kind::kLocal, 1, "", {}, ""}, 0}};
  lib.raw.types[1].impls = {{{RawRef::Kind::kLocal, 0, "", {}, ""}, 0}};

  const platform::TlbLibrary projected = ProjectLibrary(lib.raw);
  const platform::TlbTypeInfo& view = projected.types[1];
  EXPECT_EQ(view.kind, "dispatch");
  EXPECT_EQ(view.flags, 0x1040u);
  ASSERT_EQ(view.functions.size(), 9u);
  EXPECT_EQ(view.functions[7].name, "F");
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
    base.kind = TypeKind::kInterface;
    base.funcs.push_back(Library::TakingA(lib.Desc(vt::kBstr), 5));
    base.funcs.back().helpString = "help text longer than a short string";
    base.funcs.back().params[0].name = "parameterWithALongName";
    base.funcs.back().params[0].defaultValue = platform::TlbValue{vt::kBstr, 0, 0, "a default long enough to allocate"};
    RawTypeInfo dual;
    dual.name = "IDual";
    dual.kind = TypeKind::kDispatch;
    dual.flags = 0x1140;
    dual.impls = {{{RawRef::Kind::kLocal, baseFirst ? 0 : 1, "", {}, ""}, 0}};
    lib.raw.types = baseFirst ? std::vector<RawTypeInfo>{base, dual} : std::vector<RawTypeInfo>{dual, base};

    const platform::TlbLibrary projected = ProjectLibrary(std::move(lib.raw));
    const platform::TlbMember& own = projected.types[baseFirst ? 0 : 1].functions.at(0);
    const platform::TlbMember& repeated = projected.types[baseFirst ? 1 : 0].functions.at(7);
    for (const platform::TlbMember* member : {&own, &repeated}) {
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
    if (i > 0) dual.impls = {{{RawRef::Kind::kLocal, i - 1, "", {}, ""}, 0}};
    for (int32_t f = 0; f < 50; ++f) {
      dual.funcs.push_back(Library::TakingA(hresult, i * 100 + f));
    }
  }
  const platform::TlbLibrary projected = ProjectLibrary(lib.raw);
  size_t total = 0;
  for (const auto& type : projected.types) total += type.functions.size();
  EXPECT_LT(total, 200000u);
  // Short chains are whole.
  EXPECT_EQ(projected.types[2].functions.size(), 7u + 3 * 50);
}

TEST(ProjectionRules, EnumValuesAreCutTo32Bits) {
  Library lib;
  RawTypeInfo& colors = lib.Add("Colors", TypeKind::kEnum);
  for (int64_t value : {int64_t{0xFFFFFFFF}, int64_t{0x100000005}, int64_t{-7}}) {
    RawVar var;
    var.name = "v" + std::to_string(colors.vars.size());
    var.varKind = 2;
    var.value = platform::TlbValue{vt::kI8, value, 0, ""};
    colors.vars.push_back(var);
  }
  const platform::TlbLibrary projected = ProjectLibrary(lib.raw);
  const auto& variables = projected.types[0].variables;
  ASSERT_EQ(variables.size(), 3u);
  EXPECT_EQ(variables[0].value->integer, -1);
  EXPECT_EQ(variables[1].value->integer, 5);
  EXPECT_EQ(variables[2].value->integer, -7);
}

}  // namespace
}  // namespace sentrune::portable
