// The project file path fixer over the in-memory file system: its line
// rules, the whole run and every way it stops without touching the file.
// Real projects and the command line are covered with the reference list's
// end-to-end tests.
#include <algorithm>
#include <optional>
#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "files/files_world.h"
#include "files/path_fixer.h"
#include "support/expected_file.h"

namespace sentrune::testing {
namespace {

using Outcome = PathFixResult::Outcome;

constexpr const char* kProject = "C:\\Src\\App\\App.vbp";
constexpr const char* kBackup = "C:\\Src\\App\\History\\App-2004.05.06-14.03.09.vbp";
const std::string kStdole =
    "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Src\\Lib\\stdole2.tlb#OLE Automation";
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
  EXPECT_EQ(fix(kStdole), "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#..\\Lib\\stdole2.tlb#OLE Automation");
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

// The rewritten project, the report of changed lines and the box are checked
// whole; every line gets CR LF, so the empty piece after the last one adds a
// line.
TEST(PathFixer, ReportsBacksUpThenReplacesTheFileThroughATemporaryOne) {
  FixerWorld w;
  const std::string original = "Type=Exe\r\n" + kStdole + "\r\nForm=C:\\Src\\App\\Main.frm\r\n" + kWidget +
                               "\r\nDescription=\"Caf\xE9 \x81\"\r\n";
  const PathFixResult result = w.Run(original);
  EXPECT_EQ(result.outcome, Outcome::kFixed);
  EXPECT_EQ(result.backupFile, kBackup);
  EXPECT_EQ(w.files().Contents(kBackup), original);
  ASSERT_EQ(w.ui.forms.size(), 1u);
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  ExpectMatchesFile(*w.files().Contents(kProject) + "----\n" + w.ui.forms[0].text + "----\n" + Shown(w.ui.boxes[0]),
                    "files/path-fixer.txt");
  // Never written in place: a temporary file beside it is renamed over it.
  const FsRecord& record = w.files().Record();
  EXPECT_EQ(std::count(record.written.begin(), record.written.end(), kProject), 0);
  EXPECT_EQ(record.renames, (std::vector<std::pair<std::string, std::string>>{
                                {"C:\\Src\\App\\History\\~App-2004.05.06-14.03.09.vbp.tmp", kBackup},
                                {"C:\\Src\\App\\~App.vbp.tmp", kProject}}));
}

// Every way the fixer stops leaves the project byte for byte as it was; the
// outcome, backup, files written (but the trace) and boxes of each are
// checked whole. The
// read-only refusal is checked through the command line.
TEST(PathFixer, StopsWithoutTouchingTheProject) {
  struct Case {
    const char* what;
    std::string project, bytes;
    std::optional<std::tuple<FsOp, std::string, int32_t>> failure;
  };
  const Case cases[] = {
      {"nothing absolute", kProject, "Type=Exe\r\nForm=C:\\Src\\App\\Main.frm\r\n", {}},
      {"lines are cut at CR LF only", kProject, "Type=Exe\n" + kWidget + "\n", {}},
      {"no drive to compare with", "\\\\Server\\Share\\App.vbp", kFixable, {}},
      {"the copy fails", kProject, kFixable, {{FsOp::kCopy, "", 70}}},
      {"no backup folder", kProject, kFixable, {{FsOp::kCreateDirectory, "C:\\Src\\App\\History", 76}}},
      {"the backup cannot be put in place", kProject, kFixable, {{FsOp::kRename, kBackup, 70}}},
      {"the rename fails", kProject, kFixable, {{FsOp::kRename, kProject, 75}}},
  };
  std::string report;
  for (const Case& c : cases) {
    FixerWorld w;
    if (c.failure) std::apply([&](auto... failure) { w.files().FailNext(failure...); }, *c.failure);
    w.files().AddFile(c.project, c.bytes);
    w.files().ClearRecord();
    const PathFixResult r = Parse4ABSFile(w.state, w.options, c.project);
    report += std::string("== ") + c.what + ": outcome " + std::to_string(static_cast<int>(r.outcome)) + ", error " +
              std::to_string(r.errorCode) + ", backup " + r.backupFile + "\nwritten:";
    for (const std::string& file : w.files().Record().written)
      if (file != w.state.trace.path()) report += " " + file;
    for (const AskedBox& box : w.ui.boxes) report += "\n" + Shown(box);
    report += "\n";
    EXPECT_EQ(w.files().Contents(c.project), c.bytes) << c.what;
    const auto& renames = w.files().Record().renames;
    EXPECT_TRUE(std::none_of(renames.begin(), renames.end(), [&](const auto& r) { return r.second == c.project; }) &&
                !w.files().Exists("C:\\Src\\App\\~App.vbp.tmp"))
        << c.what;
    EXPECT_FALSE(w.state.err.pending());
  }
  ExpectMatchesFile(report, "files/path-fixer-stops.txt");
  FixerWorld gone;
  EXPECT_EQ(Parse4ABSFile(gone.state, gone.options, "C:\\Src\\App\\Gone.vbp").errorCode, 53);
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
