#include "support/fake_ui.h"

namespace sentrune::testing {
namespace {

template <typename T>
T PopOr(std::deque<T>& queue, T fallback) {
  if (queue.empty()) return fallback;
  T value = std::move(queue.front());
  queue.pop_front();
  return value;
}

}  // namespace

int FakeUi::MsgBox(const std::string& prompt, int style, const std::string& title) {
  boxes.push_back({prompt, style, title});
  const bool okOnly = (style & 7) == platform::mb::kOkOnly;
  return PopOr(answers_, okOnly ? platform::mb::kOk : platform::mb::kYes);
}

platform::FileHandlerAnswer FakeUi::AskFileHandler(const platform::FileHandlerQuestion& question) {
  fileQuestions.push_back(question);
  // Unless told otherwise the user agrees and keeps what the dialog proposed.
  platform::FileHandlerAnswer agree;
  agree.button = platform::mb::kYes;
  agree.destination = question.destination;
  agree.commentText = question.commentText;
  agree.commentsEnabled = question.commentsEnabled;
  agree.referencesEnabled = question.referencesEnabled;
  return PopOr(fileAnswers_, agree);
}

std::optional<std::string> FakeUi::OpenFile(const std::string&, const std::string&) {
  return PopOr(openFiles_, std::optional<std::string>{});
}

std::optional<std::string> FakeUi::SaveFile(const std::string&, const std::string&) {
  return PopOr(saveFiles_, std::optional<std::string>{});
}

std::string FakeUi::BrowseForFolder(const std::string& title, const std::string&) {
  browseTitles.push_back(title);
  return PopOr(folders_, std::string{});
}

}  // namespace sentrune::testing
