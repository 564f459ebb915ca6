// The file system contract over the in-memory fake and a host folder. Then
// what only the host's file system does: short names, hidden dot files,
// local times, the stored spelling of names, watching folders.
#include "platform/posix/posix_file_system.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/file_watch_posix.h"
#include "platform/posix/short_names.h"
#include "support/fake_file_system.h"
#include "support/file_system_contract.h"
#include "support/scoped_env.h"
#include "support/temp_folder.h"

namespace sentrune::posix {
namespace {

// Both give drive T: and no other drive the tests could reach by accident.
class FakeStore : public testing::FileSystemSandbox {
 public:
  FakeStore() { fs_.LimitDrives("T"); }
  platform::FileSystem& fs() override { return fs_; }
  std::string root() const override { return "T:"; }

 private:
  testing::FakeFileSystem fs_;
};

class HostStore : public testing::FileSystemSandbox {
 public:
  platform::FileSystem& fs() override { return fs_; }
  std::string root() const override { return "T:"; }

 private:
  testing::TempFolder folder_;
  PosixFileSystem fs_{DriveMap::Build("", {{'T', folder_.path()}})};
};

using testing::FileSystemContract;
using testing::FileSystemStore;
INSTANTIATE_TEST_SUITE_P(Posix, FileSystemContract,
                         ::testing::Values(FileSystemStore{"Fake", [] { return std::make_unique<FakeStore>(); }},
                                           FileSystemStore{"Host", [] { return std::make_unique<HostStore>(); }}),
                         testing::FileSystemStoreName);

class PosixFiles : public ::testing::Test {
 protected:
  testing::TempFolder root_;
  PosixFileSystem fs_{DriveMap::Build("", {{'T', root_.path()}})};
};

TEST(ShortNames, FollowTheWindowsPattern) {
  EXPECT_EQ(ShortNames({"Program Files", "Program Data", "README.TXT", ".gitignore", "a.b.c.document",
                        "My Documents.longext", "Pro gram", "caf\xc3\xa9 menu.txt"}),
            (std::vector<std::string>{"PROGRA~3", "PROGRA~2", "README.TXT", "GITIGN~1", "ABC~1.DOC", "MYDOCU~1.LON",
                                      "PROGRA~1", "CAF_ME~1.TXT"}));
  // A real short name takes its alias out of the count, and after nine the
  // base gives up a character for the number.
  std::vector<std::string> names{"WIDGET~1.DLL"};
  for (int i = 0; i < 10; ++i) names.push_back("Widget Library " + std::to_string(i) + ".dll");
  EXPECT_EQ(ShortNames(names)[1], "WIDGET~2.DLL");
  EXPECT_EQ(ShortNames(names)[9], "WIDGE~10.DLL");
  EXPECT_TRUE(IsShortName("a-b_c.x"));
  for (const char* name : {"a b.txt", "a.b.c", "toolongname.txt"}) EXPECT_FALSE(IsShortName(name)) << name;
}

TEST_F(PosixFiles, ShortNamesAndOtherSpellingsResolveToTheStoredNames) {
  root_.Write("Program Files/Widgets Library.dll", "lib");
  root_.MakeFolder("Program Data");
  EXPECT_EQ(*fs_.GetLongPathName("T:\\progra~2\\WIDGET~1.DLL"), "T:\\Program Files\\Widgets Library.dll");
  EXPECT_EQ(*fs_.ReadFile("T:\\PROGRA~2\\widget~1.dll"), "lib");
  EXPECT_EQ(fs_.GetLongPathName("T:\\PROGRA~3\\x.dll").error().number, 76);

  // Host paths take the stored spelling and keep new names.
  root_.MakeFolder("Src/Widgets");
  EXPECT_EQ(*fs_.HostPath("T:\\SRC\\widgets\\Widgets.stn"), root_ / "Src/Widgets/Widgets.stn");
  EXPECT_EQ(fs_.HostPath("T:\\Src\\Missing\\x.stn").error().number, 76);
  // A name that exists in two spellings on a case-sensitive host: the exact one wins.
  root_.Write("Src/Case.txt", "upper");
  root_.Write("Src/case.txt", "lower");
  EXPECT_EQ(*fs_.ReadFile("T:\\src\\case.txt"), "lower");
  EXPECT_EQ(*fs_.ReadFile("T:\\src\\Case.txt"), "upper");
}

TEST_F(PosixFiles, DotFilesAreHiddenAndReadOnlyIsTheOwnersWriteBit) {
  root_.Write(".settings", "");
  root_.MakeFolder(".cache");
  root_.Write("plain.txt", "");
  EXPECT_EQ(*fs_.GetAttributes("T:\\.settings"), 34u);
  EXPECT_EQ(*fs_.GetAttributes("T:\\.Cache"), 18u);
  ASSERT_TRUE(fs_.SetAttributes("T:\\plain.txt", 33).ok());
  struct stat st {};
  ASSERT_EQ(stat((root_ / "plain.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0222, 0u);
  ASSERT_EQ(chmod((root_ / "plain.txt").c_str(), 0644), 0);
  EXPECT_EQ(*fs_.GetAttributes("T:\\plain.txt"), 32u);
}

TEST_F(PosixFiles, TimesAreLocalTime) {
  testing::ScopedEnv zone("TZ", "CET-1");  // one hour east of UTC, no daylight saving in January
  root_.Write("built.dll");
  ASSERT_TRUE(fs_.SetLastWriteTime("T:\\built.dll", rt::DateTime{2004, 1, 15, 12, 0, 0}).ok());
  struct stat st {};
  ASSERT_EQ(stat((root_ / "built.dll").c_str(), &st), 0);
  EXPECT_EQ(st.st_mtime, 1074164400);  // 2004-01-15 11:00:00 UTC
  EXPECT_EQ(*fs_.GetLastWriteTime("T:\\built.dll"), (rt::DateTime{2004, 1, 15, 12, 0, 0}));
}

TEST(InotifyFileWatch, ReportsWrittenAndMovedInFilesOnce) {
  testing::TempFolder temp;
  temp.MakeFolder("sub");
  auto watch = InotifyFileWatch::Create();
  ASSERT_TRUE(watch.ok());
  ASSERT_TRUE((*watch)->AddFolder(temp.path()).ok());
  temp.Write("Form1.frm", "a");
  temp.Write("Form1.frm", "b");
  temp.Write("sub/Other.bas", "not watched");
  temp.Write("Module1.bas.tmp", "c");
  std::filesystem::rename(temp / "Module1.bas.tmp", temp / "Module1.bas");
  auto changed = (*watch)->Wait(500);
  ASSERT_TRUE(changed.ok());
  EXPECT_EQ(*changed, (std::vector<std::string>{temp / "Form1.frm", temp / "Module1.bas.tmp", temp / "Module1.bas"}));

  const rt::Status missing = (*watch)->AddFolder(temp / "missing");
  ASSERT_FALSE(missing.ok());
  EXPECT_EQ(missing.error().number, 76);
  EXPECT_NE(missing.error().description.find(temp / "missing"), std::string::npos);
}

}  // namespace
}  // namespace sentrune::posix
