// The registry of a Wine prefix over an in-memory file system: the merged
// HKEY_CLASSES_ROOT, the refusal while the prefix's server runs, and how
// changes reach the files.
#include "platform/winereg/wine_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fake_file_system.h"

namespace sentrune::portable {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;
using testing::FsOp;

constexpr const char* kSystem = "C:\\Prefix\\system.reg";
constexpr const char* kUser = "C:\\Prefix\\user.reg";
constexpr const char* kCommand = "VisualBasic.Project\\shell\\open\\command";
const std::string kClasses = "Software\\Classes\\";

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
    "[Software\\\\Classes\\\\visualbasic.project\\\\shell\\\\open\\\\command] 10\n@=\"user\"\n\n";

std::string Error(int32_t number) { return "<error " + std::to_string(number) + ">"; }
std::string Text(const rt::Result<platform::RegValue>& value) {
  if (!value.ok()) return Error(value.error().number);
  return value->data.substr(0, value->data.find('\0'));
}

class WinePrefixRegistry : public ::testing::Test {
 protected:
  WinePrefixRegistry() {
    files_.AddFile(kSystem, kSystemText);
    files_.AddFile(kUser, kUserText);
    WineRegistryOptions options;
    options.prefixFolder = "C:\\Prefix\\";
    options.prefixName = "dev-prefix";
    options.serverRunning = [this] { return serverRunning_; };
    options.now = [] { return int64_t{1700000000}; };
    reg_ = std::make_unique<WineRegistry>(files_, std::move(options));
  }
  std::string File(const char* path) { return files_.Contents(path).value_or("<missing>"); }

  testing::FakeFileSystem files_;
  bool serverRunning_ = false;
  std::unique_ptr<WineRegistry> reg_;
};

TEST_F(WinePrefixRegistry, ClassesRootMergesUserOverMachine) {
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "machineonly")), "m");
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyLocalMachine, kClasses + kCommand, "")), "machine");
  EXPECT_TRUE(reg_->OpenKey(kHkeyClassesRoot, "\\TypeLib\\{g}\\", false).ok());
  EXPECT_EQ(*reg_->EnumKeys(kHkeyClassesRoot, ""),
            (std::vector<std::string>{"TypeLib", "UserOnly", "visualbasic.project"}));
  // Wine's order, not the file's.
  EXPECT_EQ(*reg_->EnumKeys(kHkeyClassesRoot, "TypeLib\\{G}"), (std::vector<std::string>{"1.0", "2.0"}));
  EXPECT_EQ(reg_->OpenKey(platform::kHkeyUsers, "", false).error().number, platform::regerr::kInvalidHandle);
}

TEST_F(WinePrefixRegistry, ClassesRootWritesGoWhereReadsLook) {
  const platform::RegValue text{platform::kRegSz, std::string("new\0", 4)};
  // The user's key holds the default value: a machine write would stay hidden.
  ASSERT_TRUE(reg_->SetValue(kHkeyClassesRoot, kCommand, "", text).ok());
  EXPECT_NE(File(kUser).find("@=\"new\""), std::string::npos);
  // A value the user's key lacks goes to the machine.
  ASSERT_TRUE(reg_->SetValue(kHkeyClassesRoot, kCommand, "Other", text).ok());
  EXPECT_NE(File(kSystem).find("\"Other\"=\"new\""), std::string::npos);
  // New keys go to the hive holding the deepest part of their path.
  ASSERT_TRUE(reg_->CreateKey(kHkeyClassesRoot, "UserOnly\\Sub\\Deeper").ok());
  EXPECT_NE(File(kUser).find("[Software\\\\Classes\\\\UserOnly\\\\Sub\\\\Deeper] 1700000000"), std::string::npos);
  ASSERT_TRUE(reg_->CreateKey(kHkeyClassesRoot, "VisualBasic.Form\\shell").ok());
  EXPECT_NE(File(kSystem).find("[Software\\\\Classes\\\\VisualBasic.Form\\\\shell]"), std::string::npos);

  // Deleting takes the value and the key from both.
  ASSERT_TRUE(reg_->DeleteValue(kHkeyClassesRoot, kCommand, "").ok());
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "")), Error(platform::regerr::kFileNotFound));
  ASSERT_TRUE(reg_->DeleteKey(kHkeyClassesRoot, kCommand).ok());
  for (const uint32_t hive : {kHkeyCurrentUser, kHkeyLocalMachine}) {
    EXPECT_FALSE(reg_->OpenKey(hive, kClasses + kCommand, false).ok());
    EXPECT_TRUE(reg_->OpenKey(hive, kClasses + "VisualBasic.Project\\shell\\open", false).ok());
  }
}

