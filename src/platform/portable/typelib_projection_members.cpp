#include "platform/portable/typelib_projection_members.h"

#include <cstdint>

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;

constexpr uint16_t kParamLcid = 0x4, kParamRetval = 0x8, kParamOptional = 0x10,
                   kParamHasDefault = 0x20;

platform::TlbParam ProjectParam(const RawParam& param, const TypeProjection& types) {
  platform::TlbParam out;
  out.name = param.name;
  out.optional = (param.flags & kParamOptional) != 0;
  out.hasDefault = (param.flags & kParamHasDefault) != 0;
  if (param.defaultValue) out.defaultValue = *param.defaultValue;
  out.type = types.Project(param.type);
  return out;
}

}  // namespace

platform::TlbMember ProjectFunction(const RawFunc& func, const TypeProjection& types,
                                    bool dispatchForm) {
  platform::TlbMember member;
  member.name = func.name;
  member.memberId = func.memberId;
  member.invokeKind = func.invokeKind;
  member.flags = func.flags;
  member.helpString = func.helpString;
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
    member.params.push_back(ProjectParam(func.params[i], types));
  }
  return member;
}

platform::TlbMember ProjectVariable(const RawVar& var, const TypeProjection& types, bool isEnum) {
  platform::TlbMember member;
  member.name = var.name;
  member.memberId = var.memberId;
  member.flags = var.flags;
  member.helpString = var.helpString;
  member.value = var.value;
  if (isEnum && member.value) member.value->integer = static_cast<int32_t>(member.value->integer);
  member.type = types.Project(var.type);
  return member;
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
