// What every Registry must do, checked on the in-memory fake and on the Wine
// prefix store alike, so that tests written against the fake hold for the
// store the command-line host uses.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/portable/wine_registry.h"
#include "support/fake_file_system.h"
#include "support/fake_registry.h"

namespace sentrune {
namespace {

using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;
using platform::regerr::kAccessDenied;
using platform::regerr::kFileNotFound;

enum class Backend { kFake, kWinePrefix };

class RegistryContract : public ::testing::TestWithParam<Backend> {
 protected:
  void SetUp() override {
    if (GetParam() == Backend::kFake) {
      registry_ = std::make_unique<testing::FakeRegistry>();
      return;
    }
    files_.AddFile("C:\\P\\system.reg", "WINE REGISTRY Version 2\n");
    files_.AddFile("C:\\P\\user.reg", "WINE REGISTRY Version 2\n");
    portable::WineRegistryOptions options;
    options.prefixFolder = "C:\\P";
    registry_ = std::make_unique<portable::WineRegistry>(files_, std::move(options));
  }
  int32_t Code(const rt::Status& status) { return status.ok() ? 0 : status.error().number; }

  testing::FakeFileSystem files_;
  std::unique_ptr<platform::Registry> registry_;
};

TEST_P(RegistryContract, KeysAndValuesBehaveAsOnWindows) {
  platform::Registry& reg = *registry_;
  ASSERT_TRUE(reg.CreateKey(kHkeyLocalMachine, "Software\\Vendor\\App").ok());
  EXPECT_TRUE(reg.CreateKey(kHkeyLocalMachine, "SOFTWARE\\vendor\\app").ok());  // exists already
  EXPECT_TRUE(reg.OpenKey(kHkeyLocalMachine, "Software\\Vendor", false).ok());
  EXPECT_EQ(Code(reg.OpenKey(kHkeyLocalMachine, "Software\\Vendor\\Other", false)), kFileNotFound);
  EXPECT_EQ(Code(reg.OpenKey(kHkeyCurrentUser, "Software\\Vendor", false)), kFileNotFound);

  const platform::RegValue text{platform::kRegSz, std::string("Gr\xc3\xbc\xc3\x9f"
                                                              "e\0",
                                                              7)};
  const platform::RegValue number{platform::kRegDword, std::string("\x0a\0\0\0", 4)};
  EXPECT_EQ(Code(reg.SetValue(kHkeyLocalMachine, "Software\\Missing", "x", text)), kFileNotFound);
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, "Software\\Vendor\\App", "", text).ok());
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, "Software\\Vendor\\App", "Count", text).ok());
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, "Software\\Vendor\\App", "COUNT", number).ok());
  const rt::Result<platform::RegValue> count =
      reg.QueryValue(kHkeyLocalMachine, "software\\vendor\\app", "count");
  ASSERT_TRUE(count.ok());
  EXPECT_EQ(count->type, platform::kRegDword);
  EXPECT_EQ(count->data, number.data);
  EXPECT_EQ(reg.QueryValue(kHkeyLocalMachine, "Software\\Vendor\\App", "")->data, text.data);
  EXPECT_EQ(reg.QueryValue(kHkeyLocalMachine, "Software\\Vendor\\App", "Nope").error().number,
            kFileNotFound);
  EXPECT_EQ(reg.QueryValue(kHkeyLocalMachine, "Software\\Nope", "").error().number, kFileNotFound);

  ASSERT_TRUE(reg.DeleteValue(kHkeyLocalMachine, "Software\\Vendor\\App", "count").ok());
  EXPECT_EQ(Code(reg.DeleteValue(kHkeyLocalMachine, "Software\\Vendor\\App", "count")),
            kFileNotFound);
  EXPECT_EQ(Code(reg.DeleteValue(kHkeyLocalMachine, "Software\\Nope", "count")), kFileNotFound);
}

TEST_P(RegistryContract, SubkeysAreListedAndGuardDeletion) {
  platform::Registry& reg = *registry_;
  for (const char* key : {"Software\\V\\1.0\\0\\win32", "Software\\V\\2.0", "Software\\V\\3.0"}) {
    ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, key).ok());
  }
  const rt::Result<std::vector<std::string>> names = reg.EnumKeys(kHkeyCurrentUser, "Software\\V");
  ASSERT_TRUE(names.ok());
  EXPECT_EQ(*names, (std::vector<std::string>{"1.0", "2.0", "3.0"}));
  EXPECT_TRUE(reg.EnumKeys(kHkeyCurrentUser, "Software\\V\\2.0")->empty());
  EXPECT_EQ(reg.EnumKeys(kHkeyCurrentUser, "Software\\W").error().number, kFileNotFound);

  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\1.0")), kAccessDenied);
  EXPECT_TRUE(reg.OpenKey(kHkeyCurrentUser, "Software\\V\\1.0\\0\\win32", false).ok());
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "")), kAccessDenied);
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\9.0")), kFileNotFound);
  ASSERT_TRUE(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\2.0").ok());
  ASSERT_TRUE(reg.DeleteKey(kHkeyCurrentUser, "Software\\V\\1.0\\0\\win32").ok());
  EXPECT_TRUE(reg.OpenKey(kHkeyCurrentUser, "Software\\V\\1.0\\0", false).ok());
  EXPECT_EQ(*reg.EnumKeys(kHkeyCurrentUser, "Software\\V"),
            (std::vector<std::string>{"1.0", "3.0"}));

  EXPECT_EQ(reg.Connect("\\\\NoSuchMachine").error().number, platform::regerr::kBadNetPath);
}

INSTANTIATE_TEST_SUITE_P(Backends, RegistryContract,
                         ::testing::Values(Backend::kFake, Backend::kWinePrefix),
                         [](const auto& info) {
                           return info.param == Backend::kFake ? "Fake" : "WinePrefix";
                         });

}  // namespace
}  // namespace sentrune
