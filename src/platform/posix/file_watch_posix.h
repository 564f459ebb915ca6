#pragma once
// FileWatch over Linux inotify: a write is reported when the writer closes
// the file or renames a finished file over it (how editors save).
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_watch.h"

namespace sentrune::posix {

class InotifyFileWatch : public platform::FileWatch {
 public:
  // Fails (76) when the system gives no inotify instance.
  static rt::Result<std::unique_ptr<InotifyFileWatch>> Create();
  ~InotifyFileWatch() override;
  InotifyFileWatch(const InotifyFileWatch&) = delete;
  InotifyFileWatch& operator=(const InotifyFileWatch&) = delete;

  rt::Status AddFolder(const std::string& hostFolder) override;
  rt::Result<std::vector<std::string>> Wait(int timeoutMs) override;

 private:
  explicit InotifyFileWatch(int fd) : fd_(fd) {}
  void ReadEvents(std::vector<std::string>& changed);

  int fd_;
  std::map<int, std::string> folders_;  // watch descriptor -> folder
};

}  // namespace sentrune::posix
