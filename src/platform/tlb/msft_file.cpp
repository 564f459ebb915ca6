#include "platform/tlb/msft_file.h"

#include <cstdio>
#include <cstring>

#include "runtime/text.h"

namespace sentrune::portable::msft {
namespace {

constexpr uint32_t kHeaderSize = 0x54;
constexpr uint32_t kDirectoryEntrySize = 16;
constexpr uint32_t kHelpDllFlag = 0x100;
constexpr uint32_t kSysKindWin64 = 3;
// The fourth word of every directory entry; lets the directory be found when
// writers disagree on whether the help-DLL word precedes it.
constexpr int32_t kDirectoryMarker = 0x0F;

constexpr std::array<const char*, kSegmentCount> kSegmentNames = {
    "type info table", "import table", "import file table", "reference table", "GUID hash",
    "GUID table", "name hash", "name table", "string table", "type descriptor table",
    "array descriptor table", "value table", "custom data GUID table", "segment 13",
    "segment 14"};

// Names and strings are ANSI (cp1252); nearly all are plain ASCII, which
// needs no conversion.
std::string AnsiText(std::string_view bytes) {
  uint64_t high = 0;
  size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    uint64_t word;
    std::memcpy(&word, bytes.data() + i, 8);
    high |= word;
  }
  for (; i < bytes.size(); ++i) high |= static_cast<unsigned char>(bytes[i]);
  if (high & 0x8080808080808080u) return rt::Cp1252ToUtf8(bytes);
  return std::string(bytes);
}

void PutHex(char* out, uint64_t value, int digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int i = digits - 1; i >= 0; --i, value >>= 4) out[i] = kDigits[value & 0xF];
}

std::string Hex(uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
  return text;
}

}  // namespace

void Fail(const std::string& what) { throw MsftError(what); }

void Budget::Spend(uint64_t& left, uint64_t amount, const char* what) {
  if (amount > left) Fail(std::string("type infos share ") + what + ": more than the file holds");
  left -= amount;
}

uint64_t Segment::Offset(int32_t offset) const {
  if (offset < 0) Fail(std::string("negative offset ") + std::to_string(offset) + " in " + name_);
  return static_cast<uint64_t>(offset);
}

void Segment::OutOfRange(uint64_t offset) const {
  Fail(std::string("offset ") + Hex(offset) + " lies outside the " + name_ + " (size " +
       Hex(bytes_.size()) + ")");
}

MsftFile::MsftFile(std::span<const uint8_t> bytes) : file_(bytes) {
  if (!file_.Has(0, kHeaderSize)) Fail("the file is shorter than an MSFT header");
  if (*file_.Chars(0, 4) != "MSFT") Fail("the file does not start with \"MSFT\"");
  const uint32_t varFlags = *file_.U32(0x14);
  const int32_t count = *file_.I32(0x20);
  if (count < 0 || !file_.Has(kHeaderSize, static_cast<uint64_t>(count) * 4)) {
    Fail("type info count " + std::to_string(count) + " does not fit in the file");
  }
  if ((varFlags & 0xF) == kSysKindWin64) pointerSize_ = 8;
  ReadDirectory(varFlags, static_cast<uint32_t>(count));
}

bool MsftFile::DirectoryAt(uint64_t offset) const {
  if (!file_.Has(offset, kSegmentCount * kDirectoryEntrySize)) return false;
  return *file_.I32(offset + 12) == kDirectoryMarker &&
         *file_.I32(offset + kDirectoryEntrySize + 12) == kDirectoryMarker;
}

void MsftFile::ReadDirectory(uint32_t varFlags, uint32_t count) {
  // With a help DLL one more word sits between the header and the directory.
  const uint64_t plain = kHeaderSize + uint64_t{count} * 4;
  const bool preferExtra = (varFlags & kHelpDllFlag) != 0;
  uint64_t directory = preferExtra ? plain + 4 : plain;
  if (!DirectoryAt(directory)) directory = preferExtra ? plain : plain + 4;
  if (!DirectoryAt(directory)) Fail("no segment directory after the header");
  const uint64_t offsets = directory - uint64_t{count} * 4;

  for (int i = 0; i < kSegmentCount; ++i) {
    const uint64_t entry = directory + uint64_t(i) * kDirectoryEntrySize;
    const int32_t start = *file_.I32(entry);
    const int32_t length = *file_.I32(entry + 4);
    if (start == -1 || length <= 0) {
      segments_[i] = Segment(ByteReader(), kSegmentNames[i]);
      continue;
    }
    auto bytes = start < 0 ? std::nullopt : file_.Sub(uint64_t(start), uint64_t(length));
    if (!bytes) Fail(std::string("the ") + kSegmentNames[i] + " lies outside the file");
    segments_[i] = Segment(*bytes, kSegmentNames[i]);
  }

  const Segment& infos = segments_[kTypeInfoSeg];
  if (uint64_t{count} * kTypeInfoSize > infos.size()) {
    Fail(std::to_string(count) + " type infos do not fit in the type info table");
  }
  typeInfoOffsets_.reserve(count);
  indexByOffset_.reserve(count);
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t offset = *file_.U32(offsets + uint64_t{i} * 4);
    if (!infos.Has(offset, kTypeInfoSize)) Fail("type info " + std::to_string(i) + " lies outside its table");
    typeInfoOffsets_.push_back(offset);
    indexByOffset_.emplace(offset, static_cast<int32_t>(i));
  }
}

int32_t MsftFile::HeaderI32(uint32_t offset) const { return *file_.I32(offset); }

std::string MsftFile::Name(int32_t offset) const {
  if (offset == -1) return {};
  const Segment& names = segments_[kNameSeg];
  const uint64_t at = names.Offset(offset);
  const uint8_t length = names.U8(at + 8);
  return AnsiText(names.Chars(at + 12, length));
}

std::string MsftFile::String(int32_t offset) const {
  if (offset == -1) return {};
  const Segment& strings = segments_[kStringSeg];
  const uint64_t at = strings.Offset(offset);
  return AnsiText(strings.Chars(at + 2, strings.U16(at)));
}

std::string MsftFile::Guid(int32_t offset) const {
  if (offset == -1) return {};
  const Segment& guids = segments_[kGuidSeg];
  const uint64_t at = guids.Offset(offset);
  // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}": three little-endian fields, then
  // eight bytes in order.
  std::string text = "{00000000-0000-0000-0000-000000000000}";
  PutHex(&text[1], guids.U32(at), 8);
  PutHex(&text[10], guids.U16(at + 4), 4);
  PutHex(&text[15], guids.U16(at + 6), 4);
  for (int i = 0; i < 8; ++i) PutHex(&text[i < 2 ? 20 + 2 * i : 21 + 2 * i], guids.U8(at + 8 + i), 2);
  return text;
}

std::optional<int32_t> MsftFile::LocalIndex(int32_t hrefType) const {
  if (hrefType < 0 || (hrefType & 3) != 0) return std::nullopt;
  auto found = indexByOffset_.find(static_cast<uint32_t>(hrefType));
  if (found == indexByOffset_.end()) return std::nullopt;
  return found->second;
}

}  // namespace sentrune::portable::msft
