// Wine's registry files as documents: what is read, what a change rewrites
// and what it must leave alone.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "platform/winereg/wine_registry_file.h"
#include "platform/winereg/wine_registry_text.h"
#include "platform/registry.h"

namespace sentrune::portable::winereg {
namespace {

using Strings = std::vector<std::string>;

// A system.reg cut down from one that Wine 8 wrote for a fresh 64-bit prefix
// (a win32 entry added beside each type library version).
const std::string kSystemReg = [] {
  std::ifstream in(SENTRUNE_SOURCE_DIR "/tests/fixtures/winereg/system.reg", std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}();

// 1795266569 at the second, as FILETIME: the pair Wine writes for a key.
constexpr int64_t kStamp = 1795266569;
constexpr const char* kStampLines = "] 1795266569\n#time=1dd79b98a77ca80\n";

RegFile ParseOrDie(const std::string& text) {
  rt::Result<RegFile> file = RegFile::Parse(text, "system.reg");
  EXPECT_TRUE(file.ok()) << (file.ok() ? "" : file.error().description);
  return file.ok() ? std::move(*file) : RegFile();
}

std::string Utf16Text(const StoredValue* value) {
  return value ? Utf16ToUtf8(BytesToUtf16(value->data.substr(0, value->data.size() - 2))) : "<none>";
}

TEST(WineRegistryFile, ReadsKeysValuesAndImpliedKeys) {
  const RegFile file = ParseOrDie(kSystemReg);
  EXPECT_EQ(file.Serialise(), kSystemReg);
  const Section* command = file.Find(SplitKeyPath("software\\CLASSES\\chm.file\\shell\\open\\command"));
  ASSERT_TRUE(command);
  EXPECT_EQ(Utf16Text(command->FindValue("")), "\"C:\\windows\\hh.exe\" \"%1\"");
  EXPECT_EQ(command->stamp, 1795266545);

  const Section* link = file.Find(SplitKeyPath("Software\\Classes\\Wow6432Node\\TypeLib"));
  ASSERT_TRUE(link);
  EXPECT_EQ(link->extra, Strings{"#link"});
  ASSERT_TRUE(link->FindValue("symboliclinkvalue"));
  EXPECT_EQ(link->FindValue("symboliclinkvalue")->type, platform::kRegLink);
  EXPECT_EQ(Utf16ToUtf8(BytesToUtf16(link->FindValue("SymbolicLinkValue")->data)),
            "\\Registry\\Machine\\Software\\Classes\\TypeLib");  // continuation lines joined

  // Keys above a section exist without one of their own.
  EXPECT_TRUE(file.KeyExists(SplitKeyPath("Software\\Classes\\chm.file\\shell")));
  EXPECT_FALSE(file.Find(SplitKeyPath("Software\\Classes\\chm.file\\shell")));
  EXPECT_FALSE(file.KeyExists(SplitKeyPath("Software\\Classes\\chm")));
  EXPECT_EQ(file.SubkeyNames(SplitKeyPath("Software\\Classes")),
            (Strings{".ai", "chm.file", "Typelib", "Wow6432Node"}));
}

TEST(WineRegistryFile, RewritesOnlyChangedSectionsAndAddsKeysInWinesOrder) {
  RegFile file = ParseOrDie(kSystemReg);
  Section& ai = file.Touch(SplitKeyPath("Software\\Classes\\.ai"), kStamp);
  ai.SetValue({"", platform::kRegSz, Utf16ToBytes(u"ai.file") + std::string(2, '\0')});
  ai.SetValue({"content type", platform::kRegSz, Utf16ToBytes(u"x") + std::string(2, '\0')});
  ai.SetValue({"Zeta", platform::kRegDword, std::string("\x01\0\0\0", 4)});
  file.Touch(SplitKeyPath("Software\\Classes\\VisualBasic.Project"), kStamp);

  std::string expected = kSystemReg;
  const std::string before =
      "[Software\\\\Classes\\\\.ai] 1795266545\n#time=1dd79b97c45ccdc\n\"Content Type\"=\"application/postscript\"\n\n";
  const std::string after = std::string("[Software\\\\Classes\\\\.ai") + kStampLines +
                            "@=\"ai.file\"\n\"Content Type\"=\"x\"\n\"Zeta\"=dword:00000001\n\n";
  ASSERT_NE(expected.find(before), std::string::npos);
  expected.replace(expected.find(before), before.size(), after);
  expected.insert(expected.find("[Software\\\\Classes\\\\Wow6432Node"),
                  std::string("[Software\\\\Classes\\\\VisualBasic.Project") + kStampLines + "\n");
  EXPECT_EQ(file.Serialise(), expected);

  // Removing the only key below leaves the parent standing, with a section;
  // a parent that other keys hold up gets none.
  file.Remove(SplitKeyPath("Software\\Classes\\chm.file\\shell\\open\\command"), kStamp);
  EXPECT_NE(file.Serialise().find(std::string("[Software\\\\Classes\\\\chm.file\\\\shell\\\\open") + kStampLines),
            std::string::npos);
  file.Remove(SplitKeyPath("Software\\Classes\\.ai"), kStamp);
  EXPECT_FALSE(file.Find(SplitKeyPath("Software\\Classes")));
  EXPECT_FALSE(file.KeyExists(SplitKeyPath("Software\\Classes\\.ai")));
}

TEST(WineRegistryFile, ToleratesWhatWineAcceptsAndNamesTheLineItCannotRead) {
  // CR LF line ends, blanks around hex bytes, a continuation after a key
  // line's comment, and a last section without a final line break.
  const std::string text =
      "WINE REGISTRY Version 2\r\n;; All keys relative to \\\\Machine\r\n\r\n"
      "[A\\\\B] 5\r\n\"x\"=hex:01, 02,\\\r\n   03\r\n;comment\r\n[A\\\\C]";
  RegFile file = ParseOrDie(text);
  EXPECT_EQ(file.Serialise(), text);
  EXPECT_EQ(file.Find(SplitKeyPath("A\\B"))->FindValue("x")->data, "\x01\x02\x03");
  file.Touch(SplitKeyPath("A\\D"), kStamp);
  EXPECT_EQ(file.Serialise(), text + "\n[A\\\\D" + kStampLines + "\n");

  const std::pair<std::string, std::string> bad[] = {
      {"REGEDIT4\n\n[A]\n", "line 1:"},
      {"", "line 1:"},
      {"WINE REGISTRY Version 2\n\n[A] 1\n\"ok\"=\"1\"\n\"bad\"=dword:xyz\n", "line 5: bad dword"},
      {"WINE REGISTRY Version 2\n[A\\\\B 1\n", "line 2:"},
      {"WINE REGISTRY Version 2\n[A] 1\n\"x\"=hex:01,\\\n  zz\n", "line 3: bad hex"},
  };
  for (const auto& [input, where] : bad) {
    rt::Result<RegFile> parsed = RegFile::Parse(input, "user.reg");
    ASSERT_FALSE(parsed.ok()) << input;
    EXPECT_EQ(parsed.error().number, platform::regerr::kBadDb);
    EXPECT_NE(parsed.error().description.find("'user.reg' " + where), std::string::npos)
        << parsed.error().description;
  }
}

}  // namespace
}  // namespace sentrune::portable::winereg
