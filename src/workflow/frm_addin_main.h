#pragma once
// frmAddinMain: the add-in's hidden main form. It owns the one timer, which
// polls the IDE's active window for activity tracking, and the list of files
// of the last snapshot.
#include <cstdint>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "settings/option_set.h"
#include "tracking/activity_tracker.h"
#include "workflow/snapshot.h"

namespace sentrune {

class frmAddinMain {
 public:
  // The state must outlive the form.
  explicit frmAddinMain(AddinState& state) : state_(state) {}

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

  // Copies a snapshot (see PrepareSnapshot in snapshot.h) and keeps its list
  // of files for the user to see.
  SnapshotCopy PrepareSnapshot(const OptionSet& options, const platform::VBProject& project,
                               const std::string& snapshotFolder);
  const std::vector<std::string>& lstFiles() const { return lstFiles_; }

 private:
  AddinState& state_;
  std::vector<std::string> lstFiles_;
};

}  // namespace sentrune
