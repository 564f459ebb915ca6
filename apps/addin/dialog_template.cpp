#include "dialog_template.h"

namespace sentrune::addin {
namespace {

constexpr WORD kPointSize = 8;
constexpr wchar_t kShellFont[] = L"MS Shell Dlg";

}  // namespace

DialogTemplate::DialogTemplate(const std::wstring& caption, DWORD style, short width, short height) {
  Word(1);       // version of DLGTEMPLATEEX
  Word(0xFFFF);  // its signature
  Dword(0);      // help ID
  Dword(0);      // extended style
  Dword(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SHELLFONT | style);
  countAt_ = words_.size();
  Word(0);
  for (short value : {short{0}, short{0}, width, height}) Word(static_cast<WORD>(value));
  Word(0);  // no menu
  Word(0);  // the dialog class
  Text(caption);
  Word(kPointSize);
  Word(FW_NORMAL);
  Word(MAKEWORD(FALSE, DEFAULT_CHARSET));  // italic, character set
  Text(kShellFont);
}

void DialogTemplate::Add(const DialogItem& item) {
  AlignToDword();
  Dword(0);  // help ID
  Dword(item.exStyle);
  Dword(WS_CHILD | WS_VISIBLE | item.style);
  for (short value : {item.x, item.y, item.width, item.height}) Word(static_cast<WORD>(value));
  Dword(static_cast<DWORD>(item.id));
  Text(item.windowClass);
  Text(item.text);
  Word(0);  // no creation data
  ++words_[countAt_];
}

void DialogTemplate::Dword(DWORD value) {
  Word(LOWORD(value));
  Word(HIWORD(value));
}

void DialogTemplate::Text(const std::wstring& text) {
  words_.insert(words_.end(), text.begin(), text.end());
  Word(0);
}

void DialogTemplate::AlignToDword() {
  if (words_.size() % 2 != 0) Word(0);
}

}  // namespace sentrune::addin
