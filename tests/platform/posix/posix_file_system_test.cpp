// One set of expectations for every FileSystem: the in-memory fake the core's
// tests rely on must behave like the real implementation on a host folder.
// Then what only the host's file system does: short names, hidden dot files,
// local times, the stored spelling of names, watching folders.
#include "platform/posix/posix_file_system.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/posix/file_watch_posix.h"
#include "platform/posix/short_names.h"
#include "support/fake_file_system.h"
#include "support/scoped_env.h"
#include "support/temp_folder.h"

namespace sentrune::posix {
namespace {

using Strings = std::vector<std::string>;

// Both give drive T: and no other drive the tests could reach by accident.
struct FakeStore {
  FakeStore() { fs.LimitDrives("T"); }
  testing::FakeFileSystem fs;
};

struct HostStore {
  testing::TempFolder folder;
  PosixFileSystem fs{DriveMap::Build("", {{'T', folder.path()}})};
};

template <typename Store>
class FileSystemContract : public ::testing::Test {
 protected:
  platform::FileSystem& fs() { return store_.fs; }

  void Write(const std::string& path, const std::string& bytes = "x") {
    ASSERT_TRUE(fs().WriteFile(path, bytes).ok()) << path;
  }
  static int32_t Code(const auto& result) { return result.ok() ? 0 : result.error().number; }

  // Folders end in a backslash; a file with more than the archive bit shows them.
  Strings Names(const std::string& pattern) {
    Strings names;
    for (const platform::DirEntry& e : fs().List(pattern).value_or({})) {
      const uint32_t a = e.attributes;
      names.push_back(e.name + (a == 16 ? "\\" : a == 32 ? "" : " " + std::to_string(a)));
    }
    return names;
  }

