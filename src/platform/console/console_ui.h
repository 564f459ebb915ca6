#pragma once
// The terminal user interface. On a terminal it asks; with a fixed answer
// (--yes / --no) or without a terminal it answers by itself and says on the
// error stream what it was asked and what it answered, so that a build log
// shows every decision.
#include <iosfwd>
#include <optional>
#include <string>

#include "platform/ui.h"

namespace sentrune::console {

enum class AnswerMode {
  kAsk,  // ask on the terminal
  kYes,  // agree to everything
  kNo,   // refuse everything (No, else Cancel, else OK)
};

class ConsoleUi : public platform::Ui {
 public:
  ConsoleUi(AnswerMode mode, std::istream& in, std::ostream& out, std::ostream& err);

  int MsgBox(const std::string& prompt, int style, const std::string& title) override;
  platform::FileHandlerAnswer AskFileHandler(const platform::FileHandlerQuestion& question) override;
  std::optional<std::string> OpenFile(const std::string& title, const std::string& filter) override;
  std::optional<std::string> SaveFile(const std::string& title, const std::string& filter) override;
  std::string BrowseForFolder(const std::string& title, const std::string& startFolder) override;
  void ShowForm(const platform::FormView& form) override;

 private:
  // Reads one answer among the buttons of a style; nothing at end of input.
  std::optional<int> Ask(int style);
  int Automatic(int style) const;
  std::optional<std::string> AskLine(const std::string& question);

  AnswerMode mode_;
  std::istream& in_;
  std::ostream& out_;
  std::ostream& err_;
};

// Renders a form model as text: a tree indented two blanks per level, a grid
// as aligned columns, a text window as it stands.
std::string RenderForm(const platform::FormView& form);

}  // namespace sentrune::console
