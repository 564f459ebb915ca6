#include "connect_object.h"

#include "addin_ids.h"
#include "com_guard.h"
#include "dispatch.h"
#include "module.h"

namespace sentrune::addin {

ConnectObject::ConnectObject() : core_(std::make_unique<AddinCore>()) { LockModule(); }

ConnectObject::~ConnectObject() { UnlockModule(); }

HRESULT ConnectObject::Create(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return Trap([&] {
    auto* created = new ConnectObject();
    const HRESULT answer = created->QueryInterface(iid, object);
    created->Release();
    return answer;
  });
}

HRESULT ConnectObject::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, kIidDTExtensibility2)) {
    *object = static_cast<IDTExtensibility2*>(this);
  } else if (IsEqualIID(iid, kIidDTExtensibility)) {
    *object = static_cast<IDTExtensibility*>(this);
  } else {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG ConnectObject::AddRef() { return static_cast<ULONG>(InterlockedIncrement(&references_)); }

ULONG ConnectObject::Release() {
  const LONG left = InterlockedDecrement(&references_);
  if (left == 0) {
    // The core's disconnection may fail; its destruction after it may not.
    (void)Trap([&] {
      core_->Disconnect();
      return S_OK;
    });
    delete this;
  }
  return static_cast<ULONG>(left);
}

HRESULT ConnectObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT ConnectObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT ConnectObject::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  return Trap([&] { return ExtensibilityIdsOfNames(iid, names, count, ids); });
}

HRESULT ConnectObject::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                              EXCEPINFO* exception, UINT* argumentError) {
  return Trap([&] {
    return InvokeExtensibility(*this, id, iid, flags, params, result, exception, argumentError);
  });
}

HRESULT ConnectObject::OnConnection(IDispatch* application, ConnectMode, IDispatch*, SAFEARRAY**) {
  if (application == nullptr) return E_INVALIDARG;
  return Trap([&] {
    core_->Connect(application);
    return S_OK;
  });
}

HRESULT ConnectObject::OnDisconnection(DisconnectMode, SAFEARRAY**) {
  return Trap([&] {
    core_->Disconnect();
    return S_OK;
  });
}

HRESULT ConnectObject::OnAddInsUpdate(SAFEARRAY**) { return S_OK; }

HRESULT ConnectObject::OnStartupComplete(SAFEARRAY**) { return S_OK; }

HRESULT ConnectObject::OnBeginShutdown(SAFEARRAY**) { return S_OK; }

}  // namespace sentrune::addin
