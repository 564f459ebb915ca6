#pragma once
// The add-in's user interface inside the IDE: the system's message box,
// file dialogs and folder browser, and dialogs of its own for the file
// handler's question and for showing a form model. All of them are made
// with version 6 of the common controls (common_controls.h).
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
  std::optional<std::string> PickFile(const std::string& title, const std::string& filter, bool save);

  HWND owner_ = nullptr;
};

}  // namespace sentrune::addin
