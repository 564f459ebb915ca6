#pragma once
// Bounds-checked views over the parts of an SLTG file. Private to the SLTG
// reader: a failed read throws SltgError naming the part, and ReadSltg turns
// that into the error result, so a record's many reads need no single checks.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/pe/byte_reader.h"

namespace sentrune::portable::sltg {

class SltgError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

[[noreturn]] inline void Fail(const std::string& what) { throw SltgError(what); }

inline std::string Hex(uint64_t value) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  do {
    text.insert(text.begin(), kDigits[value & 0xF]);
    value >>= 4;
  } while (value != 0);
  return "0x" + text;
}

// A stored text for an error message, shortened when long.
inline std::string Quote(std::string_view text) {
  constexpr size_t kShown = 60;
  return "\"" + std::string(text.substr(0, kShown)) + (text.size() > kShown ? "...\"" : "\"");
}

class Region {
 public:
  Region() = default;
  Region(ByteReader bytes, std::string name) : bytes_(bytes), name_(std::move(name)) {}

  uint64_t size() const { return bytes_.size(); }
  const std::string& name() const { return name_; }
  const ByteReader& reader() const { return bytes_; }
  bool Has(uint64_t offset, uint64_t count) const { return bytes_.Has(offset, count); }
  void Require(uint64_t offset, uint64_t count) const {
    if (!Has(offset, count)) OutOfRange(offset);
  }

  uint8_t U8(uint64_t offset) const { return Must(bytes_.U8(offset), offset); }
  uint16_t U16(uint64_t offset) const { return Must(bytes_.U16(offset), offset); }
  uint32_t U32(uint64_t offset) const { return Must(bytes_.U32(offset), offset); }
  uint64_t U64(uint64_t offset) const { return Must(bytes_.U64(offset), offset); }
  std::string_view Chars(uint64_t offset, uint64_t count) const {
    return Must(bytes_.Chars(offset, count), offset);
  }
  Region Sub(uint64_t offset, uint64_t count, std::string name) const {
    return Region(Must(bytes_.Sub(offset, count), offset), std::move(name));
  }
  // Everything from `offset` to the end.
  Region Tail(uint64_t offset, std::string name) const {
    if (offset > size()) OutOfRange(offset);
    return Sub(offset, size() - offset, std::move(name));
  }
  // The characters from `offset` up to the next NUL, which must come within
  // `limit` characters.
  std::string_view CString(uint64_t offset, uint64_t limit = UINT64_MAX) const {
    const std::string_view rest = Chars(offset, size() - std::min<uint64_t>(offset, size()));
    const size_t end = rest.substr(0, std::min<uint64_t>(limit, rest.size())).find('\0');
    if (end == std::string_view::npos) {
      Fail("a text at " + Hex(offset) + " in the " + name_ + " is not terminated");
    }
    return rest.substr(0, end);
  }

 private:
  template <typename T>
  T Must(const std::optional<T>& value, uint64_t offset) const {
    if (!value) OutOfRange(offset);
    return *value;
  }
  [[noreturn]] void OutOfRange(uint64_t offset) const {
    Fail("a read at " + Hex(offset) + " lies outside the " + name_ + " (size " + Hex(size()) + ")");
  }

  ByteReader bytes_;
  std::string name_;
};

// The work a file may cause beyond one pass over its bytes: records can
// point at the same bytes again and again (a shared parameter list, a name,
// a help string), so every copy and every decoded item is paid from here.
class Budget {
 public:
  explicit Budget(uint64_t units) : left_(units) {}
  void Spend(uint64_t units) {
    if (units > left_) Fail("the file refers to its own contents more often than its size justifies");
    left_ -= units;
  }

 private:
  uint64_t left_;
};

// Reads a region front to back.
class Cursor {
 public:
  explicit Cursor(const Region& region, uint64_t position = 0)
      : region_(region), position_(position) {}
  uint64_t position() const { return position_; }
  const Region& region() const { return region_; }

  uint16_t U16() { return Take(region_.U16(position_), 2); }
  uint32_t U32() { return Take(region_.U32(position_), 4); }
  void Skip(uint64_t count) {
    region_.Require(position_, count);
    position_ += count;
  }
  // A u16 byte count and that many characters; a count of 0xFFFF means none.
  std::string_view Counted() {
    const uint16_t count = U16();
    if (count == 0xFFFF) return {};
    return Take(region_.Chars(position_, count), count);
  }
  // A GUID in registry form, upper case; empty for the all-zero GUID.
  std::string Guid() {
    const auto bytes = region_.Chars(position_, 16);
    position_ += 16;
    // Data1, Data2 and Data3 are little-endian; the last eight bytes are in order.
    static constexpr int kOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "{";
    bool zero = true;
    for (int i = 0; i < 16; ++i) {
      if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
      const auto byte = static_cast<uint8_t>(bytes[kOrder[i]]);
      zero = zero && byte == 0;
      text += kDigits[byte >> 4];
      text += kDigits[byte & 0xF];
    }
    return zero ? std::string() : text + "}";
  }

 private:
  template <typename T>
  T Take(T value, uint64_t width) {
    position_ += width;
    return value;
  }

  const Region& region_;
  uint64_t position_;
};

}  // namespace sentrune::portable::sltg
