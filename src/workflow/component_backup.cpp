// The backup of the component the IDE is about to overwrite with a build.
#include "files/file_functions.h"
#include "runtime/winpath.h"
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
                      .browseStartPath = rt::GetFolder(component)});
  if (form.SelectedButton == platform::mb::kNo) return {proposal, false, false};
  // The user has agreed to write this very name: no second question.
  const BackupPlan plan{form.DestinationFile, true, true};
  if (rt::GetFolder(plan.name) != remembered) folders.Store(kCompBackupBase, rt::GetFolder(plan.name));
  return plan;
}

}  // namespace

int32_t lfncBackupComponentEX(StepContext& step) {
  const int16_t value = StepValue(step.options.CreateBackup, step.project);
  if (value <= 0) return 0;

  const std::string defaultName = lfncMakeBackupName(step.state.files(), step.options, step.buildFile, "");
  if (defaultName.empty()) return 0;  // no component to back up
  RememberedFolders folders(step.state, step.project);
  const std::string remembered = folders.Get(kCompBackupBase);
  const std::string folder = remembered.empty() ? rt::GetFolder(defaultName) : remembered;
  BackupPlan plan{UnusedName(step.state.files(), rt::AddBackslash(folder) + rt::GetFileTitle(defaultName))};
  if (value == kAskFirst) plan = AskAboutBackup(step.state, folders, step.buildFile, plan.name, remembered);

  int32_t result = 0;
  if (plan.wanted) {
    result = lfncCopyFileEX(step.state, step.options, step.buildFile, plan.name, true, plan.silent);
    if (result == 0) {
      step.report.backups.push_back({"component backup", plan.name});
      if (step.options.BackupFileCount >= 1)
        (void)lfncRotateBackups(step.state, rt::GetFolder(plan.name), "*" + rt::GetExtension(plan.name),
                                step.options.BackupFileCount);
    }
  }
  step.state.err.Clear();
  return result;
}

}  // namespace sentrune
