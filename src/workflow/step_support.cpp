#include "workflow/step_support.h"

#include "runtime/text.h"
#include "runtime/winpath.h"
#include "state/msgbox.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;

// Beside each remembered folder: the project's folder when it was stored.
constexpr const char* kStoredFor = ".ProjectFolder";

// Whether `path` is `folder` or lies below it, after "." and ".." are
// resolved, so that "C:\Work\..\Elsewhere" is not taken for a folder in C:\Work.
bool Within(const std::string& path, const std::string& folder) {
  const std::optional<rt::WinPath> inner = rt::ParseWinPath(path);
  const std::optional<rt::WinPath> outer = rt::ParseWinPath(folder);
  if (!inner || !outer || !rt::IEquals(inner->root, outer->root) || inner->parts.size() < outer->parts.size())
    return false;
  for (size_t i = 0; i < outer->parts.size(); ++i)
    if (!rt::IEquals(inner->parts[i], outer->parts[i])) return false;
  return true;
}

bool SameFolder(const std::string& a, const std::string& b) { return Within(a, b) && Within(b, a); }

std::string Purpose(const std::string& name) {
  if (name == "CompBackupBase") return "backups of the component";
  if (name == "CompatBase") return "compatibility models";
  if (name == "SnapshotBase") return "snapshots";
  if (name == "ReleaseBackupBase") return "backups of the release copy";
  return "a step";
}

}  // namespace

int16_t StepValue(const std::array<int16_t, kProjectTypeCount>& option, const platform::VBProject& project) {
  const int type = project.Type();
  return type >= 0 && type < kProjectTypeCount ? option[static_cast<size_t>(type)] : int16_t{0};
}

std::string TrackingDatabaseName(const platform::VBProject& project) {
  const std::string fileName = project.FileName();
  return fileName.empty() ? std::string() : rt::StripExtension(fileName) + ".stn";
}

RememberedFolders::RememberedFolders(AddinState& state, const platform::VBProject& project)
    : state_(state), projectFolder_(rt::GetFolder(project.FileName())) {
  const std::string database = TrackingDatabaseName(project);
  if (database.empty()) return;
  jet_.emplace(state);
  jet_->SetCurrentDBName(database);
}

std::string RememberedFolders::Get(const std::string& name) {
  if (!jet_) return "";
  const std::string folder = jet_->GetDBSetting(name);
  if (folder.empty() || Within(folder, projectFolder_)) return folder;
  const std::string storedFor = jet_->GetDBSetting(name + kStoredFor);
  if (SameFolder(storedFor, projectFolder_) || Agreed(name, folder, storedFor)) return folder;
  return "";
}

void RememberedFolders::Store(const std::string& name, const std::string& folder) {
  // A failed save has been reported by the database; the step goes on.
  if (jet_ && jet_->SaveDBSetting(name, folder) == 0)
    (void)jet_->SaveDBSetting(name + kStoredFor, projectFolder_);
}

bool RememberedFolders::Agreed(const std::string& name, const std::string& folder, const std::string& storedFor) {
  const std::string where = storedFor.empty()
                                ? "It lies outside the project's folder, and where the project was when it was "
                                  "remembered is not known.\r\n"
                                : "It was remembered while the project was in:\r\n" + storedFor + "\r\n";
  const std::string prompt = "The folder this project remembers for " + Purpose(name) + " (" + name + ") is:\r\n" +
                             folder + "\r\n" + where + "The project is now in:\r\n" + projectFolder_ +
                             "\r\nUse the remembered folder?";
  if (lfncMsgBoxEX(state_, prompt, mb::kYesNo | mb::kExclamation, "Sentrune") != mb::kYes) return false;
  (void)jet_->SaveDBSetting(name + kStoredFor, projectFolder_);
  return true;
}

frmFileHandlerEX AskStep(AddinState& state, const StepQuestion& question) {
  frmFileHandlerEX form(state);
  form.Caption = question.caption;
  form.Prompt = question.prompt;
  form.FDialogType = question.dialogType;
  form.SourceFile = question.source;
  form.DestinationFile = question.destination;
  form.EnableEdit = question.editable;
  form.BrowseEnabled = question.editable;
  if (question.editable) {
    form.BrowseStartPath =
        question.browseStartPath.empty() ? rt::GetFolder(question.destination) : question.browseStartPath;
    form.BrowsePathFooter = rt::GetFileTitle(question.destination);
  }
  form.Show();
  return form;
}

}  // namespace sentrune
