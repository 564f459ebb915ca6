#include "scripted_ide_boxes.h"

#include <chrono>
#include <utility>

namespace sentrune::testing::ide {
namespace {

// How often the desktop is looked at: boxes come and go at the pace of the
// scenario's clicks, which wait for them.
constexpr DWORD kPollMs = 10;

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

bool IsClass(HWND window, const wchar_t* expected) {
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  return lstrcmpiW(name, expected) == 0;
}

BOOL CALLBACK FindBox(HWND window, LPARAM found) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || !IsClass(window, L"#32770")) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

// The prompt is the box's one static control with text (the icon has none).
BOOL CALLBACK FindPrompt(HWND child, LPARAM text) {
  if (!IsClass(child, L"Static")) return TRUE;
  std::wstring own = TextOf(child);
  if (own.empty()) return TRUE;
  *reinterpret_cast<std::wstring*>(text) = std::move(own);
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
  for (int button : buttons) replies_.push_back({button, {}});
}

void BoxAnswerer::AnswerFile(const std::wstring& path) {
  std::lock_guard lock(mutex_);
  replies_.push_back({IDOK, path});
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
  SeenBox seen{TextOf(box), {}};
  EnumChildWindows(box, FindPrompt, reinterpret_cast<LPARAM>(&seen.text));
  Reply reply{GetDlgItem(box, IDCANCEL) != nullptr ? IDCANCEL : IDOK, {}};
  {
    std::lock_guard lock(mutex_);
    if (!replies_.empty()) {
      reply = std::move(replies_.front());
      replies_.pop_front();
    }
    seen_.push_back(std::move(seen));
  }
  const int button = reply.button;
  if (!reply.fileName.empty()) SetFileBox(box, reply.fileName);
  SendMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
  // The same box is not answered twice: it is gone before the next look.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (IsWindow(box) && std::chrono::steady_clock::now() < deadline) Sleep(kPollMs);
}

}  // namespace sentrune::testing::ide
