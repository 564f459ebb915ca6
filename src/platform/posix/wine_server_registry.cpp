#include "platform/posix/wine_server_registry.h"

#include "platform/winereg/wine_registry.h"
#include "platform/posix/wine_server.h"

namespace sentrune::posix {

rt::Result<std::unique_ptr<platform::Registry>> OpenWinePrefixRegistry(
    PosixFileSystem& files, const std::string& hostPrefix) {
  const std::optional<std::string> folder = files.Drives().HostToWindows(hostPrefix);
  if (!folder) {
    return rt::MakeError(platform::regerr::kInvalidParameter,
                         "No drive covers the Wine prefix '" + hostPrefix + "'");
  }
  portable::WineRegistryOptions options;
  options.prefixFolder = *folder;
  options.prefixName = hostPrefix;
  options.serverRunning = [hostPrefix] { return WineServerRunning(hostPrefix); };
  return std::unique_ptr<platform::Registry>(
      std::make_unique<portable::WineRegistry>(files, std::move(options)));
}

}  // namespace sentrune::posix
