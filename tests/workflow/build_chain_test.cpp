// Whole builds through the headless IDE: which steps run, what they write,
// what they ask, and how one step's code stops the rest.
#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "workflow/compat_history.h"
#include "workflow_world.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;

constexpr const char* kModel1 = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.06-14.03.09.dll";
constexpr const char* kModel2 = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.07-09.30.00.dll";
constexpr const char* kBackup1 = "C:\\Src\\Widgets\\bin\\History\\Widgets-2004.05.06-14.03.09.dll";
constexpr const char* kRelease = "C:\\Release\\Widgets.dll";

platform::FileHandlerAnswer Reply(int button, const std::string& destination = {}) {
  platform::FileHandlerAnswer answer;
  answer.button = button;
  answer.destination = destination;
  return answer;
}

TEST(BuildChain, FirstAndSecondBuildOfAnActiveXComponent) {
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.options.TrackHistory = true;
  w.options.BackupFileCount = 1;
  const std::string oldBackup = "C:\\Src\\Widgets\\bin\\History\\Gadgets-2003.dll";
  w.files().AddFile(oldBackup, "", {2003, 1, 1, 0, 0, 0});

  // No file yet: nothing to back up or compare before; the model is made.
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.Steps(), (Strings{"lfncManageCompatEX=0", "lfncCompAfterEX=0", "lfncSnapshotEX=0",
                                "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  const BuildReport first = w.sink->TakeBuildReport();
  EXPECT_EQ(first.modelSetUp, kModel1);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_EQ(first.differencesAfter, 0);
  EXPECT_TRUE(first.historyRecorded);
  EXPECT_EQ(w.files().Contents(kRelease), Widgets("1.0"));

  // The second build backs the old component up (older backups of the
  // kind make way), finds 1.1 differs from the model and renews the model
  // beside the old one; the release copy, backed up, is replaced unasked.
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Steps(), (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncManageCompatEX=0",
                                "lfncCompAfterEX=0", "lfncUpdateCompatEX=0", "lfncSnapshotEX=0",
                                "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  const BuildReport second = w.sink->TakeBuildReport();
  EXPECT_EQ(second.backups.size(), 2u);
  EXPECT_EQ(second.differencesBefore, 0);
  EXPECT_GT(second.differencesAfter.value_or(0), 0);
  EXPECT_EQ(second.modelUpdated, kModel2);
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel2);
  const std::pair<std::string, const char*> files[] = {
      {kBackup1, "1.0"}, {"C:\\Release\\History\\Widgets-2004.05.06-14.03.09.dll", "1.0"},
      {kModel1, "1.0"},  {kModel2, "1.1"},
      {kRelease, "1.1"}};
  for (const auto& [path, version] : files) EXPECT_EQ(w.files().Contents(path), Widgets(version)) << path;
  EXPECT_FALSE(w.files().Exists(oldBackup));
  EXPECT_TRUE(second.historyRecorded);
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_EQ(w.ui.forms[0].caption, "Comparison Results");
  EXPECT_TRUE(w.ui.boxes.empty() && w.ui.fileQuestions.empty());

  // The copies the builds left, in time order with an older model that had
  // more and a damaged one: the first 1.0 copy is where compatibility broke,
  // and an unreadable copy is stepped over.
  const std::string older = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2003.dll";
  const std::string damaged = "C:\\Src\\Widgets\\bin\\History\\Widgets-damaged.dll";
  w.files().AddFile(older, Widgets("1.1"), {2003, 1, 1, 0, 0, 0});
  w.files().AddFile(damaged, "MZ", {2004, 5, 7, 9, 30, 0});
  const std::vector<DatedCopy> copies = CompatTimeline(w.state, w.options, *w.project);
  Strings order, steps;
  for (const DatedCopy& copy : copies) order.push_back(copy.path);
  EXPECT_EQ(order, (Strings{older, kModel1, kBackup1, kModel2, damaged, kComponent}));
  WalkCompatTimeline(w.state, copies, false, [&](const CompatStep& step) {
    steps.push_back((step.older ? std::to_string(*step.older) : "-") + ">" + std::to_string(step.newer) + " " +
                    (step.error.empty() ? CompatLevelName(CompatibilityLevel(step.differences)) : "unreadable"));
  });
  EXPECT_EQ(steps, (Strings{"->0 identical", "0>1 incompatible", "1>2 identical", "2>3 compatible",
                            "3>4 unreadable", "3>5 identical"}));
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

TEST(BuildChain, AStandardExeHasNoModelToKeep) {
  WorkflowWorld w("Exe");
  w.SetEveryStep(1);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Steps(), (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncSnapshotEX=0",
                                "lfncBackupReleaseEX=0", "lfncCopyToReleaseEX=0"}));
  EXPECT_EQ(w.project->CompatibleOleServer(), "");
}

// A No skips its step and the chain goes on; a comparison asked for speaks
// even when nothing differs.
TEST(BuildChain, EachQuestionDecidesItsStepAlone) {
  WorkflowWorld w;
  w.files().AddFile(kModel1, Widgets("1.0"), kFirstBuild);
  ASSERT_TRUE(w.project->SetCompatibleOleServer(kModel1).ok());
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.SetEveryStep(2);
  for (int button : {mb::kNo, mb::kYes, mb::kYes, mb::kNo, mb::kNo, mb::kNo}) w.ui.QueueFileHandler(Reply(button));
  w.files().ClearRecord();
  w.Build("1.1", kSecondBuild);
  EXPECT_EQ(w.Captions(),
            (Strings{"Backup Component?", "Compare Interface? (Pre Compile)", "Compare Interfaces? (Post Compile)",
                     "Update Compatibility Model?", "Create Snapshot?", "Copy to Release Folder?"}));
  EXPECT_EQ(w.ui.fileQuestions[3].destination, kModel2);
  EXPECT_TRUE(w.files().Record().copies.empty());
  EXPECT_EQ(w.project->CompatibleOleServer(), kModel1);
  EXPECT_EQ(w.ui.Prompts(), Strings{"No Differences Detected."});
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_NE(w.ui.forms[0].text.find(" Differences Found.\r\n--> "), std::string::npos);

  // A model with no type library in it is not a model that matches.
  WorkflowWorld broken;
  broken.files().AddFile(kModel1, "not a component", kFirstBuild);
  ASSERT_TRUE(broken.project->SetCompatibleOleServer(kModel1).ok());
  broken.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  broken.SetEveryStep(0);
  broken.options.CompareCompsBefore[platform::vbext_pt_ActiveXDll] = 2;
  broken.ui.QueueFileHandler(Reply(mb::kYes));
  broken.Build("1.1", kSecondBuild);
  EXPECT_EQ(broken.ui.Prompts(), (Strings{"The file doesn't contain a valid TypeLib.\r\nSelect another file."}));
}

// A step that fails ends its half of the build and leaves what it would
// have replaced as it was, with no partial or temporary file beside it: a
// refused overwrite ends it with 2, a release copy held open with 7 (its copy
// deferred to a batch file), a copy that cannot be written with the error,
// and the project then names no model that was not made. A dated name taken
// by an earlier copy is no reason to stop: the copy takes the next free name.
// The build is recorded once the after-build driver runs, whatever stops it.
TEST(BuildChain, AStepThatCannotWriteItsFileEndsTheChain) {
  const std::string model1Again = "C:\\Src\\Widgets\\bin\\Compat\\Widgets-2004.05.06-14.03.09 (2).dll";
  const struct {
    const char* name;
    std::function<void(WorkflowWorld&)> arrange;
    std::string endedBy;
    std::string model;
    bool recorded;
  } cases[] = {
      {"refused",
       [](WorkflowWorld& w) {
         w.options.BackupComponents.fill(0);
         w.ui.QueueAnswer(mb::kCancel);
       },
       "lfncCopyToReleaseEX=2", kModel1, true},
      {"held open", [](WorkflowWorld& w) { w.files().FailNext(FsOp::kRename, kRelease, 70); },
       "lfncCopyToReleaseEX=7", kModel1, true},
      {"disk full", [](WorkflowWorld& w) { w.files().FailNext(FsOp::kCopy, "", 61); }, "lfncManageCompatEX=61", "",
       false},
      {"name taken", [](WorkflowWorld& w) { w.files().AddFile(kModel1, "an older file", kFirstBuild); },
       "lfncCopyToReleaseEX=0", model1Again, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WorkflowWorld w;
    w.SetEveryStep(1);
    w.options.TrackHistory = true;
    w.options.EnableDeferredActions = true;
    w.files().AddFile(kRelease, "the previous release", kFirstBuild);
    c.arrange(w);
    const std::optional<std::string> earlierModel = w.files().Contents(kModel1);
    w.Build("1.0", kFirstBuild);
    EXPECT_EQ(w.Steps().back(), c.endedBy);
    EXPECT_EQ(w.files().Contents(kModel1), c.model == kModel1 ? Widgets("1.0") : earlierModel);
    EXPECT_EQ(w.files().Contents(kRelease), c.endedBy.ends_with("=0") ? Widgets("1.0") : "the previous release");
    EXPECT_EQ(w.project->CompatibleOleServer(), c.model);
    EXPECT_EQ(w.sink->Report().historyRecorded, c.recorded);
    for (const char* folder : {"C:\\Release\\~*", "C:\\Src\\Widgets\\bin\\Compat\\~*"})
      EXPECT_TRUE(w.files().List(folder).value_or(std::vector<platform::DirEntry>{}).empty()) << folder;
  }

  // Before the build: a backup whose name is taken gets the next one; a
  // backup that cannot be written stops the comparison.
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.files().AddFile(kBackup1, "an older backup", kFirstBuild);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  w.files().FailNext(FsOp::kCopy, "", 70);
  ASSERT_TRUE(w.ide.FireRequestWriteFile(w.project, kComponent).ok());
  EXPECT_EQ(w.Steps(), (Strings{"lfncBackupComponentEX=0", "lfncCompBeforeEX=0", "lfncBackupComponentEX=70"}));
  EXPECT_EQ(w.files().Contents(kBackup1), "an older backup");
  EXPECT_EQ(w.files().Contents("C:\\Src\\Widgets\\bin\\History\\Widgets-2004.05.06-14.03.09 (2).dll"),
            Widgets("1.0"));
  EXPECT_FALSE(w.files().Exists("C:\\Src\\Widgets\\bin\\History\\Widgets-2004.05.06-14.03.09 (3).dll"));
  EXPECT_TRUE(w.ui.fileQuestions.empty());
}

TEST(BuildChain, ChosenFoldersComeBackOnTheNextBuild) {
  WorkflowWorld w;
  for (auto* option : {&w.options.CreateBackup, &w.options.ManageComp, &w.options.CreateSnapshot,
                       &w.options.BackupComponents})
    option->fill(2);
  w.options.CopyComponents.fill(1);
  w.files().AddFile(kComponent, Widgets("1.0"), kFirstBuild);
  w.files().AddFile(kRelease, Widgets("1.0"), kFirstBuild);
  const Strings chosen{"D:\\Backups\\Widgets-2004.05.06-14.03.09.dll", "D:\\Models\\Widgets-2004.05.07-09.30.00.dll",
                       "E:\\Snaps\\Widgets 2004.05.06-14.03.09\\", "F:\\Kept\\Widgets-2004.05.06-14.03.09.dll"};
  for (const std::string& destination : chosen) w.ui.QueueFileHandler(Reply(mb::kYes, destination));
  w.Build("1.1", kSecondBuild);
  for (const std::string& file : {chosen[0], chosen[1], chosen[2] + "Widgets.vbp", chosen[3]})
    EXPECT_TRUE(w.files().Exists(file)) << file;
  EXPECT_EQ(w.files().Contents(kRelease), Widgets("1.1"));

  // The model's folder comes back once the project names no model.
  ASSERT_TRUE(w.project->SetCompatibleOleServer("").ok());
  w.ui.fileQuestions.clear();
  w.Build("1.1", {2004, 5, 8, 10, 0, 0});
  Strings proposed;
  for (const auto& question : w.ui.fileQuestions) proposed.push_back(question.destination);
  EXPECT_EQ(proposed, (Strings{"D:\\Backups\\Widgets-2004.05.07-09.30.00.dll",
                               "D:\\Models\\Widgets-2004.05.08-10.00.00.dll", chosen[2],
                               "F:\\Kept\\Widgets-2004.05.07-09.30.00.dll"}));
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
}

}  // namespace
}  // namespace sentrune::testing
