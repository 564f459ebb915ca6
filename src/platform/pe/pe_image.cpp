#include "platform/pe/pe_image.h"

#include <algorithm>

#include "runtime/text.h"

namespace sentrune::portable {
namespace {

constexpr uint16_t kMzSignature = 0x5A4D;      // "MZ"
constexpr uint32_t kPeSignature = 0x00004550;  // "PE\0\0"
constexpr uint16_t kPe32Magic = 0x10B;
constexpr uint16_t kPe32PlusMagic = 0x20B;
constexpr uint64_t kLfanewOffset = 0x3C;
constexpr uint64_t kCoffHeaderSize = 20;
constexpr uint64_t kSectionHeaderSize = 40;
constexpr uint32_t kResourceDirectoryIndex = 2;
constexpr uint32_t kHighBit = 0x80000000u;

rt::VbError FormatError(const std::string& what) {
  return rt::MakeError(kInvalidFileFormat, "Not a valid PE image: " + what);
}

char FoldAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

bool EqualsIgnoringAsciiCase(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return FoldAscii(x) == FoldAscii(y); });
}

// Resource names are UTF-16; a lone surrogate becomes U+FFFD rather than
// failing, so that a damaged name simply matches nothing.
std::string Utf16ToUtf8(const ByteReader& units) {
  std::u32string codePoints;
  const uint64_t count = units.size() / 2;
  for (uint64_t i = 0; i < count; ++i) {
    const char32_t unit = *units.U16(2 * i);
    const char32_t low = i + 1 < count ? *units.U16(2 * (i + 1)) : 0;
    if (unit >= 0xD800 && unit <= 0xDBFF && low >= 0xDC00 && low <= 0xDFFF) {
      codePoints += 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
      ++i;
    } else {
      codePoints += unit;
    }
  }
  return rt::FromCodePoints(codePoints);
}

// The RVA of the resource directory, 0 when the optional header has none.
// The data directories sit later in PE32+ because its image base and stack
// sizes are 64-bit.
uint32_t ResourceDirectoryRva(const ByteReader& optionalHeader, bool is64) {
  const uint64_t countOffset = is64 ? 108 : 92;
  auto count = optionalHeader.U32(countOffset);
  if (!count || *count <= kResourceDirectoryIndex) return 0;
  return optionalHeader.U32(countOffset + 4 + 8 * uint64_t{kResourceDirectoryIndex}).value_or(0);
}

}  // namespace

bool ResourceId::Matches(const ResourceId& other) const {
  if (IsNumber() != other.IsNumber()) return false;
  return IsNumber() ? number() == other.number() : EqualsIgnoringAsciiCase(name(), other.name());
}

std::string ResourceId::ToString() const {
  return IsNumber() ? "#" + std::to_string(number()) : name();
}

bool PeImage::LooksLikePe(std::span<const uint8_t> bytes) {
  ByteReader file(bytes);
  if (file.U16(0) != kMzSignature) return false;
  auto lfanew = file.U32(kLfanewOffset);
  return lfanew && file.U32(*lfanew) == kPeSignature;
}

rt::Result<PeImage> PeImage::Parse(std::span<const uint8_t> bytes) {
  ByteReader file(bytes);
  if (file.U16(0) != kMzSignature) return FormatError("no \"MZ\" header");
  auto lfanew = file.U32(kLfanewOffset);
  if (!lfanew || file.U32(*lfanew) != kPeSignature) return FormatError("no \"PE\" signature");

  const uint64_t coff = uint64_t{*lfanew} + 4;
  if (!file.Has(coff, kCoffHeaderSize)) return FormatError("file header truncated");
  const uint16_t sectionCount = *file.U16(coff + 2);
  const uint16_t optionalSize = *file.U16(coff + 16);
  const uint64_t optional = coff + kCoffHeaderSize;
  if (!file.Has(optional, optionalSize)) return FormatError("optional header truncated");

  const auto magic = optionalSize >= 2 ? file.U16(optional) : std::nullopt;
  if (magic != kPe32Magic && magic != kPe32PlusMagic) {
    return FormatError("unknown optional header magic");
  }
  const bool is64 = magic == kPe32PlusMagic;

  const uint32_t resourceRva = ResourceDirectoryRva(*file.Sub(optional, optionalSize), is64);

  const uint64_t table = optional + optionalSize;
  if (!file.Has(table, kSectionHeaderSize * sectionCount)) return FormatError("section table truncated");
  std::vector<Section> sections;
  sections.reserve(sectionCount);
  for (uint64_t i = 0; i < sectionCount; ++i) {
    const uint64_t header = table + i * kSectionHeaderSize;
    Section s;
    s.virtualAddress = *file.U32(header + 12);
    s.rawOffset = *file.U32(header + 20);
    const uint64_t present = s.rawOffset <= file.size() ? file.size() - s.rawOffset : 0;
    s.rawSize = static_cast<uint32_t>(std::min<uint64_t>(*file.U32(header + 16), present));
    sections.push_back(s);
  }

  PeImage image(file, is64, std::move(sections), resourceRva);
  if (resourceRva != 0 && image.resources_.size() == 0) {
    return FormatError("resource directory lies outside the file");
  }
  return image;
}

