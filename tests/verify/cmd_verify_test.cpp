#include "commands.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <sstream>

#include "session.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

TEST(VerifyCommand, EmptyWinePrefixFailsEveryComponentAndExitsOne) {
  const fs::path root = fs::temp_directory_path() / ("sentrune-verify-" + std::to_string(::getpid()));
  fs::create_directories(root / "prefix");
  std::istringstream in;
  std::ostringstream out, err;
  {
    cli::Session session(in, out, err);
    session.global.home = (root / "home").string();
    session.global.wineprefix = (root / "prefix").string();
    CLI::App app;
    cli::AddVerifyCommand(app, session);
    const char* argv[] = {"sentrune", "verify", "--silent"};
    app.parse(3, argv);
    EXPECT_EQ(session.exitCode, cli::kExitStopped) << err.str();
  }
  fs::remove_all(root);
  const std::string log = out.str();
  EXPECT_TRUE(log.starts_with("Verifying OLE Automation\nVerifying OLE Automation - Completed: Fail\n"
                              "Component 'OLE Automation' not found on disk or in registry.\n"))
      << log;
  size_t fails = 0;
  for (size_t at = log.find("Completed: Fail"); at != std::string::npos; at = log.find("Completed: Fail", at + 1))
    ++fails;
  EXPECT_EQ(fails, 5u);
}

}  // namespace
}  // namespace sentrune::testing
