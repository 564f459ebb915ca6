#include "scripted_ide_boxes.h"

#include <chrono>
#include <utility>

#include "scripted_ide_controls.h"

namespace sentrune::testing::ide {
namespace {

// How often the desktop is looked at: boxes come and go at the pace of the
// scenario's clicks, which wait for them.
constexpr DWORD kPollMs = 10;

// A box under a box of its own is left until that one is answered.
BOOL CALLBACK FindBox(HWND window, LPARAM found) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || !IsWindowEnabled(window) ||
      !IsClass(window, L"#32770"))
    return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

// The file name box of a common file dialog: cmb13 in the Explorer style,
// edt1 in the old one.
void SetFileBox(HWND dialog, const std::wstring& path) {
  constexpr int kExplorerFileBox = 0x47C;
  constexpr int kOldFileBox = 0x480;
  HWND box = GetDlgItem(dialog, kExplorerFileBox);
  if (box == nullptr) box = GetDlgItem(dialog, kOldFileBox);
  if (box != nullptr) SetWindowTextW(box, path.c_str());
}

}  // namespace

BoxAnswerer::BoxAnswerer() : thread_([this] { Watch(); }) {}

BoxAnswerer::~BoxAnswerer() {
  stop_ = true;
  thread_.join();
}

void BoxAnswerer::Answer(std::vector<int> buttons) {
  std::lock_guard lock(mutex_);
  for (int button : buttons) replies_.push_back([button](HWND) { return button; });
}

void BoxAnswerer::AnswerFile(const std::wstring& path) {
  AnswerWith([path](HWND box) {
    SetFileBox(box, path);
    return IDOK;
  });
}

void BoxAnswerer::AnswerWith(Act act) {
  std::lock_guard lock(mutex_);
  replies_.push_back(std::move(act));
}

std::vector<SeenBox> BoxAnswerer::Take() {
  std::lock_guard lock(mutex_);
  return std::exchange(seen_, {});
}

void BoxAnswerer::Watch() {
  while (!stop_) {
    HWND box = nullptr;
    EnumWindows(FindBox, reinterpret_cast<LPARAM>(&box));
    if (box != nullptr) Press(box);
    Sleep(kPollMs);
  }
}

void BoxAnswerer::Press(HWND box) {
  SeenBox seen{TextOf(box), ContentOf(box)};
  const int unanswered = GetDlgItem(box, IDCANCEL) != nullptr ? IDCANCEL : IDOK;
  Act act = [unanswered](HWND) { return unanswered; };
  {
    std::lock_guard lock(mutex_);
    if (!replies_.empty()) {
      act = std::move(replies_.front());
      replies_.pop_front();
    }
    seen_.push_back(std::move(seen));
  }
  const int button = act(box);
  if (button != 0)
    SendMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
  // The same box is not answered twice: it is gone, or waits under another,
  // before the next look.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (IsWindow(box) && IsWindowEnabled(box) && std::chrono::steady_clock::now() < deadline) Sleep(kPollMs);
}

}  // namespace sentrune::testing::ide
