#pragma once
// Repairs the shell's open commands for the IDE's file classes, so that a
// double-clicked source file opens in the IDE under its long file name.
#include <cstdint>
#include <string>

#include "state/addin_state.h"
#include "platform/env.h"
#include "platform/registry.h"

namespace sentrune {

// The program the shell opens a document of this extension ("vbp") with, in
// its long path form, found by asking about a throw-away file in the temp
// folder. When there is none, one of the shell's failure words: "no
// association", "file not found", "path not found", "bad format".
// `programs` answers the question in place of the add-in's own Processes
// (a host whose shell associations live elsewhere).
std::string lfncFindExecutable(AddinState& state, const std::string& extension,
                               platform::Processes* programs = nullptr);

// Asks, class by class, before rewriting each open command that differs
// from the IDE's; Cancel stops at once. Ends with the count of changes,
// which it also returns.
int32_t lfncFixAssociations(AddinState& state, platform::Registry& registry,
                            platform::Processes* programs = nullptr);

}  // namespace sentrune
