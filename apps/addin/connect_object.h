#pragma once
// Sentrune.Connect, the object the IDE creates: IUnknown, IDispatch and the
// two connection interfaces, all dual, over one AddinCore made with it.
// OnConnection hands the core the IDE's application object, OnDisconnection
// takes it back; the other notifications have nothing to do.
#include <memory>

#include "addin_core.h"
#include "extensibility.h"

namespace sentrune::addin {

class ConnectObject final : public IDTExtensibility2, public IDTExtensibility {
 public:
  // IClassFactory::CreateInstance: a new object, asked for `iid`.
  static HRESULT Create(REFIID iid, void** object);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

  HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, ConnectMode mode, IDispatch* addInInst,
                                         SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnDisconnection(DisconnectMode mode, SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) override;

 private:
  ConnectObject();
  ~ConnectObject();

  LONG references_ = 1;
  std::unique_ptr<AddinCore> core_;
};

}  // namespace sentrune::addin
