#include "scripted_ide_object.h"

#include <oleauto.h>

#include <algorithm>

namespace sentrune::testing::ide {
namespace {

LONG gLive = 0;

// Answered only by the scripted IDE's own objects, so that an argument the
// add-in passes back can be traced to what it stands for.
const IID kIidScripted = {0x5c1f0b7e, 0x3d2a, 0x4f61, {0x9a, 0x10, 0x6e, 0x21, 0x44, 0x0b, 0x8c, 0x51}};

std::optional<VARIANT> Converted(const Args& args, size_t index, VARTYPE type) {
  if (index >= args.size() || V_VT(args[index]) == VT_ERROR || V_VT(args[index]) == VT_EMPTY) return {};
  VARIANT value;
  VariantInit(&value);
  if (FAILED(VariantChangeType(&value, args[index], 0, type))) return {};
  return value;
}

}  // namespace

LONG LiveObjects() { return gLive; }

ScriptedObject::ScriptedObject(std::vector<Member> members, std::vector<IID> iids)
    : members_(std::move(members)), iids_(std::move(iids)) {
  ++gLive;
}

ScriptedObject::~ScriptedObject() { --gLive; }

ScriptedObject* ScriptedObject::From(IUnknown* object) {
  void* found = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(kIidScripted, &found))) return nullptr;
  // Not AddRef'd: only borrowed by the caller, who holds the object.
  return static_cast<ScriptedObject*>(found);
}

HRESULT ScriptedObject::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(iid, kIidScripted)) {
    *object = this;
    return S_OK;
  }
  const bool ours = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
                    std::any_of(iids_.begin(), iids_.end(), [&](const IID& own) { return IsEqualIID(iid, own); });
  if (ours) {
    AddRef();
    *object = static_cast<IDispatch*>(this);
    return S_OK;
  }
  *object = Interface(iid);
  return *object != nullptr ? S_OK : E_NOINTERFACE;
}

ULONG ScriptedObject::AddRef() { return static_cast<ULONG>(++references_); }

ULONG ScriptedObject::Release() {
  const LONG left = --references_;
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

HRESULT ScriptedObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT ScriptedObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT ScriptedObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  std::fill(ids, ids + count, DISPID_UNKNOWN);  // parameter names are not known
  for (const Member& member : members_) {
    if (CompareStringOrdinal(member.name, -1, names[0], -1, TRUE) == CSTR_EQUAL) {
      ids[0] = member.id;
      return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
    }
  }
  return DISP_E_UNKNOWNNAME;
}

HRESULT ScriptedObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO*,
                               UINT*) {
  Args args;
  if (params != nullptr) {
    for (UINT i = params->cArgs; i > 0; --i) args.push_back(&params->rgvarg[i - 1]);
  }
  if (result != nullptr) VariantInit(result);
  return Call(id, flags, args, result);
}

std::optional<std::wstring> TextArg(const Args& args, size_t index) {
  std::optional<VARIANT> value = Converted(args, index, VT_BSTR);
  if (!value) return {};
  std::wstring text(V_BSTR(&*value), SysStringLen(V_BSTR(&*value)));
  VariantClear(&*value);
  return text;
}

std::optional<LONG> LongArg(const Args& args, size_t index) {
  std::optional<VARIANT> value = Converted(args, index, VT_I4);
  if (!value) return {};
  return V_I4(&*value);
}

std::optional<bool> BoolArg(const Args& args, size_t index) {
  std::optional<VARIANT> value = Converted(args, index, VT_BOOL);
  if (!value) return {};
  return V_BOOL(&*value) != VARIANT_FALSE;
}

ScriptedObject* ObjectArg(const Args& args, size_t index) {
  if (index >= args.size()) return nullptr;
  VARIANT* value = args[index];
  if (V_VT(value) == (VT_BYREF | VT_VARIANT)) value = V_VARIANTREF(value);
  if (V_VT(value) == VT_DISPATCH) return ScriptedObject::From(V_DISPATCH(value));
  if (V_VT(value) == (VT_DISPATCH | VT_BYREF)) return ScriptedObject::From(*V_DISPATCHREF(value));
  if (V_VT(value) == VT_UNKNOWN) return ScriptedObject::From(V_UNKNOWN(value));
  return nullptr;
}

HRESULT ReturnObject(VARIANT* result, ScriptedObject* object) {
  if (result == nullptr) {
    if (object != nullptr) object->Release();
    return S_OK;
  }
  V_VT(result) = VT_DISPATCH;
  V_DISPATCH(result) = object;
  return S_OK;
}

HRESULT ReturnText(VARIANT* result, const std::wstring& text) {
  if (result == nullptr) return S_OK;
  V_VT(result) = VT_BSTR;
  V_BSTR(result) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return S_OK;
}

HRESULT ReturnLong(VARIANT* result, LONG number) {
  if (result == nullptr) return S_OK;
  V_VT(result) = VT_I4;
  V_I4(result) = number;
  return S_OK;
}

HRESULT ReturnBool(VARIANT* result, bool value) {
  if (result == nullptr) return S_OK;
  V_VT(result) = VT_BOOL;
  V_BOOL(result) = value ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

bool IsGet(WORD flags) { return (flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) != 0; }

bool IsPut(WORD flags) { return (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0; }

}  // namespace sentrune::testing::ide
