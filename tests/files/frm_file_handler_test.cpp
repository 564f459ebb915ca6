#include "files/frm_file_handler.h"

#include <gtest/gtest.h>

#include "support/test_addin.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;

TEST(FileHandler, BrowsedFolderIsJoinedToTheFooterAndAnUneditableDestinationStays) {
  testing::TestAddin h;
  frmFileHandlerEX form(h.state);
  form.BrowsePathFooter = "W.dll";
  form.BrowseEnabled = true;
  form.EnableEdit = true;
  for (const char* folder : {"F:\\Other", "F:\\Other\\"}) {
    h.ui.QueueFileHandler({mb::kYes, "ignored", folder, "note", true, true});
    EXPECT_EQ(form.Show(), mb::kYes);
    EXPECT_EQ(form.DestinationFile, "F:\\Other\\W.dll") << folder;
  }
  EXPECT_EQ(form.CommentText, "note");

  form.EnableEdit = false;
  h.ui.QueueFileHandler({mb::kNo, "C:\\Elsewhere\\W.dll", std::nullopt, "", false, false});
  EXPECT_EQ(form.Show(), mb::kNo);
  EXPECT_EQ(form.DestinationFile, "F:\\Other\\W.dll");

  // A folder dialog's destination always ends in one backslash.
  form.FDialogType = 3;
  for (const char* footer : {"Widgets 2004", "Widgets 2004\\"}) {
    form.BrowsePathFooter = footer;
    h.ui.QueueFolder("D:\\Snaps");
    form.cmdBrowse_Click();
    EXPECT_EQ(form.DestinationFile, "D:\\Snaps\\Widgets 2004\\") << footer;
  }
  EXPECT_EQ(h.ui.browseTitles[0], "Select a Folder.");
}

}  // namespace
}  // namespace sentrune
