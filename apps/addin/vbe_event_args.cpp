#include "vbe_event_args.h"

#include "platform/win32/win32_text.h"
#include "vbe_variant.h"

namespace sentrune::addin {
namespace {

BSTR NewBstr(const std::string& text) {
  const std::wstring wide = win32::Widen(text);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::string FromBstr(BSTR text) { return win32::Narrow(std::wstring_view(text, SysStringLen(text))); }

// The array a VT_ARRAY argument holds, by value or through one reference.
SAFEARRAY** ArraySlot(VARIANT& arg) {
  if ((arg.vt & VT_ARRAY) == 0) return nullptr;
  return (arg.vt & VT_BYREF) != 0 ? arg.pparray : &arg.parray;
}

}  // namespace

VARIANT* EventArgs::Raw(UINT index) const {
  if (index >= params_.cArgs) return nullptr;
  return &params_.rgvarg[params_.cArgs - 1 - index];
}

VARIANT* EventArgs::At(UINT index) const {
  VARIANT* inner = Referenced(index);
  return inner != nullptr ? inner : Raw(index);
}

VARIANT* EventArgs::Referenced(UINT index) const {
  VARIANT* arg = Raw(index);
  if (arg == nullptr || arg->vt != (VT_BYREF | VT_VARIANT)) return nullptr;
  return arg->pvarVal;
}

ComPtr<IDispatch> EventArgs::Object(UINT index) const {
  const VARIANT* arg = At(index);
  if (arg == nullptr) return {};
  return Dereferenced(*arg).ToObject("event argument").value_or(ComPtr<IDispatch>());
}

std::string EventArgs::Text(UINT index) const {
  const VARIANT* arg = At(index);
  if (arg == nullptr) return {};
  return Dereferenced(*arg).ToText("event argument").value_or("");
}

int32_t EventArgs::Long(UINT index) const {
  const VARIANT* arg = At(index);
  if (arg == nullptr) return 0;
  return Dereferenced(*arg).ToLong("event argument").value_or(0);
}

bool EventArgs::Bool(UINT index) const {
  const VARIANT* arg = At(index);
  if (arg == nullptr) return false;
  return Dereferenced(*arg).ToBool("event argument").value_or(false);
}

std::vector<std::string> EventArgs::Texts(UINT index) const {
  std::vector<std::string> texts;
  VARIANT* arg = At(index);
  if (arg == nullptr || (arg->vt & VT_TYPEMASK) != VT_BSTR) return texts;
  SAFEARRAY** slot = ArraySlot(*arg);
  if (slot == nullptr || *slot == nullptr || SafeArrayGetDim(*slot) != 1) return texts;
  LONG lower = 0;
  LONG upper = -1;
  SafeArrayGetLBound(*slot, 1, &lower);
  SafeArrayGetUBound(*slot, 1, &upper);
  for (LONG i = lower; i <= upper; ++i) {
    BSTR text = nullptr;
    if (FAILED(SafeArrayGetElement(*slot, &i, &text))) continue;
    texts.push_back(FromBstr(text));
    SysFreeString(text);
  }
  return texts;
}

void EventArgs::SetBool(UINT index, bool value) {
  VARIANT* arg = Raw(index);
  if (arg == nullptr) return;
  const VARIANT_BOOL written = value ? VARIANT_TRUE : VARIANT_FALSE;
  if (arg->vt == (VT_BYREF | VT_BOOL) && arg->pboolVal != nullptr) {
    *arg->pboolVal = written;
  } else if (VARIANT* inner = Referenced(index)) {
    VariantClear(inner);
    inner->vt = VT_BOOL;
    inner->boolVal = written;
  }
}

void EventArgs::SetText(UINT index, const std::string& value) {
  VARIANT* arg = Raw(index);
  if (arg == nullptr) return;
  if (arg->vt == (VT_BYREF | VT_BSTR) && arg->pbstrVal != nullptr) {
    SysFreeString(*arg->pbstrVal);
    *arg->pbstrVal = NewBstr(value);
  } else if (VARIANT* inner = Referenced(index)) {
    VariantClear(inner);
    inner->vt = VT_BSTR;
    inner->bstrVal = NewBstr(value);
  }
}

void EventArgs::SetTexts(UINT index, const std::vector<std::string>& values) {
  VARIANT* arg = Raw(index);
  if (arg == nullptr || arg->vt != (VT_BYREF | VT_ARRAY | VT_BSTR)) return;
  SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(values.size()));
  if (array == nullptr) return;
  for (LONG i = 0; i < static_cast<LONG>(values.size()); ++i) {
    BSTR text = NewBstr(values[static_cast<size_t>(i)]);
    SafeArrayPutElement(array, &i, text);
    SysFreeString(text);
  }
  if (*arg->pparray != nullptr) SafeArrayDestroy(*arg->pparray);
  *arg->pparray = array;
}

}  // namespace sentrune::addin
