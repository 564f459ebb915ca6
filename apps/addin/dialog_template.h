#pragma once
// A dialog described in memory as a resource would describe it, so that the
// dialog manager makes it: a "#32770" window whose controls get a dialog's
// keyboard for free (Tab in the order the items were added, mnemonics,
// Enter for the default button, Esc for Cancel). Positions and sizes are in
// dialog units, which follow the dialog's font.
#include "platform/win32/windows_api.h"

#include <string>
#include <vector>

namespace sentrune::addin {

struct DialogItem {
  const wchar_t* windowClass;  // L"Button", L"Edit", L"Static", WC_LISTVIEWW...
  std::wstring text;
  DWORD style;  // beyond WS_CHILD | WS_VISIBLE
  int id;
  short x, y, width, height;
  DWORD exStyle = 0;
};

class DialogTemplate {
 public:
  // A popup with a caption and a system menu in the shell's dialog font,
  // with `style` added; it appears when its procedure has set it up.
  DialogTemplate(const std::wstring& caption, DWORD style, short width, short height);

  void Add(const DialogItem& item);
  const DLGTEMPLATE* get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

 private:
  void Word(WORD value) { words_.push_back(value); }
  void Dword(DWORD value);
  void Text(const std::wstring& text);
  void AlignToDword();

  // The extended template format is a run of 16-bit words, 32-bit aligned
  // where it says so; the vector's storage is aligned for both.
  std::vector<WORD> words_;
  size_t countAt_ = 0;
};

}  // namespace sentrune::addin
