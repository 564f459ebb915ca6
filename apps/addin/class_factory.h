#pragma once
// The one class factory of the DLL, for Sentrune.Connect. It lives as long
// as the DLL; a reference to it or a LockServer lock keeps the DLL loaded.
#include "platform/win32/windows_api.h"

#include <unknwn.h>

namespace sentrune::addin {

class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;
};

}  // namespace sentrune::addin
