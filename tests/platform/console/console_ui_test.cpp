#include "platform/console/console_ui.h"

#include <gtest/gtest.h>

#include <sstream>

namespace sentrune::console {
namespace {

using namespace platform::mb;

struct Console {
  explicit Console(AnswerMode mode, std::string input = {}) : in(std::move(input)), ui(mode, in, out, err) {}
  std::istringstream in;
  std::ostringstream out, err;
  ConsoleUi ui;
};

TEST(ConsoleUi, FixedAnswersAreSaidOnTheErrorStream) {
  Console yes(AnswerMode::kYes);
  EXPECT_EQ(yes.ui.MsgBox("Overwrite?", kOkCancel + kExclamation, "File Already Exists"), kOk);
  EXPECT_EQ(yes.err.str(), "== File Already Exists ==\nOverwrite?\n-> OK\n");

  Console no(AnswerMode::kNo);
  EXPECT_EQ(no.ui.MsgBox("Fix?", kYesNoCancel, "Fix"), kNo);
  EXPECT_EQ(no.ui.MsgBox("Go on?", kOkCancel, "Go"), kCancel);
  EXPECT_EQ(no.ui.MsgBox("Done.", kInformation, "Sentrune"), kOk);
  EXPECT_TRUE(no.out.str().empty());
}

TEST(ConsoleUi, AsksUntilAnAnswerFitsAndRefusesAtEndOfInput) {
  Console console(AnswerMode::kAsk, "maybe\nn\n");
  EXPECT_EQ(console.ui.MsgBox("Line one\r\nLine two", kYesNo, "Q"), kNo);
  EXPECT_NE(console.err.str().find("Line one\nLine two\n"), std::string::npos);
  EXPECT_EQ(console.ui.MsgBox("Again?", kYesNo, "Q"), kNo);  // input exhausted
}

TEST(ConsoleUi, FileHandlerKeepsOrEditsTheDestination) {
  Console console(AnswerMode::kAsk, "y\nD:\\Elsewhere\\W.dll\n");
  platform::FileHandlerQuestion q;
  q.caption = "Backup Component?";
  q.destination = "C:\\Src\\History\\W.dll";
  q.enableEdit = true;
  const platform::FileHandlerAnswer answer = console.ui.AskFileHandler(q);
  EXPECT_EQ(answer.button, kYes);
  EXPECT_EQ(answer.destination, "D:\\Elsewhere\\W.dll");

  Console automatic(AnswerMode::kYes);
  EXPECT_EQ(automatic.ui.AskFileHandler(q).destination, q.destination);
}

TEST(ConsoleUi, RendersTreesAndGrids) {
  platform::FormView tree;
  tree.kind = platform::FormView::Kind::kTree;
  tree.tree = {{"k", "root", {{"k\\a", "a", {{"k\\a\\b", "b", {}}}}}}};
  EXPECT_EQ(RenderForm(tree), "root\n  a\n    b\n");

  platform::FormView grid;
  grid.kind = platform::FormView::Kind::kGrid;
  grid.rows = {{0, true, {"Section"}}, {1, false, {"Short", "Yes"}}, {2, false, {"Longer one", "No"}}};
  EXPECT_EQ(RenderForm(grid), "Section\n  Short         Yes\n    Longer one  No\n");
}

}  // namespace
}  // namespace sentrune::console
