// `sentrune refs` and `sentrune fix-paths` driven in-process over scratch
// copies of real projects.
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

#include "commands.h"
#include "files/reference_list.h"
#include "platform/headless/headless_ide.h"
#include "runtime/text.h"
#include "session.h"
#include "settings/options_handler.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;
std::string HostBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteHost(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string WindowsText(const fs::path& path) {
  std::string text = path.string();
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

// A scratch folder, removed afterwards, and sessions of the command-line
// host with drive C: mapped to scratch/c.
class ScratchFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "sentrune-files-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    temp_ = fs::canonical(pattern);
    root_ = temp_ / "c";
    fs::create_directories(root_);
  }
  void TearDown() override {
    std::error_code ignored;
    if (!temp_.empty()) fs::remove_all(temp_, ignored);
  }

  struct Host {
    explicit Host(const fs::path& temp) {
      session.global.home = (temp / "home").string();
      session.global.drives = {"C=" + (temp / "c").string()};
    }
    std::istringstream in;
    std::ostringstream out, err;
    cli::Session session{in, out, err};
  };
  struct Run {
    int code;
    std::string out, err;
  };
  Run Sentrune(std::vector<std::string> args) {
    Host host(temp_);
    CLI::App app;
    cli::AddRefsCommand(app, host.session);
    cli::AddFixPathsCommand(app, host.session);
    args.insert(args.begin(), "sentrune");
    std::vector<const char*> argv;
    for (const std::string& arg : args) argv.push_back(arg.c_str());
    app.parse(static_cast<int>(argv.size()), argv.data());
    return {host.session.exitCode, host.out.str(), host.err.str()};
  }

  fs::path temp_, root_;
};

// Every project of the corpus, on a writable copy: the list has one row per
// reference, and the fixer leaves the real files alone until a line is made
// absolute, then rewrites that line alone, after a backup.
TEST_F(ScratchFolder, EveryCorpusProjectListsItsReferencesAndHasItsPathsFixed) {
  const fs::path corpus = fs::path(SENTRUNE_SHARED_DIR) / "corpus" / "vb6";
  if (!fs::is_directory(corpus)) GTEST_SKIP() << "no corpus at " << corpus;
  fs::copy(corpus, root_, fs::copy_options::recursive);
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(root_)) {
    fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);  // stored read-only
    const std::string extension = rt::LCase(entry.path().extension().string());
    if (extension == ".vbp" || extension == ".vbg") files.push_back(fs::relative(entry.path(), root_));
  }
  std::sort(files.begin(), files.end());
  ASSERT_GE(files.size(), 30u);
  Host host(temp_);
  ASSERT_TRUE(host.session.Open().ok()) << host.err.str();

  for (const fs::path& file : files) {
    headless::HeadlessIde ide(host.session.state().files(), &host.session.state().platform.typelibs);
    ASSERT_TRUE(ide.Open("C:\\" + WindowsText(file)).ok()) << file;
    ReferenceList list(host.session.state(), host.session.options(), ide);
    list.Fill();
    size_t references = 0;
    for (const platform::ProjectPtr& project : ide.VBProjects()) references += project->References().size();
    ASSERT_EQ(list.Rows().size(), references) << file;
    for (size_t i = 0; i < references; ++i) {
      EXPECT_EQ(list.Rows()[i].number, static_cast<int>(i + 1)) << file;
      for (const std::string& cell : list.Rows()[i].Cells()) EXPECT_FALSE(cell.empty()) << file << " row " << i;
    }
    const Run refs = Sentrune({"refs", (root_ / file).string(), "--csv", (temp_ / "refs.csv").string()});
    EXPECT_EQ(refs.code, 0) << file << refs.err;
    const std::string csv = HostBytes(temp_ / "refs.csv");
    EXPECT_EQ(static_cast<size_t>(std::count(csv.begin(), csv.end(), '\n')), references + 4) << file;
    if (file.extension() != ".vbp") continue;

    const std::string original = HostBytes(root_ / file);
    EXPECT_EQ(Sentrune({"fix-paths", (root_ / file).string()}).code, 0) << file;
    EXPECT_EQ(HostBytes(root_ / file), original) << file;
    // A line naming the first project of the corpus by its absolute path.
    const std::string glue = original.ends_with("\r\n") ? "" : "\r\n";
    const std::string absolute = original + glue + "Module=Probe; C:\\" + WindowsText(files.front()) + "\r\n";
    WriteHost(root_ / file, absolute);
    const Run fixed = Sentrune({"fix-paths", (root_ / file).string()});
    EXPECT_EQ(fixed.code, 0) << file << fixed.err;
    EXPECT_EQ(HostBytes(root_ / file),
              original + glue + "Module=Probe#" +
                  rt::LCase(WindowsText((root_ / files.front()).lexically_relative(root_ / file.parent_path()))) +
                  "\r\n\r\n")
        << file;
    const size_t backup = fixed.out.find("Backup: ");
    ASSERT_NE(backup, std::string::npos) << fixed.out;
    EXPECT_EQ(HostBytes(fixed.out.substr(backup + 8, fixed.out.find('\n', backup) - backup - 8)), absolute) << file;
  }
}

TEST_F(ScratchFolder, CommandsPrintTheListAndRefuseWhatTheyCannotTouch) {
  const fs::path project = root_ / "App" / "App.vbp";
  WriteHost(project, "Type=Exe\r\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#Z:\\nowhere\\"
                     "stdole2.tlb#OLE Automation\r\nName=\"App\"\r\n");
  const Run shown = Sentrune({"refs", project.string()});
  EXPECT_EQ(shown.code, 0) << shown.err;
  EXPECT_EQ(shown.out,
            "Ref #  Project  Description                                   Full Path               GUID      "
            "                              TLB Version  Kind\n"
            "1      App      OLE Automation - [Missing/Broken Reference.]  Z:\\nowhere\\stdole2.tlb  "
            "{00020430-0000-0000-C000-000000000046}  2.0          External\n");
  EXPECT_EQ(Sentrune({"refs", project.string(), "--project", "Other"}).code, 2);
  for (const char* command : {"refs", "fix-paths"}) {
    const Run missing = Sentrune({command, (temp_ / "Gone.vbp").string()});
    EXPECT_EQ(missing.code, 2) << command;
    EXPECT_NE(missing.err.find("Gone.vbp"), std::string::npos) << missing.err;
  }
  fs::permissions(project, fs::perms::owner_read | fs::perms::group_read);
  const Run readOnly = Sentrune({"fix-paths", project.string()});
  EXPECT_EQ(readOnly.code, 2);
  EXPECT_NE(readOnly.err.find("Project File is Read-Only."), std::string::npos) << readOnly.err;
  fs::permissions(project, fs::perms::owner_write, fs::perm_options::add);
}

}  // namespace
}  // namespace sentrune::testing
