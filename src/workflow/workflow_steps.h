#pragma once
// The steps of the build workflow (modCommon). Each takes the context of the
// event that runs it (step_context.h), obeys its option for the project's
// type (0 skip, 1 run, 2 ask first; a No skips the step and still answers 0)
// and answers a code: 0 lets the chain go on, anything else ends it. 2
// means the user refused an overwrite, 7 that a copy went to the deferred
// actions.
#include <cstdint>

#include "workflow/step_context.h"

namespace sentrune {

// Before the build: backs up the component the IDE is about to overwrite,
// then rotates the backup folder.
int32_t lfncBackupComponentEX(StepContext& step);
// Before the build: compares the old component with the compatibility model
// and shows the differences. Always 0.
int32_t lfncCompBeforeEX(StepContext& step);
// After the build: sets up a compatibility model when the project has none,
// or a temporary one, or points at its own build output.
int32_t lfncManageCompatEX(StepContext& step);
// The after-build driver: build history, comparison and model update,
// snapshot, release copy, in that order, while the code stays 0.
int32_t lfncProcessPerOptions(StepContext& step);
// After the build: compares the new component with the model; `updateNeeded`
// tells whether they differ. Always 0.
int32_t lfncCompAfterEX(StepContext& step, bool& updateNeeded);
// Replaces the model by a fresh dated copy of the new component (the old
// model stays on disk) and points the project at it.
int32_t lfncUpdateCompatEX(StepContext& step);
// Copies the new component into the release folder, backing up the copy
// already there first.
int32_t lfncCopyToReleaseEX(StepContext& step);
int32_t lfncBackupReleaseEX(StepContext& step);
// After the project file was saved: with ClearVBW on, deletes the ".vbw"
// workspace file beside a ".vbp" project file.
int32_t lfncClearWorkspaceFileEX(StepContext& step);

}  // namespace sentrune
