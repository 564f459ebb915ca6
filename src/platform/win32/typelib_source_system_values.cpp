#include "platform/win32/typelib_source_system_values.h"

#include <iterator>

#include "platform/win32/win32_text.h"

namespace sentrune::win32 {

platform::TlbValue ToValue(const VARIANT& value) {
  platform::TlbValue out;
  out.vt = V_VT(&value);
  switch (V_VT(&value)) {
    case VT_I1: out.integer = V_I1(&value); break;
    case VT_I2: out.integer = V_I2(&value); break;
    case VT_BOOL: out.integer = V_BOOL(&value); break;
    case VT_I4: out.integer = V_I4(&value); break;
    case VT_INT: out.integer = V_INT(&value); break;
    case VT_ERROR: out.integer = static_cast<int32_t>(V_ERROR(&value)); break;
    case VT_I8: out.integer = V_I8(&value); break;
    case VT_UI1: out.integer = V_UI1(&value); break;
    case VT_UI2: out.integer = V_UI2(&value); break;
    case VT_UI4: out.integer = V_UI4(&value); break;
    case VT_UINT: out.integer = V_UINT(&value); break;
    case VT_UI8: out.integer = static_cast<int64_t>(V_UI8(&value)); break;
    case VT_CY: out.integer = V_CY(&value).int64; break;
    case VT_R4: out.real = V_R4(&value); break;
    case VT_R8: out.real = V_R8(&value); break;
    case VT_DATE: out.real = V_DATE(&value); break;
    // A VARIANT holds another only by reference: one typed VARIANT (a
    // VARIANT* parameter's null default, as widl stores it) has no value.
    case VT_VARIANT: out.vt = VT_EMPTY; break;
    case VT_BSTR: {
      const BSTR text = V_BSTR(&value);
      out.text = Narrow(std::wstring_view(text, SysStringLen(text)));
      break;
    }
    default: break;
  }
  return out;
}

std::string GuidText(const GUID& guid) {
  wchar_t text[40] = {};
  const int length = StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return length > 0 ? Narrow(std::wstring_view(text, static_cast<size_t>(length - 1))) : std::string();
}

}  // namespace sentrune::win32
