#pragma once
#include <string>

#include "state/addin_state.h"

namespace sentrune {

// The only way the add-in shows a message box: keeps the caller's pending
// error across the box, traces boxes shown because of an error, and while the
// add-in unloads suppresses those (result 0) so that nothing blocks the IDE.
int lfncMsgBoxEX(AddinState& state, const std::string& prompt, int style, const std::string& title);

}  // namespace sentrune
