#pragma once
// Copies that cannot be done while the IDE holds the target open: offered to
// the user as a batch file on the desktop to run after the IDE is closed.
#include <optional>
#include <string>

#include "state/addin_state.h"
#include "settings/option_set.h"

namespace sentrune {

// With EnableDeferredActions on and the user agreeing, writes
// "Copy <source base name>.bat" to the desktop (replacing an earlier one) and
// says where it is. Any failure ends it silently; whatever part of the file
// was written stays.
void lfncDeferredCopy(AddinState& state, const OptionSet& options, const std::string& source,
                      const std::string& destination);

// The batch file's three lines, CR LF after each, with every path quoted and
// its "%" doubled so that cmd takes it literally; nothing when a path holds a
// quotation mark, which no quoting can make literal.
std::optional<std::string> DeferredCopyBatch(const std::string& source, const std::string& destination);

}  // namespace sentrune