PeImage::PeImage(ByteReader file, bool is64, std::vector<Section> sections, uint32_t resourceRva)
    : file_(file), is64_(is64), sections_(std::move(sections)) {
  if (resourceRva == 0) return;
  // Offsets inside the resource tree are relative to the root, and the tree
  // may reach anywhere up to the end of its section's raw data.
  for (const Section& s : sections_) {
    if (resourceRva < s.virtualAddress || resourceRva - s.virtualAddress >= s.rawSize) continue;
    const uint32_t start = resourceRva - s.virtualAddress;
    resources_ = *file_.Sub(uint64_t{s.rawOffset} + start, s.rawSize - start);
    return;
  }
}

std::optional<std::span<const uint8_t>> PeImage::MapRva(uint32_t rva, uint32_t size) const {
  for (const Section& s : sections_) {
    if (rva < s.virtualAddress) continue;
    const uint64_t start = rva - s.virtualAddress;
    if (start + size > s.rawSize) continue;
    return file_.Span(uint64_t{s.rawOffset} + start, size);
  }
  return std::nullopt;
}

std::vector<PeImage::DirEntry> PeImage::ReadDirectory(uint32_t offset) const {
  auto named = resources_.U16(uint64_t{offset} + 12);
  auto numbered = resources_.U16(uint64_t{offset} + 14);
  if (!named || !numbered) return {};
  const uint64_t count = uint64_t{*named} + *numbered;
  const uint64_t first = uint64_t{offset} + 16;
  if (!resources_.Has(first, 8 * count)) return {};
  std::vector<DirEntry> entries;
  entries.reserve(count);
  for (uint64_t i = 0; i < count; ++i) {
    entries.push_back({*resources_.U32(first + 8 * i), *resources_.U32(first + 8 * i + 4)});
  }
  return entries;
}

std::optional<ResourceId> PeImage::EntryName(const DirEntry& entry) const {
  if ((entry.nameField & kHighBit) == 0) return ResourceId::Number(entry.nameField);
  const uint64_t offset = entry.nameField & ~kHighBit;
  auto length = resources_.U16(offset);
  if (!length) return std::nullopt;
  auto units = resources_.Sub(offset + 2, uint64_t{*length} * 2);
  if (!units) return std::nullopt;
  return ResourceId::Named(Utf16ToUtf8(*units));
}

bool PeImage::EntryMatches(const DirEntry& entry, const ResourceId& id) const {
  if (id.IsNumber()) return (entry.nameField & kHighBit) == 0 && entry.nameField == id.number();
  if ((entry.nameField & kHighBit) == 0) return false;
  auto name = EntryName(entry);
  return name && name->Matches(id);
}

// The walk goes down exactly one entry per level and never back up, so even a
// directory that points at itself or at an ancestor costs at most three
// directory scans, each bounded by the section's size.
std::optional<uint32_t> PeImage::FindSubdirectory(uint32_t dirOffset, const ResourceId& id) const {
  for (const DirEntry& entry : ReadDirectory(dirOffset)) {
    if (!EntryMatches(entry, id)) continue;
    if ((entry.dataField & kHighBit) == 0) return std::nullopt;
    return entry.dataField & ~kHighBit;
  }
  return std::nullopt;
}

std::optional<std::span<const uint8_t>> PeImage::FirstLanguageData(uint32_t nameDirOffset) const {
  auto entries = ReadDirectory(nameDirOffset);
  if (entries.empty() || (entries.front().dataField & kHighBit) != 0) return std::nullopt;
  const uint64_t dataEntry = entries.front().dataField;
  auto rva = resources_.U32(dataEntry);
  auto size = resources_.U32(dataEntry + 4);
  if (!rva || !size) return std::nullopt;
  return MapRva(*rva, *size);
}

std::optional<std::span<const uint8_t>> PeImage::FindResource(const ResourceId& type,
                                                              const ResourceId& name) const {
  if (resources_.size() == 0) return std::nullopt;
  auto typeDir = FindSubdirectory(0, type);
  if (!typeDir) return std::nullopt;
  auto nameDir = FindSubdirectory(*typeDir, name);
  if (!nameDir) return std::nullopt;
  return FirstLanguageData(*nameDir);
}

std::vector<ResourceId> PeImage::ResourceNames(const ResourceId& type) const {
  std::vector<ResourceId> names;
  if (resources_.size() == 0) return names;
  auto typeDir = FindSubdirectory(0, type);
  if (!typeDir) return names;
  for (const DirEntry& entry : ReadDirectory(*typeDir)) {
    if (auto name = EntryName(entry)) names.push_back(std::move(*name));
  }
  return names;
}

}  // namespace sentrune::portable
