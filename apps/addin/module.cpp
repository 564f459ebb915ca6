#include "module.h"

#include "platform/win32/windows_api.h"

#include "platform/win32/win32_env.h"

namespace sentrune::addin {
namespace {

// Changed by any thread that releases an object; read by DllCanUnloadNow.
LONG gLocks = 0;

}  // namespace

void LockModule() { InterlockedIncrement(&gLocks); }

void UnlockModule() { InterlockedDecrement(&gLocks); }

bool ModuleInUse() { return InterlockedCompareExchange(&gLocks, 0, 0) != 0; }

std::string ModulePath() { return win32::OwnModulePath(); }

HMODULE ThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&ThisModule), &module);
  return module;
}

}  // namespace sentrune::addin
