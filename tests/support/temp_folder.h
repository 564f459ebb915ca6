#pragma once
// A fresh temporary folder of the host, removed with everything in it when
// the test ends.
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace sentrune::testing {

class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    const auto base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100 && path_.empty(); ++attempt) {
      const auto candidate = base / ("sentrune-platform-" + std::to_string(random()));
      std::error_code ec;
      if (std::filesystem::create_directory(candidate, ec)) path_ = candidate.string();
    }
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

}  // namespace sentrune::testing
