#include "platform/posix/file_watch_posix.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "runtime/vb_error.h"

namespace sentrune::posix {
namespace {

// Modification alone is not reported: a save in progress would show up as
// many changes, and the close that ends it is enough.
constexpr uint32_t kMask = IN_CLOSE_WRITE | IN_MOVED_TO;

rt::VbError WatchError(const std::string& what) {
  return rt::MakeError(rt::errnum::kPathNotFound, what + ": " + std::strerror(errno));
}

}  // namespace

rt::Result<std::unique_ptr<InotifyFileWatch>> InotifyFileWatch::Create() {
  const int fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (fd < 0) return WatchError("cannot start watching files");
  return std::unique_ptr<InotifyFileWatch>(new InotifyFileWatch(fd));
}

InotifyFileWatch::~InotifyFileWatch() { close(fd_); }

rt::Status InotifyFileWatch::AddFolder(const std::string& hostFolder) {
  const int wd = inotify_add_watch(fd_, hostFolder.c_str(), kMask | IN_ONLYDIR);
  if (wd < 0) return WatchError("cannot watch the folder '" + hostFolder + "'");
  folders_[wd] = hostFolder;
  return {};
}

rt::Result<std::vector<std::string>> InotifyFileWatch::Wait(int timeoutMs) {
  std::vector<std::string> changed;
  pollfd waiting{fd_, POLLIN, 0};
  const int ready = poll(&waiting, 1, timeoutMs);
  if (ready < 0 && errno != EINTR) return WatchError("waiting for file changes failed");
  if (ready > 0) ReadEvents(changed);
  return changed;
}

void InotifyFileWatch::ReadEvents(std::vector<std::string>& changed) {
  alignas(inotify_event) char buffer[16 * 1024];
  for (;;) {
    const ssize_t length = read(fd_, buffer, sizeof buffer);
    if (length <= 0) return;  // drained (EAGAIN) or interrupted
    for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= length;) {
      inotify_event event;
      std::memcpy(&event, buffer + at, sizeof event);
      const char* name = buffer + at + sizeof(inotify_event);
      at += static_cast<ssize_t>(sizeof(inotify_event) + event.len);
      const auto folder = folders_.find(event.wd);
      if (folder == folders_.end() || event.len == 0 || (event.mask & IN_ISDIR)) continue;
      std::string path = folder->second + "/" + std::string(name, strnlen(name, event.len));
      if (std::find(changed.begin(), changed.end(), path) == changed.end()) changed.push_back(std::move(path));
    }
  }
}

}  // namespace sentrune::posix
