#include "support/host_drive.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

#include "platform/win32/win32_env.h"
#include "platform/win32/win32_file_system.h"
#include "platform/win32/win32_text.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

// The Windows file system with drive `letter` moved onto a host folder:
// paths on the drive go to the folder, and paths under the folder come back
// on the drive, in results and in messages alike.
class DriveFileSystem : public platform::FileSystem {
 public:
  DriveFileSystem(char letter, const fs::path& hostFolder)
      : drive_{static_cast<char>(std::toupper(static_cast<unsigned char>(letter))), ':'} {
    // The folder in its stored spelling, so that results under it are found.
    const std::string folder = win32::Narrow(fs::absolute(hostFolder).wstring());
    folder_ = *rt::ParseWinPath(files_.GetLongPathName(folder).value_or(folder));
  }

  // The path on the drive of a path under the folder; others as they are.
  std::string OnDrive(const std::string& path) const {
    std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
    const auto& own = folder_.parts;
    if (!parsed || !rt::IEquals(parsed->root, folder_.root) || parsed->parts.size() < own.size() ||
        !std::equal(own.begin(), own.end(), parsed->parts.begin(), rt::IEquals))
      return path;
    parsed->root = drive_;
    parsed->parts.erase(parsed->parts.begin(), parsed->parts.begin() + static_cast<ptrdiff_t>(own.size()));
    return rt::JoinWinPath(*parsed);
  }

  rt::Result<uint32_t> GetAttributes(const std::string& path) const override {
    return Named(files_.GetAttributes(Host(path)));
  }
  rt::Status SetAttributes(const std::string& path, uint32_t attributes) override {
    return Named(files_.SetAttributes(Host(path), attributes));
  }
  rt::Result<rt::DateTime> GetLastWriteTime(const std::string& path) const override {
    return Named(files_.GetLastWriteTime(Host(path)));
  }
  rt::Status SetLastWriteTime(const std::string& path, const rt::DateTime& time) override {
    return Named(files_.SetLastWriteTime(Host(path), time));
  }
  rt::Result<std::string> ReadFile(const std::string& path) const override {
    return Named(files_.ReadFile(Host(path)));
  }
  rt::Status WriteFile(const std::string& path, std::string_view bytes) override {
    return Named(files_.WriteFile(Host(path), bytes));
  }
  rt::Status AppendFile(const std::string& path, std::string_view bytes) override {
    return Named(files_.AppendFile(Host(path), bytes));
  }
  rt::Status DeleteFile(const std::string& path) override { return Named(files_.DeleteFile(Host(path))); }
  rt::Status RenameReplace(const std::string& from, const std::string& to) override {
    return Named(files_.RenameReplace(Host(from), Host(to)));
  }
  rt::Status CopyFile(const std::string& from, const std::string& to, bool failIfExists) override {
    return Named(files_.CopyFile(Host(from), Host(to), failIfExists));
  }
  rt::Status CopyFileToNew(const std::string& from, const std::string& to) override {
    return Named(files_.CopyFileToNew(Host(from), Host(to)));
  }
  rt::Status CreateDirectory(const std::string& path) override { return Named(files_.CreateDirectory(Host(path))); }
  rt::Status RemoveDirectory(const std::string& path) override { return Named(files_.RemoveDirectory(Host(path))); }
  rt::Status MakeSureDirectoryPathExists(const std::string& path) override {
    return Named(files_.MakeSureDirectoryPathExists(Host(path)));
  }
  rt::Result<std::vector<platform::DirEntry>> List(const std::string& pattern) const override {
    return Named(files_.List(Host(pattern)));
  }
  rt::Result<std::string> GetLongPathName(const std::string& path) const override {
    rt::Result<std::string> found = Named(files_.GetLongPathName(Host(path)));
    return found ? OnDrive(*found) : found;
  }

 private:
  // The host path of a path on the drive, ".." stopping at the drive's root
  // as it does on a real drive; others as they are.
  std::string Host(const std::string& path) const {
    std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
    if (!parsed || parsed->root != drive_) return path;
    rt::WinPath host = folder_;
    host.parts.insert(host.parts.end(), parsed->parts.begin(), parsed->parts.end());
    host.trailingSlash = parsed->trailingSlash;
    return rt::JoinWinPath(host);
  }
  // A failure names the path the caller gave, not the host's.
  template <typename Outcome>
  Outcome Named(Outcome outcome) const {
    if (outcome.ok()) return outcome;
    rt::VbError error = outcome.error();
    error.description = rt::Replace(error.description, rt::JoinWinPath(folder_), drive_);
    return error;
  }

  win32::Win32FileSystem files_;
  std::string drive_;
  rt::WinPath folder_;
};

// The Windows environment over that file system, the add-in's folder seen on
// the drive when it lies under the folder.
class DriveEnv : public platform::Env {
 public:
  DriveEnv(const fs::path& home, char letter, const fs::path& hostFolder)
      : files_(letter, hostFolder),
        base_({files_.OnDrive(win32::Narrow(fs::absolute(home).wstring())), "Sentrune"}) {}

  platform::FileSystem& Files() override { return files_; }
  platform::Clock& Time() override { return base_.Time(); }
  platform::Processes& Programs() override { return base_.Programs(); }
  std::string SpecialFolderPath(int folder) override { return base_.SpecialFolderPath(folder); }
  std::string TempPath() override { return base_.TempPath(); }
  std::string ModuleFolder() override { return base_.ModuleFolder(); }
  std::string ModuleName() override { return base_.ModuleName(); }
  std::optional<std::string> NetworkConnection(const std::string& drive) override {
    return base_.NetworkConnection(drive);
  }
  void DoEvents() override { base_.DoEvents(); }

 private:
  DriveFileSystem files_;
  win32::Win32Env base_;
};

}  // namespace

std::unique_ptr<platform::FileSystem> HostDriveFileSystem(char letter, const fs::path& hostFolder) {
  return std::make_unique<DriveFileSystem>(letter, hostFolder);
}

std::unique_ptr<platform::Env> HostDriveEnv(const fs::path& home, char letter, const fs::path& hostFolder) {
  return std::make_unique<DriveEnv>(home, letter, hostFolder);
}

}  // namespace sentrune::testing