TEST_F(WinePrefixRegistry, RefusesChangesWhileTheServerRuns) {
  serverRunning_ = true;
  const rt::Status refused[] = {
      reg_->CreateKey(kHkeyLocalMachine, "Software\\New"),
      reg_->SetValue(kHkeyLocalMachine, "Software\\Wine", "Version", {platform::kRegDword, std::string(4, '\0')}),
      reg_->DeleteKey(kHkeyClassesRoot, kCommand),
      reg_->DeleteValue(kHkeyClassesRoot, kCommand, ""),
      reg_->OpenKey(kHkeyClassesRoot, kCommand, true),
  };
  for (const rt::Status& status : refused) {
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(status.error().number, platform::regerr::kBusy);
    EXPECT_NE(status.error().description.find("'dev-prefix'"), std::string::npos);
  }
  EXPECT_TRUE(files_.Record().written.empty());
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  serverRunning_ = false;
  EXPECT_TRUE(reg_->CreateKey(kHkeyLocalMachine, "Software\\New").ok());
}

TEST_F(WinePrefixRegistry, ReplacesFilesWholeOrNotAtAll) {
  const platform::RegValue text{platform::kRegSz, std::string("caf\xc3\xa9\0", 6)};
  ASSERT_TRUE(reg_->SetValue(kHkeyLocalMachine, "Software\\Wine", "Name", text).ok());
  EXPECT_EQ(files_.Record().renames, (std::vector<std::pair<std::string, std::string>>{
                                         {std::string(kSystem) + ".sentrune-new", kSystem}}));
  EXPECT_NE(File(kSystem).find("\"Name\"=\"caf\\xe9\"\n\"Version\"=dword:00000008\n"), std::string::npos);

  const std::string before = File(kSystem);
  files_.FailNext(FsOp::kRename, "", rt::errnum::kPermissionDenied);
  const rt::Status failed = reg_->DeleteValue(kHkeyLocalMachine, "Software\\Wine", "Name");
  ASSERT_FALSE(failed.ok());
  EXPECT_EQ(failed.error().number, platform::regerr::kCantWrite);
  EXPECT_NE(failed.error().description.find(kSystem), std::string::npos);
  EXPECT_EQ(File(kSystem), before);
  EXPECT_FALSE(files_.Exists(std::string(kSystem) + ".sentrune-new"));
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyLocalMachine, "Software\\Wine", "Name")), "caf\xc3\xa9");
}

TEST_F(WinePrefixRegistry, FollowsTheFilesOnDisk) {
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "")), "user");
  // Wine rewrote the file meanwhile.
  files_.AddFile(kUser, "WINE REGISTRY Version 2\n\n[Software\\\\Classes\\\\VisualBasic.Project\\\\shell\\\\open\\\\"
                        "command] 11\n@=\"later\"\n");
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "")), "later");
  files_.AddFile(kUser, "garbage\n");
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyCurrentUser, "X", "")), Error(platform::regerr::kBadDb));

  // Without user.reg the user's hive reads as empty and cannot be written.
  ASSERT_TRUE(files_.DeleteFile(kUser).ok());
  EXPECT_EQ(Text(reg_->QueryValue(kHkeyClassesRoot, kCommand, "")), "machine");
  const rt::Status create = reg_->CreateKey(kHkeyCurrentUser, "Software\\X");
  ASSERT_FALSE(create.ok());
  EXPECT_EQ(create.error().number, platform::regerr::kCantWrite);
  EXPECT_FALSE(files_.Exists(kUser));
}

}  // namespace
}  // namespace sentrune::portable
