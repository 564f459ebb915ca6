#pragma once
// A modal dialog of the add-in: made from a template, owned by the window
// the caller names (the IDE's main window, which it disables meanwhile), and
// run by the dialog manager's own loop on the caller's thread. Its procedure
// runs every message through Trap: whatever goes wrong ends the dialog
// rather than reaching the IDE.
#include "platform/win32/windows_api.h"

#include <string>

#include "dialog_template.h"

namespace sentrune::addin {

class ModalDialog {
 public:
  virtual ~ModalDialog() = default;

 protected:
  // What Run gives back when the dialog could not be shown or failed.
  static constexpr INT_PTR kFailed = -1;

  // Shows the dialog until EndDialog; its result, or kFailed.
  INT_PTR Run(HWND owner, const DialogTemplate& dialog);
  // A dialog procedure's work, from WM_INITDIALOG on.
  virtual INT_PTR Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) = 0;

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
};

// Gives the dialog this outer size, no larger than the screen it is on, and
// centres it over its owner (or that screen when it has none).
void PlaceOverOwner(HWND dialog, SIZE size);
// The usable part of the screen the window is on, in screen pixels.
RECT WorkAreaOf(HWND window);
// A rectangle in the dialog's units, in its pixels.
RECT DialogPixels(HWND dialog, int x, int y, int width, int height);
// UTF-8 text as an edit control shows it: wide, every line break CR LF.
std::wstring EditText(const std::string& text);

}  // namespace sentrune::addin
