#pragma once
// What a build step works with. clsProject gathers it once when an event
// starts the steps (the menu's snapshot does so itself), so every step of
// one event reads the same options, project and build file and reports to
// the same place.
#include <cstdint>
#include <string>

#include "platform/ide.h"
#include "settings/option_set.h"
#include "state/addin_state.h"
#include "workflow/build_report.h"

namespace sentrune {

class frmAddinMain;

struct StepContext {
  AddinState& state;
  const OptionSet& options;  // the handler's set itself: each step sees it as it is now
  platform::VBProject& project;
  std::string buildFile;  // the component the build writes
  BuildReport& report;
  frmAddinMain& mainForm;  // keeps the list of the last snapshot's files
  // Set by lfncBackupReleaseEX to whether its copy succeeded; read by
  // lfncCopyToReleaseEX to copy without asking.
  bool ReleaseBackedUp = false;

  // Notes a step's code in the report and answers it.
  int32_t Record(const char* procedure, int32_t code) {
    report.steps.push_back({procedure, code});
    return code;
  }
};

}  // namespace sentrune
