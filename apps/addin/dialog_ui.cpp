#include "dialog_ui.h"

#include "platform/win32/windows_api.h"
#include <shlobj.h>

#include "com_guard.h"
#include "platform/console/console_ui.h"
#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

using win32::Narrow;
using win32::Widen;

// "Text files|*.txt|All|*.*" as the common dialog wants it: NUL-separated,
// ending in two NULs.
std::wstring DialogFilter(const std::string& filter) {
  std::wstring wide = Widen(filter);
  for (wchar_t& c : wide) {
    if (c == L'|') c = L'\0';
  }
  return wide + std::wstring(2, L'\0');
}

// Opens the folder browser on the start folder.
int CALLBACK SelectStart(HWND window, UINT message, LPARAM, LPARAM start) {
  (void)Trap([&] {
    if (message == BFFM_INITIALIZED && start != 0) SendMessageW(window, BFFM_SETSELECTIONW, TRUE, start);
    return S_OK;
  });
  return 0;
}

}  // namespace

// The run time's message box styles and answers are the system's own.
int DialogUi::ShowMessage(const std::string& prompt, int style, const std::string& title) {
  return MessageBoxW(owner_, Widen(prompt).c_str(), Widen(title).c_str(), static_cast<UINT>(style));
}

std::optional<std::string> DialogUi::PickFile(const std::string& title, const std::string& filter, bool save) {
  const std::wstring wideTitle = Widen(title);
  const std::wstring wideFilter = DialogFilter(filter);
  std::wstring path(32768, L'\0');
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner_;
  dialog.lpstrFilter = filter.empty() ? nullptr : wideFilter.c_str();
  dialog.lpstrFile = path.data();
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.lpstrTitle = wideTitle.c_str();
  dialog.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                 (save ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST);
  if (!(save ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog))) return std::nullopt;
  return Narrow(path.c_str());
}

int DialogUi::MsgBox(const std::string& prompt, int style, const std::string& title) {
  return ShowMessage(prompt, style, title);
}

platform::FileHandlerAnswer DialogUi::AskFileHandler(const platform::FileHandlerQuestion& q) {
  std::string text = q.prompt + "\r\n";
  if (!q.source.empty()) text += "\r\n" + q.sourceLabel + " " + q.source;
  text += "\r\n" + q.destinationLabel + " " + q.destination;
  platform::FileHandlerAnswer answer;
  answer.button = ShowMessage(text, platform::mb::kYesNoCancel | platform::mb::kQuestion, q.caption);
  answer.destination = q.destination;
  answer.commentText = q.commentText;
  answer.commentsEnabled = q.commentsEnabled;
  answer.referencesEnabled = q.referencesEnabled;
  return answer;
}

std::optional<std::string> DialogUi::OpenFile(const std::string& title, const std::string& filter) {
  return PickFile(title, filter, false);
}

std::optional<std::string> DialogUi::SaveFile(const std::string& title, const std::string& filter) {
  return PickFile(title, filter, true);
}

std::string DialogUi::BrowseForFolder(const std::string& title, const std::string& startFolder) {
  const std::wstring wideTitle = Widen(title);
  const std::wstring start = Widen(startFolder);
  BROWSEINFOW browse{};
  browse.hwndOwner = owner_;
  browse.lpszTitle = wideTitle.c_str();
  browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
  browse.lpfn = SelectStart;
  browse.lParam = start.empty() ? 0 : reinterpret_cast<LPARAM>(start.c_str());
  PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&browse);
  if (chosen == nullptr) return {};
  wchar_t path[MAX_PATH] = {};
  const bool named = SHGetPathFromIDListW(chosen, path) != FALSE;
  CoTaskMemFree(chosen);
  return named ? Narrow(path) : std::string();
}

void DialogUi::ShowForm(const platform::FormView& form) {
  ShowMessage(console::RenderForm(form), platform::mb::kOkOnly, form.caption);
}

}  // namespace sentrune::addin
