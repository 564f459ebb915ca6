#pragma once
// One set of expectations for every FileSystem: the in-memory fake the core's
// tests rely on must behave like each real implementation. Each test program
// instantiates the suite with its own stores:
//   INSTANTIATE_TEST_SUITE_P(Name, FileSystemContract, ::testing::Values(FileSystemStore{"Name", make}),
//                            FileSystemStoreName);
// It defines tests: include it in one file of a program only.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "runtime/text.h"

namespace sentrune::testing {

// A file system and an empty folder of its own, whatever the suite creates
// there being gone once this object is. Drive Q: must not exist.
class FileSystemSandbox {
 public:
  virtual ~FileSystemSandbox() = default;
  virtual platform::FileSystem& fs() = 0;
  // The folder's Windows path without trailing "\", in its stored spelling:
  // "T:" for a drive the store maps, a temporary folder where drives are real.
  virtual std::string root() const = 0;
};

struct FileSystemStore {
  std::string name;
  std::function<std::unique_ptr<FileSystemSandbox>()> make;
};

// Test listings show the store's name rather than its bytes.
inline void PrintTo(const FileSystemStore& store, std::ostream* out) { *out << store.name; }

inline std::string FileSystemStoreName(const ::testing::TestParamInfo<FileSystemStore>& info) {
  return info.param.name;
}

class FileSystemContract : public ::testing::TestWithParam<FileSystemStore> {
 protected:
  using Strings = std::vector<std::string>;

  void SetUp() override { sandbox_ = GetParam().make(); }
  platform::FileSystem& fs() { return sandbox_->fs(); }

