#pragma once
// What the core's tests take for granted of every registry, as one suite that
// each implementation's test program instantiates with its own store:
//   INSTANTIATE_TEST_SUITE_P(Name, RegistryContract, ::testing::Values(RegistryStore{"Name", make}),
//                            RegistryStoreName);
// It defines tests: include it in one file of a program only.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/registry.h"

namespace sentrune::testing {

// A registry and a key path, the same under HKEY_CURRENT_USER and
// HKEY_LOCAL_MACHINE, below which nothing exists yet; whatever the suite
// creates there is gone once this object is.
class RegistrySandbox {
 public:
  virtual ~RegistrySandbox() = default;
  virtual platform::Registry& registry() = 0;
  virtual std::string base() const = 0;
};

struct RegistryStore {
  std::string name;
  std::function<std::unique_ptr<RegistrySandbox>()> make;
};

// Failures name the store, not its bytes.
inline void PrintTo(const RegistryStore& store, std::ostream* out) { *out << store.name; }
inline std::string RegistryStoreName(const ::testing::TestParamInfo<RegistryStore>& info) {
  return info.param.name;
}

class RegistryContract : public ::testing::TestWithParam<RegistryStore> {
 protected:
  void SetUp() override { sandbox_ = GetParam().make(); }

  std::string Key(const std::string& below) const { return sandbox_->base() + "\\" + below; }
  static int32_t Code(const auto& result) { return result.ok() ? 0 : result.error().number; }

  std::unique_ptr<RegistrySandbox> sandbox_;
};

TEST_P(RegistryContract, KeysAndValues) {
  using platform::kHkeyCurrentUser;
  using platform::regerr::kAccessDenied;
  using platform::regerr::kFileNotFound;
  using Strings = std::vector<std::string>;
  platform::Registry& reg = sandbox_->registry();
  std::string upper = Key("v\\2.0");
  std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
  const platform::RegValue text{platform::kRegSz, std::string("x\0", 2)};
  const platform::RegValue number{platform::kRegDword, std::string("\x0a\0\0\0", 4)};
  for (const std::string& key : {Key("V\\1.0\\0\\win32"), Key("V\\2.0"), upper, Key("V\\3.0")})
    ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, key).ok()) << key;
  EXPECT_EQ(Code(reg.OpenKey(platform::kHkeyLocalMachine, Key("V"), false)), kFileNotFound);
  EXPECT_EQ(Code(reg.SetValue(kHkeyCurrentUser, Key("W"), "x", text)), kFileNotFound);
  ASSERT_TRUE(reg.SetValue(kHkeyCurrentUser, Key("V"), "Count", text).ok());
  ASSERT_TRUE(reg.SetValue(kHkeyCurrentUser, Key("V"), "COUNT", number).ok());
  const rt::Result<platform::RegValue> count = reg.QueryValue(kHkeyCurrentUser, Key("v"), "count");
  ASSERT_TRUE(count.ok());
  EXPECT_EQ(count->type, platform::kRegDword);
  EXPECT_EQ(count->data, number.data);
  EXPECT_EQ(Code(reg.QueryValue(kHkeyCurrentUser, Key("V"), "")), kFileNotFound);
  ASSERT_TRUE(reg.DeleteValue(kHkeyCurrentUser, Key("V"), "count").ok());
  EXPECT_EQ(Code(reg.DeleteValue(kHkeyCurrentUser, Key("V"), "count")), kFileNotFound);
  EXPECT_EQ(Code(reg.DeleteValue(kHkeyCurrentUser, Key("W"), "count")), kFileNotFound);
  EXPECT_EQ(Code(reg.Connect("\\\\NoSuchMachine")), platform::regerr::kBadNetPath);

  EXPECT_EQ(*reg.EnumKeys(kHkeyCurrentUser, Key("V")), (Strings{"1.0", "2.0", "3.0"}));
  EXPECT_TRUE(reg.EnumKeys(kHkeyCurrentUser, Key("V\\2.0"))->empty());
  EXPECT_EQ(Code(reg.EnumKeys(kHkeyCurrentUser, Key("W"))), kFileNotFound);
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, Key("V\\1.0"))), kAccessDenied);  // has sub-keys
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, "")), kAccessDenied);
  EXPECT_EQ(Code(reg.DeleteKey(kHkeyCurrentUser, Key("V\\9.0"))), kFileNotFound);
  ASSERT_TRUE(reg.DeleteKey(kHkeyCurrentUser, Key("V\\2.0")).ok());
  ASSERT_TRUE(reg.DeleteKey(kHkeyCurrentUser, Key("V\\1.0\\0\\win32")).ok());
  EXPECT_TRUE(reg.OpenKey(kHkeyCurrentUser, Key("V\\1.0\\0"), false).ok());
  EXPECT_EQ(*reg.EnumKeys(kHkeyCurrentUser, Key("V")), (Strings{"1.0", "3.0"}));
}

// Text values keep their terminators, and a default value is a value.
TEST_P(RegistryContract, TextValuesKeepTheirTerminators) {
  using platform::kHkeyCurrentUser;
  platform::Registry& reg = sandbox_->registry();
  ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, Key("T")).ok());
  const platform::RegValue values[] = {
      {platform::kRegSz, std::string("caf\xC3\xA9\0", 6)},
      {platform::kRegExpandSz, std::string("%TEMP%\\x\0", 9)},
      {platform::kRegMultiSz, std::string("a\0bc\0\0", 6)},
      {platform::kRegBinary, std::string("\x01\0\xFF", 3)},
  };
  for (const platform::RegValue& value : values) {
    ASSERT_TRUE(reg.SetValue(kHkeyCurrentUser, Key("T"), "", value).ok());
    const rt::Result<platform::RegValue> read = reg.QueryValue(kHkeyCurrentUser, Key("T"), "");
    ASSERT_TRUE(read.ok()) << value.type;
    EXPECT_EQ(read->type, value.type);
    EXPECT_EQ(read->data, value.data) << value.type;
  }
}

}  // namespace sentrune::testing
