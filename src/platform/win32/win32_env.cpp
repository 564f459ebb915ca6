#include "platform/win32/win32_env.h"

#include "platform/win32/windows_api.h"
#include <shlobj.h>
#include <winnetwk.h>

#include <utility>

#include "platform/win32/win32_text.h"
#include "runtime/winpath.h"

namespace sentrune::win32 {

std::string OwnModulePath() {
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCWSTR>(&OwnModulePath), &module))
    return {};
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return StripLongPrefix(path);
    }
    path.resize(path.size() * 2);  // cut short: try a larger buffer
  }
}

Win32Env::Win32Env(Win32EnvOptions options)
    : moduleFolder_(std::move(options.moduleFolder)), moduleName_(std::move(options.moduleName)) {
  const std::string own = moduleFolder_.empty() || moduleName_.empty() ? OwnModulePath() : std::string();
  moduleFolder_ = moduleFolder_.empty() ? rt::GetFolder(own) : rt::AddBackslash(moduleFolder_);
  if (moduleName_.empty()) moduleName_ = rt::StripExtension(rt::GetFileTitle(own));
}

std::string Win32Env::SpecialFolderPath(int folder) {
  wchar_t path[MAX_PATH] = {};
  // S_FALSE: a folder number the system knows, but no such folder here.
  if (SHGetFolderPathW(nullptr, folder, nullptr, SHGFP_TYPE_CURRENT, path) != S_OK) return {};
  std::string text = Narrow(path);
  if (text.size() > 3 && text.back() == '\\') text.pop_back();  // a drive root keeps it
  return text;
}

std::string Win32Env::TempPath() {
  std::wstring path(MAX_PATH + 1, L'\0');
  DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
  if (length >= path.size()) {
    path.resize(length);
    length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
  }
  path.resize(length < path.size() ? length : 0);
  return rt::AddBackslash(Narrow(path));
}

std::optional<std::string> Win32Env::NetworkConnection(const std::string& drive) {
  const std::wstring local = Widen(drive);
  std::wstring remote(MAX_PATH, L'\0');
  DWORD size = static_cast<DWORD>(remote.size());
  DWORD result = WNetGetConnectionW(local.c_str(), remote.data(), &size);
  if (result == ERROR_MORE_DATA) {
    remote.resize(size);
    result = WNetGetConnectionW(local.c_str(), remote.data(), &size);
  }
  if (result != NO_ERROR) return std::nullopt;
  remote.erase(remote.find(L'\0'));
  return Narrow(remote);
}

void Win32Env::DoEvents() {
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace sentrune::win32
