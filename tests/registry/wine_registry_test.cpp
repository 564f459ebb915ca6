// The registry of a Wine prefix over an in-memory file system: the merged
// HKEY_CLASSES_ROOT, the refusal while the prefix's server runs, and how
// changes reach the files.
#include "platform/portable/wine_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fake_file_system.h"

namespace sentrune::portable {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;
using testing::FakeFileSystem;
using testing::FsOp;

constexpr const char* kSystem = "C:\\Prefix\\system.reg";
constexpr const char* kUser = "C:\\Prefix\\user.reg";
constexpr const char* kCommand = "VisualBasic.Project\\shell\\open\\command";

const std::string kSystemText =
    "WINE REGISTRY Version 2\n;; All keys relative to \\\\Machine\n\n#arch=win32\n\n"
    "[Software\\\\Classes\\\\TypeLib\\\\{G}\\\\2.0\\\\0\\\\win32] 10\n@=\"two.tlb\"\n\n"
    "[Software\\\\Classes\\\\TypeLib\\\\{G}\\\\1.0\\\\0\\\\win32] 10\n@=\"one.tlb\"\n\n"
    "[Software\\\\Classes\\\\VisualBasic.Project\\\\shell\\\\open\\\\command] 10\n"
    "@=\"machine\"\n\"MachineOnly\"=\"m\"\n\n"
    "[Software\\\\Wine] 10\n\"Version\"=dword:00000008\n\n";
const std::string kUserText =
    "WINE REGISTRY Version 2\n;; All keys relative to \\\\User\\\\S-1-5-21-0-0-0-1000\n\n"
    "[Software\\\\Classes\\\\UserOnly\\\\Sub] 10\n\n"
    "[Software\\\\Classes\\\\visualbasic.project\\\\shell\\\\open\\\\command] 10\n"
    "@=\"user\"\n\n";

std::string Text(const rt::Result<platform::RegValue>& value) {
  if (!value.ok()) return "<error " + std::to_string(value.error().number) + ">";
  return value->data.substr(0, value->data.find('\0'));
}

class WinePrefixRegistry : public ::testing::Test {
 protected:
  WinePrefixRegistry() {
    files_.AddFile(kSystem, kSystemText);
    files_.AddFile(kUser, kUserText);
  }
  WineRegistry& Registry() {
    if (!registry_) {
      WineRegistryOptions options;
      options.prefixFolder = "C:\\Prefix\\";
      options.prefixName = "dev-prefix";
      options.serverRunning = [this] { return serverRunning_; };
      options.now = [] { return int64_t{1700000000}; };
      registry_ = std::make_unique<WineRegistry>(files_, std::move(options));
    }
    return *registry_;
  }
  std::string File(const char* path) { return files_.Contents(path).value_or("<missing>"); }

  FakeFileSystem files_;
  bool serverRunning_ = false;
  std::unique_ptr<WineRegistry> registry_;
};

TEST_F(WinePrefixRegistry, ClassesRootMergesUserOverMachine) {
  WineRegistry& reg = Registry();
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "machineonly")), "m");
  EXPECT_EQ(
      Text(reg.QueryValue(kHkeyLocalMachine, std::string("Software\\Classes\\") + kCommand, "")),
      "machine");
  EXPECT_EQ(
      Text(reg.QueryValue(kHkeyCurrentUser, std::string("Software\\Classes\\") + kCommand, "")),
      "user");
  EXPECT_TRUE(reg.OpenKey(kHkeyClassesRoot, "UserOnly", false).ok());
  EXPECT_TRUE(reg.OpenKey(kHkeyClassesRoot, "\\TypeLib\\{g}\\", false).ok());

  const rt::Result<std::vector<std::string>> roots = reg.EnumKeys(kHkeyClassesRoot, "");
  ASSERT_TRUE(roots.ok());
  EXPECT_EQ(*roots, (std::vector<std::string>{"TypeLib", "UserOnly", "visualbasic.project"}));
  const rt::Result<std::vector<std::string>> versions =
      reg.EnumKeys(kHkeyClassesRoot, "TypeLib\\{G}");
  ASSERT_TRUE(versions.ok());
  EXPECT_EQ(*versions, (std::vector<std::string>{"1.0", "2.0"}));  // Wine's order, not the file's

  EXPECT_EQ(reg.QueryValue(kHkeyClassesRoot, kCommand, "nothing").error().number,
            platform::regerr::kFileNotFound);
  EXPECT_EQ(reg.EnumKeys(kHkeyClassesRoot, "Missing").error().number,
            platform::regerr::kFileNotFound);
  EXPECT_EQ(reg.OpenKey(platform::kHkeyUsers, "", false).error().number,
            platform::regerr::kInvalidHandle);
  EXPECT_EQ(reg.Connect("\\\\server").error().number, platform::regerr::kBadNetPath);
}

