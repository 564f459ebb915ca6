#pragma once
// Decodes a type library in the SLTG format (the older layout written by the
// 16-bit era tools and some 32-bit ones) into the same stored form the MSFT
// reader produces, so that one projection presents both.
//
// Differences a caller may notice:
// - A dual interface is stored as an interface flagged dual; it comes back as
//   MSFT stores one: kind kDispatch, flag 0x40, impls[0] its real base and its
//   functions in vtable form.
// - No place for parameter default values is known in this format; none are
//   reported, and optional parameters come only from the optional count.
// - Imported types are known only by their position in the imported library;
//   those of the OLE Automation library are named, others stay nameless.
#include <cstdint>
#include <span>

#include "platform/tlb/typelib_raw.h"
#include "runtime/result.h"

namespace sentrune::portable {

// Fails with rt::errnum::kCantLoadTypeLibrary and a description of the first
// defect found. Every count is checked against the bytes that could hold it,
// so a hostile file costs at most time and memory proportional to its size.
rt::Result<RawLibrary> ReadSltg(std::span<const uint8_t> bytes);

}  // namespace sentrune::portable
