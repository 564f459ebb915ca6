// The IDE's workspace file (".vbw", window positions) beside a project file;
// some teams keep it out of their sources.
#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "runtime/text.h"
#include "workflow/cls_project.h"
#include "workflow/workflow_steps.h"

namespace sentrune {

int32_t lfncClearWorkspaceFileEX(clsProject& sink) {
  AddinState& state = sink.services().state;
  if (!sink.services().optionSet().ClearVBW || !sink.CProject()) return 0;
  const std::string projectFile = sink.CProject()->FileName();
  if (!rt::IEquals(lfncGetExtension(projectFile), ".vbp")) return 0;
  const std::string workspace = lfncStripExtension(projectFile) + ".vbw";
  if (!lfncFileExists(state.files(), workspace)) return 0;
  rt::Status removed = state.files().SetAttributes(workspace, platform::kAttrArchive);
  if (removed) removed = state.files().DeleteFile(workspace);
  return removed ? 0
                 : ReportTrappedError(state, removed.error(), "modFileFunctions:lfncClearWorkspaceFileEX");
}

}  // namespace sentrune
