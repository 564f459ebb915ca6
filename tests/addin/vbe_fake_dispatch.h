#pragma once
// Hand-made IDE objects for the late-bound wrappers' tests: an IDispatch
// whose properties are a table and whose calls are recorded, and an event
// source with one connection point.
#include "platform/win32/windows_api.h"

#include <ocidl.h>
#include <olectl.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <string>
#include <vector>

#include "platform/win32/win32_text.h"
#include "vbe_variant.h"

namespace sentrune::addin::testing {

inline std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Reference counting for the fakes, which live on the test's stack: a count
// that must come back to one when every wrapper is gone.
template <class Base>
class Counted : public Base {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  ULONG references = 1;
};

class FakeObject : public Counted<IDispatch> {
 public:
  struct Call {
    std::string member;
    WORD flags;
    std::vector<Variant> args;  // first argument first
  };

  std::map<std::string, Variant> values;      // by lower-case member name
  std::map<std::string, int> lookups;         // GetIDsOfNames calls by name as asked
  std::map<std::string, HRESULT> failures;    // members whose calls fail
  std::vector<Call> calls;
  IUnknown* container = nullptr;              // answers IConnectionPointContainer

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (iid == IID_IConnectionPointContainer && container != nullptr) {
      return container->QueryInterface(iid, object);
    }
    if (iid != IID_IUnknown && iid != IID_IDispatch) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const std::string name = win32::Narrow(names[0]);
    ++lookups[name];
    if (Lower(name) == "nope") return DISP_E_UNKNOWNNAME;
    auto found = std::find(members_.begin(), members_.end(), Lower(name));
    if (found == members_.end()) found = members_.insert(members_.end(), Lower(name));
    *ids = static_cast<DISPID>(found - members_.begin()) + 100;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    const std::string member = members_.at(static_cast<size_t>(id - 100));
    Call call{member, flags, {}};
    for (UINT i = params->cArgs; i-- > 0;) call.args.push_back(Dereferenced(params->rgvarg[i]));
    calls.push_back(call);
    if (const auto failure = failures.find(member); failure != failures.end()) {
      *exception = EXCEPINFO{};
      exception->scode = failure->second;
      exception->bstrDescription = SysAllocString(L"raised by the fake");
      return DISP_E_EXCEPTION;
    }
    if (flags == DISPATCH_PROPERTYPUT) {
      if (params->cNamedArgs != 1 || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT) return E_INVALIDARG;
      values[member] = call.args.back();
      return S_OK;
    }
    if (result != nullptr) VariantCopy(result, &values[member].get());
    return S_OK;
  }

 private:
  std::vector<std::string> members_;
};

// An event source with one connection point for `iid`, which keeps the
// sink it is advised (as the IDE does) until unadvised.
class FakeSource : public Counted<IConnectionPointContainer> {
 public:
  class Point : public Counted<IConnectionPoint> {
   public:
    IID iid{};
    IDispatch* sink = nullptr;
    std::vector<DWORD> unadvised;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
      if (riid != IID_IUnknown && riid != IID_IConnectionPoint) return E_NOINTERFACE;
      *object = this;
      AddRef();
      return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* out) override {
      *out = iid;
      return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* unknown, DWORD* cookie) override {
      // The IDE calls the sink through the event interface it asks for.
      if (FAILED(unknown->QueryInterface(iid, reinterpret_cast<void**>(&sink)))) return CONNECT_E_CANNOTCONNECT;
      *cookie = 42;
      return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
      unadvised.push_back(cookie);
      if (sink != nullptr) sink->Release();
      sink = nullptr;
      return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }
  };
  Point point;

  explicit FakeSource(REFIID iid) { point.iid = iid; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (riid != IID_IUnknown && riid != IID_IConnectionPointContainer) return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid, IConnectionPoint** out) override {
    if (riid != point.iid) return CONNECT_E_NOCONNECTION;
    point.AddRef();
    *out = &point;
    return S_OK;
  }
};

}  // namespace sentrune::addin::testing
