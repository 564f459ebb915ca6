#pragma once
// A bounds-checked little-endian view over the bytes of a file. Every binary
// reader of untrusted input (PE images, type libraries) reads through this so
// that a truncated or hostile file can only produce an empty optional, never an
// out-of-range access: offsets and sizes are validated before they are added,
// so no arithmetic wraps.
#include <bit>
#include <cstddef>
#include <cstring>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace sentrune::portable {

class ByteReader {
 public:
  ByteReader() = default;
  explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  std::span<const uint8_t> bytes() const { return bytes_; }
  size_t size() const { return bytes_.size(); }

  // True when [offset, offset + count) lies inside the bytes.
  bool Has(uint64_t offset, uint64_t count) const {
    return offset <= bytes_.size() && count <= bytes_.size() - offset;
  }

  std::optional<uint8_t> U8(uint64_t offset) const {
    if (!Has(offset, 1)) return std::nullopt;
    return bytes_[offset];
  }
  std::optional<uint16_t> U16(uint64_t offset) const { return Little<uint16_t>(offset); }
  std::optional<uint32_t> U32(uint64_t offset) const { return Little<uint32_t>(offset); }
  std::optional<uint64_t> U64(uint64_t offset) const { return Little<uint64_t>(offset); }
  std::optional<int8_t> I8(uint64_t offset) const { return Signed<int8_t>(U8(offset)); }
  std::optional<int16_t> I16(uint64_t offset) const { return Signed<int16_t>(U16(offset)); }
  std::optional<int32_t> I32(uint64_t offset) const { return Signed<int32_t>(U32(offset)); }
  std::optional<int64_t> I64(uint64_t offset) const { return Signed<int64_t>(U64(offset)); }

  // The bytes [offset, offset + count), or nullopt when they are not all there.
  std::optional<std::span<const uint8_t>> Span(uint64_t offset, uint64_t count) const {
    if (!Has(offset, count)) return std::nullopt;
    return bytes_.subspan(static_cast<size_t>(offset), static_cast<size_t>(count));
  }
  // A reader over [offset, offset + count); offsets given to it are relative.
  std::optional<ByteReader> Sub(uint64_t offset, uint64_t count) const {
    auto span = Span(offset, count);
    if (!span) return std::nullopt;
    return ByteReader(*span);
  }
  // The same bytes viewed as characters (no copy, no encoding assumed).
  std::optional<std::string_view> Chars(uint64_t offset, uint64_t count) const {
    auto span = Span(offset, count);
    if (!span) return std::nullopt;
    return std::string_view(reinterpret_cast<const char*>(span->data()), span->size());
  }

 private:
  // One unaligned load; the byte order is fixed up on big-endian hosts only.
  template <typename T>
  std::optional<T> Little(uint64_t offset) const {
    if (!Has(offset, sizeof(T))) return std::nullopt;
    T value;
    std::memcpy(&value, bytes_.data() + offset, sizeof(T));
    if constexpr (std::endian::native == std::endian::big) {
      T swapped = 0;
      for (size_t i = 0; i < sizeof(T); ++i, value >>= 8) swapped = static_cast<T>((swapped << 8) | (value & 0xFF));
      value = swapped;
    }
    return value;
  }
  template <typename S, typename U>
  static std::optional<S> Signed(std::optional<U> value) {
    if (!value) return std::nullopt;
    return static_cast<S>(*value);
  }

  std::span<const uint8_t> bytes_;
};

}  // namespace sentrune::portable
