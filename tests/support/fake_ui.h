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

using Strings = std::vector<std::string>;

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

  int MsgBox(const std::string& prompt, int style, const std::string& title) override {
    boxes.push_back({prompt, style, title});
    const bool okOnly = (style & 7) == platform::mb::kOkOnly;
    return PopOr(answers_, okOnly ? platform::mb::kOk : platform::mb::kYes);
  }
  // Unless told otherwise the user agrees and keeps what the dialog proposed.
  platform::FileHandlerAnswer AskFileHandler(const platform::FileHandlerQuestion& question) override {
    fileQuestions.push_back(question);
    return PopOr(fileAnswers_, {platform::mb::kYes, question.destination, std::nullopt, question.commentText,
                                question.commentsEnabled, question.referencesEnabled});
  }
  std::optional<std::string> OpenFile(const std::string&, const std::string&) override { return PopOr(openFiles_, {}); }
  std::optional<std::string> SaveFile(const std::string&, const std::string&) override { return PopOr(saveFiles_, {}); }
  std::string BrowseForFolder(const std::string& title, const std::string&) override {
    browseTitles.push_back(title);
    return PopOr(folders_, {});
  }
  void ShowForm(const platform::FormView& form) override { forms.push_back(form); }

  // What the core showed and asked, in order.
  std::vector<AskedBox> boxes;
  Strings Prompts() const { return Each(&AskedBox::prompt); }
  Strings Titles() const { return Each(&AskedBox::title); }
  std::vector<platform::FileHandlerQuestion> fileQuestions;
  std::vector<std::string> browseTitles;
  std::vector<platform::FormView> forms;

 private:
  Strings Each(std::string AskedBox::*field) const {
    Strings texts;
    for (const AskedBox& box : boxes) texts.push_back(box.*field);
    return texts;
  }
  template <typename T>
  static T PopOr(std::deque<T>& queue, T fallback) {
    if (queue.empty()) return fallback;
    T value = std::move(queue.front());
    queue.pop_front();
    return value;
  }

  std::deque<int> answers_;
  std::deque<platform::FileHandlerAnswer> fileAnswers_;
  std::deque<std::optional<std::string>> openFiles_;
  std::deque<std::optional<std::string>> saveFiles_;
  std::deque<std::string> folders_;
};

}  // namespace sentrune::testing
