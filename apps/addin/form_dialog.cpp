#include "form_dialog.h"

#include <algorithm>

#include "form_content.h"
#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

using Kind = platform::FormView::Kind;

// Dialog units.
constexpr short kMargin = 7, kButtonWidth = 50, kButtonHeight = 14;
constexpr short kSmallestWidth = 160, kSmallestHeight = 90;
constexpr int kFixedPitchPoints = 9;

DialogItem ContentItem(Kind kind) {
  constexpr DWORD common = WS_TABSTOP | WS_HSCROLL | WS_VSCROLL;
  switch (kind) {
    case Kind::kTree:
      return {WC_TREEVIEWW, L"", common | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS,
              form_ids::kContent, 0, 0, 0, 0, WS_EX_CLIENTEDGE};
    case Kind::kGrid:
      return {WC_LISTVIEWW, L"", common | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
              form_ids::kContent, 0, 0, 0, 0, WS_EX_CLIENTEDGE};
    case Kind::kText:
    default:
      return {L"Edit", L"", common | ES_MULTILINE | ES_READONLY | ES_AUTOHSCROLL | ES_AUTOVSCROLL,
              form_ids::kContent, 0, 0, 0, 0, WS_EX_CLIENTEDGE};
  }
}

HFONT FixedPitchFont(HWND window) {
  const HDC dc = GetDC(window);
  const int height = -MulDiv(kFixedPitchPoints, GetDeviceCaps(dc, LOGPIXELSY), 72);
  ReleaseDC(window, dc);
  return CreateFontW(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                     CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, L"Consolas");
}

HFONT BoldFont(HWND window) {
  LOGFONTW font{};
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof font, &font);
  font.lfWeight = FW_BOLD;
  return CreateFontIndirectW(&font);
}

}  // namespace

DialogTemplate FormDialog::Layout() const {
  DialogTemplate dialog(win32::Widen(form_.caption), WS_THICKFRAME, 300, 200);
  dialog.Add(ContentItem(form_.kind));
  dialog.Add({L"Button", L"OK", BS_DEFPUSHBUTTON | WS_TABSTOP, IDOK, 0, 0, kButtonWidth, kButtonHeight});
  return dialog;
}

INT_PTR FormDialog::Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      return Start(dialog);
    case WM_SIZE:
      Arrange(dialog);
      return TRUE;
    case WM_GETMINMAXINFO:
      reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = smallest_;
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return FALSE;
      EndDialog(dialog, IDOK);
      return TRUE;
    case WM_CTLCOLORSTATIC:
      // Read-only, the text is still a document to read: on the window colour.
      if (GetDlgCtrlID(reinterpret_cast<HWND>(lParam)) != form_ids::kContent) return FALSE;
      SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
      SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
      return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
    case WM_NOTIFY: {
      auto* header = reinterpret_cast<NMHDR*>(lParam);
      if (form_.kind != Kind::kGrid || header->idFrom != form_ids::kContent || header->code != NM_CUSTOMDRAW)
        return FALSE;
      SetWindowLongPtrW(dialog, DWLP_MSGRESULT, DrawGridRow(*reinterpret_cast<NMLVCUSTOMDRAW*>(lParam), font_.get()));
      return TRUE;
    }
    default:
      return FALSE;
  }
}

INT_PTR FormDialog::Start(HWND dialog) {
  const HWND content = GetDlgItem(dialog, form_ids::kContent);
  const SIZE wanted = Fill(content);
  const RECT margin = DialogPixels(dialog, 0, 0, kMargin, kMargin);
  const RECT button = DialogPixels(dialog, 0, 0, kButtonWidth, kButtonHeight);
  RECT outer{0, 0, wanted.cx + 2 * margin.right, wanted.cy + 3 * margin.bottom + button.bottom};
  AdjustWindowRectEx(&outer, static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_EXSTYLE)));
  const RECT smallest = DialogPixels(dialog, 0, 0, kSmallestWidth, kSmallestHeight);
  smallest_ = {smallest.right, smallest.bottom};
  // At most nine tenths of the screen: the rest scrolls.
  const RECT work = WorkAreaOf(dialog);
  const LONG width = std::min(outer.right - outer.left, (work.right - work.left) * 9 / 10);
  const LONG height = std::min(outer.bottom - outer.top, (work.bottom - work.top) * 9 / 10);
  PlaceOverOwner(dialog, {std::max(width, smallest.right), std::max(height, smallest.bottom)});
  Arrange(dialog);
  SetFocus(content);
  return FALSE;  // the focus is set
}

SIZE FormDialog::Fill(HWND content) {
  switch (form_.kind) {
    case Kind::kTree:
      return ShowTree(content, form_.tree);
    case Kind::kGrid:
      font_.reset(BoldFont(content));
      return ShowGrid(content, form_, controls_, font_.get());
    case Kind::kText:
    default:
      font_.reset(FixedPitchFont(content));
      if (font_) SendMessageW(content, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
      return ShowText(content, form_.text);
  }
}

void FormDialog::Arrange(HWND dialog) const {
  const HWND content = GetDlgItem(dialog, form_ids::kContent);
  const HWND ok = GetDlgItem(dialog, IDOK);
  if (content == nullptr || ok == nullptr) return;
  RECT client{};
  GetClientRect(dialog, &client);
  const RECT margin = DialogPixels(dialog, 0, 0, kMargin, kMargin);
  const RECT button = DialogPixels(dialog, 0, 0, kButtonWidth, kButtonHeight);
  const LONG buttonTop = client.bottom - margin.bottom - button.bottom;
  MoveWindow(content, margin.right, margin.bottom, std::max<LONG>(client.right - 2 * margin.right, 0),
             std::max<LONG>(buttonTop - 2 * margin.bottom, 0), TRUE);
  MoveWindow(ok, client.right - margin.right - button.right, buttonTop, button.right, button.bottom, TRUE);
  InvalidateRect(dialog, nullptr, TRUE);
}

}  // namespace sentrune::addin
