#include "dispatch.h"

#include <oleauto.h>

#include <optional>

#include "addin_ids.h"
#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

struct Method {
  const wchar_t* name;
  DISPID id;
  UINT arguments;
};

constexpr Method kMethods[] = {
    {L"OnConnection", kDispOnConnection, 4},   {L"OnDisconnection", kDispOnDisconnection, 2},
    {L"OnAddInsUpdate", kDispOnAddInsUpdate, 1}, {L"OnStartupComplete", kDispOnStartupComplete, 1},
    {L"OnBeginShutdown", kDispOnBeginShutdown, 1},
};

const Method* FindMethod(DISPID id) {
  for (const Method& method : kMethods) {
    if (method.id == id) return &method;
  }
  return nullptr;
}

const Method* FindMethod(const wchar_t* name) {
  for (const Method& method : kMethods) {
    if (CompareStringOrdinal(name, -1, method.name, -1, TRUE) == CSTR_EQUAL) return &method;
  }
  return nullptr;
}

// A conversion's result, released when the call is over.
struct HeldVariant {
  HeldVariant() { VariantInit(&value); }
  ~HeldVariant() { VariantClear(&value); }
  HeldVariant(const HeldVariant&) = delete;
  HeldVariant& operator=(const HeldVariant&) = delete;
  VARIANT value;
};

// The arguments of one call by position in the method's own order; the
// first that does not convert is remembered.
class Arguments {
 public:
  explicit Arguments(const DISPPARAMS& params) : params_(params) {}

  IDispatch* Object(UINT position) {
    VARIANT& argument = At(position);
    if (Missing(argument)) return nullptr;
    VARIANT& held = held_[position].value;
    if (SUCCEEDED(VariantChangeType(&held, &argument, 0, VT_DISPATCH))) return V_DISPATCH(&held);
    Fail(position);
    return nullptr;
  }

  LONG Long(UINT position) {
    VARIANT& held = held_[position].value;
    if (SUCCEEDED(VariantChangeType(&held, &At(position), 0, VT_I4))) return V_I4(&held);
    Fail(position);
    return 0;
  }

  SAFEARRAY** Array(UINT position) {
    VARIANT& argument = At(position);
    if ((V_VT(&argument) & VT_ARRAY) != 0)
      return (V_VT(&argument) & VT_BYREF) != 0 ? V_ARRAYREF(&argument) : &V_ARRAY(&argument);
    if (!Missing(argument)) Fail(position);
    return &none_;
  }

  // The failed argument's index in DISPPARAMS (last argument first).
  std::optional<UINT> mismatch() const { return mismatch_; }

 private:
  static bool Missing(const VARIANT& argument) {
    return V_VT(&argument) == VT_EMPTY || V_VT(&argument) == VT_NULL ||
           (V_VT(&argument) == VT_ERROR && V_ERROR(&argument) == DISP_E_PARAMNOTFOUND);
  }
  // A Variant passed by reference stands for the one it points to.
  VARIANT& At(UINT position) {
    VARIANT& argument = params_.rgvarg[params_.cArgs - 1 - position];
    if (V_VT(&argument) == (VT_VARIANT | VT_BYREF) && V_VARIANTREF(&argument) != nullptr)
      return *V_VARIANTREF(&argument);
    return argument;
  }
  void Fail(UINT position) {
    if (!mismatch_) mismatch_ = params_.cArgs - 1 - position;
  }

  const DISPPARAMS& params_;
  HeldVariant held_[4];
  SAFEARRAY* none_ = nullptr;
  std::optional<UINT> mismatch_;
};

HRESULT Call(IDTExtensibility2& target, DISPID id, Arguments& a) {
  switch (id) {
    case kDispOnConnection: {
      IDispatch* application = a.Object(0);
      const auto mode = static_cast<ConnectMode>(a.Long(1));
      IDispatch* addInInst = a.Object(2);
      SAFEARRAY** custom = a.Array(3);
      return a.mismatch() ? DISP_E_TYPEMISMATCH : target.OnConnection(application, mode, addInInst, custom);
    }
    case kDispOnDisconnection: {
      const auto mode = static_cast<DisconnectMode>(a.Long(0));
      SAFEARRAY** custom = a.Array(1);
      return a.mismatch() ? DISP_E_TYPEMISMATCH : target.OnDisconnection(mode, custom);
    }
    default: {
      SAFEARRAY** custom = a.Array(0);
      if (a.mismatch()) return DISP_E_TYPEMISMATCH;
      if (id == kDispOnAddInsUpdate) return target.OnAddInsUpdate(custom);
      if (id == kDispOnStartupComplete) return target.OnStartupComplete(custom);
      return target.OnBeginShutdown(custom);
    }
  }
}

}  // namespace

HRESULT ExtensibilityIdsOfNames(REFIID iid, LPOLESTR* names, UINT count, DISPID* ids) {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (count == 0) return S_OK;
  if (names == nullptr || ids == nullptr) return E_POINTER;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const Method* method = names[0] != nullptr ? FindMethod(names[0]) : nullptr;
  if (method != nullptr) ids[0] = method->id;
  return method != nullptr && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT InvokeExtensibility(IDTExtensibility2& target, DISPID id, REFIID iid, WORD flags, DISPPARAMS* params,
                            VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const Method* method = FindMethod(id);
  if (method == nullptr || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (params == nullptr) return E_INVALIDARG;
  if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
  if (params->cArgs != method->arguments) return DISP_E_BADPARAMCOUNT;
  Arguments arguments(*params);
  const HRESULT called = Call(target, id, arguments);
  if (const std::optional<UINT> bad = arguments.mismatch()) {
    if (argumentError != nullptr) *argumentError = *bad;
    return DISP_E_TYPEMISMATCH;
  }
  if (FAILED(called)) {
    if (exception != nullptr) {
      *exception = EXCEPINFO{};
      exception->bstrSource = SysAllocString(win32::Widen(kProgId).c_str());
      exception->scode = called;
    }
    return DISP_E_EXCEPTION;
  }
  if (result != nullptr) VariantInit(result);
  return S_OK;
}

}  // namespace sentrune::addin
