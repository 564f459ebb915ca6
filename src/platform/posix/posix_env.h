#pragma once
// The outside world on a POSIX host: the drive-mapped file system, the local
// clock, programs run through the shell and the user's folders, all seen
// through Windows paths.
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/env.h"
#include "platform/posix/posix_clock.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/posix_processes.h"

namespace sentrune::posix {

struct PosixEnvOptions {
  std::string homeHostDir;  // the add-in's folder on the host
  std::string wineprefix;   // empty: DefaultWinePrefix()
  std::vector<std::pair<char, std::string>> drives;  // added or overriding drives
  // Documents FindExecutable can answer for: extension without dot -> program
  // as a Windows path.
  std::vector<std::pair<std::string, std::string>> associations;
  std::string moduleName = "Sentrune";
};

class PosixEnv : public platform::Env {
 public:
  explicit PosixEnv(PosixEnvOptions options);
  // The parts refer to each other (processes ask the file system).
  PosixEnv(const PosixEnv&) = delete;
  PosixEnv& operator=(const PosixEnv&) = delete;

  PosixFileSystem& Files() override { return files_; }
  platform::Clock& Time() override { return clock_; }
  platform::Processes& Programs() override { return processes_; }
  // Desktop: the XDG desktop folder; application data: the XDG configuration
  // folder; system: the prefix's windows\system32 when it exists. Each only
  // when the folder exists and a drive covers it.
  std::string SpecialFolderPath(int folder) override;
  // $TMPDIR, else /tmp, as a Windows path.
  std::string TempPath() override;
  std::string ModuleFolder() override { return moduleFolder_; }
  std::string ModuleName() override { return moduleName_; }
  // Drives here are folders, never network shares.
  std::optional<std::string> NetworkConnection(const std::string&) override { return std::nullopt; }
  // There is no message queue to pump.
  void DoEvents() override {}

  const std::string& WinePrefix() const { return wineprefix_; }

 private:
  // The Windows form of an existing host folder, without trailing "\".
  std::string WindowsFolder(const std::string& hostFolder) const;

  std::string wineprefix_;
  PosixFileSystem files_;
  PosixClock clock_;
  PosixProcesses processes_;
  std::string moduleFolder_;
  std::string moduleName_;
};

}  // namespace sentrune::posix
