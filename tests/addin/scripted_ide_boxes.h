#pragma once
// The developer in front of the scripted IDE: a thread of its own that
// waits for each message box, file dialog or dialog of the add-in this
// process shows (a "#32770" dialog), notes its title and text, and presses
// the button the scenario chose, or types the file the scenario chose and
// presses OK, or does what the scenario says with its controls.
// The box's own thread stays in the box's modal loop meanwhile, as the
// IDE's does.
#include "platform/win32/windows_api.h"

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace sentrune::testing::ide {

struct SeenBox {
  std::wstring title;
  std::wstring text;  // as ContentOf reads it (scripted_ide_controls.h)
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
  // The next box is answered by `act`, which may read and change its
  // controls and returns the button to press; 0 when it has closed the box
  // (through the keyboard) or opened another over it, which is answered
  // next.
  using Act = std::function<int(HWND box)>;
  void AnswerWith(Act act);
  // The boxes answered so far, taken out.
  std::vector<SeenBox> Take();

 private:
  void Watch();
  void Press(HWND box);

  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::deque<Act> replies_;
  std::vector<SeenBox> seen_;
  std::thread thread_;
};

}  // namespace sentrune::testing::ide
