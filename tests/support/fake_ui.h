#pragma once
// A scripted user: records every question the core asks and returns queued
// answers (or a default when the queue is empty), so that tests check what
// was asked as well as what happened.
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "platform/ui.h"

namespace sentrune::testing {

struct AskedBox {
  std::string prompt;
  int style = 0;
  std::string title;
};

class FakeUi : public platform::Ui {
 public:
  // Answers for MsgBox, in order; when none is queued the box gets Yes (OK
  // for an OK-only box).
  void QueueAnswer(int answer) { answers_.push_back(answer); }

  void QueueFileHandler(platform::FileHandlerAnswer answer) { fileAnswers_.push_back(std::move(answer)); }
  void QueueOpenFile(std::optional<std::string> path) { openFiles_.push_back(std::move(path)); }
  void QueueSaveFile(std::optional<std::string> path) { saveFiles_.push_back(std::move(path)); }
  void QueueFolder(std::string folder) { folders_.push_back(std::move(folder)); }

  int MsgBox(const std::string& prompt, int style, const std::string& title) override;
  platform::FileHandlerAnswer AskFileHandler(const platform::FileHandlerQuestion& question) override;
  std::optional<std::string> OpenFile(const std::string& title, const std::string& filter) override;
  std::optional<std::string> SaveFile(const std::string& title, const std::string& filter) override;
  std::string BrowseForFolder(const std::string& title, const std::string& startFolder) override;
  void ShowForm(const platform::FormView& form) override { forms.push_back(form); }

  // What the core showed and asked, in order.
  std::vector<AskedBox> boxes;
  std::vector<platform::FileHandlerQuestion> fileQuestions;
  std::vector<std::string> browseTitles;
  std::vector<platform::FormView> forms;

 private:
  std::deque<int> answers_;
  std::deque<platform::FileHandlerAnswer> fileAnswers_;
  std::deque<std::optional<std::string>> openFiles_;
  std::deque<std::optional<std::string>> saveFiles_;
  std::deque<std::string> folders_;
};

}  // namespace sentrune::testing
