#include "platform/tlb/typelib_source_portable.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/tlb/msft_reader.h"
#include "platform/pe/pe_image.h"
#include "platform/tlb/sltg_reader.h"
#include "platform/tlb/typelib_projection.h"

namespace sentrune::portable {
namespace {

bool StartsWith(std::span<const uint8_t> bytes, std::string_view magic) {
  return bytes.size() >= magic.size() && std::equal(magic.begin(), magic.end(), bytes.begin());
}

// An MSFT or SLTG library as it stands; nullopt when the bytes are neither.
std::optional<rt::Result<RawLibrary>> ReadBareLibrary(std::span<const uint8_t> bytes) {
  if (StartsWith(bytes, "MSFT")) return ReadMsft(bytes);
  if (StartsWith(bytes, "SLTG")) return ReadSltg(bytes);
  return std::nullopt;
}

rt::Result<RawLibrary> ReadFromImage(std::span<const uint8_t> bytes, uint32_t resourceIndex) {
  auto image = PeImage::Parse(bytes);
  if (!image) return rt::MakeError(rt::errnum::kCantLoadTypeLibrary, image.error().description);
  const auto name = ResourceId::Number(resourceIndex);
  auto resource = image->FindResource(ResourceId::Named(kTypeLibResourceType), name);
  if (!resource) {
    return rt::MakeError(rt::errnum::kNotATypeLibrary,
                         "no " + std::string(kTypeLibResourceType) + " resource " + name.ToString());
  }
  if (auto library = ReadBareLibrary(*resource)) return std::move(*library);
  return rt::MakeError(rt::errnum::kCantLoadTypeLibrary, std::string(kTypeLibResourceType) +
                                                             " resource " + name.ToString() +
                                                             " is neither an MSFT nor an SLTG library");
}

struct TypeLibPath {
  std::string file;
  uint32_t resourceIndex = 1;
};

// "file.dll\3" selects resource 3, but only when "file.dll" is a file: a
// folder may well be named with digits.
TypeLibPath SplitTypeLibPath(const platform::FileSystem& fs, const std::string& path) {
  const size_t slash = path.rfind('\\');
  if (slash == std::string::npos || slash + 1 == path.size()) return {path};
  const std::string_view digits = std::string_view(path).substr(slash + 1);
  if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return {path};
  }
  const std::string file = path.substr(0, slash);
  auto attributes = fs.GetAttributes(file);
  if (!attributes || (*attributes & platform::kAttrDirectory) != 0) return {path};
  // An index too large for any resource ID saturates and so finds nothing.
  uint64_t index = 0;
  for (char c : digits) {
    index = std::min<uint64_t>(index * 10 + static_cast<uint64_t>(c - '0'),
                               std::numeric_limits<uint32_t>::max());
  }
  return {file, static_cast<uint32_t>(index)};
}

}  // namespace

rt::Result<RawLibrary> ReadTypeLibBytes(std::span<const uint8_t> bytes, uint32_t resourceIndex) {
  if (auto library = ReadBareLibrary(bytes)) return std::move(*library);
  if (PeImage::LooksLikePe(bytes)) return ReadFromImage(bytes, resourceIndex);
  return rt::MakeError(rt::errnum::kNotATypeLibrary,
                       "neither an MSFT or SLTG type library nor a PE image");
}

rt::Result<platform::TlbLibrary> PortableTypeLibSource::Load(const std::string& path) {
  const TypeLibPath target = SplitTypeLibPath(fs_, path);
  auto contents = fs_.ReadFile(target.file);
  if (!contents) {
    const int32_t number = contents.error().number;
    if (number == rt::errnum::kFileNotFound || number == rt::errnum::kPathNotFound) {
      return rt::MakeError(rt::errnum::kFileNotFound, "File not found: " + target.file);
    }
    return contents.error();
  }
  const std::string& bytes = contents.value();
  auto raw = ReadTypeLibBytes(
      std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()),
      target.resourceIndex);
  if (!raw) return rt::MakeError(raw.error().number, target.file + ": " + raw.error().description);
  return ProjectLibrary(std::move(raw.value()));
}

}  // namespace sentrune::portable
