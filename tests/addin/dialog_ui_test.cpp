// The add-in's own dialogs under a display, read and answered through
// their controls by a developer on another thread, as the IDE's thread
// waits in the dialog: what they show of the question or form, and what
// DialogUi gives back.
#include "platform/win32/windows_api.h"
#include <commctrl.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>

#include "dialog_ui.h"
#include "file_handler_dialog.h"
#include "form_dialog.h"
#include "platform/win32/win32_text.h"
#include "scripted_ide_boxes.h"
#include "scripted_ide_controls.h"
#include "support/temp_folder.h"

namespace sentrune::addin {
namespace {

namespace ids = file_handler_ids;
namespace mb = platform::mb;
using testing::ide::BoxAnswerer;
using testing::ide::Describe;
using testing::ide::ListHeaders;
using testing::ide::ListRows;
using testing::ide::PressKey;
using testing::ide::SeenBox;
using testing::ide::TextOf;
using testing::ide::TreeLines;

// Only the buttons of version 6 of the common controls know their ideal size.
bool IsVersion6(HWND button) {
  SIZE size{};
  return SendMessageW(button, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&size)) != FALSE;
}

// The folder the shell's folder browser has selected, by its tree's caret.
std::wstring SelectedFolderName(HWND browser) {
  HWND tree = nullptr;
  EnumChildWindows(
      browser,
      [](HWND child, LPARAM found) {
        if (!testing::ide::IsClass(child, WC_TREEVIEWW)) return TRUE;
        *reinterpret_cast<HWND*>(found) = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&tree));
  if (tree == nullptr) return {};
  wchar_t text[MAX_PATH] = {};
  TVITEMW item{};
  item.mask = TVIF_TEXT;
  item.hItem = reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, TVGN_CARET, 0));
  item.pszText = text;
  item.cchTextMax = MAX_PATH;
  if (item.hItem == nullptr || !SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return {};
  return text;
}

platform::FileHandlerQuestion Snapshot() {
  platform::FileHandlerQuestion q;
  q.caption = "Create Snapshot?";
  q.prompt = "Copy the project & its files?";
  q.sourceLabel = "Source Project :";
  q.destinationLabel = "Destination Folder :";
  q.source = "C:\\Work\\Widgets.vbp";
  q.destination = "C:\\Snapshots\\Widgets 1\\";
  q.browsePrompt = "Select a Folder.";
  q.browsePathFooter = "Widgets 2";
  q.commentText = "before\nrelease";
  return q;
}

TEST(AddinDialogs, FileHandlerShowsTheQuestionAndGivesBackTheFieldsAsLeft) {
  DialogUi ui;
  BoxAnswerer developer;
  platform::FileHandlerQuestion q = Snapshot();
  q.enableEdit = q.commentsVisible = q.commentsEnabled = q.referencesVisible = true;
  std::map<int, std::wstring> shown;
  bool storeTicked = false;
  developer.AnswerWith([&](HWND box) {
    for (int id : {ids::kSourceLabel, ids::kSource, ids::kDestinationLabel, ids::kDestination, ids::kComment})
      shown[id] = TextOf(GetDlgItem(box, id));
    storeTicked = IsDlgButtonChecked(box, ids::kStoreComment) == BST_CHECKED;
    SetDlgItemTextW(box, ids::kDestination, L"D:\\Kopien\\Ünïcode\\");
    SetDlgItemTextW(box, ids::kComment, L"checked");
    SendDlgItemMessageW(box, ids::kReferences, BM_CLICK, 0, 0);
    PressKey(box, VK_RETURN);  // the default button, Yes
    return 0;
  });
  platform::FileHandlerAnswer answer = ui.AskFileHandler(q);
  std::vector<SeenBox> boxes = developer.Take();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].title, L"Create Snapshot?");
  EXPECT_EQ(boxes[0].text, L"Copy the project & its files?");
  EXPECT_EQ(shown[ids::kSourceLabel], L"&Source Project :");
  EXPECT_EQ(shown[ids::kSource], L"C:\\Work\\Widgets.vbp");
  EXPECT_EQ(shown[ids::kDestinationLabel], L"&Destination Folder :");
  EXPECT_EQ(shown[ids::kDestination], L"C:\\Snapshots\\Widgets 1\\");
  EXPECT_EQ(shown[ids::kComment], L"before\r\nrelease");
  EXPECT_TRUE(storeTicked);
  EXPECT_EQ(answer.button, mb::kYes);
  EXPECT_EQ(answer.destination, "D:\\Kopien\\Ünïcode\\");
  EXPECT_FALSE(answer.browsedFolder);
  EXPECT_EQ(answer.commentText, "checked");
  EXPECT_TRUE(answer.commentsEnabled);
  EXPECT_TRUE(answer.referencesEnabled);

  // What the caller does not allow is shown but cannot be used; what it
  // hides is not there. Esc cancels and leaves the fields as asked.
  q = Snapshot();
  bool readOnly = false, browsable = true, hidden = false;
  developer.AnswerWith([&](HWND box) {
    readOnly = (GetWindowLongPtrW(GetDlgItem(box, ids::kDestination), GWL_STYLE) & ES_READONLY) != 0;
    browsable = IsWindowEnabled(GetDlgItem(box, ids::kBrowse));
    hidden = GetDlgItem(box, ids::kComment) == nullptr && GetDlgItem(box, ids::kStoreComment) == nullptr &&
             GetDlgItem(box, ids::kReferences) == nullptr;
    PressKey(box, VK_ESCAPE);
    return 0;
  });
  answer = ui.AskFileHandler(q);
  EXPECT_TRUE(readOnly);
  EXPECT_FALSE(browsable);
  EXPECT_TRUE(hidden);
  EXPECT_EQ(answer.button, mb::kCancel);
  EXPECT_EQ(answer.destination, q.destination);
  EXPECT_EQ(answer.commentText, q.commentText);
  developer.Take();

  // Browsing shows the chosen folder with the footer, and hands the folder back.
  ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
  sentrune::testing::TempFolder folder;
  q.browseEnabled = true;
  q.browseStartPath = folder.path();
  std::wstring browsed;
  developer.AnswerWith([](HWND box) {
    PostMessageW(box, WM_COMMAND, MAKEWPARAM(ids::kBrowse, BN_CLICKED), 0);
    // The folder browser is up when its owner is disabled.
    while (IsWindowEnabled(box)) Sleep(10);
    return 0;
  });
  // The browser selects the start folder after it shows: OK once it has.
  const std::wstring startName = std::filesystem::path(folder.path()).filename().wstring();
  developer.AnswerWith([&](HWND browser) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (SelectedFolderName(browser) != startName && std::chrono::steady_clock::now() < deadline) Sleep(10);
    return IDOK;
  });
  developer.AnswerWith([&](HWND box) {
    browsed = TextOf(GetDlgItem(box, ids::kDestination));
    return IDNO;
  });
  answer = ui.AskFileHandler(q);
  CoUninitialize();
  boxes = developer.Take();
  ASSERT_EQ(boxes.size(), 3u) << Describe(boxes);
  const std::filesystem::path chosen(folder.path());
  EXPECT_EQ(browsed, (chosen / L"Widgets 2").wstring());
  EXPECT_EQ(answer.browsedFolder, chosen.string());
  EXPECT_EQ(answer.button, mb::kNo);
}

