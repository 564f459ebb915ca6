#pragma once
// The add-in's file system over the Win32 wide-character API. Every path is
// first checked and normalised as a Windows path ("/" and "\" alike, "." and
// ".." resolved; a relative text is refused with 52, since the add-in has no
// current folder it could rely on) and reaches the system in its "\\?\" form,
// so that paths longer than MAX_PATH work.
//
// Where the system and the run time differ, the run time's behaviour wins: a
// read-only file is refused even to a caller the system would let through (an
// administrator, or Wine run as root), a drive that does not exist gives 71,
// listings match long names only (never the 8.3 aliases FindFirstFile also
// tries) and come in name order, a replaced file keeps its stored name, and
// GetLongPathName gives every component in its stored case.
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace sentrune::win32 {

class Win32FileSystem : public platform::FileSystem {
 public:
  rt::Result<uint32_t> GetAttributes(const std::string& path) const override;
  // Read-only, hidden, system and archive are kept; a file left with none
  // of them still reports archive.
  rt::Status SetAttributes(const std::string& path, uint32_t attributes) override;
  rt::Result<rt::DateTime> GetLastWriteTime(const std::string& path) const override;
  rt::Status SetLastWriteTime(const std::string& path, const rt::DateTime& time) override;
  // Files are read while others may read or write them, and written while
  // others may only read them.
  rt::Result<std::string> ReadFile(const std::string& path) const override;
  // An existing file is truncated in place, so that it keeps its hidden or
  // system attribute.
  rt::Status WriteFile(const std::string& path, std::string_view bytes) override;
  rt::Status AppendFile(const std::string& path, std::string_view bytes) override;
  rt::Status DeleteFile(const std::string& path) override;
  rt::Status RenameReplace(const std::string& from, const std::string& to) override;
  rt::Status CopyFile(const std::string& from, const std::string& to, bool failIfExists) override;
  rt::Status CopyFileToNew(const std::string& from, const std::string& to) override;
  rt::Status CreateDirectory(const std::string& path) override;
  rt::Status RemoveDirectory(const std::string& path) override;
  rt::Status MakeSureDirectoryPathExists(const std::string& path) override;
  rt::Result<std::vector<platform::DirEntry>> List(const std::string& pattern) const override;
  rt::Result<std::string> GetLongPathName(const std::string& path) const override;

 private:
  rt::Status WriteBytes(const std::string& path, std::string_view bytes, bool append);
};

}  // namespace sentrune::win32
