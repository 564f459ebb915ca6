// The release folder: the latest build is copied there, the copy it
// replaces is kept as a dated backup.
#include "files/file_functions.h"
#include "runtime/winpath.h"
#include "workflow/cls_project.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;
constexpr const char* kReleaseBackupBase = "ReleaseBackupBase";

std::string ReleaseCopyPath(const OptionSet& options, const platform::VBProject& project) {
  const int type = project.Type();
  if (type < 0 || type >= kProjectTypeCount) return {};
  return rt::AddBackslash(options.ReleaseFolder[static_cast<size_t>(type)]) +
         lfncGetFileTitle(project.BuildFileName());
}

}  // namespace

int32_t lfncCopyToReleaseEX(clsProject& sink) {
  AddinState& state = sink.services().state;
  const OptionSet& options = sink.services().optionSet();
  const platform::VBProject& project = *sink.CProject();
  const int16_t value = StepValue(options.CopyComponents, project);
  if (value <= 0) return 0;
  const std::string component = project.BuildFileName();
  const std::string releaseCopy = ReleaseCopyPath(options, project);

  bool agreed = false;
  if (value == kAskFirst) {
    const frmFileHandlerEX form = AskStep(state, {.caption = "Copy to Release Folder?",
                                                  .prompt = "Copy the new component to your release folder?",
                                                  .source = component,
                                                  .destination = releaseCopy});
    if (form.SelectedButton == mb::kNo) return 0;
    agreed = true;
  }
  // Only this build's backup may spare the overwrite question.
  sink.ReleaseBackedUp = false;
  int32_t result = lfncBackupReleaseEX(sink);
  sink.Report().steps.push_back({"lfncBackupReleaseEX", result});
  if (result == 0) {
    result = lfncCopyFileEX(state, options, component, releaseCopy, true, agreed || sink.ReleaseBackedUp);
    if (result == 0) sink.Report().releaseCopy = releaseCopy;
  }
  state.err.Clear();
  return result;
}

int32_t lfncBackupReleaseEX(clsProject& sink) {
  AddinState& state = sink.services().state;
  const OptionSet& options = sink.services().optionSet();
  const platform::VBProject& project = *sink.CProject();
  const int16_t value = StepValue(options.BackupComponents, project);
  if (value <= 0) return 0;
  const std::string releaseCopy = ReleaseCopyPath(options, project);
  if (!lfncFileExists(state.files(), releaseCopy)) return 0;

  RememberedFolders folders(state, project);
  const std::string remembered = folders.Get(kReleaseBackupBase);
  std::string backupName = lfncMakeBackupName(state.files(), options, releaseCopy, remembered);
  if (value == kAskFirst) {
    const frmFileHandlerEX form =
        AskStep(state, {.caption = "Backup Component?",
                        .prompt = "Backup the component that's currently in the release folder?",
                        .source = releaseCopy,
                        .destination = backupName,
                        .editable = true});
    if (form.SelectedButton == mb::kNo) return 0;
    backupName = form.DestinationFile;
    if (lfncGetFolder(backupName) != remembered) folders.Store(kReleaseBackupBase, lfncGetFolder(backupName));
  }
  int32_t result = lfncCopyFileEX(state, options, releaseCopy, backupName, true, false);
  sink.ReleaseBackedUp = result == 0;
  if (result == 0) {
    sink.Report().backups.push_back({"release copy backup", backupName});
    if (options.BackupFileCount >= 1)
      result = lfncRotateBackups(state, lfncGetFolder(backupName), "*" + lfncGetExtension(backupName),
                                 options.BackupFileCount);
  }
  state.err.Clear();
  return result;
}

}  // namespace sentrune
