#pragma once
// The add-in's user interface inside the IDE until it has forms of its own:
// the system's message box, file dialogs and folder browser. A question of
// the file handler becomes a Yes/No/Cancel message box that keeps the
// proposed destination; a form model is shown as text in a message box.
//
// Every window is owned by the IDE's main window, so that it stays above
// the IDE and disables it while it is up; by none while the add-in is not
// connected or the IDE names no main window.
#include "platform/win32/windows_api.h"

#include "platform/ui.h"

namespace sentrune::addin {

class DialogUi : public platform::Ui {
 public:
  int MsgBox(const std::string& prompt, int style, const std::string& title) override;
  platform::FileHandlerAnswer AskFileHandler(const platform::FileHandlerQuestion& question) override;
  std::optional<std::string> OpenFile(const std::string& title, const std::string& filter) override;
  std::optional<std::string> SaveFile(const std::string& title, const std::string& filter) override;
  std::string BrowseForFolder(const std::string& title, const std::string& startFolder) override;
  void ShowForm(const platform::FormView& form) override;

  void SetOwner(HWND owner) { owner_ = owner; }
  HWND owner() const { return owner_; }

 private:
  int ShowMessage(const std::string& prompt, int style, const std::string& title);
  std::optional<std::string> PickFile(const std::string& title, const std::string& filter, bool save);

  HWND owner_ = nullptr;
};

}  // namespace sentrune::addin
