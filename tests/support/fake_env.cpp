#include "support/fake_env.h"

#include <cmath>

#include "runtime/text.h"

namespace sentrune::testing {

// --- FakeClock

void FakeClock::Set(const rt::DateTime& now) {
  whole_ = now.ToSeconds();
  fraction_ = 0;
}

void FakeClock::Advance(double seconds) {
  const double total = fraction_ + seconds;
  const double whole = std::floor(total);
  whole_ += static_cast<int64_t>(whole);
  fraction_ = total - whole;
}

rt::DateTime FakeClock::Now() const { return rt::DateTime::FromSeconds(whole_); }

double FakeClock::Timer() const {
  const rt::DateTime now = Now();
  return now.hour * 3600 + now.minute * 60 + now.second + fraction_;
}

// --- FakeProcesses

void FakeProcesses::SetFindExecutable(int code, std::string program) {
  findCode_ = code;
  findProgram_ = std::move(program);
}

rt::Result<int> FakeProcesses::Run(const std::string& commandLine) {
  ran_.push_back(commandLine);
  return 0;
}

rt::Status FakeProcesses::Start(const std::string& commandLine) {
  started_.push_back(commandLine);
  return {};
}

int FakeProcesses::FindExecutable(const std::string& documentPath, std::string& program) {
  looked_.push_back(documentPath);
  if (findCode_ >= 32) program = findProgram_;
  return findCode_;
}

// --- FakeEnv

FakeEnv::FakeEnv() {
  files_.UseClock(&clock_);
  SetSpecialFolder(platform::kFolderDesktop, kDesktop);
  SetSpecialFolder(platform::kFolderAppData, "C:\\Users\\Dev\\AppData\\Roaming");
  SetSpecialFolder(platform::kFolderSystem, kSystem);
  SetTempPath("C:\\Temp\\");
  SetModuleFolder("C:\\Addin\\");
}

std::string FakeEnv::SpecialFolderPath(int folder) {
  const auto found = specialFolders_.find(folder);
  return found == specialFolders_.end() ? std::string() : found->second;
}

std::optional<std::string> FakeEnv::NetworkConnection(const std::string& drive) {
  const auto found = networkDrives_.find(rt::UCase(drive));
  if (found == networkDrives_.end()) return std::nullopt;
  return found->second;
}

void FakeEnv::SetSpecialFolder(int folder, std::string path) {
  if (!path.empty()) files_.AddFolder(path);
  specialFolders_[folder] = std::move(path);
}

void FakeEnv::SetTempPath(std::string path) {
  files_.AddFolder(path);
  tempPath_ = std::move(path);
}

void FakeEnv::SetModuleFolder(std::string path) {
  files_.AddFolder(path);
  moduleFolder_ = std::move(path);
}

void FakeEnv::SetNetworkConnection(const std::string& drive, std::string share) {
  networkDrives_[rt::UCase(drive)] = std::move(share);
}

}  // namespace sentrune::testing
