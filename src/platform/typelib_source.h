#pragma once
// The type library source: what the model reader (clsParseTLB::ParseTypeLib)
// learns about a component's type library, already projected the way the
// system's type library API presents it (dual interfaces as their dispatch
// view, names by member ID, types as variant code plus user-defined name).
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "runtime/result.h"

namespace sentrune::platform {

// Variant type codes the source reports.
namespace vt {
inline constexpr uint16_t kEmpty = 0, kNull = 1, kI2 = 2, kI4 = 3, kR4 = 4, kR8 = 5, kCy = 6,
                          kDate = 7, kBstr = 8, kDispatch = 9, kError = 10, kBool = 11,
                          kVariant = 12, kUnknown = 13, kDecimal = 14, kI1 = 16, kUI1 = 17,
                          kUI2 = 18, kUI4 = 19, kI8 = 20, kUI8 = 21, kInt = 22, kUInt = 23,
                          kVoid = 24, kHresult = 25, kPtr = 26, kSafeArray = 27, kCArray = 28,
                          kUserDefined = 29, kLpStr = 30, kLpWStr = 31;
inline constexpr uint16_t kArrayFlag = 0x2000, kByRefFlag = 0x4000;
}  // namespace vt

// Where a user-defined type of another library comes from, as the library
// that uses it records it (the other library's file is not read).
struct TlbImport {
  std::string library;  // its file as stored: "stdole2.tlb", "msvbvm60.dll\3"
  std::string libraryGuid;
  std::string kind;    // as TlbTypeInfo::kind; empty when the record does not say
  std::string guid;    // the type's GUID when the record has it,
  int32_t index = -1;  // else its position in that library
};

// A projected type: the variant code with the by-reference (0x4000) and array
// (0x2000) flags, and for user-defined types (base code 0) the type's name.
// The rest serves rewriting the library (as IDL), not the model.
struct TlbType {
  TlbType() = default;
  TlbType(uint16_t typeCode, std::string name = {}) : code(typeCode), userTypeName(std::move(name)) {}

  uint16_t code = vt::kEmpty;
  std::string userTypeName;
  // A fixed-size array's element count per dimension; empty for a SAFEARRAY.
  std::vector<uint32_t> bounds;
  // Set for a type of another library, named (stdole's) or not (code 29).
  std::shared_ptr<const TlbImport> imported;

  // The same type for the model; bounds and origin are not compared.
  bool operator==(const TlbType& other) const { return code == other.code && userTypeName == other.userTypeName; }
};

// A constant or default value (a VARIANT). Integers, booleans (0 / -1), error
// codes and currency (scaled by 10000) live in `integer`; unsigned kinds are
// zero-extended. Reals and dates (the OLE serial) live in `real`; strings in
// `text` as UTF-8.
struct TlbValue {
  uint16_t vt = vt::kEmpty;
  int64_t integer = 0;
  double real = 0;
  std::string text;
  bool operator==(const TlbValue&) const = default;
};

struct TlbParam {
  std::string name;  // empty when the library stores none
  bool optional = false;
  bool hasDefault = false;
  TlbValue defaultValue;
  TlbType type;
};

// A function (invoke kinds 1, 2, 4, 8) or a variable / constant (invoke kind
// 0, with `value` for constants).
struct TlbMember {
  std::string name;
  int32_t memberId = 0;
  int invokeKind = 0;
  uint32_t flags = 0;  // FUNCFLAGS or VARFLAGS
  std::string helpString;
  std::optional<TlbValue> value;
  TlbType type;  // return type of a function, type of a variable
  std::vector<TlbParam> params;
};

struct TlbTypeInfo {
  std::string name;
  std::string kind;  // enum, record, module, interface, dispatch, coclass, alias, union
  std::string helpString;
  std::string guid;    // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper case
  uint32_t flags = 0;  // TYPEFLAGS
  // 0-based positions in the library of the coclass's default interface and
  // default source interface; -1 where there is none.
  int defaultInterface = -1;
  int defaultSource = -1;
  std::vector<TlbMember> functions;
  std::vector<TlbMember> variables;
};

struct TlbLibrary {
  std::string name;
  std::string helpString;
  std::string guid;
  uint16_t majorVersion = 0;
  uint16_t minorVersion = 0;
  std::vector<TlbTypeInfo> types;
};

class TypeLibSource {
 public:
  virtual ~TypeLibSource() = default;
  // Loads the type library of a file by Windows path; "file.dll\3" selects
  // TYPELIB resource 3 (default 1). Fails with 53 for a missing file,
  // rt::errnum::kNotATypeLibrary for a file that holds no type library, and
  // another number with a description that names the file for a corrupt one.
  virtual rt::Result<TlbLibrary> Load(const std::string& path) = 0;
};

}  // namespace sentrune::platform
