#include "platform/win32/win32_profile.h"

#include "platform/win32/windows_api.h"

#include <algorithm>
#include <optional>

#include "platform/win32/win32_text.h"
#include "runtime/text.h"

namespace sentrune::win32 {

namespace {

// Most values fit at once; a longer one is read again with more room.
constexpr DWORD kFirstBuffer = 1024;

std::wstring FullPath(const std::string& path) {
  const std::wstring wide = Widen(path);
  const DWORD needed = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
  if (needed == 0) return wide;
  std::wstring full(needed, L'\0');
  full.resize(GetFullPathNameW(wide.c_str(), needed, full.data(), nullptr));
  return full;
}

// The path in the ANSI code page, when every character survives the trip.
std::optional<std::string> AnsiPath(const std::wstring& wide) {
  const int length = static_cast<int>(wide.size());
  BOOL lost = FALSE;
  const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), length, nullptr, 0,
                                       nullptr, &lost);
  if (size == 0 || lost) return std::nullopt;
  std::string ansi(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), length, ansi.data(), size, nullptr, nullptr);
  return ansi;
}

// The text as the ANSI functions take it, and the same characters for the
// wide ones.
std::string Ansi(const std::string& utf8) { return rt::Utf8ToCp1252(utf8); }
std::wstring Wide(const std::string& utf8) { return Widen(rt::Cp1252ToUtf8(rt::Utf8ToCp1252(utf8))); }

// One call of the read function with room for `capacity` characters,
// the terminator included.
struct Read {
  std::string utf8;
  DWORD count;
};

Read ReadProfile(const std::string& section, const std::string& key, const std::string& defaultValue,
                 DWORD capacity, const std::wstring& file) {
  if (const std::optional<std::string> ansiFile = AnsiPath(file)) {
    std::string buffer(capacity, '\0');
    const DWORD count = GetPrivateProfileStringA(Ansi(section).c_str(), Ansi(key).c_str(),
                                                 Ansi(defaultValue).c_str(), buffer.data(), capacity,
                                                 ansiFile->c_str());
    return {rt::Cp1252ToUtf8(std::string_view(buffer.data(), count)), count};
  }
  std::wstring buffer(capacity, L'\0');
  const DWORD count = GetPrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(),
                                               Wide(defaultValue).c_str(), buffer.data(), capacity,
                                               file.c_str());
  return {Narrow(std::wstring_view(buffer.data(), count)), count};
}

bool WriteProfile(const std::string& section, const std::string& key, const std::string& value,
                  const std::wstring& file) {
  if (const std::optional<std::string> ansiFile = AnsiPath(file)) {
    return WritePrivateProfileStringA(Ansi(section).c_str(), Ansi(key).c_str(), Ansi(value).c_str(),
                                      ansiFile->c_str()) != FALSE;
  }
  return WritePrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(), Wide(value).c_str(),
                                    file.c_str()) != FALSE;
}

// The copy the change is made on: the file's bytes, or nothing when there is
// no file yet. False when the file must not or cannot be replaced.
bool PrepareCopy(const std::wstring& file, const std::wstring& copy) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    if (GetLastError() != ERROR_FILE_NOT_FOUND) return false;
    DeleteFileW(copy.c_str());
    return GetFileAttributesW(copy.c_str()) == INVALID_FILE_ATTRIBUTES;
  }
  if ((attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) return false;
  if (CopyFileW(file.c_str(), copy.c_str(), FALSE)) return true;
  DeleteFileW(copy.c_str());
  return false;
}

}  // namespace

std::string Win32ProfileFiles::GetString(const std::string& section, const std::string& key,
                                         const std::string& defaultValue, uint32_t size,
                                         const std::string& path) {
  if (size == 0) return {};
  const std::wstring file = FullPath(path);
  DWORD capacity = std::min<DWORD>(size, kFirstBuffer);
  for (;;) {
    Read read = ReadProfile(section, key, defaultValue, capacity, file);
    if (read.count + 1 < capacity || capacity == size) return std::move(read.utf8);
    capacity = size - capacity < capacity ? size : 2 * capacity;
  }
}

bool Win32ProfileFiles::WriteString(const std::string& section, const std::string& key,
                                    const std::string& value, const std::string& path) {
  const std::wstring file = FullPath(path);
  const std::wstring copy = file + L".tmp";
  if (!PrepareCopy(file, copy)) return false;
  if (WriteProfile(section, key, value, copy) &&
      MoveFileExW(copy.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    return true;
  }
  DeleteFileW(copy.c_str());
  return false;
}

}  // namespace sentrune::win32
