#include "screen_capture.h"

#include <gdiplus.h>

#include <algorithm>
#include <cwchar>
#include <utility>
#include <vector>

namespace sentrune::testing::ide {
namespace {

bool FindPngEncoder(CLSID& found) {
  UINT count = 0, bytes = 0;
  if (Gdiplus::GetImageEncodersSize(&count, &bytes) != Gdiplus::Ok || bytes == 0) return false;
  std::vector<BYTE> buffer(bytes);
  auto* encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
  if (Gdiplus::GetImageEncoders(count, bytes, encoders) != Gdiplus::Ok) return false;
  for (UINT i = 0; i < count; ++i) {
    if (wcscmp(encoders[i].MimeType, L"image/png") != 0) continue;
    found = encoders[i].Clsid;
    return true;
  }
  return false;
}

BOOL CALLBACK NoteFound(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return FALSE;
}

bool HasFont(const wchar_t* face) {
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  wcsncpy(wanted.lfFaceName, face, LF_FACESIZE - 1);
  bool found = false;
  const HDC screen = GetDC(nullptr);
  EnumFontFamiliesExW(screen, &wanted, NoteFound, reinterpret_cast<LPARAM>(&found), 0);
  ReleaseDC(nullptr, screen);
  return found;
}

// The run of points, from `from` towards `step`, that the window's own hit
// test calls its close button; empty when there is none.
std::pair<LONG, LONG> CloseRun(HWND window, POINT from, POINT step, int count) {
  LONG first = -1, last = -1;
  for (int i = 0; i < count; ++i, from.x += step.x, from.y += step.y) {
    const bool close = SendMessageW(window, WM_NCHITTEST, 0, MAKELPARAM(from.x, from.y)) == HTCLOSE;
    const LONG at = step.x != 0 ? from.x : from.y;
    if (close && first < 0) first = at;
    if (close) last = at;
    if (!close && first >= 0) break;
  }
  return {first, last};
}

// Wine draws the close button's cross with the Marlett font; where Wine's
// own fonts are not installed, a letter stands in for it. The cross is
// drawn over the letter, as that font has it, inside the button the
// window's hit test finds (in screen pixels, as `bounds`).
void MendCloseButton(HWND window, HDC picture, const RECT& bounds) {
  TITLEBARINFO bar{};
  bar.cbSize = sizeof bar;
  if (HasFont(L"Marlett") || !GetTitleBarInfo(window, &bar)) return;
  const LONG middle = (bar.rcTitleBar.top + bar.rcTitleBar.bottom) / 2;
  const auto [left, right] = CloseRun(window, {bar.rcTitleBar.right - 1, middle}, {-1, 0},
                                      bar.rcTitleBar.right - bar.rcTitleBar.left);
  if (left < 0) return;
  const auto [top, bottom] =
      CloseRun(window, {(left + right) / 2, bounds.top}, {0, 1}, bar.rcTitleBar.bottom - bounds.top);
  if (top < 0) return;
  // The face well inside the button's edges, in the picture's pixels.
  constexpr LONG kEdge = 3;
  RECT face{std::min(left, right) - bounds.left + kEdge, std::min(top, bottom) - bounds.top + kEdge,
            std::max(left, right) - bounds.left + 1 - kEdge, std::max(top, bottom) - bounds.top + 1 - kEdge};
  FillRect(picture, &face, GetSysColorBrush(COLOR_BTNFACE));
  const LONG size = std::min(face.right - face.left, face.bottom - face.top) - 4;
  if (size < 4) return;
  const LONG x = (face.left + face.right - size) / 2, y = (face.top + face.bottom - size) / 2;
  const HGDIOBJ pen = SelectObject(picture, GetStockObject(DC_PEN));
  SetDCPenColor(picture, GetSysColor(COLOR_BTNTEXT));
  for (LONG thick = 0; thick < 2; ++thick) {
    MoveToEx(picture, x + thick, y, nullptr);
    LineTo(picture, x + thick + size, y + size);
    MoveToEx(picture, x + thick, y + size - 1, nullptr);
    LineTo(picture, x + thick + size, y - 1);
  }
  SelectObject(picture, pen);
}

// The window's pixels, frame included, as a bitmap of this thread's.
HBITMAP CopyOf(HWND window) {
  RECT bounds{};
  if (!GetWindowRect(window, &bounds)) return nullptr;
  const int width = bounds.right - bounds.left, height = bounds.bottom - bounds.top;
  const HDC source = GetWindowDC(window);
  if (source == nullptr) return nullptr;
  const HDC memory = CreateCompatibleDC(source);
  HBITMAP bitmap = CreateCompatibleBitmap(source, width, height);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  const bool copied = BitBlt(memory, 0, 0, width, height, source, 0, 0, SRCCOPY) != FALSE;
  if (copied) MendCloseButton(window, memory, bounds);
  SelectObject(memory, before);
  DeleteDC(memory);
  ReleaseDC(window, source);
  if (!copied) {
    DeleteObject(bitmap);
    return nullptr;
  }
  return bitmap;
}

}  // namespace

ScreenCapture::ScreenCapture() {
  Gdiplus::GdiplusStartupInput input;
  ready_ = Gdiplus::GdiplusStartup(&token_, &input, nullptr) == Gdiplus::Ok && FindPngEncoder(png_);
}

ScreenCapture::~ScreenCapture() {
  if (token_ != 0) Gdiplus::GdiplusShutdown(token_);
}

bool ScreenCapture::Save(HWND window, const std::filesystem::path& file) const {
  if (!ready_) return false;
  // Without a window manager, Wine may leave the caption of the process's
  // first window drawn inactive though it is in front: it is told again
  // that it is active, as the developer sees a box that has just come up.
  SendMessageW(window, WM_NCACTIVATE, TRUE, 0);
  if (!RedrawWindow(window, nullptr, nullptr,
                    RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW | RDW_ERASENOW))
    return false;
  // A paint its own loop had begun may still be under way: a message sent
  // now is answered only once that loop is back for more.
  SendMessageW(window, WM_NULL, 0, 0);
  const HBITMAP bitmap = CopyOf(window);
  if (bitmap == nullptr) return false;
  bool saved = false;
  {
    Gdiplus::Bitmap image(bitmap, nullptr);
    saved = image.GetLastStatus() == Gdiplus::Ok && image.Save(file.c_str(), &png_, nullptr) == Gdiplus::Ok;
  }
  DeleteObject(bitmap);
  return saved;
}

}  // namespace sentrune::testing::ide
