// cRegistry over the in-memory registry: reads that fall back to Default,
// the conversions by stored type, and the errors writes raise.
#include "settings/c_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fake_registry.h"
#include "support/test_addin.h"

namespace sentrune {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using testing::FakeRegistry;
using testing::RegOp;

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
  // The pending error after a raise, with the returned one matching it.
  void ExpectRaised(const rt::Status& status, int32_t number, const std::string& text) {
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(status.error().number, number);
    EXPECT_EQ(status.error().description, text);
    EXPECT_EQ(addin_.state.err.number(), number);
    EXPECT_EQ(addin_.state.err.description(), text);
    EXPECT_EQ(addin_.state.err.source(), "Sentrune.cRegistry");
    addin_.state.err.Clear();
  }

  testing::TestAddin addin_;
  FakeRegistry fake_;
  cRegistry reg_;
};

TEST_F(cRegistryTest, ReadsFallBackToDefault) {
  fake_.AddValue(kHkeyCurrentUser, kKey, "Long", {platform::kRegDword, "12345"});
  EXPECT_EQ(Read("Missing"), RegVariant{});  // an empty Default stays empty
  reg_.SetDefault(std::string("fallback"));
  EXPECT_EQ(Read("Missing"), RegVariant{std::string("fallback")});
  EXPECT_EQ(Read("Long"), RegVariant{std::string("fallback")});  // does not fit 32 bits
  reg_.SetSectionKey("Software\\Nowhere");
  EXPECT_EQ(Read(""), RegVariant{std::string("fallback")});
  fake_.FailNext(RegOp::kQuery, "", 5);
  reg_.SetSectionKey(kKey);
  fake_.AddString(kHkeyCurrentUser, kKey, "Text", "x");
  EXPECT_EQ(Read("Text"), RegVariant{std::string("fallback")});
  reg_.SetMachine("\\\\Elsewhere");
  EXPECT_EQ(Read("Text"), RegVariant{std::string("fallback")});
  EXPECT_FALSE(addin_.state.err.pending());
}

TEST_F(cRegistryTest, ReadsByStoredType) {
  using Bytes = std::vector<uint8_t>;
  fake_.AddValue(kHkeyCurrentUser, kKey, "", {platform::kRegSz, std::string("abc\0junk\0", 9)});
  fake_.AddValue(kHkeyCurrentUser, kKey, "Multi",
                 {platform::kRegMultiSz, std::string("one\0two\0\0", 9)});
  fake_.AddValue(
      kHkeyCurrentUser, kKey, "Expand",
      {platform::kRegExpandSz, std::string("%SystemRoot%\\x;%temp%;%Nope%;%%;50%\0", 36)});
  fake_.AddDword(kHkeyCurrentUser, kKey, "Dword", 0xFFFFFFFE);
  fake_.AddValue(kHkeyCurrentUser, kKey, "Big",
                 {platform::kRegDwordBigEndian, std::string("\0\0\x01\x02", 4)});
  fake_.AddValue(kHkeyCurrentUser, kKey, "Short", {platform::kRegDword, "\x07"});
  fake_.AddValue(kHkeyCurrentUser, kKey, "Bin", {platform::kRegBinary, std::string("\x00\xff", 2)});
  fake_.AddValue(kHkeyCurrentUser, kKey, "None", {platform::kRegNone, ""});

  EXPECT_EQ(Read(""), RegVariant{std::string("abc")});
  EXPECT_EQ(Read("multi"), RegVariant{std::string("one")});
  EXPECT_EQ(Read("Expand"), RegVariant{std::string("C:\\Windows\\x;C:\\Temp;%Nope%;%%;50%")});
  EXPECT_EQ(Read("Dword"), RegVariant{int32_t{-2}});
  EXPECT_EQ(Read("Big"), RegVariant{int32_t{0x0102}});
  EXPECT_EQ(Read("Short"), RegVariant{int32_t{7}});
  EXPECT_EQ(Read("Bin"), (RegVariant{Bytes{0x00, 0xFF}}));
  EXPECT_EQ(Read("None"), RegVariant{Bytes{}});
}

