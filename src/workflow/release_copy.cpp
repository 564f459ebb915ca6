// The release folder: the latest build is copied there, the copy it
// replaces is kept as a dated backup.
#include "files/file_functions.h"
#include "runtime/winpath.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;
constexpr const char* kReleaseBackupBase = "ReleaseBackupBase";

std::string ReleaseCopyPath(const StepContext& step) {
  const int type = step.project.Type();
  if (type < 0 || type >= kProjectTypeCount) return {};
  return rt::AddBackslash(step.options.ReleaseFolder[static_cast<size_t>(type)]) + rt::GetFileTitle(step.buildFile);
}

}  // namespace

int32_t lfncCopyToReleaseEX(StepContext& step) {
  const int16_t value = StepValue(step.options.CopyComponents, step.project);
  if (value <= 0) return 0;
  const std::string releaseCopy = ReleaseCopyPath(step);

  bool agreed = false;
  if (value == kAskFirst) {
    const frmFileHandlerEX form = AskStep(step.state, {.caption = "Copy to Release Folder?",
                                                       .prompt = "Copy the new component to your release folder?",
                                                       .source = step.buildFile,
                                                       .destination = releaseCopy});
    if (form.SelectedButton == mb::kNo) return 0;
    agreed = true;
  }
  // Only this build's backup may spare the overwrite question.
  step.ReleaseBackedUp = false;
  int32_t result = step.Record("lfncBackupReleaseEX", lfncBackupReleaseEX(step));
  if (result == 0) {
    result = lfncCopyFileEX(step.state, step.options, step.buildFile, releaseCopy, true,
                            agreed || step.ReleaseBackedUp);
    if (result == 0) step.report.releaseCopy = releaseCopy;
  }
  step.state.err.Clear();
  return result;
}

int32_t lfncBackupReleaseEX(StepContext& step) {
  const int16_t value = StepValue(step.options.BackupComponents, step.project);
  if (value <= 0) return 0;
  const std::string releaseCopy = ReleaseCopyPath(step);
  if (!lfncFileExists(step.state.files(), releaseCopy)) return 0;

  RememberedFolders folders(step.state, step.project);
  const std::string remembered = folders.Get(kReleaseBackupBase);
  std::string backupName =
      UnusedName(step.state.files(), lfncMakeBackupName(step.state.files(), step.options, releaseCopy, remembered));
  if (value == kAskFirst) {
    const frmFileHandlerEX form =
        AskStep(step.state, {.caption = "Backup Component?",
                             .prompt = "Backup the component that's currently in the release folder?",
                             .source = releaseCopy,
                             .destination = backupName,
                             .editable = true});
    if (form.SelectedButton == mb::kNo) return 0;
    backupName = form.DestinationFile;
    if (rt::GetFolder(backupName) != remembered) folders.Store(kReleaseBackupBase, rt::GetFolder(backupName));
  }
  int32_t result = lfncCopyFileEX(step.state, step.options, releaseCopy, backupName, true, false);
  step.ReleaseBackedUp = result == 0;
  if (result == 0) {
    step.report.backups.push_back({"release copy backup", backupName});
    if (step.options.BackupFileCount >= 1)
      result = lfncRotateBackups(step.state, rt::GetFolder(backupName), "*" + rt::GetExtension(backupName),
                                 step.options.BackupFileCount);
  }
  step.state.err.Clear();
  return result;
}

}  // namespace sentrune
