#include "files/frm_file_handler.h"

#include <gtest/gtest.h>

#include "support/test_addin.h"

namespace sentrune {
namespace {

using testing::TestAddin;
namespace mb = platform::mb;

TEST(FileHandler, LabelsFollowTheDialogType) {
  TestAddin h;
  frmFileHandlerEX form(h.state);
  const std::pair<const char*, const char*> expected[] = {
      {"Current Component :", "Compatible Component :"},
      {"Source :", "Destination :"},
      {"Source Project :", "Destination Folder :"}};
  for (int type = 1; type <= 3; ++type) {
    form.FDialogType = type;
    EXPECT_EQ(form.Question().sourceLabel, expected[type - 1].first) << type;
    EXPECT_EQ(form.Question().destinationLabel, expected[type - 1].second) << type;
  }
}

TEST(FileHandler, BrowsedFolderIsJoinedToTheFooterWithOneBackslash) {
  TestAddin h;
  frmFileHandlerEX form(h.state);
  form.BrowsePathFooter = "Widgets-2004.05.06-14.03.09.dll";
  for (const char* folder : {"D:\\Backups", "D:\\Backups\\"}) {
    form.SetBrowsedFolder(folder);
    EXPECT_EQ(form.DestinationFile, "D:\\Backups\\Widgets-2004.05.06-14.03.09.dll");
  }
  form.FDialogType = 3;
  for (const char* footer : {"Widgets 2004.05.06-14.03.09", "Widgets 2004.05.06-14.03.09\\"}) {
    form.BrowsePathFooter = footer;
    form.SetBrowsedFolder("D:\\Snaps\\");
    EXPECT_EQ(form.DestinationFile, "D:\\Snaps\\Widgets 2004.05.06-14.03.09\\");
  }
}

TEST(FileHandler, BrowsingWithoutAPromptUsesTheStandardTitle) {
  TestAddin h;
  frmFileHandlerEX form(h.state);
  form.DestinationFile = "C:\\Src\\History\\W.dll";
  form.BrowsePathFooter = "W.dll";
  EXPECT_EQ(form.Question().browsePrompt, "Select a Folder.");
  form.cmdBrowse_Click();  // cancelled
  EXPECT_EQ(form.DestinationFile, "C:\\Src\\History\\W.dll");
  form.BrowsePrompt = "Pick the backup folder";
  h.ui.QueueFolder("E:\\Keep");
  form.cmdBrowse_Click();
  EXPECT_EQ(form.DestinationFile, "E:\\Keep\\W.dll");
  EXPECT_EQ(h.ui.browseTitles, (std::vector<std::string>{"Select a Folder.", "Pick the backup folder"}));
}

TEST(FileHandler, ShowReadsBackTheAnswer) {
  TestAddin h;
  frmFileHandlerEX form(h.state);
  form.Caption = "Backup Component?";
  form.SourceFile = "C:\\Src\\W.dll";
  form.DestinationFile = "C:\\Src\\History\\W.dll";
  form.BrowsePathFooter = "W.dll";
  form.BrowseEnabled = true;
  form.EnableEdit = true;

  platform::FileHandlerAnswer browsed{mb::kYes, "ignored", "F:\\Other\\", "note", true, true};
  h.ui.QueueFileHandler(browsed);
  EXPECT_EQ(form.Show(), mb::kYes);
  EXPECT_EQ(h.ui.fileQuestions.at(0).caption, "Backup Component?");
  EXPECT_EQ(form.DestinationFile, "F:\\Other\\W.dll");
  EXPECT_EQ(form.CommentText, "note");
  EXPECT_TRUE(form.CommentsEnabled && form.ReferencesEnabled);

  // A destination the user may not edit stays as the caller set it.
  form.EnableEdit = false;
  h.ui.QueueFileHandler({mb::kNo, "C:\\Elsewhere\\W.dll", std::nullopt, "", false, false});
  EXPECT_EQ(form.Show(), mb::kNo);
  EXPECT_EQ(form.SelectedButton, mb::kNo);
  EXPECT_EQ(form.DestinationFile, "F:\\Other\\W.dll");
}

TEST(FileHandler, HelpWithoutATopicSaysSo) {
  TestAddin h;
  frmFileHandlerEX form(h.state);
  form.cmdHelp_Click();
  ASSERT_EQ(h.ui.boxes.size(), 1u);
  EXPECT_EQ(h.ui.boxes[0].prompt, "Sorry, No help available at this time.");
  EXPECT_EQ(h.ui.boxes[0].title, "Sentrune");
  EXPECT_TRUE(h.env.Programs().Started().empty());
}

}  // namespace
}  // namespace sentrune
