#include "platform/win32/win32_version_resources.h"

#include "platform/win32/windows_api.h"

#include <vector>

#include "platform/win32/win32_text.h"

namespace sentrune::win32 {

std::optional<platform::FileVersion> Win32VersionResources::FileVersionOf(const std::string& path) {
  const std::wstring wide = Widen(path);
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(wide.c_str(), &ignored);
  if (size == 0) return std::nullopt;
  std::vector<BYTE> block(size);
  if (!GetFileVersionInfoW(wide.c_str(), 0, size, block.data())) return std::nullopt;
  void* fixed = nullptr;
  UINT length = 0;
  if (!VerQueryValueW(block.data(), L"\\", &fixed, &length) || fixed == nullptr ||
      length < sizeof(VS_FIXEDFILEINFO)) {
    return std::nullopt;
  }
  const auto* info = static_cast<const VS_FIXEDFILEINFO*>(fixed);
  return platform::FileVersion{info->dwFileVersionMS, info->dwFileVersionLS};
}

}  // namespace sentrune::win32
