#pragma once
// Notice of files written in folders, through ReadDirectoryChangesW with one
// overlapped read per folder. On Windows the host's paths are Windows paths.
#include "platform/win32/windows_api.h"

#include <memory>
#include <string>
#include <vector>

#include "platform/file_watch.h"
#include "platform/win32/windows_api.h"

namespace sentrune::win32 {

class Win32FileWatch : public platform::FileWatch {
 public:
  // `interrupt`, when given, is an event whose signal ends a Wait at once
  // (the console's Ctrl-C); this object does not own it.
  explicit Win32FileWatch(HANDLE interrupt = nullptr);
  ~Win32FileWatch() override;
  Win32FileWatch(const Win32FileWatch&) = delete;
  Win32FileWatch& operator=(const Win32FileWatch&) = delete;

  // At most 63 folders: one wait covers them all and the interrupt.
  rt::Status AddFolder(const std::string& folder) override;
  rt::Result<std::vector<std::string>> Wait(int timeoutMs) override;

 private:
  struct Folder;
  rt::Status Arm(Folder& folder);
  rt::Status Collect(Folder& folder, std::vector<std::string>& changed);

  HANDLE interrupt_;
  std::vector<std::unique_ptr<Folder>> folders_;
};

}  // namespace sentrune::win32
