#pragma once
// The add-in's file system over host folders. Windows paths go through a
// DriveMap; each component is looked up as stored first and then by a
// case-insensitive scan of its folder (and finally by 8.3 alias), so names in
// project files whose case differs from the disk still resolve. New names
// keep the case they are given. Host names are taken as UTF-8.
//
// Attributes are derived, not stored: read-only is the owner's write bit,
// hidden marks dot-files, every file reports archive, and a symbolic link
// adds reparse point. Only the read-only
// bit can be set. Read-only files are refused as Windows refuses them, even
// to a user (such as root) whom the host would let through.
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/posix/drive_map.h"

namespace sentrune::posix {

class PosixFileSystem : public platform::FileSystem {
 public:
  explicit PosixFileSystem(DriveMap drives);

  const DriveMap& Drives() const { return drives_; }
  // The host path of a Windows path: existing components in their stored
  // spelling, a missing last component as given. Fails with 76 when a folder
  // on the way is missing, and as DriveMap::Split does.
  rt::Result<std::string> HostPath(const std::string& windowsPath) const;

  rt::Result<uint32_t> GetAttributes(const std::string& path) const override;
  rt::Status SetAttributes(const std::string& path, uint32_t attributes) override;
  rt::Result<rt::DateTime> GetLastWriteTime(const std::string& path) const override;
  rt::Status SetLastWriteTime(const std::string& path, const rt::DateTime& time) override;
  rt::Result<std::string> ReadFile(const std::string& path) const override;
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
  struct Item;
  rt::Result<Item> Resolve(const std::string& path) const;
  rt::Result<Item> ResolveExisting(const std::string& path) const;
  rt::Status WriteBytes(const std::string& path, std::string_view bytes, int openFlags);

  DriveMap drives_;
};

}  // namespace sentrune::posix
