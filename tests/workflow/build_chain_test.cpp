// Whole builds through the headless IDE: which steps run, what they write,
// what they ask, and how one step's code stops the rest.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "tracking/sqlite_image.h"
#include "workflow_world.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;
using Strings = std::vector<std::string>;

constexpr const char* kModel1 = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.06-14.03.09.dll";
constexpr const char* kModel2 = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.07-09.30.00.dll";
constexpr const char* kBackup1 = "C:\\Src\\Widgets\\bin\\History\\Widgets-2004.05.06-14.03.09.dll";
constexpr const char* kRelease = "C:\\Release\\Widgets.dll";

int BuildHistoryRows(FakeFileSystem& files) {
  const std::optional<std::string> bytes = files.Contents("C:\\Src\\Widgets\\Widgets.stn");
  if (!bytes) return -1;
  SqliteImage db = SqliteImage::Load(*bytes, "Widgets.stn");
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(db.handle(), "SELECT COUNT(*) FROM BuildHistory", -1, &statement, nullptr);
  sqlite3_step(statement);
  const int rows = sqlite3_column_int(statement, 0);
  sqlite3_finalize(statement);
  return rows;
}

TEST(BuildChain, FirstAndSecondBuildOfAnActiveXComponent) {
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.options.TrackHistory = true;

  // No file yet: nothing to back up or compare before; the model is made.
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.Steps(), (Strings{"lfncManageCompatEX=0", "lfncCompAfterEX=0", "lfncSnapshotEX=0",
                                "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  BuildReport first = w.sink->TakeBuildReport();
  EXPECT_TRUE(first.backups.empty());
  EXPECT_FALSE(first.differencesBefore);
  EXPECT_EQ(first.modelSetUp, kModel1);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_EQ(first.differencesAfter, 0);
  EXPECT_TRUE(first.historyRecorded);
  EXPECT_EQ(first.releaseCopy, kRelease);
  EXPECT_EQ(w.files().Contents(kRelease), Widgets("1.0"));
  EXPECT_TRUE(w.ui.boxes.empty());
  EXPECT_TRUE(w.ui.fileQuestions.empty());

  // The second build backs the old component up, finds 1.1 differs from
  // the model and renews the model beside the old one.
  const size_t traceBefore = w.TraceLines().size();
  w.Build("1.1", kSecondBuild);
  const BuildReport second = w.sink->TakeBuildReport();
  EXPECT_EQ(WorkflowWorld::StepsOf(second),
            (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncManageCompatEX=0",
                     "lfncCompAfterEX=0", "lfncUpdateCompatEX=0", "lfncSnapshotEX=0", "lfncBackupReleaseEX=0",
                     "lfncCopyToReleaseEX=0"}));
  ASSERT_EQ(second.backups.size(), 2u);
  EXPECT_EQ(second.backups[0].path, kBackup1);
  EXPECT_EQ(second.backups[1].path, "C:\\Release\\History\\Widgets-2004.05.06-14.03.09.dll");
  EXPECT_EQ(w.files().Contents(kBackup1), Widgets("1.0"));
  EXPECT_EQ(second.differencesBefore, 0);
  EXPECT_GT(second.differencesAfter.value_or(0), 0);
  EXPECT_TRUE(second.updateNeeded);
  EXPECT_EQ(second.modelUpdated, kModel2);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel2);
  EXPECT_EQ(w.files().Contents(kModel1), Widgets("1.0"));
  EXPECT_EQ(w.files().Contents(kModel2), Widgets("1.1"));
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_EQ(w.ui.forms[0].caption, "Comparison Results");
  EXPECT_EQ(BuildHistoryRows(w.files()), 2);

  const Strings halves = w.TraceStarting({"'clsProject:FileCTLEvents", "'[Widgets]:FileCTLEvents", "FileName",
                                          "Cancel :", "FileType:", "Result  :", "Running"},
                                         traceBefore);
  EXPECT_EQ(halves,
            (Strings{"'clsProject:FileCTLEvents_RequestWriteFile 50589",
                     "'[Widgets]:FileCTLEvents_RequestWriteFile 50589",
                     "FileName : C:\\Src\\Widgets\\bin\\Widgets.dll", "Cancel : False",
                     "Running lErrorCode = lfncBackupComponentEX(Me)", "Running Call lfncCompBeforeEX(Me)",
                     "'clsProject:FileCTLEvents_AfterWriteFile 50589",
                     "'[Widgets]:FileCTLEvents_AfterWriteFile 50589", "FileType: vbext_ft_Exe",
                     "FileName: C:\\Src\\Widgets\\bin\\Widgets.dll", "Result  : 0",
                     "Running lErrorCode = lfncManageCompatEX(Me)", "Running Call lfncProcessPerOptions(Me)",
                     "Running lErrorCode = lfncCompAfterEX(objProject, blnUpdateNeeded)",
                     "Running lErrorCode = lfncUpdateCompatEX(objProject)",
                     "Running lErrorCode = lfncSnapshotEX(objProject, False)",
                     "Running lErrorCode = lfncCopyToReleaseEX(objProject)"}));
}

