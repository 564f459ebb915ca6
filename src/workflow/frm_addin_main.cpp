#include "workflow/frm_addin_main.h"

#include "files/trapped_error.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "workflow/snapshot_list.h"

namespace sentrune {

void frmAddinMain::tmrActiveWindow_Timer(platform::VBE& ide, ActivityTracker& tracker) {
  if (!tmrActiveWindow.Enabled) return;
  // The object model tells no window's component; a component window is
  // active when a window is and the IDE has a component selected.
  const platform::ComponentPtr component = ide.ActiveWindow() ? ide.SelectedVBComponent() : nullptr;
  if (component) {
    tracker.TrackActivity(ide.ActiveVBProject(), component);
  } else {
    tracker.ComponentManager(nullptr);
  }
}

SnapshotCopy frmAddinMain::PrepareSnapshot(const StepContext& step, SnapshotFolder& snapshot) {
  SnapshotCopy copy;
  const std::string projectFile = step.project.FileName();
  const rt::Result<std::string> bytes = step.state.files().ReadFile(projectFile);
  if (!bytes) {
    lstFiles_.clear();
    copy.result = ReportTrappedError(step.state, bytes.error(), "frmAddinMain:PrepareSnapshot");
    return copy;
  }
  copy.files = SnapshotFileList(step.state.files(), projectFile, rt::Cp1252ToUtf8(*bytes));
  lstFiles_ = copy.files;
  const auto put = [&](const std::string& source, const std::string& relative) {
    const rt::Status copied = snapshot.Put(source, relative);
    if (!copied && copy.result == 0)
      copy.result = ReportTrappedError(step.state, copied.error(), "frmAddinMain:PrepareSnapshot");
  };
  put(projectFile, rt::GetFileTitle(projectFile));
  const std::string projectFolder = rt::GetFolder(projectFile);
  for (const std::string& name : copy.files) {
    const std::optional<SnapshotPlace> place = PlaceInSnapshot(projectFolder, name);
    if (!place) continue;
    if (place->outside) copy.outside.push_back({place->source, snapshot.Path() + place->relative});
    put(place->source, place->relative);
  }
  return copy;
}

}  // namespace sentrune
