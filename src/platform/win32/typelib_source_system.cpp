#include "platform/win32/typelib_source_system.h"

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <cstdio>
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

// The file a path names: itself, or for "file.dll\3" the text before the
// resource number; nothing when neither is a file (the error says why).
std::optional<std::string> LibraryFile(const std::string& path, DWORD& error) {
  if (IsFile(path, error)) return path;
  const size_t slash = path.rfind('\\');
  if (slash == std::string::npos || slash + 1 == path.size() ||
      !std::all_of(path.begin() + static_cast<ptrdiff_t>(slash) + 1, path.end(),
                   [](char c) { return c >= '0' && c <= '9'; })) {
    return std::nullopt;
  }
  DWORD ignored = 0;
  if (IsFile(path.substr(0, slash), ignored)) return path.substr(0, slash);
  return std::nullopt;
}

std::string HresultText(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

// What the loader answers for a file it finds no type library in: Wine and
// Windows give TYPE_E_CANTLOADLIBRARY for an image without a TYPELIB resource
// or a file that is no library at all; Windows may name the missing resource.
bool HoldsNoTypeLibrary(HRESULT hr) {
  switch (hr) {
    case TYPE_E_CANTLOADLIBRARY:
    case HRESULT_FROM_WIN32(ERROR_RESOURCE_DATA_NOT_FOUND):
    case HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND):
    case HRESULT_FROM_WIN32(ERROR_RESOURCE_NAME_NOT_FOUND):
    case HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT):
      return true;
    default: return false;
  }
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
  const std::optional<std::string> file = LibraryFile(path, error);
  if (!file) return Win32ToVbError(error, path, rt::errnum::kFileNotFound);
  const ComApartment apartment;
  ComRef<ITypeLib> library;
  const HRESULT hr = LoadTypeLibEx(Widen(path).c_str(), REGKIND_NONE, library.Put());
  if (FAILED(hr)) {
    rt::VbError failure = CallError(*file, hr, "LoadTypeLibEx");
    if (HoldsNoTypeLibrary(hr)) failure.number = rt::errnum::kNotATypeLibrary;
    return failure;
  }
  try {
    return ReadLoadedLibrary(*library);
  } catch (const TypeLibCallError& failure) {
    return CallError(*file, failure.hr(), failure.what());
  }
}

}  // namespace sentrune::win32
