// The run time's conversions from text, and its error object.
#include "runtime/vb_convert.h"

#include <gtest/gtest.h>

#include "runtime/err_object.h"

namespace sentrune::rt {
namespace {

// The value, or "error N" with the run time's number.
template <class T>
std::string Shown(const Result<T>& result) {
  return result ? std::to_string(*result) : "error " + std::to_string(result.error().number);
}

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

// Integers round half to even; failures are type mismatch (13) or overflow (6).
TEST(VbConvert, IntegersAndBooleans) {
  const std::pair<const char*, const char*> ints[] = {
      {"2.5", "2"},       {"3.5", "4"},        {"-2.5", "-2"},       {"2.51", "3"},        {"  42  ", "42"},
      {"1,000", "1000"},  {"True", "-1"},      {"false", "0"},       {"1e3", "1000"},      {"&HFFFF", "-1"},
      {"&O10", "8"},      {"32767.4", "32767"}, {"-32768.5", "-32768"}, {"", "error 13"},   {"   ", "error 13"},
      {"abc", "error 13"}, {"12abc", "error 13"}, {"1 2", "error 13"},  {".", "error 13"},  {"-", "error 13"},
      {"&HXY", "error 13"}, {"&H", "error 13"},  {"32767.5", "error 6"}, {"-32769", "error 6"},
      {"&H10000", "error 6"}, {"1e999", "error 6"},
  };
  for (const auto& [text, shown] : ints) EXPECT_EQ(Shown(CInt(text)), shown) << text;
  const std::pair<const char*, const char*> longs[] = {
      {"&HFFFF", "65535"}, {"&HFFFFFFFF", "-1"}, {"2147483647", "2147483647"}, {"-2147483648", "-2147483648"},
      {"2147483648", "error 6"}, {"&H100000000", "error 6"}};
  for (const auto& [text, shown] : longs) EXPECT_EQ(Shown(CLng(text)), shown) << text;
  EXPECT_EQ(CLng("x").error().description, "Type mismatch");
  const std::pair<const char*, const char*> bools[] = {
      {"1", "1"},    {"-1", "1"},     {"0.0", "0"},   {"2", "1"},        {"0.4", "1"},    {"TRUE", "1"},
      {" true ", "1"}, {"False", "0"}, {"&H0", "0"}, {"", "error 13"}, {"yes", "error 13"}};
  for (const auto& [text, shown] : bools) EXPECT_EQ(Shown(CBool(text)), shown) << text;
}

TEST(ErrObject, RaiseFillsTheRunTimeDescriptionAndSetDropsTheHelp) {
  ErrObject err;
  EXPECT_FALSE(err.pending());
  err.Raise(76, "clsProject", "", "help.chm", 7);
  EXPECT_TRUE(err.pending());
  EXPECT_EQ(err.description(), "Path not found");
  err.Raise(70, "", "Access is denied.");
  EXPECT_EQ(err.description(), "Access is denied.");
  err.Raise(0, "x", "ignored");  // refused as the run time refuses it
  EXPECT_EQ(err.number(), errnum::kInvalidProcedureCall);
  EXPECT_EQ(err.description(), "Invalid procedure call or argument");
  err.Raise(53, "", "", "help.chm", 7);
  err.Set(MakeError(errnum::kTypeMismatch, "", "modOptionsHandler"));
  EXPECT_EQ(err.description(), "Type mismatch");
  EXPECT_EQ(err.source(), "modOptionsHandler");
  EXPECT_EQ(err.helpFile(), "");
  err.Clear();
  EXPECT_FALSE(err.pending());
}

}  // namespace
}  // namespace sentrune::rt
