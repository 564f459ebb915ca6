#include "workflow/snapshot.h"

#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "runtime/vb_format.h"
#include "runtime/winpath.h"
#include "state/msgbox.h"
#include "workflow/cls_project.h"
#include "workflow/frm_addin_main.h"
#include "workflow/step_support.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;
constexpr const char* kSnapshotBase = "SnapshotBase";

struct SnapshotPlan {
  std::string folder;
  std::string comment{};
  bool gather = false;
};

// The question of a snapshot; nothing when the user declined.
std::optional<SnapshotPlan> AskAboutSnapshot(const StepContext& step, const std::string& projectFile,
                                             const std::string& proposal, const std::string& folderName,
                                             const SnapshotChoices& choices) {
  frmFileHandlerEX form(step.state);
  form.Caption = "Create Snapshot?";
  form.Prompt =
      "Create a snapshot of the current source code?\r\nAccept folder as shown or browse to select a base "
      "folder.";
  form.FDialogType = 3;
  form.SourceFile = projectFile;
  form.DestinationFile = proposal;
  form.BrowseEnabled = form.EnableEdit = true;
  form.BrowseStartPath = rt::GetFolder(projectFile);
  form.BrowsePathFooter = folderName;
  form.CommentText = "Project Snapshot Created: " + rt::Format(step.state.env().Time().Now(), "General Date");
  form.CommentsVisible = form.ReferencesVisible = true;
  form.CommentsEnabled = step.options.DefaultStoreComment;
  form.ReferencesEnabled = step.options.DefaultGatherDepens;
  if (choices.comment) {
    form.CommentText = *choices.comment;
    form.CommentsEnabled = true;
  }
  if (choices.gather) form.ReferencesEnabled = *choices.gather;
  if (form.Show() == mb::kNo) return std::nullopt;
  // An unticked "store comment" box means no comment file.
  return SnapshotPlan{rt::AddBackslash(form.DestinationFile), form.CommentsEnabled ? form.CommentText : "",
                      form.ReferencesEnabled};
}

// The base folder under which the user put this snapshot, for the next one.
void RememberBase(RememberedFolders& folders, const std::string& chosen, const std::string& folderName) {
  if (chosen.size() < folderName.size()) return;
  folders.Store(kSnapshotBase, chosen.substr(0, chosen.size() - folderName.size()));
}

}  // namespace

int32_t lfncSnapshotEX(StepContext& step, bool force, const SnapshotChoices& choices) {
  const int16_t value = StepValue(step.options.CreateSnapshot, step.project);
  if (!force && value <= 0) return 0;

  const std::string projectFile = step.project.FileName();
  if (!lfncFileExists(step.state.files(), projectFile)) {
    lfncMsgBoxEX(step.state, "'" + step.project.Name() + "' not saved or path not found.", mb::kExclamation,
                 "Sentrune");
    return rt::errnum::kFileNotFound;
  }
  const std::string stamp = rt::Format(step.state.env().Time().Now(), step.options.DateFormatString);
  const std::string folderName = SnapshotFolderName(step.project.Name(), stamp) + "\\";
  RememberedFolders folders(step.state, step.project);
  const std::string base = folders.Get(kSnapshotBase);
  const std::string proposal = (base.empty() ? rt::GetFolder(projectFile) : rt::GetFolder(base)) + folderName;

  SnapshotPlan plan{proposal};
  if (force || value == kAskFirst) {
    std::optional<SnapshotPlan> asked = AskAboutSnapshot(step, projectFile, proposal, folderName, choices);
    if (!asked) return 0;
    plan = std::move(*asked);
  }
  if (plan.folder != proposal) RememberBase(folders, plan.folder, folderName);

  rt::Result<SnapshotFolder> snapshot = SnapshotFolder::Make(step, plan.folder);
  if (!snapshot) return ReportTrappedError(step.state, snapshot.error(), "modCommon:lfncSnapshotEX");
  const SnapshotCopy copy = step.mainForm.PrepareSnapshot(step, *snapshot);
  step.report.snapshotFolder = snapshot->Path();
  step.report.snapshotOutside = copy.outside;
  int32_t result = copy.result;
  if (!plan.comment.empty()) {
    const int32_t written =
        lfncWriteTextFile(step.state, snapshot->Path() + "_Snapshot_ReadME.txt", plan.comment, false, true);
    if (result == 0) result = written;
  }
  if (result == 0 && plan.gather) result = GatherDependencies(step, *snapshot);
  step.state.err.Clear();
  return result;
}

int32_t lfncSnapshotEX(clsProject& sink, bool force, const SnapshotChoices& choices) {
  if (!sink.CProject()) return 0;
  StepContext step = sink.MakeStepContext();
  return lfncSnapshotEX(step, force, choices);
}

}  // namespace sentrune
