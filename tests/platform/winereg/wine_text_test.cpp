// The text forms of Wine's registry files. Expected texts are lines that
// Wine 8 itself wrote for values imported into a fresh prefix.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/winereg/wine_registry_text.h"
#include "platform/winereg/wine_registry_value.h"
#include "platform/registry.h"

namespace sentrune::portable::winereg {
namespace {

std::string Text(std::u16string_view units) {
  std::u16string withNul(units);
  withNul.push_back(u'\0');
  return Utf16ToBytes(withNul);
}

TEST(WineRegistryText, EscapesAsWineWrites) {
  std::u16string controls;
  for (char16_t c = 1; c < 32; ++c) controls += c;
  controls += u"\x7f\x80\xa0\xff";
  const struct {
    std::u16string units;
    EscapeFor where;
    std::string expected;
  } cases[] = {
      {controls, EscapeFor::kQuoted,
       "\\1\\2\\3\\4\\5\\6\\a\\b\\t\\n\\v\\f\\r\\16\\17\\20\\21\\22\\23\\24\\25\\26\\27\\30\\31"
       "\\32\\e\\34\\35\\36\\37\x7f\\x80\\xa0\\xff"},
      // A following digit would be read as part of the escape: Wine pads.
      {std::u16string{1, u'5', 0, u'7', 0x1f, u'9', 0x0e, u'8'}, EscapeFor::kQuoted,
       "\\0015\\0007\\379\\168"},
      {std::u16string{0xe9, u'a', 0x100, u'1', 0xe9, u'g'}, EscapeFor::kQuoted,
       "\\x00e9a\\x01001\\xe9g"},
      {u"\U0001F600z", EscapeFor::kQuoted, "\\xd83d\\xde00z"},
      {u"a\"b\\c [x]", EscapeFor::kQuoted, "a\\\"b\\\\c [x]"},
      {u"Sub [x] \"y\" \u00e9", EscapeFor::kKeyName, "Sub \\[x\\] \"y\" \\xe9"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(EscapeText(c.units, c.where), c.expected);
    const std::string quoted = c.expected + (c.where == EscapeFor::kKeyName ? "]" : "\"");
    size_t pos = 0;
    EXPECT_EQ(UnescapeText(quoted, pos, quoted.back()), c.units) << c.expected;
    EXPECT_EQ(pos, quoted.size());
  }
  // Octal takes at most three digits, hex at most four; any other escaped
  // character stands for itself; raw UTF-8 or a lone cp1252 byte is read too.
  const std::pair<std::string, std::u16string> read[] = {
      {"\\101\\1012\"", u"AA2"},
      {"\\x41\\x00411\"", u"AA1"},
      {"\\q\\[\\]\\x\"", u"q[]x"},
      {"caf\xc3\xa9 \xe9\"", u"caf\u00e9 \u00e9"}};
  for (const auto& [text, units] : read) {
    size_t pos = 0;
    EXPECT_EQ(UnescapeText(text, pos, '"'), units) << text;
  }
  size_t pos = 0;
  EXPECT_FALSE(UnescapeText("no end \\\"", pos, '"'));
  EXPECT_EQ(Utf16ToUtf8(u"\U0001F600\xd800"), "\xF0\x9F\x98\x80\xEF\xBF\xBD");
}

TEST(WineRegistryText, WrapsHexListsAtWinesColumn) {
  std::string hundred, thirty;
  for (int i = 0; i < 100; ++i) hundred += static_cast<char>(i);
  for (int i = 0; i < 30; ++i) thirty += static_cast<char>(i);
  const std::string longName = "longname_" + std::string(90, 'n');
  EXPECT_EQ(RenderValueLine({"bin100", platform::kRegBinary, hundred}),
            "\"bin100\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,\\\n"
            "  16,17,18,19,1a,1b,1c,1d,1e,1f,20,21,22,23,24,25,26,27,28,29,2a,2b,2c,2d,2e,\\\n"
            "  2f,30,31,32,33,34,35,36,37,38,39,3a,3b,3c,3d,3e,3f,40,41,42,43,44,45,46,47,\\\n"
            "  48,49,4a,4b,4c,4d,4e,4f,50,51,52,53,54,55,56,57,58,59,5a,5b,5c,5d,5e,5f,60,\\\n"
            "  61,62,63");
  EXPECT_EQ(RenderValueLine({longName, platform::kRegBinary, thirty.substr(0, 30)}),
            "\"" + longName +
                "\"=hex:00,\\\n"
                "  01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,16,17,18,19,\\\n"
                "  1a,1b,1c,1d");

  EXPECT_EQ(ParseHexList(" 0a, F ,ff "), std::string("\x0a\x0f\xff", 3));
  EXPECT_EQ(ParseHexList(""), std::string());
  for (const char* bad : {"0g", "123", "1,,2", "1 2"}) EXPECT_FALSE(ParseHexList(bad)) << bad;
}

TEST(WineRegistryValue, ReadsAndWritesEveryValueFormAndRejectsMalformedLines) {
  const struct {
    std::string line;
    StoredValue value;
  } cases[] = {
      {"@=\"default value\"", {"", platform::kRegSz, Text(u"default value")}},
      {"\"emptystr\"=\"\"", {"emptystr", platform::kRegSz, Text(u"")}},
      {"\"dw\"=dword:0000000a", {"dw", platform::kRegDword, std::string("\x0a\0\0\0", 4)}},
      {"\"bin\"=hex:01,02,ff", {"bin", platform::kRegBinary, "\x01\x02\xff"}},
      {"\"exp\"=str(2):\"%SystemRoot%\\\\x\"",
       {"exp", platform::kRegExpandSz, Text(u"%SystemRoot%\\x")}},
      {"\"multi\"=str(7):\"a\\0bc\\0\"",
       {"multi", platform::kRegMultiSz, Text(std::u16string(u"a\0bc\0", 5))}},
      {"\"none\"=hex(0):", {"none", platform::kRegNone, ""}},
      {"\"empty1\"=hex(1):", {"empty1", platform::kRegSz, ""}},
      {"\"dwshort\"=hex(4):01,02", {"dwshort", platform::kRegDword, "\x01\x02"}},
      {"\"bigend\"=hex(5):00,00,00,0a",
       {"bigend", platform::kRegDwordBigEndian, std::string("\0\0\0\x0a", 4)}},
      {"@=hex(ffff0007):03,00,00,00", {"", 0xffff0007u, std::string("\x03\0\0\0", 4)}},
      {"\"br[a]=x \\\"q\\\"\"=\"v[1]\"", {"br[a]=x \"q\"", platform::kRegSz, Text(u"v[1]")}},
  };
  for (const auto& c : cases) {
    std::string why;
    const std::optional<StoredValue> parsed = ParseValueLine(c.line, why);
    ASSERT_TRUE(parsed) << c.line << ": " << why;
    EXPECT_EQ(parsed->name, c.value.name) << c.line;
    EXPECT_EQ(parsed->type, c.value.type) << c.line;
    EXPECT_EQ(parsed->data, c.value.data) << c.line;
    EXPECT_EQ(RenderValueLine(c.value), c.line);
  }
  // Text that does not end in a NUL unit cannot be written as a string.
  EXPECT_EQ(RenderValueLine({"odd", platform::kRegExpandSz, std::string("\x01\x02\0\0\0", 5)}),
            "\"odd\"=hex(2):01,02,00,00,00");
  for (const char* line : {"\"x\"=dword:123456789", "\"x\"=dword:", "\"x\"=dword:12 z", "\"x\"=hex:zz", "\"x\"=\"open",
                           "\"x\"=\"a\" b", "\"x\"=foo:1", "x=1", "\"x\"", "\"x\"=str(2)\"a\"", "\"x\"=hex(q):00"}) {
    std::string why;
    EXPECT_FALSE(ParseValueLine(line, why)) << line;
    EXPECT_FALSE(why.empty()) << line;
  }
}


}  // namespace
}  // namespace sentrune::portable::winereg
