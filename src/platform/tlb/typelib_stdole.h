#pragma once
// The types of the OLE Automation library (stdole2.tlb). Nearly every type
// library imports from it, and neither binary format stores the names of
// imported types, only their GUID or their position in the imported library.
// Since the imported file is never opened, its well-known contents are kept
// here; imports from other libraries stay nameless.
#include <cstdint>
#include <string_view>

#include "platform/tlb/typelib_raw.h"

namespace sentrune::portable {

inline constexpr std::string_view kStdoleLibraryGuid = "{00020430-0000-0000-C000-000000000046}";

struct StdoleType {
  int32_t index;          // position in the library
  TypeKind kind;
  std::string_view name;
  std::string_view guid;  // empty for types stored without one
  // Aliases: the target, a plain VT or (code 29) the stdole type named by
  // aliasTarget.
  uint16_t aliasVt;
  std::string_view aliasTarget;
};

// By the type's GUID (when the import records one), else by position when the
// import's library is stdole; nullptr when unknown.
const StdoleType* FindStdoleType(std::string_view libraryGuid, std::string_view typeGuid,
                                 int32_t index);
// An alias of stdole by name; nullptr when there is none.
const StdoleType* FindStdoleAlias(std::string_view name);
// Any type of stdole by name; nullptr when there is none.
const StdoleType* FindStdoleNamed(std::string_view name);

}  // namespace sentrune::portable
