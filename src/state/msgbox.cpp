#include "state/msgbox.h"

namespace sentrune {

int lfncMsgBoxEX(AddinState& state, const std::string& prompt, int style, const std::string& title) {
  const rt::ErrObject::Saved saved = state.err.Save();
  int answer = 0;
  bool suppressed = false;
  if (saved.number != 0) {
    state.trace({"'Message contains error information", state.Timer()});
    state.trace({"'Prompt: " + prompt});
    state.trace({"'Buttons: " + std::to_string(style)});
    state.trace({"'Title: " + title});
    if (state.gblnShuttingDown) {
      state.trace({"'Shutting Down - Supressing Error Dialog"});
      suppressed = true;
    }
  }
  if (!suppressed) {
    try {
      answer = state.ui().MsgBox(prompt, style, title);
    } catch (...) {
      // A failing box must not reach the caller; it reads as no answer.
      answer = 0;
    }
  }
  state.err.Restore(saved);
  return answer;
}

}  // namespace sentrune
