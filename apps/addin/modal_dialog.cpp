#include "modal_dialog.h"

#include <algorithm>

#include "com_guard.h"
#include "module.h"
#include "platform/win32/win32_text.h"

namespace sentrune::addin {

INT_PTR ModalDialog::Run(HWND owner, const DialogTemplate& dialog) {
  return DialogBoxIndirectParamW(ThisModule(), dialog.get(), owner, &ModalDialog::Procedure,
                                 reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK ModalDialog::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) SetWindowLongPtrW(dialog, DWLP_USER, lParam);
  auto* self = reinterpret_cast<ModalDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
  // The messages before WM_INITDIALOG are the dialog manager's alone.
  if (self == nullptr) return FALSE;
  INT_PTR result = FALSE;
  const HRESULT trapped = Trap([&] {
    result = self->Handle(dialog, message, wParam, lParam);
    return S_OK;
  });
  if (FAILED(trapped)) {
    EndDialog(dialog, kFailed);
    return TRUE;
  }
  return result;
}

RECT WorkAreaOf(HWND window) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
  return monitor.rcWork;
}

void PlaceOverOwner(HWND dialog, SIZE size) {
  const RECT work = WorkAreaOf(dialog);
  size.cx = std::min(size.cx, work.right - work.left);
  size.cy = std::min(size.cy, work.bottom - work.top);
  RECT over = work;
  const HWND owner = GetWindow(dialog, GW_OWNER);
  if (owner != nullptr && IsWindowVisible(owner)) GetWindowRect(owner, &over);
  LONG x = over.left + (over.right - over.left - size.cx) / 2;
  LONG y = over.top + (over.bottom - over.top - size.cy) / 2;
  x = std::clamp(x, work.left, work.right - size.cx);
  y = std::clamp(y, work.top, work.bottom - size.cy);
  SetWindowPos(dialog, nullptr, x, y, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

RECT DialogPixels(HWND dialog, int x, int y, int width, int height) {
  RECT rect{x, y, x + width, y + height};
  MapDialogRect(dialog, &rect);
  return rect;
}

std::wstring EditText(const std::string& text) {
  const std::wstring wide = win32::Widen(text);
  std::wstring shown;
  shown.reserve(wide.size() + wide.size() / 32);
  for (size_t i = 0; i < wide.size(); ++i) {
    if (wide[i] == L'\n' && (i == 0 || wide[i - 1] != L'\r')) shown += L'\r';
    shown += wide[i];
  }
  return shown;
}

}  // namespace sentrune::addin
