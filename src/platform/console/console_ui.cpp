#include "platform/console/console_ui.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <sstream>

namespace sentrune::console {
namespace {

using namespace platform::mb;

// Buttons of a message box style, in the order the terminal offers them.
std::vector<int> Buttons(int style) {
  switch (style & 7) {
    case kOkCancel: return {kOk, kCancel};
    case kYesNoCancel: return {kYes, kNo, kCancel};
    case kYesNo: return {kYes, kNo};
    default: return {kOk};
  }
}

const char* ButtonName(int button) {
  switch (button) {
    case kOk: return "OK";
    case kCancel: return "Cancel";
    case kYes: return "Yes";
    case kNo: return "No";
    default: return "?";
  }
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// Message texts break lines with CR LF; a terminal wants LF.
std::string ForTerminal(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    out += text[i];
  }
  return out;
}

void RenderTree(const platform::TreeNode& node, int depth, std::ostream& out) {
  out << std::string(static_cast<size_t>(depth) * 2, ' ') << ForTerminal(node.text) << '\n';
  for (const platform::TreeNode& child : node.children) RenderTree(child, depth + 1, out);
}

void RenderGrid(const platform::FormView& form, std::ostream& out) {
  // Column widths over the option rows; the first column holds the indent.
  std::vector<size_t> widths;
  auto cell = [](const platform::GridRow& row, size_t i) {
    return i == 0 ? std::string(static_cast<size_t>(row.level) * 2, ' ') + row.cells[0] : row.cells[i];
  };
  for (const platform::GridRow& row : form.rows) {
    if (row.isSection) continue;
    if (widths.size() < row.cells.size()) widths.resize(row.cells.size());
    for (size_t i = 0; i < row.cells.size(); ++i) widths[i] = std::max(widths[i], cell(row, i).size());
  }
  bool firstRow = true;
  for (const platform::GridRow& row : form.rows) {
    if (row.cells.empty()) continue;
    if (row.isSection) {
      out << (firstRow ? "" : "\n") << row.cells[0] << '\n';
    } else {
      std::string line;
      for (size_t i = 0; i < row.cells.size(); ++i) {
        const std::string text = cell(row, i);
        line += text;
        if (i + 1 < row.cells.size()) line += std::string(widths[i] + 2 - text.size(), ' ');
      }
      while (!line.empty() && line.back() == ' ') line.pop_back();
      out << line << '\n';
    }
    firstRow = false;
  }
}

}  // namespace

std::string RenderForm(const platform::FormView& form) {
  std::ostringstream out;
  switch (form.kind) {
    case platform::FormView::Kind::kText:
      out << ForTerminal(form.text);
      if (!form.text.empty() && form.text.back() != '\n') out << '\n';
      break;
    case platform::FormView::Kind::kTree:
      for (const platform::TreeNode& root : form.tree) RenderTree(root, 0, out);
      break;
    case platform::FormView::Kind::kGrid:
      RenderGrid(form, out);
      break;
  }
  return out.str();
}

ConsoleUi::ConsoleUi(AnswerMode mode, std::istream& in, std::ostream& out, std::ostream& err)
    : mode_(mode), in_(in), out_(out), err_(err) {}

int ConsoleUi::Automatic(int style) const {
  const std::vector<int> buttons = Buttons(style);
  if (mode_ == AnswerMode::kYes) return buttons.front();
  for (int refusal : {kNo, kCancel}) {
    if (std::find(buttons.begin(), buttons.end(), refusal) != buttons.end()) return refusal;
  }
  return buttons.front();
}

std::optional<int> ConsoleUi::Ask(int style) {
  const std::vector<int> buttons = Buttons(style);
  if (buttons.size() == 1) return buttons.front();
  for (;;) {
    err_ << '[';
    for (size_t i = 0; i < buttons.size(); ++i) err_ << (i ? "/" : "") << ButtonName(buttons[i]);
    err_ << "] " << std::flush;
    std::string line;
    if (!std::getline(in_, line)) return std::nullopt;
    const std::string answer = Lower(line);
    for (int button : buttons) {
      const std::string name = Lower(ButtonName(button));
      if (!answer.empty() && name.compare(0, answer.size(), answer) == 0) return button;
    }
  }
}

int ConsoleUi::MsgBox(const std::string& prompt, int style, const std::string& title) {
  err_ << "== " << ForTerminal(title) << " ==\n" << ForTerminal(prompt) << '\n';
  if (mode_ == AnswerMode::kAsk) {
    if (const std::optional<int> answer = Ask(style)) return *answer;
  }
  const int answer = Automatic(style);
  if (Buttons(style).size() > 1) err_ << "-> " << ButtonName(answer) << '\n';
  return answer;
}

std::optional<std::string> ConsoleUi::AskLine(const std::string& question) {
  if (mode_ != AnswerMode::kAsk) return std::nullopt;
  err_ << question << std::flush;
  std::string line;
  if (!std::getline(in_, line)) return std::nullopt;
  return line;
}

platform::FileHandlerAnswer ConsoleUi::AskFileHandler(const platform::FileHandlerQuestion& q) {
  platform::FileHandlerAnswer answer;
  answer.destination = q.destination;
  answer.commentText = q.commentText;
  answer.commentsEnabled = q.commentsEnabled;
  answer.referencesEnabled = q.referencesEnabled;
  err_ << "== " << ForTerminal(q.caption) << " ==\n" << ForTerminal(q.prompt) << '\n';
  if (!q.source.empty()) err_ << "  " << q.sourceLabel << ' ' << q.source << '\n';
  err_ << "  " << q.destinationLabel << ' ' << q.destination << '\n';
  if (mode_ == AnswerMode::kAsk) {
    if (const std::optional<int> button = Ask(kYesNoCancel)) {
      answer.button = *button;
      if (*button == kYes && q.enableEdit) {
        const std::optional<std::string> edited = AskLine("Destination (Enter keeps it): ");
        if (edited && !edited->empty()) answer.destination = *edited;
      }
      return answer;
    }
  }
  answer.button = Automatic(kYesNoCancel);
  err_ << "-> " << ButtonName(answer.button) << '\n';
  return answer;
}

std::optional<std::string> ConsoleUi::OpenFile(const std::string& title, const std::string&) {
  std::optional<std::string> path = AskLine(title + " Path: ");
  if (path && path->empty()) path.reset();
  return path;
}

std::optional<std::string> ConsoleUi::SaveFile(const std::string& title, const std::string& filter) {
  return OpenFile(title, filter);
}

std::string ConsoleUi::BrowseForFolder(const std::string& title, const std::string& startFolder) {
  return AskLine(title + " [" + startFolder + "]: ").value_or("");
}

void ConsoleUi::ShowForm(const platform::FormView& form) {
  if (!form.caption.empty()) out_ << "== " << form.caption << " ==\n";
  out_ << RenderForm(form);
}

}  // namespace sentrune::console
