#include "runtime/vb_convert.h"

#include <gtest/gtest.h>

namespace sentrune::rt {
namespace {

TEST(VbConvert, ValReadsTheLeadingNumber) {
  const std::pair<const char*, double> cases[] = {
      {"1.10", 1.1},  {"6.1.97.82", 6.1}, {"", 0},           {"  1615 198th Street N.E.", 1615198},
      {"-3.5e2", -350}, {"2D3", 2000},    {"1e", 1},         {"+7", 7},
      {".5", 0.5},    {"5.", 5},          {"- 4", -4},       {"\t1\n2", 12},
      {"1,000", 1},   {"--1", 0},         {"&H1F", 31},      {"&hFFFF", -1},
      {"&H8000", -32768}, {"&H10000", 65536}, {"&HFFFFFFFF", -1}, {"&O17", 15},
      {"&O18", 1},    {"&H", 0},          {"&H123456789", 0}, {"1e999", 0},
  };
  for (const auto& [text, expected] : cases) EXPECT_DOUBLE_EQ(Val(text), expected) << text;
}

TEST(VbConvert, IntegersRoundHalfToEven) {
  const std::pair<const char*, int16_t> ints[] = {
      {"2.5", 2},   {"3.5", 4},      {"-2.5", -2},  {"2.51", 3},       {"  42  ", 42},     {"1,000", 1000},
      {"True", -1}, {"false", 0},    {"1e3", 1000}, {"&HFFFF", -1},    {"&O10", 8},        {"32767.4", 32767},
      {"-32768.5", -32768},
  };
  for (const auto& [text, expected] : ints) {
    const auto value = CInt(text);
    ASSERT_TRUE(value) << text;
    EXPECT_EQ(*value, expected) << text;
  }
  EXPECT_EQ(CLng("&HFFFF").value_or(0), 65535);
  EXPECT_EQ(CLng("&HFFFFFFFF").value_or(0), -1);
  EXPECT_EQ(CLng("2147483647").value_or(0), 2147483647);
  EXPECT_EQ(CLng("-2147483648").value_or(0), -2147483647 - 1);
}

TEST(VbConvert, IntegerFailuresAreTypeMismatchOrOverflow) {
  const std::pair<const char*, int32_t> cases[] = {
      {"", 13},     {"   ", 13},   {"abc", 13},    {"12abc", 13},    {"1 2", 13},   {".", 13},  {"-", 13},
      {"&HXY", 13}, {"&H", 13},    {"32767.5", 6}, {"-32769", 6},    {"&H10000", 6}, {"1e999", 6},
  };
  for (const auto& [text, number] : cases) {
    const auto value = CInt(text);
    ASSERT_FALSE(value) << text;
    EXPECT_EQ(value.error().number, number) << text;
  }
  EXPECT_EQ(CLng("2147483648").error().number, 6);
  EXPECT_EQ(CLng("&H100000000").error().number, 6);
  EXPECT_EQ(CLng("x").error().description, "Type mismatch");
}

TEST(VbConvert, BooleansFromNumbersAndWords) {
  const std::pair<const char*, bool> cases[] = {
      {"1", true},    {"-1", true},     {"0.0", false},   {"2", true},     {"0.4", true},
      {"TRUE", true}, {" true ", true}, {"False", false}, {"&H0", false},
  };
  for (const auto& [text, expected] : cases) {
    const auto value = CBool(text);
    ASSERT_TRUE(value) << text;
    EXPECT_EQ(*value, expected) << text;
  }
  EXPECT_EQ(CBool("").error().number, 13);
  EXPECT_EQ(CBool("yes").error().number, 13);
}

}  // namespace
}  // namespace sentrune::rt
