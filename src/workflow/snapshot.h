#pragma once
// Project snapshots: a dated copy of the project file and every source file
// it names, taken after a build or from the menu, with an optional comment
// file and the project's dependencies beside them.
#include <cstdint>
#include <string>
#include <vector>

#include "runtime/result.h"
#include "workflow/build_report.h"
#include "workflow/step_context.h"

namespace sentrune {

class clsProject;

// The driver (modCommon): `force` for the menu command, which always asks;
// after a build the project type's CreateSnapshot decides. 0 when done or
// declined, 53 for a project never saved (after telling the user), else the
// first failing step's error number.
int32_t lfncSnapshotEX(StepContext& step, bool force);
// The menu's snapshot, with no event under way: with the sink's project (0
// without one) and its own context.
int32_t lfncSnapshotEX(clsProject& sink, bool force);

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
int32_t GatherDependencies(const StepContext& step, const std::string& snapshotFolder);

// Puts one file into a snapshot: missing folders are made, a file already
// there is replaced even when read-only.
rt::Status CopyIntoSnapshot(const StepContext& step, const std::string& source, const std::string& destination);

}  // namespace sentrune