TEST_F(WinePrefixRegistry, ClassesRootWritesGoWhereReadsLook) {
  WineRegistry& reg = Registry();
  const platform::RegValue text{platform::kRegSz, std::string("new\0", 4)};
  // The user's key holds the default value: a machine write would stay hidden.
  ASSERT_TRUE(reg.SetValue(kHkeyClassesRoot, kCommand, "", text).ok());
  EXPECT_NE(File(kUser).find("@=\"new\""), std::string::npos);
  // A value the user's key lacks goes to the machine.
  ASSERT_TRUE(reg.SetValue(kHkeyClassesRoot, kCommand, "Other", text).ok());
  EXPECT_NE(File(kSystem).find("\"Other\"=\"new\""), std::string::npos);
  // New keys go to the hive holding the deepest part of their path.
  ASSERT_TRUE(reg.CreateKey(kHkeyClassesRoot, "UserOnly\\Sub\\Deeper").ok());
  EXPECT_NE(File(kUser).find("[Software\\\\Classes\\\\UserOnly\\\\Sub\\\\Deeper] 1700000000"),
            std::string::npos);
  ASSERT_TRUE(reg.CreateKey(kHkeyClassesRoot, "VisualBasic.Form\\shell").ok());
  EXPECT_NE(File(kSystem).find("[Software\\\\Classes\\\\VisualBasic.Form\\\\shell]"),
            std::string::npos);
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "")), "new");

  // Deleting takes the value from both.
  ASSERT_TRUE(reg.DeleteValue(kHkeyClassesRoot, kCommand, "").ok());
  EXPECT_EQ(reg.QueryValue(kHkeyClassesRoot, kCommand, "").error().number,
            platform::regerr::kFileNotFound);
  EXPECT_EQ(File(kUser).find("@=\"new\""), std::string::npos);
  EXPECT_EQ(File(kSystem).find("@=\"machine\""), std::string::npos);
  EXPECT_EQ(reg.DeleteKey(kHkeyClassesRoot, "VisualBasic.Project\\shell").error().number,
            platform::regerr::kAccessDenied);
  ASSERT_TRUE(reg.DeleteKey(kHkeyClassesRoot, kCommand).ok());
  for (const uint32_t hive : {kHkeyCurrentUser, kHkeyLocalMachine}) {
    EXPECT_FALSE(reg.OpenKey(hive, std::string("Software\\Classes\\") + kCommand, false).ok());
    EXPECT_TRUE(
        reg.OpenKey(hive, "Software\\Classes\\VisualBasic.Project\\shell\\open", false).ok());
  }
}

