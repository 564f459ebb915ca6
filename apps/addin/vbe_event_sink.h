#pragma once
// The COM object a connection point calls: it answers for one event
// dispinterface (and IDispatch and IUnknown) and hands each event's DISPID
// and arguments to a handler. The IDE may hold it after the subscription
// ends; Detach makes it deaf from then on.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <functional>

#include "vbe_event_args.h"

namespace sentrune::addin {

class EventSink final : public IDispatch {
 public:
  using Handler = std::function<void(DISPID, EventArgs&)>;

  // Created with one reference, the caller's.
  EventSink(REFIID events, Handler handler) : events_(events), handler_(std::move(handler)) {}
  void Detach() { handler_ = nullptr; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

 private:
  ~EventSink() = default;

  IID events_;
  Handler handler_;
  ULONG references_ = 1;
};

}  // namespace sentrune::addin
