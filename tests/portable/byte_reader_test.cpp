#include "platform/portable/byte_reader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace sentrune::portable {
namespace {

TEST(ByteReader, ReadsLittleEndianOnlyInsideTheBytes) {
  const std::vector<uint8_t> bytes = {0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF, 0xFF, 0x7F, 0x80};
  const ByteReader reader(bytes);
  EXPECT_EQ(reader.U16(0), 0x0201);
  EXPECT_EQ(reader.U32(0), 0x04030201u);
  EXPECT_EQ(reader.I32(4), 0x7FFFFFFF);
  EXPECT_EQ(reader.I8(8), -128);
  EXPECT_EQ(reader.I16(7), static_cast<int16_t>(0x807F));
  EXPECT_EQ(reader.U64(1), 0x807FFFFFFF040302u);
  // The last byte can be read, nothing beyond it.
  EXPECT_EQ(reader.U8(8), 0x80);
  EXPECT_FALSE(reader.U8(9));
  EXPECT_FALSE(reader.U16(8));
  EXPECT_FALSE(reader.U64(2));
}

TEST(ByteReader, OffsetsAndCountsNeverWrap) {
  const std::vector<uint8_t> bytes(16, 0xAB);
  const ByteReader reader(bytes);
  EXPECT_TRUE(reader.Has(16, 0));
  EXPECT_FALSE(reader.Has(17, 0));
  EXPECT_FALSE(reader.Has(8, UINT64_MAX - 4));
  EXPECT_FALSE(reader.Has(UINT64_MAX, 2));
  EXPECT_FALSE(reader.U32(UINT64_MAX - 1));

  auto sub = reader.Sub(4, 8);
  ASSERT_TRUE(sub);
  EXPECT_EQ(sub->size(), 8u);
  EXPECT_EQ(sub->U32(4), 0xABABABABu);
  EXPECT_FALSE(sub->U32(5));  // relative to the sub-range, which ends at 8
  EXPECT_FALSE(reader.Sub(12, 5));
  EXPECT_EQ(reader.Chars(14, 2), std::string_view("\xAB\xAB"));
  EXPECT_FALSE(reader.Span(0, 17));
}

}  // namespace
}  // namespace sentrune::portable
