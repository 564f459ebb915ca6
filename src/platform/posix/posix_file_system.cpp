#include "platform/posix/posix_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/posix/host_folder.h"
#include "platform/posix/host_time.h"
#include "platform/posix/posix_errors.h"
#include "runtime/winpath.h"

namespace sentrune::posix {

namespace errnum = rt::errnum;
using platform::DirEntry;

// A Windows path looked up on the host.
struct PosixFileSystem::Item {
  std::string windows;     // stored spelling; a missing last component as given
  std::string folderHost;  // host folder that holds (or would hold) the item
  std::string requested;   // last component as the caller wrote it
  std::string name;        // last component as stored
  std::string host;
  bool exists = false;
  bool link = false;  // the item itself is a symbolic link
  struct stat st {};

  bool IsFolder() const { return S_ISDIR(st.st_mode); }
  bool IsReadOnly() const { return !IsFolder() && !(st.st_mode & S_IWUSR); }
  bool IsSameFileAs(const Item& other) const {
    return exists && other.exists && st.st_dev == other.st.st_dev && st.st_ino == other.st.st_ino;
  }
};

namespace {

bool IsHostFolder(const std::string& host) {
  struct stat st {};
  return stat(host.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

uint32_t AttributesOf(const struct stat& st, const std::string& name) {
  uint32_t attributes = S_ISDIR(st.st_mode) ? platform::kAttrDirectory : platform::kAttrArchive;
  if (!S_ISDIR(st.st_mode) && !(st.st_mode & S_IWUSR)) attributes |= platform::kAttrReadOnly;
  if (name.size() > 1 && name[0] == '.' && name != "..") attributes |= platform::kAttrHidden;
  return attributes;
}

// Walks the first `count` components of `location`, each of which must be an
// existing folder, appending their stored names to `stored`.
rt::Result<std::string> WalkFolders(const DriveLocation& location, size_t count, const std::string& path,
                                    std::vector<std::string>& stored) {
  if (!IsHostFolder(location.hostRoot)) return PathError(errnum::kDiskNotReady, path);
  std::string folder = location.hostRoot;
  for (size_t i = 0; i < count; ++i) {
    // A folder spelled as stored is the common case: one lstat settles it.
    struct stat own {};
    const std::string exact = JoinHost(folder, location.parts[i]);
    if (lstat(exact.c_str(), &own) == 0 && S_ISDIR(own.st_mode)) {
      folder = exact;
      stored.push_back(location.parts[i]);
      continue;
    }
    const std::optional<std::string> found = FindEntry(folder, location.parts[i]);
    if (!found || !IsHostFolder(JoinHost(folder, *found))) return PathError(errnum::kPathNotFound, path);
    folder = JoinHost(folder, *found);
    stored.push_back(*found);
  }
  return folder;
}

rt::Status WriteAll(int fd, std::string_view bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return ErrnoToVbError(errno, path);
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return {};
}

// Puts a file's bytes on the disk; 0 or the errno. Renaming an unflushed
// file over another can leave an empty file after a power loss.
int Flush(const std::string& host) {
  const int fd = open(host.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  const int err = fsync(fd) == 0 ? 0 : errno;
  close(fd);
  return err;
}

rt::Status CopyBytes(int in, int out, const std::string& what) {
  char buffer[65536];
  for (;;) {
    const ssize_t got = read(in, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return ErrnoToVbError(errno, what);
    if (got == 0) return {};
    if (rt::Status written = WriteAll(out, std::string_view(buffer, static_cast<size_t>(got)), what); !written)
      return written;
  }
}

}  // namespace

PosixFileSystem::PosixFileSystem(DriveMap drives) : drives_(std::move(drives)) {}

rt::Result<PosixFileSystem::Item> PosixFileSystem::Resolve(const std::string& path) const {
  rt::Result<DriveLocation> location = drives_.Split(path);
  if (!location) return location.error();
  const size_t count = location->parts.size();
  rt::WinPath shown{location->windowsRoot, {}, location->trailingSlash};
  rt::Result<std::string> folder = WalkFolders(*location, count == 0 ? 0 : count - 1, path, shown.parts);
  if (!folder) return folder.error();

  Item item;
  item.folderHost = *folder;
  item.host = *folder;
  struct stat own {};
  bool asSpelled = false;  // `own` holds the lstat of item.host
  if (count > 0) {
    item.requested = location->parts.back();
    asSpelled = lstat(JoinHost(*folder, item.requested).c_str(), &own) == 0;
    item.name = asSpelled ? item.requested : FindEntry(*folder, item.requested).value_or(item.requested);
    item.host = JoinHost(*folder, item.name);
    shown.parts.push_back(item.name);
  }
  item.windows = rt::JoinWinPath(shown);
  if (asSpelled && !S_ISLNK(own.st_mode)) {
    item.st = own;
    item.exists = true;
    return item;
  }
  item.exists = stat(item.host.c_str(), &item.st) == 0;
  item.link = (asSpelled || lstat(item.host.c_str(), &own) == 0) && S_ISLNK(own.st_mode);
  return item;
}

rt::Result<PosixFileSystem::Item> PosixFileSystem::ResolveExisting(const std::string& path) const {
  rt::Result<Item> item = Resolve(path);
  if (item && !item->exists) return PathError(errnum::kFileNotFound, path);
  return item;
}

rt::Result<std::string> PosixFileSystem::HostPath(const std::string& windowsPath) const {
  rt::Result<Item> item = Resolve(windowsPath);
  if (!item) return item.error();
  return item->host;
}

rt::Result<uint32_t> PosixFileSystem::GetAttributes(const std::string& path) const {
  rt::Result<Item> item = Resolve(path);
  if (!item) return item.error();
  if (!item->exists && !item->link) return PathError(errnum::kFileNotFound, path);
  const uint32_t attributes = item->exists ? AttributesOf(item->st, item->name) : platform::kAttrArchive;
  return item->link ? attributes | platform::kAttrReparsePoint : attributes;
}

rt::Status PosixFileSystem::SetAttributes(const std::string& path, uint32_t attributes) {
  rt::Result<Item> item = ResolveExisting(path);
  if (!item) return item.error();
  if (item->IsFolder()) return {};
  const mode_t mode = (attributes & platform::kAttrReadOnly) ? item->st.st_mode & ~mode_t{0222}
                                                             : item->st.st_mode | S_IWUSR;
  if (chmod(item->host.c_str(), mode & 07777) != 0) return ErrnoToVbError(errno, path);
  return {};
}

rt::Result<rt::DateTime> PosixFileSystem::GetLastWriteTime(const std::string& path) const {
  rt::Result<Item> item = ResolveExisting(path);
  if (!item) return item.error();
  return LocalDateTime(item->st.st_mtim.tv_sec);
}

rt::Status PosixFileSystem::SetLastWriteTime(const std::string& path, const rt::DateTime& time) {
  const std::optional<time_t> seconds = HostTime(time);
  if (!seconds) return PathError(errnum::kInvalidProcedureCall, path);
  rt::Result<Item> item = ResolveExisting(path);
  if (!item) return item.error();
  const timespec times[2] = {{0, UTIME_OMIT}, {*seconds, 0}};
  if (utimensat(AT_FDCWD, item->host.c_str(), times, 0) != 0) return ErrnoToVbError(errno, path);
  return {};
}

rt::Result<std::string> PosixFileSystem::ReadFile(const std::string& path) const {
  rt::Result<Item> item = ResolveExisting(path);
  if (!item) return item.error();
  if (item->IsFolder()) return PathError(errnum::kPathFileAccessError, path);
  const int fd = open(item->host.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return ErrnoToVbError(errno, path);
  // Sized from the file first, so that a large component is read in one
  // piece; a file that grows meanwhile is still read to its end.
  struct stat info {};
  const bool sized = fstat(fd, &info) == 0 && info.st_size > 0;
  std::string bytes(sized ? static_cast<size_t>(info.st_size) + 1 : 65536, '\0');
  size_t used = 0;
  for (;;) {
    if (used == bytes.size()) bytes.resize(2 * bytes.size());
    const ssize_t got = read(fd, bytes.data() + used, bytes.size() - used);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      const int err = got < 0 ? errno : 0;
      close(fd);
      if (err != 0) return ErrnoToVbError(err, path);
      bytes.resize(used);
      return bytes;
    }
    used += static_cast<size_t>(got);
  }
}

rt::Status PosixFileSystem::WriteBytes(const std::string& path, std::string_view bytes, int openFlags) {
  rt::Result<Item> item = Resolve(path);
  if (!item) return item.error();
  if (item->exists && (item->IsFolder() || item->IsReadOnly()))
    return PathError(errnum::kPathFileAccessError, path);
  const int fd = open(item->host.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | openFlags, 0666);
  if (fd < 0) return ErrnoToVbError(errno, path);
  rt::Status status = WriteAll(fd, bytes, path);
  if (close(fd) != 0 && status.ok()) return ErrnoToVbError(errno, path);
  return status;
}

rt::Status PosixFileSystem::WriteFile(const std::string& path, std::string_view bytes) {
  return WriteBytes(path, bytes, O_TRUNC);
}

rt::Status PosixFileSystem::AppendFile(const std::string& path, std::string_view bytes) {
  return WriteBytes(path, bytes, O_APPEND);
}

rt::Status PosixFileSystem::DeleteFile(const std::string& path) {
  rt::Result<Item> item = ResolveExisting(path);
  if (!item) return item.error();
  // Kill only deletes files; a folder of that name is "not found" to it.
  if (item->IsFolder()) return PathError(errnum::kFileNotFound, path);
  if (item->IsReadOnly()) return PathError(errnum::kPathFileAccessError, path);
  if (unlink(item->host.c_str()) != 0) return ErrnoToVbError(errno, path);
  return {};
}

rt::Status PosixFileSystem::RenameReplace(const std::string& from, const std::string& to) {
  rt::Result<Item> source = ResolveExisting(from);
  if (!source) return source.error();
  rt::Result<Item> target = Resolve(to);
  if (!target) return target.error();
  std::string host = target->host;
  if (target->exists) {
    // Renaming a file onto itself in other letter case changes the stored case.
    if (target->IsSameFileAs(*source)) host = JoinHost(target->folderHost, target->requested);
    else if (target->IsFolder()) return PathError(errnum::kPathFileAccessError, to);
    else if (target->IsReadOnly()) return PathError(errnum::kPermissionDenied, to);
  }
  if (const int err = Flush(source->host); err != 0) return ErrnoToVbError(err, from);
  if (rename(source->host.c_str(), host.c_str()) != 0) return ErrnoToVbError(errno, from + " -> " + to);
  return {};
}

rt::Status PosixFileSystem::CopyFile(const std::string& from, const std::string& to, bool failIfExists) {
  rt::Result<Item> source = ResolveExisting(from);
  if (!source) return source.error();
  if (source->IsFolder()) return PathError(errnum::kPathFileAccessError, from);
  rt::Result<Item> target = Resolve(to);
  if (!target) return target.error();
  if (target->exists) {
    if (failIfExists) return PathError(errnum::kFileAlreadyExists, to);
    if (target->IsFolder() || target->IsSameFileAs(*source))
      return PathError(errnum::kPathFileAccessError, to);
    if (target->IsReadOnly()) return PathError(errnum::kPermissionDenied, to);
  }
  // copy_file also carries the mode over, so a read-only source gives a
  // read-only copy, as CopyFile copies the attributes.
  std::error_code ec;
  std::filesystem::copy_file(source->host, target->host, std::filesystem::copy_options::overwrite_existing, ec);
  if (ec) return ErrnoToVbError(ec.value(), from + " -> " + to);
  const timespec times[2] = {{0, UTIME_OMIT}, source->st.st_mtim};
  if (utimensat(AT_FDCWD, target->host.c_str(), times, 0) != 0) return ErrnoToVbError(errno, to);
  return {};
}

rt::Status PosixFileSystem::CopyFileToNew(const std::string& from, const std::string& to) {
  rt::Result<Item> source = ResolveExisting(from);
  if (!source) return source.error();
  if (source->IsFolder()) return PathError(errnum::kPathFileAccessError, from);
  rt::Result<DriveLocation> location = drives_.Split(to);
  if (!location) return location.error();
  if (location->parts.empty() || location->trailingSlash) return PathError(errnum::kPathFileAccessError, to);
  std::vector<std::string> stored;
  rt::Result<std::string> folder = WalkFolders(*location, location->parts.size() - 1, to, stored);
  if (!folder) return folder.error();
  const std::string target = JoinHost(*folder, location->parts.back());
  const int in = open(source->host.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0) return ErrnoToVbError(errno, from);
  // O_EXCL with O_CREAT refuses any entry there, a dangling link included.
  const int out = open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (out < 0) {
    const int err = errno;
    close(in);
    return ErrnoToVbError(err, to);
  }
  rt::Status status = CopyBytes(in, out, from + " -> " + to);
  const timespec times[2] = {{0, UTIME_OMIT}, source->st.st_mtim};
  if (status && (fchmod(out, source->st.st_mode & 07777) != 0 || futimens(out, times) != 0))
    status = ErrnoToVbError(errno, to);
  close(in);
  if (close(out) != 0 && status) status = ErrnoToVbError(errno, to);
  return status;
}

rt::Status PosixFileSystem::CreateDirectory(const std::string& path) {
  rt::Result<Item> item = Resolve(path);
  if (!item) return item.error();
  if (item->exists) return PathError(errnum::kPathFileAccessError, path);
  if (mkdir(item->host.c_str(), 0777) != 0) return ErrnoToVbError(errno, path);
  return {};
}

rt::Status PosixFileSystem::RemoveDirectory(const std::string& path) {
  rt::Result<Item> item = Resolve(path);
  if (!item) return item.error();
  if (!item->exists || !item->IsFolder()) return PathError(errnum::kPathNotFound, path);
  if (rmdir(item->host.c_str()) != 0) return ErrnoToVbError(errno, path);
  return {};
}

rt::Status PosixFileSystem::MakeSureDirectoryPathExists(const std::string& path) {
  rt::Result<DriveLocation> location = drives_.Split(path);
  if (!location) return location.error();
  std::vector<std::string> stored;
  rt::Result<std::string> folder = WalkFolders(*location, 0, path, stored);
  if (!folder) return folder.error();
  std::vector<std::string>& parts = location->parts;
  if (!location->trailingSlash && !parts.empty()) parts.pop_back();  // the file name
  std::string current = *folder;
  for (const std::string& part : parts) {
    const std::optional<std::string> found = FindEntry(current, part);
    const std::string next = JoinHost(current, found.value_or(part));
    if (found && !IsHostFolder(next)) return PathError(errnum::kPathFileAccessError, path);
    if (!found && mkdir(next.c_str(), 0777) != 0 && !(errno == EEXIST && IsHostFolder(next)))
      return ErrnoToVbError(errno, path);
    current = next;
  }
  return {};
}

rt::Result<std::vector<DirEntry>> PosixFileSystem::List(const std::string& pattern) const {
  rt::Result<DriveLocation> location = drives_.Split(pattern);
  if (!location) return location.error();
  std::string namePattern;
  if (!location->trailingSlash && !location->parts.empty()) {
    namePattern = location->parts.back();
    location->parts.pop_back();
  }
  std::vector<std::string> stored;
  rt::Result<std::string> folder = WalkFolders(*location, location->parts.size(), pattern, stored);
  if (!folder) return folder.error();
  std::vector<DirEntry> entries;
  for (std::string& name : ReadFolder(*folder)) {
    if (!rt::WildcardMatch(namePattern, name)) continue;
    struct stat st {};
    const uint32_t attributes =
        stat(JoinHost(*folder, name).c_str(), &st) == 0 ? AttributesOf(st, name) : platform::kAttrArchive;
    entries.push_back(DirEntry{std::move(name), attributes});
  }
  return entries;
}

rt::Result<std::string> PosixFileSystem::GetLongPathName(const std::string& path) const {
  rt::Result<Item> item = ResolveExisting(path);
  if (!item) return item.error();
  return item->windows;
}

}  // namespace sentrune::posix
