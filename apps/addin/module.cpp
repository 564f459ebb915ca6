#include "module.h"

#include "platform/win32/windows_api.h"

#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

// Changed by any thread that releases an object; read by DllCanUnloadNow.
LONG gLocks = 0;

}  // namespace

void LockModule() { InterlockedIncrement(&gLocks); }

void UnlockModule() { InterlockedDecrement(&gLocks); }

bool ModuleInUse() { return InterlockedCompareExchange(&gLocks, 0, 0) != 0; }

std::string ModulePath() {
  // The module that holds this very function is the DLL.
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCWSTR>(&ModulePath), &module))
    return {};
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return win32::StripLongPrefix(path);
    }
    path.resize(path.size() * 2);  // cut short: try a larger buffer
  }
}

}  // namespace sentrune::addin
