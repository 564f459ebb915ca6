#include "scripted_ide_controls.h"

#include <commctrl.h>

#include <utility>

namespace sentrune::testing::ide {
namespace {

// Cell texts are read into the process's own memory: the list view belongs
// to this process, only to another thread.
std::wstring Cell(HWND list, int row, int column) {
  wchar_t text[1024] = {};
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = text;
  item.cchTextMax = 1024;
  SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return text;
}

void AddNodes(HWND tree, HTREEITEM item, int depth, std::wstring& lines) {
  for (; item != nullptr; item = TreeView_GetNextSibling(tree, item)) {
    wchar_t text[1024] = {};
    TVITEMW node{};
    node.mask = TVIF_TEXT;
    node.hItem = item;
    node.pszText = text;
    node.cchTextMax = 1024;
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&node));
    lines += std::wstring(static_cast<size_t>(depth) * 2, L' ') + text + L"\n";
    AddNodes(tree, TreeView_GetChild(tree, item), depth + 1, lines);
  }
}

struct Found {
  std::wstring prompt;
  std::wstring content;
};

BOOL CALLBACK Read(HWND child, LPARAM found) {
  auto& seen = *reinterpret_cast<Found*>(found);
  if (IsClass(child, L"Static")) {
    seen.prompt = TextOf(child);
    return seen.prompt.empty();
  }
  if (!seen.content.empty()) return TRUE;
  if (IsClass(child, L"Edit")) {
    seen.content = TextOf(child);
  } else if (IsClass(child, WC_LISTVIEWW)) {
    for (const auto& row : ListRows(child)) {
      std::wstring line;
      for (const std::wstring& cell : row) line += (line.empty() ? L"" : L"\t") + cell;
      seen.content += line + L"\n";
    }
  } else if (IsClass(child, WC_TREEVIEWW)) {
    seen.content = TreeLines(child);
  }
  return TRUE;
}

}  // namespace

bool IsClass(HWND window, const wchar_t* expected) {
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  return lstrcmpiW(name, expected) == 0;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

std::vector<std::wstring> ListHeaders(HWND list) {
  const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  std::vector<std::wstring> headers;
  const auto count = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
  for (int column = 0; column < count; ++column) {
    wchar_t text[256] = {};
    LVCOLUMNW read{};
    read.mask = LVCF_TEXT;
    read.pszText = text;
    read.cchTextMax = 256;
    SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&read));
    headers.emplace_back(text);
  }
  return headers;
}

std::vector<std::vector<std::wstring>> ListRows(HWND list) {
  const size_t columns = ListHeaders(list).size();
  std::vector<std::vector<std::wstring>> rows;
  const auto count = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < count; ++row) {
    rows.emplace_back();
    for (size_t column = 0; column < columns; ++column)
      rows.back().push_back(Cell(list, row, static_cast<int>(column)));
  }
  return rows;
}

std::wstring TreeLines(HWND tree) {
  std::wstring lines;
  AddNodes(tree, TreeView_GetRoot(tree), 0, lines);
  return lines;
}

std::wstring ContentOf(HWND box) {
  Found found;
  EnumChildWindows(box, Read, reinterpret_cast<LPARAM>(&found));
  return found.prompt.empty() ? found.content : found.prompt;
}

void PressKey(HWND box, WPARAM key) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof thread;
  GetGUIThreadInfo(GetWindowThreadProcessId(box, nullptr), &thread);
  PostMessageW(thread.hwndFocus != nullptr ? thread.hwndFocus : box, WM_KEYDOWN, key, 1);
}

}  // namespace sentrune::testing::ide
