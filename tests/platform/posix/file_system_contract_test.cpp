// One set of expectations for every FileSystem: the in-memory fake the core's
// tests rely on must behave like the real implementation on a host folder.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temp_folder.h"
#include "platform/posix/posix_file_system.h"
#include "support/fake_file_system.h"

namespace sentrune {
namespace {

using platform::DirEntry;
using platform::FileSystem;

// Both give drive T: and no other drive the tests could reach by accident.
struct FakeStore {
  FakeStore() { fs.LimitDrives("T"); }
  testing::FakeFileSystem fs;
};

struct HostStore {
  sentrune::testing::TempFolder folder;
  posix::PosixFileSystem fs{posix::DriveMap::Build("", {{'T', folder.path()}})};
};

template <typename Store>
class FileSystemContract : public ::testing::Test {
 protected:
  FileSystem& fs() { return store_.fs; }

  void Write(const std::string& path, const std::string& bytes = "x") {
    ASSERT_TRUE(fs().WriteFile(path, bytes).ok()) << path;
  }
  int32_t Code(const rt::Status& status) { return status.code(); }
  template <typename T>
  int32_t Code(const rt::Result<T>& result) { return result.ok() ? 0 : result.error().number; }

  std::vector<std::string> Names(const std::string& pattern) {
    std::vector<std::string> names;
    rt::Result<std::vector<DirEntry>> entries = fs().List(pattern);
    if (entries)
      for (const DirEntry& entry : *entries) names.push_back(entry.name);
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
  EXPECT_EQ(this->Code(this->fs().ReadFile("T:\\Src\\none.txt")), 53);
  EXPECT_EQ(this->Code(this->fs().GetAttributes("T:\\Src\\none.txt")), 53);
  EXPECT_EQ(this->Code(this->fs().ReadFile("T:\\Nowhere\\none.txt")), 76);
  EXPECT_EQ(this->Code(this->fs().WriteFile("T:\\Nowhere\\new.txt", "x")), 76);
  EXPECT_EQ(this->Code(this->fs().WriteFile("Q:\\new.txt", "x")), 71);
  EXPECT_EQ(this->Code(this->fs().ReadFile("\\\\server\\share\\a.txt")), 76);
  EXPECT_EQ(this->Code(this->fs().ReadFile("relative.txt")), 52);

  const rt::Result<std::string> failed = this->fs().ReadFile("T:\\Src\\none.txt");
  ASSERT_FALSE(failed.ok());
  EXPECT_NE(failed.error().description.find("T:\\Src\\none.txt"), std::string::npos);
}

TYPED_TEST(FileSystemContract, NamesMatchIgnoringCaseAndKeepTheirCase) {
  ASSERT_TRUE(this->fs().CreateDirectory("T:\\Src").ok());
  this->Write("T:\\SRC\\Widgets.Dll", "one");
  this->Write("t:\\src\\widgets.dll", "two");  // the same file, not a second one
  EXPECT_EQ(this->Names("T:\\src\\*"), std::vector<std::string>{"Widgets.Dll"});
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
  EXPECT_EQ(this->Names("T:\\*"), std::vector<std::string>{"Src"});

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

  EXPECT_EQ(this->Names("T:\\*.dll"),
            (std::vector<std::string>{"Gadget.DLL", "Widgets-2004.dll", "Widgets.dll"}));
  EXPECT_EQ(this->Names("t:\\widget?.DLL"), std::vector<std::string>{"Widgets.dll"});

  rt::Result<std::vector<DirEntry>> all = this->fs().List("T:\\*");
  ASSERT_TRUE(all.ok());
  ASSERT_EQ(all->size(), 5u);
  EXPECT_EQ((*all)[1].name, "History");
  EXPECT_EQ((*all)[1].attributes, 16u);
  EXPECT_EQ((*all)[0].attributes, 32u);
}

TYPED_TEST(FileSystemContract, RenameReplacesTheTargetInOneStep) {
  this->Write("T:\\Project.vbp", "old");
  this->Write("T:\\Project.tmp", "new");
  ASSERT_TRUE(this->fs().RenameReplace("T:\\project.TMP", "T:\\PROJECT.vbp").ok());
  EXPECT_EQ(*this->fs().ReadFile("T:\\Project.vbp"), "new");
  // The replaced file keeps its stored name.
  EXPECT_EQ(this->Names("T:\\*"), std::vector<std::string>{"Project.vbp"});

  // Only the letter case changes: the stored name follows.
  ASSERT_TRUE(this->fs().RenameReplace("T:\\Project.vbp", "T:\\PROJECT.VBP").ok());
  EXPECT_EQ(this->Names("T:\\*"), std::vector<std::string>{"PROJECT.VBP"});

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

}  // namespace
}  // namespace sentrune
