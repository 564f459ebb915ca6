// What registration writes and unregistration removes, over a stored
// registry, where machine and user can be told apart and the machine's
// keys can be refused as they are to a user without administrator rights.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "addin_ids.h"
#include "registration.h"
#include "support/test_registry.h"

namespace sentrune::addin {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;

const std::string kClsid = "CLSID\\{E5C3286C-C6E0-4EAD-A24B-2156ECB4EE02}";
const std::string kMachineClasses = "Software\\Classes\\";
const std::string kOurAddin = std::string(kAddinsKey) + "\\Sentrune.Connect";

std::string Text(platform::Registry& registry, uint32_t hive, const std::string& key, const std::string& name = "") {
  const rt::Result<platform::RegValue> value = registry.QueryValue(hive, key, name);
  if (!value.ok()) return "<missing>";
  return value->type == platform::kRegSz ? value->data : "<type " + std::to_string(value->type) + ">";
}

// A REG_DWORD's number; -1 for anything else.
int64_t Dword(platform::Registry& registry, uint32_t hive, const std::string& key, const std::string& name) {
  const rt::Result<platform::RegValue> value = registry.QueryValue(hive, key, name);
  if (!value.ok() || value->type != platform::kRegDword || value->data.size() != 4) return -1;
  uint32_t number = 0;
  for (size_t i = 0; i < 4; ++i) number |= static_cast<uint32_t>(static_cast<unsigned char>(value->data[i])) << (8 * i);
  return number;
}

// A REG_SZ's data: the text and its terminator.
std::string Sz(const std::string& text) { return text + '\0'; }

bool Exists(platform::Registry& registry, uint32_t hive, const std::string& key) {
  return registry.OpenKey(hive, key, false).ok();
}

// The stored registry as a user without administrator rights sees it: the
// machine's keys may be read, not changed.
class UserRegistry : public testing::TestRegistry {
 public:
  rt::Status CreateKey(uint32_t hive, const std::string& path) override {
    return Refused(hive) ? Denied(path) : TestRegistry::CreateKey(hive, path);
  }
  rt::Status SetValue(uint32_t hive, const std::string& path, const std::string& name,
                      const platform::RegValue& value) override {
    return Refused(hive) ? Denied(path) : TestRegistry::SetValue(hive, path, name, value);
  }
  rt::Status DeleteKey(uint32_t hive, const std::string& path) override {
    if (Refused(hive) && TestRegistry::OpenKey(hive, path, false).ok()) return Denied(path);
    return TestRegistry::DeleteKey(hive, path);
  }

