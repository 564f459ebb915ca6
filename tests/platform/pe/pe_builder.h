#pragma once
// Builds small PE images in memory for tests: one .rsrc section holding the
// resources given, as a linker would lay them out. PE32 and PE32+ differ only
// in their optional header, which is what the reader must get right.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/pe/pe_image.h"

namespace sentrune::testing {

// Little-endian fields of a byte buffer.
inline uint32_t Get16(const std::vector<uint8_t>& b, size_t at) { return b[at] | b[at + 1] << 8; }
inline uint32_t Get32(const std::vector<uint8_t>& b, size_t at) { return Get16(b, at) | Get16(b, at + 2) << 16; }
inline void Set16(std::vector<uint8_t>& b, size_t at, uint32_t v) {
  b[at] = static_cast<uint8_t>(v);
  b[at + 1] = static_cast<uint8_t>(v >> 8);
}
inline void Set32(std::vector<uint8_t>& b, size_t at, uint32_t v) { Set16(b, at, v), Set16(b, at + 2, v >> 16); }

class PeBuilder {
 public:
  enum class Arch { kPe32, kPe32Plus };
  // Where the resource section lands, for tests that damage it on purpose.
  static constexpr size_t kResourceFileOffset = 0x200;
  static constexpr uint32_t kResourceRva = 0x1000;

  explicit PeBuilder(Arch arch = Arch::kPe32Plus) : arch_(arch) {}
  // String names must be ASCII. Named types and names are stored before
  // numbered ones, otherwise in the order added.
  PeBuilder& Add(portable::ResourceId type, portable::ResourceId name, std::vector<uint8_t> data,
                 uint16_t language = 0x409) {
    resources_.push_back({std::move(type), std::move(name), language, std::move(data)});
    return *this;
  }
  std::vector<uint8_t> Build() const;

 private:
  struct Resource {
    portable::ResourceId type, name;
    uint16_t language;
    std::vector<uint8_t> data;
  };
  std::vector<uint8_t> ResourceSection() const;

  Arch arch_;
  std::vector<Resource> resources_;
};

// A VS_VERSIONINFO block with the given file version words and no string
// tables, as an RT_VERSION resource holds it.
std::vector<uint8_t> VersionInfoBlock(uint32_t fileVersionMs, uint32_t fileVersionLs);

inline std::vector<uint8_t> ToBytes(std::string_view text) { return {text.begin(), text.end()}; }

}  // namespace sentrune::testing
