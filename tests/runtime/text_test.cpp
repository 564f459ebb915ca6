// Text: code page 1252, case folding and its hash, trimming and replacing;
// and the keyed collections whose keys fold that way.
#include "runtime/text.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

#include "runtime/keyed_collection.h"

namespace sentrune::rt {
namespace {

TEST(Text, Cp1252RoundTripsEveryByteAndMarksWhatItCannotMap) {
  std::string all;
  for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
  const std::string utf8 = Cp1252ToUtf8(all);
  EXPECT_EQ(Utf8ToCp1252(utf8), all);
  EXPECT_EQ(ToCodePoints(utf8).size(), 256u);  // every byte became one well-formed code point
  EXPECT_EQ(Cp1252ToUtf8("\x80\x81\x8D"), "\u20AC\u0081\u008D");
  const std::pair<const char*, const char*> toCp1252[] = {
      {"caf\u00E9 \u20AC", "caf\xE9 \x80"}, {"\u65E5\u672C", "??"},
      {"\u0080", "?"},  // byte 0x80 is the euro sign, not U+0080
      {"a\xFF\xFE", "a\xFF\xFE"},           {"\xC0\xAF", "\xC0\xAF"},  // invalid and overlong bytes stay
      {"\xED\xA0\x80", "\xED\xA0\x80"},     // a surrogate stays too
  };
  for (const auto& [text, bytes] : toCp1252) EXPECT_EQ(Utf8ToCp1252(text), bytes) << bytes;
}

TEST(Text, CaseFoldsAsciiAndLatin1OnlyAndTheHashAgrees) {
  EXPECT_EQ(LCase("ABC \u00C0\u00C9\u00DE\u00D7"), "abc \u00E0\u00E9\u00FE\u00D7");
  EXPECT_EQ(UCase("abc \u00E0\u00E9\u00FE\u00F7"), "ABC \u00C0\u00C9\u00DE\u00F7");
  // Letters outside Latin-1 and those without a Latin-1 partner stay.
  EXPECT_EQ(LCase("\u0100\u0141"), "\u0100\u0141");
  EXPECT_EQ(UCase("\u00DF\u00FF\u0101"), "\u00DF\u00FF\u0101");
  EXPECT_TRUE(IEquals("\u00C9T\u00C9", "\u00E9t\u00E9"));
  EXPECT_FALSE(IEquals("\u00D7", "\u00F7"));  // multiply and divide signs are not a pair
  EXPECT_FALSE(IEquals("\u0100", "\u0120"));  // same lead byte, other block
  EXPECT_FALSE(IEquals("[", "{"));

  // The hash agrees with the folding. Eight-byte words fold at once when ASCII; a Latin-1 letter split across
  // two words needs the byte before.
  for (const std::string text : {"Property Get Caption() As String", "Function Find(Key As String)",
                                 "1234567\u00C9t\u00E9 Caf\u00C9", "\u00C9", "[@`{", "ABCDEFGH", ""}) {
    EXPECT_EQ(IHash(text), IHash(LCase(text))) << text;
    EXPECT_EQ(IHash(text), IHash(UCase(text))) << text;
  }
  // Bytes just outside A..Z are not letters.
  EXPECT_NE(IHash("@@@@@@@@"), IHash("````````"));
  EXPECT_NE(IHash("[[[[[[[["), IHash("{{{{{{{{"));
  EXPECT_NE(IHash("Caption"), IHash("Caption "));
}

TEST(Text, TrimsBlanksOnlyAndReplacesLeftToRightWithoutRescanning) {
  EXPECT_EQ(Trim("  \tx y\t  "), "\tx y\t");
  EXPECT_EQ(LTrim("  x  "), "x  ");
  EXPECT_EQ(RTrim("  x  "), "  x");
  EXPECT_EQ(Trim("    "), "");
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"aaa", "aa", "b", "ba"}, {"x", "x", "xx", "xx"}, {"Aba", "a", "x", "Abx"},
      {"abc", "", "x", "abc"},  {"abc", "abc", "", ""},
  };
  for (const auto& [text, find, with, replaced] : cases) EXPECT_EQ(Replace(text, find, with), replaced) << text;
}

