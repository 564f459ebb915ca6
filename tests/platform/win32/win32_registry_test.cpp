// The system's registry under a scratch key of the current user's: the
// contract every registry keeps, then what only the system does: refusals by
// security, other computers, and text as UTF-16.
#include "platform/win32/windows_api.h"
#include <sddl.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/win32/win32_registry.h"
#include "platform/win32/win32_text.h"
#include "support/registry_contract.h"

namespace sentrune::win32 {
namespace {

using platform::kHkeyCurrentUser;
using testing::RegistryContract;

// A key of its own under HKEY_CURRENT_USER\Software, removed with everything
// below it when the test ends.
class ScratchKey : public testing::RegistrySandbox {
 public:
  ScratchKey() : base_("Software\\SentruneTest-" + std::to_string(std::random_device()())) {}
  ~ScratchKey() override { RegDeleteTreeW(HKEY_CURRENT_USER, Widen(base_).c_str()); }
  platform::Registry& registry() override { return registry_; }
  std::string base() const override { return base_; }

 private:
  std::string base_;
  Win32Registry registry_;
};

const testing::RegistryStore kSystem{"System", [] { return std::make_unique<ScratchKey>(); }};
INSTANTIATE_TEST_SUITE_P(Win32, RegistryContract, ::testing::Values(kSystem), testing::RegistryStoreName);

int32_t Code(const auto& result) { return result.ok() ? 0 : result.error().number; }
std::string Description(const auto& result) { return result.ok() ? "<ok>" : result.error().description; }

// Sets the key's security descriptor, given in SDDL.
void Secure(const std::string& path, const wchar_t* sddl) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(sddl, SDDL_REVISION_1, &descriptor, nullptr));
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, Widen(path).c_str(), 0, WRITE_DAC, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
  RegCloseKey(key);
  LocalFree(descriptor);
}

TEST(Win32Registry, RefusalsNameTheKeyAndCarryTheSystemsCode) {
  ScratchKey scratch;
  platform::Registry& reg = scratch.registry();
  const std::string locked = scratch.base() + "\\Locked";
  ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, locked).ok());
  Secure(locked, L"D:P(A;;KR;;;WD)");  // everyone may read, nobody may write
  const rt::Status denied = reg.OpenKey(kHkeyCurrentUser, locked, true);
  EXPECT_EQ(Code(denied), platform::regerr::kAccessDenied);
  EXPECT_NE(Description(denied).find("'HKEY_CURRENT_USER\\" + locked + "'"), std::string::npos) << Description(denied);
  EXPECT_NE(Description(denied).find("(Windows error 5: "), std::string::npos) << Description(denied);
  EXPECT_EQ(Code(reg.SetValue(kHkeyCurrentUser, locked, "x", {platform::kRegDword, std::string(4, '\0')})),
            platform::regerr::kAccessDenied);
  EXPECT_TRUE(reg.OpenKey(kHkeyCurrentUser, locked, false).ok());
  Secure(locked, L"D:P(A;;KA;;;WD)");  // so that the scratch key can go

  const auto unreachable = reg.Connect("\\\\nosuchmachine");
  EXPECT_EQ(Code(unreachable), platform::regerr::kBadNetPath);
  EXPECT_NE(Description(unreachable).find("'\\\\nosuchmachine'"), std::string::npos) << Description(unreachable);
  EXPECT_EQ(Code(reg.OpenKey(0x80000009u, "", false)), platform::regerr::kInvalidHandle);
}

// This computer reached as another one: only the roots a remote registry has.
TEST(Win32Registry, ConnectsToTheRootsOfAComputer) {
  wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
  DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
  ASSERT_TRUE(GetComputerNameW(name, &length));
  const std::string machine = Narrow(std::wstring_view(name, length));
  Win32Registry local;
  const rt::Result<std::shared_ptr<platform::Registry>> remote = local.Connect(machine);
  ASSERT_TRUE(remote.ok()) << Description(remote);
  platform::Registry& reg = **remote;
  const auto software = reg.EnumKeys(platform::kHkeyLocalMachine, "Software");
  ASSERT_TRUE(software.ok()) << Description(software);
  EXPECT_EQ(*software, *local.EnumKeys(platform::kHkeyLocalMachine, "Software"));
  EXPECT_TRUE(reg.OpenKey(platform::kHkeyUsers, "", false).ok());
  for (const uint32_t hive : {platform::kHkeyClassesRoot, kHkeyCurrentUser}) {
    const rt::Status missing = reg.OpenKey(hive, "Software", false);
    EXPECT_EQ(Code(missing), platform::regerr::kInvalidHandle) << hive;
    EXPECT_NE(Description(missing).find("\\\\" + machine + "\\HKEY_"), std::string::npos) << Description(missing);
  }
}

// What the system stores is UTF-16, both ways, in key names as in values.
TEST(Win32Registry, TextReachesTheSystemAsUtf16) {
  ScratchKey scratch;
  platform::Registry& reg = scratch.registry();
  const std::string name = "\xD0\x9A\xD0\xBB\xD1\x8E\xD1\x87";  // "Ключ"
  const std::string key = scratch.base() + "\\" + name;
  ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, key).ok());
  EXPECT_EQ(*reg.EnumKeys(kHkeyCurrentUser, scratch.base()), std::vector<std::string>{name});
  const std::string text = "\xE6\x97\xA5\xE6\x9C\xAC caf\xC3\xA9 \xF0\x9F\x98\x80";  // "日本 café 😀"
  ASSERT_TRUE(reg.SetValue(kHkeyCurrentUser, key, "Name", {platform::kRegSz, text + '\0'}).ok());
  wchar_t stored[64];
  DWORD size = sizeof stored;
  ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, Widen(key).c_str(), L"Name", RRF_RT_REG_SZ, nullptr, stored, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(std::wstring(stored), L"\u65E5\u672C caf\u00E9 \U0001F600");

  const wchar_t list[] = L"\u00E9\0\u65E5\0";
  ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, Widen(key).c_str(), L"List", REG_MULTI_SZ, list, sizeof list),
            ERROR_SUCCESS);
  const auto read = reg.QueryValue(kHkeyCurrentUser, key, "list");
  ASSERT_TRUE(read.ok()) << Description(read);
  EXPECT_EQ(read->data, std::string("\xC3\xA9\0\xE6\x97\xA5\0\0", 8));
}

}  // namespace
}  // namespace sentrune::win32
