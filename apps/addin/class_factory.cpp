#include "class_factory.h"

#include "connect_object.h"
#include "module.h"

namespace sentrune::addin {

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IClassFactory)) {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  *object = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

// Never deleted: the count is the module's.
ULONG ClassFactory::AddRef() {
  LockModule();
  return 2;
}

ULONG ClassFactory::Release() {
  UnlockModule();
  return 1;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object != nullptr) *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return ConnectObject::Create(iid, object);
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  if (lock) LockModule();
  else UnlockModule();
  return S_OK;
}

}  // namespace sentrune::addin
