#include "form_content.h"

#include <algorithm>

#include "modal_dialog.h"
#include "platform/win32/win32_text.h"

namespace sentrune::addin {
namespace {

using win32::Widen;

constexpr int kTabWidth = 8;  // characters, as the edit expands a tab
constexpr short kIndentUnits = 6;  // dialog units an outline level
constexpr LONG kCellPadding = 16;  // pixels around a cell's text

// The control's font selected into its device context while alive.
class ControlDc {
 public:
  explicit ControlDc(HWND control, HFONT font = nullptr)
      : control_(control), dc_(GetDC(control)),
        old_(SelectObject(dc_, font ? font : reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)))) {}
  ~ControlDc() {
    SelectObject(dc_, old_);
    ReleaseDC(control_, dc_);
  }
  ControlDc(const ControlDc&) = delete;
  ControlDc& operator=(const ControlDc&) = delete;

  LONG Width(const std::wstring& text) const {
    SIZE size{};
    GetTextExtentPoint32W(dc_, text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
  }
  TEXTMETRICW Metrics() const {
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc_, &metrics);
    return metrics;
  }

 private:
  HWND control_;
  HDC dc_;
  HGDIOBJ old_;
};

// The scroll bars and the sunken edge around what a control shows.
SIZE Frame(LONG width, LONG height) {
  const int edge = 2 * GetSystemMetrics(SM_CXEDGE) + 2;
  return {width + GetSystemMetrics(SM_CXVSCROLL) + edge, height + GetSystemMetrics(SM_CYHSCROLL) + edge};
}

struct TreeExtent {
  LONG widest = 0;
  LONG nodes = 0;
};

void InsertNodes(HWND tree, HTREEITEM parent, const std::vector<platform::TreeNode>& nodes, int depth,
                 const ControlDc& dc, TreeExtent& extent) {
  const LONG indent = static_cast<LONG>(SendMessageW(tree, TVM_GETINDENT, 0, 0));
  for (const platform::TreeNode& node : nodes) {
    std::wstring text = Widen(node.text);
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = text.data();
    const auto item =
        reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
    ++extent.nodes;
    extent.widest = std::max(extent.widest, (depth + 1) * indent + dc.Width(text));
    InsertNodes(tree, item, node.children, depth + 1, dc, extent);
    if (!node.children.empty()) SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
  }
}

void SetCell(HWND list, int row, int column, const std::string& text) {
  std::wstring wide = Widen(text);
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = wide.data();
  SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void InsertRow(HWND list, int index, const platform::GridRow& row) {
  LVITEMW item{};
  item.mask = LVIF_TEXT | LVIF_INDENT | LVIF_PARAM;
  item.iItem = index;
  std::wstring first = row.cells.empty() ? std::wstring() : Widen(row.cells[0]);
  item.pszText = first.data();
  item.iIndent = std::max(row.level, 0);
  item.lParam = row.isSection ? 1 : 0;
  SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
  for (size_t column = 1; column < row.cells.size(); ++column)
    SetCell(list, index, static_cast<int>(column), row.cells[column]);
}

// A column per header, or per cell of the longest row when there are more;
// how many.
size_t AddColumns(HWND list, const platform::FormView& form) {
  size_t columns = std::max<size_t>(form.headers.size(), 1);
  for (const platform::GridRow& row : form.rows) columns = std::max(columns, row.cells.size());
  for (size_t column = 0; column < columns; ++column) {
    std::wstring header = column < form.headers.size() ? Widen(form.headers[column]) : std::wstring();
    LVCOLUMNW added{};
    added.mask = LVCF_TEXT | LVCF_SUBITEM;
    added.pszText = header.data();
    added.iSubItem = static_cast<int>(column);
    SendMessageW(list, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&added));
  }
  return columns;
}

