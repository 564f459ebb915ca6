#include "vbe_event_sink.h"

#include "com_guard.h"
#include "vbe_com_ptr.h"

namespace sentrune::addin {

HRESULT EventSink::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_IDispatch || iid == events_) {
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

// The IDE is single-threaded: the count needs no interlocking.
ULONG EventSink::AddRef() { return ++references_; }

ULONG EventSink::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT EventSink::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT EventSink::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

// The IDE calls events by DISPID; names are not offered.
HRESULT EventSink::GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) {
  for (UINT i = 0; i < count && ids != nullptr; ++i) ids[i] = DISPID_UNKNOWN;
  return DISP_E_UNKNOWNNAME;
}

HRESULT EventSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT* result, EXCEPINFO*,
                          UINT*) {
  if (result != nullptr) VariantInit(result);
  if (params == nullptr) return E_POINTER;
  // The handler may end the subscription, and with it the last reference.
  const ComPtr<IDispatch> self(this);
  const Handler handler = handler_;
  if (!handler) return S_OK;
  return Trap([&] {
    EventArgs args(*params);
    handler(id, args);
    return S_OK;
  });
}

}  // namespace sentrune::addin
