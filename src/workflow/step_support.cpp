#include "workflow/step_support.h"

#include "runtime/winpath.h"

namespace sentrune {

int16_t StepValue(const std::array<int16_t, kProjectTypeCount>& option, const platform::VBProject& project) {
  const int type = project.Type();
  return type >= 0 && type < kProjectTypeCount ? option[static_cast<size_t>(type)] : int16_t{0};
}

std::string TrackingDatabaseName(const platform::VBProject& project) {
  const std::string fileName = project.FileName();
  return fileName.empty() ? std::string() : rt::StripExtension(fileName) + ".stn";
}

RememberedFolders::RememberedFolders(AddinState& state, const platform::VBProject& project) {
  const std::string database = TrackingDatabaseName(project);
  if (database.empty()) return;
  jet_.emplace(state);
  jet_->SetCurrentDBName(database);
}

std::string RememberedFolders::Get(const std::string& name) { return jet_ ? jet_->GetDBSetting(name) : ""; }

void RememberedFolders::Store(const std::string& name, const std::string& folder) {
  // A failed save has been reported by the database; the step goes on.
  if (jet_) (void)jet_->SaveDBSetting(name, folder);
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
