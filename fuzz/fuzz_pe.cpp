// libFuzzer target for the PE reader and the version resource decoder: any
// input must end in an error or "nothing", inside the bytes, without hanging.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "platform/pe/pe_image.h"
#include "platform/pe/version_resources_portable.h"

namespace {

using sentrune::portable::PeImage;
using sentrune::portable::ResourceId;

void CheckInside(std::span<const uint8_t> part, std::span<const uint8_t> whole) {
  if (part.empty()) return;
  if (part.data() < whole.data() || part.data() + part.size() > whole.data() + whole.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span<const uint8_t> bytes(data, size);
  if (auto image = PeImage::Parse(bytes); image.ok()) {
    const auto typeLib = ResourceId::Named(sentrune::portable::kTypeLibResourceType);
    if (auto library = image->FindResource(typeLib, ResourceId::Number(1))) CheckInside(*library, bytes);
    const auto version = ResourceId::Number(sentrune::portable::kRtVersion);
    auto names = image->ResourceNames(version);
    if (!names.empty()) {
      if (auto block = image->FindResource(version, names.back())) CheckInside(*block, bytes);
    }
  }
  (void)sentrune::portable::FileVersionOfImage(bytes);
  // The decoder on its own, so that mutations reach it without a valid image.
  (void)sentrune::portable::DecodeVersionInfo(bytes);
  return 0;
}
