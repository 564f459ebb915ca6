#include "workflow/snapshot.h"

#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/vb_format.h"
#include "runtime/winpath.h"
#include "workflow/cls_project.h"
#include "workflow/frm_addin_main.h"
#include "workflow/snapshot_list.h"
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
std::optional<SnapshotPlan> AskAboutSnapshot(AddinState& state, const OptionSet& options,
                                             const std::string& projectFile, const std::string& proposal,
                                             const std::string& folderName) {
  frmFileHandlerEX form(state);
  form.Caption = "Create Snapshot?";
  form.Prompt =
      "Create a snapshot of the current source code?\r\nAccept folder as shown or browse to select a base "
      "folder.";
  form.FDialogType = 3;
  form.SourceFile = projectFile;
  form.DestinationFile = proposal;
  form.BrowseEnabled = form.EnableEdit = true;
  form.BrowseStartPath = lfncGetFolder(projectFile);
  form.BrowsePathFooter = folderName;
  form.CommentText = "Project Snapshot Created: " + rt::Format(state.env().Time().Now(), "General Date");
  form.CommentsVisible = form.ReferencesVisible = true;
  form.CommentsEnabled = options.DefaultStoreComment;
  form.ReferencesEnabled = options.DefaultGatherDepens;
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

rt::Status CopyIntoSnapshot(AddinState& state, const OptionSet& options, const std::string& source,
                            const std::string& destination) {
  platform::FileSystem& fs = state.files();
  if (rt::Status made = fs.MakeSureDirectoryPathExists(destination); !made) return made;
  if (lfncFileExists(fs, destination)) {
    if (rt::Status writable = fs.SetAttributes(destination, platform::kAttrArchive); !writable)
      return writable;
    if (rt::Status deleted = fs.DeleteFile(destination); !deleted) return deleted;
  }
  if (rt::Status copied = fs.CopyFile(source, destination, false); !copied) return copied;
  state.env().DoEvents();
  if (!options.SnapIsReadOnly) return {};
  return fs.SetAttributes(destination, platform::kAttrArchive | platform::kAttrReadOnly);
}

SnapshotCopy PrepareSnapshot(AddinState& state, const OptionSet& options, const platform::VBProject& project,
                             const std::string& snapshotFolder) {
  SnapshotCopy copy;
  const std::string projectFile = project.FileName();
  const rt::Result<std::string> bytes = state.files().ReadFile(projectFile);
  if (!bytes) {
    copy.result = ReportTrappedError(state, bytes.error(), "frmAddinMain:PrepareSnapshot");
    return copy;
  }
  copy.files = SnapshotFileList(state.files(), projectFile, rt::Cp1252ToUtf8(*bytes));
  const auto put = [&](const std::string& source, const std::string& relative) {
    const rt::Status copied = CopyIntoSnapshot(state, options, source, snapshotFolder + relative);
    if (!copied && copy.result == 0)
      copy.result = ReportTrappedError(state, copied.error(), "frmAddinMain:PrepareSnapshot");
  };
  put(projectFile, lfncGetFileTitle(projectFile));
  const std::string projectFolder = lfncGetFolder(projectFile);
  for (const std::string& name : copy.files) {
    const std::optional<SnapshotPlace> place = PlaceInSnapshot(projectFolder, name);
    if (!place) continue;
    if (place->outside) copy.outside.push_back({place->source, snapshotFolder + place->relative});
    put(place->source, place->relative);
  }
  return copy;
}

int32_t lfncSnapshotEX(clsProject& sink, bool force) {
  WorkflowServices& services = sink.services();
  AddinState& state = services.state;
  const OptionSet& options = services.optionSet();
  if (!sink.CProject()) return 0;
  platform::VBProject& project = *sink.CProject();
  const int16_t value = StepValue(options.CreateSnapshot, project);
  if (!force && value <= 0) return 0;

  const std::string projectFile = project.FileName();
  if (!lfncFileExists(state.files(), projectFile)) {
    lfncMsgBoxEX(state, "'" + project.Name() + "' not saved or path not found.", mb::kExclamation,
                 "Sentrune");
    return rt::errnum::kFileNotFound;
  }
  const std::string folderName =
      project.Name() + " " + rt::Format(state.env().Time().Now(), options.DateFormatString) + "\\";
  RememberedFolders folders(state, project);
  const std::string base = folders.Get(kSnapshotBase);
  const std::string proposal = (base.empty() ? lfncGetFolder(projectFile) : lfncGetFolder(base)) + folderName;

  SnapshotPlan plan{proposal};
  if (force || value == kAskFirst) {
    std::optional<SnapshotPlan> asked = AskAboutSnapshot(state, options, projectFile, proposal, folderName);
    if (!asked) return 0;
    plan = std::move(*asked);
  }
  if (plan.folder != proposal) RememberBase(folders, plan.folder, folderName);

  const SnapshotCopy copy = services.mainForm.PrepareSnapshot(options, project, plan.folder);
  sink.Report().snapshotFolder = plan.folder;
  sink.Report().snapshotOutside = copy.outside;
  int32_t result = copy.result;
  if (!plan.comment.empty()) {
    const int32_t written =
        lfncWriteTextFile(state, plan.folder + "_Snapshot_ReadME.txt", plan.comment, false, true);
    if (result == 0) result = written;
  }
  if (result == 0 && plan.gather) result = GatherDependencies(state, options, project, plan.folder);
  state.err.Clear();
  return result;
}

}  // namespace sentrune
