#include "portable/sltg_builder_parts.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "runtime/text.h"

namespace sentrune::portable::testing::sltg_writer {
namespace {

std::vector<std::string> HelpWords(const std::string& utf8) {
  std::vector<std::string> words;
  std::istringstream in(rt::Utf8ToCp1252(utf8));
  for (std::string word; std::getline(in, word, ' ');) words.push_back(word);
  return words;
}

}  // namespace

HelpEncoder::HelpEncoder(const SltgLibrary& library) {
  std::set<std::string> words;
  auto add = [&](const std::string& help) {
    for (auto& word : HelpWords(help)) words.insert(word);
    longest_ = std::max(longest_, help.size());
  };
  for (const auto& type : library.types) {
    add(type.help);
    for (const auto& func : type.funcs) add(func.help);
    for (const auto& var : type.vars) add(var.help);
  }
  words.erase("");
  if (words.empty()) return;
  std::vector<std::string> leaves(words.begin(), words.end());
  leaves.push_back("");
  WriteNode(leaves, 0, leaves.size(), {});
}

std::vector<uint8_t> HelpEncoder::Encode(const std::string& help) const {
  std::vector<bool> bits;
  for (const auto& word : HelpWords(help)) {
    const auto& code = codes_.at(word);
    bits.insert(bits.end(), code.begin(), code.end());
  }
  const auto& end = codes_.at("");
  bits.insert(bits.end(), end.begin(), end.end());
  std::vector<uint8_t> bytes((bits.size() + 7) / 8);
  for (size_t i = 0; i < bits.size(); ++i) {
    if (bits[i]) bytes[i / 8] |= static_cast<uint8_t>(0x80 >> (i % 8));
  }
  return bytes;
}

// An inner node is 0x80 and the big-endian offset of its 0-branch; its
// 1-branch follows it. A leaf is a byte and the NUL-terminated word.
void HelpEncoder::WriteNode(const std::vector<std::string>& leaves, size_t begin, size_t end,
                            std::vector<bool> path) {
  if (end - begin == 1) {
    codes_[leaves[begin]] = path;
    tree_.U8(0);
    tree_.Text(leaves[begin]);
    tree_.U8(0);
    return;
  }
  const size_t node = tree_.size();
  tree_.U8(0x80);
  tree_.U16(0);
  const size_t mid = (begin + end) / 2;
  auto one = path;
  one.push_back(true);
  WriteNode(leaves, mid, end, one);
  const size_t zeroBranch = tree_.size();
  tree_.bytes()[node + 1] = static_cast<uint8_t>(zeroBranch >> 8);
  tree_.bytes()[node + 2] = static_cast<uint8_t>(zeroBranch & 0xFF);
  path.push_back(false);
  WriteNode(leaves, begin, mid, path);
}

std::string Hex(uint32_t value) {
  std::ostringstream out;
  out << std::hex << value;
  return out.str();
}

}  // namespace sentrune::portable::testing::sltg_writer
