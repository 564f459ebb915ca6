#pragma once
// The command line's wiring on Windows: the system's own file API, registry,
// profile functions and version resources; drive letters are real, so the
// options that map them off Windows are refused.
#include "host_platform.h"

namespace sentrune::cli {

class Win32Host : public HostPlatform {
 public:
  HostHelp Help() override;
  // %APPDATA%\Sentrune.
  std::string DefaultHomeFolder() override;
  // Whether standard input is a console.
  bool InputIsTerminal() override;
  // The system's environment with `homeFolder` as the add-in's folder, seeded
  // from the "share" folder beside the program. --reader picks the portable
  // reader or the system's loader; --drive and --wineprefix are refused.
  rt::Result<std::unique_ptr<HostEnv>> Open(const GlobalOptions& global, const std::string& homeFolder) override;
  // ReadDirectoryChangesW; a stop request ends its wait.
  rt::Result<std::unique_ptr<platform::FileWatch>> WatchFiles() override;
  // Ctrl-C, Ctrl-Break and the console being closed.
  std::unique_ptr<StopRequest> CatchStop() override;
  // Each argument quoted as CommandLineToArgvW and the C run time split them.
  std::string CommandLine(const std::vector<std::string>& arguments) override;
};

}  // namespace sentrune::cli
