#include "file_handler_dialog.h"

#include <algorithm>
#include <cwctype>

#include "folder_browser.h"
#include "platform/win32/win32_text.h"
#include "runtime/winpath.h"

namespace sentrune::addin {
namespace {

namespace ids = file_handler_ids;
using win32::Narrow;
using win32::Widen;

// Dialog units: a character is about 4 wide and 8 high.
constexpr short kMargin = 7, kGap = 4, kLabel = 8, kField = 12, kCheck = 10;
constexpr short kButtonWidth = 50, kButtonHeight = 14, kCommentHeight = 36;
constexpr short kNarrowest = 300, kWidest = 420;

// The buttons' access keys and the fixed labels' own.
constexpr wchar_t kTakenKeys[] = L"YNBMTG";

// The label with an access key on its first letter no other control has;
// an "&" of its own is shown as one.
std::wstring WithAccessKey(const std::string& label, std::wstring& taken) {
  std::wstring text;
  for (wchar_t c : Widen(label)) text += c == L'&' ? std::wstring(L"&&") : std::wstring(1, c);
  for (size_t i = 0; i < text.size(); ++i) {
    const wchar_t key = static_cast<wchar_t>(std::towupper(text[i]));
    if (!std::iswalpha(key) || taken.find(key) != std::wstring::npos) continue;
    taken += key;
    return text.insert(i, 1, L'&');
  }
  return text;
}

// Lines the prompt takes at that width, wrapped at about 4 units a
// character, and one spare for words that do not break where reckoned.
short PromptHeight(const std::string& prompt, short width) {
  const size_t perLine = static_cast<size_t>(std::max(width / 4, 1));
  size_t lines = 1;
  size_t start = 0;
  for (size_t end = 0; end <= prompt.size(); ++end) {
    if (end < prompt.size() && prompt[end] != '\n') continue;
    lines += std::max<size_t>(1, (end - start + perLine - 1) / perLine);
    start = end + 1;
  }
  return static_cast<short>(std::min<size_t>(lines, 20) * kLabel);
}

// The controls from the top down at the left margin, each across the
// dialog unless placed otherwise; the dialog is as high as they need.
class Column {
 public:
  explicit Column(short width) : width_(width) {}
  short width() const { return width_; }
  short inner() const { return static_cast<short>(width_ - 2 * kMargin); }
  short y() const { return y_; }

  // A control across the dialog, then `below` units of space.
  void Row(const wchar_t* windowClass, std::wstring text, DWORD style, int id, short height, int below) {
    items_.push_back({windowClass, std::move(text), style, id, kMargin, y_, inner(), height});
    Skip(height + below);
  }
  // A control where the caller says; the next row is not moved by it.
  void Place(DialogItem item) { items_.push_back(std::move(item)); }
  void Skip(int height) { y_ = static_cast<short>(y_ + height); }

  DialogTemplate Finish(const std::wstring& caption) const {
    DialogTemplate dialog(caption, 0, width_, static_cast<short>(y_ + kMargin));
    for (const DialogItem& item : items_) dialog.Add(item);
    return dialog;
  }

