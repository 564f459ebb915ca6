#pragma once
// The MSFT container: header, segment directory and the shared tables every
// record refers into (names, strings, GUIDs, type descriptors, values,
// imports). Private to the MSFT reader.
//
// Decoding failures throw MsftError; ReadMsft turns it into the error result,
// so the many reads of one record need no individual checks.
#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/pe/byte_reader.h"
#include "platform/tlb/typelib_raw.h"

namespace sentrune::portable::msft {

class MsftError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

[[noreturn]] void Fail(const std::string& what);

enum SegmentId : int {
  kTypeInfoSeg = 0, kImpInfoSeg = 1, kImpFileSeg = 2, kRefTabSeg = 3, kGuidSeg = 5,
  kNameSeg = 7, kStringSeg = 8, kTypeDescSeg = 9, kArrayDescSeg = 10, kCustDataSeg = 11,
  kSegmentCount = 15,
};

inline constexpr uint32_t kTypeInfoSize = 0x64;
inline constexpr uint32_t kTypeDescEntrySize = 8;

// What one library may decode in total. In a well-formed file every type info
// has member records and interface entries of its own, so the totals stay
// within the file; type infos that share them would make the output grow
// with the square of the file's size.
struct Budget {
  uint64_t memberBytes = 0;      // member blocks with their tables
  uint64_t interfaceEntries = 0;  // coclass interface list entries

  // Takes `amount` from `left`, failing when it is not there.
  static void Spend(uint64_t& left, uint64_t amount, const char* what);
};

// One segment's bytes; reads throw MsftError naming the segment.
class Segment {
 public:
  Segment() = default;
  Segment(ByteReader bytes, const char* name) : bytes_(bytes), name_(name) {}
  uint64_t size() const { return bytes_.size(); }
  bool Has(uint64_t offset, uint64_t count) const { return bytes_.Has(offset, count); }
  uint8_t U8(uint64_t offset) const { return Must(bytes_.U8(offset), offset); }
  uint16_t U16(uint64_t offset) const { return Must(bytes_.U16(offset), offset); }
  int16_t I16(uint64_t offset) const { return Must(bytes_.I16(offset), offset); }
  int32_t I32(uint64_t offset) const { return Must(bytes_.I32(offset), offset); }
  uint32_t U32(uint64_t offset) const { return Must(bytes_.U32(offset), offset); }
  uint64_t U64(uint64_t offset) const { return Must(bytes_.U64(offset), offset); }
  std::string_view Chars(uint64_t offset, uint64_t count) const {
    return Must(bytes_.Chars(offset, count), offset);
  }
  // An offset read from the file, rejected when negative.
  uint64_t Offset(int32_t offset) const;

 private:
  template <typename T>
  T Must(const std::optional<T>& value, uint64_t offset) const {
    if (!value) OutOfRange(offset);
    return *value;
  }
  [[noreturn]] void OutOfRange(uint64_t offset) const;

  ByteReader bytes_;
  const char* name_ = "";
};

class MsftFile {
 public:
  explicit MsftFile(std::span<const uint8_t> bytes);

  const ByteReader& bytes() const { return file_; }
  const Segment& segment(SegmentId id) const { return segments_[id]; }
  uint32_t typeInfoCount() const { return static_cast<uint32_t>(typeInfoOffsets_.size()); }
  uint32_t typeInfoOffset(uint32_t index) const { return typeInfoOffsets_[index]; }
  uint8_t pointerSize() const { return pointerSize_; }

  // Header fields, by byte offset in the header.
  int32_t HeaderI32(uint32_t offset) const;

  // Table lookups; an offset of -1 gives an empty result.
  std::string Name(int32_t offset) const;
  std::string String(int32_t offset) const;
  std::string Guid(int32_t offset) const;

  // A local type info's position for a typeinfo-offset hreftype.
  std::optional<int32_t> LocalIndex(int32_t hrefType) const;

 private:
  void ReadDirectory(uint32_t varFlags, uint32_t count);
  bool DirectoryAt(uint64_t offset) const;

  ByteReader file_;
  std::array<Segment, kSegmentCount> segments_;
  std::vector<uint32_t> typeInfoOffsets_;
  std::unordered_map<uint32_t, int32_t> indexByOffset_;
  uint8_t pointerSize_ = 4;
};

// Decodes type descriptors, references and values into a RawLibrary's
// tables, each stored descriptor once.
class MsftTypes {
 public:
  MsftTypes(const MsftFile& file, RawLibrary& library);

  // A DataType field (inline VT or a descriptor offset) as a typeDescs index.
  int32_t TypeDesc(int32_t dataType);
  // The typeDescs index of the stored descriptor at `offset` if it has been
  // decoded, else -1.
  int32_t Decoded(uint64_t offset) const {
    if (offset % kTypeDescEntrySize != 0 || offset / kTypeDescEntrySize >= storedIndex_.size()) return -1;
    return storedIndex_[offset / kTypeDescEntrySize];
  }
  RawRef Ref(int32_t hrefType) const;
  platform::TlbValue Value(int32_t valueRef) const;

 private:
  int32_t InlineType(uint16_t vt);
  int32_t StoredType(uint32_t offset, int depth);
  int32_t Element(int32_t dataType, int depth);
  int32_t ArrayElement(int32_t offset, int depth);
  int32_t Add(RawTypeDesc desc);
  RawRef ImportedRef(uint32_t impInfoOffset) const;

  const MsftFile& file_;
  RawLibrary& library_;
  std::vector<int32_t> storedIndex_;               // by descriptor offset / 8
  std::vector<int32_t> inlineIndex_;  // by VT
};

}  // namespace sentrune::portable::msft
