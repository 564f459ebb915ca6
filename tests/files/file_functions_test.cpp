#include "files/file_functions.h"

#include <gtest/gtest.h>

#include "files_world.h"

namespace sentrune {
namespace {

using testing::FilesWorld;
using testing::FsOp;
using testing::kBuilt;
using Strings = std::vector<std::string>;
namespace mb = platform::mb;

constexpr const char* kComponent = "C:\\Src\\Widgets\\Widgets.dll";
constexpr const char* kBackup = "C:\\Src\\Widgets\\History\\Widgets-2004.05.06-14.03.09.dll";

TEST(BackupName, TakesTheComponentsOwnTimeAndTheBackupFolder) {
  FilesWorld w;
  w.files().AddFile(kComponent, "new", kBuilt);
  w.env.Time().Set({2011, 1, 2, 3, 4, 5});
  EXPECT_EQ(lfncMakeBackupName(w.files(), w.options, kComponent, ""), kBackup);
  EXPECT_EQ(lfncMakeBackupName(w.files(), w.options, kComponent, "D:\\Keep"),
            "D:\\Keep\\Widgets-2004.05.06-14.03.09.dll");
  w.options.BackupFolderName = "Old";
  EXPECT_EQ(lfncMakeBackupName(w.files(), w.options, kComponent, ""),
            "C:\\Src\\Widgets\\Old\\Widgets-2004.05.06-14.03.09.dll");
  EXPECT_EQ(lfncMakeBackupName(w.files(), w.options, "C:\\Src\\Gone.dll", ""), "");
}

TEST(FileExists, OnlyReadableFilesCount) {
  FilesWorld w;
  w.files().AddFile(kComponent, "");
  EXPECT_TRUE(lfncFileExists(w.files(), kComponent));
  EXPECT_FALSE(lfncFileExists(w.files(), "C:\\Src\\Widgets"));
  EXPECT_FALSE(lfncFileExists(w.files(), ""));
  w.files().FailNext(FsOp::kGetAttributes, kComponent, 70);
  EXPECT_FALSE(lfncFileExists(w.files(), kComponent));
}

TEST(GuardedCopy, CreatesEveryMissingFolderUnlessOneCannotBeMade) {
  FilesWorld w;
  w.files().AddFile(kComponent, "new");
  const std::string deep = "C:\\Src\\Widgets\\History\\Deep\\W.dll";
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, deep, true, false), 0);
  EXPECT_EQ(w.files().Contents(deep), "new");
  EXPECT_EQ(w.files().Record().createdFolders,
            (Strings{"C:\\Src\\Widgets\\History", "C:\\Src\\Widgets\\History\\Deep"}));

  w.files().ClearRecord();
  w.files().FailNext(FsOp::kCreateDirectory, "C:\\Src\\Widgets\\Old", 75);
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, "C:\\Src\\Widgets\\Old\\W.dll", true, false), 0);
  EXPECT_TRUE(w.files().Record().copies.empty());
  EXPECT_TRUE(w.ui.boxes.empty());
}

TEST(GuardedCopy, AnExistingTargetIsAskedAboutUnlessSilent) {
  FilesWorld w;
  w.files().AddFile(kComponent, "new");
  w.files().AddFile(kBackup, "old");
  w.ui.QueueAnswer(mb::kCancel);
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, kBackup, true, false), 2);
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].prompt, std::string("The file ") + kBackup +
                                      " already exists.\r\nPress Ok to Overwrite or Cancel to abort.");
  EXPECT_EQ(w.ui.boxes[0].style, 49);
  EXPECT_EQ(w.ui.boxes[0].title, "File Already Exists");
  EXPECT_EQ(w.files().Contents(kBackup), "old");

  // A read-only backup is made writable before it goes.
  ASSERT_TRUE(w.files().SetAttributes(kBackup, 33).ok());
  w.files().ClearRecord();
  w.ui.QueueAnswer(mb::kOk);
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, kBackup, true, false), 0);
  EXPECT_EQ(w.files().Record().attributeSets.at(0), (std::pair<std::string, uint32_t>{kBackup, 32}));
  EXPECT_EQ(w.files().Record().deleted, Strings{kBackup});
  EXPECT_EQ(w.files().Contents(kBackup), "new");

  w.files().AddFile(kComponent, "newer");
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, kBackup, true, true), 0);
  EXPECT_EQ(w.ui.boxes.size(), 2u);
  EXPECT_EQ(w.files().Contents(kBackup), "newer");
}

TEST(GuardedCopy, PermissionDeniedIsDeferredAndNeverCopied) {
  FilesWorld w;
  w.files().AddFile(kComponent, "new");
  w.files().AddFile(kBackup, "old");
  w.files().FailNext(FsOp::kDelete, kBackup, 70);
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, kBackup, true, true), 7);
  EXPECT_TRUE(w.files().Contents("C:\\Users\\Dev\\Desktop\\Copy Widgets.bat").has_value());
  EXPECT_EQ(w.files().Contents(kBackup), "old");

  FilesWorld off;
  off.options.EnableDeferredActions = false;
  off.files().AddFile(kComponent, "new");
  off.files().AddFile(kBackup, "old");
  off.files().FailNext(FsOp::kDelete, kBackup, 70);
  EXPECT_EQ(lfncCopyFileEX(off.state, off.options, kComponent, kBackup, true, true), 7);
  EXPECT_TRUE(off.ui.boxes.empty());
  EXPECT_TRUE(off.files().Record().written.empty());
  EXPECT_TRUE(off.files().Record().copies.empty());
}

