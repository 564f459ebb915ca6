#include "platform/tlb/typelib_projection.h"

#include <array>
#include <utility>

#include "platform/tlb/typelib_projection_dispatch.h"
#include "platform/tlb/typelib_projection_members.h"
#include "platform/tlb/typelib_projection_types.h"

namespace sentrune::portable {
namespace {

using platform::TlbTypeInfo;

constexpr uint16_t kTypeFlagDual = 0x40;
constexpr uint16_t kTypeFlagOleAutomation = 0x100;
constexpr int32_t kImplDefault = 0x1, kImplSource = 0x2;
// Dual interfaces may repeat the functions of their bases; this many per
// stored function (and a fixed allowance) is far more than real libraries use.
constexpr size_t kInheritedPerStored = 4, kInheritedSlack = 65536;
constexpr const char* kNullGuid = "{00000000-0000-0000-0000-000000000000}";

constexpr std::array<const char*, 8> kKindWords = {
    "enum", "record", "module", "interface", "dispatch", "coclass", "alias", "union"};

bool IsDual(const RawTypeInfo& type) {
  return (type.kind == TypeKind::kDispatch || type.kind == TypeKind::kInterface) &&
         (type.flags & kTypeFlagDual) != 0;
}

// The first interface flagged default and, separately, the first flagged
// default and source. Restricted is ignored, nothing falls back to an
// unflagged interface, and one from another library gives no position.
void LinkPair(const RawTypeInfo& type, TlbTypeInfo& out) {
  bool haveInterface = false, haveSource = false;
  for (const RawImpl& impl : type.impls) {
    if (!(impl.flags & kImplDefault)) continue;
    const bool source = (impl.flags & kImplSource) != 0;
    if (source ? haveSource : haveInterface) continue;
    const int position = impl.ref.kind == RawRef::Kind::kLocal ? impl.ref.localIndex : -1;
    (source ? out.defaultSource : out.defaultInterface) = position;
    (source ? haveSource : haveInterface) = true;
  }
}

// Per type info, whether the dispatch view of some dual repeats its
// functions, so that they are projected more than once.
std::vector<bool> DispatchBases(const RawLibrary& raw) {
  std::vector<bool> bases(raw.types.size());
  for (const RawTypeInfo& type : raw.types) {
    if (!IsDual(type)) continue;
    for (const RawTypeInfo* base : BaseChain(raw, type))
      bases[static_cast<size_t>(base - raw.types.data())] = true;
  }
  return bases;
}

// With `take` the functions' texts are moved out of `type`.
std::vector<platform::TlbMember> Functions(const RawLibrary& raw, const TypeProjection& types,
                                           RawTypeInfo& type, bool take, size_t& inheritedBudget) {
  std::vector<platform::TlbMember> functions;
  switch (type.kind) {
    case TypeKind::kInterface:
    case TypeKind::kDispatch:
    case TypeKind::kModule:
      if (IsDual(type)) {
        functions = DispatchView(raw, types, type, take, inheritedBudget);
        break;
      }
      functions.reserve(type.funcs.size());
      for (RawFunc& func : type.funcs) {
        if (take) {
          ProjectFunction(std::move(func), types, false, functions.emplace_back());
        } else {
          ProjectFunction(func, types, false, functions.emplace_back());
        }
      }
      break;
    default: break;
  }
  NameByMemberId(functions);
  return functions;
}

TlbTypeInfo ProjectType(const RawLibrary& raw, const TypeProjection& types, RawTypeInfo& type,
                        bool take, size_t& inheritedBudget) {
  TlbTypeInfo out;
  out.name = type.name;
  out.helpString = type.helpString;
  const bool dual = IsDual(type);
  out.kind = dual ? "dispatch" : kKindWords[static_cast<size_t>(type.kind) % kKindWords.size()];
  // Aliases and unions keep a GUID the library stores for them, as any type does.
  out.guid = type.guid.empty() ? kNullGuid : type.guid;
  out.flags = dual ? type.flags & ~kTypeFlagOleAutomation : type.flags;
  if (type.kind == TypeKind::kCoclass) LinkPair(type, out);
  out.functions = Functions(raw, types, type, take, inheritedBudget);
  const bool isEnum = type.kind == TypeKind::kEnum;
  if (isEnum || type.kind == TypeKind::kRecord) {
    out.variables.reserve(type.vars.size());
    for (RawVar& var : type.vars) {
      ProjectVariable(std::move(var), types, isEnum, out.variables.emplace_back());
    }
  }
  return out;
}

}  // namespace

platform::TlbLibrary ProjectLibrary(const RawLibrary& raw) { return ProjectLibrary(RawLibrary(raw)); }

// Member texts move from the stored form into the view, except those of the
// interfaces that dispatch views repeat: a large library has tens of thousands.
platform::TlbLibrary ProjectLibrary(RawLibrary&& raw) {
  platform::TlbLibrary library;
  library.name = raw.name;
  library.helpString = raw.helpString;
  library.guid = raw.guid;
  library.majorVersion = raw.majorVersion;
  library.minorVersion = raw.minorVersion;
  const TypeProjection types(raw);
  size_t stored = 0;
  for (const RawTypeInfo& type : raw.types) stored += type.funcs.size();
  size_t inheritedBudget = kInheritedPerStored * stored + kInheritedSlack;
  const std::vector<bool> repeated = DispatchBases(raw);
  library.types.reserve(raw.types.size());
  for (size_t i = 0; i < raw.types.size(); ++i) {
    library.types.push_back(ProjectType(raw, types, raw.types[i], !repeated[i], inheritedBudget));
  }
  return library;
}

}  // namespace sentrune::portable