TEST(BuildChain, WhichWritesCountAsTheProjectsOwnBuild) {
  WorkflowWorld w;
  w.options.CreateBackup.fill(1);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);

  // Another spelling of the same file is the component; another file is not.
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, "c:\\src\\widgets\\BIN\\widgets.DLL").ok());
  EXPECT_TRUE(w.files().Exists(kBackup1));
  w.files().ClearRecord();
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kProjectFile).ok());
  EXPECT_TRUE(w.files().Record().copies.empty());

  // A failed write runs nothing after its trace.
  w.SetEveryStep(1);
  w.sink->TakeBuildReport();
  ASSERT_TRUE(w.ide.FireAfterWriteFile(w.project, platform::vbext_ft_Exe, kComponent, 57).ok());
  EXPECT_TRUE(w.sink->Report().steps.empty());
  EXPECT_EQ(w.TraceLines().back(), "Result  : 57");
}

TEST(BuildChain, StandardExeSkipsTheModelButKeepsTheRest) {
  WorkflowWorld w("Exe");
  w.SetEveryStep(1);
  w.options.TrackHistory = true;
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Steps(), (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncSnapshotEX=0",
                                "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  const BuildReport& report = w.sink->Report();
  EXPECT_EQ(w.project->CompatibleOleServer(), "");
  EXPECT_TRUE(report.historyRecorded);
  EXPECT_FALSE(report.snapshotFolder.empty());
  EXPECT_EQ(report.releaseCopy, kRelease);
}

TEST(BuildChain, EmptyReleaseFolderSwitchesTheReleaseCopyOff) {
  WorkflowWorld w;
  w.handler.SaveOption("ActiveX_DLL_CopyComponents", "1");
  w.handler.SaveOption("ActiveX_DLL_ReleaseFolder", "");
  w.handler.LoadOptions();
  for (auto* option : {&w.options.CreateSnapshot, &w.options.CreateBackup, &w.options.ManageComp,
                       &w.options.CompareCompsBefore, &w.options.CompareCompsAfter,
                       &w.options.UpdateCompatIfReqd, &w.options.BackupComponents})
    option->fill(0);
  w.Build("1.0", kFirstBuild);
  EXPECT_TRUE(w.ui.fileQuestions.empty());
  EXPECT_EQ(w.Steps(), (Strings{"lfncManageCompatEX=0", "lfncCompAfterEX=0", "lfncSnapshotEX=0",
                                "lfncCopyToReleaseEX=0"}));
  EXPECT_EQ(w.sink->Report().releaseCopy, "");
  EXPECT_FALSE(w.files().Exists(kRelease));
}

TEST(BuildChain, NoToEveryQuestionSkipsEachStepAndTheChainGoesOn) {
  WorkflowWorld w;
  w.SetEveryStep(2);
  for (int i = 0; i < 12; ++i) w.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kNo));
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.Captions(), (Strings{"Manage Compatibility?", "Create Snapshot?", "Copy to Release Folder?"}));
  EXPECT_EQ(w.project->CompatibleOleServer(), "");

  // With a model in place every question of a build comes up in turn.
  w.SetEveryStep(1);
  w.files().AddFile(kModel1, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.project->SetCompatibleOleServer(kModel1).ok());
  w.SetEveryStep(2);
  w.ui.fileQuestions.clear();
  w.files().ClearRecord();
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Captions(),
            (Strings{"Backup Component?", "Compare Interface? (Pre Compile)",
                     "Compare Interfaces? (Post Compile)", "Create Snapshot?", "Copy to Release Folder?"}));
  EXPECT_TRUE(w.files().Record().copies.empty());
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_TRUE(w.ui.forms.empty());
}

