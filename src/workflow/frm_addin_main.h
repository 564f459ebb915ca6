#pragma once
// frmAddinMain: the add-in's hidden main form. It owns the one timer, which
// polls the IDE's active window for activity tracking, and the list of files
// of the last snapshot.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/ide.h"
#include "tracking/activity_tracker.h"
#include "workflow/snapshot.h"
#include "workflow/step_context.h"

namespace sentrune {

class frmAddinMain {
 public:
  // A form timer as plain state: the host calls Tick at the interval while
  // it is enabled.
  struct Timer {
    bool Enabled = false;
    int32_t Interval = 0;  // milliseconds
  };
  Timer tmrActiveWindow;

  // One tick of tmrActiveWindow (nothing while disabled): with a component
  // window active, the IDE's project and component go to activity tracking;
  // otherwise no component is active.
  void tmrActiveWindow_Timer(platform::VBE& ide, ActivityTracker& tracker);

  // Copies the project file, then every file it lists, into the snapshot's
  // new folder, and keeps the list for the user to see. With SnapIsReadOnly
  // the copies are made read-only.
  SnapshotCopy PrepareSnapshot(const StepContext& step, SnapshotFolder& snapshot);
  const std::vector<std::string>& lstFiles() const { return lstFiles_; }

 private:
  std::vector<std::string> lstFiles_;
};

}  // namespace sentrune
