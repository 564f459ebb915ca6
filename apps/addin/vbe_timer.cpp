#include "vbe_timer.h"

#include "com_guard.h"
#include "module.h"

namespace sentrune::addin {
namespace {

constexpr wchar_t kClassName[] = L"SentruneAddinTimer";
constexpr UINT_PTR kTimerId = 1;

}  // namespace

MessageTimer::MessageTimer(UINT intervalMs, std::function<void()> tick) : tick_(std::move(tick)) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &MessageTimer::WindowProc;
  windowClass.hInstance = ThisModule();
  windowClass.lpszClassName = kClassName;
  // Registered once per load of the module; a second timer finds it there.
  RegisterClassExW(&windowClass);
  window_ = CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance,
                            nullptr);
  if (window_ == nullptr) return;
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  running_ = SetTimer(window_, kTimerId, intervalMs, nullptr) != 0;
}

MessageTimer::~MessageTimer() {
  if (window_ == nullptr) return;
  KillTimer(window_, kTimerId);
  DestroyWindow(window_);
  // The class goes with the last window, so that an unloaded DLL leaves no procedure behind.
  UnregisterClassW(kClassName, ThisModule());
}

LRESULT CALLBACK MessageTimer::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_TIMER && wParam == kTimerId) {
    auto* timer = reinterpret_cast<MessageTimer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    // Nothing may unwind into the IDE's message loop.
    if (timer != nullptr && timer->tick_) (void)Trap([timer] {
        timer->tick_();
        return S_OK;
      });
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace sentrune::addin
