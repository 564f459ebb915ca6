// The registry of a Wine prefix, bottom up: the text forms of names and values
// in Wine's files (expected texts are lines Wine 8 itself wrote for values
// imported into a fresh prefix); the files as documents, what is read, what a
// change rewrites and what it must leave alone; and the store over an
// in-memory file system: keys and values as Windows keeps them (the contract
// of support/registry_contract.h, which the system's registry keeps too and
// every test of the core relies on, since support/test_registry.h is this
// store), the merged HKEY_CLASSES_ROOT, the refusal while the prefix's server
// runs, and how changes reach the files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/winereg/wine_registry.h"
#include "platform/winereg/wine_registry_file.h"
#include "platform/winereg/wine_registry_text.h"
#include "platform/winereg/wine_registry_value.h"
#include "support/expected_file.h"
#include "support/fake_file_system.h"
#include "support/host_files.h"
#include "support/registry_contract.h"
#include "support/test_registry.h"

namespace sentrune::portable::winereg {
namespace {

using Strings = std::vector<std::string>;

std::string Fixture(const std::string& name) {
  return testing::ReadHostFile(testing::FixtureFolder() / "winereg" / name);
}
// A system.reg cut down from one that Wine 8 wrote for a fresh 64-bit prefix
// (a win32 entry added beside each type library version).
const std::string kSystemReg = Fixture("system.reg");

// 1795266569 at the second, as FILETIME: the pair Wine writes for a key.
constexpr int64_t kStamp = 1795266569;
constexpr const char* kStampLines = "] 1795266569\n#time=1dd79b98a77ca80\n";

int32_t Code(const auto& result) { return result.ok() ? 0 : result.error().number; }

RegFile ParseOrDie(const std::string& text) {
  rt::Result<RegFile> file = RegFile::Parse(text, "system.reg");
  EXPECT_TRUE(file.ok()) << (file.ok() ? "" : file.error().description);
  return file.ok() ? std::move(*file) : RegFile();
}

TEST(WineRegistryFile, ReadsKeysValuesAndImpliedKeys) {
  const RegFile file = ParseOrDie(kSystemReg);
  EXPECT_EQ(file.Serialise(), kSystemReg);
  const Section* command = file.Find(SplitKeyPath("software\\CLASSES\\chm.file\\shell\\open\\command"));
  ASSERT_TRUE(command && command->FindValue(""));
  EXPECT_EQ(Utf16ToUtf8(BytesToUtf16(command->FindValue("")->data)),
            std::string("\"C:\\windows\\hh.exe\" \"%1\"\0", 25));
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

  // Only .ai's section is rewritten, and the new key goes before Wow6432Node.
  testing::ExpectMatchesFile(file.Serialise(), "winereg/system.edited.reg");

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
      {"REGEDIT4\n\n[A]\n", "line 1:"}, {"", "line 1:"},
      {"WINE REGISTRY Version 2\n\n[A] 1\n\"ok\"=\"1\"\n\"bad\"=dword:xyz\n", "line 5: bad dword"},
      {"WINE REGISTRY Version 2\n[A\\\\B 1\n", "line 2:"},
      {"WINE REGISTRY Version 2\n[A] 1\n\"x\"=hex:01,\\\n  zz\n", "line 3: bad hex"},
  };
  for (const auto& [input, where] : bad) {
    rt::Result<RegFile> parsed = RegFile::Parse(input, "user.reg");
    ASSERT_EQ(Code(parsed), platform::regerr::kBadDb) << input;
    EXPECT_NE(parsed.error().description.find("'user.reg' " + where), std::string::npos)
        << parsed.error().description;
  }
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

// The copy holds the lines as Wine wrote them, wrapped where Wine wraps; after
// a long name the first break comes behind the first byte.
TEST(WineRegistryText, WrapsHexListsAtWinesColumn) {
  std::string bytes;
  for (int i = 0; i < 100; ++i) bytes += static_cast<char>(i);
  testing::ExpectMatchesFile(RenderValueLine({"bin100", platform::kRegBinary, bytes}) + "\n" +
                                 RenderValueLine({"longname_" + std::string(90, 'n'), platform::kRegBinary,
                                                  bytes.substr(0, 30)}) + "\n",
                             "winereg/hex-wrap.reg");
  EXPECT_EQ(ParseHexList(" 0a, F ,ff "), std::string("\x0a\x0f\xff", 3));
  EXPECT_EQ(ParseHexList(""), std::string());
  for (const char* bad : {"0g", "123", "1,,2", "1 2"}) EXPECT_FALSE(ParseHexList(bad)) << bad;
}

// Each line reads into the name, type and bytes the copy shows (as a hex
// list), and is written back as it was.
TEST(WineRegistryValue, ReadsAndWritesEveryValueFormAndRejectsMalformedLines) {
  std::string read;
  for (const char* line :
       {"@=\"default value\"", "\"emptystr\"=\"\"", "\"dw\"=dword:0000000a", "\"bin\"=hex:01,02,ff",
        "\"exp\"=str(2):\"%SystemRoot%\\\\x\"", "\"multi\"=str(7):\"a\\0bc\\0\"", "\"none\"=hex(0):",
        "\"empty1\"=hex(1):", "\"dwshort\"=hex(4):01,02", "\"bigend\"=hex(5):00,00,00,0a",
        "@=hex(ffff0007):03,00,00,00", "\"br[a]=x \\\"q\\\"\"=\"v[1]\""}) {
    std::string why;
    const std::optional<StoredValue> parsed = ParseValueLine(line, why);
    ASSERT_TRUE(parsed) << line << ": " << why;
    EXPECT_EQ(RenderValueLine(*parsed), line);
    read += std::string(line) + "\n  " + parsed->name + " | " + std::to_string(parsed->type) + " | " +
            RenderValueLine({"", platform::kRegBinary, parsed->data}) + "\n";
  }
  testing::ExpectMatchesFile(read, "winereg/value-lines.txt");
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

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;
using platform::regerr::kFileNotFound;

constexpr const char* kSystem = "C:\\Prefix\\system.reg";
constexpr const char* kUser = "C:\\Prefix\\user.reg";
constexpr const char* kCommand = "VisualBasic.Project\\shell\\open\\command";
const std::string kClasses = "Software\\Classes\\";

// The contract every registry keeps, over an empty prefix.
class EmptyPrefix : public testing::RegistrySandbox {
 public:
  platform::Registry& registry() override { return registry_; }
  std::string base() const override { return "Software"; }

 private:
  testing::TestRegistry registry_;
};

using testing::RegistryContract;
const testing::RegistryStore kEmptyPrefix{"Files", [] { return std::make_unique<EmptyPrefix>(); }};
INSTANTIATE_TEST_SUITE_P(WinePrefix, RegistryContract, ::testing::Values(kEmptyPrefix), testing::RegistryStoreName);

std::string ValueText(const rt::Result<platform::RegValue>& value) {
  return value ? value->data.substr(0, value->data.find('\0')) : "<error " + std::to_string(Code(value)) + ">";
}

// A prefix whose user.reg and system.reg both hold the VisualBasic.Project
// command, in different letter case, and keys only one of them holds.
class WinePrefixRegistry : public ::testing::Test {
 protected:
  WinePrefixRegistry() {
    files_.AddFile(kSystem, Fixture("prefix-system.reg"));
    files_.AddFile(kUser, Fixture("prefix-user.reg"));
  }
  std::string File(const char* path) { return files_.Contents(path).value_or("<missing>"); }

  testing::TestRegistry reg_;
  testing::FakeFileSystem& files_ = reg_.files;
  bool& serverRunning_ = reg_.serverRunning;
};

TEST_F(WinePrefixRegistry, ClassesRootMergesUserOverMachine) {
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyClassesRoot, kCommand, "machineonly")), "m");
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyLocalMachine, kClasses + kCommand, "")), "machine");
  EXPECT_TRUE(reg_.OpenKey(kHkeyClassesRoot, "\\TypeLib\\{g}\\", false).ok());
  EXPECT_EQ(*reg_.EnumKeys(kHkeyClassesRoot, ""), (Strings{"TypeLib", "UserOnly", "visualbasic.project"}));
  // Wine's order, not the file's.
  EXPECT_EQ(*reg_.EnumKeys(kHkeyClassesRoot, "TypeLib\\{G}"), (Strings{"1.0", "2.0"}));
  EXPECT_EQ(Code(reg_.OpenKey(platform::kHkeyUsers, "", false)), platform::regerr::kInvalidHandle);
}

