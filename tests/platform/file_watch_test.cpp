// The inotify watch on a real temporary folder.
#include "platform/posix/file_watch_posix.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace sentrune::posix {
namespace {

namespace fs = std::filesystem;

struct TempFolder {
  fs::path path = fs::temp_directory_path() / ("sentrune-watch-" + std::to_string(getpid()));
  TempFolder() { fs::create_directories(path / "sub"); }
  ~TempFolder() { fs::remove_all(path); }
  void Write(const std::string& name, const std::string& text) { std::ofstream(path / name) << text; }
};

TEST(InotifyFileWatch, ReportsWrittenAndMovedInFilesOnce) {
  TempFolder temp;
  auto watch = InotifyFileWatch::Create();
  ASSERT_TRUE(watch.ok());
  ASSERT_TRUE((*watch)->AddFolder(temp.path.string()).ok());

  // Nothing happened: the wait ends empty after its timeout.
  auto quiet = (*watch)->Wait(20);
  ASSERT_TRUE(quiet.ok());
  EXPECT_TRUE(quiet->empty());

  temp.Write("Form1.frm", "a");
  temp.Write("Form1.frm", "b");
  temp.Write("sub/Other.bas", "not watched");
  temp.Write("Module1.bas.tmp", "c");
  fs::rename(temp.path / "Module1.bas.tmp", temp.path / "Module1.bas");
  auto changed = (*watch)->Wait(500);
  ASSERT_TRUE(changed.ok());
  const std::string folder = temp.path.string();
  EXPECT_EQ(*changed, (std::vector<std::string>{folder + "/Form1.frm", folder + "/Module1.bas.tmp",
                                                 folder + "/Module1.bas"}));
}

TEST(InotifyFileWatch, AMissingFolderIsAClearError) {
  TempFolder temp;
  auto watch = InotifyFileWatch::Create();
  ASSERT_TRUE(watch.ok());
  const std::string missing = (temp.path / "missing").string();
  const rt::Status added = (*watch)->AddFolder(missing);
  ASSERT_FALSE(added.ok());
  EXPECT_EQ(added.error().number, 76);
  EXPECT_NE(added.error().description.find(missing), std::string::npos);
}

}  // namespace
}  // namespace sentrune::posix
