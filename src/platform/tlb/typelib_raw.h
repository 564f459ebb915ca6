#pragma once
// The stored form of a type library, as both binary formats (MSFT and SLTG)
// decode it, before the projection (typelib_projection.h) turns it into the
// view that platform::TypeLibSource promises. Keeping one stored form means the
// presentation rules (dispatch views of duals, names by member ID, pointer and
// alias handling) are written once for both formats.
//
// Everything here is plain data decoded with bounds checks; indexes are
// checked again by the projection, so a hostile file can at worst produce an
// unresolved reference, never an out-of-range access.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/typelib_source.h"

namespace sentrune::portable {

enum class TypeKind : uint8_t {
  kEnum = 0, kRecord = 1, kModule = 2, kInterface = 3, kDispatch = 4,
  kCoclass = 5, kAlias = 6, kUnion = 7,
};

// The word platform::TlbTypeInfo::kind uses for a kind.
constexpr const char* KindWord(TypeKind kind) {
  constexpr const char* kWords[] = {"enum", "record", "module", "interface", "dispatch", "coclass", "alias", "union"};
  return kWords[static_cast<size_t>(kind) % 8];
}

// A reference to a type info: one of this library's, or one imported from
// another library (whose file is never opened; its stored name is used).
struct RawRef {
  enum class Kind : uint8_t { kNone, kLocal, kImported };
  Kind kind = Kind::kNone;
  int32_t localIndex = -1;  // kLocal: 0-based position in RawLibrary::types
  std::string importedName; // kImported: the type's name as the file stores it
  std::optional<TypeKind> importedKind;  // kImported: when the file says
  std::string importedGuid;  // kImported: the type's GUID when known
  int32_t importedIndex = -1;   // kImported: its position in its library, when the file says
  std::string importedLibrary = {};  // kImported: the library's file as stored
  std::string importedLibraryGuid = {};
};

// A type descriptor node. Pointers, SAFEARRAYs and fixed arrays point at
// their element through `element` (an index into RawLibrary::typeDescs);
// user-defined types carry `ref`. Other codes are plain VTs.
struct RawTypeDesc {
  uint16_t vt = platform::vt::kEmpty;
  int32_t element = -1;
  RawRef ref;
  std::vector<uint32_t> bounds = {};  // a fixed array's element count per dimension
};

struct RawParam {
  std::string name;  // empty when none is stored
  uint16_t flags = 0;  // PARAMFLAGS: 1 in, 2 out, 4 lcid, 8 retval, 16 opt, 32 has default
  int32_t type = -1;   // index into RawLibrary::typeDescs
  std::optional<platform::TlbValue> defaultValue;
};

struct RawFunc {
  int32_t memberId = 0;
  std::string name;  // empty when none is stored
  std::string helpString;
  uint8_t funcKind = 0;  // 0 virtual, 1 pure virtual, 2 non-virtual, 3 static, 4 dispatch
  uint8_t invokeKind = 1;  // 1 func, 2 get, 4 put, 8 putref
  uint16_t flags = 0;      // FUNCFLAGS
  int16_t vtableOffset = 0;
  int16_t optionalCount = 0;  // -1 = vararg
  int32_t returnType = -1;    // index into RawLibrary::typeDescs
  std::vector<RawParam> params;
};

struct RawVar {
  int32_t memberId = 0;
  std::string name;
  std::string helpString;
  uint16_t flags = 0;    // VARFLAGS
  uint8_t varKind = 0;   // 0 per instance, 1 static, 2 const, 3 dispatch
  int32_t type = -1;     // index into RawLibrary::typeDescs
  std::optional<platform::TlbValue> value;
};

struct RawImpl {
  RawRef ref;
  int32_t flags = 0;  // IMPLTYPEFLAGS: 1 default, 2 source, 4 restricted
};

struct RawTypeInfo {
  std::string name;
  std::string helpString;
  std::string guid;  // upper-case registry form, or empty
  TypeKind kind = TypeKind::kInterface;
  uint16_t flags = 0;       // TYPEFLAGS (0x40 dual, 0x10 hidden, 0x1000 dispatchable...)
  uint16_t vtableSize = 0;  // cbSizeVft in bytes, inherited methods included
  uint8_t pointerSize = 4;  // 4 for 32-bit libraries, 8 for 64-bit
  std::vector<RawFunc> funcs;
  std::vector<RawVar> vars;
  // Coclass: its interfaces with their flags. Interface: its base (one entry).
  // Dual stored as dispatch: the real base interface as stored.
  std::vector<RawImpl> impls;
  int32_t aliasType = -1;  // alias: index into RawLibrary::typeDescs
};

struct RawLibrary {
  std::string name;
  std::string helpString;
  std::string guid;
  uint16_t majorVersion = 0;
  uint16_t minorVersion = 0;
  std::vector<RawTypeInfo> types;
  std::vector<RawTypeDesc> typeDescs;
};

}  // namespace sentrune::portable
