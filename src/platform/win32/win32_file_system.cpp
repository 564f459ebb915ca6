#include "platform/win32/win32_file_system.h"

#include "platform/win32/windows_api.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/win32/win32_clock.h"
#include "platform/win32/win32_errors.h"
#include "platform/win32/win32_text.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::win32 {

namespace errnum = rt::errnum;
using platform::DirEntry;

namespace {

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

struct FindCloser {
  void operator()(HANDLE handle) const { FindClose(handle); }
};
using FindHandle = std::unique_ptr<void, FindCloser>;

// A refusal of the run time's own making, where the system has no error to
// report (or would report another).
rt::VbError PathError(int32_t number, const std::string& path) {
  return rt::MakeError(number, rt::DescribeError(number) + ": " + path);
}

// A path as the caller gave it and as the system takes it.
struct Path {
  std::string text;  // for messages
  rt::WinPath parsed;
  std::wstring wide;
};

std::wstring Wide(const rt::WinPath& path) { return LongPath(rt::JoinWinPath(path)); }

rt::Result<Path> Check(const std::string& path) {
  std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
  if (!parsed) return PathError(errnum::kBadFileNameOrNumber, path);
  // Without this the system reports a missing drive as a missing file.
  if (parsed->root.size() == 2 && GetDriveTypeW(Widen(parsed->root + "\\").c_str()) == DRIVE_NO_ROOT_DIR)
    return PathError(errnum::kDiskNotReady, path);
  std::wstring wide = Wide(*parsed);
  return Path{path, std::move(*parsed), std::move(wide)};
}

// The attributes of an existing item; nothing when it is missing or cannot
// be looked at, which the operation that follows then reports.
std::optional<DWORD> Attributes(const std::wstring& wide) {
  const DWORD attributes = GetFileAttributesW(wide.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return attributes;
}

rt::Result<WIN32_FILE_ATTRIBUTE_DATA> Stat(const Path& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(path.wide.c_str(), GetFileExInfoStandard, &data)) return LastError(path.text);
  return data;
}

bool IsFolder(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
bool IsReadOnlyFile(DWORD attributes) { return !IsFolder(attributes) && (attributes & FILE_ATTRIBUTE_READONLY); }

uint32_t Reported(DWORD attributes) {
  constexpr uint32_t kKept = platform::kAttrReadOnly | platform::kAttrHidden | platform::kAttrSystem |
                             platform::kAttrDirectory | platform::kAttrArchive | platform::kAttrReparsePoint;
  uint32_t reported = attributes & kKept;
  if (!IsFolder(attributes)) reported |= platform::kAttrArchive;
  return reported;
}

// The bits of `attributes` SetFileAttributesW takes; none is "normal".
DWORD Settable(uint32_t attributes) {
  constexpr uint32_t kSettable =
      platform::kAttrReadOnly | platform::kAttrHidden | platform::kAttrSystem | platform::kAttrArchive;
  const DWORD bits = attributes & kSettable;
  return bits != 0 ? bits : FILE_ATTRIBUTE_NORMAL;
}

Handle Open(const Path& path, DWORD access, DWORD share, DWORD disposition, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
  const HANDLE handle = CreateFileW(path.wide.c_str(), access, share, nullptr, disposition, flags, nullptr);
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

// The 8.3 alias of each entry is not wanted (FindExInfoBasic); a name given
// as an alias still finds its entry.
FindHandle FindFirst(const std::wstring& pattern, WIN32_FIND_DATAW& data, DWORD flags) {
  const HANDLE find = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &data, FindExSearchNameMatch, nullptr, flags);
  return FindHandle(find == INVALID_HANDLE_VALUE ? nullptr : find);
}

// The stored name of the last component of an existing item.
std::optional<std::string> StoredName(const std::wstring& wide) {
  WIN32_FIND_DATAW data{};
  if (!FindFirst(wide, data, 0)) return std::nullopt;
  return Narrow(data.cFileName);
}

// Whether two existing paths name one file (other case, an 8.3 alias).
bool SameFile(const Path& a, const Path& b) {
  BY_HANDLE_FILE_INFORMATION infoA{}, infoB{};
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const Handle handleA = Open(a, FILE_READ_ATTRIBUTES, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  const Handle handleB = Open(b, FILE_READ_ATTRIBUTES, kShareAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  return handleA && handleB && GetFileInformationByHandle(handleA.get(), &infoA) &&
         GetFileInformationByHandle(handleB.get(), &infoB) &&
         infoA.dwVolumeSerialNumber == infoB.dwVolumeSerialNumber &&
         infoA.nFileIndexHigh == infoB.nFileIndexHigh && infoA.nFileIndexLow == infoB.nFileIndexLow;
}

rt::Status WriteAll(HANDLE file, std::string_view bytes, const std::string& path) {
  constexpr size_t kChunk = size_t{1} << 20;
  while (!bytes.empty()) {
    const DWORD size = static_cast<DWORD>(std::min(bytes.size(), kChunk));
    DWORD written = 0;
    if (!::WriteFile(file, bytes.data(), size, &written, nullptr)) return LastError(path);
    bytes.remove_prefix(written);
  }
  return {};
}

// Renames a file onto itself, which changes the case of its stored name.
// Wine keeps the stored name there, so if it is unchanged afterwards the new
// case is made by a detour through a name of this process's own.
rt::Status RenameInPlace(const Path& source, const Path& target) {
  const std::string both = source.text + " -> " + target.text;
  if (!MoveFileExW(source.wide.c_str(), target.wide.c_str(), MOVEFILE_WRITE_THROUGH)) return LastError(both);
  if (target.parsed.parts.empty() || StoredName(target.wide) == target.parsed.parts.back()) return {};
  rt::WinPath detour = target.parsed;
  detour.parts.back() += ".rename-" + std::to_string(GetCurrentProcessId());
  const std::wstring detourWide = Wide(detour);
  if (!MoveFileExW(source.wide.c_str(), detourWide.c_str(), MOVEFILE_WRITE_THROUGH)) return LastError(both);
  if (MoveFileExW(detourWide.c_str(), target.wide.c_str(), MOVEFILE_WRITE_THROUGH)) return {};
  const DWORD error = GetLastError();
  MoveFileExW(detourWide.c_str(), source.wide.c_str(), MOVEFILE_WRITE_THROUGH);
  return Win32ToVbError(error, both);
}

// Puts a file's bytes on the disk before it is renamed into place, so that
// a power loss leaves the old file or the new one, never an empty one.
// Flushing needs write access, which a read-only file lends for the moment.
rt::Status Flush(const Path& file, DWORD attributes) {
  if (IsFolder(attributes)) return {};
  const bool readOnly = IsReadOnlyFile(attributes);
  if (readOnly && !SetFileAttributesW(file.wide.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}))
    return LastError(file.text);
  DWORD error = ERROR_SUCCESS;
  if (const Handle handle = Open(file, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                 OPEN_EXISTING);
      !handle || !FlushFileBuffers(handle.get()))
    error = GetLastError();
  if (readOnly) (void)SetFileAttributesW(file.wide.c_str(), attributes);
  return error == ERROR_SUCCESS ? rt::Status{} : rt::Status{Win32ToVbError(error, file.text)};
}

}  // namespace

rt::Result<uint32_t> Win32FileSystem::GetAttributes(const std::string& path) const {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  rt::Result<WIN32_FILE_ATTRIBUTE_DATA> data = Stat(*item);
  if (!data) return data.error();
  return Reported(data->dwFileAttributes);
}

rt::Status Win32FileSystem::SetAttributes(const std::string& path, uint32_t attributes) {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  if (!SetFileAttributesW(item->wide.c_str(), Settable(attributes))) return LastError(path);
  return {};
}

rt::Result<rt::DateTime> Win32FileSystem::GetLastWriteTime(const std::string& path) const {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  rt::Result<WIN32_FILE_ATTRIBUTE_DATA> data = Stat(*item);
  if (!data) return data.error();
  const FILETIME& time = data->ftLastWriteTime;
  return LocalDateTime((static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
}

rt::Status Win32FileSystem::SetLastWriteTime(const std::string& path, const rt::DateTime& time) {
  const std::optional<uint64_t> stamp = FileTimeOfLocal(time);
  if (!stamp) return PathError(errnum::kInvalidProcedureCall, path);
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  const Handle file = Open(*item, FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  if (!file) return LastError(path);
  const FILETIME written{static_cast<DWORD>(*stamp & 0xFFFFFFFFu), static_cast<DWORD>(*stamp >> 32)};
  if (!SetFileTime(file.get(), nullptr, nullptr, &written)) return LastError(path);
  return {};
}

rt::Result<std::string> Win32FileSystem::ReadFile(const std::string& path) const {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  rt::Result<WIN32_FILE_ATTRIBUTE_DATA> data = Stat(*item);
  if (!data) return data.error();
  if (IsFolder(data->dwFileAttributes)) return PathError(errnum::kPathFileAccessError, path);
  const Handle file = Open(*item, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
  if (!file) return LastError(path);
  // Read to the end rather than to the size looked up before, which a
  // writer may have changed since.
  std::string bytes;
  bytes.reserve(data->nFileSizeHigh == 0 ? data->nFileSizeLow : 0);
  char buffer[65536];
  for (;;) {
    DWORD got = 0;
    if (!::ReadFile(file.get(), buffer, sizeof buffer, &got, nullptr)) return LastError(path);
    if (got == 0) return bytes;
    bytes.append(buffer, got);
  }
}

rt::Status Win32FileSystem::WriteBytes(const std::string& path, std::string_view bytes, bool append) {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  const std::optional<DWORD> attributes = Attributes(item->wide);
  if (attributes && (IsFolder(*attributes) || IsReadOnlyFile(*attributes)))
    return PathError(errnum::kPathFileAccessError, path);
  const Handle file = Open(*item, append ? FILE_APPEND_DATA : GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS);
  if (!file) return LastError(path);
  if (!append && !SetEndOfFile(file.get())) return LastError(path);
  return WriteAll(file.get(), bytes, path);
}

rt::Status Win32FileSystem::WriteFile(const std::string& path, std::string_view bytes) {
  return WriteBytes(path, bytes, false);
}

rt::Status Win32FileSystem::AppendFile(const std::string& path, std::string_view bytes) {
  return WriteBytes(path, bytes, true);
}

rt::Status Win32FileSystem::DeleteFile(const std::string& path) {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  rt::Result<WIN32_FILE_ATTRIBUTE_DATA> data = Stat(*item);
  if (!data) return data.error();
  // Kill only deletes files; a folder of that name is "not found" to it.
  if (IsFolder(data->dwFileAttributes)) return PathError(errnum::kFileNotFound, path);
  if (IsReadOnlyFile(data->dwFileAttributes)) return PathError(errnum::kPathFileAccessError, path);
  if (!DeleteFileW(item->wide.c_str())) return LastError(path);
  return {};
}

rt::Status Win32FileSystem::RenameReplace(const std::string& from, const std::string& to) {
  rt::Result<Path> source = Check(from);
  if (!source) return source.error();
  rt::Result<Path> target = Check(to);
  if (!target) return target.error();
  rt::Result<WIN32_FILE_ATTRIBUTE_DATA> data = Stat(*source);
  if (!data) return data.error();
  const std::optional<DWORD> existing = Attributes(target->wide);
  if (existing && SameFile(*source, *target)) return RenameInPlace(*source, *target);
  std::wstring destination = target->wide;
  if (existing) {
    if (IsFolder(*existing)) return PathError(errnum::kPathFileAccessError, to);
    if (IsReadOnlyFile(*existing)) return PathError(errnum::kPermissionDenied, to);
    // The replaced file's stored name stays, whatever case `to` is in.
    if (const std::optional<std::string> stored = StoredName(target->wide); stored && !target->parsed.parts.empty()) {
      rt::WinPath renamed = target->parsed;
      renamed.parts.back() = *stored;
      destination = Wide(renamed);
    }
  }
  if (rt::Status flushed = Flush(*source, data->dwFileAttributes); !flushed) return flushed;
  if (!MoveFileExW(source->wide.c_str(), destination.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    return LastError(from + " -> " + to);
  return {};
}

rt::Status Win32FileSystem::CopyFile(const std::string& from, const std::string& to, bool failIfExists) {
  rt::Result<Path> source = Check(from);
  if (!source) return source.error();
  rt::Result<Path> target = Check(to);
  if (!target) return target.error();
  rt::Result<WIN32_FILE_ATTRIBUTE_DATA> data = Stat(*source);
  if (!data) return data.error();
  if (IsFolder(data->dwFileAttributes)) return PathError(errnum::kPathFileAccessError, from);
  if (const std::optional<DWORD> existing = Attributes(target->wide)) {
    if (failIfExists) return PathError(errnum::kFileAlreadyExists, to);
    if (IsFolder(*existing) || SameFile(*source, *target)) return PathError(errnum::kPathFileAccessError, to);
    if (IsReadOnlyFile(*existing)) return PathError(errnum::kPermissionDenied, to);
  }
  // CopyFileW carries the last-write time over, and the attributes too,
  // except under Wine onto an existing file: those are set here.
  if (!CopyFileW(source->wide.c_str(), target->wide.c_str(), failIfExists)) return LastError(from + " -> " + to);
  if (!SetFileAttributesW(target->wide.c_str(), Settable(data->dwFileAttributes))) return LastError(to);
  return {};
}

// Windows finds names in any letter case itself, and CopyFileW refuses a
// link at the target when told to fail on an existing one.
rt::Status Win32FileSystem::CopyFileToNew(const std::string& from, const std::string& to) {
  return CopyFile(from, to, true);
}

rt::Status Win32FileSystem::CreateDirectory(const std::string& path) {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  if (Attributes(item->wide)) return PathError(errnum::kPathFileAccessError, path);
  if (!CreateDirectoryW(item->wide.c_str(), nullptr)) return LastError(path);
  return {};
}

rt::Status Win32FileSystem::RemoveDirectory(const std::string& path) {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  const std::optional<DWORD> attributes = Attributes(item->wide);
  if (!attributes) return Win32ToVbError(GetLastError(), path, errnum::kPathNotFound);
  if (!IsFolder(*attributes)) return PathError(errnum::kPathNotFound, path);
  if (!RemoveDirectoryW(item->wide.c_str())) return LastError(path);
  return {};
}

rt::Status Win32FileSystem::MakeSureDirectoryPathExists(const std::string& path) {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  std::vector<std::string> parts = item->parsed.parts;
  if (!item->parsed.trailingSlash && !parts.empty()) parts.pop_back();  // the file name
  rt::WinPath folder{item->parsed.root, {}, false};
  for (std::string& part : parts) {
    folder.parts.push_back(std::move(part));
    const std::wstring wide = Wide(folder);
    if (const std::optional<DWORD> attributes = Attributes(wide)) {
      if (!IsFolder(*attributes)) return PathError(errnum::kPathFileAccessError, path);
      continue;
    }
    if (CreateDirectoryW(wide.c_str(), nullptr)) continue;
    // Someone else may have made it meanwhile.
    const DWORD error = GetLastError();
    const std::optional<DWORD> made = Attributes(wide);
    if (!made || !IsFolder(*made)) return Win32ToVbError(error, path);
  }
  return {};
}

rt::Result<std::vector<DirEntry>> Win32FileSystem::List(const std::string& pattern) const {
  rt::Result<Path> item = Check(pattern);
  if (!item) return item.error();
  rt::WinPath folder = item->parsed;
  std::string namePattern;
  if (!folder.trailingSlash && !folder.parts.empty()) {
    namePattern = std::move(folder.parts.back());
    folder.parts.pop_back();
  }
  folder.trailingSlash = true;
  const std::wstring folderWide = Wide(folder);
  const std::optional<DWORD> attributes = Attributes(folderWide);
  if (!attributes) return Win32ToVbError(GetLastError(), pattern, errnum::kPathNotFound);
  if (!IsFolder(*attributes)) return PathError(errnum::kPathNotFound, pattern);

  std::vector<DirEntry> entries;
  WIN32_FIND_DATAW data{};
  const FindHandle find = FindFirst(folderWide + L"*", data, FIND_FIRST_EX_LARGE_FETCH);
  if (!find) {
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES) return entries;
    return Win32ToVbError(error, pattern);
  }
  do {
    std::string name = Narrow(data.cFileName);
    if (name != "." && name != ".." && rt::WildcardMatch(namePattern, name))
      entries.push_back(DirEntry{std::move(name), Reported(data.dwFileAttributes)});
  } while (FindNextFileW(find.get(), &data));
  if (GetLastError() != ERROR_NO_MORE_FILES) return LastError(pattern);
  // The order NTFS lists in, whatever the volume's own order is.
  std::sort(entries.begin(), entries.end(), [](const DirEntry& a, const DirEntry& b) {
    return std::pair(rt::UCase(a.name), a.name) < std::pair(rt::UCase(b.name), b.name);
  });
  return entries;
}

rt::Result<std::string> Win32FileSystem::GetLongPathName(const std::string& path) const {
  rt::Result<Path> item = Check(path);
  if (!item) return item.error();
  if (!Attributes(item->wide)) return LastError(path);
  // GetLongPathNameW only expands 8.3 aliases and keeps the case it is
  // given, so each component is looked up in its folder instead.
  rt::WinPath stored{item->parsed.root, {}, item->parsed.trailingSlash};
  for (const std::string& part : item->parsed.parts) {
    stored.parts.push_back(part);
    const std::optional<std::string> name = StoredName(Wide(rt::WinPath{stored.root, stored.parts, false}));
    if (!name) return LastError(path);
    stored.parts.back() = *name;
  }
  return rt::JoinWinPath(stored);
}

}  // namespace sentrune::win32
