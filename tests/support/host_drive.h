#pragma once
// The host's own file system and environment seen through Windows paths,
// with one drive letter standing for a host folder: tests that need real
// files write "T:\Grid.stn" on either host. The build picks the POSIX or the
// Windows implementation.
#include <filesystem>
#include <memory>
#include <string>

#include "platform/env.h"
#include "support/host_files.h"

namespace sentrune::testing {

// Every path on drive `letter` names the same path under `hostFolder`; other
// paths are left to the host as they are.
std::unique_ptr<platform::FileSystem> HostDriveFileSystem(char letter, const std::filesystem::path& hostFolder);

// The host's environment over that file system, the add-in's folder being
// the host folder `home`.
std::unique_ptr<platform::Env> HostDriveEnv(const std::filesystem::path& home, char letter,
                                            const std::filesystem::path& hostFolder);

// The Windows path of a host path under `hostFolder` on drive `letter`.
inline std::string HostDrivePath(char letter, const std::filesystem::path& hostFolder,
                                 const std::filesystem::path& hostPath) {
  const std::filesystem::path relative = hostPath.lexically_normal().lexically_relative(hostFolder.lexically_normal());
  return std::string{letter} + ":\\" + Backslashed(relative);
}

}  // namespace sentrune::testing
