#pragma once
// The file system as the add-in sees it: every path is a Windows path text
// ("C:\Src\Widgets\Widgets.dll"). Implementations map these to their own
// storage (the POSIX one through a Wine-style drive map, the fakes in memory).
//
// Failures come back as rt::VbError with the run time's numbers, and every
// message names the path concerned:
//   53 file not found, 76 path not found (a missing folder on the way),
//   70 permission denied, 58 file already exists, 71 disk not ready (no such
//   drive), 75 path/file access error (anything else).
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/datetime.h"
#include "runtime/result.h"

namespace sentrune::platform {

// The Windows attribute bits the add-in reads and writes.
enum FileAttribute : uint32_t {
  kAttrReadOnly = 1,
  kAttrHidden = 2,
  kAttrSystem = 4,
  kAttrDirectory = 16,
  kAttrArchive = 32,
  kAttrNormal = 128,
  kAttrReparsePoint = 1024,  // a symbolic link or junction itself, not its target
};

struct DirEntry {
  std::string name;         // the entry's own name as stored, without folder
  uint32_t attributes = 0;  // FileAttribute bits
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // Attributes of a file or folder (GetAttr). Files always report archive (32).
  // A symbolic link reports its target's attributes plus kAttrReparsePoint
  // (a dangling one: archive plus kAttrReparsePoint).
  virtual rt::Result<uint32_t> GetAttributes(const std::string& path) const = 0;
  // SetAttr: 32 makes a file writable, 33 read-only; other bits are ignored
  // where the storage cannot keep them.
  virtual rt::Status SetAttributes(const std::string& path, uint32_t attributes) = 0;

  // FileDateTime: last-write time in local time.
  virtual rt::Result<rt::DateTime> GetLastWriteTime(const std::string& path) const = 0;
  virtual rt::Status SetLastWriteTime(const std::string& path, const rt::DateTime& time) = 0;

  // Whole contents as bytes (no code page conversion).
  virtual rt::Result<std::string> ReadFile(const std::string& path) const = 0;
  // Creates or truncates the file, then writes the bytes. The folder must exist.
  virtual rt::Status WriteFile(const std::string& path, std::string_view bytes) = 0;
  // Appends, creating the file when missing.
  virtual rt::Status AppendFile(const std::string& path, std::string_view bytes) = 0;
  // Kill: a read-only file is refused with 75, as the run time refuses it.
  virtual rt::Status DeleteFile(const std::string& path) = 0;
  // Renames, replacing an existing target in one step (the basis of atomic
  // rewrites: write a temporary file, then rename it over the original).
  virtual rt::Status RenameReplace(const std::string& from, const std::string& to) = 0;
  // Windows CopyFile: copies bytes and keeps the source's last-write time.
  // With failIfExists an existing target fails with 58.
  virtual rt::Status CopyFile(const std::string& from, const std::string& to, bool failIfExists) = 0;
  // CopyFile with failIfExists into a folder the caller has just made and
  // alone fills, so that `to` is known to be new: it is taken as spelled,
  // without a search for it in other letter case, and any entry already
  // there, a symbolic link included, fails with 58 and is never followed.
  virtual rt::Status CopyFileToNew(const std::string& from, const std::string& to) = 0;

  // MkDir of one folder; its parent must exist.
  virtual rt::Status CreateDirectory(const std::string& path) = 0;
  virtual rt::Status RemoveDirectory(const std::string& path) = 0;
  // imagehlp's MakeSureDirectoryPathExists: creates every missing folder of
  // the path up to its last "\" (a trailing file name is not a folder).
  virtual rt::Status MakeSureDirectoryPathExists(const std::string& path) = 0;

  // Entries of a folder matching a pattern ("C:\Src\History\*.dll"); "*" and
  // "?" match as Windows matches them, without regard to case. "." and ".."
  // are not listed. A missing folder fails with 76.
  virtual rt::Result<std::vector<DirEntry>> List(const std::string& pattern) const = 0;

  // GetLongPathName: the path with every component in its stored long form.
  // Fails with 53 or 76 when the item does not exist.
  virtual rt::Result<std::string> GetLongPathName(const std::string& path) const = 0;
};

}  // namespace sentrune::platform
