#pragma once
// How the file procedures report a failure they trapped: the error is made
// pending for the box (so the trace records it), shown, then cleared, since
// the procedure answers with the error number instead of raising it.
#include <cstdint>
#include <string>

#include "state/addin_state.h"
#include "state/msgbox.h"
#include "runtime/vb_error.h"

namespace sentrune {

inline int32_t ReportTrappedError(AddinState& state, const rt::VbError& error, const std::string& title) {
  state.err.Raise(error.number, title, error.description);
  lfncMsgBoxEX(state, "Error " + std::to_string(error.number) + "\r\n" + error.description,
               platform::mb::kCritical, title);
  state.err.Clear();
  return error.number;
}

}  // namespace sentrune