  // `rest` below the root: P("\\Src\\a.txt").
  std::string P(std::string_view rest) const { return sandbox_->root() + std::string(rest); }
  // The same, the root spelled in lower case or with "/" for "\".
  std::string PLower(std::string_view rest) const { return rt::LCase(sandbox_->root()) + std::string(rest); }
  std::string PSlashed(std::string_view rest) const {
    std::string root = sandbox_->root();
    std::replace(root.begin(), root.end(), '\\', '/');
    return root + std::string(rest);
  }

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
  std::unique_ptr<FileSystemSandbox> sandbox_;
};

TEST_P(FileSystemContract, WritesTruncateAndAppendsExtend) {
  const std::string binary("a\0b\r\n\xff", 6);
  Write(P("\\data.bin"), binary);
  EXPECT_EQ(*fs().ReadFile(P("\\data.bin")), binary);
  Write(P("\\data.bin"), "short");
  EXPECT_EQ(*fs().ReadFile(P("\\data.bin")), "short");
  ASSERT_TRUE(fs().AppendFile(P("\\data.bin"), "+more").ok());
  EXPECT_EQ(*fs().ReadFile(P("\\data.bin")), "short+more");
  ASSERT_TRUE(fs().AppendFile(P("\\new.log"), "line").ok());
  EXPECT_EQ(*fs().ReadFile(P("\\new.log")), "line");
}

TEST_P(FileSystemContract, MissingItemsGiveTheRunTimesNumbers) {
  ASSERT_TRUE(fs().CreateDirectory(P("\\Src")).ok());
  const std::string missing = P("\\Src\\none.txt");
  ASSERT_EQ(Code(fs().ReadFile(missing)), 53);
  EXPECT_NE(fs().ReadFile(missing).error().description.find(missing), std::string::npos);
  EXPECT_EQ(Code(fs().GetAttributes(missing)), 53);
  EXPECT_EQ(Code(fs().ReadFile(P("\\Nowhere\\none.txt"))), 76);
  EXPECT_EQ(Code(fs().WriteFile(P("\\Nowhere\\new.txt"), "x")), 76);
  EXPECT_EQ(Code(fs().WriteFile("Q:\\new.txt", "x")), 71);
  EXPECT_EQ(Code(fs().ReadFile("\\\\server\\share\\a.txt")), 76);
  EXPECT_EQ(Code(fs().ReadFile("relative.txt")), 52);
}

TEST_P(FileSystemContract, NamesMatchIgnoringCaseAndKeepTheirCase) {
  ASSERT_TRUE(fs().CreateDirectory(P("\\Src")).ok());
  Write(P("\\SRC\\Widgets.Dll"), "one");
  Write(PLower("\\src\\widgets.dll"), "two");  // the same file, not a second one
  EXPECT_EQ(Names(P("\\src\\*")), Strings{"Widgets.Dll"});
  EXPECT_EQ(*fs().ReadFile(P("\\sRc\\WIDGETS.DLL")), "two");
  EXPECT_EQ(*fs().GetLongPathName(PLower("\\SRC\\widgets.DLL")), P("\\Src\\Widgets.Dll"));
  EXPECT_EQ(*fs().GetLongPathName(P("\\src\\")), P("\\Src\\"));
  EXPECT_EQ(*fs().GetLongPathName(PSlashed("/src/./x/../Widgets.dll")), P("\\Src\\Widgets.Dll"));
}

TEST_P(FileSystemContract, ReadOnlyFilesRefuseChangeUntilMadeWritable) {
  Write(P("\\locked.dll"), "keep");
  ASSERT_TRUE(fs().CreateDirectory(P("\\Folder")).ok());
  EXPECT_EQ(*fs().GetAttributes(P("\\locked.dll")), 32u);
  EXPECT_EQ(*fs().GetAttributes(P("\\Folder")), 16u);
  ASSERT_TRUE(fs().SetAttributes(P("\\locked.dll"), 33).ok());
  EXPECT_EQ(*fs().GetAttributes(P("\\locked.dll")), 33u);
  Write(P("\\other.dll"), "other");
  EXPECT_EQ(Code(fs().DeleteFile(P("\\locked.dll"))), 75);
  EXPECT_EQ(Code(fs().WriteFile(P("\\locked.dll"), "x")), 75);
  EXPECT_EQ(Code(fs().CopyFile(P("\\other.dll"), P("\\locked.dll"), false)), 70);
  EXPECT_EQ(Code(fs().RenameReplace(P("\\other.dll"), P("\\locked.dll"))), 70);
  EXPECT_EQ(*fs().ReadFile(P("\\locked.dll")), "keep");

  ASSERT_TRUE(fs().SetAttributes(P("\\LOCKED.DLL"), 32).ok());
  EXPECT_TRUE(fs().DeleteFile(P("\\locked.dll")).ok());
}

TEST_P(FileSystemContract, CopiesKeepTheSourcesTimeAndAttributes) {
  const rt::DateTime built{2004, 5, 6, 14, 3, 9};
  Write(P("\\Widgets.dll"), "build 1");
  ASSERT_TRUE(fs().SetLastWriteTime(P("\\Widgets.dll"), built).ok());
  EXPECT_EQ(*fs().GetLastWriteTime(P("\\widgets.dll")), built);

  ASSERT_TRUE(fs().CopyFile(P("\\Widgets.dll"), P("\\Copy.dll"), false).ok());
  EXPECT_EQ(*fs().ReadFile(P("\\Copy.dll")), "build 1");
  EXPECT_EQ(*fs().GetLastWriteTime(P("\\Copy.dll")), built);

  Write(P("\\Widgets.dll"), "build 2");
  EXPECT_EQ(Code(fs().CopyFile(P("\\Widgets.dll"), P("\\copy.DLL"), true)), 58);
  EXPECT_EQ(*fs().ReadFile(P("\\Copy.dll")), "build 1");
  ASSERT_TRUE(fs().SetAttributes(P("\\Widgets.dll"), 33).ok());
  ASSERT_TRUE(fs().CopyFile(P("\\Widgets.dll"), P("\\copy.DLL"), false).ok());
  EXPECT_EQ(*fs().ReadFile(P("\\Copy.dll")), "build 2");
  EXPECT_EQ(*fs().GetAttributes(P("\\Copy.dll")), 33u);
  EXPECT_EQ(Code(fs().CopyFile(P("\\Missing.dll"), P("\\x.dll"), false)), 53);
  EXPECT_EQ(Code(fs().SetLastWriteTime(P("\\Copy.dll"), rt::DateTime{2023, 2, 29})), 5);
}

TEST_P(FileSystemContract, MakeSureCreatesEveryFolderUpToTheLastBackslash) {
  ASSERT_TRUE(fs().CreateDirectory(P("\\Src")).ok());
  ASSERT_TRUE(fs().MakeSureDirectoryPathExists(P("\\SRC\\History\\Old\\Widgets.dll")).ok());
  EXPECT_EQ(*fs().GetAttributes(P("\\Src\\History\\Old")), 16u);
  EXPECT_EQ(Code(fs().GetAttributes(P("\\Src\\History\\Old\\Widgets.dll"))), 53);
  EXPECT_EQ(Names(P("\\*")), Strings{"Src\\"});

  ASSERT_TRUE(fs().MakeSureDirectoryPathExists(P("\\Src\\Compat\\")).ok());
  EXPECT_EQ(*fs().GetAttributes(P("\\Src\\Compat")), 16u);
  EXPECT_TRUE(fs().MakeSureDirectoryPathExists(P("\\Src\\Compat\\")).ok());

  Write(P("\\Src\\blocker"), "file");
  EXPECT_NE(Code(fs().MakeSureDirectoryPathExists(P("\\Src\\blocker\\sub\\"))), 0);
  EXPECT_EQ(Code(fs().MakeSureDirectoryPathExists("Q:\\a\\")), 71);
}

TEST_P(FileSystemContract, ListFiltersWithWildcardsInNameOrder) {
  for (const char* name : {"Widgets.dll", "Widgets-2004.dll", "Gadget.DLL", "notes.txt"})
    Write(P("\\") + name);
  ASSERT_TRUE(fs().CreateDirectory(P("\\History")).ok());

  EXPECT_EQ(Names(P("\\*.dll")), (Strings{"Gadget.DLL", "Widgets-2004.dll", "Widgets.dll"}));
  EXPECT_EQ(Names(PLower("\\widget?.DLL")), Strings{"Widgets.dll"});
  EXPECT_EQ(Names(P("\\*")),
            (Strings{"Gadget.DLL", "History\\", "notes.txt", "Widgets-2004.dll", "Widgets.dll"}));
}

TEST_P(FileSystemContract, RenameReplacesTheTargetInOneStep) {
  Write(P("\\Project.vbp"), "old");
  Write(P("\\Project.tmp"), "new");
  ASSERT_TRUE(fs().RenameReplace(P("\\project.TMP"), P("\\PROJECT.vbp")).ok());
  EXPECT_EQ(*fs().ReadFile(P("\\Project.vbp")), "new");
  // The replaced file keeps its stored name.
  EXPECT_EQ(Names(P("\\*")), Strings{"Project.vbp"});

  // Only the letter case changes: the stored name follows.
  ASSERT_TRUE(fs().RenameReplace(P("\\Project.vbp"), P("\\PROJECT.VBP")).ok());
  EXPECT_EQ(Names(P("\\*")), Strings{"PROJECT.VBP"});

  ASSERT_TRUE(fs().MakeSureDirectoryPathExists(P("\\A\\B\\")).ok());
  Write(P("\\A\\B\\inner.txt"), "in");
  ASSERT_TRUE(fs().RenameReplace(P("\\A"), P("\\Moved")).ok());
  EXPECT_EQ(*fs().ReadFile(P("\\moved\\b\\INNER.TXT")), "in");
  EXPECT_EQ(Code(fs().RenameReplace(P("\\gone.txt"), P("\\x.txt"))), 53);
}

TEST_P(FileSystemContract, FoldersAreCreatedAndRemovedOneAtATime) {
  EXPECT_EQ(Code(fs().CreateDirectory(P("\\A\\B"))), 76);
  ASSERT_TRUE(fs().CreateDirectory(P("\\A")).ok());
  EXPECT_EQ(Code(fs().CreateDirectory(P("\\a"))), 75);
  Write(P("\\A\\file.txt"));
  EXPECT_EQ(Code(fs().RemoveDirectory(P("\\A"))), 75);
  EXPECT_EQ(Code(fs().DeleteFile(P("\\A"))), 53);
  ASSERT_TRUE(fs().DeleteFile(P("\\a\\FILE.txt")).ok());
  EXPECT_TRUE(fs().RemoveDirectory(P("\\a")).ok());
  EXPECT_EQ(Code(fs().ReadFile(P("\\"))), 75);
}

}  // namespace sentrune::testing
