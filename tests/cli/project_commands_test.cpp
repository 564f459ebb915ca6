// The commands that open one project: `snapshot`, `times` and `watch` end to
// end on a small project, `build` judging the example's builds, and every
// command refusing bad input.
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <utility>
#include <vector>

#include "cli/cli_test_support.h"

namespace sentrune::testing {
namespace {

struct Widgets : Cli {
  const std::string project = temp / "Widgets/Widgets.vbp";
  Widgets() {
    global = {"--yes"};
    temp.Write("Widgets/Widgets.vbp", "Type=OleDll\r\nClass=Widget; Widget.cls\r\nName=\"Widgets\"\r\n");
    temp.Write("Widgets/Widget.cls", "VERSION 1.0 CLASS\r\n");
  }
};

const std::string kWidgets10 = SENTRUNE_SOURCE_DIR "/examples/Widgets/builds/Widgets-1.0.dll";

// Every command refuses bad input with 2 and a message that names the file
// as it was typed (no Windows form of it) and says what is wrong with it.
TEST(CommandLine, BadInputIsNamedAndExitsWithTwo) {
  Widgets cli;
  cli.temp.MakeFolder("Folder.vbp");
  cli.temp.Write("notes.txt", "no project, no type library\r\n");
  cli.temp.Write("Cut.dll", ReadHostFile(kWidgets10).substr(0, 1024));
  const std::string gone = cli.temp / "Gone.vbp", folder = cli.temp / "Folder.vbp", notes = cli.temp / "notes.txt";
  const std::vector<std::pair<std::string, std::string>> projects = {
      {gone, gone + ": no such file"}, {folder, folder + ": is a folder"},
      {notes, "'" + notes + "' is not a valid project file"}};
  const std::vector<std::pair<std::string, std::string>> components = {
      {gone, gone + ": no such file"}, {folder, folder + ": is a folder"},
      {notes, notes + ": The file doesn't contain a valid TypeLib."},
      {cli.temp / "Cut.dll", cli.temp / "Cut.dll: its type library cannot be read: "}};
  std::vector<std::pair<std::vector<std::string>, std::string>> runs = {
      {{"options", "set", "NoSuchKey", "Yes"}, "\"NoSuchKey\""},
      {{"demo", "--example", gone}, gone},
      {{"build", cli.project}, "--component FILE or -- COMMAND"},
  };
  for (const auto& [file, message] : projects) {
    for (const char* command :
         {"fix-paths", "snapshot", "times", "history", "watch", "verify-class", "add-align-control", "refs"})
      runs.push_back({{command, file}, message});
    runs.push_back({{"build", file, "--component", kWidgets10}, message});
  }
  for (const auto& [file, message] : components) {
    runs.push_back({{"inspect", file}, message});
    runs.push_back({{"compare", kWidgets10, file}, message});
    runs.push_back({{"build", cli.project, "--component", file}, message});
  }
  for (const auto& [args, message] : runs) {
    const CliRun run = cli.Run(args);
    EXPECT_EQ(run.status, 2) << args[0] << " " << args[1];
    EXPECT_NE(run.err.find(message), std::string::npos) << args[0] << ": " << run.err;
    EXPECT_EQ(run.err.find('\\'), std::string::npos) << args[0] << ": " << run.err;
  }
}

// Three builds of the example, each judged against the model the build
// before it left: 1.0 sets the model up, 1.1 only adds members, 2.0 removes
// and changes some.
TEST(BuildCommand, JudgesEachBuildAgainstItsModel) {
  Cli cli;  // --no: only the steps set to Yes run
  std::filesystem::copy(SENTRUNE_SOURCE_DIR "/examples/Widgets", cli.temp / "Widgets",
                        std::filesystem::copy_options::recursive);
  for (const char* step : {"ManageComp", "CompareCompsAfter", "UpdateCompatIfReqd"})
    ASSERT_EQ(cli.Run({"options", "set", std::string("ActiveX_DLL_") + step, "Yes"}).status, 0);
  const auto build = [&](const std::string& version) {
    return cli.Run({"build", cli.temp / "Widgets/Widgets.vbp", "--component",
                    cli.temp / ("Widgets/builds/Widgets-" + version + ".dll"), "--fail-on", "incompatible"});
  };
  for (const auto& [version, level, status] : {std::tuple{"1.0", "identical", 0}, std::tuple{"1.1", "compatible", 0},
                                               std::tuple{"2.0", "incompatible", 1}}) {
    const CliRun run = build(version);
    EXPECT_EQ(run.status, status) << version << ": " << run.err;
    EXPECT_TRUE(run.out.ends_with(std::string("\nCompatibility: ") + level + "\n")) << run.out;
  }
  // Without a comparison after the build there is nothing to judge, which
  // --fail-on does not take for a pass.
  ASSERT_EQ(cli.Run({"options", "set", "ActiveX_DLL_CompareCompsAfter", "No"}).status, 0);
  const CliRun unjudged = build("2.0");
  EXPECT_EQ(unjudged.status, 1);
  EXPECT_EQ(unjudged.out.find("Compatibility:"), std::string::npos) << unjudged.out;
  EXPECT_NE(unjudged.err.find("not compared with a compatibility model"), std::string::npos) << unjudged.err;
}

TEST(ProjectCommands, SnapshotTimesAndWatchOnASmallProject) {
  Widgets cli;
  const CliRun snapshot = cli.Run({"snapshot", cli.project, "--comment", "Nightly"});
  EXPECT_EQ(snapshot.status, 0) << snapshot.err;
  const size_t at = snapshot.out.find("Snapshot: ");
  ASSERT_NE(at, std::string::npos) << snapshot.out;
  const std::filesystem::path folder = snapshot.out.substr(at + 10, snapshot.out.find('\n', at) - at - 10);
  EXPECT_TRUE(std::filesystem::exists(folder / "Widget.cls")) << folder;
  EXPECT_TRUE(std::filesystem::exists(folder / "Widgets.vbp")) << folder;
  EXPECT_EQ(ReadHostFile(folder / "_Snapshot_ReadME.txt"), "Nightly\r\n");
  // No time yet: how it gets recorded, not an empty grid.
  const CliRun times = cli.Run({"times", cli.project});
  EXPECT_EQ(times.status, 0) << times.err;
  EXPECT_NE(times.out.find("No time recorded for Widgets yet. Time is recorded while `sentrune watch"),
            std::string::npos)
      << times.out;
  const CliRun history = cli.Run({"history", cli.project});
  EXPECT_EQ(history.status, 0) << history.err;
  EXPECT_NE(history.out.find("No builds recorded for Widgets"), std::string::npos) << history.out;
  // A watch refuses to gather times it could not keep.
  ASSERT_EQ(cli.Run({"options", "set", "TrackTime", "No"}).status, 0);
  const CliRun watch = cli.Run({"watch", cli.project});
  EXPECT_EQ(watch.status, 2);
  EXPECT_NE(watch.err.find("time tracking is off"), std::string::npos) << watch.err;
  EXPECT_EQ(watch.out.find("Watching"), std::string::npos) << watch.out;
}

// Project files as other tools leave them: the path fixer's "#" joiner, an
// editor's byte order mark, a Mac editor's CR line ends. Each is read, and a
// snapshot takes the class it names.
TEST(ProjectCommands, ProjectFilesOtherToolsWroteAreRead) {
  const std::pair<const char*, std::string> variants[] = {
      {"fixer's joiner", "Type=OleDll\r\nClass=Widget#widget.cls\r\nName=\"Widgets\"\r\n"},
      {"byte order mark", "\xEF\xBB\xBFType=OleDll\r\nClass=Widget; Widget.cls\r\nName=\"Widgets\"\r\n"},
      {"CR line ends", "Type=OleDll\rClass=Widget; Widget.cls\rName=\"Widgets\"\r"},
  };
  for (const auto& [variant, vbp] : variants) {
    SCOPED_TRACE(variant);
    Widgets cli;
    cli.temp.Write("Widgets/Widgets.vbp", vbp);
    const CliRun snapshot = cli.Run({"snapshot", cli.project});
    ASSERT_EQ(snapshot.status, 0) << snapshot.err;
    const size_t at = snapshot.out.find("Snapshot: ");
    ASSERT_NE(at, std::string::npos) << snapshot.out;
    const std::filesystem::path folder = snapshot.out.substr(at + 10, snapshot.out.find('\n', at) - at - 10);
    EXPECT_TRUE(std::filesystem::exists(folder / "Widget.cls") || std::filesystem::exists(folder / "widget.cls"))
        << folder;
    // The file itself comes back as it was.
    EXPECT_EQ(ReadHostFile(folder / "Widgets.vbp"), vbp);
  }
}

}  // namespace
}  // namespace sentrune::testing
