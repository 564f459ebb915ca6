// The commands that open one project: `snapshot`, `times` and `watch` end to
// end on a small project, `build` judging the example's builds, and every
// command refusing bad input.
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
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

// Each snapshot gets a new folder directly beside the project, whatever the
// project file and DateFormatString call it: a second one in the same second
// leaves the first alone, and a symbolic link of the folder's name is refused
// (naming it) rather than filled.
TEST(ProjectCommands, EverySnapshotGetsANewFolderBesideTheProject) {
  namespace fs = std::filesystem;
  const struct {
    const char* name;    // Name= in the project file
    const char* format;  // DateFormatString
    const char* link;    // planted beforehand, pointing outside; nullptr: none
    std::vector<std::string> folders;  // per snapshot; "": refused
  } cases[] = {
      {"Widgets", "-", nullptr, {"Widgets -", "Widgets - (2)", "Widgets - (3)"}},
      {"..\\..\\..\\outside\\evil", "/../../x", nullptr, {".._.._.._outside_evil _.._.._x"}},
      {"Widgets", "-", "Widgets -", {""}},
      {"Widgets", "-", "Widgets - (2)", {"Widgets -", ""}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name + std::string(" ") + (c.link ? c.link : ""));
    Widgets cli;
    const fs::path projectFolder = cli.temp / "Widgets";
    cli.temp.Write("Widgets/Widgets.vbp", "Type=OleDll\r\nClass=Widget; Widget.cls\r\nName=\"" +
                                              std::string(c.name) + "\"\r\n");
    ASSERT_EQ(cli.Run({"options", "set", "DateFormatString", c.format}).status, 0);
    const fs::path outside = cli.temp / "outside";
    fs::create_directory(outside);
    if (c.link) fs::create_directory_symlink(outside, projectFolder / c.link);
    for (size_t i = 0; i < c.folders.size(); ++i) {
      cli.temp.Write("Widgets/Widget.cls", "version " + std::to_string(i));
      const CliRun run = cli.Run({"snapshot", cli.project});
      if (c.folders[i].empty()) {
        EXPECT_NE(run.status, 0);
        EXPECT_NE(run.err.find(std::string(c.link) + " is a symbolic link"), std::string::npos) << run.err;
        continue;
      }
      ASSERT_EQ(run.status, 0) << run.err;
      const size_t at = run.out.find("Snapshot: ");
      ASSERT_NE(at, std::string::npos) << run.out;
      EXPECT_EQ(run.out.substr(at + 10, run.out.find('\n', at) - at - 10),
                (projectFolder / c.folders[i]).string());
    }
    for (size_t i = 0; i < c.folders.size(); ++i) {
      if (c.folders[i].empty()) continue;
      EXPECT_EQ(ReadHostFile(projectFolder / c.folders[i] / "Widget.cls"), "version " + std::to_string(i));
    }
    EXPECT_TRUE(fs::is_empty(outside));
  }
}

// A folder made to fail as a developer's disk can, in ways its permissions
// cannot show to root: read-only (bound onto itself read-only) or full (a
// small file system filled up). Not `ok()` where no mount is allowed.
class FaultyFolder {
 public:
  FaultyFolder(const std::string& folder, bool full) : folder_(folder) {
    std::filesystem::create_directories(folder);
    if (full) {
      mounted_ = mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
      if (mounted_) std::ofstream(folder + "/filler", std::ios::binary) << std::string(128 * 1024, 'x');
    } else {
      mounted_ = mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr) == 0;
      readOnly_ = mounted_ && mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
    }
  }
  ~FaultyFolder() {
    if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
  }
  FaultyFolder(const FaultyFolder&) = delete;
  FaultyFolder& operator=(const FaultyFolder&) = delete;
  bool ok() const { return mounted_ && (readOnly_ || std::filesystem::exists(folder_ + "/filler")); }

 private:
  std::string folder_;
  bool mounted_ = false, readOnly_ = false;
};

