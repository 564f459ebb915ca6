#pragma once
// Host resources tests borrow and give back: a fresh temporary
// folder and environment variables set for the length of one test.
#include <stdlib.h>
#include <time.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace sentrune::testing {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sentrune-platform-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& relative) const { return path_ + "/" + relative; }
  // Creates the file or folder, and the folders above it.
  void Write(const std::string& relative, const std::string& bytes = "x") const {
    MakeFolder(std::filesystem::path(relative).parent_path().string());
    std::ofstream(*this / relative, std::ios::binary) << bytes;
  }
  void MakeFolder(const std::string& relative) const { std::filesystem::create_directories(*this / relative); }

 private:
  std::string path_;
};

// Sets (or, with nullopt, removes) an environment variable until destroyed.
class ScopedEnv {
 public:
  ScopedEnv(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (const char* old = getenv(name_.c_str())) old_ = old;
    Apply(value);
  }
  ~ScopedEnv() { Apply(old_); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  void Apply(const std::optional<std::string>& value) {
    if (value) setenv(name_.c_str(), value->c_str(), 1);
    else unsetenv(name_.c_str());
    tzset();
  }
  std::string name_;
  std::optional<std::string> old_;
};

}  // namespace sentrune::testing
