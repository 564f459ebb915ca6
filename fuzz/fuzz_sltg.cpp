// libFuzzer target for the SLTG reader and the projection: any input must end
// in a library or in the reader's error, without crashing or hanging, and a
// decoded library must project with one entry per type info.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "platform/tlb/sltg_reader.h"
#include "platform/tlb/typelib_projection.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto raw = sentrune::portable::ReadSltg(std::span<const uint8_t>(data, size));
  if (!raw.ok()) {
    if (raw.error().number != sentrune::rt::errnum::kCantLoadTypeLibrary) std::abort();
    return 0;
  }
  const auto library = sentrune::portable::ProjectLibrary(*raw);
  if (library.types.size() != raw->types.size()) std::abort();
  return 0;
}
