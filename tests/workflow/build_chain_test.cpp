// Whole builds through the headless IDE: which steps run, what they write,
// what they ask, and how one step's code stops the rest.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "tracking/sqlite_image.h"
#include "workflow_world.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;

constexpr const char* kModel1 = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.06-14.03.09.dll";
constexpr const char* kModel2 = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.07-09.30.00.dll";
constexpr const char* kBackup1 = "C:\\Src\\Widgets\\bin\\History\\Widgets-2004.05.06-14.03.09.dll";
constexpr const char* kRelease = "C:\\Release\\Widgets.dll";

platform::FileHandlerAnswer Reply(int button, std::string destination = {}) {
  platform::FileHandlerAnswer answer;
  answer.button = button;
  answer.destination = std::move(destination);
  return answer;
}

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
  const BuildReport first = w.sink->TakeBuildReport();
  EXPECT_EQ(first.modelSetUp, kModel1);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_EQ(first.differencesAfter, 0);
  EXPECT_EQ(w.files().Contents(kRelease), Widgets("1.0"));
  EXPECT_TRUE(w.ui.boxes.empty() && w.ui.fileQuestions.empty());

  // The second build backs the old component up, finds 1.1 differs from
  // the model and renews the model beside the old one.
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Steps(), (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncManageCompatEX=0",
                                "lfncCompAfterEX=0", "lfncUpdateCompatEX=0", "lfncSnapshotEX=0",
                                "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  const BuildReport second = w.sink->TakeBuildReport();
  ASSERT_EQ(second.backups.size(), 2u);
  EXPECT_EQ(second.backups[0].path, kBackup1);
  EXPECT_EQ(second.backups[1].path, "C:\\Release\\History\\Widgets-2004.05.06-14.03.09.dll");
  EXPECT_EQ(w.files().Contents(kBackup1), Widgets("1.0"));
  EXPECT_EQ(second.differencesBefore, 0);
  EXPECT_GT(second.differencesAfter.value_or(0), 0);
  EXPECT_EQ(second.modelUpdated, kModel2);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel2);
  EXPECT_EQ(w.files().Contents(kModel1), Widgets("1.0"));
  EXPECT_EQ(w.files().Contents(kModel2), Widgets("1.1"));
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_EQ(w.ui.forms[0].caption, "Comparison Results");
  EXPECT_EQ(BuildHistoryRows(w.files()), 2);
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

TEST(BuildChain, StandardExeSkipsTheModelAndAnEmptyReleaseFolderTheCopy) {
  WorkflowWorld exe("Exe");
  exe.SetEveryStep(1);
  exe.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  exe.Build("1.1", kSecondBuild);
  EXPECT_EQ(exe.Steps(), (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncSnapshotEX=0",
                                  "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  EXPECT_EQ(exe.project->CompatibleOleServer(), "");
  EXPECT_EQ(exe.sink->Report().releaseCopy, kRelease);

  WorkflowWorld w;
  w.handler.SaveOption("ActiveX_DLL_CopyComponents", "1");
  w.handler.SaveOption("ActiveX_DLL_ReleaseFolder", "");
  w.handler.LoadOptions();
  const auto loaded = w.options.CopyComponents;
  w.SetEveryStep(0);
  w.options.CopyComponents = loaded;
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.Steps().back(), "lfncCopyToReleaseEX=0");
  EXPECT_TRUE(w.ui.fileQuestions.empty());
  EXPECT_EQ(w.sink->Report().releaseCopy, "");
  EXPECT_FALSE(w.files().Exists(kRelease));
}

TEST(BuildChain, NoToEveryQuestionSkipsEachStepAndTheChainGoesOn) {
  WorkflowWorld w;
  w.files().AddFile(kModel1, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.project->SetCompatibleOleServer(kModel1).ok());
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.SetEveryStep(2);
  for (int i = 0; i < 12; ++i) w.ui.QueueFileHandler(Reply(mb::kNo));
  w.files().ClearRecord();
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Captions(),
            (Strings{"Backup Component?", "Compare Interface? (Pre Compile)", "Compare Interfaces? (Post Compile)",
                     "Create Snapshot?", "Copy to Release Folder?"}));
  EXPECT_TRUE(w.files().Record().copies.empty());
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_TRUE(w.ui.forms.empty());
}

// A step that ends the chain leaves what it would have replaced as it was:
// a refused overwrite ends it with 2, a model the IDE holds open with 7 and a
// batch file to finish the copy later.
TEST(BuildChain, AStepThatCannotReplaceAFileEndsTheChain) {
  for (const bool heldOpen : {false, true}) {
    WorkflowWorld w;
    w.SetEveryStep(1);
    w.options.TrackHistory = true;
    w.options.EnableDeferredActions = true;
    w.files().AddFile(kModel1, "an older model", kFirstBuild);
    heldOpen ? w.files().FailNext(FsOp::kDelete, kModel1, 70) : w.ui.QueueAnswer(mb::kCancel);
    w.Build("1.0", kFirstBuild);
    EXPECT_EQ(w.Steps(), Strings{heldOpen ? "lfncManageCompatEX=7" : "lfncManageCompatEX=2"});
    EXPECT_EQ(w.files().Contents(kModel1), "an older model");
    EXPECT_EQ(w.project->CompatibleOleServer(), "");
    EXPECT_FALSE(w.sink->Report().historyRecorded);
    EXPECT_FALSE(w.files().Exists(kRelease));
    const std::string batch = w.files().Contents("C:\\Users\\Dev\\Desktop\\Copy Widgets.bat").value_or("");
    EXPECT_EQ(batch.find(std::string("@xcopy \"") + kComponent + "\" \"" + kModel1 + "\" /f") != std::string::npos,
              heldOpen);
  }

  // A refused backup stops the comparison before the build.
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.files().AddFile(kBackup1, "an older backup", kFirstBuild);
  w.ui.QueueAnswer(mb::kCancel);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  EXPECT_EQ(w.Steps(), Strings{"lfncBackupComponentEX=2"});
  EXPECT_EQ(w.files().Contents(kBackup1), "an older backup");
}

