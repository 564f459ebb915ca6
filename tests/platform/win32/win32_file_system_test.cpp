// The file system contract over the Win32 API in a temporary folder. Then
// what only Windows gives: paths past MAX_PATH, names outside ASCII, files
// another program holds open, names the system refuses and UNC paths to a
// server that does not exist.
#include "platform/win32/win32_file_system.h"

#include <gtest/gtest.h>
#include "platform/win32/windows_api.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32/win32_text.h"
#include "runtime/text.h"
#include "support/file_system_contract.h"
#include "support/temp_folder.h"

namespace sentrune::win32 {
namespace {

using Strings = std::vector<std::string>;

// Empties a folder with the file system itself, which clears read-only files
// and reaches past MAX_PATH where std::filesystem may not.
void Empty(platform::FileSystem& fs, const std::string& folder) {
  for (const platform::DirEntry& entry : fs.List(folder + "\\*").value_or({})) {
    const std::string path = folder + "\\" + entry.name;
    if (entry.attributes & platform::kAttrDirectory) {
      Empty(fs, path);
      (void)fs.RemoveDirectory(path);
    } else {
      (void)fs.SetAttributes(path, platform::kAttrArchive);
      (void)fs.DeleteFile(path);
    }
  }
}

// A fresh temporary folder, named in its stored spelling.
class Win32Store : public testing::FileSystemSandbox {
 public:
  Win32Store() {
    std::string path = folder_.path();
    std::replace(path.begin(), path.end(), '/', '\\');
    root_ = fs_.GetLongPathName(path).value_or(path);
  }
  ~Win32Store() override { Empty(fs_, root_); }

  Win32FileSystem& fs() override { return fs_; }
  std::string root() const override { return root_; }

 private:
  testing::TempFolder folder_;
  Win32FileSystem fs_;
  std::string root_;
};

using testing::FileSystemContract;
using testing::FileSystemStore;
INSTANTIATE_TEST_SUITE_P(Win32, FileSystemContract,
                         ::testing::Values(FileSystemStore{"Files", [] { return std::make_unique<Win32Store>(); }}),
                         testing::FileSystemStoreName);

class Win32Files : public ::testing::Test {
 protected:
  std::string P(const std::string& rest) const { return store_.root() + rest; }
  Strings Names(const std::string& pattern) {
    Strings names;
    for (const platform::DirEntry& entry : fs_.List(pattern).value_or({})) names.push_back(entry.name);
    return names;
  }
  // The failure's number, and whether its message names `path` and the
  // system's code (any code when none is given).
  static std::string Failure(const auto& result, const std::string& path, std::optional<int> windowsError = {}) {
    if (result.ok()) return "succeeded";
    const std::string& text = result.error().description;
    const std::string code = "(Windows error " + (windowsError ? std::to_string(*windowsError) + ": " : "");
    return std::to_string(result.error().number) + (text.find(path) == std::string::npos ? " unnamed" : "") +
           (text.find(code) == std::string::npos ? " uncoded" : "");
  }

