#pragma once
// One registry file of a Wine prefix, read through a FileSystem and kept
// parsed between calls while its bytes stay the same. Changes are written to
// "<file>.sentrune-new" beside it and renamed over it, so a failed write
// leaves the old file whole.
#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/winereg/wine_registry_file.h"
#include "runtime/result.h"

namespace sentrune::portable::winereg {

class HiveFile {
 public:
  // `path` is the file's Windows path. The file system must outlive this.
  HiveFile(platform::FileSystem& files, std::string path);

  // The document as the file holds it now; a missing file reads as an empty
  // registry. Fails with kBadDb when the file cannot be read or parsed. The
  // pointer stays valid until the next call of this object.
  rt::Result<RegFile*> Load();
  // As Load, but a missing file fails with kCantWrite: a prefix without its
  // registry file is not one Wine has set up, and a file we made up could
  // disagree with the Wine that later reads it.
  rt::Result<RegFile*> LoadForWriting();
  // Writes the loaded document (after changes to it). On failure the change
  // is dropped: the next Load reads the file again.
  rt::Status Save();

  const std::string& path() const { return path_; }

 private:
  platform::FileSystem& files_;
  std::string path_;
  std::string bytes_;  // what the file held when doc_ was parsed
  std::optional<RegFile> doc_;
  bool missing_ = false;
};

}  // namespace sentrune::portable::winereg
