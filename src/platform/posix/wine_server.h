#pragma once
// Whether a wineserver runs for a Wine prefix. A server works in a folder
// named "server-<device>-<inode>" after the prefix folder's device and inode
// numbers (both in lower-case hex), kept in "/tmp/.wine-<uid>" or, with
// Debian's Wine, in the folder below /tmp that the prefix's "wineserver"
// file names. While it runs it holds a write lock on that folder's "lock"
// file; its "socket" goes away when it exits, the lock file stays.
#include <string>
#include <vector>

namespace sentrune::posix {

// The server folders that may belong to the prefix, most likely first;
// `tmpDir` is where Wine puts them ("/tmp"). Empty when the prefix folder
// does not exist.
std::vector<std::string> WineServerFolders(const std::string& hostPrefix,
                                           const std::string& tmpDir = "/tmp");

// True when one of those folders has a socket and its lock is held, or has
// a socket whose lock cannot be examined (we would rather refuse a change
// than lose it).
bool WineServerRunning(const std::string& hostPrefix, const std::string& tmpDir = "/tmp");

}  // namespace sentrune::posix
