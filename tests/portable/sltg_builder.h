#pragma once
// A writer of SLTG type libraries for tests, so that a described library can
// be round-tripped through ReadSltg. Descriptions say what is stored (a dual
// is an interface flagged 0x40), not how a reader presents it.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/portable/typelib_raw.h"

namespace sentrune::portable::testing {

// This library's type at `local`, or type `typeNumber` of imports[`import`].
struct SltgRef {
  int32_t local = -1, import = -1, typeNumber = 0;
  bool operator==(const SltgRef&) const = default;
};

struct SltgType {
  uint16_t vt = platform::vt::kI4;
  std::vector<SltgType> element{};  // PTR, SAFEARRAY, CARRAY: exactly one
  SltgRef ref{};                    // USERDEFINED
  std::vector<uint32_t> dims{};     // CARRAY: element counts
  bool implicitPointer = false;     // a PTR stored as 0xE00 bits of its element's first word
};
SltgType Vt(uint16_t vt);
SltgType Ptr(SltgType element, bool implicit = false);
SltgType SafeArray(SltgType element);
SltgType CArray(SltgType element, std::vector<uint32_t> dims);
SltgType Local(int32_t index);

struct SltgParam {
  std::string name{};  // empty: stored without a name
  uint16_t flags = 1;  // in / out / lcid / retval; optional comes from the count
  SltgType type{};
  bool typeElsewhere = false;  // the type's words are stored apart from the list
};

struct SltgFunc {
  int32_t memberId = 0;
  std::string name{};
  std::string help{};    // words separated by single spaces
  uint8_t funcKind = 1;  // 1 virtual, 3 static, 4 dispatch
  uint8_t invokeKind = 1;
  std::optional<uint16_t> flags{};
  uint16_t vtableOffset = 0;
  int optionalCount = 0;  // -1 = vararg
  SltgType ret = Vt(platform::vt::kHresult);
  std::vector<SltgParam> params{};
};

struct SltgVar {
  int32_t memberId = 0;
  std::string name{};
  bool sameNameAsPrevious = false;
  std::string help{};
  uint8_t varKind = 0;  // 0 per instance, 2 const, 3 dispatch
  SltgType type{};
  std::optional<platform::TlbValue> value{};  // const: its VT is the type's
  std::optional<uint16_t> flags{};
  bool readOnly = false;
};

struct SltgImpl {
  SltgRef ref{};
  uint8_t flags = 0;
};

struct SltgTypeInfo {
  std::string name{}, help{}, guid{};  // guid in registry form, or empty
  TypeKind kind = TypeKind::kInterface;
  uint16_t flags = 0, vtableSize = 0;
  std::vector<SltgFunc> funcs{};
  std::vector<SltgVar> vars{};
  std::vector<SltgImpl> impls{};
  std::optional<SltgType> alias{};  // stored in the tail when it is a bare VT
};

struct SltgImport {
  std::string guid{};
  uint16_t major = 1, minor = 0;
  uint32_t lcid = 0;
  std::string path{};
};

struct SltgLibrary {
  std::string name{}, help{}, guid{};
  uint16_t major = 1, minor = 0, sysKind = 1;
  std::vector<SltgImport> imports{};
  std::vector<SltgTypeInfo> types{};
  // Layout variants a reader must accept.
  bool longNameTableHeader = false;  // the name table header that starts 0x0200
  bool reversedDirectory = false;    // directory entries in reverse file order
};

std::vector<uint8_t> BuildSltg(const SltgLibrary& library);

}  // namespace sentrune::portable::testing
