#include "platform/tlb/typelib_projection_members.h"

#include <cstdint>
#include <type_traits>
#include <utility>

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;

constexpr uint16_t kParamLcid = 0x4, kParamRetval = 0x8, kParamOptional = 0x10,
                   kParamHasDefault = 0x20;

// Param is const RawParam& (its texts are copied) or RawParam (moved out).
// Members and parameters are built where they are kept: a large library has
// tens of thousands, and moving each into place costs as much as filling it.
template <class Param>
void ProjectParam(Param&& param, const TypeProjection& types, platform::TlbParam& out) {
  out.name = std::forward<Param>(param).name;
  out.optional = (param.flags & kParamOptional) != 0;
  out.hasDefault = (param.flags & kParamHasDefault) != 0;
  if (param.defaultValue) out.defaultValue = *std::forward<Param>(param).defaultValue;
  out.type = types.Project(param.type);
}

// Func is const RawFunc& (its texts are copied) or RawFunc (moved out).
template <class Func>
void Project(Func&& func, const TypeProjection& types, bool dispatchForm, platform::TlbMember& member) {
  using Param = std::conditional_t<std::is_const_v<std::remove_reference_t<Func>>, const RawParam&,
                                   RawParam&&>;
  member.name = std::forward<Func>(func).name;
  member.memberId = func.memberId;
  member.invokeKind = func.invokeKind;
  member.flags = func.flags;
  member.helpString = std::forward<Func>(func).helpString;
  size_t count = func.params.size();
  if (dispatchForm && count > 0 && (func.params.back().flags & kParamRetval)) {
    member.type = types.Pointee(func.params.back().type);
    --count;
  } else {
    member.type = types.Project(func.returnType);
    if (dispatchForm && member.type.code == vt::kHresult) member.type.code = vt::kVoid;
  }
  member.params.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    if (dispatchForm && (func.params[i].flags & kParamLcid)) continue;
    ProjectParam(static_cast<Param>(func.params[i]), types, member.params.emplace_back());
  }
}

}  // namespace

void ProjectFunction(const RawFunc& func, const TypeProjection& types, bool dispatchForm,
                     platform::TlbMember& out) {
  Project(func, types, dispatchForm, out);
}

void ProjectFunction(RawFunc&& func, const TypeProjection& types, bool dispatchForm,
                     platform::TlbMember& out) {
  Project(std::move(func), types, dispatchForm, out);
}

void ProjectVariable(RawVar&& var, const TypeProjection& types, bool isEnum,
                     platform::TlbMember& member) {
  member.name = std::move(var.name);
  member.memberId = var.memberId;
  member.flags = var.flags;
  member.helpString = std::move(var.helpString);
  member.value = std::move(var.value);
  if (isEnum && member.value) member.value->integer = static_cast<int32_t>(member.value->integer);
  member.type = types.Project(var.type);
}

void NameByMemberId(std::vector<platform::TlbMember>& functions) {
  // An open-addressed table from member ID to the first position that has
  // it: one allocation per list, since most lists have few repeats.
  size_t capacity = 16;
  while (capacity < 2 * functions.size()) capacity *= 2;
  std::vector<size_t> slots(capacity, SIZE_MAX);
  for (size_t i = 0; i < functions.size(); ++i) {
    const auto id = static_cast<uint32_t>(functions[i].memberId);
    size_t slot = (id * size_t{0x9E3779B1}) & (capacity - 1);
    while (slots[slot] != SIZE_MAX && functions[slots[slot]].memberId != functions[i].memberId) {
      slot = (slot + 1) & (capacity - 1);
    }
    if (slots[slot] == SIZE_MAX) {
      slots[slot] = i;
      continue;
    }
    const platform::TlbMember& source = functions[slots[slot]];
    platform::TlbMember& member = functions[i];
    member.name = source.name;
    member.helpString = source.helpString;
    for (size_t p = 0; p < member.params.size(); ++p) {
      member.params[p].name = p < source.params.size() ? source.params[p].name : std::string();
    }
  }
}

}  // namespace sentrune::portable
