#pragma once
// What a form model shows, put into the control that shows it: text into a
// multi-line edit, nodes into a tree view, rows into a list view in report
// view. Each gives back the outer size in pixels that would show all of it,
// for the dialog to size itself by.
#include "platform/win32/windows_api.h"
#include <commctrl.h>

#include "common_controls.h"
#include "platform/ui.h"

namespace sentrune::addin {

// The edit has its font already.
SIZE ShowText(HWND edit, const std::string& text);
// Every node, expanded.
SIZE ShowTree(HWND tree, const std::vector<platform::TreeNode>& nodes);
// A column per header (or per cell when there are none), a row per row,
// the outline level as an indent in steps of an empty image list's width,
// section rows marked for DrawGridRow, which draws them in `bold`.
SIZE ShowGrid(HWND list, const platform::FormView& form, const CommonControls& controls, HFONT bold);

// The list view's custom draw: section rows bold on the face colour, so
// that they read as titles between the rows they head, in the form's order.
LRESULT DrawGridRow(NMLVCUSTOMDRAW& draw, HFONT bold);

}  // namespace sentrune::addin
