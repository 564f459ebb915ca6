#include "platform/win32/win32_text.h"

#include "platform/win32/windows_api.h"

namespace sentrune::win32 {

std::wstring Widen(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int size = static_cast<int>(utf8.size());
  const int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
  std::wstring wide(static_cast<size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), n);
  return wide;
}

std::string Narrow(std::wstring_view wide) {
  if (wide.empty()) return {};
  const int size = static_cast<int>(wide.size());
  const int n = WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), n, nullptr, nullptr);
  return utf8;
}

std::wstring LongPath(std::string_view utf8Path) {
  std::wstring wide = Widen(utf8Path);
  if (wide.rfind(L"\\\\?\\", 0) == 0) return wide;
  if (const DWORD size = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr); size != 0) {
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(wide.c_str(), size, full.data(), nullptr));
    wide = std::move(full);
  }
  if (wide.size() >= 3 && wide[1] == L':' && wide[2] == L'\\') return L"\\\\?\\" + wide;
  if (wide.rfind(L"\\\\", 0) == 0) return L"\\\\?\\UNC\\" + wide.substr(2);
  return wide;
}

std::string StripLongPrefix(std::wstring_view widePath) {
  if (widePath.rfind(L"\\\\?\\UNC\\", 0) == 0) return "\\\\" + Narrow(widePath.substr(8));
  if (widePath.rfind(L"\\\\?\\", 0) == 0) return Narrow(widePath.substr(4));
  return Narrow(widePath);
}

}  // namespace sentrune::win32
