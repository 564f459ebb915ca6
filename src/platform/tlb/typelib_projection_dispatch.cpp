#include "platform/tlb/typelib_projection_dispatch.h"

#include <algorithm>

#include "platform/tlb/typelib_projection_members.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using platform::TlbMember;
using platform::TlbParam;
using platform::TlbType;

constexpr uint32_t kFuncRestricted = 0x1;
constexpr uint16_t kTypeFlagDual = 0x40;
constexpr std::string_view kIUnknownGuid = "{00000000-0000-0000-C000-000000000046}";
constexpr std::string_view kIDispatchGuid = "{00020400-0000-0000-C000-000000000046}";

TlbParam Param(const char* name, uint16_t code, const char* userType = "") {
  TlbParam param;
  param.name = name;
  param.type = TlbType{code, userType};
  return param;
}

TlbMember Function(const char* name, int32_t memberId, uint16_t returnCode,
                   std::vector<TlbParam> params) {
  TlbMember member;
  member.name = name;
  member.memberId = memberId;
  member.invokeKind = 1;
  member.flags = kFuncRestricted;
  member.type = TlbType{returnCode, {}};
  member.params = std::move(params);
  return member;
}

// IUnknown and IDispatch as stdole declares them, in dispatch form.
std::vector<TlbMember> DispatchBaseFunctions() {
  constexpr uint16_t kByRef = vt::kByRefFlag;
  return {
      Function("QueryInterface", 0x60000000, vt::kVoid,
               {Param("riid", kByRef, "GUID"), Param("ppvObj", kByRef | vt::kVoid)}),
      Function("AddRef", 0x60000001, vt::kUI4, {}),
      Function("Release", 0x60000002, vt::kUI4, {}),
      Function("GetTypeInfoCount", 0x60010000, vt::kVoid, {Param("pctinfo", kByRef | vt::kUInt)}),
      Function("GetTypeInfo", 0x60010001, vt::kVoid,
               {Param("itinfo", vt::kUInt), Param("lcid", vt::kUI4),
                Param("pptinfo", kByRef | vt::kVoid)}),
      Function("GetIDsOfNames", 0x60010002, vt::kVoid,
               {Param("riid", kByRef, "GUID"), Param("rgszNames", kByRef | vt::kI1),
                Param("cNames", vt::kUInt), Param("lcid", vt::kUI4),
                Param("rgdispid", kByRef | vt::kI4)}),
      Function("Invoke", 0x60010003, vt::kVoid,
               {Param("dispidMember", vt::kI4), Param("riid", kByRef, "GUID"),
                Param("lcid", vt::kUI4), Param("wFlags", vt::kUI2),
                Param("pdispparams", kByRef, "DISPPARAMS"), Param("pvarResult", kByRef | vt::kVariant),
                Param("pexcepinfo", kByRef, "EXCEPINFO"), Param("puArgErr", kByRef | vt::kUInt)}),
  };
}

bool IsDispatchRoot(const RawTypeInfo& type) {
  return type.guid == kIUnknownGuid || type.guid == kIDispatchGuid;
}

}  // namespace

// The chain stops at IDispatch or IUnknown, at an import (whose functions are
// not in this file) and at anything that is neither an interface nor a dual.
std::vector<const RawTypeInfo*> BaseChain(const RawLibrary& raw, const RawTypeInfo& dual) {
  std::vector<const RawTypeInfo*> chain;
  std::vector<bool> seen(raw.types.size());
  const RawTypeInfo* current = &dual;
  while (!current->impls.empty()) {
    const RawRef& base = current->impls.front().ref;
    if (base.kind != RawRef::Kind::kLocal || base.localIndex < 0 ||
        static_cast<size_t>(base.localIndex) >= raw.types.size()) {
      break;
    }
    const RawTypeInfo& next = raw.types[static_cast<size_t>(base.localIndex)];
    const bool vtableForm = next.kind == TypeKind::kInterface ||
                            (next.kind == TypeKind::kDispatch && (next.flags & kTypeFlagDual));
    if (!vtableForm || IsDispatchRoot(next) || &next == &dual || seen[base.localIndex]) break;
    seen[base.localIndex] = true;
    chain.push_back(&next);
    current = &next;
  }
  std::reverse(chain.begin(), chain.end());
  return chain;
}

std::vector<TlbMember> DispatchView(const RawLibrary& raw, const TypeProjection& types,
                                    RawTypeInfo& dual, bool takeOwn, size_t& inheritedBudget) {
  static const std::vector<TlbMember> kBase = DispatchBaseFunctions();
  std::vector<const RawTypeInfo*> chain = BaseChain(raw, dual);
  size_t count = kBase.size() + dual.funcs.size();
  for (size_t i = 0; i < chain.size(); ++i) {
    if (chain[i]->funcs.size() > inheritedBudget) {
      chain.resize(i);
      break;
    }
    inheritedBudget -= chain[i]->funcs.size();
    count += chain[i]->funcs.size();
  }
  std::vector<TlbMember> functions;
  functions.reserve(count);
  functions.insert(functions.end(), kBase.begin(), kBase.end());
  for (const RawTypeInfo* type : chain) {
    for (const RawFunc& func : type->funcs) ProjectFunction(func, types, true, functions.emplace_back());
  }
  for (RawFunc& func : dual.funcs) {
    if (takeOwn) {
      ProjectFunction(std::move(func), types, true, functions.emplace_back());
    } else {
      ProjectFunction(func, types, true, functions.emplace_back());
    }
  }
  return functions;
}

}  // namespace sentrune::portable
