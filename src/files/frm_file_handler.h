#pragma once
// frmFileHandlerEX: the one modal question the add-in asks before it copies
// something. The caller sets the properties, calls Show, then reads back
// SelectedButton (7 No means "do not copy"), DestinationFile, CommentText and
// the two check boxes.
#include <cstdint>
#include <string>

#include "state/addin_state.h"
#include "platform/ui.h"

namespace sentrune {

class OptionsHandler;

class frmFileHandlerEX {
 public:
  // The state must outlive the form.
  explicit frmFileHandlerEX(AddinState& state) : state_(state) {}

  // Shows the dialog through the Ui and takes its answer; the pressed button.
  int32_t Show();

  // The question as the Ui is to show it.
  platform::FileHandlerQuestion Question() const;
  // Labels of the source and destination fields for FDialogType.
  std::string SourceLabel() const;
  std::string DestinationLabel() const;
  // BrowsePrompt, or the standard title when it is empty.
  std::string EffectiveBrowsePrompt() const;

  // The browse button: asks for a folder and, when one is chosen, makes it
  // the destination.
  void cmdBrowse_Click();
  // A chosen folder becomes folder + "\" + BrowsePathFooter; a type 3
  // destination is a folder and keeps its trailing "\".
  void SetBrowsedFolder(const std::string& folder);
  // The help button: FDHelpContext 0 has no topic to open.
  void cmdHelp_Click();

  // The remembered size ("FileDialog_Height", "FileDialog_Width"); -1 keeps
  // the designed size.
  void LoadSize(OptionsHandler& options);
  void SaveSize(OptionsHandler& options) const;

  std::string Caption;
  std::string BrowseStartPath;
  std::string BrowsePathFooter;
  bool BrowseEnabled = false;
  int32_t FDialogType = 2;
  std::string SourceFile;
  std::string DestinationFile;
  std::string Prompt;
  bool EnableEdit = false;
  int32_t FDHelpContext = 0;
  int32_t SelectedButton = platform::mb::kNo;
  std::string BrowsePrompt;
  bool CommentsEnabled = false;
  std::string CommentText;
  bool ReferencesEnabled = false;
  bool CommentsVisible = false;
  bool ReferencesVisible = false;
  int32_t Height = -1;
  int32_t Width = -1;

 private:
  void ApplyAnswer(const platform::FileHandlerAnswer& answer);

  AddinState& state_;
};

}  // namespace sentrune