 private:
  static bool Refused(uint32_t hive) { return hive == kHkeyLocalMachine; }
  static rt::Status Denied(const std::string& path) { return rt::MakeError(platform::regerr::kAccessDenied, path); }
};

TEST(Registration, WritesTheClassForTheMachineAndListsTheAddinForTheUser) {
  testing::TestRegistry registry;
  ASSERT_TRUE(RegisterServer(registry, "C:\\Program Files\\Sentrune\\Sentrune.dll").ok());

  EXPECT_EQ(Text(registry, kHkeyLocalMachine, kMachineClasses + "Sentrune.Connect\\CLSID"),
            Sz(kClsidText));
  EXPECT_EQ(Text(registry, kHkeyLocalMachine, kMachineClasses + kClsid + "\\ProgID"), Sz("Sentrune.Connect"));
  const std::string server = kMachineClasses + kClsid + "\\InprocServer32";
  EXPECT_EQ(Text(registry, kHkeyLocalMachine, server), Sz("C:\\Program Files\\Sentrune\\Sentrune.dll"));
  EXPECT_EQ(Text(registry, kHkeyLocalMachine, server, "ThreadingModel"), Sz("Apartment"));
  EXPECT_FALSE(Exists(registry, kHkeyCurrentUser, "Software\\Classes\\Sentrune.Connect"));

  EXPECT_EQ(Text(registry, kHkeyCurrentUser, kOurAddin, "FriendlyName"), Sz("Sentrune - Bindkeeper"));
  EXPECT_EQ(Text(registry, kHkeyCurrentUser, kOurAddin, "Description"), Sz(kDescription));
  EXPECT_EQ(Dword(registry, kHkeyCurrentUser, kOurAddin, "LoadBehavior"), 1);
  EXPECT_EQ(Dword(registry, kHkeyCurrentUser, kOurAddin, "CommandLineSafe"), 0);

  // Registering a moved DLL points the class at the new place.
  ASSERT_TRUE(RegisterServer(registry, "D:\\Sentrune.dll").ok());
  EXPECT_EQ(Text(registry, kHkeyClassesRoot, kClsid + "\\InprocServer32"), Sz("D:\\Sentrune.dll"));
}

TEST(Registration, WithoutAdministratorTheClassIsTheUsersAndTheMachinesStays) {
  UserRegistry registry;
  ASSERT_TRUE(RegisterServer(registry, "C:\\Users\\u\\Sentrune.dll").ok());
  EXPECT_FALSE(Exists(registry, kHkeyLocalMachine, kMachineClasses + kClsid));
  EXPECT_EQ(Text(registry, kHkeyCurrentUser, "Software\\Classes\\" + kClsid + "\\InprocServer32"),
            Sz("C:\\Users\\u\\Sentrune.dll"));
  EXPECT_EQ(Text(registry, kHkeyClassesRoot, "Sentrune.Connect\\CLSID"), Sz(kClsidText));
  EXPECT_TRUE(Exists(registry, kHkeyCurrentUser, kOurAddin));

  ASSERT_TRUE(UnregisterServer(registry).ok());
  EXPECT_FALSE(Exists(registry, kHkeyClassesRoot, "Sentrune.Connect"));
  EXPECT_FALSE(Exists(registry, kHkeyClassesRoot, kClsid));

  // An administrator's registration stays, and that is a failure.
  const std::string machine = kMachineClasses + kClsid + "\\InprocServer32";
  ASSERT_TRUE(registry.TestRegistry::CreateKey(kHkeyLocalMachine, machine).ok());
  EXPECT_FALSE(UnregisterServer(registry).ok());
  EXPECT_TRUE(Exists(registry, kHkeyLocalMachine, machine));
}

TEST(Registration, UnregistrationRemovesExactlyWhatWasWritten) {
  testing::TestRegistry registry;
  registry.AddString(kHkeyCurrentUser, std::string(kAddinsKey) + "\\Other.Connect", "FriendlyName", "Other");
  registry.AddString(kHkeyLocalMachine, kMachineClasses + "CLSID\\{00000000-1111-2222-3333-444444444444}", "", "x");
  // A per-user registration of an earlier install would shadow the new one.
  registry.AddString(kHkeyCurrentUser, "Software\\Classes\\" + kClsid + "\\InprocServer32", "", "C:\\Old.dll");
  ASSERT_TRUE(RegisterServer(registry, "C:\\Sentrune.dll").ok());
  EXPECT_FALSE(Exists(registry, kHkeyCurrentUser, "Software\\Classes\\" + kClsid));
  EXPECT_TRUE(Exists(registry, kHkeyCurrentUser, "Software\\Classes"));

  ASSERT_TRUE(UnregisterServer(registry).ok());
  for (const std::string key : {"Sentrune.Connect", kClsid.c_str()})
    EXPECT_FALSE(Exists(registry, kHkeyClassesRoot, key)) << key;
  EXPECT_FALSE(Exists(registry, kHkeyCurrentUser, kOurAddin));
  EXPECT_EQ(Text(registry, kHkeyCurrentUser, std::string(kAddinsKey) + "\\Other.Connect", "FriendlyName"),
            Sz("Other"));
  EXPECT_TRUE(Exists(registry, kHkeyLocalMachine, kMachineClasses + "CLSID\\{00000000-1111-2222-3333-444444444444}"));
  // Unregistering twice finds nothing to do, and that is no failure.
  EXPECT_TRUE(UnregisterServer(registry).ok());

  // With no other add-in listed the Addins key goes too, not the IDE's own.
  ASSERT_TRUE(registry.DeleteKey(kHkeyCurrentUser, std::string(kAddinsKey) + "\\Other.Connect").ok());
  ASSERT_TRUE(RegisterServer(registry, "C:\\Sentrune.dll").ok());
  ASSERT_TRUE(UnregisterServer(registry).ok());
  EXPECT_FALSE(Exists(registry, kHkeyCurrentUser, kAddinsKey));
  EXPECT_TRUE(Exists(registry, kHkeyCurrentUser, "Software\\Microsoft\\Visual Basic\\6.0"));

  // A key someone else put below ours keeps ours, and says so.
  ASSERT_TRUE(RegisterServer(registry, "C:\\Sentrune.dll").ok());
  ASSERT_TRUE(registry.CreateKey(kHkeyLocalMachine, kMachineClasses + kClsid + "\\Implemented Categories").ok());
  EXPECT_FALSE(UnregisterServer(registry).ok());
  EXPECT_TRUE(Exists(registry, kHkeyLocalMachine, kMachineClasses + kClsid + "\\Implemented Categories"));
  EXPECT_FALSE(Exists(registry, kHkeyLocalMachine, kMachineClasses + kClsid + "\\InprocServer32"));
}

}  // namespace
}  // namespace sentrune::addin