TEST(BuildChain, RefusedOverwriteEndsTheChainWithTwo) {
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.options.TrackHistory = true;
  w.files().AddFile(kModel1, "an older model", kFirstBuild);
  w.ui.QueueAnswer(mb::kCancel);
  w.Build("1.0", kFirstBuild);
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].prompt, std::string("The file ") + kModel1 +
                                      " already exists.\r\nPress Ok to Overwrite or Cancel to abort.");
  EXPECT_EQ(w.ui.boxes[0].style, 49);
  EXPECT_EQ(w.ui.boxes[0].title, "File Already Exists");
  EXPECT_EQ(w.Steps(), Strings{"lfncManageCompatEX=2"});
  EXPECT_EQ(w.files().Contents(kModel1), "an older model");
  EXPECT_EQ(w.project->CompatibleOleServer(), "");
  EXPECT_FALSE(w.sink->Report().historyRecorded);
  EXPECT_FALSE(w.files().Exists(kRelease));

  // A refused backup stops the comparison before the build.
  w.sink->TakeBuildReport();
  w.files().AddFile(kBackup1, "an older backup", kFirstBuild);
  w.ui.QueueAnswer(mb::kCancel);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  EXPECT_EQ(w.Steps(), Strings{"lfncBackupComponentEX=2"});
  EXPECT_EQ(w.files().Contents(kBackup1), "an older backup");
}

TEST(BuildChain, PermissionDeniedHandsTheCopyToABatchFileAndEndsWithSeven) {
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.options.EnableDeferredActions = true;
  w.files().AddFile(kModel1, "held open by the IDE", kFirstBuild);
  w.files().FailNext(FsOp::kDelete, kModel1, 70);
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.Steps(), Strings{"lfncManageCompatEX=7"});
  const std::optional<std::string> batch = w.files().Contents("C:\\Users\\Dev\\Desktop\\Copy Widgets.bat");
  ASSERT_TRUE(batch);
  EXPECT_NE(batch->find(std::string("@xcopy \"") + kComponent + "\" \"" + kModel1 + "\" /f"),
            std::string::npos);
  EXPECT_EQ(w.project->CompatibleOleServer(), "");
  EXPECT_TRUE(w.TraceStarting({"Running Call lfncProcessPerOptions"}).empty());
}

TEST(BuildChain, BackupRotationKeepsTheNewestFilesOfTheKind) {
  WorkflowWorld w;
  w.options.CreateBackup.fill(1);
  w.options.BackupFileCount = 3;
  const std::string history = "C:\\Src\\Widgets\\bin\\History\\";
  w.files().AddFile(history + "Widgets-1.dll", "", {2004, 1, 1, 0, 0, 0});
  w.files().AddFile(history + "Widgets-2.dll", "", {2004, 2, 1, 0, 0, 0});
  w.files().AddFile(history + "Gadgets-3.dll", "", {2004, 3, 1, 0, 0, 0});
  w.files().AddFile(history + "Widgets-4.dll", "", {2004, 4, 1, 0, 0, 0});
  w.files().AddFile(history + "notes.txt", "", {2003, 1, 1, 0, 0, 0});
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  EXPECT_EQ(w.files().Record().deleted, (Strings{history + "Widgets-2.dll", history + "Widgets-1.dll"}));
  EXPECT_TRUE(w.files().Exists(history + "notes.txt"));
  EXPECT_TRUE(w.files().Exists(kBackup1));

  // A count of 0 keeps every backup.
  w.options.BackupFileCount = 0;
  w.files().ClearRecord();
  w.files().AddFile(kComponent, Widgets("1.1"), kSecondBuild);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  EXPECT_TRUE(w.files().Record().deleted.empty());
}

TEST(BuildChain, ChosenFoldersComeBackOnTheNextBuild) {
  WorkflowWorld w;
  w.options.CreateBackup.fill(2);
  w.options.CreateSnapshot.fill(2);
  w.options.CopyComponents.fill(1);
  w.options.BackupComponents.fill(2);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.files().AddFile(kRelease, Widgets("1.0"), kFirstBuild);
  w.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kYes, "D:\\Backups\\Widgets-2004.05.06-14.03.09.dll"));
  w.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kYes, "E:\\Snaps\\Widgets 2004.05.06-14.03.09\\"));
  w.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kYes, "F:\\Kept\\Widgets-2004.05.06-14.03.09.dll"));
  w.Build("1.1", kSecondBuild);
  EXPECT_TRUE(w.files().Exists("D:\\Backups\\Widgets-2004.05.06-14.03.09.dll"));
  EXPECT_TRUE(w.files().Exists("E:\\Snaps\\Widgets 2004.05.06-14.03.09\\Widgets.vbp"));
  EXPECT_TRUE(w.files().Exists("F:\\Kept\\Widgets-2004.05.06-14.03.09.dll"));
  EXPECT_EQ(w.files().Contents(kRelease), Widgets("1.1"));

  w.ui.fileQuestions.clear();
  w.Build("1.1", {2004, 5, 8, 10, 0, 0});
  ASSERT_EQ(w.ui.fileQuestions.size(), 3u);
  EXPECT_EQ(w.ui.fileQuestions[0].destination, "D:\\Backups\\Widgets-2004.05.07-09.30.00.dll");
  EXPECT_EQ(w.ui.fileQuestions[1].destination, "E:\\Snaps\\Widgets 2004.05.06-14.03.09\\");
  EXPECT_EQ(w.ui.fileQuestions[2].destination, "F:\\Kept\\Widgets-2004.05.07-09.30.00.dll");
}

