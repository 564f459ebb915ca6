#include "platform/tlb/typelib_projection_types.h"

#include <memory>

#include "platform/tlb/typelib_stdole.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using platform::TlbType;

// Deeper than any real declaration; ends alias and pointer cycles.
constexpr int kMaxDepth = 32;

const TlbType kUnresolved{vt::kUserDefined, {}};

bool IsObjectKind(TypeKind kind) {
  return kind == TypeKind::kInterface || kind == TypeKind::kDispatch || kind == TypeKind::kCoclass;
}

// The type `ref` imports, named `name` (code 29 when that is empty), with
// where it comes from: the stdole type it is or stands for when `known`.
TlbType Imported(const RawRef& ref, const StdoleType* known, std::string_view name) {
  auto origin = std::make_shared<platform::TlbImport>();
  origin->library = ref.importedLibrary;
  origin->libraryGuid = ref.importedLibraryGuid;
  if (known != nullptr) {
    origin->kind = KindWord(known->kind);
    origin->guid = known->guid;
    origin->index = known->guid.empty() ? known->index : -1;
  } else {
    if (ref.importedKind) origin->kind = KindWord(*ref.importedKind);
    origin->guid = ref.importedGuid;
    origin->index = ref.importedIndex;
  }
  TlbType type = name.empty() ? kUnresolved : TlbType{vt::kEmpty, std::string(name)};
  type.imported = std::move(origin);
  return type;
}

}  // namespace

const RawTypeDesc* TypeProjection::Desc(int32_t index) const {
  if (index < 0 || static_cast<size_t>(index) >= raw_.typeDescs.size()) return nullptr;
  return &raw_.typeDescs[static_cast<size_t>(index)];
}

TlbType TypeProjection::Pointee(int32_t desc) const {
  const RawTypeDesc* node = Desc(desc);
  if (node != nullptr && node->vt == vt::kPtr) return Walk(node->element, 1);
  return Project(desc);
}

TlbType TypeProjection::Walk(int32_t desc, int depth) const {
  const RawTypeDesc* node = Desc(desc);
  if (node == nullptr || depth > kMaxDepth) return kUnresolved;
  switch (node->vt) {
    case vt::kPtr: {
      TlbType target = Walk(node->element, depth + 1);
      if (!IsObject(node->element, depth + 1)) target.code |= vt::kByRefFlag;
      return target;
    }
    case vt::kSafeArray:
    case vt::kCArray: {
      TlbType element = Walk(node->element, depth + 1);
      element.code |= vt::kArrayFlag;
      if (node->vt == vt::kCArray) element.bounds = node->bounds;
      return element;
    }
    case vt::kUserDefined: return UserType(node->ref, depth + 1);
    default: return TlbType{node->vt, {}};
  }
}

TlbType TypeProjection::UserType(const RawRef& ref, int depth) const {
  if (ref.kind == RawRef::Kind::kLocal) {
    if (ref.localIndex < 0 || static_cast<size_t>(ref.localIndex) >= raw_.types.size()) {
      return kUnresolved;
    }
    const RawTypeInfo& type = raw_.types[static_cast<size_t>(ref.localIndex)];
    if (type.kind == TypeKind::kAlias) return Walk(type.aliasType, depth + 1);
    return TlbType{vt::kEmpty, type.name};
  }
  if (ref.kind != RawRef::Kind::kImported) return kUnresolved;
  // A type of a library other than stdole has no name here, but it is known
  // where it comes from.
  if (ref.importedKind == TypeKind::kAlias) {
    const StdoleType* alias = FindStdoleAlias(ref.importedName);
    if (alias == nullptr) return Imported(ref, nullptr, {});
    if (alias->aliasVt != vt::kUserDefined) return TlbType{alias->aliasVt, {}};
    return Imported(ref, FindStdoleNamed(alias->aliasTarget), alias->aliasTarget);
  }
  return Imported(ref, FindStdoleNamed(ref.importedName), ref.importedName);
}

// Whether a pointer to this descriptor is an object reference: it names an
// interface, dispinterface or coclass, directly or through aliases.
bool TypeProjection::IsObject(int32_t desc, int depth) const {
  const RawTypeDesc* node = Desc(desc);
  if (node == nullptr || node->vt != vt::kUserDefined || depth > kMaxDepth) return false;
  const RawRef& ref = node->ref;
  if (ref.kind == RawRef::Kind::kLocal) {
    if (ref.localIndex < 0 || static_cast<size_t>(ref.localIndex) >= raw_.types.size()) return false;
    const RawTypeInfo& type = raw_.types[static_cast<size_t>(ref.localIndex)];
    if (type.kind == TypeKind::kAlias) return IsObject(type.aliasType, depth + 1);
    return IsObjectKind(type.kind);
  }
  if (ref.kind != RawRef::Kind::kImported || !ref.importedKind) return false;
  if (*ref.importedKind == TypeKind::kAlias) {
    // The user-defined targets of stdole's aliases are all dispinterfaces.
    const StdoleType* alias = FindStdoleAlias(ref.importedName);
    return alias != nullptr && alias->aliasVt == vt::kUserDefined;
  }
  return IsObjectKind(*ref.importedKind);
}

}  // namespace sentrune::portable
