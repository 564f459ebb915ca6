#include "platform/pe/version_resources_portable.h"

#include "platform/pe/byte_reader.h"
#include "platform/pe/pe_image.h"

namespace sentrune::portable {
namespace {

constexpr char16_t kVersionKey[] = u"VS_VERSION_INFO";  // stored with its terminator
constexpr uint64_t kKeyOffset = 6;                      // after wLength, wValueLength, wType
constexpr uint64_t kKeyUnits = sizeof(kVersionKey) / sizeof(char16_t);
// The fixed part starts at the next 4-byte boundary after the key.
constexpr uint64_t kFixedInfoOffset = (kKeyOffset + 2 * kKeyUnits + 3) & ~uint64_t{3};
constexpr uint64_t kFixedInfoSize = 52;  // thirteen DWORDs
constexpr uint32_t kFixedInfoSignature = 0xFEEF04BD;

bool HasVersionKey(const ByteReader& block) {
  for (uint64_t i = 0; i < kKeyUnits; ++i) {
    if (block.U16(kKeyOffset + 2 * i) != static_cast<uint16_t>(kVersionKey[i])) return false;
  }
  return true;
}

}  // namespace

std::optional<platform::FileVersion> DecodeVersionInfo(std::span<const uint8_t> bytes) {
  ByteReader whole(bytes);
  auto length = whole.U16(0);
  auto valueLength = whole.U16(2);
  if (!length || !valueLength || *valueLength < kFixedInfoSize) return std::nullopt;
  // The block's own length bounds everything in it; the resource may be padded.
  auto block = whole.Sub(0, *length);
  if (!block || !HasVersionKey(*block) || !block->Has(kFixedInfoOffset, kFixedInfoSize)) {
    return std::nullopt;
  }
  if (block->U32(kFixedInfoOffset) != kFixedInfoSignature) return std::nullopt;
  return platform::FileVersion{*block->U32(kFixedInfoOffset + 8), *block->U32(kFixedInfoOffset + 12)};
}

std::optional<platform::FileVersion> FileVersionOfImage(std::span<const uint8_t> bytes) {
  auto image = PeImage::Parse(bytes);
  if (!image) return std::nullopt;
  const auto type = ResourceId::Number(kRtVersion);
  auto block = image->FindResource(type, ResourceId::Number(1));
  if (!block) {
    auto names = image->ResourceNames(type);
    if (names.empty()) return std::nullopt;
    block = image->FindResource(type, names.front());
  }
  if (!block) return std::nullopt;
  return DecodeVersionInfo(*block);
}

std::string FormatFileVersion(std::optional<platform::FileVersion> version) {
  const platform::FileVersion v = version.value_or(platform::FileVersion{});
  return std::to_string(v.ms >> 16) + "." + std::to_string(v.ms & 0xFFFF) + "." +
         std::to_string(v.ls >> 16) + "." + std::to_string(v.ls & 0xFFFF);
}

std::optional<platform::FileVersion> PortableVersionResources::FileVersionOf(const std::string& path) {
  auto contents = fs_.ReadFile(path);
  if (!contents) return std::nullopt;
  const std::string& bytes = contents.value();
  return FileVersionOfImage(
      std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
}

}  // namespace sentrune::portable
