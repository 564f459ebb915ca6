#pragma once
// A form model in a resizable modal window of its own: its text in a
// read-only edit in a fixed-pitch font (so that columns of a comparison line
// up), its nodes in a tree view or its rows in a list view, and OK. The
// window opens as large as its content needs, within the screen.
#include "platform/win32/windows_api.h"

#include <memory>
#include <type_traits>

#include "common_controls.h"
#include "modal_dialog.h"
#include "platform/ui.h"

namespace sentrune::addin {

namespace form_ids {
inline constexpr int kContent = 100;  // the edit, tree view or list view
}  // namespace form_ids

class FormDialog : public ModalDialog {
 public:
  // The controls' scope must be active around Show.
  FormDialog(const platform::FormView& form, const CommonControls& controls) : form_(form), controls_(controls) {}

  void Show(HWND owner) { (void)Run(owner, Layout()); }

 private:
  INT_PTR Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) override;
  DialogTemplate Layout() const;
  INT_PTR Start(HWND dialog);
  SIZE Fill(HWND content);
  void Arrange(HWND dialog) const;

  struct DeleteFont {
    void operator()(HFONT font) const { DeleteObject(font); }
  };

  const platform::FormView& form_;
  const CommonControls& controls_;
  // The text's fixed-pitch font or the sections' bold one, which the
  // controls use until the dialog is gone.
  std::unique_ptr<std::remove_pointer_t<HFONT>, DeleteFont> font_;
  POINT smallest_{};
};

}  // namespace sentrune::addin
