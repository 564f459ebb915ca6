// The project file path fixer over the in-memory file system: its line
// rules, the whole run and every way it stops without touching the file.
// Real projects and the command line are covered with the reference list's
// end-to-end tests.
#include <algorithm>
#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "files/files_world.h"
#include "files/path_fixer.h"

namespace sentrune::testing {
namespace {

using Outcome = PathFixResult::Outcome;

constexpr const char* kProject = "C:\\Src\\App\\App.vbp";
constexpr const char* kBackup = "C:\\Src\\App\\History\\App-2004.05.06-14.03.09.vbp";
const std::string kStdole =
    "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Src\\Lib\\stdole2.tlb#OLE Automation";
const std::string kStdoleFixed =
    "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#..\\Lib\\stdole2.tlb#OLE Automation";
const std::string kWidget = "Class=Widget; C:\\Src\\Lib\\Widget.cls";
const std::string kWidgetFixed = "Class=Widget#..\\lib\\widget.cls";
const std::string kFixable = "Type=Exe\r\n" + kWidget + "\r\n";

// A box as one text, title and style first, so that one comparison checks all three.
std::string Shown(const AskedBox& box) { return box.title + "|" + std::to_string(box.style) + "|" + box.prompt; }

struct FixerWorld : FilesWorld {
  FixerWorld() {
    for (const char* file : {"C:\\Src\\Lib\\Widget.cls", "C:\\Src\\Lib\\stdole2.tlb", "C:\\Src\\App\\Main.frm",
                             "C:\\Src\\App\\Helpers.bas", "D:\\Shared\\Other.tlb"})
      files().AddFile(file, "");
  }
  PathFixResult Run(const std::string& bytes) {
    files().AddFile(kProject, bytes);
    files().ClearRecord();
    return Parse4ABSFile(state, options, kProject);
  }
};

TEST(PathFixerLines, OnlyAbsolutePathsToExistingFilesOnTheProjectDriveChange) {
  FixerWorld w;
  w.files().AddFile(kProject, "");
  const auto fix = [&](const std::string& line) { return FixProjectLine(w.files(), kProject, "c:", line); };
  EXPECT_EQ(fix(kStdole), kStdoleFixed);
  // Name and path are rejoined with "#", the path in lower case; the key is
  // trimmed but keeps its case, the name is kept as read.
  EXPECT_EQ(fix(kWidget), kWidgetFixed);
  EXPECT_EQ(fix(" Module = Helpers ; C:\\SRC\\App\\Helpers.bas "), "Module=Helpers #helpers.bas");
  // One part (no ";"), another drive, a missing file, three parts, a key not handled, no value.
  for (const char* stays : {"Form=C:\\Src\\App\\Main.frm", "Reference=*\\G{X}#2.0#0#D:\\Shared\\Other.tlb#Other",
                            "Class=Gone; C:\\Src\\Lib\\Gone.cls", "Class=Widget; C:\\Src\\Lib\\Widget.cls; extra",
                            "ExeName32=C:\\Src\\Lib\\Widget.cls", "Class"})
    EXPECT_EQ(fix(stays), std::nullopt) << stays;
}

TEST(PathFixer, ReportsBacksUpThenReplacesTheFileThroughATemporaryOne) {
  FixerWorld w;
  const std::string original = "Type=Exe\r\n" + kStdole + "\r\nForm=C:\\Src\\App\\Main.frm\r\n" + kWidget +
                               "\r\nDescription=\"Caf\xE9 \x81\"\r\n";
  const PathFixResult result = w.Run(original);
  EXPECT_EQ(result.outcome, Outcome::kFixed);
  EXPECT_EQ(result.backupFile, kBackup);
  EXPECT_EQ(w.files().Contents(kBackup), original);
  // Every line gets CR LF, so the empty piece after the last one adds a line.
  const std::string fixed = "Type=Exe\r\n" + kStdoleFixed + "\r\nForm=C:\\Src\\App\\Main.frm\r\n" + kWidgetFixed +
                            "\r\nDescription=\"Caf\xE9 \x81\"\r\n\r\n";
  EXPECT_EQ(w.files().Contents(kProject), fixed);
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_EQ(w.ui.forms[0].text, "The line:\r\n" + kStdole + "\r\nHas been changed to:\r\n" + kStdoleFixed +
                                    "\r\n\r\nThe line:\r\n" + kWidget + "\r\nHas been changed to:\r\n" +
                                    kWidgetFixed + "\r\n\r\n");
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(Shown(w.ui.boxes[0]), "VBP Changed|64|File has changed. One or more absolute paths were found and fixed.");

  // Never written in place: a temporary file beside it is renamed over it.
  const FsRecord& record = w.files().Record();
  EXPECT_EQ(std::count(record.written.begin(), record.written.end(), kProject), 0);
  ASSERT_EQ(record.renames.size(), 1u);
  EXPECT_EQ(record.renames[0], std::make_pair(std::string("C:\\Src\\App\\~App.vbp.tmp"), std::string(kProject)));
}

// The read-only refusal is checked through the command line.
TEST(PathFixer, StopsWithAMessageWhenThereIsNothingToDo) {
  const std::pair<std::string, std::string> cases[] = {
      {kProject, "Type=Exe\r\nForm=C:\\Src\\App\\Main.frm\r\n"},
      {kProject, "Type=Exe\n" + kWidget + "\n"},        // lines are cut at CR LF only
      {"\\\\Server\\Share\\App.vbp", kFixable},  // no drive to compare with
  };
  for (const auto& [project, bytes] : cases) {
    FixerWorld w;
    w.files().AddFile(project, bytes);
    w.files().ClearRecord();
    EXPECT_EQ(Parse4ABSFile(w.state, w.options, project).outcome, Outcome::kNothingFound) << bytes;
    ASSERT_EQ(w.ui.boxes.size(), 1u) << bytes;
    EXPECT_EQ(Shown(w.ui.boxes[0]), "Sentrune|64|Project parsed. No absoulute paths found.");
    EXPECT_EQ(w.files().Contents(project), bytes);
    EXPECT_TRUE(w.files().Record().written.empty() && w.files().Record().copies.empty()) << bytes;
  }
}

TEST(PathFixer, LeavesTheProjectAloneWhenTheBackupIsNotThere) {
  const std::tuple<FsOp, std::string, int32_t> cases[] = {
      {FsOp::kCopy, "", 70},                                  // the copy itself fails
      {FsOp::kCreateDirectory, "C:\\Src\\App\\History", 76},  // no backup folder
      {FsOp::kDelete, kBackup, 70},                           // an older backup stays in the way
  };
  for (const auto& [op, path, error] : cases) {
    FixerWorld w;
    if (op == FsOp::kDelete) w.files().AddFile(kBackup, "an older backup");
    w.files().FailNext(op, path, error);
    EXPECT_EQ(w.Run(kFixable).outcome, Outcome::kNotBackedUp) << path;
    EXPECT_EQ(w.files().Contents(kProject), kFixable) << path;
    EXPECT_TRUE(w.files().Record().renames.empty()) << path;
  }
}

TEST(PathFixer, TrappedErrorsAreShownAndLeaveTheFileAsItWas) {
  FixerWorld w;
  w.files().FailNext(FsOp::kRename, "", 75);
  const PathFixResult failed = w.Run(kFixable);
  EXPECT_EQ(failed.outcome, Outcome::kFailed);
  EXPECT_EQ(failed.errorCode, 75);
  EXPECT_EQ(w.files().Contents(kProject), kFixable);
  EXPECT_FALSE(w.files().Exists("C:\\Src\\App\\~App.vbp.tmp"));
  ASSERT_FALSE(w.ui.boxes.empty());
  const std::string shown = Shown(w.ui.boxes.back());
  EXPECT_TRUE(shown.starts_with("modFileFunctions:Parse4ABS|16|Error 75")) << shown;
  EXPECT_FALSE(w.state.err.pending());

  EXPECT_EQ(Parse4ABSFile(w.state, w.options, "C:\\Src\\App\\Gone.vbp").errorCode, 53);
}

TEST(PathFixer, BinaryGarbageSurvivesByteForByte) {
  for (unsigned seed : {1u, 2u, 3u}) {
    std::mt19937 random(seed);
    std::string prefix(3000, '\0'), suffix(3000, '\0');
    for (std::string* text : {&prefix, &suffix})
      for (char& c : *text) c = static_cast<char>(random() % 256);
    FixerWorld plain, mixed;
    EXPECT_EQ(plain.Run(prefix + suffix).outcome, Outcome::kNothingFound) << seed;
    EXPECT_TRUE(plain.files().Contents(kProject) == prefix + suffix) << seed;
    EXPECT_EQ(mixed.Run(prefix + "\r\n" + kWidget + "\r\n" + suffix).outcome, Outcome::kFixed) << seed;
    EXPECT_TRUE(mixed.files().Contents(kProject) == prefix + "\r\n" + kWidgetFixed + "\r\n" + suffix + "\r\n")
        << seed;
  }
}

}  // namespace
}  // namespace sentrune::testing
