#pragma once
// Builds small PE images in memory for tests: one .rsrc section holding the
// resources given, as a linker would lay them out. PE32 and PE32+ differ only
// in their optional header, which is what the reader must get right.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/portable/pe_image.h"

namespace sentrune::testing {

class PeBuilder {
 public:
  enum class Arch { kPe32, kPe32Plus };

  // Where the resource section lands, for tests that damage it on purpose.
  static constexpr size_t kResourceFileOffset = 0x200;
  static constexpr uint32_t kResourceRva = 0x1000;

  explicit PeBuilder(Arch arch = Arch::kPe32Plus) : arch_(arch) {}

  // Adds one resource; string names must be ASCII. Named types and names are
  // stored before numbered ones, otherwise in the order added.
  PeBuilder& Add(portable::ResourceId type, portable::ResourceId name, std::vector<uint8_t> data,
                 uint16_t language = 0x409);

  std::vector<uint8_t> Build() const;

 private:
  struct Resource {
    portable::ResourceId type;
    portable::ResourceId name;
    uint16_t language;
    std::vector<uint8_t> data;
  };

  std::vector<uint8_t> BuildResourceSection() const;

  Arch arch_;
  std::vector<Resource> resources_;
};

// A VS_VERSIONINFO block with the given file version words and no string
// tables, as an RT_VERSION resource holds it.
std::vector<uint8_t> VersionInfoBlock(uint32_t fileVersionMs, uint32_t fileVersionLs);

std::vector<uint8_t> ToBytes(std::string_view text);

}  // namespace sentrune::testing
