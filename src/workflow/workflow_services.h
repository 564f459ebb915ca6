#pragma once
// What the project sinks and the build steps reach of the add-in around
// them. The host (Connect) owns every part and hands this down, so that the
// workflow never reaches a global.
#include <functional>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "settings/options_handler.h"
#include "tracking/activity_tracker.h"
#include "workflow/build_report.h"

namespace sentrune {

class frmAddinMain;

struct WorkflowServices {
  AddinState& state;
  OptionsHandler& options;
  platform::VBE& ide;       // gobjVBInstance
  ActivityTracker& tracker;
  frmAddinMain& mainForm;
  // When set, hears of each build and takes its report.
  const std::function<void(const BuildEnd&)>& buildEnded;
};

}  // namespace sentrune
