// Finding a prefix's wineserver by its server folder, socket and lock, in a
// temporary folder that stands in for /tmp.
#include "platform/posix/wine_server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/temp_folder.h"

namespace sentrune::posix {
namespace {

namespace fs = std::filesystem;

class WineServerProbe : public ::testing::Test {
 protected:
  void SetUp() override {
    prefix_ = tmp_ + "/prefix";
    fs::create_directories(prefix_);
    struct stat info;
    ASSERT_EQ(stat(prefix_.c_str(), &info), 0);
    char name[64];
    std::snprintf(name, sizeof name, "server-%llx-%llx", static_cast<unsigned long long>(info.st_dev),
                  static_cast<unsigned long long>(info.st_ino));
    server_ = name;
  }
  void TearDown() override {
    if (lockFd_ >= 0) close(lockFd_);
  }
  // A server folder with its socket and lock file, the lock held by us.
  void RunServerIn(const std::string& folder, bool holdLock = true) {
    fs::create_directories(folder);
    for (const char* file : {"/socket", "/lock"}) std::ofstream(folder + file).put('\0');
    if (!holdLock) return;
    lockFd_ = open((folder + "/lock").c_str(), O_RDWR);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    EXPECT_EQ(fcntl(lockFd_, F_SETLK, &lock), 0);
  }

  testing::TempFolder temp_;
  std::string tmp_ = temp_.path(), prefix_, server_;
  int lockFd_ = -1;
};

TEST_F(WineServerProbe, LooksWhereEitherWineKeepsItsServer) {
  const std::string upstream = tmp_ + "/.wine-" + std::to_string(getuid()) + "/" + server_;
  EXPECT_EQ(WineServerFolders(prefix_, tmp_), std::vector<std::string>{upstream});
  std::ofstream(prefix_ + "/wineserver") << "wine-AbC123";
  EXPECT_EQ(WineServerFolders(prefix_, tmp_), (std::vector<std::string>{tmp_ + "/wine-AbC123/" + server_, upstream}));
  EXPECT_TRUE(WineServerFolders(tmp_ + "/no-such-prefix", tmp_).empty());
  EXPECT_FALSE(WineServerRunning(tmp_ + "/no-such-prefix", tmp_));
}

TEST_F(WineServerProbe, RunningMeansSocketAndHeldLock) {
  std::ofstream(prefix_ + "/wineserver") << "wine-AbC123\n";
  const std::string folder = tmp_ + "/wine-AbC123/" + server_;
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));
  RunServerIn(folder, /*holdLock=*/false);
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));  // a socket left behind by a crash
  fs::remove(folder + "/lock");
  EXPECT_TRUE(WineServerRunning(prefix_, tmp_));  // cannot tell: assume it runs
  RunServerIn(folder);
  EXPECT_TRUE(WineServerRunning(prefix_, tmp_));
  fs::remove(folder + "/socket");  // the server is gone; its lock file stays
  close(lockFd_);
  lockFd_ = -1;
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));
  // Another prefix's server is not ours.
  RunServerIn(tmp_ + "/.wine-" + std::to_string(getuid()) + "/server-1-2");
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));
}

}  // namespace
}  // namespace sentrune::posix
