// The shared file functions: dated backup names, the guarded copy with its
// deferred batch file, rotation, relative paths and text files.
#include "files/file_functions.h"

#include <gtest/gtest.h>

#include "files/deferred_copy.h"
#include "files_world.h"
#include "support/expected_file.h"

namespace sentrune {
namespace {

using testing::FilesWorld;
using testing::FsOp;
using testing::kBuilt;
using Strings = std::vector<std::string>;

constexpr const char* kComponent = "C:\\Src\\Widgets\\Widgets.dll";
constexpr const char* kBackup = "C:\\Src\\Widgets\\History\\Widgets-2004.05.06-14.03.09.dll";
const std::string kBatch = std::string(testing::FakeEnv::kDesktop) + "\\Copy Widgets.bat";

// Backup names take the component's own time and a folder name without its
// backslash (names in the default folder are checked through whole builds).
// Relative paths count a project file as its folder and keep the caller's
// spelling; with nothing to relate to, the target stays as written.
TEST(Paths, BackupNamesAndRelativePaths) {
  FilesWorld w;
  w.files().AddFile(kComponent, "new", kBuilt);
  w.env.Time().Set({2011, 1, 2, 3, 4, 5});
  w.options.BackupFolderName = "Old";
  EXPECT_EQ(lfncMakeBackupName(w.files(), w.options, kComponent, ""),
            "C:\\Src\\Widgets\\Old\\Widgets-2004.05.06-14.03.09.dll");
  EXPECT_EQ(lfncMakeBackupName(w.files(), w.options, "C:\\Src\\Gone.dll", ""), "");
  EXPECT_FALSE(lfncFileExists(w.files(), "C:\\Src\\Widgets"));  // a folder is no file
  // A dated name already taken, by a file or a folder, gets the first free
  // number; a dot in a folder's name is no extension.
  w.files().AddFile(kBackup, "");
  w.files().AddFolder("C:\\Src\\Widgets\\History\\Widgets-2004.05.06-14.03.09 (2).dll");
  EXPECT_EQ(UnusedName(w.files(), kBackup), "C:\\Src\\Widgets\\History\\Widgets-2004.05.06-14.03.09 (3).dll");
  EXPECT_EQ(UnusedName(w.files(), "C:\\Src\\Widgets"), "C:\\Src\\Widgets (2)");
  EXPECT_EQ(UnusedName(w.files(), "C:\\v1.0\\Widgets"), "C:\\v1.0\\Widgets");

  const std::string project = "C:\\Src\\App\\App.vbp";
  for (const char* file : {"C:\\Src\\App\\App.vbp", "C:\\Src\\Lib\\Widget.cls", "C:\\Src\\App\\Forms\\Main.frm",
                           "D:\\Shared\\Lib.tlb"})
    w.files().AddFile(file, "");
  EXPECT_EQ(lfncRelativePath(w.files(), project, "c:\\src\\lib\\widget.cls"), "..\\lib\\widget.cls");
  EXPECT_EQ(lfncRelativePath(w.files(), project, "C:\\Src\\App\\Forms\\Main.frm"), "Forms\\Main.frm");
  for (const char* target : {"D:\\Shared\\Lib.tlb", "C:\\Src\\Lib\\Gone.cls"})
    EXPECT_EQ(lfncRelativePath(w.files(), project, target), target);
  EXPECT_EQ(lfncRelativePath(w.files(), "C:\\Src\\App\\Gone.vbp", "C:\\Src\\Lib\\Widget.cls"),
            "C:\\Src\\Lib\\Widget.cls");
}

TEST(GuardedCopy, AnExistingTargetIsAskedAboutUnlessSilent) {
  FilesWorld w;
  w.files().AddFile(kComponent, "new");
  w.files().AddFile(kBackup, "old");
  ASSERT_TRUE(w.files().SetAttributes(kBackup, 33).ok());
  w.ui.QueueAnswer(platform::mb::kCancel);
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, kBackup, true, false), 2);
  EXPECT_EQ(w.files().Contents(kBackup), "old");
  // A read-only target is made writable before it goes; silent asks nothing.
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, kBackup, true, true), 0);
  EXPECT_EQ(w.files().Record().attributeSets.back(), (std::pair<std::string, uint32_t>{kBackup, 32}));
  EXPECT_EQ(w.files().Contents(kBackup), "new");
  EXPECT_EQ(w.ui.Prompts(), Strings{std::string("The file ") + kBackup +
                                    " already exists.\r\nPress Ok to Overwrite or Cancel to abort."});
}

// A copy that fails at any stage answers the error, says so, and leaves
// neither the destination nor its temporary file.
TEST(GuardedCopy, AFailedCopyIsReportedAndLeavesNoFile) {
  const std::string target = "C:\\Src\\Widgets\\Old\\W.dll", temporary = "C:\\Src\\Widgets\\Old\\~W.dll.tmp";
  const struct {
    FsOp op;
    const char* path;
    int32_t code;
  } failures[] = {{FsOp::kCreateDirectory, "C:\\Src\\Widgets\\Old", 75},
                  {FsOp::kCopy, "", 61},
                  {FsOp::kRename, "", 70}};  // a new file in a folder that refuses it is no file in use
  for (const auto& failure : failures) {
    FilesWorld w;
    w.files().AddFile(kComponent, "new");
    w.files().FailNext(failure.op, failure.path, failure.code);
    EXPECT_EQ(lfncCopyFileEX(w.state, w.options, kComponent, target, true, false), failure.code);
    EXPECT_FALSE(w.files().Exists(target) || w.files().Exists(temporary)) << failure.code;
    EXPECT_EQ(w.ui.Titles(), Strings{"modFileFunctions:lfncCopyFileEX"});
  }
}

