// `sentrune inspect` and `sentrune compare` driven in-process over the
// committed fixtures, with a throw-away add-in folder.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <sstream>

#include <gtest/gtest.h>

#include "commands.h"
#include "session.h"
#include "typelib/fixture_world.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

struct CommandRun {
  int code = 0;
  std::string out, err;
};

class TypelibCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    home_ = fs::temp_directory_path() / ("sentrune-cli-" + std::to_string(::getpid()));
    fs::create_directories(home_);
  }
  void TearDown() override { fs::remove_all(home_); }

  CommandRun Sentrune(std::vector<std::string> args) {
    std::istringstream in;
    std::ostringstream out, err;
    cli::Session session(in, out, err);
    session.global.home = home_.string();
    CLI::App app;
    cli::AddInspectCommand(app, session);
    cli::AddCompareCommand(app, session);
    args.insert(args.begin(), "sentrune");
    std::vector<const char*> argv;
    for (const auto& a : args) argv.push_back(a.c_str());
    app.parse(static_cast<int>(argv.size()), argv.data());
    return {session.exitCode, out.str(), err.str()};
  }

  fs::path home_;
};

TEST_F(TypelibCommands, CompareReportsDifferencesLevelAndExitStatus) {
  const std::string base = FixturePath("widgets.tlb");
  const CommandRun removed = Sentrune({"compare", FixturePath("widgets_member_removed.tlb"), base});
  EXPECT_EQ(removed.code, 1);
  EXPECT_TRUE(removed.out.starts_with("1 Differences Found.\n--> Widgets ["));
  EXPECT_TRUE(removed.out.ends_with("Compatibility: incompatible\n"));
  EXPECT_EQ(Sentrune({"compare", FixturePath("widgets_member_added.tlb"), base, "--fail-on", "incompatible"}).code, 0);
  // A fresh store ignores minor differences; the flag and details override it.
  const std::string version = FixturePath("widgets_version.tlb");
  EXPECT_EQ(Sentrune({"compare", version, base}).code, 0);
  const CommandRun minor = Sentrune({"compare", version, base, "--no-ignore-minor", "--details"});
  EXPECT_EQ(minor.code, 1);
  EXPECT_NE(minor.out.find("TLB Version String (A) = 1.1\n"), std::string::npos);
  const CommandRun unreadable = Sentrune({"compare", FixturePath("widgets.idl"), base});
  EXPECT_EQ(unreadable.code, 2);
  EXPECT_TRUE(unreadable.err.starts_with("sentrune: The file doesn't contain a valid TypeLib."));
}

TEST_F(TypelibCommands, InspectPrintsTheTreeJsonAndWritesXml) {
  fs::copy_file(FixturePath("widgets.tlb"), home_ / "w.tlb");
  const std::string file = (home_ / "w.tlb").string();
  EXPECT_NE(Sentrune({"inspect", file}).out.find("\n      Properties\n        Get Caption() As String 'The text shown"),
            std::string::npos);
  EXPECT_EQ(Sentrune({"inspect", file, "--xml"}).out, file + ".xml\n");
  EXPECT_TRUE(ReadHostFile(file + ".xml").starts_with("   <w.tlb>\r\n      <Library>\r\n"));
  EXPECT_EQ(Sentrune({"inspect", (home_ / "none.dll").string()}).code, 2);
}

}  // namespace
}  // namespace sentrune::testing
