#pragma once
// Type descriptors, references and constant values of SLTG type infos.
// Private to the SLTG reader.
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/tlb/sltg_file.h"
#include "platform/tlb/typelib_raw.h"

namespace sentrune::portable::sltg {

// A type info's reference table: the types its descriptors and impls name,
// each either this library's type at a position or an imported library's.
class RefTable {
 public:
  RefTable() = default;
  // Reads the table at `offset` of the type info's block.
  RefTable(SltgFile& file, const Region& block, uint32_t offset);

  // kNone for a position the table does not have.
  RawRef Get(uint32_t position) const;

 private:
  RawRef Decode(SltgFile& file, std::string_view text) const;

  std::vector<RawRef> refs_;
};

// A type is a run of u16 words. Each word's low 6 bits are a VT; PTR and
// SAFEARRAY go on with the next word, CARRAY with the offset of its bounds
// first, USERDEFINED is followed by four times its reference's position.
// The bits 0xE00 together add one pointer level to any word. Only the first
// word's high bits mean more: they are the parameter's direction and flags.
namespace typeword {
inline constexpr uint16_t kVtMask = 0x3F;
inline constexpr uint16_t kPointer = 0x0E00;
inline constexpr uint16_t kRetval = 0x0080;
inline constexpr uint16_t kLcid = 0x2000;
inline constexpr uint16_t kDirection = 0xC000;
inline constexpr uint16_t kOut = 0x4000;
inline constexpr uint16_t kInOut = 0x8000;
inline constexpr uint16_t kNoDirection = 0xC000;
}  // namespace typeword

// PARAMFLAGS for a parameter whose type starts with `firstWord`.
uint16_t ParamFlags(uint16_t firstWord);

// Decodes each offset of a type info's member area once: records may share
// their types' words, and a type's tail is itself a type.
class TypeDecoder {
 public:
  TypeDecoder(RawLibrary& library, Budget& budget) : library_(library), budget_(budget) {}

  struct Decoded {
    int32_t index = -1;     // into RawLibrary::typeDescs
    uint64_t end = 0;       // offset after the last word
    uint16_t firstWord = 0;
    int depth = 0;          // levels of PTR, SAFEARRAY and CARRAY
  };
  // Offsets given to Decode from now on are in another member area.
  void BeginTypeInfo() { decoded_.clear(); }
  // The type whose words start at `offset` of the type info's member area.
  Decoded Decode(const Region& members, uint64_t offset, const RefTable& refs);
  // A type given as a bare VT.
  int32_t Plain(uint16_t vt);
  // The VT at the top of a decoded type.
  uint16_t Vt(int32_t index) const { return library_.typeDescs.at(static_cast<size_t>(index)).vt; }

 private:
  Decoded DecodeAt(const Region& members, uint64_t offset, const RefTable& refs, int level);
  [[noreturn]] static void TooDeep(const Region& members, uint64_t offset);
  int32_t Add(RawTypeDesc desc);

  RawLibrary& library_;
  Budget& budget_;
  std::unordered_map<uint16_t, int32_t> plain_;  // index by VT
  std::unordered_map<uint64_t, Decoded> decoded_;  // by offset in the member area
};

// A constant's value: `field` holds the value itself when `inlineValue`,
// else its offset in the member area. nullopt for a type with no known value
// layout.
std::optional<platform::TlbValue> ConstValue(const Region& members, uint16_t field,
                                             bool inlineValue, uint16_t vt, Budget& budget);

}  // namespace sentrune::portable::sltg
