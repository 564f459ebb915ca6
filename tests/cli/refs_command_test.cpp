// `sentrune refs` and `sentrune fix-paths` over scratch copies of real
// projects, with drive C: mapped to the scratch folder's "c".
#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/cli_test_support.h"
#include "files/reference_list.h"
#include "platform/headless/headless_ide.h"
#include "session.h"
#include "settings/options_handler.h"
#include "support/expected_file.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

struct DriveC : Cli {
  const fs::path c = fs::canonical(temp.path()) / "c";
  DriveC() {
    fs::create_directories(c);
    global = {"--no", "--drive", "C=" + c.string()};
  }
};

// Every project of the corpus, on a writable copy: the list has one row per
// reference, and the fixer leaves the real files alone until a line is made
// absolute, then rewrites that line alone, after a backup.
TEST(RefsCommand, EveryCorpusProjectListsItsReferencesAndHasItsPathsFixed) {
  const fs::path corpus = CorpusFolder();
  if (!fs::is_directory(corpus)) GTEST_SKIP() << "no corpus at " << corpus;
  DriveC scratch;
  const fs::path& root = scratch.c;
  fs::copy(corpus, root, fs::copy_options::recursive);
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);  // stored read-only
    const std::string extension = rt::LCase(entry.path().extension().string());
    if (extension == ".vbp" || extension == ".vbg") files.push_back(fs::relative(entry.path(), root));
  }
  std::sort(files.begin(), files.end());
  ASSERT_GE(files.size(), 30u);
  std::istringstream in;
  std::ostringstream out, err;
  cli::PosixHost host;
  cli::Session session(host, in, out, err);
  session.global.home = scratch.home();
  session.global.drives = {scratch.global.back()};
  ASSERT_TRUE(session.Open().ok()) << err.str();
  const std::string csvFile = scratch.temp / "refs.csv";

  for (const fs::path& file : files) {
    headless::HeadlessIde ide(session.state().files(), &session.state().platform.typelibs);
    const auto opened = ide.Open("C:\\" + Backslashed(file));
    ASSERT_TRUE(opened.ok()) << file;
    // A group member that cannot be opened is named; with none opened the
    // group is bad input, with some the run could not do all its work.
    const int status = opened->problems.empty() ? 0 : opened->projects.empty() ? 2 : 1;
    ReferenceList list(session.state(), session.options(), ide);
    list.Fill();
    size_t references = 0;
    for (const platform::ProjectPtr& project : ide.VBProjects()) references += project->References().size();
    ASSERT_EQ(list.Rows().size(), references) << file;
    for (size_t i = 0; i < references; ++i) {
      EXPECT_EQ(list.Rows()[i].number, static_cast<int>(i + 1)) << file;
      for (const std::string& cell : list.Rows()[i].Cells()) EXPECT_FALSE(cell.empty()) << file << " row " << i;
    }
    const CliRun refs = scratch.Run({"refs", root / file, "--csv", csvFile});
    EXPECT_EQ(refs.status, status) << file << refs.err;
    if (status != 0) {
      EXPECT_NE(refs.err.find("cannot be opened"), std::string::npos) << refs.err;
    }
    if (status == 2) continue;
    const std::string csv = ReadHostFile(csvFile);
    EXPECT_EQ(static_cast<size_t>(std::count(csv.begin(), csv.end(), '\n')), references + 4) << file;
    if (file.extension() != ".vbp") continue;

    const std::string original = ReadHostFile(root / file);
    EXPECT_EQ(scratch.Run({"fix-paths", root / file}).status, 0) << file;
    EXPECT_EQ(ReadHostFile(root / file), original) << file;
    // A line naming the first project of the corpus by its absolute path.
    const std::string glue = original.ends_with("\r\n") ? "" : "\r\n";
    const std::string absolute = original + glue + "Module=Probe; C:\\" + Backslashed(files.front()) + "\r\n";
    scratch.temp.Write("c/" + file.string(), absolute);
    const CliRun fixed = scratch.Run({"fix-paths", root / file});
    EXPECT_EQ(fixed.status, 0) << file << fixed.err;
    EXPECT_EQ(ReadHostFile(root / file),
              original + glue + "Module=Probe#" +
                  rt::LCase(Backslashed((root / files.front()).lexically_relative(root / file.parent_path()))) +
                  "\r\n\r\n")
        << file;
    const size_t backup = fixed.out.find("Backup: ");
    ASSERT_NE(backup, std::string::npos) << fixed.out;
    EXPECT_EQ(ReadHostFile(fixed.out.substr(backup + 8, fixed.out.find('\n', backup) - backup - 8)), absolute) << file;
  }
}

// A control counts as a reference, as the IDE holds it; --json gives the
// same rows; a group names the member it cannot open and still lists the rest.
TEST(RefsCommand, PrintsTheListAndFixPathsRefusesAReadOnlyProject) {
  DriveC scratch;
  scratch.temp.Write("c/App/App.vbp", "Type=Exe\r\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#"
                                      "Z:\\nowhere\\stdole2.tlb#OLE Automation\r\n"
                                      "Object={831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.1#0; MSCOMCTL.OCX\r\n"
                                      "Name=\"App\"\r\n");
  const std::string project = scratch.c / "App" / "App.vbp";
  const CliRun shown = scratch.Run({"refs", project});
  EXPECT_EQ(shown.status, 0) << shown.err;
  ExpectMatchesFile(shown.out, "cli/refs.txt");
  const CliRun json = scratch.Run({"refs", project, "--json"});
  ASSERT_EQ(json.status, 0) << json.err;
  const nlohmann::json rows = nlohmann::json::parse(json.out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1]["name"], "MSCOMCTL");
  EXPECT_EQ(rows[1]["version"], "2.1");
  EXPECT_EQ(rows[1]["broken"], true);
  EXPECT_EQ(rows[1]["kind"], "External");
  EXPECT_EQ(scratch.Run({"refs", project, "--project", "Other"}).status, 2);

  scratch.temp.Write("c/App/Part.vbg", "VBGROUP 5.0\r\nStartupProject=App.vbp\r\nProject=Gone.vbp\r\n");
  scratch.temp.Write("c/App/None.vbg", "VBGROUP 5.0\r\nProject=Gone.vbp\r\n");
  const std::string csv = scratch.temp / "part.csv";
  const CliRun partial = scratch.Run({"refs", scratch.c / "App" / "Part.vbg", "--csv", csv});
  EXPECT_EQ(partial.status, 1);
  EXPECT_NE(partial.err.find("the group's project Gone.vbp cannot be opened"), std::string::npos) << partial.err;
  const std::string written = ReadHostFile(csv);
  EXPECT_TRUE(written.starts_with(" --- Begin Log ---\r\n")) << written;
  EXPECT_NE(written.find("\r\n1,App,OLE Automation"), std::string::npos) << written;
  const CliRun none = scratch.Run({"refs", scratch.c / "App" / "None.vbg"});
  EXPECT_EQ(none.status, 2);
  EXPECT_NE(none.err.find("Gone.vbp"), std::string::npos) << none.err;

  fs::permissions(project, fs::perms::owner_read | fs::perms::group_read);
  const CliRun readOnly = scratch.Run({"fix-paths", project});
  EXPECT_EQ(readOnly.status, 2);
  EXPECT_NE(readOnly.err.find("Project File is Read-Only."), std::string::npos) << readOnly.err;
  fs::permissions(project, fs::perms::owner_write, fs::perm_options::add);
}

}  // namespace
}  // namespace sentrune::testing