// Each column as wide as its widest cell or its header; the first also
// holds the indents and the sections' titles, which are bold.
LONG FitColumns(HWND list, const platform::FormView& form, size_t columns, LONG indent, HFONT bold) {
  const ControlDc plainDc(list);
  const ControlDc boldDc(list, bold);
  LONG total = 0;
  for (size_t column = 0; column < columns; ++column) {
    const WPARAM at = static_cast<WPARAM>(column);
    SendMessageW(list, LVM_SETCOLUMNWIDTH, at, LVSCW_AUTOSIZE);
    LONG width = static_cast<LONG>(SendMessageW(list, LVM_GETCOLUMNWIDTH, at, 0));
    if (column < form.headers.size()) {
      const std::wstring header = Widen(form.headers[column]);
      const auto headerWidth = static_cast<LONG>(
          SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(header.c_str())));
      width = std::max(width, headerWidth + kCellPadding);
    }
    for (const platform::GridRow& row : form.rows) {
      if (column > 0 || row.cells.empty()) break;
      const LONG text = (row.isSection ? boldDc : plainDc).Width(Widen(row.cells[0]));
      width = std::max(width, (std::max(row.level, 0) + 1) * indent + text + kCellPadding);
    }
    SendMessageW(list, LVM_SETCOLUMNWIDTH, at, width);
    total += width;
  }
  return total;
}

}  // namespace

SIZE ShowText(HWND edit, const std::string& text) {
  const std::wstring shown = EditText(text);
  SendMessageW(edit, EM_SETLIMITTEXT, 0, 0);  // as long as the text is
  SetWindowTextW(edit, shown.c_str());
  size_t lines = 1, widest = 0, run = 0;
  for (wchar_t c : shown) {
    if (c == L'\n') {
      ++lines;
      run = 0;
    } else if (c != L'\r') {
      run += c == L'\t' ? kTabWidth : 1;
      widest = std::max(widest, run);
    }
  }
  const TEXTMETRICW metrics = ControlDc(edit).Metrics();
  // The edit's own margins take about a character.
  return Frame(static_cast<LONG>(widest + 1) * metrics.tmAveCharWidth, static_cast<LONG>(lines) * metrics.tmHeight);
}

SIZE ShowTree(HWND tree, const std::vector<platform::TreeNode>& nodes) {
  TreeExtent extent;
  InsertNodes(tree, TVI_ROOT, nodes, 0, ControlDc(tree), extent);
  const auto rowHeight = static_cast<LONG>(SendMessageW(tree, TVM_GETITEMHEIGHT, 0, 0));
  return Frame(extent.widest + 8, std::max<LONG>(extent.nodes, 1) * rowHeight);
}

SIZE ShowGrid(HWND list, const platform::FormView& form, const CommonControls& controls, HFONT bold) {
  SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
               LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_DOUBLEBUFFER);
  // A list view indents by its small images' width; the list is empty, and
  // the list view destroys it with itself.
  const LONG indent = std::max<LONG>(DialogPixels(GetParent(list), 0, 0, kIndentUnits, 1).right, 1);
  const HIMAGELIST images = controls.CreateImageList(indent, 1);
  if (images != nullptr) SendMessageW(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
  const size_t columns = AddColumns(list, form);
  for (size_t index = 0; index < form.rows.size(); ++index) InsertRow(list, static_cast<int>(index), form.rows[index]);
  const LONG width = FitColumns(list, form, columns, images != nullptr ? indent : 0, bold);
  RECT row{LVIR_BOUNDS, 0, 0, 0};
  const LONG rowHeight = SendMessageW(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row)) ? row.bottom - row.top
                                                                                                  : 16;
  RECT header{};
  GetWindowRect(reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)), &header);
  const auto rows = static_cast<LONG>(std::max<size_t>(form.rows.size(), 1));
  return Frame(width, header.bottom - header.top + rows * rowHeight);
}

LRESULT DrawGridRow(NMLVCUSTOMDRAW& draw, HFONT bold) {
  if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || draw.nmcd.lItemlParam == 0 || bold == nullptr)
    return CDRF_DODEFAULT;
  SelectObject(draw.nmcd.hdc, bold);
  draw.clrTextBk = GetSysColor(COLOR_BTNFACE);
  return CDRF_NEWFONT;
}

}  // namespace sentrune::addin
