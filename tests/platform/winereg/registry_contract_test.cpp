// What every Registry must do, checked on the in-memory fake and on the Wine
// prefix store alike, so that tests written against the fake hold for the
// store the command-line host uses.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/winereg/wine_registry.h"
#include "support/fake_file_system.h"
#include "support/fake_registry.h"

namespace sentrune {
namespace {

using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;
using platform::regerr::kAccessDenied;
using platform::regerr::kFileNotFound;
using Strings = std::vector<std::string>;

class RegistryContract : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) {
      registry_ = std::make_unique<testing::FakeRegistry>();
      return;
    }
    files_.AddFile("C:\\P\\system.reg", "WINE REGISTRY Version 2\n");
    files_.AddFile("C:\\P\\user.reg", "WINE REGISTRY Version 2\n");
    portable::WineRegistryOptions options;
    options.prefixFolder = "C:\\P";
    registry_ = std::make_unique<portable::WineRegistry>(files_, std::move(options));
  }
  static int32_t Code(const rt::Status& status) { return status.ok() ? 0 : status.error().number; }
  template <typename T>
  static int32_t Code(const rt::Result<T>& result) { return result.ok() ? 0 : result.error().number; }

  testing::FakeFileSystem files_;
  std::unique_ptr<platform::Registry> registry_;
};

TEST_P(RegistryContract, KeysAndValuesBehaveAsOnWindows) {
  platform::Registry& reg = *registry_;
  const std::string app = "Software\\Vendor\\App";
  ASSERT_TRUE(reg.CreateKey(kHkeyLocalMachine, app).ok());
  EXPECT_TRUE(reg.CreateKey(kHkeyLocalMachine, "SOFTWARE\\vendor\\app").ok());  // exists already
  EXPECT_TRUE(reg.OpenKey(kHkeyLocalMachine, "Software\\Vendor", false).ok());
  EXPECT_EQ(Code(reg.OpenKey(kHkeyCurrentUser, "Software\\Vendor", false)), kFileNotFound);

  const platform::RegValue text{platform::kRegSz, std::string("Gr\xc3\xbc\xc3\x9f" "e\0", 7)};
  const platform::RegValue number{platform::kRegDword, std::string("\x0a\0\0\0", 4)};
  EXPECT_EQ(Code(reg.SetValue(kHkeyLocalMachine, "Software\\Missing", "x", text)), kFileNotFound);
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, app, "", text).ok());
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, app, "Count", text).ok());
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, app, "COUNT", number).ok());
  const rt::Result<platform::RegValue> count = reg.QueryValue(kHkeyLocalMachine, "software\\vendor\\app", "count");
  ASSERT_TRUE(count.ok());
  EXPECT_EQ(count->type, platform::kRegDword);
  EXPECT_EQ(count->data, number.data);
  EXPECT_EQ(reg.QueryValue(kHkeyLocalMachine, app, "")->data, text.data);
  EXPECT_EQ(Code(reg.QueryValue(kHkeyLocalMachine, app, "Nope")), kFileNotFound);

  ASSERT_TRUE(reg.DeleteValue(kHkeyLocalMachine, app, "count").ok());
  EXPECT_EQ(Code(reg.DeleteValue(kHkeyLocalMachine, app, "count")), kFileNotFound);
  EXPECT_EQ(Code(reg.DeleteValue(kHkeyLocalMachine, "Software\\Nope", "count")), kFileNotFound);
  EXPECT_EQ(Code(reg.Connect("\\\\NoSuchMachine")), platform::regerr::kBadNetPath);
}

TEST_P(RegistryContract, SubkeysAreListedAndGuardDeletion) {
  platform::Registry& reg = *registry_;
  for (const char* key : {"Software\\V\\1.0\\0\\win32", "Software\\V\\2.0", "Software\\V\\3.0"})
    ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, key).ok());
  EXPECT_EQ(*reg.EnumKeys(kHkeyCurrentUser, "Software\\V"), (Strings{"1.0", "2.0", "3.0"}));
  EXPECT_TRUE(reg.EnumKeys(kHkeyCurrentUser, "Software\\V\\2.0")->empty());
  EXPECT_EQ(Code(reg.EnumKeys(kHkeyCurrentUser, "Software\\W")), kFileNotFound);

  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\1.0")), kAccessDenied);
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "")), kAccessDenied);
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\9.0")), kFileNotFound);
  ASSERT_TRUE(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\2.0").ok());
  ASSERT_TRUE(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\1.0\\0\\win32").ok());
  EXPECT_TRUE(reg.OpenKey(kHkeyCurrentUser, "Software\\V\\1.0\\0", false).ok());
  EXPECT_EQ(*reg.EnumKeys(kHkeyCurrentUser, "Software\\V"), (Strings{"1.0", "3.0"}));
}

INSTANTIATE_TEST_SUITE_P(Backends, RegistryContract, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "WinePrefix" : "Fake"; });

}  // namespace
}  // namespace sentrune
