#include "platform/tlb/sltg_help.h"

#include "runtime/text.h"

namespace sentrune::portable::sltg {

class HelpDecoder::BitStream {
 public:
  explicit BitStream(const ByteReader& bytes) : bytes_(bytes) {}
  std::optional<bool> Next() {
    const auto byte = bytes_.U8(position_ / 8);
    if (!byte) return std::nullopt;
    const bool bit = ((*byte << (position_ % 8)) & 0x80) != 0;
    ++position_;
    return bit;
  }

 private:
  const ByteReader& bytes_;
  uint64_t position_ = 0;
};

namespace {
// A BSTR's length is at most this; anything longer is cut here.
constexpr size_t kMaxHelpLength = 0xFFFF;
}  // namespace

std::string HelpDecoder::Decode(const ByteReader& bits) {
  BitStream stream(bits);
  // A tree that is a single leaf spends no bits per word, so its word is the
  // whole string rather than an endless repetition.
  const bool singleLeaf = tree_.size() == 0 || tree_.U8(0) != kInnerNode;
  std::string text;
  while (auto word = NextWord(stream)) {
    if (!text.empty()) text += ' ';
    text += *word;
    if (text.size() >= kMaxHelpLength) {
      text.resize(kMaxHelpLength);
      break;
    }
    if (singleLeaf) break;
  }
  return rt::Cp1252ToUtf8(text);
}

std::optional<std::string_view> HelpDecoder::NextWord(BitStream& bits) {
  uint64_t node = 0;
  while (tree_.Has(node, 1) && tree_.U8(node) == kInnerNode) {
    const auto bit = bits.Next();
    if (!bit) return std::nullopt;
    budget_->Spend(1);
    node = *bit ? node + kInnerNodeSize
                : static_cast<uint64_t>(tree_.U8(node + 1) << 8 | tree_.U8(node + 2));
  }
  if (tree_.size() == 0) return std::nullopt;
  if (!tree_.Has(node, 2)) Fail("a help string leads to " + Hex(node) + ", outside the help tree");
  const std::string_view word = tree_.CString(node + 1);
  budget_->Spend(word.size() + 1);
  if (word.empty()) return std::nullopt;
  return word;
}

}  // namespace sentrune::portable::sltg
