#pragma once
// Test inputs for the readers of PE files and type libraries: the real PE
// files Debian's Wine packages install (found at test time; tests skip when
// they are absent) and a small in-memory file system to serve bytes from.
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace sentrune::testing {

// Windows-side binaries of Wine for an architecture ("x86_64" or "i386") with
// an extension (".dll"), sorted by name; empty when Wine is not installed.
std::vector<std::filesystem::path> WineFiles(std::string_view arch, std::string_view extension);
// One such file by name, when installed.
std::optional<std::filesystem::path> WineFile(std::string_view arch, std::string_view name);

std::vector<uint8_t> ReadHostFile(const std::filesystem::path& path);

// Files and folders by exact Windows path. Only what the readers use is
// served: attributes and contents; every other operation fails with 75.
class MemoryFiles : public platform::FileSystem {
 public:
  void AddFile(const std::string& path, std::span<const uint8_t> bytes);
  void AddFolder(const std::string& path);

  rt::Result<uint32_t> GetAttributes(const std::string& path) const override;
  rt::Result<std::string> ReadFile(const std::string& path) const override;

  rt::Status SetAttributes(const std::string& path, uint32_t) override { return Refuse(path); }
  rt::Result<rt::DateTime> GetLastWriteTime(const std::string& path) const override { return Refuse(path); }
  rt::Status SetLastWriteTime(const std::string& path, const rt::DateTime&) override { return Refuse(path); }
  rt::Status WriteFile(const std::string& path, std::string_view) override { return Refuse(path); }
  rt::Status AppendFile(const std::string& path, std::string_view) override { return Refuse(path); }
  rt::Status DeleteFile(const std::string& path) override { return Refuse(path); }
  rt::Status RenameReplace(const std::string& from, const std::string&) override { return Refuse(from); }
  rt::Status CopyFile(const std::string& from, const std::string&, bool) override { return Refuse(from); }
  rt::Status CreateDirectory(const std::string& path) override { return Refuse(path); }
  rt::Status RemoveDirectory(const std::string& path) override { return Refuse(path); }
  rt::Status MakeSureDirectoryPathExists(const std::string& path) override { return Refuse(path); }
  rt::Result<std::vector<platform::DirEntry>> List(const std::string& pattern) const override {
    return Refuse(pattern);
  }
  rt::Result<std::string> GetLongPathName(const std::string& path) const override { return Refuse(path); }

 private:
  static rt::VbError Refuse(const std::string& path);

  std::map<std::string, std::string> files_;
  std::set<std::string> folders_;
};

}  // namespace sentrune::testing
