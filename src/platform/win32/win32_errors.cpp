#include "platform/win32/win32_errors.h"

#include "platform/win32/windows_api.h"

#include "platform/win32/win32_text.h"

namespace sentrune::win32 {

namespace {

int32_t ToNumber(uint32_t error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND: return rt::errnum::kFileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_BAD_DEV_TYPE:
    case ERROR_DIRECTORY: return rt::errnum::kPathNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT: return rt::errnum::kPermissionDenied;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS: return rt::errnum::kFileAlreadyExists;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return rt::errnum::kDiskFull;
    case ERROR_NOT_READY:
    case ERROR_INVALID_DRIVE: return rt::errnum::kDiskNotReady;
    default: return rt::errnum::kPathFileAccessError;
  }
}

}  // namespace

std::string SystemMessage(uint32_t error) {
  wchar_t* buffer = nullptr;
  const DWORD n = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::wstring text = n != 0 && buffer != nullptr ? std::wstring(buffer, n) : std::wstring();
  LocalFree(buffer);
  while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' ')) {
    text.pop_back();
  }
  return text.empty() ? "unknown error" : Narrow(text);
}

rt::VbError Win32ToVbError(uint32_t error, const std::string& path) {
  return Win32ToVbError(error, path, ToNumber(error));
}

rt::VbError Win32ToVbError(uint32_t error, const std::string& path, int32_t number) {
  return rt::MakeError(number, rt::DescribeError(number) + ": " + path + " (Windows error " +
                                   std::to_string(error) + ": " + SystemMessage(error) + ")");
}

rt::VbError LastError(const std::string& path) { return Win32ToVbError(GetLastError(), path); }

}  // namespace sentrune::win32