TEST(AddinDialogs, FormsShowTheirTextNodesAndRowsAndFollowTheWindowsSize) {
  DialogUi ui;
  BoxAnswerer developer;
  auto content = [](HWND box) { return GetDlgItem(box, form_ids::kContent); };

  platform::FormView text;
  text.caption = "Full paths report.";
  text.text = "Line 1\n\tLine 2";
  std::wstring shown;
  developer.AnswerWith([&](HWND box) {
    shown = TextOf(content(box));
    return IDOK;
  });
  ui.ShowForm(text);
  EXPECT_EQ(shown, L"Line 1\r\n\tLine 2");

  platform::FormView tree;
  tree.kind = platform::FormView::Kind::kTree;
  tree.caption = "Type library";
  tree.tree = {{"lib", "Shapes", {{"c", "Circle", {{"r", "Radius", {}}}}, {"s", "Square", {}}}}, {"x", "Extra", {}}};
  developer.AnswerWith([&](HWND box) {
    shown = TreeLines(content(box));
    return IDOK;
  });
  ui.ShowForm(tree);
  EXPECT_EQ(shown, L"Shapes\n  Circle\n    Radius\n  Square\nExtra\n");

  platform::FormView grid;
  grid.kind = platform::FormView::Kind::kGrid;
  grid.caption = "Options";
  grid.headers = {"Option", "Setting"};
  grid.rows = {{0, true, {"Standard EXE", ""}}, {1, false, {"Create backup", "Yes"}}, {2, false, {"Keep", "3"}}};
  std::vector<std::wstring> headers;
  std::vector<std::vector<std::wstring>> rows;
  RECT before{}, after{}, client{};
  bool version6 = false;
  developer.AnswerWith([&](HWND box) {
    version6 = IsVersion6(GetDlgItem(box, IDOK));
    headers = ListHeaders(content(box));
    rows = ListRows(content(box));
    GetWindowRect(content(box), &before);
    SetWindowPos(box, nullptr, 0, 0, 700, 500, SWP_NOZORDER | SWP_NOMOVE);
    GetWindowRect(content(box), &after);
    GetClientRect(box, &client);
    return IDOK;
  });
  ui.ShowForm(grid);
  std::vector<SeenBox> boxes = developer.Take();
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_EQ(boxes[2].title, L"Options");
  EXPECT_TRUE(version6) << "the add-in's manifest was not used";
  EXPECT_EQ(headers, (std::vector<std::wstring>{L"Option", L"Setting"}));
  EXPECT_EQ(rows, (std::vector<std::vector<std::wstring>>{{L"Standard EXE", L""}, {L"Create backup", L"Yes"},
                                                          {L"Keep", L"3"}}));
  // The list keeps its margins as the window grows.
  const LONG margin = client.right - (after.right - after.left);
  EXPECT_GT(after.right - after.left, before.right - before.left);
  EXPECT_GT(margin, 0);
  EXPECT_LT(margin, 40);
}

}  // namespace
}  // namespace sentrune::addin
