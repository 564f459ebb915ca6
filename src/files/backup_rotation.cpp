// Rotation of dated backups: only the newest files of a kind stay.
#include <utility>
#include <vector>

#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

struct Backup {
  std::string path;
  rt::DateTime written;
};

constexpr uint32_t kNotNormal = platform::kAttrHidden | platform::kAttrSystem | platform::kAttrDirectory;

rt::Result<std::vector<Backup>> ListBackups(const platform::FileSystem& fs, const std::string& folder,
                                            const std::string& pattern) {
  const rt::Result<std::vector<platform::DirEntry>> entries = fs.List(folder + pattern);
  if (!entries) return entries.error();
  std::vector<Backup> backups;
  for (const platform::DirEntry& entry : *entries) {
    if (entry.attributes & kNotNormal) continue;
    const std::string path = folder + entry.name;
    const rt::Result<rt::DateTime> written = fs.GetLastWriteTime(path);
    if (!written) return written.error();
    backups.push_back({path, *written});
  }
  return backups;
}

// Newest first; a swap only for a strictly newer later entry, so files of
// the same second keep the order the folder listed them in.
void SortNewestFirst(std::vector<Backup>& backups) {
  for (bool swapped = true; swapped;) {
    swapped = false;
    for (size_t i = 1; i < backups.size(); ++i) {
      if (rt::DateDiffSeconds(backups[i - 1].written, backups[i].written) > 0) {
        std::swap(backups[i - 1], backups[i]);
        swapped = true;
      }
    }
  }
}

rt::Status Rotate(AddinState& state, const std::string& folder, const std::string& pattern, size_t keep) {
  rt::Result<std::vector<Backup>> backups = ListBackups(state.files(), folder, pattern);
  if (!backups) return backups.error();
  SortNewestFirst(*backups);
  for (size_t i = keep; i < backups->size(); ++i) {
    const std::string& path = (*backups)[i].path;
    if (rt::Status writable = state.files().SetAttributes(path, platform::kAttrArchive); !writable) return writable;
    state.env().DoEvents();
    if (rt::Status deleted = state.files().DeleteFile(path); !deleted) return deleted;
  }
  return {};
}

}  // namespace

int32_t lfncRotateBackups(AddinState& state, const std::string& folder, const std::string& pattern,
                          int32_t keep) {
  // A count of 0 stands for "keep every backup"; never read it as "keep none".
  if (keep < 1) return 0;
  const rt::Status rotated = Rotate(state, rt::AddBackslash(folder), pattern, static_cast<size_t>(keep));
  return rotated ? 0 : ReportTrappedError(state, rotated.error(), "modFileFunctions:lfncRotateBackups");
}

}  // namespace sentrune
