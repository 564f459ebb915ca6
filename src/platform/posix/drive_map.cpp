#include "platform/posix/drive_map.h"

#include <pwd.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/posix/posix_errors.h"
#include "runtime/winpath.h"

namespace sentrune::posix {

namespace fs = std::filesystem;

namespace {

int DriveIndex(char letter) {
  const int upper = std::toupper(static_cast<unsigned char>(letter));
  return upper >= 'A' && upper <= 'Z' ? upper - 'A' : -1;
}

// Absolute, lexically clean, symbolic links resolved as far as the path
// exists; "/" stays "/" and nothing else keeps a trailing slash.
fs::path CanonicalFolder(const fs::path& folder) {
  std::error_code ec;
  fs::path absolute = fs::absolute(folder, ec);
  if (ec) absolute = folder;
  fs::path canonical = fs::weakly_canonical(absolute, ec);
  if (ec) canonical = absolute.lexically_normal();
  if (!canonical.has_filename() && canonical.has_parent_path() && canonical != canonical.root_path())
    canonical = canonical.parent_path();
  return canonical;
}

// True when `path` is `folder` or lies below it, comparing whole components.
bool IsWithin(const std::string& path, const std::string& folder) {
  if (folder == "/") return !path.empty() && path[0] == '/';
  if (path.compare(0, folder.size(), folder) != 0) return false;
  return path.size() == folder.size() || path[folder.size()] == '/';
}

}  // namespace

DriveMap::DriveMap() { folders_['Z' - 'A'] = "/"; }

DriveMap DriveMap::Build(const std::string& wineprefix,
                         const std::vector<std::pair<char, std::string>>& drives) {
  DriveMap map;
  if (!wineprefix.empty()) map.AddWinePrefix(wineprefix);
  for (const auto& [letter, folder] : drives) map.SetDrive(letter, folder);
  return map;
}

void DriveMap::SetDrive(char letter, const std::string& hostFolder) {
  const int index = DriveIndex(letter);
  if (index < 0 || hostFolder.empty()) return;
  folders_[index] = CanonicalFolder(hostFolder).string();
}

void DriveMap::AddWinePrefix(const std::string& wineprefix) {
  std::error_code ec;
  for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(wineprefix) / "dosdevices", ec)) {
    const std::string name = entry.path().filename().string();
    if (name.size() != 2 || name[1] != ':' || DriveIndex(name[0]) < 0) continue;
    std::error_code entryError;
    if (!fs::is_directory(entry.path(), entryError)) continue;
    const fs::path target = fs::canonical(entry.path(), entryError);
    if (!entryError) SetDrive(name[0], target.string());
  }
}

std::optional<std::string> DriveMap::DriveFolder(char letter) const {
  const int index = DriveIndex(letter);
  if (index < 0 || folders_[index].empty()) return std::nullopt;
  return folders_[index];
}

rt::Result<DriveLocation> DriveMap::Split(const std::string& windowsPath) const {
  std::optional<rt::WinPath> parsed = rt::ParseWinPath(windowsPath);
  if (!parsed) return PathError(rt::errnum::kBadFileNameOrNumber, windowsPath);
  // A UNC share has no host folder.
  if (parsed->root.size() != 2 || parsed->root[1] != ':')
    return PathError(rt::errnum::kPathNotFound, windowsPath);
  std::optional<std::string> folder = DriveFolder(parsed->root[0]);
  if (!folder) return PathError(rt::errnum::kDiskNotReady, windowsPath);
  return DriveLocation{parsed->root, *folder, std::move(parsed->parts), parsed->trailingSlash};
}

std::optional<std::string> DriveMap::HostToWindows(const std::string& hostPath) const {
  if (hostPath.empty()) return std::nullopt;
  std::error_code ec;
  fs::path path = fs::absolute(hostPath, ec).lexically_normal();
  if (ec) return std::nullopt;
  if (!path.has_filename()) path = path.parent_path();
  if (path.has_relative_path()) path = CanonicalFolder(path.parent_path()) / path.filename();
  const std::string text = path.string();

  int best = -1;
  for (int i = 0; i < 26; ++i) {
    if (folders_[i].empty() || !IsWithin(text, folders_[i])) continue;
    if (best < 0 || folders_[i].size() > folders_[best].size()) best = i;
  }
  if (best < 0) return std::nullopt;

  std::string rest = folders_[best] == "/" ? text.substr(1) : text.substr(folders_[best].size());
  if (!rest.empty() && rest[0] == '/') rest.erase(0, 1);
  for (char& c : rest)
    if (c == '/') c = '\\';
  return std::string(1, static_cast<char>('A' + best)) + ":\\" + rest;
}

std::string DefaultWinePrefix() {
  if (const char* prefix = std::getenv("WINEPREFIX"); prefix && *prefix) return prefix;
  const std::string home = HomeFolder();
  if (home.empty()) return {};
  std::error_code ec;
  const fs::path wine = fs::path(home) / ".wine";
  return fs::is_directory(wine, ec) ? wine.string() : std::string();
}

std::string HomeFolder() {
  if (const char* home = std::getenv("HOME"); home && *home) return home;
  long size = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::string buffer(size > 0 ? static_cast<size_t>(size) : 16384, '\0');
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return {};
  return found->pw_dir ? found->pw_dir : "";
}

}  // namespace sentrune::posix
