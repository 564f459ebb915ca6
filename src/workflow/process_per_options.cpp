// The after-build driver.
#include "tracking/jet351.h"
#include "workflow/snapshot.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

// The build is recorded whatever the later steps decide.
void RecordBuild(StepContext& step) {
  const std::string database = TrackingDatabaseName(step.project);
  if (database.empty()) return;
  clsJet351 jet(step.state);
  jet.SetCurrentDBName(database);
  step.report.historyError = jet.AddBuildHistory(step.buildFile);
  step.report.historyRecorded = step.report.historyError == 0;
}

}  // namespace

int32_t lfncProcessPerOptions(StepContext& step) {
  AddinState& state = step.state;
  if (step.options.TrackHistory) RecordBuild(step);

  int32_t lErrorCode = 0;
  if (step.project.Type() != platform::vbext_pt_StandardExe) {
    bool updateNeeded = false;
    state.trace({"Running lErrorCode = lfncCompAfterEX(objProject, blnUpdateNeeded)"});
    lErrorCode = step.Record("lfncCompAfterEX", lfncCompAfterEX(step, updateNeeded));
    if (lErrorCode == 0 && updateNeeded) {
      state.trace({"Running lErrorCode = lfncUpdateCompatEX(objProject)"});
      lErrorCode = step.Record("lfncUpdateCompatEX", lfncUpdateCompatEX(step));
    }
  }
  if (lErrorCode == 0) {
    state.trace({"Running lErrorCode = lfncSnapshotEX(objProject, False)"});
    lErrorCode = step.Record("lfncSnapshotEX", lfncSnapshotEX(step, false));
  }
  if (lErrorCode == 0) {
    state.trace({"Running lErrorCode = lfncCopyToReleaseEX(objProject)"});
    lErrorCode = step.Record("lfncCopyToReleaseEX", lfncCopyToReleaseEX(step));
  }
  return lErrorCode;
}

}  // namespace sentrune
