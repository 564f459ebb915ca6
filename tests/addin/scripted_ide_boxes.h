#pragma once
// The developer in front of the scripted IDE: a thread of its own that
// waits for each message box or file dialog this process shows (a "#32770"
// dialog), notes its title and text, and presses the button the scenario
// chose, or types the file the scenario chose and presses OK.
// The box's own thread stays in the box's modal loop meanwhile, as the
// IDE's does.
#include "platform/win32/windows_api.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace sentrune::testing::ide {

struct SeenBox {
  std::wstring title;
  std::wstring text;
};

// The boxes as a failure message tells them.
inline std::wstring Describe(const std::vector<SeenBox>& boxes) {
  std::wstring text;
  for (const SeenBox& box : boxes) text += L"[" + box.title + L"] " + box.text + L"\n";
  return text;
}

class BoxAnswerer {
 public:
  BoxAnswerer();
  // Stops watching; a box still up is left to its owner.
  ~BoxAnswerer();
  BoxAnswerer(const BoxAnswerer&) = delete;
  BoxAnswerer& operator=(const BoxAnswerer&) = delete;

  // The buttons (IDOK, IDYES, IDNO...) for the next boxes, in order; a box
  // with none left is answered IDCANCEL, or IDOK when it has no Cancel.
  void Answer(std::vector<int> buttons);
  // The next box is a file dialog: this full path is typed in its file box.
  void AnswerFile(const std::wstring& path);
  // The boxes answered so far, taken out.
  std::vector<SeenBox> Take();

 private:
  void Watch();
  void Press(HWND box);

  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  struct Reply {
    int button;
    std::wstring fileName;  // typed into a file dialog first, unless empty
  };
  std::deque<Reply> replies_;
  std::vector<SeenBox> seen_;
  std::thread thread_;
};

}  // namespace sentrune::testing::ide
