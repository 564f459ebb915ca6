#include "vbe_com_error.h"

#include <cstdio>

#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

std::string SystemText(HRESULT hr) {
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      static_cast<DWORD>(hr), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::wstring message(text != nullptr ? text : L"", length);
  LocalFree(text);
  while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r' || message.back() == L' ')) {
    message.pop_back();
  }
  char code[16];
  std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(hr));
  return message.empty() ? std::string("COM error ") + code : win32::Narrow(message) + " (" + code + ")";
}

std::string Take(BSTR& text) {
  std::string utf8 = text != nullptr ? win32::Narrow(std::wstring_view(text, SysStringLen(text))) : "";
  SysFreeString(text);
  text = nullptr;
  return utf8;
}

}  // namespace

rt::VbError ComError(HRESULT hr, const std::string& member, EXCEPINFO* exception) {
  std::string description;
  std::string source;
  if (hr == DISP_E_EXCEPTION && exception != nullptr) {
    if (exception->pfnDeferredFillIn != nullptr) exception->pfnDeferredFillIn(exception);
    description = Take(exception->bstrDescription);
    source = Take(exception->bstrSource);
    Take(exception->bstrHelpFile);
    hr = exception->scode != 0 ? exception->scode : static_cast<HRESULT>(0x800A0000L | exception->wCode);
  }
  if (description.empty()) description = SystemText(hr);
  // The IDE raises its own run-time errors in FACILITY_CONTROL, numbered as VB numbers them.
  const int32_t number = HRESULT_FACILITY(hr) == FACILITY_CONTROL ? HRESULT_CODE(hr) : static_cast<int32_t>(hr);
  return rt::MakeError(number, member + ": " + description, source);
}

}  // namespace sentrune::addin
