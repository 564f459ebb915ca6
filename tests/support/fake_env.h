#pragma once
// The outside world for tests: an in-memory file system, a clock that only
// moves when told to, programs that are recorded instead of run, and folders
// a test can set. The defaults are those of a plain Windows machine with the
// add-in in "C:\Addin\"; the default folders exist in the file system.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/env.h"
#include "support/fake_file_system.h"

namespace sentrune::testing {

class FakeClock : public platform::Clock {
 public:
  explicit FakeClock(const rt::DateTime& now = FakeFileSystem::kDefaultTime) { Set(now); }
  // Sets the time; the fraction of the second starts at 0.
  void Set(const rt::DateTime& now);
  // Moves forward (or back, for a negative count) by seconds with fractions.
  void Advance(double seconds);

  rt::DateTime Now() const override;
  // Seconds since midnight of Now, with the fraction Advance accumulated.
  double Timer() const override;

 private:
  int64_t whole_ = 0;     // rt::DateTime seconds
  double fraction_ = 0;   // in [0, 1)
};

// Run gives exit status 0 and Start succeeds.
class FakeProcesses : public platform::Processes {
 public:
  // What FindExecutable answers for every document (31 until set).
  void SetFindExecutable(int code, std::string program);

  const std::vector<std::string>& Ran() const { return ran_; }
  const std::vector<std::string>& Started() const { return started_; }
  const std::vector<std::string>& Looked() const { return looked_; }  // FindExecutable documents

  rt::Result<int> Run(const std::string& commandLine) override;
  rt::Status Start(const std::string& commandLine) override;
  int FindExecutable(const std::string& documentPath, std::string& program) override;

 private:
  int findCode_ = 31;
  std::string findProgram_;
  std::vector<std::string> ran_, started_, looked_;
};

class FakeEnv : public platform::Env {
 public:
  static constexpr const char* kDesktop = "C:\\Users\\Dev\\Desktop";
  static constexpr const char* kSystem = "C:\\Windows\\System32";

  FakeEnv();
  // The file system holds on to the clock.
  FakeEnv(const FakeEnv&) = delete;
  FakeEnv& operator=(const FakeEnv&) = delete;

  FakeFileSystem& Files() override { return files_; }
  FakeClock& Time() override { return clock_; }
  FakeProcesses& Programs() override { return processes_; }

  // Empty text for a folder never set (as SHGetFolderPath fails).
  std::string SpecialFolderPath(int folder) override;
  std::string TempPath() override { return tempPath_; }
  std::string ModuleFolder() override { return moduleFolder_; }
  std::string ModuleName() override { return moduleName_; }
  std::optional<std::string> NetworkConnection(const std::string& drive) override;
  void DoEvents() override {}

  // Setters; a folder that is set is also created in the file system.
  void SetSpecialFolder(int folder, std::string path);
  void SetTempPath(std::string path);
  void SetModuleFolder(std::string path);
  void SetModuleName(std::string name) { moduleName_ = std::move(name); }
  // Makes `drive` ("X:", any case) a network drive with that share name.
  void SetNetworkConnection(const std::string& drive, std::string share);

 private:
  FakeFileSystem files_;
  FakeClock clock_;
  FakeProcesses processes_;
  std::map<int, std::string> specialFolders_;
  std::map<std::string, std::string> networkDrives_;  // by upper-case drive
  std::string tempPath_;
  std::string moduleFolder_;
  std::string moduleName_ = "Sentrune";
};

}  // namespace sentrune::testing
