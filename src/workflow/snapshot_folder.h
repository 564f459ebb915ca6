#pragma once
// The folder one snapshot fills. It is always made new, as a direct child of
// the folder chosen for it, so that a snapshot never lands in (or through)
// anything that was there before: a name taken already gets " (2)", " (3)"…,
// and a symbolic link of that name is refused rather than followed.
#include <set>
#include <string>

#include "runtime/result.h"
#include "workflow/step_context.h"

namespace sentrune {

// The snapshot folder's own name: the project's name, a space and the
// formatted time, with every "\", "/" and ":" made "_" so that neither the
// project file nor DateFormatString can make it a path, and a name of dots
// (and spaces) alone, such as "..", made of "_" instead.
std::string SnapshotFolderName(const std::string& projectName, const std::string& formattedTime);

class SnapshotFolder {
 public:
  // Makes the folder `wanted` (ending in "\"), or, when an entry of that name
  // exists, the first free one of "wanted (2)\", "wanted (3)\"…; the parent
  // is made when missing. Fails when a symbolic link holds a name on the way.
  static rt::Result<SnapshotFolder> Make(const StepContext& step, const std::string& wanted);

  // The folder made, ending in "\".
  const std::string& Path() const { return path_; }

  // Copies `source` to `relative` (below the folder), making its subfolders.
  // A file this snapshot put there before is replaced, even when read-only;
  // with SnapIsReadOnly the copy is made read-only.
  rt::Status Put(const std::string& source, const std::string& relative);

 private:
  SnapshotFolder(const StepContext& step, std::string path) : step_(&step), path_(std::move(path)) {}
  rt::Status MakeSubfolders(const std::string& relative);

  const StepContext* step_;
  std::string path_;
  // Lower-case relative names of what this snapshot made, so that nothing
  // needs looking up on the disk while the folder fills.
  std::set<std::string> files_;
  std::set<std::string> subfolders_;
};

}  // namespace sentrune
