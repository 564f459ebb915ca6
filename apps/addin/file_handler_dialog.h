#pragma once
// frmFileHandlerEX as a dialog of its own: the question before a copy, with
// the source, the destination (editable when the caller allows it, with a
// folder browser), the comment and the check boxes the caller shows, and
// Yes, No and Cancel under the usual IDs, so that whoever answers message
// boxes answers this one the same way.
#include "platform/win32/windows_api.h"

#include "modal_dialog.h"
#include "platform/ui.h"

namespace sentrune::addin {

// Its controls besides the buttons; a field the question hides has none.
namespace file_handler_ids {
enum : int {
  kPrompt = 100,
  kSourceLabel,
  kSource,
  kDestinationLabel,
  kDestination,
  kBrowse,
  kCommentLabel,
  kComment,
  kStoreComment,
  kReferences,
};
}  // namespace file_handler_ids

class FileHandlerDialog : public ModalDialog {
 public:
  explicit FileHandlerDialog(const platform::FileHandlerQuestion& question) : question_(question) {}

  // The answer as the dialog closed; No when it could not be shown, so
  // that nothing is copied that the developer did not see.
  platform::FileHandlerAnswer Ask(HWND owner);

 private:
  INT_PTR Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) override;
  DialogTemplate Layout() const;
  INT_PTR Start(HWND dialog);
  void Browse(HWND dialog);
  void Close(HWND dialog, int button);

  const platform::FileHandlerQuestion& question_;
  platform::FileHandlerAnswer answer_;
  bool showingBrowsed_ = false;  // the destination's change is ours, not the user's
};

}  // namespace sentrune::addin
