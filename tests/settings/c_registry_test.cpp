// cRegistry over the in-memory registry: reads that fall back to Default,
// the conversions by stored type, and the errors writes raise. Its deletes
// and enumeration are not covered: nothing in the add-in calls them.
#include "settings/c_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/text.h"
#include "support/fake_registry.h"
#include "support/test_addin.h"

namespace sentrune {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using testing::RegOp;
using Bytes = std::vector<uint8_t>;

constexpr const char* kKey = "Software\\Sentrune";

class cRegistryTest : public ::testing::Test {
 protected:
  cRegistryTest() : reg_(addin_.state, fake_) {
    reg_.SetClassKey(kHkeyCurrentUser);
    reg_.SetSectionKey(kKey);
  }
  RegVariant Read(const std::string& name) {
    reg_.SetValueKey(name);
    return reg_.Value();
  }
  // The returned error and the pending one agree.
  void ExpectRaised(const rt::Status& status, int32_t number, const std::string& text) {
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(status.error().number, number);
    EXPECT_EQ(status.error().description, text);
    EXPECT_EQ(addin_.state.err.number(), number);
    EXPECT_EQ(addin_.state.err.source(), "Sentrune.cRegistry");
    addin_.state.err.Clear();
  }

  testing::TestAddin addin_;
  testing::FakeRegistry fake_;
  cRegistry reg_;
};

TEST_F(cRegistryTest, ReadsFallBackToDefault) {
  fake_.AddValue(kHkeyCurrentUser, kKey, "Long", {platform::kRegDword, "12345"});
  fake_.AddString(kHkeyCurrentUser, kKey, "Text", "x");
  EXPECT_EQ(Read("Missing"), RegVariant{});  // an empty Default stays empty
  const RegVariant fallback{std::string("fallback")};
  reg_.SetDefault(fallback);
  EXPECT_EQ(Read("Missing"), fallback);
  EXPECT_EQ(Read("Long"), fallback);  // does not fit 32 bits
  fake_.FailNext(RegOp::kQuery, "", 5);
  EXPECT_EQ(Read("Text"), fallback);
  reg_.SetMachine("\\\\Elsewhere");
  EXPECT_EQ(Read("Text"), fallback);
  EXPECT_FALSE(addin_.state.err.pending());
}

TEST_F(cRegistryTest, ReadsByStoredType) {
  const struct {
    const char* name;
    platform::RegValue stored;
    RegVariant read;
  } cases[] = {
      {"", {platform::kRegSz, std::string("abc\0junk\0", 9)}, std::string("abc")},
      {"Expand",
       {platform::kRegExpandSz, std::string("%SystemRoot%\\x;%temp%;%Nope%;%%;50%\0", 36)},
       std::string("C:\\Windows\\x;C:\\Temp;%Nope%;%%;50%")},
      {"Dword", {platform::kRegDword, "\xfe\xff\xff\xff"}, int32_t{-2}},
      {"Big", {platform::kRegDwordBigEndian, std::string("\0\0\x01\x02", 4)}, int32_t{0x0102}},
      {"Short", {platform::kRegDword, "\x07"}, int32_t{7}},
      {"Bin", {platform::kRegBinary, std::string("\x00\xff", 2)}, Bytes{0x00, 0xFF}},
  };
  for (const auto& c : cases) fake_.AddValue(kHkeyCurrentUser, kKey, c.name, c.stored);
  for (const auto& c : cases) EXPECT_EQ(Read(rt::LCase(c.name)), c.read) << c.name;
}

TEST_F(cRegistryTest, WritesByValueType) {
  reg_.SetValueKey("Path");
  const std::pair<uint32_t, RegVariant> writes[] = {
      {platform::kRegSz, std::string("50% done")},        {platform::kRegSz, std::string("%SystemRoot%\\x")},
      {platform::kRegExpandSz, int32_t{42}},               {platform::kRegDwordBigEndian, int32_t{0x0A}},
      {platform::kRegBinary, Bytes{1, 0, 2}},              {platform::kRegMultiSz, std::string("not written")}};
  for (const auto& [type, value] : writes) {
    reg_.SetValueType(type);
    ASSERT_TRUE(reg_.SetValue(value).ok());
  }
  std::vector<std::string> written;
  for (const auto& set : fake_.Record().setValues)
    written.push_back(set.key + "\\" + set.name + "|" + std::to_string(set.value.type) + "|" + set.value.data);
  const std::string path = "HKEY_CURRENT_USER\\Software\\Sentrune\\Path|";
  EXPECT_EQ(written, (std::vector<std::string>{path + "1|" + std::string("50% done\0", 9),
                                               path + "2|" + std::string("%SystemRoot%\\x\0", 15),
                                               path + "2|" + std::string("42\0", 3),
                                               path + "5|" + std::string("\x0a\0\0\0", 4),
                                               path + "3|" + std::string("\x01\0\x02", 3)}));
  EXPECT_FALSE(addin_.state.err.pending());
}

TEST_F(cRegistryTest, FailedWritesRaiseAndWriteNothing) {
  reg_.SetClassKey(kHkeyClassesRoot);
  reg_.SetSectionKey("VisualBasic.Project\\shell\\open\\command");
  reg_.SetValueKey("Name");
  const std::string text = "Failed to set registry value Key: '-2147483648',Section: "
                           "'VisualBasic.Project\\shell\\open\\command',Key: 'Name' to value: ";
  fake_.FailNext(RegOp::kSet, "", 5);
  ExpectRaised(reg_.SetValue(std::string("x")), -2147194455, text + "'x'");
  EXPECT_NE(reg_.RegistryReason().find("Injected registry failure 5"), std::string::npos);
  fake_.FailNext(RegOp::kCreate, "", 5);
  ExpectRaised(reg_.SetValue(int32_t{7}), cRegistry::kRegistryError, text + "'7'");
  // A value that does not fit the type; one of UTF-16 bytes is shown as text.
  reg_.SetValueType(platform::kRegBinary);
  ExpectRaised(reg_.SetValue(std::string("abc")), 26001, text + "'abc'");
  EXPECT_EQ(reg_.RegistryReason(), "");
  reg_.SetValueType(platform::kRegDword);
  ExpectRaised(reg_.SetValue(Bytes{'h', 0, 'i', 0}), 26001, text + "'hi'");
  reg_.SetMachine("Elsewhere");
  reg_.SetValueType(platform::kRegSz);
  ExpectRaised(reg_.SetValue(std::string("y")), 26001, text + "'y'");
  EXPECT_TRUE(fake_.Record().setValues.empty());
}

TEST_F(cRegistryTest, DeletesRaiseWithTheirOwnTexts) {
  fake_.AddString(kHkeyCurrentUser, "Software\\Sentrune\\Child", "", "x");
  fake_.AddString(kHkeyCurrentUser, kKey, "Old", "x");
  ExpectRaised(reg_.DeleteKey(), 26001,
               "Failed to delete registry Key: '-2147483647',Section: 'Software\\Sentrune'");
  reg_.SetValueKey("Gone");
  ExpectRaised(
      reg_.DeleteValue(), 26001,
      "Failed to delete registry Key: '-2147483647',Section: 'Software\\Sentrune',Key: 'Gone'");
  fake_.FailNext(RegOp::kOpen, kKey, 5);
  ExpectRaised(reg_.DeleteValue(), 26001,
               "Failed to open key '-2147483647',Section: 'Software\\Sentrune' for delete access");

  reg_.SetValueKey("old");
  EXPECT_TRUE(reg_.DeleteValue().ok());
  reg_.SetSectionKey("Software\\Sentrune\\Child");
  EXPECT_TRUE(reg_.DeleteKey().ok());
  EXPECT_FALSE(reg_.KeyExists());
  reg_.SetSectionKey(kKey);
  EXPECT_TRUE(reg_.KeyExists());
  EXPECT_EQ(fake_.Record().deletedValues,
            std::vector<std::string>{"HKEY_CURRENT_USER\\Software\\Sentrune\\old"});
  EXPECT_EQ(fake_.Record().deletedKeys,
            std::vector<std::string>{"HKEY_CURRENT_USER\\Software\\Sentrune\\Child"});
}

TEST_F(cRegistryTest, EnumeratesSectionsInRegistryOrder) {
  const std::string guid = "TypeLib\\{00020430-0000-0000-C000-000000000046}";
  fake_.AddKey(kHkeyClassesRoot, guid + "\\2.0\\0\\win32");
  fake_.AddKey(kHkeyClassesRoot, guid + "\\1.0\\0\\win32");
  reg_.SetClassKey(kHkeyClassesRoot);
  reg_.SetSectionKey(guid);
  std::vector<std::string> names{"stale"};
  int32_t count = -1;
  EXPECT_TRUE(reg_.EnumerateSections(names, count));
  EXPECT_EQ(names, (std::vector<std::string>{"2.0", "1.0"}));
  EXPECT_EQ(count, 2);

  reg_.SetSectionKey(guid + "\\2.0\\0\\win32");
  EXPECT_TRUE(reg_.EnumerateSections(names, count));
  EXPECT_EQ(count, 0);
  reg_.SetSectionKey("TypeLib\\{missing}");
  EXPECT_FALSE(reg_.EnumerateSections(names, count));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(count, 0);
}

}  // namespace
}  // namespace sentrune
