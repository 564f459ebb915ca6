#pragma once
// Pieces the SLTG test writer shares between the library block and the type
// info blocks: a little-endian byte buffer, the name table and the help
// string encoder.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "portable/sltg_builder.h"
#include "runtime/text.h"

namespace sentrune::portable::testing::sltg_writer {

inline constexpr uint16_t kNone = 0xFFFF;

class Out {
 public:
  size_t size() const { return bytes_.size(); }
  std::vector<uint8_t>& bytes() { return bytes_; }
  void U8(uint8_t v) { bytes_.push_back(v); }
  void U16(uint16_t v) {
    U8(v & 0xFF);
    U8(v >> 8);
  }
  void U32(uint32_t v) {
    U16(v & 0xFFFF);
    U16(v >> 16);
  }
  void U64(uint64_t v) {
    U32(v & 0xFFFFFFFF);
    U32(v >> 32);
  }
  void Fill(size_t count, uint8_t v) { bytes_.insert(bytes_.end(), count, v); }
  void Append(const std::vector<uint8_t>& more) { bytes_.insert(bytes_.end(), more.begin(), more.end()); }
  void Text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  // A u16 count and the characters, or 0xFFFF for none.
  void Counted(const std::string& utf8) {
    if (utf8.empty()) return U16(kNone);
    const std::string text = rt::Utf8ToCp1252(utf8);
    U16(static_cast<uint16_t>(text.size()));
    Text(text);
  }
  void Guid(const std::string& text) {
    uint8_t raw[16] = {};
    if (!text.empty()) {
      std::string hex;
      for (char c : text) {
        if (std::isxdigit(static_cast<unsigned char>(c))) hex += c;
      }
      for (int i = 0; i < 16; ++i) raw[i] = static_cast<uint8_t>(std::stoi(hex.substr(i * 2, 2), nullptr, 16));
      std::reverse(raw, raw + 4);
      std::reverse(raw + 4, raw + 6);
      std::reverse(raw + 6, raw + 8);
    }
    bytes_.insert(bytes_.end(), raw, raw + 16);
  }
  // Remembers a u16 to fill in later.
  size_t Hole() {
    U16(0);
    return size() - 2;
  }
  void Fill16(size_t at, size_t v) {
    bytes_[at] = static_cast<uint8_t>(v & 0xFF);
    bytes_[at + 1] = static_cast<uint8_t>(v >> 8);
  }
  void Fill32(size_t at, uint32_t v) {
    Fill16(at, v & 0xFFFF);
    Fill16(at + 2, v >> 16);
  }

 private:
  std::vector<uint8_t> bytes_;
};


// Entries: 8 bytes of hash links (0xFF, so a name word never mistakes them
// for a letter) and the name; an offset addresses the entry.
class NameTable {
 public:
  uint16_t Add(const std::string& utf8) {
    const std::string text = rt::Utf8ToCp1252(utf8);
    const auto [found, added] = offsets_.try_emplace(text, 0);
    if (!added) return found->second;
    found->second = static_cast<uint16_t>(out_.size());
    out_.Fill(8, 0xFF);
    out_.Text(text);
    out_.U8(0);
    if (out_.size() % 2) out_.U8(0);
    return found->second;
  }
  std::vector<uint8_t>& bytes() { return out_.bytes(); }

 private:
  Out out_;
  std::map<std::string, uint16_t> offsets_;
};


// A balanced tree over every word used plus the empty end word.
class HelpEncoder {
 public:
  explicit HelpEncoder(const SltgLibrary& library);
  std::vector<uint8_t>& tree() { return tree_.bytes(); }
  // The longest string with its terminator.
  uint16_t longest() const { return static_cast<uint16_t>(longest_ + 1); }
  std::vector<uint8_t> Encode(const std::string& help) const;

 private:
  void WriteNode(const std::vector<std::string>& leaves, size_t begin, size_t end,
                 std::vector<bool> path);

  Out tree_;
  std::map<std::string, std::vector<bool>> codes_;
  size_t longest_ = 0;
};

std::string Hex(uint32_t value);

}  // namespace sentrune::portable::testing::sltg_writer