TEST_F(WinePrefixRegistry, RefusesChangesWhileTheServerRuns) {
  serverRunning_ = true;
  WineRegistry& reg = Registry();
  const platform::RegValue dword{platform::kRegDword, std::string(4, '\0')};
  const rt::Status refused[] = {
      reg.CreateKey(kHkeyLocalMachine, "Software\\New"),
      reg.SetValue(kHkeyLocalMachine, "Software\\Wine", "Version", dword),
      reg.DeleteKey(kHkeyClassesRoot, kCommand),
      reg.DeleteValue(kHkeyClassesRoot, kCommand, ""),
      reg.OpenKey(kHkeyClassesRoot, kCommand, true),
  };
  for (const rt::Status& status : refused) {
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(status.error().number, platform::regerr::kBusy);
    EXPECT_NE(status.error().description.find("'dev-prefix'"), std::string::npos);
  }
  EXPECT_TRUE(files_.Record().written.empty());
  EXPECT_TRUE(reg.OpenKey(kHkeyClassesRoot, kCommand, false).ok());
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "")), "user");

  serverRunning_ = false;
  EXPECT_TRUE(reg.CreateKey(kHkeyLocalMachine, "Software\\New").ok());
}

TEST_F(WinePrefixRegistry, ReplacesFilesWholeOrNotAtAll) {
  WineRegistry& reg = Registry();
  const platform::RegValue text{platform::kRegSz, std::string("caf\xc3\xa9\0", 6)};
  ASSERT_TRUE(reg.SetValue(kHkeyLocalMachine, "Software\\Wine", "Name", text).ok());
  EXPECT_EQ(files_.Record().renames, (std::vector<std::pair<std::string, std::string>>{
                                         {std::string(kSystem) + ".sentrune-new", kSystem}}));
  EXPECT_NE(File(kSystem).find("\"Name\"=\"caf\\xe9\"\n\"Version\"=dword:00000008\n"),
            std::string::npos);
  EXPECT_EQ(reg.QueryValue(kHkeyLocalMachine, "Software\\Wine", "name")->data, text.data);

  const std::string before = File(kSystem);
  files_.FailNext(FsOp::kRename, "", rt::errnum::kPermissionDenied);
  const rt::Status failed = reg.DeleteValue(kHkeyLocalMachine, "Software\\Wine", "Name");
  ASSERT_FALSE(failed.ok());
  EXPECT_EQ(failed.error().number, platform::regerr::kCantWrite);
  EXPECT_NE(failed.error().description.find(kSystem), std::string::npos);
  EXPECT_EQ(File(kSystem), before);
  EXPECT_FALSE(files_.Exists(std::string(kSystem) + ".sentrune-new"));
  EXPECT_EQ(Text(reg.QueryValue(kHkeyLocalMachine, "Software\\Wine", "Name")), "caf\xc3\xa9");
}

TEST_F(WinePrefixRegistry, FollowsTheFilesOnDisk) {
  WineRegistry& reg = Registry();
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  // Wine rewrote the file meanwhile.
  files_.AddFile(
      kUser, "WINE REGISTRY Version 2\n\n[Software\\\\Classes\\\\" +
                 std::string("VisualBasic.Project\\\\shell\\\\open\\\\command] 11\n@=\"later\"\n"));
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "")), "later");

  files_.AddFile(kUser, "garbage\n");
  const rt::Result<platform::RegValue> broken = reg.QueryValue(kHkeyCurrentUser, "X", "");
  ASSERT_FALSE(broken.ok());
  EXPECT_EQ(broken.error().number, platform::regerr::kBadDb);

  // Without user.reg the user's hive reads as empty and cannot be written.
  ASSERT_TRUE(files_.DeleteFile(kUser).ok());
  EXPECT_EQ(Text(reg.QueryValue(kHkeyClassesRoot, kCommand, "")), "machine");
  EXPECT_EQ(reg.OpenKey(kHkeyCurrentUser, "Software", false).error().number,
            platform::regerr::kFileNotFound);
  const rt::Status create = reg.CreateKey(kHkeyCurrentUser, "Software\\X");
  ASSERT_FALSE(create.ok());
  EXPECT_EQ(create.error().number, platform::regerr::kCantWrite);
  EXPECT_FALSE(files_.Exists(kUser));
}

}  // namespace
}  // namespace sentrune::portable
