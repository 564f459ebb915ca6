// `sentrune snapshot`, `times` and `watch` end to end on a temporary project.
#include <gtest/gtest.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "commands.h"
#include "session.h"

namespace sentrune::cli {
namespace {

namespace fs = std::filesystem;

struct CommandRun {
  fs::path root = fs::temp_directory_path() / ("sentrune-cmd-" + std::to_string(getpid()));
  std::istringstream in;
  std::ostringstream out, err;

  CommandRun() {
    fs::create_directories(root / "Widgets");
    std::ofstream(root / "Widgets" / "Widgets.vbp") << "Type=OleDll\r\nClass=Widget; Widget.cls\r\nName=\"Widgets\"\r\n";
    std::ofstream(root / "Widgets" / "Widget.cls") << "VERSION 1.0 CLASS\r\n";
  }
  ~CommandRun() { fs::remove_all(root); }

  int Run(std::vector<std::string> args) {
    Session session(in, out, err);
    session.global.home = (root / "home").string();
    session.global.yes = true;
    CLI::App app;
    AddSnapshotCommand(app, session);
    AddTimesCommand(app, session);
    AddWatchCommand(app, session);
    AddOptionsCommand(app, session);
    args.insert(args.begin(), "sentrune");
    std::vector<const char*> argv;
    for (const auto& arg : args) argv.push_back(arg.c_str());
    app.parse(static_cast<int>(argv.size()), argv.data());
    return session.exitCode;
  }
};

TEST(SnapshotCommand, CopiesTheProjectAndSaysWhere) {
  CommandRun run;
  EXPECT_EQ(run.Run({"snapshot", (run.root / "Widgets" / "Widgets.vbp").string()}), 0) << run.err.str();
  const std::string printed = run.out.str();
  const size_t at = printed.find("Snapshot: ");
  ASSERT_NE(at, std::string::npos) << printed;
  std::string folder = printed.substr(at + 10, printed.find('\n', at) - at - 10);
  EXPECT_TRUE(fs::exists(fs::path(folder) / "Widget.cls")) << folder;
  EXPECT_TRUE(fs::exists(fs::path(folder) / "Widgets.vbp")) << folder;
}

TEST(SnapshotCommand, BadProjectsAreBadInput) {
  CommandRun run;
  EXPECT_EQ(run.Run({"snapshot", (run.root / "Missing.vbp").string()}), 2);
  CommandRun times;
  EXPECT_EQ(times.Run({"times", (times.root / "Missing.vbp").string()}), 2);
}

TEST(TimesCommand, ShowsTheGridForAProjectWithoutTimes) {
  CommandRun run;
  EXPECT_EQ(run.Run({"times", (run.root / "Widgets" / "Widgets.vbp").string()}), 0) << run.err.str();
  EXPECT_NE(run.out.str().find("Time Tracking - [Widgets]"), std::string::npos) << run.out.str();
}

TEST(WatchCommand, RefusesToGatherTimesItCouldNotKeep) {
  CommandRun run;
  ASSERT_EQ(run.Run({"options", "set", "TrackTime", "No"}), 0) << run.err.str();
  EXPECT_EQ(run.Run({"watch", (run.root / "Widgets" / "Widgets.vbp").string()}), 2);
  EXPECT_NE(run.err.str().find("time tracking is off"), std::string::npos) << run.err.str();
  EXPECT_EQ(run.out.str().find("Watching"), std::string::npos) << run.out.str();
}

}  // namespace
}  // namespace sentrune::cli
