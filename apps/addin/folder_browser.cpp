#include "folder_browser.h"

#include <shlobj.h>

#include "com_guard.h"
#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

int CALLBACK SelectStart(HWND window, UINT message, LPARAM, LPARAM start) {
  (void)Trap([&] {
    if (message == BFFM_INITIALIZED && start != 0) SendMessageW(window, BFFM_SETSELECTIONW, TRUE, start);
    return S_OK;
  });
  return 0;
}

}  // namespace

std::string BrowseForFolder(HWND owner, const std::string& title, const std::string& startFolder) {
  const std::wstring wideTitle = win32::Widen(title);
  const std::wstring start = win32::Widen(startFolder);
  BROWSEINFOW browse{};
  browse.hwndOwner = owner;
  browse.lpszTitle = wideTitle.c_str();
  browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
  browse.lpfn = SelectStart;
  browse.lParam = start.empty() ? 0 : reinterpret_cast<LPARAM>(start.c_str());
  PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&browse);
  if (chosen == nullptr) return {};
  wchar_t path[MAX_PATH] = {};
  const bool named = SHGetPathFromIDListW(chosen, path) != FALSE;
  CoTaskMemFree(chosen);
  return named ? win32::Narrow(path) : std::string();
}

}  // namespace sentrune::addin
