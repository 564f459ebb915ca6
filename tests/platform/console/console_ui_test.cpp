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

TEST(ConsoleUi, AnswersFixedOrAskedAreSaidOnTheErrorStream) {
  Console yes(AnswerMode::kYes);
  EXPECT_EQ(yes.ui.MsgBox("Overwrite?", kOkCancel + kExclamation, "File Already Exists"), kOk);
  EXPECT_EQ(yes.err.str(), "== File Already Exists ==\nOverwrite?\n-> OK\n");

  Console no(AnswerMode::kNo);
  EXPECT_EQ(no.ui.MsgBox("Fix?", kYesNoCancel, "Fix"), kNo);
  EXPECT_EQ(no.ui.MsgBox("Go on?", kOkCancel, "Go"), kCancel);
  EXPECT_EQ(no.ui.MsgBox("Done.", kInformation, "Sentrune"), kOk);
  EXPECT_TRUE(no.out.str().empty());

  // Asked, until an answer fits; refused at the end of the input.
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

}  // namespace
}  // namespace sentrune::console
