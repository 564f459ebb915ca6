#include "platform/win32/win32_file_watch.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/temp_folder.h"

namespace sentrune::win32 {
namespace {

std::string Backslashed(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

// Waits until `wanted` shows up among the changes, for at most about a minute.
bool Sees(Win32FileWatch& watch, const std::string& wanted, std::vector<std::string>* all = nullptr) {
  for (int round = 0; round < 60; ++round) {
    const auto changed = watch.Wait(1000);
    if (!changed.ok()) return false;
    if (all) all->insert(all->end(), changed->begin(), changed->end());
    for (const std::string& path : *changed) {
      if (path == wanted) return true;
    }
  }
  return false;
}

TEST(Win32FileWatch, ReportsWrittenAndRenamedFilesButNotFoldersOrDeletions) {
  testing::TempFolder temp;
  const std::string folder = Backslashed(temp.path());
  Win32FileWatch watch;
  ASSERT_TRUE(watch.AddFolder(folder).ok());
  ASSERT_TRUE(watch.AddFolder(folder).ok());  // a second watch of the same folder is the same watch

  temp.Write("Widgets.cls", "v1");
  std::vector<std::string> seen;
  EXPECT_TRUE(Sees(watch, folder + "\\Widgets.cls", &seen));
  temp.Write("save.tmp", "v2");
  std::filesystem::rename(temp / "save.tmp", temp / "Form1.frm");
  EXPECT_TRUE(Sees(watch, folder + "\\Form1.frm", &seen));
  temp.MakeFolder("Sub");
  std::filesystem::remove(temp / "Widgets.cls");
  temp.Write("Last.bas", "x");
  EXPECT_TRUE(Sees(watch, folder + "\\Last.bas", &seen));
  for (const std::string& path : seen) EXPECT_NE(path, folder + "\\Sub");
}

TEST(Win32FileWatch, AMissingFolderIsNamedAndAnInterruptEndsTheWait) {
  testing::TempFolder temp;
  Win32FileWatch missing;
  const rt::Status added = missing.AddFolder(Backslashed(temp.path()) + "\\Gone");
  ASSERT_FALSE(added.ok());
  EXPECT_EQ(added.error().number, rt::errnum::kPathNotFound);
  EXPECT_NE(added.error().description.find("\\Gone"), std::string::npos) << added.error().description;

  HANDLE interrupt = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  Win32FileWatch watch(interrupt);
  ASSERT_TRUE(watch.AddFolder(Backslashed(temp.path())).ok());
  // Signalled already: an endless wait comes back at once, with nothing.
  const auto changed = watch.Wait(-1);
  ASSERT_TRUE(changed.ok());
  EXPECT_TRUE(changed->empty());
  CloseHandle(interrupt);
}

}  // namespace
}  // namespace sentrune::win32
