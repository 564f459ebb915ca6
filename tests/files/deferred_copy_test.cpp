#include "files/deferred_copy.h"

#include <gtest/gtest.h>

#include "files_world.h"

namespace sentrune {
namespace {

using testing::FakeEnv;
using testing::FilesWorld;
namespace mb = platform::mb;

const std::string kBatch = std::string(FakeEnv::kDesktop) + "\\Copy Widgets.bat";

TEST(DeferredCopy, WritesAQuotedBatchFileOnTheDesktopAndSaysWhere) {
  FilesWorld w;
  const std::string source = "C:\\My Src\\Widgets.dll";
  const std::string destination = "C:\\Release 1\\Widgets.dll";
  w.files().AddFile(kBatch, "an earlier copy\r\n");
  lfncDeferredCopy(w.state, w.options, source, destination);

  ASSERT_EQ(w.ui.boxes.size(), 2u);
  EXPECT_EQ(w.ui.boxes[0].prompt,
            "VB Reported 'Permission Denied' while trying to copy 'C:\\My Src\\Widgets.dll' to "
            "'C:\\Release 1\\Widgets.dll'.\r\nDo you want Sentrune to create a batch file on your desktop that "
            "you can use to complete this operation after you shut VB down?");
  EXPECT_EQ(w.ui.boxes[0].style, 20);
  EXPECT_EQ(w.ui.boxes[0].title, "Permission Denied");
  EXPECT_EQ(w.files().Contents(kBatch),
            "@Echo Copying \"C:\\My Src\\Widgets.dll\" to \"C:\\Release 1\\Widgets.dll\"\r\n"
            "@xcopy \"C:\\My Src\\Widgets.dll\" \"C:\\Release 1\\Widgets.dll\" /f\r\n"
            "@Pause\r\n");
  EXPECT_EQ(w.ui.boxes[1].prompt, "Sentrune created the following file:\r\n" + kBatch +
                                      "\r\nDouble click the file above after shutting VB down");
  EXPECT_EQ(w.ui.boxes[1].style, 64);
  EXPECT_EQ(w.ui.boxes[1].title, "Sentrune");
}

TEST(DeferredCopy, PathsCannotExpandAsBatchVariables) {
  FilesWorld w;
  lfncDeferredCopy(w.state, w.options, "C:\\100%\\%PATH%\\Widgets", "C:\\Caf\xC3\xA9\\Widgets");
  EXPECT_EQ(w.files().Contents(kBatch),
            "@Echo Copying \"C:\\100%%\\%%PATH%%\\Widgets\" to \"C:\\Caf\xE9\\Widgets\"\r\n"
            "@xcopy \"C:\\100%%\\%%PATH%%\\Widgets\" \"C:\\Caf\xE9\\Widgets\" /f\r\n"
            "@Pause\r\n");
}

TEST(DeferredCopy, NothingIsWrittenWithoutConsentOrDesktop) {
  FilesWorld off;
  off.options.EnableDeferredActions = false;
  lfncDeferredCopy(off.state, off.options, "C:\\a\\Widgets.dll", "C:\\b\\Widgets.dll");
  EXPECT_TRUE(off.ui.boxes.empty());

  FilesWorld no;
  no.ui.QueueAnswer(mb::kNo);
  lfncDeferredCopy(no.state, no.options, "C:\\a\\Widgets.dll", "C:\\b\\Widgets.dll");
  EXPECT_EQ(no.ui.boxes.size(), 1u);

  FilesWorld noDesktop;
  noDesktop.env.SetSpecialFolder(platform::kFolderDesktop, "");
  lfncDeferredCopy(noDesktop.state, noDesktop.options, "C:\\a\\Widgets.dll", "C:\\b\\Widgets.dll");
  EXPECT_EQ(noDesktop.ui.boxes.size(), 1u);

  for (FilesWorld* w : {&off, &no, &noDesktop}) EXPECT_TRUE(w->files().Record().written.empty());
}

}  // namespace
}  // namespace sentrune
