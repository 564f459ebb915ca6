#pragma once
// A type library the system loaded, read through ITypeLib / ITypeInfo into
// the view platform::TypeLibSource promises. The API already presents dual
// interfaces as their dispatch view and names members by member ID; what is
// left to do here is what the portable projection also does: type
// descriptors become (variant code, user-defined name) pairs, a coclass's
// link pair becomes positions, enum values are cut to 32 bits.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include "platform/typelib_source.h"

namespace sentrune::win32 {

// Throws TypeLibCallError when the library refuses a call it must answer
// (a type info, a member's descriptor); what can be missing (names, help,
// a referenced type) is left empty or unresolved instead.
platform::TlbLibrary ReadLoadedLibrary(ITypeLib& library);

}  // namespace sentrune::win32
