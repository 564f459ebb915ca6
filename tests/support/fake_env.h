#pragma once
// The outside world for tests: an in-memory file system, a clock that only
// moves when told to, programs that are recorded instead of run, and folders
// a test can set. The defaults are those of a plain Windows machine with the
// add-in in "C:\Addin\"; the default folders exist in the file system.
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/env.h"
#include "runtime/text.h"
#include "support/fake_file_system.h"

namespace sentrune::testing {

class FakeClock : public platform::Clock {
 public:
  explicit FakeClock(const rt::DateTime& now = FakeFileSystem::kDefaultTime) { Set(now); }
  // Sets the time; the fraction of the second starts at 0.
  void Set(const rt::DateTime& now) {
    whole_ = now.ToSeconds();
    fraction_ = 0;
  }
  // Moves forward (or back, for a negative count) by seconds with fractions.
  void Advance(double seconds) {
    const double total = fraction_ + seconds, whole = std::floor(total);
    whole_ += static_cast<int64_t>(whole);
    fraction_ = total - whole;
  }

  rt::DateTime Now() const override { return rt::DateTime::FromSeconds(whole_); }
  // Seconds since midnight of Now, with the fraction Advance accumulated.
  double Timer() const override {
    const rt::DateTime now = Now();
    return now.hour * 3600 + now.minute * 60 + now.second + fraction_;
  }

 private:
  int64_t whole_ = 0;     // rt::DateTime seconds
  double fraction_ = 0;   // in [0, 1)
};

// Run gives exit status 0 and Start succeeds.
class FakeProcesses : public platform::Processes {
 public:
  // What FindExecutable answers for every document (31 until set).
  void SetFindExecutable(int code, std::string program) {
    findCode_ = code;
    findProgram_ = std::move(program);
  }

  const std::vector<std::string>& Ran() const { return ran_; }
  const std::vector<std::string>& Started() const { return started_; }
  const std::vector<std::string>& Looked() const { return looked_; }  // FindExecutable documents

  rt::Result<int> Run(const std::string& commandLine) override {
    ran_.push_back(commandLine);
    return 0;
  }
  rt::Status Start(const std::string& commandLine) override {
    started_.push_back(commandLine);
    return {};
  }
  int FindExecutable(const std::string& documentPath, std::string& program) override {
    looked_.push_back(documentPath);
    if (findCode_ >= 32) program = findProgram_;
    return findCode_;
  }

 private:
  int findCode_ = 31;
  std::string findProgram_;
  std::vector<std::string> ran_, started_, looked_;
};

class FakeEnv : public platform::Env {
 public:
  static constexpr const char* kDesktop = "C:\\Users\\Dev\\Desktop";
  static constexpr const char* kSystem = "C:\\Windows\\System32";

  FakeEnv() {
    files_.UseClock(&clock_);
    SetSpecialFolder(platform::kFolderDesktop, kDesktop);
    SetSpecialFolder(platform::kFolderAppData, "C:\\Users\\Dev\\AppData\\Roaming");
    SetSpecialFolder(platform::kFolderSystem, kSystem);
    files_.AddFolder(tempPath_ = "C:\\Temp\\");
    SetModuleFolder("C:\\Addin\\");
  }
  // The file system holds on to the clock.
  FakeEnv(const FakeEnv&) = delete;
  FakeEnv& operator=(const FakeEnv&) = delete;

  FakeFileSystem& Files() override { return files_; }
  FakeClock& Time() override { return clock_; }
  FakeProcesses& Programs() override { return processes_; }

  // Empty text for a folder never set (as SHGetFolderPath fails).
  std::string SpecialFolderPath(int folder) override { return specialFolders_[folder]; }
  std::string TempPath() override { return tempPath_; }
  std::string ModuleFolder() override { return moduleFolder_; }
  std::string ModuleName() override { return moduleName_; }
  std::optional<std::string> NetworkConnection(const std::string& drive) override {
    const auto found = networkDrives_.find(rt::UCase(drive));
    return found == networkDrives_.end() ? std::nullopt : std::optional(found->second);
  }
  void DoEvents() override {}

  // Setters; a folder that is set is also created in the file system.
  void SetSpecialFolder(int folder, std::string path) {
    if (!path.empty()) files_.AddFolder(path);
    specialFolders_[folder] = std::move(path);
  }
  void SetModuleFolder(std::string path) { files_.AddFolder(moduleFolder_ = std::move(path)); }
  void SetModuleName(std::string name) { moduleName_ = std::move(name); }
  // Makes `drive` ("X:", any case) a network drive with that share name.
  void SetNetworkConnection(const std::string& drive, std::string share) {
    networkDrives_[rt::UCase(drive)] = std::move(share);
  }

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
