// The four functions the system calls in a COM server DLL, named as it asks
// for them by Sentrune.def.
#include "platform/win32/windows_api.h"

#include <olectl.h>

#include <string>

#include "addin_ids.h"
#include "class_factory.h"
#include "com_guard.h"
#include "module.h"
#include "platform/win32/win32_registry.h"
#include "registration.h"

using namespace sentrune::addin;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(clsid, kClsidConnect)) return CLASS_E_CLASSNOTAVAILABLE;
  static ClassFactory factory;
  return factory.QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow() { return ModuleInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() {
  return Trap([] {
    const std::string path = ModulePath();
    sentrune::win32::Win32Registry registry;
    return !path.empty() && RegisterServer(registry, path).ok() ? S_OK : SELFREG_E_CLASS;
  });
}

STDAPI DllUnregisterServer() {
  return Trap([] {
    sentrune::win32::Win32Registry registry;
    return UnregisterServer(registry).ok() ? S_OK : SELFREG_E_CLASS;
  });
}
