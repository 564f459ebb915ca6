// `sentrune demo`: the Widgets example's story, played in a temporary copy.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <ostream>
#include <thread>

#include "build_run.h"
#include "commands.h"
#include "session.h"
#include "settings/options_handler.h"

namespace sentrune::cli {
namespace {

namespace fs = std::filesystem;

struct DemoArgs {
  std::string example = SENTRUNE_EXAMPLE_DIR;
  bool keep = false;
};

struct Chapter {
  const char* title;
  const char* build;
};

constexpr Chapter kChapters[] = {
    {"First build (Widgets 1.0). There is no component yet: nothing to back up, and the\n"
     "add-in sets up the compatibility model from the new build.",
     "Widgets-1.0.dll"},
    {"Compatible rebuild (Widgets 1.1 only adds members). The old build is backed up and\n"
     "compared; the new one has more than the model, so the model is updated.",
     "Widgets-1.1.dll"},
    {"Breaking rebuild (Widgets 2.0 removes and changes members). The differences are\n"
     "listed, the model is updated, backups rotate and the release copy is replaced.",
     "Widgets-2.0.dll"},
};

// The options of the story: every step of an ActiveX DLL runs without asking,
// one backup of each kind is kept, and builds are copied to a release folder.
void ConfigureOptions(OptionsHandler& options, const std::string& releaseFolder) {
  for (const char* step : {"CreateBackup", "CompareCompsBefore", "ManageComp", "CompareCompsAfter",
                           "UpdateCompatIfReqd", "CreateSnapshot", "CopyComponents", "BackupComponents"})
    options.SaveOption(OptionKey(2, step), "1");
  options.SaveOption(OptionKey(2, "ReleaseFolder"), releaseFolder);
  options.SaveOption("BackupFileCount", "1");
  options.LoadOptions();
}

void ListFiles(std::ostream& out, const fs::path& root) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_regular_file()) files.push_back(fs::relative(entry.path(), root).string());
  }
  std::sort(files.begin(), files.end());
  for (const std::string& file : files) out << "  " << file << '\n';
}

void RunDemo(Session& session, const DemoArgs& args) {
  std::error_code error;
  const fs::path example = fs::absolute(args.example, error);
  if (error || !fs::exists(example / "Widgets.vbp")) {
    session.Fail("the example project is not at " + args.example + " (see --example)");
    return;
  }
  const fs::path root = fs::temp_directory_path() /
                        ("sentrune-demo-" + std::to_string(std::chrono::system_clock::now().time_since_epoch().count()));
  fs::create_directories(root, error);
  if (!error) fs::copy(example, root / "Widgets", fs::copy_options::recursive, error);
  if (error) {
    session.Stop("cannot copy the example to " + root.string() + ": " + error.message());
    return;
  }
  session.global.home = (root / "home").string();
  session.global.yes = true;
  if (!session.Ready()) return;
  const rt::Result<std::string> release = session.ToWindowsPath((root / "Release").string());
  ConfigureOptions(session.options(), (release.ok() ? *release : std::string("C:\\Release")) + "\\");

  session.out << "Sentrune demo: the Widgets example, copied to " << root.string() << "\n";
  int number = 1;
  for (const Chapter& chapter : kChapters) {
    // Backups and models are named after the component's time to the second.
    if (number > 1) std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    session.out << "\n" << number++ << ". " << chapter.title << "\n";
    BuildArgs build;
    build.project = (root / "Widgets" / "Widgets.vbp").string();
    build.component = (root / "Widgets" / "builds" / chapter.build).string();
    RunBuild(session, build);
    if (session.exitCode == kExitBadInput) return;
  }
  session.out << "\nFiles the add-in made or kept:\n";
  ListFiles(session.out, root / "Widgets" / "bin");
  session.out << "Release folder:\n";
  ListFiles(session.out, root / "Release");
  if (!args.keep) {
    fs::remove_all(root, error);
  } else {
    session.out << "\nKept in " << root.string() << "\n";
  }
}

}  // namespace

void SetUpDemo(CLI::App& command, Session& session) {
  DemoArgs& args = RunWith(command, session, RunDemo);
  command.add_option("--example", args.example, "The example's folder")->type_name("DIR");
  command.add_flag("--keep", args.keep, "Keep the temporary copy to look at afterwards");
}

}  // namespace sentrune::cli