  Win32Store store_;
  Win32FileSystem& fs_ = store_.fs();
};

TEST_F(Win32Files, PathsPastMaxPathWork) {
  std::string folder = P("");
  while (folder.size() < 290) folder += "\\Component folder with a long name";
  const std::string file = folder + "\\Widgets.dll";
  ASSERT_GT(file.size(), 300u);
  ASSERT_TRUE(fs_.MakeSureDirectoryPathExists(file).ok());
  ASSERT_TRUE(fs_.WriteFile(file, "long").ok());
  EXPECT_EQ(*fs_.ReadFile(file), "long");
  ASSERT_TRUE(fs_.CopyFile(file, folder + "\\Copy.dll", true).ok());
  EXPECT_EQ(Names(folder + "\\*.dll"), (Strings{"Copy.dll", "Widgets.dll"}));
  EXPECT_EQ(*fs_.GetLongPathName(rt::UCase(folder) + "\\copy.DLL"), folder + "\\Copy.dll");
  ASSERT_TRUE(fs_.DeleteFile(file).ok());
  EXPECT_EQ(fs_.GetAttributes(file).error().number, 53);
}

TEST_F(Win32Files, NamesOutsideAsciiAreStoredAsTheSystemsOwn) {
  const std::string cafe = "Caf\xC3\xA9", cafeUpper = "CAF\xC3\x89", japan = "\xE6\x97\xA5\xE6\x9C\xAC";
  ASSERT_TRUE(fs_.CreateDirectory(P("\\" + cafe)).ok());
  ASSERT_TRUE(fs_.WriteFile(P("\\" + cafe + "\\" + japan + ".vbp"), "project").ok());
  EXPECT_NE(GetFileAttributesW((LongPath(P("")) + L"\\Caf\u00e9\\\u65e5\u672c.vbp").c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(Names(P("\\*")), Strings{cafe});
  EXPECT_EQ(Names(P("\\" + cafeUpper + "\\*.VBP")), Strings{japan + ".vbp"});
  EXPECT_EQ(*fs_.GetLongPathName(P("\\" + cafeUpper + "\\" + japan + ".VBP")), P("\\" + cafe + "\\" + japan + ".vbp"));
  EXPECT_EQ(*fs_.ReadFile(P("\\" + cafeUpper + "\\" + japan + ".vbp")), "project");
}

TEST_F(Win32Files, AFileHeldOpenWithoutSharingIsRefusedWith70) {
  const std::string path = P("\\Held.dll");
  ASSERT_TRUE(fs_.WriteFile(path, "in use").ok());
  ASSERT_TRUE(fs_.WriteFile(P("\\Other.dll"), "other").ok());
  const HANDLE held = CreateFileW(LongPath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_EQ(Failure(fs_.WriteFile(path, "x"), path, ERROR_SHARING_VIOLATION), "70");
  EXPECT_EQ(Failure(fs_.ReadFile(path), path, ERROR_SHARING_VIOLATION), "70");
  EXPECT_EQ(Failure(fs_.DeleteFile(path), path, ERROR_SHARING_VIOLATION), "70");
  EXPECT_EQ(Failure(fs_.RenameReplace(path, P("\\Moved.dll")), path, ERROR_SHARING_VIOLATION), "70");
  // Replacing it is refused too, though Windows and Wine call that access denied.
  EXPECT_EQ(Failure(fs_.RenameReplace(P("\\Other.dll"), path), path, ERROR_ACCESS_DENIED), "70");
  CloseHandle(held);
  EXPECT_TRUE(fs_.DeleteFile(path).ok());
}

// The read-only bit of a folder keeps nothing out of it, on Windows as here.
// What the system itself refuses to write is a name it does not allow.
TEST_F(Win32Files, OnlyFilesAreReadOnlyAndTheSystemsRefusalsKeepItsCode) {
  ASSERT_TRUE(fs_.CreateDirectory(P("\\Shared")).ok());
  ASSERT_TRUE(fs_.SetAttributes(P("\\Shared"), platform::kAttrReadOnly).ok());
  EXPECT_TRUE(fs_.WriteFile(P("\\Shared\\new.txt"), "x").ok());
  ASSERT_TRUE(fs_.SetAttributes(P("\\Shared\\new.txt"), platform::kAttrReadOnly | platform::kAttrArchive).ok());
  const rt::Status readOnly = fs_.WriteFile(P("\\Shared\\new.txt"), "y");
  EXPECT_EQ(readOnly.code(), 75);
  EXPECT_NE(readOnly.error().description.find(P("\\Shared\\new.txt")), std::string::npos);
  EXPECT_EQ(Failure(fs_.WriteFile(P("\\a<b.txt"), "x"), P("\\a<b.txt"), ERROR_INVALID_NAME), "75");
}

TEST_F(Win32Files, UncPathsToAMissingServerAreMissingPaths) {
  const std::string path = "\\\\nosuchserver\\share\\a.dll", pattern = "\\\\nosuchserver\\share\\*";
  EXPECT_EQ(Failure(fs_.ReadFile(path), path), "76");
  EXPECT_EQ(Failure(fs_.GetAttributes(path), path), "76");
  EXPECT_EQ(Failure(fs_.WriteFile(path, "x"), path), "76");
  EXPECT_EQ(Failure(fs_.CopyFile(path, P("\\a.dll"), false), path), "76");
  EXPECT_EQ(Failure(fs_.List(pattern), pattern), "76");
}

}  // namespace
}  // namespace sentrune::win32
