#include "portable/sltg_test_support.h"

#include <gtest/gtest.h>

namespace sentrune::portable::testing {
namespace vt = platform::vt;

namespace {

SltgParam Param(std::string name, uint16_t flags, SltgType type, bool elsewhere = false) {
  return SltgParam{std::move(name), flags, std::move(type), elsewhere};
}

platform::TlbValue Int(uint16_t type, int64_t value) {
  platform::TlbValue v;
  v.vt = type;
  v.integer = value;
  return v;
}

SltgVar Const(int32_t id, std::string name, uint16_t type, platform::TlbValue value) {
  SltgVar var;
  var.memberId = id;
  var.name = std::move(name);
  var.varKind = 2;
  var.type = Vt(type);
  var.value = std::move(value);
  return var;
}

SltgTypeInfo Colors() {
  SltgTypeInfo type{"Colors", "Palette colours of a widget", "", TypeKind::kEnum, 0, 0, {}, {}, {}, {}};
  type.vars = {Const(0, "clrRed", vt::kI4, Int(vt::kI4, 0)),
               Const(1, "clrGreen", vt::kI4, Int(vt::kI4, 0xFFFF)),
               Const(2, "clrHuge", vt::kI4, Int(vt::kI4, 100000)),
               Const(3, "clrNone", vt::kI4, Int(vt::kI4, -1))};
  type.vars[1].help = "The green one";
  return type;
}

SltgTypeInfo Point() {
  SltgTypeInfo type{"Point", "", "", TypeKind::kRecord, 0, 0, {}, {}, {}, {}};
  type.vars = {SltgVar{0, "x", false, "", 0, Vt(vt::kI4), {}, {}, false},
               SltgVar{0, "y", false, "Vertical position", 0, Vt(vt::kI4), {}, {}, false},
               SltgVar{0, "tags", false, "", 0, SafeArray(Vt(vt::kBstr)), {}, {}, false},
               SltgVar{0, "grid", false, "", 0, CArray(Vt(vt::kI2), {3, 4}), {}, {}, false}};
  return type;
}

SltgFunc Method(int32_t id, std::string name, uint8_t invokeKind, uint16_t slot,
                std::vector<SltgParam> params) {
  SltgFunc func;
  func.memberId = id;
  func.name = std::move(name);
  func.invokeKind = invokeKind;
  func.vtableOffset = slot;
  func.params = std::move(params);
  return func;
}

SltgTypeInfo IWidget() {
  SltgTypeInfo type{"IWidget", "A widget", "{6B29FC40-CA47-1067-B31D-00DD010662DA}",
                    TypeKind::kInterface, 0x1040, 56, {}, {}, {}, {}};
  type.impls = {SltgImpl{SltgRef{-1, 0, 4}, 0}};
  auto name = Method(0, "Name", 2, 28, {Param("pName", 2 | 8, Ptr(Vt(vt::kBstr), true))});
  name.help = "The name of the widget";
  auto setName = Method(0, "Name", 4, 32, {Param("", 1, Vt(vt::kBstr))});
  auto resize = Method(1, "Resize", 1, 36,
                       {Param("width", 1, Vt(vt::kI4)), Param("height", 1, Vt(vt::kI4), true),
                        Param("scale", 1, Vt(vt::kVariant))});
  resize.optionalCount = 1;
  resize.flags = 0x40;
  auto items = Method(2, "Items", 2, 40, {Param("pItems", 2 | 8, Ptr(SafeArray(Vt(vt::kBstr))))});
  auto parent = Method(3, "Parent", 2, 44,
                       {Param("ppParent", 2 | 8, Ptr(Ptr(Local(kIWidget)), true))});
  auto log = Method(4, "Log", 1, 48,
                    {Param("fmt", 1, Vt(vt::kBstr)), Param("args", 1, SafeArray(Vt(vt::kVariant)))});
  log.optionalCount = -1;
  auto locale = Method(5, "Locale", 1, 52,
                       {Param("_lcid", 1 | 4, Vt(vt::kI4)), Param("", 2, Ptr(Vt(vt::kI4)), true)});
  type.funcs = {name, setName, resize, items, parent, log, locale};
  return type;
}

SltgTypeInfo Widget() {
  SltgTypeInfo type{"Widget", "The widget", "{6B29FC41-CA47-1067-B31D-00DD010662DA}",
                    TypeKind::kCoclass, 0x2, 0, {}, {}, {}, {}};
  type.impls = {SltgImpl{SltgRef{kIWidget, -1, 0}, 1}, SltgImpl{SltgRef{kIWidgetEvents, -1, 0}, 3},
                SltgImpl{SltgRef{-1, 1, 7}, 0}};
  return type;
}

SltgTypeInfo IWidgetEvents() {
  SltgTypeInfo type{"IWidgetEvents", "", "{6B29FC42-CA47-1067-B31D-00DD010662DA}",
                    TypeKind::kDispatch, 0x1000, 28, {}, {}, {}, {}};
  type.impls = {SltgImpl{SltgRef{-1, 0, 4}, 0}};
  auto clicked = Method(1, "Clicked", 1, 0,
                        {Param("x", 1, Vt(vt::kI4), true), Param("button", 1, Local(kColors))});
  clicked.funcKind = 4;
  clicked.ret = Vt(vt::kVoid);
  type.funcs = {clicked};
  type.vars = {SltgVar{7, "Enabled", false, "Whether clicks count", 3, Vt(vt::kBool), {}, {}, false}};
  return type;
}

SltgTypeInfo Constants() {
  SltgTypeInfo type{"Constants", "", "", TypeKind::kModule, 0, 0, {}, {}, {}, {}};
  platform::TlbValue pi;
  pi.vt = vt::kR8;
  pi.real = 3.14159;
  platform::TlbValue title;
  title.vt = vt::kBstr;
  title.text = "Caf\xC3\xA9 \"open\"";
  type.vars = {Const(0, "Pi", vt::kR8, pi), Const(1, "Title", vt::kBstr, title),
               Const(2, "Mask", vt::kUI4, Int(vt::kUI4, 0xF0000000)),
               Const(3, "Small", vt::kI2, Int(vt::kI2, -2)),
               Const(4, "Yes", vt::kBool, Int(vt::kBool, -1))};
  type.vars.push_back(type.vars.back());
  type.vars.back().memberId = 5;
  type.vars.back().sameNameAsPrevious = true;
  type.vars.back().readOnly = true;
  type.vars.back().flags = 0x40;
  auto beep = Method(0x60000000, "Beep", 1, 0, {Param("times", 1, Vt(vt::kI2))});
  beep.funcKind = 3;
  beep.ret = Vt(vt::kVoid);
  type.funcs = {beep};
  return type;
}

}  // namespace

SltgLibrary SampleLibrary() {
  SltgLibrary library;
  library.name = "Widgets";
  library.help = "Widget library \xC2\xA9 2001";
  library.guid = "{C6A8E0F2-1B3D-4F5A-9C7E-8D0B2A4C6E81}";
  library.major = 2;
  library.minor = 5;
  library.imports = {SltgImport{kStdoleGuid, 2, 0, 0, "stdole2.tlb"},
                     SltgImport{kOtherLibraryGuid, 1, 3, 0x409, "C:\\Shared\\Other.tlb"}};
  SltgTypeInfo handle{"Handle", "", "", TypeKind::kAlias, 0, 0, {}, {}, {}, Vt(vt::kI4)};
  SltgTypeInfo widgetRef{"WidgetRef", "", "", TypeKind::kAlias, 0, 0, {}, {}, {}, Ptr(Local(kIWidget))};
  library.types = {Colors(), Point(), IWidget(), Widget(), IWidgetEvents(), handle, widgetRef,
                   Constants()};
  return library;
}

std::string Describe(const SltgType& type) {
  switch (type.vt) {
    case vt::kPtr: return "PTR(" + Describe(type.element.at(0)) + ")";
    case vt::kSafeArray: return "SAFEARRAY(" + Describe(type.element.at(0)) + ")";
    case vt::kCArray: return "CARRAY(" + Describe(type.element.at(0)) + ")";
    case vt::kUserDefined:
      return type.ref.local >= 0 ? "USERDEFINED(local " + std::to_string(type.ref.local) + ")"
                                 : "USERDEFINED(import)";
    default: return std::to_string(type.vt);
  }
}

std::string Describe(const RawLibrary& raw, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= raw.typeDescs.size()) return "<bad index>";
  const RawTypeDesc& desc = raw.typeDescs[static_cast<size_t>(index)];
  switch (desc.vt) {
    case vt::kPtr: return "PTR(" + Describe(raw, desc.element) + ")";
    case vt::kSafeArray: return "SAFEARRAY(" + Describe(raw, desc.element) + ")";
    case vt::kCArray: return "CARRAY(" + Describe(raw, desc.element) + ")";
    case vt::kUserDefined:
      switch (desc.ref.kind) {
        case RawRef::Kind::kLocal: return "USERDEFINED(local " + std::to_string(desc.ref.localIndex) + ")";
        case RawRef::Kind::kImported: return "USERDEFINED(import)";
        case RawRef::Kind::kNone: return "USERDEFINED(none)";
      }
      return "";
    default: return std::to_string(desc.vt);
  }
}

