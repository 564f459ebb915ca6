// Finding a prefix's wineserver by its server folder, socket and lock, in a
// temporary folder that stands in for /tmp.
#include "platform/posix/wine_server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace sentrune::posix {
namespace {

namespace fs = std::filesystem;

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "sentrune-wineserver-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::string ServerName(const std::string& prefix) {
  struct stat info;
  if (stat(prefix.c_str(), &info) != 0) return "?";
  char name[64];
  std::snprintf(name, sizeof name, "server-%llx-%llx", static_cast<unsigned long long>(info.st_dev),
                static_cast<unsigned long long>(info.st_ino));
  return name;
}

void Touch(const std::string& path) { std::ofstream(path).put('\0'); }

class WineServerProbe : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(tmp_.path().empty());
    prefix_ = tmp_.path() + "/prefix";
    fs::create_directories(prefix_);
  }
  ~WineServerProbe() override {
    if (lockFd_ >= 0) close(lockFd_);
  }
  // A server folder with its socket and lock file, the lock held by us.
  std::string RunServerIn(const std::string& folder, bool holdLock = true) {
    fs::create_directories(folder);
    Touch(folder + "/socket");
    Touch(folder + "/lock");
    if (holdLock) {
      lockFd_ = open((folder + "/lock").c_str(), O_RDWR);
      struct flock lock = {};
      lock.l_type = F_WRLCK;
      lock.l_whence = SEEK_SET;
      EXPECT_EQ(fcntl(lockFd_, F_SETLK, &lock), 0);
    }
    return folder;
  }

  TempFolder tmp_;
  std::string prefix_;
  int lockFd_ = -1;
};

TEST_F(WineServerProbe, LooksWhereEitherWineKeepsItsServer) {
  const std::string upstream =
      tmp_.path() + "/.wine-" + std::to_string(getuid()) + "/" + ServerName(prefix_);
  EXPECT_EQ(WineServerFolders(prefix_, tmp_.path()), std::vector<std::string>{upstream});

  std::ofstream(prefix_ + "/wineserver") << "wine-AbC123";
  EXPECT_EQ(
      WineServerFolders(prefix_, tmp_.path()),
      (std::vector<std::string>{tmp_.path() + "/wine-AbC123/" + ServerName(prefix_), upstream}));

  EXPECT_TRUE(WineServerFolders(tmp_.path() + "/no-such-prefix", tmp_.path()).empty());
  EXPECT_FALSE(WineServerRunning(tmp_.path() + "/no-such-prefix", tmp_.path()));
}

TEST_F(WineServerProbe, RunningMeansSocketAndHeldLock) {
  std::ofstream(prefix_ + "/wineserver") << "wine-AbC123\n";
  const std::string folder = tmp_.path() + "/wine-AbC123/" + ServerName(prefix_);
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_.path()));

  RunServerIn(folder, /*holdLock=*/false);
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_.path()));  // a socket left behind by a crash

  fs::remove(folder + "/lock");
  EXPECT_TRUE(WineServerRunning(prefix_, tmp_.path()));  // cannot tell: assume it runs

  RunServerIn(folder);
  EXPECT_TRUE(WineServerRunning(prefix_, tmp_.path()));

  fs::remove(folder + "/socket");  // the server is gone; its lock file stays
  close(lockFd_);
  lockFd_ = -1;
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_.path()));

  // Another prefix's server is not ours.
  RunServerIn(tmp_.path() + "/.wine-" + std::to_string(getuid()) + "/server-1-2");
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_.path()));
}

}  // namespace
}  // namespace sentrune::posix
