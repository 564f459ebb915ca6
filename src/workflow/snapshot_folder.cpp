#include "workflow/snapshot_folder.h"

#include "runtime/text.h"
#include "runtime/vb_error.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

rt::VbError RefusedLink(const std::string& path) {
  return rt::MakeError(rt::errnum::kPathFileAccessError,
                       rt::DescribeError(rt::errnum::kPathFileAccessError) + ": " + path +
                           " is a symbolic link, which a snapshot does not follow");
}

bool IsLink(const platform::FileSystem& fs, const std::string& path) {
  const rt::Result<uint32_t> attributes = fs.GetAttributes(path);
  return attributes.ok() && (*attributes & platform::kAttrReparsePoint);
}

// The refusal of a link that made `failed` fail, else `failed` itself.
rt::Status Explained(const platform::FileSystem& fs, const std::string& path, const rt::Status& failed) {
  if (IsLink(fs, path)) return RefusedLink(path);
  return failed;
}

std::string WithoutBackslash(const std::string& folder) {
  return folder.ends_with('\\') ? folder.substr(0, folder.size() - 1) : folder;
}

}  // namespace

std::string SnapshotFolderName(const std::string& projectName, const std::string& formattedTime) {
  std::string name = projectName + " " + formattedTime;
  for (char& c : name)
    if (c == '\\' || c == '/' || c == ':') c = '_';
  // Windows drops trailing dots and spaces, so ". ." would name the parent.
  if (name.find_first_not_of(". ") == std::string::npos)
    for (char& c : name)
      if (c == '.') c = '_';
  return name;
}

rt::Result<SnapshotFolder> SnapshotFolder::Make(const StepContext& step, const std::string& wanted) {
  platform::FileSystem& fs = step.state.files();
  const std::string base = WithoutBackslash(wanted);
  if (rt::Status made = fs.MakeSureDirectoryPathExists(rt::GetFolder(base)); !made) return made.error();
  for (int n = 1;; ++n) {
    const std::string candidate = n == 1 ? base : base + " (" + std::to_string(n) + ")";
    const rt::Result<uint32_t> existing = fs.GetAttributes(candidate);
    if (existing && (*existing & platform::kAttrReparsePoint)) return RefusedLink(candidate);
    if (existing) continue;
    if (rt::Status created = fs.CreateDirectory(candidate); !created) {
      // Someone may have taken the name meanwhile.
      if (fs.GetAttributes(candidate).ok() && !IsLink(fs, candidate)) continue;
      return Explained(fs, candidate, created).error();
    }
    return SnapshotFolder(step, candidate + "\\");
  }
}

rt::Status SnapshotFolder::MakeSubfolders(const std::string& relative) {
  platform::FileSystem& fs = step_->state.files();
  for (size_t slash = relative.find('\\'); slash != std::string::npos; slash = relative.find('\\', slash + 1)) {
    const std::string subfolder = relative.substr(0, slash);
    if (subfolders_.contains(rt::LCase(subfolder))) continue;
    if (rt::Status made = fs.CreateDirectory(path_ + subfolder); !made)
      return Explained(fs, path_ + subfolder, made);
    subfolders_.insert(rt::LCase(subfolder));
  }
  return {};
}

rt::Status SnapshotFolder::Put(const std::string& source, const std::string& relative) {
  platform::FileSystem& fs = step_->state.files();
  const std::string destination = path_ + relative;
  if (rt::Status made = MakeSubfolders(relative); !made) return made;
  if (!files_.insert(rt::LCase(relative)).second) {
    if (rt::Status writable = fs.SetAttributes(destination, platform::kAttrArchive); !writable) return writable;
    if (rt::Status deleted = fs.DeleteFile(destination); !deleted) return deleted;
  }
  if (rt::Status copied = fs.CopyFileToNew(source, destination); !copied)
    return Explained(fs, destination, copied);
  step_->state.env().DoEvents();
  if (!step_->options.SnapIsReadOnly) return {};
  return fs.SetAttributes(destination, platform::kAttrArchive | platform::kAttrReadOnly);
}

}  // namespace sentrune
