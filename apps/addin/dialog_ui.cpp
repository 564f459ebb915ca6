#include "dialog_ui.h"

#include "common_controls.h"
#include "file_handler_dialog.h"
#include "folder_browser.h"
#include "form_dialog.h"
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

}  // namespace

std::optional<std::string> DialogUi::PickFile(const std::string& title, const std::string& filter, bool save) {
  const CommonControls controls;
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

// The run time's message box styles and answers are the system's own.
int DialogUi::MsgBox(const std::string& prompt, int style, const std::string& title) {
  const CommonControls controls;
  return MessageBoxW(owner_, Widen(prompt).c_str(), Widen(title).c_str(), static_cast<UINT>(style));
}

platform::FileHandlerAnswer DialogUi::AskFileHandler(const platform::FileHandlerQuestion& question) {
  const CommonControls controls;
  return FileHandlerDialog(question).Ask(owner_);
}

std::optional<std::string> DialogUi::OpenFile(const std::string& title, const std::string& filter) {
  return PickFile(title, filter, false);
}

std::optional<std::string> DialogUi::SaveFile(const std::string& title, const std::string& filter) {
  return PickFile(title, filter, true);
}

std::string DialogUi::BrowseForFolder(const std::string& title, const std::string& startFolder) {
  const CommonControls controls;
  return addin::BrowseForFolder(owner_, title, startFolder);
}

void DialogUi::ShowForm(const platform::FormView& form) {
  const CommonControls controls;
  FormDialog(form, controls).Show(owner_);
}

}  // namespace sentrune::addin
