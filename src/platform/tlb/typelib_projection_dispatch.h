#pragma once
// The dispatch view of a dual interface, as the system's type library API
// derives it from the stored vtable interface: the IUnknown and IDispatch
// functions first (restricted), then the functions of the dual base chain,
// then the interface's own, all in dispatch form.
#include <vector>

#include "platform/tlb/typelib_projection_types.h"

namespace sentrune::portable {

// `inheritedBudget` is how many base-chain functions the library's views may
// still copy; a chain that does not fit is cut. Real libraries stay far below
// it, hostile ones cannot make the projection grow with the square of the
// number of type infos.
// With `takeOwn` the texts of the dual's own functions are moved out.
std::vector<platform::TlbMember> DispatchView(const RawLibrary& raw, const TypeProjection& types,
                                              RawTypeInfo& dual, bool takeOwn, size_t& inheritedBudget);

// The local interfaces between a dual and IDispatch, base first: those whose
// functions its dispatch view repeats.
std::vector<const RawTypeInfo*> BaseChain(const RawLibrary& raw, const RawTypeInfo& dual);

}  // namespace sentrune::portable
