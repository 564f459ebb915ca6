#include "files/frm_file_handler.h"

#include "files/trapped_error.h"
#include "state/msgbox.h"
#include "runtime/vb_convert.h"
#include "runtime/winpath.h"
#include "settings/options_handler.h"
#include "sysutil/browse_folders.h"

namespace sentrune {
namespace {

constexpr int32_t kFolderDialog = 3;

int32_t StoredSize(OptionsHandler& options, const std::string& key) {
  return rt::CLng(options.GetOption(key, "-1")).value_or(-1);
}

}  // namespace

std::string frmFileHandlerEX::SourceLabel() const {
  switch (FDialogType) {
    case 1: return "Current Component :";
    case kFolderDialog: return "Source Project :";
    default: return "Source :";
  }
}

std::string frmFileHandlerEX::DestinationLabel() const {
  switch (FDialogType) {
    case 1: return "Compatible Component :";
    case kFolderDialog: return "Destination Folder :";
    default: return "Destination :";
  }
}

std::string frmFileHandlerEX::EffectiveBrowsePrompt() const {
  return BrowsePrompt.empty() ? "Select a Folder." : BrowsePrompt;
}

platform::FileHandlerQuestion frmFileHandlerEX::Question() const {
  platform::FileHandlerQuestion q;
  q.caption = Caption;
  q.prompt = Prompt;
  q.sourceLabel = SourceLabel();
  q.destinationLabel = DestinationLabel();
  q.source = SourceFile;
  q.destination = DestinationFile;
  q.enableEdit = EnableEdit;
  q.browseEnabled = BrowseEnabled;
  q.browsePrompt = EffectiveBrowsePrompt();
  q.browseStartPath = BrowseStartPath;
  q.browsePathFooter = BrowsePathFooter;
  q.commentsVisible = CommentsVisible;
  q.commentsEnabled = CommentsEnabled;
  q.commentText = CommentText;
  q.referencesVisible = ReferencesVisible;
  q.referencesEnabled = ReferencesEnabled;
  return q;
}

int32_t frmFileHandlerEX::Show() {
  ApplyAnswer(state_.ui().AskFileHandler(Question()));
  return SelectedButton;
}

void frmFileHandlerEX::ApplyAnswer(const platform::FileHandlerAnswer& answer) {
  SelectedButton = answer.button;
  // A field the user could not change keeps what the caller put there.
  if (EnableEdit) DestinationFile = answer.destination;
  if (BrowseEnabled && answer.browsedFolder && !answer.browsedFolder->empty())
    SetBrowsedFolder(*answer.browsedFolder);
  CommentText = answer.commentText;
  CommentsEnabled = answer.commentsEnabled;
  ReferencesEnabled = answer.referencesEnabled;
}

void frmFileHandlerEX::cmdBrowse_Click() {
  const std::string folder = BrowseForFolder(state_.ui(), EffectiveBrowsePrompt(), BrowseStartPath);
  if (!folder.empty()) SetBrowsedFolder(folder);
}

void frmFileHandlerEX::SetBrowsedFolder(const std::string& folder) {
  DestinationFile = rt::AddBackslash(folder) + BrowsePathFooter;
  if (FDialogType == kFolderDialog) DestinationFile = rt::AddBackslash(DestinationFile);
}

void frmFileHandlerEX::cmdHelp_Click() {
  if (FDHelpContext == 0) {
    lfncMsgBoxEX(state_, "Sorry, No help available at this time.", platform::mb::kOkOnly, "Sentrune");
    return;
  }
  // The HTML Help viewer opens a compiled help file at a numeric topic.
  const rt::Status started = state_.env().Programs().Start("hh.exe -mapid " + std::to_string(FDHelpContext) +
                                                           " \"" + state_.gstrHelpFile + "\"");
  if (!started) ReportTrappedError(state_, started.error(), "frmFileHandlerEX:cmdHelp_Click");
}

void frmFileHandlerEX::LoadSize(OptionsHandler& options) {
  Height = StoredSize(options, "FileDialog_Height");
  Width = StoredSize(options, "FileDialog_Width");
}

void frmFileHandlerEX::SaveSize(OptionsHandler& options) const {
  options.SaveOption("FileDialog_Height", std::to_string(Height));
  options.SaveOption("FileDialog_Width", std::to_string(Width));
}

}  // namespace sentrune