// A target in use that cannot be replaced is handed to a batch file for
// later, and nothing is copied now.
TEST(GuardedCopy, PermissionDeniedIsDeferredToAQuotedBatchFileWhenAllowed) {
  FilesWorld w;
  const std::string source = "C:\\100%\\%PATH%\\Widgets.dll", target = "C:\\Caf\xC3\xA9 1\\Widgets.dll";
  w.files().AddFile(source, "new");
  w.files().AddFile(target, "old");
  w.files().AddFile(kBatch, "an earlier copy\r\n");
  w.files().FailNext(FsOp::kRename, target, 70);
  EXPECT_EQ(lfncCopyFileEX(w.state, w.options, source, target, true, true), 7);
  EXPECT_EQ(w.files().Contents(target), "old");
  EXPECT_FALSE(w.files().Exists("C:\\Caf\xC3\xA9 1\\~Widgets.dll.tmp"));
  ASSERT_EQ(w.ui.boxes.size(), 2u);
  EXPECT_EQ(w.ui.boxes[0].style, 20);
  // The batch file replaced, then the box: Windows-1252, and no path can expand as a batch variable.
  const std::string batch = w.files().Contents(kBatch).value_or("<missing>");
  testing::ExpectMatchesFile(batch + "----\n" + w.ui.boxes[1].prompt, "files/deferred-copy.txt");

  // Nothing is written without consent or a desktop.
  FilesWorld off, no, noDesktop;
  off.options.EnableDeferredActions = false;
  no.ui.QueueAnswer(platform::mb::kNo);
  noDesktop.env.SetSpecialFolder(platform::kFolderDesktop, "");
  for (FilesWorld* world : {&off, &no, &noDesktop}) {
    lfncDeferredCopy(world->state, world->options, "C:\\a\\Widgets.dll", "C:\\b\\Widgets.dll");
    EXPECT_TRUE(world->files().Record().written.empty());
  }
  EXPECT_TRUE(off.ui.boxes.empty());

  // A quotation mark in a project's ExeName32 would end the quoted path: the
  // line is refused, and said so, before anything is asked.
  FilesWorld injected;
  lfncDeferredCopy(injected.state, injected.options, "C:\\a\\W\" & calc & \".dll", "C:\\b\\W.dll");
  EXPECT_TRUE(injected.files().Record().written.empty());
  ASSERT_EQ(injected.ui.boxes.size(), 1u);
  EXPECT_NE(injected.ui.boxes[0].prompt.find("quotation mark"), std::string::npos) << injected.ui.boxes[0].prompt;
}

TEST(Rotation, KeepsTheNewestFilesOfTheExtensionWhateverTheirComponent) {
  FilesWorld w;
  const std::string h = "C:\\Src\\History\\";
  const std::pair<const char*, int> files[] = {{"A-new.dll", 40}, {"B-same.dll", 20},  {"C-same.dll", 20},
                                               {"D-old.dll", 10}, {"Other-x.dll", 30}, {"E-oldest.ocx", 0},
                                               {"F-hidden.dll", 0}};
  for (const auto& [name, seconds] : files) w.files().AddFile(h + name, "", rt::AddSeconds(kBuilt, seconds));
  w.files().AddFolder(h + "G.dll");
  ASSERT_TRUE(w.files().SetAttributes(h + "F-hidden.dll", 34).ok());
  ASSERT_TRUE(w.files().SetAttributes(h + "D-old.dll", 33).ok());
  w.files().ClearRecord();
  // A count of 0 keeps every backup.
  EXPECT_EQ(lfncRotateBackups(w.state, h, "*.dll", 0), 0);
  EXPECT_TRUE(w.files().Record().deleted.empty());
  // Equal times keep the listed order, so of the two files of one second the
  // one listed second goes.
  EXPECT_EQ(lfncRotateBackups(w.state, h, "*.dll", 3), 0);
  EXPECT_EQ(w.files().Record().deleted, (Strings{h + "C-same.dll", h + "D-old.dll"}));

  w.files().FailNext(FsOp::kDelete, h + "B-same.dll", 70);
  EXPECT_EQ(lfncRotateBackups(w.state, h, "*.dll", 2), 70);
  EXPECT_EQ(w.ui.Titles(), Strings{"modFileFunctions:lfncRotateBackups"});
  EXPECT_FALSE(w.state.err.pending());
}

TEST(WriteTextFile, ReplacesOrAppendsInWindows1252) {
  FilesWorld w;
  const std::string path = "C:\\Snap\\_Snapshot_ReadME.txt";
  w.files().AddFile(path, "earlier\r\n");
  ASSERT_TRUE(w.files().SetAttributes(path, 33).ok());
  EXPECT_EQ(lfncWriteTextFile(w.state, path, "Caf\xC3\xA9", false, true), 0);
  EXPECT_EQ(w.files().GetAttributes(path).value(), 33u);
  EXPECT_EQ(lfncWriteTextFile(w.state, path, "more", true, false), 0);
  EXPECT_EQ(w.files().Contents(path), "Caf\xE9\r\nmore\r\n");
  EXPECT_EQ(lfncWriteTextFile(w.state, "C:\\Nowhere\\x.txt", "x", false, false), 76);
  EXPECT_EQ(w.ui.boxes.size(), 1u);
}

}  // namespace
}  // namespace sentrune