TEST_F(cRegistryTest, WritesByValueType) {
  reg_.SetValueKey("Path");
  ASSERT_TRUE(reg_.SetValue(std::string("50% done")).ok());
  ASSERT_TRUE(reg_.SetValue(std::string("%SystemRoot%\\x")).ok());
  reg_.SetValueType(platform::kRegExpandSz);
  ASSERT_TRUE(reg_.SetValue(int32_t{42}).ok());
  reg_.SetValueType(platform::kRegDwordBigEndian);
  ASSERT_TRUE(reg_.SetValue(int32_t{0x0A}).ok());
  reg_.SetValueType(platform::kRegBinary);
  ASSERT_TRUE(reg_.SetValue(std::vector<uint8_t>{1, 0, 2}).ok());
  reg_.SetValueType(platform::kRegMultiSz);  // a type the class does not write
  ASSERT_TRUE(reg_.SetValue(std::string("ignored")).ok());

  const auto& sets = fake_.Record().setValues;
  ASSERT_EQ(sets.size(), 5u);
  const struct {
    uint32_t type;
    std::string data;
  } expected[] = {
      {platform::kRegSz, std::string("50% done\0", 9)},
      {platform::kRegExpandSz, std::string("%SystemRoot%\\x\0", 15)},
      {platform::kRegExpandSz, std::string("42\0", 3)},
      {platform::kRegDwordBigEndian, std::string("\x0a\0\0\0", 4)},
      {platform::kRegBinary, std::string("\x01\0\x02", 3)},
  };
  for (size_t i = 0; i < sets.size(); ++i) {
    EXPECT_EQ(sets[i].key, "HKEY_CURRENT_USER\\Software\\Sentrune");
    EXPECT_EQ(sets[i].name, "Path");
    EXPECT_EQ(sets[i].value.type, expected[i].type) << i;
    EXPECT_EQ(sets[i].value.data, expected[i].data) << i;
  }
  EXPECT_EQ(fake_.Record().createdKeys,
            std::vector<std::string>{"HKEY_CURRENT_USER\\Software\\Sentrune"});
  EXPECT_FALSE(addin_.state.err.pending());
}

TEST_F(cRegistryTest, FailedWritesRaise) {
  reg_.SetClassKey(kHkeyClassesRoot);
  reg_.SetSectionKey("VisualBasic.Project\\shell\\open\\command");
  reg_.SetValueKey("Name");
  const std::string text =
      "Failed to set registry value Key: '-2147483648',Section: "
      "'VisualBasic.Project\\shell\\open\\command',Key: 'Name' to value: ";

  fake_.FailNext(RegOp::kSet, "", 5);
  ExpectRaised(reg_.SetValue(std::string("x")), -2147194455, text + "'x'");
  EXPECT_NE(reg_.RegistryReason().find("Injected registry failure 5"), std::string::npos);
  fake_.FailNext(RegOp::kCreate, "", 5);
  ExpectRaised(reg_.SetValue(int32_t{7}), cRegistry::kRegistryError, text + "'7'");

  reg_.SetValueType(platform::kRegBinary);
  ExpectRaised(reg_.SetValue(std::string("abc")), 26001, text + "'abc'");
  EXPECT_EQ(reg_.RegistryReason(), "");
  ExpectRaised(reg_.SetValue(RegVariant{}), 26001, text + "''");
  reg_.SetValueType(platform::kRegDword);
  ExpectRaised(reg_.SetValue(std::vector<uint8_t>{'h', 0, 'i', 0}), 26001, text + "'hi'");

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

TEST_F(cRegistryTest, MachineSelectsAnotherRegistry) {
  FakeRegistry& remote = fake_.AddMachine("Build01");
  remote.AddString(kHkeyCurrentUser, kKey, "Where", "remote");
  fake_.AddString(kHkeyCurrentUser, kKey, "Where", "local");
  EXPECT_EQ(Read("Where"), RegVariant{std::string("local")});
  reg_.SetMachine("\\\\build01");
  EXPECT_EQ(Read("Where"), RegVariant{std::string("remote")});
  ASSERT_TRUE(reg_.SetValue(std::string("changed")).ok());
  EXPECT_EQ(remote.Get(kHkeyCurrentUser, kKey, "where")->data, std::string("changed\0", 8));
  EXPECT_EQ(fake_.Get(kHkeyCurrentUser, kKey, "Where")->data, std::string("local\0", 6));
}

}  // namespace
}  // namespace sentrune