TEST(BuildChain, HistoryIsRecordedEvenWhenALaterStepStopsTheChain) {
  WorkflowWorld w;
  w.options.TrackHistory = true;
  w.options.CopyComponents.fill(1);
  w.files().AddFile(kRelease, "the previous release", kFirstBuild);
  w.ui.QueueAnswer(mb::kCancel);
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.Steps().back(), "lfncCopyToReleaseEX=2");
  EXPECT_EQ(w.files().Contents(kRelease), "the previous release");
  EXPECT_EQ(BuildHistoryRows(w.files()), 1);
}

TEST(BuildChain, BackupRotationKeepsTheNewestFilesOfTheKind) {
  WorkflowWorld w;
  w.options.CreateBackup.fill(1);
  w.options.BackupFileCount = 3;
  const std::string history = "C:\\Src\\Widgets\\bin\\History\\";
  for (int month : {1, 2, 4}) w.files().AddFile(history + "Widgets-" + std::to_string(month) + ".dll", "",
                                                {2004, month, 1, 0, 0, 0});
  w.files().AddFile(history + "Gadgets-3.dll", "", {2004, 3, 1, 0, 0, 0});
  w.files().AddFile(history + "notes.txt", "", {2003, 1, 1, 0, 0, 0});
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  EXPECT_EQ(w.files().Record().deleted, (Strings{history + "Widgets-2.dll", history + "Widgets-1.dll"}));
  EXPECT_TRUE(w.files().Exists(kBackup1));
}

TEST(BuildChain, ChosenFoldersComeBackOnTheNextBuild) {
  WorkflowWorld w;
  w.options.CreateBackup.fill(2);
  w.options.CreateSnapshot.fill(2);
  w.options.CopyComponents.fill(1);
  w.options.BackupComponents.fill(2);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.files().AddFile(kRelease, Widgets("1.0"), kFirstBuild);
  w.ui.QueueFileHandler(Reply(mb::kYes, "D:\\Backups\\Widgets-2004.05.06-14.03.09.dll"));
  w.ui.QueueFileHandler(Reply(mb::kYes, "E:\\Snaps\\Widgets 2004.05.06-14.03.09\\"));
  w.ui.QueueFileHandler(Reply(mb::kYes, "F:\\Kept\\Widgets-2004.05.06-14.03.09.dll"));
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
  // A temporary model (any case) is set up as if there were none; a model
  // that is the build output gets a separate dated copy beside it.
  const std::pair<const char*, const char*> models[] = {
      {"C:\\Src\\Widgets\\bin\\Widgets.TMP", kModel1},
      {kComponent, "C:\\Src\\Widgets\\bin\\Widgets-2004.05.06-14.03.09.dll"}};
  for (const auto& [model, replacement] : models) {
    WorkflowWorld w;
    w.options.ManageComp.fill(1);
    ASSERT_TRUE(w.project->SetCompatibleOleServer(model).ok());
    w.Build("1.0", kFirstBuild);
    EXPECT_EQ(w.project->CompatibleOleServer(), replacement);
    EXPECT_TRUE(w.files().Exists(replacement));
  }

  // A folder chosen for the model is proposed the next time one is needed.
  WorkflowWorld chosen;
  chosen.options.ManageComp.fill(2);
  chosen.ui.QueueFileHandler(Reply(mb::kYes, "D:\\Models\\Widgets-2004.05.06-14.03.09.dll"));
  chosen.Build("1.0", kFirstBuild);
  ASSERT_TRUE(chosen.project->SetCompatibleOleServer("").ok());
  chosen.ui.QueueFileHandler(Reply(mb::kNo));
  chosen.Build("1.1", kSecondBuild);
  ASSERT_EQ(chosen.ui.fileQuestions.size(), 2u);
  EXPECT_EQ(chosen.ui.fileQuestions[1].destination, "D:\\Models\\Widgets-2004.05.07-09.30.00.dll");
}

TEST(BuildChain, ComparisonsSpeakOnlyWhenAskedAndAnUpdateCanBeDeclined) {
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
  EXPECT_EQ(w.ui.boxes[1].prompt, "No Differences Detected.");

  WorkflowWorld declined;
  declined.files().AddFile(kModel1, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(declined.project->SetCompatibleOleServer(kModel1).ok());
  declined.options.CompareCompsAfter.fill(1);
  declined.options.UpdateCompatIfReqd.fill(2);
  declined.ui.QueueFileHandler(Reply(mb::kNo));
  declined.Build("1.1", kSecondBuild);
  EXPECT_EQ(declined.Captions(), Strings{"Update Compatibility Model?"});
  EXPECT_EQ(declined.ui.fileQuestions[0].destination, kModel2);
  EXPECT_EQ(declined.project->CompatibleOleServer(), kModel1);
  EXPECT_FALSE(declined.files().Exists(kModel2));
  ASSERT_EQ(declined.ui.forms.size(), 1u);
  EXPECT_NE(declined.ui.forms[0].text.find(" Differences Found.\r\n--> "), std::string::npos);
}

}  // namespace
}  // namespace sentrune::testing
