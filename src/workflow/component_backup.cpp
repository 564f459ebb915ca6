// The backup of the component the IDE is about to overwrite with a build.
#include "files/file_functions.h"
#include "runtime/winpath.h"
#include "workflow/cls_project.h"
#include "workflow/step_support.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

constexpr const char* kCompBackupBase = "CompBackupBase";

struct BackupPlan {
  std::string name;
  bool silent = false;
  bool wanted = true;
};

// Asks about the proposed name; the user may pick another folder, which the
// project then remembers.
BackupPlan AskAboutBackup(AddinState& state, RememberedFolders& folders, const std::string& component,
                          const std::string& proposal, const std::string& remembered) {
  const frmFileHandlerEX form =
      AskStep(state, {.caption = "Backup Component?",
                      .prompt = "Let Sentrune backup this component before VB overwrites it?",
                      .dialogType = 1,
                      .source = component,
                      .destination = proposal,
                      .editable = true,
                      .browseStartPath = lfncGetFolder(component)});
  if (form.SelectedButton == platform::mb::kNo) return {proposal, false, false};
  // The user has agreed to write this very name: no second question.
  const BackupPlan plan{form.DestinationFile, true, true};
  if (lfncGetFolder(plan.name) != remembered) folders.Store(kCompBackupBase, lfncGetFolder(plan.name));
  return plan;
}

}  // namespace

int32_t lfncBackupComponentEX(clsProject& sink) {
  WorkflowServices& services = sink.services();
  AddinState& state = services.state;
  const OptionSet& options = services.optionSet();
  const platform::VBProject& project = *sink.CProject();
  const int16_t value = StepValue(options.CreateBackup, project);
  if (value <= 0) return 0;

  const std::string component = project.BuildFileName();
  const std::string defaultName = lfncMakeBackupName(state.files(), options, component, "");
  if (defaultName.empty()) return 0;  // no component to back up
  RememberedFolders folders(state, project);
  const std::string remembered = folders.Get(kCompBackupBase);
  const std::string folder = remembered.empty() ? lfncGetFolder(defaultName) : remembered;
  BackupPlan plan{rt::AddBackslash(folder) + lfncGetFileTitle(defaultName)};
  if (value == kAskFirst) plan = AskAboutBackup(state, folders, component, plan.name, remembered);

  int32_t result = 0;
  if (plan.wanted) {
    result = lfncCopyFileEX(state, options, component, plan.name, true, plan.silent);
    if (result == 0) {
      sink.Report().backups.push_back({"component backup", plan.name});
      if (options.BackupFileCount >= 1)
        (void)lfncRotateBackups(state, lfncGetFolder(plan.name), "*" + lfncGetExtension(plan.name),
                                options.BackupFileCount);
    }
  }
  state.err.Clear();
  return result;
}

}  // namespace sentrune
