// The after-build driver.
#include "tracking/jet351.h"
#include "workflow/cls_project.h"
#include "workflow/snapshot.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

// The build is recorded whatever the later steps decide.
void RecordBuild(clsProject& sink) {
  const platform::VBProject& project = *sink.CProject();
  const std::string database = TrackingDatabaseName(project);
  if (database.empty()) return;
  clsJet351 jet(sink.services().state);
  jet.SetCurrentDBName(database);
  sink.Report().historyRecorded = jet.AddBuildHistory(project.BuildFileName()) == 0;
}

int32_t Record(clsProject& sink, const char* procedure, int32_t code) {
  sink.Report().steps.push_back({procedure, code});
  return code;
}

}  // namespace

int32_t lfncProcessPerOptions(clsProject& sink) {
  WorkflowServices& services = sink.services();
  AddinState& state = services.state;
  if (!sink.CProject()) return 0;
  if (services.optionSet().TrackHistory) RecordBuild(sink);

  int32_t lErrorCode = 0;
  if (sink.CProject()->Type() != platform::vbext_pt_StandardExe) {
    bool updateNeeded = false;
    state.trace({"Running lErrorCode = lfncCompAfterEX(objProject, blnUpdateNeeded)"});
    lErrorCode = Record(sink, "lfncCompAfterEX", lfncCompAfterEX(sink, updateNeeded));
    if (lErrorCode == 0 && updateNeeded) {
      state.trace({"Running lErrorCode = lfncUpdateCompatEX(objProject)"});
      lErrorCode = Record(sink, "lfncUpdateCompatEX", lfncUpdateCompatEX(sink));
    }
  }
  if (lErrorCode == 0) {
    state.trace({"Running lErrorCode = lfncSnapshotEX(objProject, False)"});
    lErrorCode = Record(sink, "lfncSnapshotEX", lfncSnapshotEX(sink, false));
  }
  if (lErrorCode == 0) {
    state.trace({"Running lErrorCode = lfncCopyToReleaseEX(objProject)"});
    lErrorCode = Record(sink, "lfncCopyToReleaseEX", lfncCopyToReleaseEX(sink));
  }
  return lErrorCode;
}

}  // namespace sentrune
