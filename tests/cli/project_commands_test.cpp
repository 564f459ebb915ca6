// The commands that open one project: `snapshot`, `times` and `watch` end to
// end on a small project, and every such command refusing a missing one.
#include <gtest/gtest.h>

#include <filesystem>

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

TEST(ProjectCommands, AMissingProjectIsBadInput) {
  Widgets cli;
  for (const char* command :
       {"refs", "fix-paths", "snapshot", "times", "watch", "verify-class", "add-align-control"}) {
    const CliRun run = cli.Run({command, cli.temp / "Gone.vbp"});
    EXPECT_EQ(run.status, 2) << command;
    EXPECT_NE(run.err.find("Gone.vbp"), std::string::npos) << command << ": " << run.err;
  }
}

TEST(ProjectCommands, SnapshotTimesAndWatchOnASmallProject) {
  Widgets cli;
  const CliRun snapshot = cli.Run({"snapshot", cli.project});
  EXPECT_EQ(snapshot.status, 0) << snapshot.err;
  const size_t at = snapshot.out.find("Snapshot: ");
  ASSERT_NE(at, std::string::npos) << snapshot.out;
  const std::filesystem::path folder = snapshot.out.substr(at + 10, snapshot.out.find('\n', at) - at - 10);
  EXPECT_TRUE(std::filesystem::exists(folder / "Widget.cls")) << folder;
  EXPECT_TRUE(std::filesystem::exists(folder / "Widgets.vbp")) << folder;
  const CliRun times = cli.Run({"times", cli.project});
  EXPECT_EQ(times.status, 0) << times.err;
  EXPECT_NE(times.out.find("Time Tracking - [Widgets]"), std::string::npos) << times.out;
  // A watch refuses to gather times it could not keep.
  ASSERT_EQ(cli.Run({"options", "set", "TrackTime", "No"}).status, 0);
  const CliRun watch = cli.Run({"watch", cli.project});
  EXPECT_EQ(watch.status, 2);
  EXPECT_NE(watch.err.find("time tracking is off"), std::string::npos) << watch.err;
  EXPECT_EQ(watch.out.find("Watching"), std::string::npos) << watch.out;
}

}  // namespace
}  // namespace sentrune::testing
