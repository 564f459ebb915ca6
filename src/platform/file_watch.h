#pragma once
// Notice of files written in folders of the host, for following what a
// developer edits outside the IDE. Unlike the rest of the platform layer it
// speaks host paths ("/srv/src/Widgets"), because what it watches is the
// host's own file system.
#include <string>
#include <vector>

#include "runtime/result.h"

namespace sentrune::platform {

class FileWatch {
 public:
  virtual ~FileWatch() = default;
  // Starts reporting files written, or moved into, an existing folder (not
  // its sub-folders). Fails with 76, naming the folder, when it cannot be
  // watched. Watching a folder twice is one watch.
  virtual rt::Status AddFolder(const std::string& hostFolder) = 0;
  // Waits up to `timeoutMs` for changes and returns the host paths of the
  // files changed since the last call, each once, in the order first seen.
  // Empty after the timeout, or at once when a signal interrupts the wait.
  virtual rt::Result<std::vector<std::string>> Wait(int timeoutMs) = 0;
};

}  // namespace sentrune::platform
