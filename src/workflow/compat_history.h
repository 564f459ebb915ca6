#pragma once
// How far back a component stayed binary compatible: the dated copies its
// builds left behind (models in "Compat\", backups in the backup folder),
// in time order, each compared with the one before.
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/ide.h"
#include "runtime/datetime.h"
#include "settings/option_set.h"
#include "state/addin_state.h"
#include "typelib/tlb_difference.h"

namespace sentrune {

struct DatedCopy {
  std::string path;
  rt::DateTime written;
};

// The dated copies of the project's component (base name, "-", anything,
// its extension), oldest first by last-write time, then by path; the
// component itself comes last when it exists. Looked for in "Compat\" and
// the backup folder beside the component, beside the project's compatible
// component, and in the folders the project's tracking database remembers
// for models and backups (read only when the database exists: asking
// creates no file).
std::vector<DatedCopy> CompatTimeline(AddinState& state, const OptionSet& options,
                                      const platform::VBProject& project);

struct CompatStep {
  size_t newer = 0;             // positions in the timeline
  std::optional<size_t> older;  // the last readable copy before `newer`, if any
  std::vector<TlbDifference> differences;
  std::string error;  // why `newer` could not be read (nothing was compared)
};

// Compares each copy, as the build (A), with the last readable copy before
// it, as its model (B). `each` receives one step per copy, in order, as soon
// as it is done, so that a long walk can be followed; the first readable
// copy's step has no `older`.
void WalkCompatTimeline(AddinState& state, const std::vector<DatedCopy>& timeline, bool ignoreMinor,
                        const std::function<void(const CompatStep&)>& each);

}  // namespace sentrune
