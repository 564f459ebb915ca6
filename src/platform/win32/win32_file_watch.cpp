#include "platform/win32/win32_file_watch.h"

#include <algorithm>

#include "platform/win32/win32_errors.h"
#include "platform/win32/win32_text.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::win32 {

// A save in progress shows up as writes and size changes; the file name
// changes catch the rename that many editors end a save with.
constexpr DWORD kFilter = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE;

struct Win32FileWatch::Folder {
  std::string path;
  HANDLE handle = INVALID_HANDLE_VALUE;
  HANDLE event = nullptr;
  OVERLAPPED overlapped{};
  // DWORD-aligned, as the notification records require.
  std::vector<DWORD> buffer = std::vector<DWORD>(16 * 1024);

  ~Folder() {
    if (handle != INVALID_HANDLE_VALUE) {
      CancelIo(handle);
      DWORD ignored = 0;
      GetOverlappedResult(handle, &overlapped, &ignored, TRUE);
      CloseHandle(handle);
    }
    if (event) CloseHandle(event);
  }
};

Win32FileWatch::Win32FileWatch(HANDLE interrupt) : interrupt_(interrupt) {}

Win32FileWatch::~Win32FileWatch() = default;

rt::Status Win32FileWatch::AddFolder(const std::string& folder) {
  for (const auto& watched : folders_) {
    if (rt::LCase(watched->path) == rt::LCase(folder)) return {};
  }
  if (folders_.size() >= MAXIMUM_WAIT_OBJECTS - 1) {
    return rt::MakeError(rt::errnum::kPathNotFound, "cannot watch the folder '" + folder + "': at most " +
                                                        std::to_string(MAXIMUM_WAIT_OBJECTS - 1) +
                                                        " folders are watched at once");
  }
  auto watched = std::make_unique<Folder>();
  watched->path = folder;
  watched->handle = CreateFileW(LongPath(folder).c_str(), FILE_LIST_DIRECTORY,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
  if (watched->handle == INVALID_HANDLE_VALUE) {
    const rt::VbError error = LastError(folder);
    return rt::MakeError(rt::errnum::kPathNotFound, "cannot watch the folder: " + error.description);
  }
  watched->event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  watched->overlapped.hEvent = watched->event;
  if (rt::Status armed = Arm(*watched); !armed.ok()) return armed;
  folders_.push_back(std::move(watched));
  return {};
}

rt::Status Win32FileWatch::Arm(Folder& folder) {
  ResetEvent(folder.event);
  const DWORD bytes = static_cast<DWORD>(folder.buffer.size() * sizeof(DWORD));
  if (!ReadDirectoryChangesW(folder.handle, folder.buffer.data(), bytes, FALSE, kFilter, nullptr,
                             &folder.overlapped, nullptr)) {
    const rt::VbError error = LastError(folder.path);
    return rt::MakeError(rt::errnum::kPathNotFound, "cannot watch the folder: " + error.description);
  }
  return {};
}

// The files the finished read reports, each once; then the next read.
rt::Status Win32FileWatch::Collect(Folder& folder, std::vector<std::string>& changed) {
  DWORD length = 0;
  if (GetOverlappedResult(folder.handle, &folder.overlapped, &length, FALSE) && length > 0) {
    const auto* bytes = reinterpret_cast<const char*>(folder.buffer.data());
    for (DWORD at = 0;;) {
      const auto* record = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(bytes + at);
      if (record->Action != FILE_ACTION_REMOVED && record->Action != FILE_ACTION_RENAMED_OLD_NAME) {
        const std::wstring name(record->FileName, record->FileNameLength / sizeof(wchar_t));
        std::string path = rt::AddBackslash(folder.path) + Narrow(name);
        const DWORD attributes = GetFileAttributesW(LongPath(path).c_str());
        const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
        if (!isFolder && std::find(changed.begin(), changed.end(), path) == changed.end())
          changed.push_back(std::move(path));
      }
      if (record->NextEntryOffset == 0) break;
      at += record->NextEntryOffset;
    }
  }
  return Arm(folder);
}

rt::Result<std::vector<std::string>> Win32FileWatch::Wait(int timeoutMs) {
  std::vector<HANDLE> handles;
  for (const auto& folder : folders_) handles.push_back(folder->event);
  if (interrupt_) handles.push_back(interrupt_);
  std::vector<std::string> changed;
  if (handles.empty()) {
    Sleep(static_cast<DWORD>(timeoutMs));
    return changed;
  }
  const DWORD count = static_cast<DWORD>(handles.size());
  DWORD wait = timeoutMs < 0 ? INFINITE : static_cast<DWORD>(timeoutMs);
  // The first wake waits; the rounds after it only gather what else is done.
  for (;;) {
    const DWORD woke = WaitForMultipleObjects(count, handles.data(), FALSE, wait);
    if (woke == WAIT_FAILED) return LastError("waiting for file changes");
    if (woke == WAIT_TIMEOUT) return changed;
    const DWORD index = woke - WAIT_OBJECT_0;
    if (index >= folders_.size()) return changed;  // interrupted
    if (rt::Status collected = Collect(*folders_[index], changed); !collected.ok()) return collected.error();
    wait = 0;
  }
}

}  // namespace sentrune::win32