namespace {

std::string DescribeRef(const SltgRef& ref) {
  return ref.local >= 0 ? "local " + std::to_string(ref.local) : "import";
}
std::string DescribeRef(const RawRef& ref) {
  switch (ref.kind) {
    case RawRef::Kind::kLocal: return "local " + std::to_string(ref.localIndex);
    case RawRef::Kind::kImported: return "import";
    case RawRef::Kind::kNone: return "none";
  }
  return "";
}

void ExpectFunc(const SltgFunc& want, const RawFunc& got, const RawLibrary& raw) {
  EXPECT_EQ(got.memberId, want.memberId);
  EXPECT_EQ(got.name, want.name);
  EXPECT_EQ(got.helpString, want.help);
  EXPECT_EQ(got.funcKind, want.funcKind);
  EXPECT_EQ(got.invokeKind, want.invokeKind);
  EXPECT_EQ(got.flags, want.flags.value_or(0));
  EXPECT_EQ(got.vtableOffset, want.funcKind == 4 ? 0 : want.vtableOffset);
  EXPECT_EQ(got.optionalCount, want.optionalCount);
  EXPECT_EQ(Describe(raw, got.returnType), Describe(want.ret));
  ASSERT_EQ(got.params.size(), want.params.size());
  const int count = static_cast<int>(want.params.size());
  for (int i = 0; i < count; ++i) {
    SCOPED_TRACE("parameter " + std::to_string(i));
    const SltgParam& p = want.params[static_cast<size_t>(i)];
    const bool optional = want.optionalCount > 0 && count - i <= want.optionalCount;
    EXPECT_EQ(got.params[static_cast<size_t>(i)].name, p.name);
    EXPECT_EQ(got.params[static_cast<size_t>(i)].flags, p.flags | (optional ? 0x10 : 0));
    EXPECT_EQ(Describe(raw, got.params[static_cast<size_t>(i)].type), Describe(p.type));
    EXPECT_FALSE(got.params[static_cast<size_t>(i)].defaultValue.has_value());
  }
}

void ExpectVar(const SltgVar& want, const std::string& wantName, const RawVar& got,
               const RawLibrary& raw) {
  EXPECT_EQ(got.memberId, want.memberId);
  EXPECT_EQ(got.name, wantName);
  EXPECT_EQ(got.helpString, want.help);
  EXPECT_EQ(got.varKind, want.varKind);
  EXPECT_EQ(got.flags, want.flags.value_or(0) | (want.readOnly ? 1 : 0));
  EXPECT_EQ(Describe(raw, got.type), Describe(want.type));
  EXPECT_EQ(got.value, want.value);
}

void ExpectType(const SltgTypeInfo& want, const RawTypeInfo& got, const RawLibrary& raw,
                uint8_t pointerSize) {
  EXPECT_EQ(got.name, want.name);
  EXPECT_EQ(got.helpString, want.help);
  EXPECT_EQ(got.guid, want.guid);
  EXPECT_EQ(got.kind, (want.flags & 0x40) ? TypeKind::kDispatch : want.kind);
  EXPECT_EQ(got.flags, want.flags);
  EXPECT_EQ(got.vtableSize, want.vtableSize);
  EXPECT_EQ(got.pointerSize, pointerSize);
  if (want.alias) {
    EXPECT_EQ(Describe(raw, got.aliasType), Describe(*want.alias));
  } else {
    EXPECT_EQ(got.aliasType, -1);
  }
  ASSERT_EQ(got.impls.size(), want.impls.size());
  for (size_t i = 0; i < want.impls.size(); ++i) {
    EXPECT_EQ(DescribeRef(got.impls[i].ref), DescribeRef(want.impls[i].ref)) << "impl " << i;
    EXPECT_EQ(got.impls[i].flags, want.impls[i].flags) << "impl " << i;
  }
  ASSERT_EQ(got.funcs.size(), want.funcs.size());
  for (size_t i = 0; i < want.funcs.size(); ++i) {
    SCOPED_TRACE("function " + want.funcs[i].name);
    ExpectFunc(want.funcs[i], got.funcs[i], raw);
  }
  ASSERT_EQ(got.vars.size(), want.vars.size());
  std::string name;
  for (size_t i = 0; i < want.vars.size(); ++i) {
    if (!want.vars[i].sameNameAsPrevious) name = want.vars[i].name;
    SCOPED_TRACE("variable " + std::to_string(i) + " " + name);
    ExpectVar(want.vars[i], name, got.vars[i], raw);
  }
}

}  // namespace

void ExpectDecodedAsDescribed(const SltgLibrary& described, const RawLibrary& decoded) {
  EXPECT_EQ(decoded.name, described.name);
  EXPECT_EQ(decoded.helpString, described.help);
  EXPECT_EQ(decoded.guid, described.guid);
  EXPECT_EQ(decoded.majorVersion, described.major);
  EXPECT_EQ(decoded.minorVersion, described.minor);
  ASSERT_EQ(decoded.types.size(), described.types.size());
  const uint8_t pointerSize = described.sysKind == 3 ? 8 : 4;
  for (size_t i = 0; i < described.types.size(); ++i) {
    SCOPED_TRACE("type info " + described.types[i].name);
    ExpectType(described.types[i], decoded.types[i], decoded, pointerSize);
  }
}

}  // namespace sentrune::portable::testing
