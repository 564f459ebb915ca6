#pragma once
// The outside world on Windows: the file system, clock and programs over the
// Win32 API, the shell's special folders, mapped network drives and the
// thread's message queue.
#include <optional>
#include <string>

#include "platform/env.h"
#include "platform/win32/win32_clock.h"
#include "platform/win32/win32_file_system.h"
#include "platform/win32/win32_processes.h"

namespace sentrune::win32 {

// The full path of the module (DLL or program) this code is linked into;
// empty when the system cannot say.
std::string OwnModulePath();

struct Win32EnvOptions {
  // The add-in's folder and module name; empty: those of the module (DLL or
  // program) this code is linked into, so that an add-in DLL loaded by the
  // IDE names its own folder and not the IDE's.
  std::string moduleFolder;
  std::string moduleName;
};

class Win32Env : public platform::Env {
 public:
  explicit Win32Env(Win32EnvOptions options = {});

  Win32FileSystem& Files() override { return files_; }
  platform::Clock& Time() override { return clock_; }
  platform::Processes& Programs() override { return processes_; }
  std::string SpecialFolderPath(int folder) override;
  std::string TempPath() override;
  std::string ModuleFolder() override { return moduleFolder_; }
  std::string ModuleName() override { return moduleName_; }
  std::optional<std::string> NetworkConnection(const std::string& drive) override;
  // Runs the window messages pending for this thread; a WM_QUIT among them
  // is put back for the caller's own message loop and ends the round.
  void DoEvents() override;

 private:
  Win32FileSystem files_;
  Win32Clock clock_;
  Win32Processes processes_;
  std::string moduleFolder_;
  std::string moduleName_;
};

}  // namespace sentrune::win32
