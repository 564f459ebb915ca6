#include "platform/win32/typelib_source_system.h"

#include "platform/win32/windows_api.h"

#include <oleauto.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>

#include "platform/win32/typelib_source_system_com.h"
#include "platform/win32/typelib_source_system_walk.h"
#include "platform/win32/win32_errors.h"
#include "platform/win32/win32_text.h"

namespace sentrune::win32 {
namespace {

// COM for the length of one load: joined when the thread has no apartment
// yet, left alone when it has one of either kind.
class ComApartment {
 public:
  ComApartment() : hr_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
  ~ComApartment() {
    if (SUCCEEDED(hr_)) CoUninitialize();
  }

 private:
  HRESULT hr_;
};

bool IsFile(const std::string& path, DWORD& error) {
  const DWORD attributes = GetFileAttributesW(LongPath(path).c_str());
  error = attributes == INVALID_FILE_ATTRIBUTES ? GetLastError() : ERROR_SUCCESS;
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return true;
  error = ERROR_FILE_NOT_FOUND;
  return false;
}

struct LibraryPath {
  std::string file;
  UINT resource = 1;
};

// The file a path names and the TYPELIB resource it selects: the path
// itself, or for "file.dll\3" the text before the number; nothing when
// neither is a file (the error says why).
std::optional<LibraryPath> Locate(const std::string& path, DWORD& error) {
  if (IsFile(path, error)) return LibraryPath{path};
  const size_t slash = path.rfind('\\');
  if (slash == std::string::npos || slash + 1 == path.size() ||
      !std::all_of(path.begin() + static_cast<ptrdiff_t>(slash) + 1, path.end(),
                   [](char c) { return c >= '0' && c <= '9'; })) {
    return std::nullopt;
  }
  DWORD ignored = 0;
  if (!IsFile(path.substr(0, slash), ignored)) return std::nullopt;
  // A number too large for a resource ID saturates and so finds nothing.
  uint64_t resource = 0;
  for (char c : path.substr(slash + 1)) resource = std::min<uint64_t>(resource * 10 + (c - '0'), UINT_MAX);
  return LibraryPath{path.substr(0, slash), static_cast<UINT>(resource)};
}

bool StartsWithLibraryMagic(const std::string& file) {
  const HANDLE handle = CreateFileW(LongPath(file).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  char magic[4] = {};
  DWORD read = 0;
  const bool whole = ReadFile(handle, magic, sizeof magic, &read, nullptr) && read == sizeof magic;
  CloseHandle(handle);
  return whole && (std::memcmp(magic, "MSFT", 4) == 0 || std::memcmp(magic, "SLTG", 4) == 0);
}

// Whether the file holds what the loader reads: a PE image with the selected
// TYPELIB resource, or a bare MSFT or SLTG library. The loader answers
// TYPE_E_CANTLOADLIBRARY both where there is none and where the one there is
// damaged, and only the first means the file is no component.
bool HoldsTypeLibrary(const LibraryPath& target) {
  const HMODULE image = LoadLibraryExW(Widen(target.file).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (image == nullptr) return StartsWithLibraryMagic(target.file);
  const bool found = target.resource <= 0xFFFF &&
                     FindResourceW(image, MAKEINTRESOURCEW(target.resource), L"TYPELIB") != nullptr;
  FreeLibrary(image);
  return found;
}

std::string HresultText(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

// The failure's HRESULT is its number, as the run time numbers automation
// errors.
rt::VbError CallError(const std::string& file, HRESULT hr, const std::string& what) {
  return rt::MakeError(static_cast<int32_t>(hr), file + ": " + what + " failed (HRESULT " + HresultText(hr) +
                                                     ": " + SystemMessage(static_cast<uint32_t>(hr)) + ")");
}

}  // namespace

rt::Result<platform::TlbLibrary> SystemTypeLibSource::Load(const std::string& path) {
  DWORD error = ERROR_SUCCESS;
  const std::optional<LibraryPath> target = Locate(path, error);
  if (!target) return Win32ToVbError(error, path, rt::errnum::kFileNotFound);
  const ComApartment apartment;
  ComRef<ITypeLib> library;
  const HRESULT hr = LoadTypeLibEx(Widen(path).c_str(), REGKIND_NONE, library.Put());
  if (FAILED(hr)) {
    rt::VbError failure = CallError(target->file, hr, "LoadTypeLibEx");
    if (!HoldsTypeLibrary(*target)) failure.number = rt::errnum::kNotATypeLibrary;
    return failure;
  }
  try {
    return ReadLoadedLibrary(*library);
  } catch (const TypeLibCallError& failure) {
    return CallError(target->file, failure.hr(), failure.what());
  }
}

}  // namespace sentrune::win32
