#pragma once
// Turns the stored form of a type library into the view that
// platform::TypeLibSource promises, the way the system's own type library API
// presents a library: dual interfaces as their dispatch view, names and help
// strings by member ID, types as a variant code plus a user-defined name, and
// the default / default-source link pair of each coclass.
#include "platform/tlb/typelib_raw.h"
#include "platform/typelib_source.h"

namespace sentrune::portable {

// Never fails: indexes that lead nowhere become unresolved types (code 29
// without a name) or missing links (-1).
platform::TlbLibrary ProjectLibrary(const RawLibrary& raw);
// The same, moving the member texts out of `raw` instead of copying them.
platform::TlbLibrary ProjectLibrary(RawLibrary&& raw);

}  // namespace sentrune::portable
