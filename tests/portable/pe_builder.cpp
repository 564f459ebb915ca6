#include "pe_builder.h"

#include <algorithm>
#include <cstring>

namespace sentrune::testing {
namespace {

using portable::ResourceId;

constexpr uint32_t kHighBit = 0x80000000u;
constexpr size_t kFileAlignment = 0x200;
constexpr size_t kSectionAlignment = 0x1000;

size_t AlignUp(size_t value, size_t alignment) { return (value + alignment - 1) / alignment * alignment; }

void Put16(std::vector<uint8_t>& out, size_t at, uint32_t value) {
  out[at] = static_cast<uint8_t>(value);
  out[at + 1] = static_cast<uint8_t>(value >> 8);
}

void Put32(std::vector<uint8_t>& out, size_t at, uint32_t value) {
  Put16(out, at, value & 0xFFFF);
  Put16(out, at + 2, value >> 16);
}

// Appends zeroed space at an aligned offset and returns that offset.
uint32_t Reserve(std::vector<uint8_t>& out, size_t size, size_t alignment) {
  out.resize(AlignUp(out.size(), alignment));
  const size_t at = out.size();
  out.resize(at + size);
  return static_cast<uint32_t>(at);
}

uint32_t NameField(std::vector<uint8_t>& out, const ResourceId& id) {
  if (id.IsNumber()) return id.number();
  const std::string& name = id.name();
  const uint32_t at = Reserve(out, 2 + 2 * name.size(), 2);
  Put16(out, at, static_cast<uint32_t>(name.size()));
  for (size_t i = 0; i < name.size(); ++i) Put16(out, at + 2 + 2 * i, static_cast<uint8_t>(name[i]));
  return kHighBit | at;
}

// A directory whose entries are the given IDs (named first, as stored);
// returns its offset. Entry i's data field is at offset + 20 + 8 * i.
uint32_t Directory(std::vector<uint8_t>& out, const std::vector<ResourceId>& ids) {
  const uint32_t at = Reserve(out, 16 + 8 * ids.size(), 4);
  const auto named = std::count_if(ids.begin(), ids.end(), [](const ResourceId& id) { return !id.IsNumber(); });
  Put16(out, at + 12, static_cast<uint32_t>(named));
  Put16(out, at + 14, static_cast<uint32_t>(ids.size() - named));
  for (size_t i = 0; i < ids.size(); ++i) {
    const uint32_t field = NameField(out, ids[i]);
    Put32(out, at + 16 + 8 * i, field);
  }
  return at;
}

// The distinct IDs of a sequence, named ones first, each group in first-seen order.
template <typename Items, typename Key>
std::vector<ResourceId> DistinctIds(const Items& items, Key key) {
  std::vector<ResourceId> ids;
  for (bool named : {true, false}) {
    for (const auto& item : items) {
      const ResourceId& id = key(item);
      if (id.IsNumber() == named) continue;
      auto same = [&](const ResourceId& other) { return other.Matches(id); };
      if (std::none_of(ids.begin(), ids.end(), same)) ids.push_back(id);
    }
  }
  return ids;
}

}  // namespace

PeBuilder& PeBuilder::Add(ResourceId type, ResourceId name, std::vector<uint8_t> data, uint16_t language) {
  resources_.push_back({std::move(type), std::move(name), language, std::move(data)});
  return *this;
}

std::vector<uint8_t> PeBuilder::BuildResourceSection() const {
  std::vector<uint8_t> out;
  const auto types = DistinctIds(resources_, [](const Resource& r) -> const ResourceId& { return r.type; });
  const uint32_t root = Directory(out, types);
  for (size_t t = 0; t < types.size(); ++t) {
    std::vector<const Resource*> ofType;
    for (const Resource& r : resources_) {
      if (r.type.Matches(types[t])) ofType.push_back(&r);
    }
    const auto names = DistinctIds(ofType, [](const Resource* r) -> const ResourceId& { return r->name; });
    const uint32_t typeDir = Directory(out, names);
    Put32(out, root + 20 + 8 * t, kHighBit | typeDir);
    for (size_t n = 0; n < names.size(); ++n) {
      std::vector<const Resource*> languages;
      for (const Resource* r : ofType) {
        if (r->name.Matches(names[n])) languages.push_back(r);
      }
      std::vector<ResourceId> languageIds;
      for (const Resource* r : languages) languageIds.push_back(ResourceId::Number(r->language));
      const uint32_t nameDir = Directory(out, languageIds);
      Put32(out, typeDir + 20 + 8 * n, kHighBit | nameDir);
      for (size_t l = 0; l < languages.size(); ++l) {
        const std::vector<uint8_t>& data = languages[l]->data;
        const uint32_t entry = Reserve(out, 16, 4);
        const uint32_t blob = Reserve(out, data.size(), 8);
        std::copy(data.begin(), data.end(), out.begin() + blob);
        Put32(out, entry, kResourceRva + blob);
        Put32(out, entry + 4, static_cast<uint32_t>(data.size()));
        Put32(out, nameDir + 20 + 8 * l, entry);
      }
    }
  }
  return out;
}

std::vector<uint8_t> PeBuilder::Build() const {
  const bool plus = arch_ == Arch::kPe32Plus;
  const std::vector<uint8_t> section = BuildResourceSection();
  const size_t rawSize = AlignUp(section.size(), kFileAlignment);
  std::vector<uint8_t> image(kResourceFileOffset + rawSize);

  image[0] = 'M';
  image[1] = 'Z';
  Put32(image, 0x3C, 0x40);
  std::memcpy(&image[0x40], "PE\0\0", 4);
  const size_t coff = 0x44;
  const uint32_t optionalSize = plus ? 240 : 224;
  Put16(image, coff, plus ? 0x8664 : 0x14C);
  Put16(image, coff + 2, 1);
  Put16(image, coff + 16, optionalSize);
  Put16(image, coff + 18, 0x2022);  // executable, large-address aware, DLL

  const size_t opt = coff + 20;
  Put16(image, opt, plus ? 0x20B : 0x10B);
  Put32(image, opt + 32, kSectionAlignment);
  Put32(image, opt + 36, kFileAlignment);
  Put32(image, opt + 56, static_cast<uint32_t>(kResourceRva + AlignUp(section.size(), kSectionAlignment)));
  Put32(image, opt + 60, kResourceFileOffset);
  Put16(image, opt + 68, 2);  // GUI subsystem
  const size_t directories = opt + (plus ? 112 : 96);
  Put32(image, directories - 4, 16);
  Put32(image, directories + 16, kResourceRva);
  Put32(image, directories + 20, static_cast<uint32_t>(section.size()));

  const size_t header = opt + optionalSize;
  std::memcpy(&image[header], ".rsrc", 5);
  Put32(image, header + 8, static_cast<uint32_t>(section.size()));
  Put32(image, header + 12, kResourceRva);
  Put32(image, header + 16, static_cast<uint32_t>(rawSize));
  Put32(image, header + 20, kResourceFileOffset);
  Put32(image, header + 36, 0x40000040);  // initialised data, readable

  std::copy(section.begin(), section.end(), image.begin() + kResourceFileOffset);
  return image;
}

std::vector<uint8_t> VersionInfoBlock(uint32_t fileVersionMs, uint32_t fileVersionLs) {
  std::vector<uint8_t> block(92);
  Put16(block, 0, 92);
  Put16(block, 2, 52);
  const std::string_view key("VS_VERSION_INFO");
  for (size_t i = 0; i < key.size(); ++i) Put16(block, 6 + 2 * i, static_cast<uint8_t>(key[i]));
  Put32(block, 40, 0xFEEF04BD);
  Put32(block, 44, 0x00010000);
  Put32(block, 48, fileVersionMs);
  Put32(block, 52, fileVersionLs);
  Put32(block, 56, fileVersionMs);
  Put32(block, 60, fileVersionLs);
  return block;
}

std::vector<uint8_t> ToBytes(std::string_view text) { return {text.begin(), text.end()}; }

}  // namespace sentrune::testing
