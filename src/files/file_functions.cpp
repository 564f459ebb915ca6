#include "files/file_functions.h"

#include <optional>

#include "runtime/text.h"
#include "runtime/vb_format.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

// Windows expands short names but keeps the caller's spelling of long
// components; the path fixer hands in lower-cased paths and its rewritten
// lines must stay that way, whatever spelling the disk stores.
std::string KeepCallerSpelling(const std::string& given, const std::string& longForm) {
  const std::optional<rt::WinPath> asGiven = rt::ParseWinPath(given);
  std::optional<rt::WinPath> result = rt::ParseWinPath(longForm);
  if (!asGiven || !result || asGiven->parts.size() != result->parts.size()) return longForm;
  for (size_t i = 0; i < result->parts.size(); ++i)
    if (rt::IEquals(asGiven->parts[i], result->parts[i])) result->parts[i] = asGiven->parts[i];
  return rt::JoinWinPath(*result);
}

std::optional<std::string> LongForm(const platform::FileSystem& fs, const std::string& path) {
  rt::Result<std::string> longPath = fs.GetLongPathName(path);
  if (!longPath) return std::nullopt;
  return KeepCallerSpelling(path, *longPath);
}

bool StartsWithIgnoringCase(const std::string& text, const std::string& prefix) {
  return text.size() >= prefix.size() && rt::IEquals(std::string_view(text).substr(0, prefix.size()), prefix);
}

}  // namespace

bool lfncFileExists(const platform::FileSystem& fs, const std::string& path) {
  if (path.empty()) return false;
  const rt::Result<uint32_t> attributes = fs.GetAttributes(path);
  return attributes.ok() && (*attributes & platform::kAttrDirectory) == 0;
}

bool lfncEnsureFolder(platform::FileSystem& fs, const std::string& folder) {
  return fs.MakeSureDirectoryPathExists(rt::AddBackslash(folder)).ok();
}

std::string lfncRelativePath(const platform::FileSystem& fs, const std::string& fromFile,
                             const std::string& target) {
  if (!lfncFileExists(fs, fromFile) || !lfncFileExists(fs, target)) return target;
  const std::optional<std::string> from = LongForm(fs, fromFile);
  const std::optional<std::string> to = LongForm(fs, target);
  if (!from || !to) return target;
  // Both ends count as folders, so the answer climbs once for the project
  // file's own name; take that level off again.
  const std::optional<std::string> relative = rt::PathRelativePathTo(*from, true, *to, true);
  if (!relative) return target;
  const std::string projectFolder = rt::GetFolder(*from);
  if (!projectFolder.empty() && StartsWithIgnoringCase(*to, projectFolder)) {
    std::string below = to->substr(projectFolder.size());
    if (!below.empty() && below.front() == '\\') below.erase(0, 1);
    return below;
  }
  if (relative->starts_with("..\\")) return relative->substr(3);
  return *relative;
}

std::string lfncMakeBackupName(const platform::FileSystem& fs, const OptionSet& options,
                               const std::string& component, const std::string& baseFolder) {
  const rt::Result<rt::DateTime> written = fs.GetLastWriteTime(component);
  if (!written) return {};
  const std::string folder = baseFolder.empty()
                                 ? rt::AddBackslash(rt::GetFolder(component) + options.BackupFolderName)
                                 : rt::AddBackslash(baseFolder);
  const std::string title = rt::GetFileTitle(component);
  return folder + rt::StripExtension(title) + "-" + rt::Format(*written, options.DateFormatString) +
         rt::GetExtension(title);
}

std::string UnusedName(const platform::FileSystem& fs, const std::string& path) {
  const std::string title = rt::GetFileTitle(path);
  const std::string stem = rt::GetFolder(path) + rt::StripExtension(title), extension = rt::GetExtension(title);
  std::string name = path;
  for (int n = 2; fs.GetAttributes(name).ok(); ++n) name = stem + " (" + std::to_string(n) + ")" + extension;
  return name;
}

}  // namespace sentrune