TEST(BuildChain, ModelsThatCannotKeepCompatibilityAreReplaced) {
  // A temporary model (any case) is set up as if there were none.
  WorkflowWorld tmp;
  tmp.options.ManageComp.fill(1);
  ASSERT_TRUE(tmp.project->SetCompatibleOleServer("C:\\Src\\Widgets\\bin\\Widgets.TMP").ok());
  tmp.Build("1.0", kFirstBuild);
  EXPECT_EQ(tmp.project->CompatibleOleServer(), kModel1);

  // A model that is the build output gets a separate dated copy beside it.
  WorkflowWorld self;
  self.options.ManageComp.fill(1);
  ASSERT_TRUE(self.project->SetCompatibleOleServer(kComponent).ok());
  self.Build("1.0", kFirstBuild);
  EXPECT_EQ(self.project->CompatibleOleServer(), "C:\\Src\\Widgets\\bin\\Widgets-2004.05.06-14.03.09.dll");
  EXPECT_TRUE(self.files().Exists(self.project->CompatibleOleServer()));

  // A folder chosen for the model is proposed the next time one is needed.
  WorkflowWorld chosen;
  chosen.options.ManageComp.fill(2);
  chosen.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kYes, "D:\\Models\\Widgets-2004.05.06-14.03.09.dll"));
  chosen.Build("1.0", kFirstBuild);
  EXPECT_EQ(chosen.project->CompatibleOleServer(), "D:\\Models\\Widgets-2004.05.06-14.03.09.dll");
  ASSERT_TRUE(chosen.project->SetCompatibleOleServer("").ok());
  chosen.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kNo));
  chosen.Build("1.1", kSecondBuild);
  ASSERT_EQ(chosen.ui.fileQuestions.size(), 2u);
  EXPECT_EQ(chosen.ui.fileQuestions[1].destination, "D:\\Models\\Widgets-2004.05.07-09.30.00.dll");
}

TEST(BuildChain, NoDifferencesIsSaidOnlyToAUserWhoAsked) {
  WorkflowWorld w;
  w.files().AddFile(kModel1, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.project->SetCompatibleOleServer(kModel1).ok());
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.options.CompareCompsBefore.fill(1);
  w.options.CompareCompsAfter.fill(1);
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.sink->Report().differencesAfter, 0);
  EXPECT_TRUE(w.ui.boxes.empty());

  w.options.CompareCompsBefore.fill(2);
  w.options.CompareCompsAfter.fill(2);
  w.Build("1.0", kFirstBuild);
  ASSERT_EQ(w.ui.boxes.size(), 2u);
  for (const AskedBox& box : w.ui.boxes) {
    EXPECT_EQ(box.prompt, "No Differences Detected.");
    EXPECT_EQ(box.style, mb::kOkOnly);
    EXPECT_EQ(box.title, "Sentrune");
  }
  EXPECT_TRUE(w.ui.forms.empty());
}

TEST(BuildChain, DecliningTheUpdateKeepsTheModel) {
  WorkflowWorld w;
  w.files().AddFile(kModel1, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.project->SetCompatibleOleServer(kModel1).ok());
  w.options.CompareCompsAfter.fill(1);
  w.options.UpdateCompatIfReqd.fill(2);
  w.ui.QueueFileHandler(WorkflowWorld::Answer(mb::kNo));
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Captions(), Strings{"Update Compatibility Model?"});
  EXPECT_EQ(w.ui.fileQuestions[0].destination, kModel2);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_FALSE(w.files().Exists(kModel2));
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_NE(w.ui.forms[0].text.find(" Differences Found.\r\n--> "), std::string::npos);
}

TEST(BuildChain, HistoryIsRecordedEvenWhenALaterStepStopsTheChain) {
  WorkflowWorld w;
  w.options.TrackHistory = true;
  w.options.CopyComponents.fill(1);
  w.files().AddFile(kRelease, "the previous release", kFirstBuild);
  w.ui.QueueAnswer(mb::kCancel);
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.sink->Report().EndedBy()->procedure, "lfncCopyToReleaseEX");
  EXPECT_EQ(w.sink->Report().EndedBy()->code, 2);
  EXPECT_EQ(w.files().Contents(kRelease), "the previous release");
  EXPECT_EQ(BuildHistoryRows(w.files()), 1);
}

}  // namespace
}  // namespace sentrune::testing
