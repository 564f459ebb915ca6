#include "vbe_variant.h"

#include <utility>

#include "platform/win32/win32_text.h"

namespace sentrune::addin {

Variant::Variant() { VariantInit(&v_); }

Variant::Variant(const std::string& text) : Variant() {
  const std::wstring wide = win32::Widen(text);
  v_.vt = VT_BSTR;
  v_.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

Variant::Variant(bool value) : Variant() {
  v_.vt = VT_BOOL;
  v_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant::Variant(int32_t value) : Variant() {
  v_.vt = VT_I4;
  v_.lVal = value;
}

Variant::Variant(IDispatch* object) : Variant() {
  v_.vt = VT_DISPATCH;
  v_.pdispVal = object;
  if (object != nullptr) object->AddRef();
}

Variant Variant::Missing() {
  Variant missing;
  missing.v_.vt = VT_ERROR;
  missing.v_.scode = DISP_E_PARAMNOTFOUND;
  return missing;
}

Variant Variant::Adopt(VARIANT& owned) {
  Variant taken;
  taken.v_ = owned;
  VariantInit(&owned);
  return taken;
}

Variant::Variant(const Variant& other) : Variant() { VariantCopy(&v_, const_cast<VARIANT*>(&other.v_)); }

Variant::Variant(Variant&& other) noexcept : v_(other.v_) { VariantInit(&other.v_); }

Variant& Variant::operator=(Variant other) noexcept {
  std::swap(v_, other.v_);
  return *this;
}

Variant::~Variant() { VariantClear(&v_); }

rt::Result<Variant> Variant::Changed(VARTYPE type, const std::string& what) const {
  Variant changed;
  const HRESULT hr = VariantChangeType(&changed.v_, const_cast<VARIANT*>(&v_), 0, type);
  if (FAILED(hr)) return rt::MakeError(rt::errnum::kTypeMismatch, what + ": type mismatch");
  return changed;
}

rt::Result<std::string> Variant::ToText(const std::string& what) const {
  rt::Result<Variant> text = Changed(VT_BSTR, what);
  if (!text.ok()) return text.error();
  const BSTR b = text->v_.bstrVal;
  return win32::Narrow(std::wstring_view(b, SysStringLen(b)));
}

rt::Result<bool> Variant::ToBool(const std::string& what) const {
  rt::Result<Variant> value = Changed(VT_BOOL, what);
  if (!value.ok()) return value.error();
  return value->v_.boolVal != VARIANT_FALSE;
}

rt::Result<int32_t> Variant::ToLong(const std::string& what) const {
  rt::Result<Variant> value = Changed(VT_I4, what);
  if (!value.ok()) return value.error();
  return static_cast<int32_t>(value->v_.lVal);
}

rt::Result<ComPtr<IDispatch>> Variant::ToObject(const std::string& what) const {
  switch (v_.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return ComPtr<IDispatch>();
    case VT_DISPATCH:
      return ComPtr<IDispatch>(v_.pdispVal);
    case VT_UNKNOWN:
      if (v_.punkVal == nullptr) return ComPtr<IDispatch>();
      if (ComPtr<IDispatch> object = ComPtr<IUnknown>(v_.punkVal).As<IDispatch>(IID_IDispatch)) return object;
      break;
    default:
      break;
  }
  return rt::MakeError(rt::errnum::kTypeMismatch, what + ": not an object");
}

Variant Dereferenced(const VARIANT& value) {
  Variant copy;
  VariantCopyInd(&copy.get(), const_cast<VARIANT*>(&value));
  return copy;
}

}  // namespace sentrune::addin
