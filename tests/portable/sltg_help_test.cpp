#include "platform/portable/sltg_help.h"

#include <gtest/gtest.h>

#include <vector>

namespace sentrune::portable::sltg {
namespace {

using Bytes = std::vector<uint8_t>;

std::string Decode(const Bytes& tree, const Bytes& bits, uint64_t budgetUnits = 1 << 20) {
  Budget budget(budgetUnits);
  HelpDecoder decoder(Region(ByteReader(tree), "help tree"), budget);
  return decoder.Decode(ByteReader(bits));
}

// Root: the 1-branch is the leaf "alpha"; the 0-branch (at 10) is a node
// whose 1-branch is "caf\xE9" and whose 0-branch (at 19) ends the string.
// Codes: alpha 1, café 01, end 00.
const Bytes kTree = {0x80, 0x00, 0x0A, 0x00, 'a', 'l', 'p', 'h', 'a', 0x00,
                     0x80, 0x00, 0x13, 0x00, 'c', 'a', 'f', 0xE9, 0x00, 0x00, 0x00};

TEST(SltgHelpStrings, FollowsEachByteFromItsHighestBit) {
  // café alpha café end: 01 1 01 00 -> 0110 1000
  EXPECT_EQ(Decode(kTree, {0x68}), "caf\xC3\xA9 alpha caf\xC3\xA9");
  // Running out of bits ends the string as the end word does.
  EXPECT_EQ(Decode(kTree, {0xFF}), "alpha alpha alpha alpha alpha alpha alpha alpha");
  EXPECT_EQ(Decode(kTree, {}), "");
  EXPECT_EQ(Decode({}, {0x68}), "");  // a library without a tree
}

TEST(SltgHelpStrings, StopsOrFailsOnHostileTrees) {
  // A 0-branch back to the root spends every bit without a word.
  const Bytes loop = {0x80, 0x00, 0x00, 0x00, 'w', 0x00};
  const Bytes zeros(4096, 0);
  EXPECT_EQ(Decode(loop, zeros), "");
  EXPECT_THROW(Decode(loop, zeros, 1000), SltgError);  // more bits than the budget allows
  // A tree that is one leaf gives its word once, not forever.
  EXPECT_EQ(Decode({0x00, 'o', 'n', 'e', 0x00}, zeros), "one");
  // Branches and words must stay inside the tree.
  EXPECT_THROW(Decode({0x80, 0x7F, 0xFF}, zeros), SltgError);
  EXPECT_THROW(Decode({0x80, 0x00, 0x00, 0x00, 'w'}, {0xFF}), SltgError);
}

}  // namespace
}  // namespace sentrune::portable::sltg
