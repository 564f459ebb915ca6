// The IDE's workspace file (".vbw", window positions) beside a project file;
// some teams keep it out of their sources.
#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "workflow/workflow_steps.h"

namespace sentrune {

int32_t lfncClearWorkspaceFileEX(StepContext& step) {
  if (!step.options.ClearVBW) return 0;
  const std::string projectFile = step.project.FileName();
  if (!rt::IEquals(rt::GetExtension(projectFile), ".vbp")) return 0;
  const std::string workspace = rt::StripExtension(projectFile) + ".vbw";
  if (!lfncFileExists(step.state.files(), workspace)) return 0;
  rt::Status removed = step.state.files().SetAttributes(workspace, platform::kAttrArchive);
  if (removed) removed = step.state.files().DeleteFile(workspace);
  return removed ? 0
                 : ReportTrappedError(step.state, removed.error(), "modFileFunctions:lfncClearWorkspaceFileEX");
}

}  // namespace sentrune