 private:
  short width_;
  short y_ = kMargin;
  std::vector<DialogItem> items_;
};

// The destination's field, and the folder browser's button beside it.
void AddDestination(Column& column, const platform::FileHandlerQuestion& q) {
  const short fieldWidth = static_cast<short>(column.inner() - kButtonWidth - kGap);
  column.Place({L"Edit", Widen(q.destination),
                ES_AUTOHSCROLL | WS_TABSTOP | WS_BORDER | (q.enableEdit ? 0u : DWORD{ES_READONLY}), ids::kDestination,
                kMargin, static_cast<short>(column.y() + 1), fieldWidth, kField});
  column.Place({L"Button", L"&Browse...", BS_PUSHBUTTON | WS_TABSTOP | (q.browseEnabled ? 0u : DWORD{WS_DISABLED}),
                ids::kBrowse, static_cast<short>(kMargin + fieldWidth + kGap), column.y(), kButtonWidth,
                kButtonHeight});
  column.Skip(kButtonHeight + kGap + 2);
}

// Yes (the default), No and Cancel at the bottom right.
void AddAnswers(Column& column) {
  column.Skip(kGap);
  short x = static_cast<short>(column.width() - kMargin - 3 * kButtonWidth - 2 * kGap);
  for (auto [id, text] : {std::pair{IDYES, L"&Yes"}, std::pair{IDNO, L"&No"}, std::pair{IDCANCEL, L"Cancel"}}) {
    const DWORD kind = id == IDYES ? BS_DEFPUSHBUTTON | WS_GROUP : BS_PUSHBUTTON;
    column.Place({L"Button", text, kind | WS_TABSTOP, id, x, column.y(), kButtonWidth, kButtonHeight});
    x = static_cast<short>(x + kButtonWidth + kGap);
  }
  column.Skip(kButtonHeight);
}

std::wstring Text(HWND dialog, int id) {
  const HWND control = GetDlgItem(dialog, id);
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
  return text;
}

}  // namespace

platform::FileHandlerAnswer FileHandlerDialog::Ask(HWND owner) {
  answer_ = {};
  answer_.destination = question_.destination;
  answer_.commentText = question_.commentText;
  answer_.commentsEnabled = question_.commentsEnabled;
  answer_.referencesEnabled = question_.referencesEnabled;
  const INT_PTR button = Run(owner, Layout());
  if (button == kFailed) answer_.button = platform::mb::kNo;
  return answer_;
}

DialogTemplate FileHandlerDialog::Layout() const {
  const platform::FileHandlerQuestion& q = question_;
  const size_t longest = std::max(q.source.size(), q.destination.size());
  Column column(static_cast<short>(std::clamp<size_t>(longest * 4 + 2 * kMargin, kNarrowest, kWidest)));
  std::wstring taken = kTakenKeys;
  const short promptHeight = PromptHeight(q.prompt, column.inner());
  column.Row(L"Static", Widen(q.prompt), SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, ids::kPrompt, promptHeight, kGap);
  if (!q.source.empty()) {
    column.Row(L"Static", WithAccessKey(q.sourceLabel, taken), SS_LEFT, ids::kSourceLabel, kLabel, 2);
    column.Row(L"Edit", Widen(q.source), ES_READONLY | ES_AUTOHSCROLL | WS_TABSTOP | WS_BORDER, ids::kSource, kField,
               kGap + 2);
  }
  column.Row(L"Static", WithAccessKey(q.destinationLabel, taken), SS_LEFT, ids::kDestinationLabel, kLabel, 2);
  AddDestination(column, q);
  if (q.commentsVisible) {
    column.Row(L"Static", L"Co&mment :", SS_LEFT, ids::kCommentLabel, kLabel, 2);
    column.Row(L"Edit", EditText(q.commentText),
               ES_MULTILINE | ES_AUTOVSCROLL | ES_WANTRETURN | WS_VSCROLL | WS_TABSTOP | WS_BORDER, ids::kComment,
               kCommentHeight, kGap);
    column.Row(L"Button", L"S&tore the comment with the copy", BS_AUTOCHECKBOX | WS_TABSTOP, ids::kStoreComment,
               kCheck, kGap);
  }
  if (q.referencesVisible)
    column.Row(L"Button", L"&Gather references", BS_AUTOCHECKBOX | WS_TABSTOP, ids::kReferences, kCheck, kGap);
  AddAnswers(column);
  return column.Finish(Widen(q.caption));
}

INT_PTR FileHandlerDialog::Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) return Start(dialog);
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  switch (id) {
    case IDYES:
    case IDNO:
    case IDCANCEL:
      Close(dialog, id);
      return TRUE;
    case ids::kBrowse:
      Browse(dialog);
      return TRUE;
    case ids::kDestination:
      // Typed over, the destination is the user's and no longer the browsed folder's.
      if (HIWORD(wParam) == EN_CHANGE && !showingBrowsed_) answer_.browsedFolder.reset();
      return TRUE;
    default:
      return FALSE;
  }
}

INT_PTR FileHandlerDialog::Start(HWND dialog) {
  CheckDlgButton(dialog, ids::kStoreComment, question_.commentsEnabled ? BST_CHECKED : BST_UNCHECKED);
  CheckDlgButton(dialog, ids::kReferences, question_.referencesEnabled ? BST_CHECKED : BST_UNCHECKED);
  SendMessageW(dialog, DM_SETDEFID, IDYES, 0);
  RECT size{};
  GetWindowRect(dialog, &size);
  PlaceOverOwner(dialog, {size.right - size.left, size.bottom - size.top});
  // The user starts where there is something to do: the destination when it
  // may be edited, the answer otherwise.
  const HWND start = GetDlgItem(dialog, question_.enableEdit ? ids::kDestination : IDYES);
  SetFocus(start);
  if (question_.enableEdit) SendMessageW(start, EM_SETSEL, 0, -1);
  return FALSE;  // the focus is set
}

void FileHandlerDialog::Browse(HWND dialog) {
  const std::string folder = BrowseForFolder(dialog, question_.browsePrompt, question_.browseStartPath);
  if (folder.empty()) return;
  answer_.browsedFolder = folder;
  // Shown as the core will make it: the folder and the footer.
  showingBrowsed_ = true;
  SetDlgItemTextW(dialog, ids::kDestination, Widen(rt::AddBackslash(folder) + question_.browsePathFooter).c_str());
  showingBrowsed_ = false;
}

void FileHandlerDialog::Close(HWND dialog, int button) {
  answer_.button = button;  // IDYES, IDNO and IDCANCEL are the answer codes
  answer_.destination = Narrow(Text(dialog, ids::kDestination));
  if (GetDlgItem(dialog, ids::kComment) != nullptr) {
    answer_.commentText = Narrow(Text(dialog, ids::kComment));
    answer_.commentsEnabled = IsDlgButtonChecked(dialog, ids::kStoreComment) == BST_CHECKED;
  }
  if (GetDlgItem(dialog, ids::kReferences) != nullptr)
    answer_.referencesEnabled = IsDlgButtonChecked(dialog, ids::kReferences) == BST_CHECKED;
  EndDialog(dialog, button);
}

}  // namespace sentrune::addin
