#pragma once
// What the developer in front of the scripted IDE reads off a dialog's
// controls, from a thread other than the dialog's own.
#include "platform/win32/windows_api.h"

#include <string>
#include <vector>

namespace sentrune::testing::ide {

bool IsClass(HWND window, const wchar_t* expected);
std::wstring TextOf(HWND window);
// The list view's column headers, and its rows' cells.
std::vector<std::wstring> ListHeaders(HWND list);
std::vector<std::vector<std::wstring>> ListRows(HWND list);
// The tree view's nodes in order, one a line, indented two spaces a level.
std::wstring TreeLines(HWND tree);
// What the box says: its first static text with text (a message box's
// prompt; its icon has none), else what its edit, list view (cells
// separated by tabs, rows by line breaks) or tree view shows.
std::wstring ContentOf(HWND box);
// A key as the keyboard would give it to the control that has the focus
// in the box's thread, for the box's own loop to handle.
void PressKey(HWND box, WPARAM key);

}  // namespace sentrune::testing::ide
