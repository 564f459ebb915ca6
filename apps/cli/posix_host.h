#pragma once
// The command line's wiring on a POSIX host: Windows paths over a drive map
// built as Wine builds it, the add-in's folder in the XDG configuration
// folder, a Wine prefix's registry, inotify, signals and /bin/sh.
#include "host_platform.h"

namespace sentrune::cli {

class PosixHost : public HostPlatform {
 public:
  HostHelp Help() override;
  // $XDG_CONFIG_HOME/sentrune, else ~/.config/sentrune.
  std::string DefaultHomeFolder() override;
  // Whether standard input is a terminal.
  bool InputIsTerminal() override;
  // The drive-mapped environment over the Wine prefix (--wineprefix, else
  // the default prefix) and the --drive folders, with the portable readers
  // (--reader system is refused). The add-in's folder is
  // seeded from the templates in the folder the program was built with.
  // Registries are the prefix's files.
  rt::Result<std::unique_ptr<HostEnv>> Open(const GlobalOptions& global, const std::string& homeFolder) override;
  rt::Result<std::unique_ptr<platform::FileWatch>> WatchFiles() override;
  // SIGINT and SIGTERM.
  std::unique_ptr<StopRequest> CatchStop() override;
  // Each argument quoted for /bin/sh.
  std::string CommandLine(const std::vector<std::string>& arguments) override;
};

}  // namespace sentrune::cli
