#pragma once
// Projection of single functions and variables, and the by-member-ID naming
// that the system's type library API applies to a whole function list.
#include <vector>

#include "platform/tlb/typelib_projection_types.h"

namespace sentrune::portable {

// `dispatchForm`: as a dispatch view shows a vtable function — a trailing
// [retval] becomes the return type, otherwise an HRESULT return becomes void,
// and [lcid] parameters disappear. From an rvalue the function's texts are
// moved out rather than copied: for a function projected only once. `out` is
// a new member, filled in place.
void ProjectFunction(const RawFunc& func, const TypeProjection& types, bool dispatchForm,
                     platform::TlbMember& out);
void ProjectFunction(RawFunc&& func, const TypeProjection& types, bool dispatchForm,
                     platform::TlbMember& out);
// Enum values are cut to 32 bits (two's complement). The variable's texts are
// moved out.
void ProjectVariable(RawVar&& var, const TypeProjection& types, bool isEnum, platform::TlbMember& out);

// Every function takes its name, help string and parameter names from the
// first function of the list with the same member ID; a parameter beyond that
// function's parameters gets an empty name.
void NameByMemberId(std::vector<platform::TlbMember>& functions);

}  // namespace sentrune::portable