// A copy that could not be made is never reported as made: the run fails
// and says which step and why, leaves no partial or temporary file, and the
// project keeps naming a model that exists. The IDE's build itself goes on.
TEST(BuildCommand, AStepThatCouldNotWriteFailsTheRun) {
  const struct {
    const char* fault;
    const char* folder;    // under Widgets/bin, made to fail by a mount
    bool full;
    const char* readOnly;  // or a file of the project, made read-only
    const char* says;
  } cases[] = {
      {"read-only History", "History", false, "", "the backup of the old component: Permission denied"},
      {"full History", "History", true, "", "the backup of the old component: Disk full"},
      {"read-only Compat", "Compat", false, "", "stopped at the update of the compatibility model: Permission denied"},
      {"read-only project file", "", false, "Widgets.vbp", "could not save"},
      {"read-only tracking database", "", false, "Widgets.stn",
       "could not be recorded in the project's history: Permission denied"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    Cli cli;
    const std::string widgets = cli.temp / "Widgets";
    std::filesystem::copy(SENTRUNE_SOURCE_DIR "/examples/Widgets", widgets, std::filesystem::copy_options::recursive);
    for (const char* step : {"CreateBackup", "ManageComp", "CompareCompsAfter", "UpdateCompatIfReqd"})
      ASSERT_EQ(cli.Run({"options", "set", std::string("ActiveX_DLL_") + step, "Yes"}).status, 0);
    const auto build = [&](const char* version) {
      return cli.Run({"build", widgets + "/Widgets.vbp", "--component",
                      widgets + "/builds/Widgets-" + version + ".dll"});
    };
    ASSERT_EQ(build("1.0").status, 0);
    std::optional<FaultyFolder> faulty;
    if (*c.folder) {
      faulty.emplace(widgets + "/bin/" + c.folder, c.full);
      if (!faulty->ok()) GTEST_SKIP() << "this machine allows no mounts for " << c.fault;
    } else {
      using std::filesystem::perms;
      std::filesystem::permissions(widgets + "/" + c.readOnly,
                                   perms::owner_write | perms::group_write | perms::others_write,
                                   std::filesystem::perm_options::remove);
    }
    const CliRun run = build("1.1");
    EXPECT_EQ(run.status, 1) << run.out << run.err;
    EXPECT_NE((run.out + run.err).find(c.says), std::string::npos) << run.out << run.err;
    EXPECT_EQ(ReadHostFile(widgets + "/bin/Widgets.dll"), ReadHostFile(widgets + "/builds/Widgets-1.1.dll"));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(widgets)) {
      const std::string name = entry.path().filename().string();
      EXPECT_FALSE(name.ends_with(".tmp")) << entry.path();
      EXPECT_FALSE(entry.is_regular_file() && entry.file_size() == 0) << entry.path();
    }
    const std::string vbp = ReadHostFile(widgets + "/Widgets.vbp");
    const size_t at = vbp.find("CompatibleEXE32=\"");
    ASSERT_NE(at, std::string::npos) << vbp;
    std::string model = vbp.substr(at + 17, vbp.find('"', at + 17) - at - 17);
    std::replace(model.begin(), model.end(), '\\', '/');
    EXPECT_TRUE(std::filesystem::is_regular_file(widgets + "/" + model)) << model;
  }
}

// What a copy of the project folder, a damaged database or a link leaves
// behind is never written through: a copy's remembered folders are those of
// the original, which only --yes uses; a database that cannot be read is
// named, left as it is, and fails every command that needs it; fix-paths
// does not replace a link.
TEST(ProjectCommands, CopiedFoldersDamagedDatabasesAndLinksAreNotWrittenThrough) {
  namespace fs = std::filesystem;
  Cli cli;
  fs::copy(SENTRUNE_SOURCE_DIR "/examples/Widgets", cli.temp / "w2", fs::copy_options::recursive);
  const auto build = [&](const char* copy, const char* answer, const char* version) {
    cli.global = {answer};
    return cli.Run({"build", cli.temp / (std::string(copy) + "/Widgets.vbp"), "--component",
                    cli.temp / (std::string(copy) + "/builds/Widgets-" + version + ".dll")});
  };
  ASSERT_EQ(cli.Run({"options", "set", "ActiveX_DLL_CreateBackup", "Prompt"}).status, 0);
  ASSERT_EQ(build("w2", "--yes", "1.0").status, 0);
  const CliRun first = build("w2", "--yes", "1.1");
  ASSERT_NE(first.out.find("\\w2\\bin\\History\\Widgets-"), std::string::npos) << first.out;
  fs::copy(cli.temp / "w2", cli.temp / "w3", fs::copy_options::recursive);
  ASSERT_EQ(cli.Run({"options", "set", "ActiveX_DLL_CreateBackup", "Yes"}).status, 0);
  // The question names both places; --yes agrees once for this place.
  for (const auto& [answer, backupIn, asked] : {std::tuple{"--no", "w3", true}, std::tuple{"--yes", "w2", true},
                                                std::tuple{"--no", "w2", false}}) {
    const CliRun run = build("w3", answer, "2.0");
    EXPECT_EQ(run.status, 0) << answer << run.err;
    EXPECT_NE(run.out.find(std::string("\\") + backupIn + "\\bin\\History\\Widgets-"), std::string::npos)
        << answer << run.out;
    const size_t question = run.err.find("remembers for backups of the component (CompBackupBase) is:");
    EXPECT_EQ(question != std::string::npos, asked) << answer << run.err;
    if (asked) {
      EXPECT_NE(run.err.find("\\w2\\\nThe project is now in:\n"), std::string::npos) << run.err;
    }
  }

  const std::string database = cli.temp / "w3/Widgets.stn";
  const std::string damaged = ReadHostFile(database).substr(0, 3000);
  cli.temp.Write("w3/Widgets.stn", damaged);
  ASSERT_EQ(cli.Run({"options", "set", "TrackTime", "Yes"}).status, 0);
  for (const auto& [command, more] : {std::pair{"times", ""}, std::pair{"history", ""}, std::pair{"watch", ""},
                                      std::pair{"build", "2.0"}}) {
    cli.global = {"--yes"};
    const CliRun run = *more ? build("w3", "--yes", more) : cli.Run({command, cli.temp / "w3/Widgets.vbp"});
    EXPECT_EQ(run.status, 1) << command << run.err;
    EXPECT_NE(run.err.find("sentrune: " + database + ": the tracking database cannot be read"), std::string::npos)
        << command << run.err;
    EXPECT_TRUE(ReadHostFile(database) == damaged) << command << ": the database was written";
  }

  const std::string link = cli.temp / "w3/Linked.vbp";
  fs::create_symlink("Widgets.vbp", link);
  const std::string vbp = ReadHostFile(link);
  const CliRun fixed = cli.Run({"fix-paths", link});
  EXPECT_EQ(fixed.status, 2);
  EXPECT_NE(fixed.err.find(link + ": is a symbolic link to " + (cli.temp / "w3/Widgets.vbp")), std::string::npos)
      << fixed.err;
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(ReadHostFile(link), vbp);
}

}  // namespace
}  // namespace sentrune::testing
