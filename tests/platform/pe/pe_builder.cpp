#include "pe_builder.h"

#include <algorithm>
#include <cstring>

namespace sentrune::testing {
namespace {

using portable::ResourceId;

constexpr uint32_t kHighBit = 0x80000000u;
constexpr size_t kFileAlignment = 0x200, kSectionAlignment = 0x1000;

size_t AlignUp(size_t value, size_t alignment) { return (value + alignment - 1) / alignment * alignment; }

// Appends zeroed space at an aligned offset and returns that offset.
uint32_t Reserve(std::vector<uint8_t>& out, size_t size, size_t alignment) {
  out.resize(AlignUp(out.size(), alignment) + size);
  return static_cast<uint32_t>(out.size() - size);
}

// A directory of the IDs (named ones first, as stored); returns its offset.
// Entry i's data field is at offset + 20 + 8 * i.
uint32_t Directory(std::vector<uint8_t>& out, const std::vector<ResourceId>& ids) {
  const uint32_t at = Reserve(out, 16 + 8 * ids.size(), 4);
  const auto named = std::count_if(ids.begin(), ids.end(), [](const ResourceId& id) { return !id.IsNumber(); });
  Set16(out, at + 12, static_cast<uint32_t>(named));
  Set16(out, at + 14, static_cast<uint32_t>(ids.size() - named));
  for (size_t i = 0; i < ids.size(); ++i) {
    uint32_t field = ids[i].IsNumber() ? ids[i].number() : 0;
    if (!ids[i].IsNumber()) {
      const std::string& name = ids[i].name();
      const uint32_t text = Reserve(out, 2 + 2 * name.size(), 2);
      Set16(out, text, static_cast<uint32_t>(name.size()));
      for (size_t c = 0; c < name.size(); ++c) Set16(out, text + 2 + 2 * c, static_cast<uint8_t>(name[c]));
      field = kHighBit | text;
    }
    Set32(out, at + 16 + 8 * i, field);
  }
  return at;
}

// The distinct IDs, named ones first, each group in first-seen order.
std::vector<ResourceId> Distinct(const std::vector<ResourceId>& all) {
  std::vector<ResourceId> ids;
  for (bool named : {true, false}) {
    for (const ResourceId& id : all) {
      auto same = [&](const ResourceId& other) { return other.Matches(id); };
      if (id.IsNumber() != named && std::none_of(ids.begin(), ids.end(), same)) ids.push_back(id);
    }
  }
  return ids;
}

}  // namespace

std::vector<uint8_t> PeBuilder::ResourceSection() const {
  std::vector<uint8_t> out;
  std::vector<ResourceId> allTypes;
  for (const Resource& r : resources_) allTypes.push_back(r.type);
  const auto types = Distinct(allTypes);
  const uint32_t root = Directory(out, types);
  for (size_t t = 0; t < types.size(); ++t) {
    std::vector<const Resource*> ofType;
    std::vector<ResourceId> allNames;
    for (const Resource& r : resources_) {
      if (r.type.Matches(types[t])) ofType.push_back(&r), allNames.push_back(r.name);
    }
    const auto names = Distinct(allNames);
    const uint32_t typeDir = Directory(out, names);
    Set32(out, root + 20 + 8 * t, kHighBit | typeDir);
    for (size_t n = 0; n < names.size(); ++n) {
      std::vector<const Resource*> languages;
      std::vector<ResourceId> languageIds;
      for (const Resource* r : ofType) {
        if (r->name.Matches(names[n])) languages.push_back(r), languageIds.push_back(ResourceId::Number(r->language));
      }
      const uint32_t nameDir = Directory(out, languageIds);
      Set32(out, typeDir + 20 + 8 * n, kHighBit | nameDir);
      for (size_t l = 0; l < languages.size(); ++l) {
        const std::vector<uint8_t>& data = languages[l]->data;
        const uint32_t entry = Reserve(out, 16, 4);
        const uint32_t blob = Reserve(out, data.size(), 8);
        std::copy(data.begin(), data.end(), out.begin() + blob);
        Set32(out, entry, kResourceRva + blob);
        Set32(out, entry + 4, static_cast<uint32_t>(data.size()));
        Set32(out, nameDir + 20 + 8 * l, entry);
      }
    }
  }
  return out;
}

std::vector<uint8_t> PeBuilder::Build() const {
  const bool plus = arch_ == Arch::kPe32Plus;
  const std::vector<uint8_t> section = ResourceSection();
  const auto size = static_cast<uint32_t>(section.size());
  const auto rawSize = static_cast<uint32_t>(AlignUp(section.size(), kFileAlignment));
  std::vector<uint8_t> image(kResourceFileOffset + rawSize);
  std::memcpy(&image[0], "MZ", 2);
  Set32(image, 0x3C, 0x40);
  std::memcpy(&image[0x40], "PE\0\0", 4);
  const size_t coff = 0x44, opt = coff + 20;
  const uint32_t optionalSize = plus ? 240 : 224;
  Set16(image, coff, plus ? 0x8664 : 0x14C);
  Set16(image, coff + 2, 1);
  Set16(image, coff + 16, optionalSize);
  Set16(image, coff + 18, 0x2022);  // executable, large-address aware, DLL
  Set16(image, opt, plus ? 0x20B : 0x10B);
  Set32(image, opt + 32, kSectionAlignment);
  Set32(image, opt + 36, kFileAlignment);
  Set32(image, opt + 56, static_cast<uint32_t>(kResourceRva + AlignUp(size, kSectionAlignment)));
  Set32(image, opt + 60, kResourceFileOffset);
  Set16(image, opt + 68, 2);  // GUI subsystem
  const size_t directories = opt + (plus ? 112 : 96);
  Set32(image, directories - 4, 16);
  Set32(image, directories + 16, kResourceRva);
  Set32(image, directories + 20, size);
  const size_t header = opt + optionalSize;
  std::memcpy(&image[header], ".rsrc", 5);
  Set32(image, header + 8, size);
  Set32(image, header + 12, kResourceRva);
  Set32(image, header + 16, rawSize);
  Set32(image, header + 20, kResourceFileOffset);
  Set32(image, header + 36, 0x40000040);  // initialised data, readable
  std::copy(section.begin(), section.end(), image.begin() + kResourceFileOffset);
  return image;
}

std::vector<uint8_t> VersionInfoBlock(uint32_t fileVersionMs, uint32_t fileVersionLs) {
  std::vector<uint8_t> block(92);
  Set16(block, 0, 92);
  Set16(block, 2, 52);
  const std::string_view key("VS_VERSION_INFO");
  for (size_t i = 0; i < key.size(); ++i) Set16(block, 6 + 2 * i, static_cast<uint8_t>(key[i]));
  Set32(block, 40, 0xFEEF04BD);
  Set32(block, 44, 0x00010000);
  for (size_t at : {48, 56}) Set32(block, at, fileVersionMs), Set32(block, at + 4, fileVersionLs);
  return block;
}

}  // namespace sentrune::testing