TEST(Rotation, KeepsTheNewestFilesOfTheExtensionWhateverTheirComponent) {
  FilesWorld w;
  const std::string h = "C:\\Src\\History\\";
  auto at = [](int seconds) { return rt::AddSeconds(kBuilt, seconds); };
  w.files().AddFile(h + "A-new.dll", "", at(40));
  w.files().AddFile(h + "B-same.dll", "", at(20));
  w.files().AddFile(h + "C-same.dll", "", at(20));
  w.files().AddFile(h + "D-old.dll", "", at(10));
  w.files().AddFile(h + "Other-x.dll", "", at(30));
  w.files().AddFile(h + "E-oldest.ocx", "", at(0));
  w.files().AddFile(h + "F-hidden.dll", "", at(0));
  w.files().AddFolder(h + "G.dll");
  ASSERT_TRUE(w.files().SetAttributes(h + "F-hidden.dll", 34).ok());
  ASSERT_TRUE(w.files().SetAttributes(h + "D-old.dll", 33).ok());
  w.files().ClearRecord();

  EXPECT_EQ(lfncRotateBackups(w.state, h, "*.dll", 0), 0);
  EXPECT_EQ(lfncRotateBackups(w.state, h, "*.dll", 5), 0);
  EXPECT_TRUE(w.files().Record().deleted.empty());

  // Equal times keep the listed order, so of the two files of one second the
  // one listed second goes.
  EXPECT_EQ(lfncRotateBackups(w.state, h, "*.dll", 3), 0);
  EXPECT_EQ(w.files().Record().deleted, (Strings{h + "C-same.dll", h + "D-old.dll"}));
  EXPECT_EQ(w.files().Record().attributeSets.size(), 2u);
  EXPECT_TRUE(w.files().Exists(h + "E-oldest.ocx"));
  EXPECT_TRUE(w.files().Exists(h + "F-hidden.dll"));
}

TEST(Rotation, AFailedDeleteIsReportedAndReturned) {
  FilesWorld w;
  w.files().AddFile("C:\\H\\a.dll", "", kBuilt);
  w.files().AddFile("C:\\H\\b.dll", "", rt::AddSeconds(kBuilt, -1));
  w.files().FailNext(FsOp::kDelete, "C:\\H\\b.dll", 70);
  EXPECT_EQ(lfncRotateBackups(w.state, "C:\\H\\", "*.dll", 1), 70);
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].title, "modFileFunctions:lfncRotateBackups");
  EXPECT_FALSE(w.state.err.pending());
}

TEST(RelativePath, ProjectFileCountsAsItsFolder) {
  FilesWorld w;
  const std::string project = "C:\\Src\\App\\App.vbp";
  w.files().AddFile(project, "");
  w.files().AddFile("C:\\Src\\Lib\\Widget.cls", "");
  w.files().AddFile("C:\\Src\\App\\Forms\\Main.frm", "");
  w.files().AddFile("C:\\Windows\\System32\\stdole2.tlb", "");
  w.files().AddFile("D:\\Shared\\Lib.tlb", "");
  EXPECT_EQ(lfncRelativePath(w.files(), project, "c:\\src\\lib\\widget.cls"), "..\\lib\\widget.cls");
  EXPECT_EQ(lfncRelativePath(w.files(), project, "C:\\Src\\App\\Forms\\Main.frm"), "Forms\\Main.frm");
  EXPECT_EQ(lfncRelativePath(w.files(), "c:\\src\\app\\app.vbp", "C:\\Windows\\System32\\stdole2.tlb"),
            "..\\..\\Windows\\System32\\stdole2.tlb");
  // Nothing to relate to: the target stays as written.
  EXPECT_EQ(lfncRelativePath(w.files(), project, "D:\\Shared\\Lib.tlb"), "D:\\Shared\\Lib.tlb");
  EXPECT_EQ(lfncRelativePath(w.files(), project, "C:\\Src\\Lib\\Gone.cls"), "C:\\Src\\Lib\\Gone.cls");
  EXPECT_EQ(lfncRelativePath(w.files(), "C:\\Src\\App\\Gone.vbp", "C:\\Src\\Lib\\Widget.cls"),
            "C:\\Src\\Lib\\Widget.cls");
}

TEST(WriteTextFile, ReplacesOrAppendsInWindows1252) {
  FilesWorld w;
  const std::string path = "C:\\Snap\\_Snapshot_ReadME.txt";
  w.files().AddFile(path, "earlier\r\n");
  ASSERT_TRUE(w.files().SetAttributes(path, 33).ok());
  EXPECT_EQ(lfncWriteTextFile(w.state, path, "Caf\xC3\xA9", false, true), 0);
  EXPECT_EQ(w.files().Contents(path), "Caf\xE9\r\n");
  EXPECT_EQ(w.files().GetAttributes(path).value(), 33u);
  EXPECT_EQ(lfncWriteTextFile(w.state, path, "more", true, false), 0);
  EXPECT_EQ(w.files().Contents(path), "Caf\xE9\r\nmore\r\n");
  EXPECT_EQ(w.files().GetAttributes(path).value(), 32u);

  EXPECT_EQ(lfncWriteTextFile(w.state, "C:\\Nowhere\\x.txt", "x", false, false), 76);
  EXPECT_EQ(w.ui.boxes.size(), 1u);
}

}  // namespace
}  // namespace sentrune
