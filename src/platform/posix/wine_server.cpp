#include "platform/posix/wine_server.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace sentrune::posix {

namespace {

bool Exists(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) == 0;
}

// The first line of the prefix's "wineserver" file, which Debian's Wine
// writes with the name of its server base folder.
std::string BaseFolderNamed(const std::string& hostPrefix) {
  std::ifstream in(hostPrefix + "/wineserver");
  std::string line;
  if (!in || !std::getline(in, line)) return {};
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
  if (line.empty() || line.find("..") != std::string::npos) return {};
  return line;
}

enum class LockState { kFree, kHeld, kUnknown };

LockState LockOf(const std::string& lockPath) {
  const int fd = open(lockPath.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return LockState::kUnknown;
  struct flock query = {};
  query.l_type = F_WRLCK;
  query.l_whence = SEEK_SET;
  // An open-file-description query also sees record locks of this very
  // process, which a plain F_GETLK would overlook.
#ifdef F_OFD_GETLK
  int result = fcntl(fd, F_OFD_GETLK, &query);
#else
  int result = fcntl(fd, F_GETLK, &query);
#endif
  close(fd);
  if (result != 0) return LockState::kUnknown;
  return query.l_type == F_UNLCK ? LockState::kFree : LockState::kHeld;
}

}  // namespace

std::vector<std::string> WineServerFolders(const std::string& hostPrefix,
                                           const std::string& tmpDir) {
  struct stat info;
  if (stat(hostPrefix.c_str(), &info) != 0) return {};
  char name[64];
  std::snprintf(name, sizeof name, "server-%llx-%llx", static_cast<unsigned long long>(info.st_dev),
                static_cast<unsigned long long>(info.st_ino));
  std::vector<std::string> folders;
  const std::string base = BaseFolderNamed(hostPrefix);
  if (!base.empty()) {
    folders.push_back((base[0] == '/' ? base : tmpDir + "/" + base) + "/" + name);
  }
  folders.push_back(tmpDir + "/.wine-" + std::to_string(getuid()) + "/" + name);
  return folders;
}

bool WineServerRunning(const std::string& hostPrefix, const std::string& tmpDir) {
  for (const std::string& folder : WineServerFolders(hostPrefix, tmpDir)) {
    if (!Exists(folder + "/socket")) continue;
    if (LockOf(folder + "/lock") != LockState::kFree) return true;
  }
  return false;
}

}  // namespace sentrune::posix
