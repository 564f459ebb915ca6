#pragma once
// Project snapshots: a dated copy of the project file and every source file
// it names, taken after a build or from the menu, with an optional comment
// file and the project's dependencies beside them.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/result.h"
#include "workflow/build_report.h"
#include "workflow/snapshot_folder.h"
#include "workflow/step_context.h"

namespace sentrune {

class clsProject;

// The driver (modCommon): `force` for the menu command, which always asks;
// after a build the project type's CreateSnapshot decides. 0 when done or
// declined, 53 for a project never saved (after telling the user), else the
// first failing step's error number.
// What a caller without the dialog's fields to hand decides beforehand:
// they set the question's comment and check boxes before it is asked, as a
// user would in the dialog. Nothing set leaves the dialog's defaults.
struct SnapshotChoices {
  std::optional<std::string> comment;  // the comment, with its check box ticked
  std::optional<bool> gather;          // the gather-dependencies check box
};

int32_t lfncSnapshotEX(StepContext& step, bool force, const SnapshotChoices& choices = {});
// The menu's snapshot, with no event under way: with the sink's project (0
// without one) and its own context.
int32_t lfncSnapshotEX(clsProject& sink, bool force, const SnapshotChoices& choices = {});

struct SnapshotCopy {
  int32_t result = 0;              // 0, or the error number of the first copy that failed
  std::vector<std::string> files;  // the project file's names, as listed for the user
  std::vector<BuildReport::OutsideFile> outside;
};

// Copies the files of the project's intact type library references and of
// the controls its "Object=" lines name into the snapshot's
// "Dependencies\" folder. Controls are looked for beside the project, then in
// the system folder; one found nowhere counts as broken and is left out.
// 0, or the error number of the first copy that failed.
int32_t GatherDependencies(const StepContext& step, SnapshotFolder& snapshot);

}  // namespace sentrune