 private:
  Store store_;
};

using Stores = ::testing::Types<FakeStore, HostStore>;
TYPED_TEST_SUITE(FileSystemContract, Stores);

TYPED_TEST(FileSystemContract, WritesTruncateAndAppendsExtend) {
  const std::string binary("a\0b\r\n\xff", 6);
  this->Write("T:\\data.bin", binary);
  EXPECT_EQ(*this->fs().ReadFile("T:\\data.bin"), binary);
  this->Write("T:\\data.bin", "short");
  EXPECT_EQ(*this->fs().ReadFile("T:\\data.bin"), "short");
  ASSERT_TRUE(this->fs().AppendFile("T:\\data.bin", "+more").ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\data.bin"), "short+more");
  ASSERT_TRUE(this->fs().AppendFile("T:\\new.log", "line").ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\new.log"), "line");
}

TYPED_TEST(FileSystemContract, MissingItemsGiveTheRunTimesNumbers) {
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\Src").ok());
  ASSERT_EQ(this->Code(this->fs().ReadFile("T:\\Src\\none.txt")), 53);
  EXPECT_NE(this->fs().ReadFile("T:\\Src\\none.txt").error().description.find("T:\\Src\\none.txt"), std::string::npos);
  EXPECT_EQ(this->Code(this->fs().GetAttributes("T:\\Src\\none.txt")), 53);
  EXPECT_EQ(this->Code(this->fs().ReadFile("T:\\Nowhere\\none.txt")), 76);
  EXPECT_EQ(this->Code(this->fs().WriteFile("T:\\Nowhere\\new.txt", "x")), 76);
  EXPECT_EQ(this->Code(this->fs().WriteFile("Q:\\new.txt", "x")), 71);
  EXPECT_EQ(this->Code(this->fs().ReadFile("\\\\server\\share\\a.txt")), 76);
  EXPECT_EQ(this->Code(this->fs().ReadFile("relative.txt")), 52);
}

TYPED_TEST(FileSystemContract, NamesMatchIgnoringCaseAndKeepTheirCase) {
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\Src").ok());
  this->Write("T:\\SRC\\Widgets.Dll", "one");
  this->Write("t:\\src\\widgets.dll", "two");  // the same file, not a second one
  EXPECT_EQ(this->Names("T:\\src\\*"), Strings{"Widgets.Dll"});
  EXPECT_EQ(*this->fs().ReadFile("T:\\sRc\\WIDGETS.DLL"), "two");
  EXPECT_EQ(*this->fs().GetLongPathName("t:\\SRC\\widgets.DLL"), "T:\\Src\\Widgets.Dll");
  EXPECT_EQ(*this->fs().GetLongPathName("T:\\src\\"), "T:\\Src\\");
  EXPECT_EQ(*this->fs().GetLongPathName("T:/src/./x/../Widgets.dll"), "T:\\Src\\Widgets.Dll");
}

TYPED_TEST(FileSystemContract, ReadOnlyFilesRefuseChangeUntilMadeWritable) {
  this->Write("T:\\locked.dll", "keep");
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\Folder").ok());
  EXPECT_EQ(*this->fs().GetAttributes("T:\\locked.dll"), 32u);
  EXPECT_EQ(*this->fs().GetAttributes("T:\\Folder"), 16u);
  ASSERT_TRUE(this->fs().SetAttributes("T:\\locked.dll", 33).ok());
  EXPECT_EQ(*this->fs().GetAttributes("T:\\locked.dll"), 33u);
  this->Write("T:\\other.dll", "other");
  EXPECT_EQ(this->Code(this->fs().DeleteFile("T:\\locked.dll")), 75);
  EXPECT_EQ(this->Code(this->fs().WriteFile("T:\\locked.dll", "x")), 75);
  EXPECT_EQ(this->Code(this->fs().CopyFile("T:\\other.dll", "T:\\locked.dll", false)), 70);
  EXPECT_EQ(this->Code(this->fs().RenameReplace("T:\\other.dll", "T:\\locked.dll")), 70);
  EXPECT_EQ(*this->fs().ReadFile("T:\\locked.dll"), "keep");

  ASSERT_TRUE(this->fs().SetAttributes("T:\\LOCKED.DLL", 32).ok());
  EXPECT_TRUE(this->fs().DeleteFile("T:\\locked.dll").ok());
}

TYPED_TEST(FileSystemContract, CopiesKeepTheSourcesTimeAndAttributes) {
  const rt::DateTime built{2004, 5, 6, 14, 3, 9};
  this->Write("T:\\Widgets.dll", "build 1");
  ASSERT_TRUE(this->fs().SetLastWriteTime("T:\\Widgets.dll", built).ok());
  EXPECT_EQ(*this->fs().GetLastWriteTime("T:\\widgets.dll"), built);

  ASSERT_TRUE(this->fs().CopyFile("T:\\Widgets.dll", "T:\\Copy.dll", false).ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\Copy.dll"), "build 1");
  EXPECT_EQ(*this->fs().GetLastWriteTime("T:\\Copy.dll"), built);

  this->Write("T:\\Widgets.dll", "build 2");
  EXPECT_EQ(this->Code(this->fs().CopyFile("T:\\Widgets.dll", "T:\\copy.DLL", true)), 58);
  EXPECT_EQ(*this->fs().ReadFile("T:\\Copy.dll"), "build 1");
  ASSERT_TRUE(this->fs().SetAttributes("T:\\Widgets.dll", 33).ok());
  ASSERT_TRUE(this->fs().CopyFile("T:\\Widgets.dll", "T:\\copy.DLL", false).ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\Copy.dll"), "build 2");
  EXPECT_EQ(*this->fs().GetAttributes("T:\\Copy.dll"), 33u);
  EXPECT_EQ(this->Code(this->fs().CopyFile("T:\\Missing.dll", "T:\\x.dll", false)), 53);
  EXPECT_EQ(this->Code(this->fs().SetLastWriteTime("T:\\Copy.dll", rt::DateTime{2023, 2, 29})), 5);
}

TYPED_TEST(FileSystemContract, MakeSureCreatesEveryFolderUpToTheLastBackslash) {
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\Src").ok());
  ASSERT_TRUE(this->fs().MakeSureDirectoryPathExists("T:\\SRC\\History\\Old\\Widgets.dll").ok());
  EXPECT_EQ(*this->fs().GetAttributes("T:\\Src\\History\\Old"), 16u);
  EXPECT_EQ(this->Code(this->fs().GetAttributes("T:\\Src\\History\\Old\\Widgets.dll")), 53);
  EXPECT_EQ(this->Names("T:\\*"), Strings{"Src\\"});

  ASSERT_TRUE(this->fs().MakeSureDirectoryPathExists("T:\\Src\\Compat\\").ok());
  EXPECT_EQ(*this->fs().GetAttributes("T:\\Src\\Compat"), 16u);
  EXPECT_TRUE(this->fs().MakeSureDirectoryPathExists("T:\\Src\\Compat\\").ok());

  this->Write("T:\\Src\\blocker", "file");
  EXPECT_NE(this->Code(this->fs().MakeSureDirectoryPathExists("T:\\Src\\blocker\\sub\\")), 0);
  EXPECT_EQ(this->Code(this->fs().MakeSureDirectoryPathExists("Q:\\a\\")), 71);
}

TYPED_TEST(FileSystemContract, ListFiltersWithWildcardsInNameOrder) {
  for (const char* name : {"Widgets.dll", "Widgets-2004.dll", "Gadget.DLL", "notes.txt"})
    this->Write(std::string("T:\\") + name);
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\History").ok());

  EXPECT_EQ(this->Names("T:\\*.dll"), (Strings{"Gadget.DLL", "Widgets-2004.dll", "Widgets.dll"}));
  EXPECT_EQ(this->Names("t:\\widget?.DLL"), Strings{"Widgets.dll"});
  EXPECT_EQ(this->Names("T:\\*"), (Strings{"Gadget.DLL", "History\\", "notes.txt", "Widgets-2004.dll", "Widgets.dll"}));
}

TYPED_TEST(FileSystemContract, RenameReplacesTheTargetInOneStep) {
  this->Write("T:\\Project.vbp", "old");
  this->Write("T:\\Project.tmp", "new");
  ASSERT_TRUE(this->fs().RenameReplace("T:\\project.TMP", "T:\\PROJECT.vbp").ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\Project.vbp"), "new");
  // The replaced file keeps its stored name.
  EXPECT_EQ(this->Names("T:\\*"), Strings{"Project.vbp"});

  // Only the letter case changes: the stored name follows.
  ASSERT_TRUE(this->fs().RenameReplace("T:\\Project.vbp", "T:\\PROJECT.VBP").ok());
  EXPECT_EQ(this->Names("T:\\*"), Strings{"PROJECT.VBP"});

  ASSERT_TRUE(this->fs().MakeSureDirectoryPathExists("T:\\A\\B\\").ok());
  this->Write("T:\\A\\B\\inner.txt", "in");
  ASSERT_TRUE(this->fs().RenameReplace("T:\\A", "T:\\Moved").ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\moved\\b\\INNER.TXT"), "in");
  EXPECT_EQ(this->Code(this->fs().RenameReplace("T:\\gone.txt", "T:\\x.txt")), 53);
}

TYPED_TEST(FileSystemContract, FoldersAreCreatedAndRemovedOneAtATime) {
  EXPECT_EQ(this->Code(this->fs().CreateDirectory("T:\\A\\B")), 76);
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\A").ok());
  EXPECT_EQ(this->Code(this->fs().CreateDirectory("T:\\a")), 75);
  this->Write("T:\\A\\file.txt");
  EXPECT_EQ(this->Code(this->fs().RemoveDirectory("T:\\A")), 75);
  EXPECT_EQ(this->Code(this->fs().DeleteFile("T:\\A")), 53);
  ASSERT_TRUE(this->fs().DeleteFile("T:\\a\\FILE.txt").ok());
  EXPECT_TRUE(this->fs().RemoveDirectory("T:\\a").ok());
  EXPECT_EQ(this->Code(this->fs().ReadFile("T:\\")), 75);
}

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
