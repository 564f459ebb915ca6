#pragma once
// Windows drive letters over host folders, arranged as Wine arranges them so
// that paths written by the IDE under Wine and paths given by a user at a
// terminal name the same files: Z: is the host root, each "x:" link in a Wine
// prefix's dosdevices folder adds its drive, and explicit entries override
// both.
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "runtime/result.h"

namespace sentrune::posix {

// A Windows path taken apart: the host folder of its drive and the
// components below it ("." and ".." already resolved).
struct DriveLocation {
  std::string windowsRoot;  // "C:"
  std::string hostRoot;     // "/srv/u/.wine/drive_c"
  std::vector<std::string> parts;
  bool trailingSlash = false;
};

class DriveMap {
 public:
  // Only Z: mapped to "/".
  DriveMap();
  // Z:, then the prefix's dosdevices links (skipped when `wineprefix` is
  // empty), then `drives` (letter, host folder) in order.
  static DriveMap Build(const std::string& wineprefix,
                        const std::vector<std::pair<char, std::string>>& drives);

  // Adds or replaces one drive (letter in either case; anything else is
  // ignored). The folder is made absolute, and canonical where it exists, so
  // that HostToWindows compares like with like.
  void SetDrive(char letter, const std::string& hostFolder);
  // Every "x:" entry of `wineprefix`/dosdevices that leads to a folder adds
  // drive x:; broken links and device entries ("c::", "com1") are skipped.
  void AddWinePrefix(const std::string& wineprefix);
  // The host folder of a drive, if it is mapped.
  std::optional<std::string> DriveFolder(char letter) const;

  // Fails with 52 for a text that is no absolute path (there is no current
  // folder or drive here), 76 for a UNC path (no network shares), 71 for an
  // unmapped drive. Messages name the path.
  rt::Result<DriveLocation> Split(const std::string& windowsPath) const;

  // The Windows form of a host path (relative paths count from the current
  // folder) on the drive whose folder is the longest prefix of it, as
  // `winepath -w` picks; nothing when no drive covers it. Symbolic links in
  // the folder part are resolved first; the last component is kept as given.
  std::optional<std::string> HostToWindows(const std::string& hostPath) const;

 private:
  std::array<std::string, 26> folders_;  // empty: drive not mapped
};

// The prefix to use when none is given: $WINEPREFIX, else ~/.wine when that
// folder exists, else empty text.
std::string DefaultWinePrefix();

// The user's home folder: $HOME, else the password database's entry.
std::string HomeFolder();

}  // namespace sentrune::posix