TEST(Text, CodePointsDecodeAndEncode) {
  EXPECT_EQ(ToCodePoints("a\u00E9\u20AC\U0001F600"), U"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(FromCodePoints(U"a\u00E9\u20AC\U0001F600"), "a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(ToCodePoints("\x80z"), U"\u20ACz");
  EXPECT_EQ(FromCodePoints(std::u32string{0xD800, 0x110000}), "\uFFFD\uFFFD");
}

std::string Keys(const KeyedCollection<int>& c) {
  std::string out;
  for (const auto& entry : c) out += entry.key() + "=" + std::to_string(entry.item) + " ";
  return out;
}

TEST(KeyedCollection, KeysIgnoreCaseTheFirstAddWinsAndRemovalKeepsOrder) {
  KeyedCollection<int> c;
  EXPECT_TRUE(c.Add("Widgets", 1));
  EXPECT_FALSE(c.Add("WIDGETS", 2));
  EXPECT_TRUE(c.Add("\u00C9t\u00E9", 3));
  EXPECT_EQ(*c.Find("\u00E9T\u00C9"), 3);
  EXPECT_EQ(c.Find("Widget"), nullptr);
  for (const char* key : {"b", "c"}) ASSERT_TRUE(c.Add(key, key[0]));
  EXPECT_TRUE(c.Remove("B"));
  EXPECT_FALSE(c.Remove("b"));
  EXPECT_EQ(Keys(c), "Widgets=1 \u00C9t\u00E9=3 c=99 ");  // keys keep the case they were added with
  EXPECT_EQ(*c.Find("C"), 'c');
  EXPECT_TRUE(c.Add("b", 4));
  EXPECT_EQ(c.at(3), 4);
  EXPECT_THROW(c.at(4), std::out_of_range);
  c.Clear();
  EXPECT_TRUE(c.empty());
  EXPECT_EQ(c.Find("widgets"), nullptr);
  EXPECT_TRUE(c.Add("widgets", 2));
  EXPECT_EQ(Keys(c), "widgets=2 ");
}

TEST(KeyedCollection, LargeCollectionStaysConsistentAfterRemovals) {
  KeyedCollection<int> c;
  for (int i = 0; i < 1200; ++i) ASSERT_TRUE(c.Add("Member" + std::to_string(i), i));
  for (int i = 0; i < 1200; i += 3) ASSERT_TRUE(c.Remove("MEMBER" + std::to_string(i)));
  ASSERT_EQ(c.size(), 800u);
  for (int i = 0; i < 1200; ++i) {
    const int* item = c.Find("member" + std::to_string(i));
    EXPECT_EQ(item ? *item : -1, i % 3 ? i : -1) << i;
  }
  for (auto& entry : c) entry.item = -entry.item;
  EXPECT_EQ(c.keyAt(799), "Member1199");
  EXPECT_EQ(*std::as_const(c).Find("Member1199"), -1199);
}

TEST(KeyedCollection, AKeyHeldInTheItemFindsItAndRefusesRepeats) {
  struct Named {
    std::string name;
    int value = 0;
  };
  KeyedCollection<Named, &Named::name> c;
  EXPECT_TRUE(c.Add({"Get Caption() As String", 1}) && c.Add({"Let Caption(RHS As String)", 3}));
  EXPECT_FALSE(c.Add({"GET CAPTION() AS STRING", 2}));
  EXPECT_TRUE(c.Remove("get caption() as string"));
  EXPECT_EQ(c.keyAt(0), "Let Caption(RHS As String)");
  EXPECT_EQ(c.Find("LET Caption(RHS As String)")->value, 3);
}

}  // namespace
}  // namespace sentrune::rt