TEST_F(WinePrefixRegistry, ClassesRootWritesGoWhereReadsLook) {
  const platform::RegValue text{platform::kRegSz, std::string("new\0", 4)};
  // The user's key holds the default value (a machine write would stay
  // hidden); a value the user's key lacks goes to the machine; new keys go to
  // the hive holding the deepest part of their path.
  ASSERT_TRUE(reg_.SetValue(kHkeyClassesRoot, kCommand, "", text).ok());
  ASSERT_TRUE(reg_.SetValue(kHkeyClassesRoot, kCommand, "Other", text).ok());
  ASSERT_TRUE(reg_.CreateKey(kHkeyClassesRoot, "UserOnly\\Sub\\Deeper").ok());
  ASSERT_TRUE(reg_.CreateKey(kHkeyClassesRoot, "VisualBasic.Form\\shell").ok());
  testing::ExpectMatchesFile(File(kUser), "winereg/prefix-user.written.reg");
  testing::ExpectMatchesFile(File(kSystem), "winereg/prefix-system.written.reg");

  // Deleting takes the value and the key from both.
  ASSERT_TRUE(reg_.DeleteValue(kHkeyClassesRoot, kCommand, "").ok());
  EXPECT_EQ(Code(reg_.QueryValue(kHkeyClassesRoot, kCommand, "")), kFileNotFound);
  ASSERT_TRUE(reg_.DeleteKey(kHkeyClassesRoot, kCommand).ok());
  for (const uint32_t hive : {kHkeyCurrentUser, kHkeyLocalMachine}) {
    EXPECT_FALSE(reg_.OpenKey(hive, kClasses + kCommand, false).ok());
    EXPECT_TRUE(reg_.OpenKey(hive, kClasses + "VisualBasic.Project\\shell\\open", false).ok());
  }
}

