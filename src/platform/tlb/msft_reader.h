#pragma once
// Decodes a type library in the MSFT format (what the system's type library
// writer produces: .tlb files and the TYPELIB resources of components) into
// the stored form. Imported types are named from what the file itself says;
// the imported library is never opened.
#include <cstdint>
#include <span>

#include "platform/tlb/typelib_raw.h"
#include "runtime/result.h"

namespace sentrune::portable {

// Fails with rt::errnum::kCantLoadTypeLibrary and a description of the first
// defect found; a hostile file can cost at most time and memory proportional
// to its size.
rt::Result<RawLibrary> ReadMsft(std::span<const uint8_t> bytes);

}  // namespace sentrune::portable
