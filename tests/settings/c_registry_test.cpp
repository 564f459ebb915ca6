// cRegistry over the Wine-prefix store in memory: reads that fall back to Default,
// the conversions by stored type, and the errors writes raise. Only what the
// add-in uses is covered: it writes strings and never deletes or enumerates.
#include "settings/c_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/text.h"
#include "support/test_addin.h"
#include "support/test_registry.h"

namespace sentrune {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;

constexpr const char* kKey = "Software\\Sentrune";

class cRegistryTest : public ::testing::Test {
 protected:
  cRegistryTest() : reg_(addin_.state, registry_) {
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
  testing::TestRegistry registry_;
  cRegistry reg_;
};

TEST_F(cRegistryTest, ReadsFallBackToDefault) {
  registry_.AddValue(kHkeyCurrentUser, kKey, "Long", {platform::kRegDword, "12345"});
  registry_.AddString(kHkeyCurrentUser, kKey, "Text", "x");
  EXPECT_EQ(Read("Missing"), RegVariant{});  // an empty Default stays empty
  const RegVariant fallback{std::string("fallback")};
  reg_.SetDefault(fallback);
  EXPECT_EQ(Read("Missing"), fallback);
  EXPECT_EQ(Read("Long"), fallback);  // does not fit 32 bits
  registry_.files.FailNext(testing::FsOp::kRead, "", rt::errnum::kPermissionDenied);
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
      {"Bin", {platform::kRegBinary, std::string("\x00\xff", 2)}, std::vector<uint8_t>{0x00, 0xFF}},
  };
  for (const auto& c : cases) registry_.AddValue(kHkeyCurrentUser, kKey, c.name, c.stored);
  for (const auto& c : cases) EXPECT_EQ(Read(rt::LCase(c.name)), c.read) << c.name;
}

TEST_F(cRegistryTest, WritesStringsAsTheyAreAndAFailedWriteRaisesAndWritesNothing) {
  reg_.SetClassKey(kHkeyClassesRoot);
  reg_.SetSectionKey("VisualBasic.Project\\shell\\open\\command");
  reg_.SetValueKey("Name");
  reg_.SetValueType(platform::kRegSz);
  ASSERT_TRUE(reg_.SetValue(std::string("%SystemRoot% 50%")).ok());
  const auto written = [&] {
    const auto value = registry_.QueryValue(kHkeyClassesRoot, "VisualBasic.Project\\shell\\open\\command", "Name");
    return value ? value->data : "<missing>";
  };
  EXPECT_EQ(written(), std::string("%SystemRoot% 50%\0", 17));
  EXPECT_FALSE(addin_.state.err.pending());

  const std::string text = "Failed to set registry value Key: '-2147483648',Section: "
                           "'VisualBasic.Project\\shell\\open\\command',Key: 'Name' to value: ";
  registry_.files.FailNext(testing::FsOp::kWrite, "", rt::errnum::kDiskFull);
  ExpectRaised(reg_.SetValue(std::string("x")), -2147194455, text + "'x'");
  EXPECT_TRUE(reg_.RegistryReason().starts_with("Cannot write the Wine registry file")) << reg_.RegistryReason();
  registry_.serverRunning = true;  // now creating the key, the first step, fails
  ExpectRaised(reg_.SetValue(std::string("y")), cRegistry::kRegistryError, text + "'y'");
  EXPECT_EQ(written(), std::string("%SystemRoot% 50%\0", 17));
}

}  // namespace
}  // namespace sentrune
