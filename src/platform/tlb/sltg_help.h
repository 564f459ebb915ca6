#pragma once
// Help strings of type infos and members are stored compressed: one tree
// shared by the library has words at its leaves, and a string is the bit path
// to each of its words in turn (each byte's most significant bit first),
// ended by the leaf holding an empty word or by the end of the bits. Words are
// joined with single spaces. Private to the SLTG reader.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/tlb/sltg_region.h"

namespace sentrune::portable::sltg {

// Tree nodes: an inner node is kInnerNode followed by the big-endian offset
// of its 0-branch; its 1-branch follows it directly. A leaf is one byte of
// unknown meaning followed by a NUL-terminated word.
inline constexpr uint8_t kInnerNode = 0x80;
inline constexpr uint64_t kInnerNodeSize = 3;

class HelpDecoder {
 public:
  // Each bit followed and each character produced is paid from `budget`: a
  // tree whose paths loop could otherwise spend every bit of a large block
  // on each string.
  HelpDecoder(Region tree, Budget& budget) : tree_(std::move(tree)), budget_(&budget) {}

  // The string whose bits start at the first byte of `bits`, as UTF-8.
  // Throws SltgError for a tree that leads outside itself.
  std::string Decode(const ByteReader& bits);

 private:
  class BitStream;
  std::optional<std::string_view> NextWord(BitStream& bits);

  Region tree_;
  Budget* budget_;
};

}  // namespace sentrune::portable::sltg
