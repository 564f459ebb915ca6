#include "workflow/frm_addin_main.h"

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

SnapshotCopy frmAddinMain::PrepareSnapshot(const OptionSet& options, const platform::VBProject& project,
                                           const std::string& snapshotFolder) {
  SnapshotCopy copy = sentrune::PrepareSnapshot(state_, options, project, snapshotFolder);
  lstFiles_ = copy.files;
  return copy;
}

}  // namespace sentrune
