#include "support/host_drive.h"

#include "platform/posix/posix_env.h"

namespace sentrune::testing {

std::unique_ptr<platform::FileSystem> HostDriveFileSystem(char letter, const std::filesystem::path& hostFolder) {
  return std::make_unique<posix::PosixFileSystem>(posix::DriveMap::Build("", {{letter, hostFolder.string()}}));
}

std::unique_ptr<platform::Env> HostDriveEnv(const std::filesystem::path& home, char letter,
                                            const std::filesystem::path& hostFolder) {
  // A prefix that does not exist, so that the machine's own Wine prefix adds
  // no drives.
  return std::make_unique<posix::PosixEnv>(
      posix::PosixEnvOptions{home.string(), (home / "no-wine-prefix").string(), {{letter, hostFolder.string()}}, {}});
}

}  // namespace sentrune::testing