TEST_F(WinePrefixRegistry, RefusesChangesWhileTheServerRuns) {
  serverRunning_ = true;
  const rt::Status refused[] = {
      reg_.CreateKey(kHkeyLocalMachine, "Software\\New"),
      reg_.SetValue(kHkeyLocalMachine, "Software\\Wine", "Version", {platform::kRegDword, std::string(4, '\0')}),
      reg_.DeleteKey(kHkeyClassesRoot, kCommand),
      reg_.DeleteValue(kHkeyClassesRoot, kCommand, ""),
      reg_.OpenKey(kHkeyClassesRoot, kCommand, true),
  };
  for (const rt::Status& status : refused) {
    ASSERT_EQ(Code(status), platform::regerr::kBusy);
    EXPECT_NE(status.error().description.find("'test-prefix'"), std::string::npos);
  }
  EXPECT_TRUE(files_.Record().written.empty());
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  serverRunning_ = false;
  EXPECT_TRUE(reg_.CreateKey(kHkeyLocalMachine, "Software\\New").ok());
}

TEST_F(WinePrefixRegistry, ReplacesFilesWholeOrNotAtAll) {
  const platform::RegValue text{platform::kRegSz, std::string("caf\xc3\xa9\0", 6)};
  ASSERT_TRUE(reg_.SetValue(kHkeyLocalMachine, "Software\\Wine", "Name", text).ok());
  EXPECT_EQ(files_.Record().renames, (std::vector<std::pair<std::string, std::string>>{
                                         {std::string(kSystem) + ".sentrune-new", kSystem}}));
  EXPECT_NE(File(kSystem).find("\"Name\"=\"caf\\xe9\"\n\"Version\"=dword:00000008\n"), std::string::npos);

  const std::string before = File(kSystem);
  files_.FailNext(testing::FsOp::kRename, "", rt::errnum::kPermissionDenied);
  const rt::Status failed = reg_.DeleteValue(kHkeyLocalMachine, "Software\\Wine", "Name");
  ASSERT_EQ(Code(failed), platform::regerr::kCantWrite);
  EXPECT_NE(failed.error().description.find(kSystem), std::string::npos);
  EXPECT_EQ(File(kSystem), before);
  EXPECT_FALSE(files_.Exists(std::string(kSystem) + ".sentrune-new"));
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyLocalMachine, "Software\\Wine", "Name")), "caf\xc3\xa9");
}

TEST_F(WinePrefixRegistry, FollowsTheFilesOnDisk) {
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  // Wine rewrote the file meanwhile.
  files_.AddFile(kUser, "WINE REGISTRY Version 2\n\n[Software\\\\Classes\\\\VisualBasic.Project\\\\shell\\\\open\\\\"
                        "command] 11\n@=\"later\"\n");
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyClassesRoot, kCommand, "")), "later");
  files_.AddFile(kUser, "garbage\n");
  EXPECT_EQ(Code(reg_.QueryValue(kHkeyCurrentUser, "X", "")), platform::regerr::kBadDb);

  // Without user.reg the user's hive reads as empty and cannot be written.
  ASSERT_TRUE(files_.DeleteFile(kUser).ok());
  EXPECT_EQ(ValueText(reg_.QueryValue(kHkeyClassesRoot, kCommand, "")), "machine");
  EXPECT_EQ(Code(reg_.CreateKey(kHkeyCurrentUser, "Software\\X")), platform::regerr::kCantWrite);
  EXPECT_FALSE(files_.Exists(kUser));
}

}  // namespace
}  // namespace sentrune::portable::winereg
