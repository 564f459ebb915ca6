#pragma once
// A form timer for a DLL that has no form: a hidden message-only window
// whose WM_TIMER calls the tick on the IDE's own thread, between its
// messages, as a VB form's Timer control would.
#include "platform/win32/windows_api.h"

#include <functional>

namespace sentrune::addin {

class MessageTimer {
 public:
  // Starts ticking every `intervalMs`; a tick that throws is passed over.
  MessageTimer(UINT intervalMs, std::function<void()> tick);
  // Stops the timer and destroys the window.
  ~MessageTimer();
  MessageTimer(const MessageTimer&) = delete;
  MessageTimer& operator=(const MessageTimer&) = delete;

  // False when the window or the timer could not be made.
  bool Running() const { return running_; }

 private:
  static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  std::function<void()> tick_;
  HWND window_ = nullptr;
  bool running_ = false;
};

}  // namespace sentrune::addin
