#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "cli/cli_test_support.h"
#include "seed_templates.h"
#include "support/fake_env.h"

namespace sentrune {
namespace {

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The row of the grid that ends with the key.
std::string RowOf(const std::string& grid, const std::string& key) {
  std::istringstream lines(grid);
  for (std::string line; std::getline(lines, line);)
    if (line.size() >= key.size() && line.compare(line.size() - key.size(), key.size(), key) == 0) return line;
  return {};
}

TEST(OptionsCommand, FirstRunWritesStartValuesAndLaterRunsReadThem) {
  testing::CliHome cli;
  const testing::CliRun first = cli.Run({"options"});
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_NE(RowOf(first.out, "BackupFileCount").find(" 0 "), std::string::npos);
  EXPECT_NE(RowOf(first.out, "TrackTime").find(" Yes "), std::string::npos);
  const std::string ini = ReadAll(cli.home() / "Sentrune.ini");
  EXPECT_NE(ini.find("BackupFileCount=0\r\n"), std::string::npos);
  EXPECT_NE(ini.find("TrackTime=1\r\n"), std::string::npos);

  const testing::CliRun second = cli.Run({"options"});
  EXPECT_EQ(second.out, first.out);
  EXPECT_EQ(ReadAll(cli.home() / "Sentrune.ini"), ini);
}

TEST(OptionsCommand, SetValidatesAndWritesNothingOnError) {
  testing::CliHome cli;
  ASSERT_EQ(cli.Run({"options"}).status, 0);
  const std::string before = ReadAll(cli.home() / "Sentrune.ini");

  const testing::CliRun unknown = cli.Run({"options", "set", "NoSuchKey", "1"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.err.find("NoSuchKey"), std::string::npos);
  const testing::CliRun wrongKind = cli.Run({"options", "set", "ActiveX_DLL_CreateBackup", "Maybe"});
  EXPECT_EQ(wrongKind.status, 2);
  EXPECT_NE(wrongKind.err.find("Prompt"), std::string::npos);
  EXPECT_EQ(ReadAll(cli.home() / "Sentrune.ini"), before);

  const testing::CliRun set = cli.Run({"options", "set", "activex_dll_createbackup", "yes"});
  ASSERT_EQ(set.status, 0) << set.err;
  EXPECT_NE(ReadAll(cli.home() / "Sentrune.ini").find("ActiveX_DLL_CreateBackup=1\r\n"), std::string::npos);

  ASSERT_EQ(cli.Run({"options", "reset"}).status, 0);
  EXPECT_EQ(ReadAll(cli.home() / "Sentrune.ini"), before);
}

TEST(GlobalOptions, BadInputIsRefusedWithStatusTwo) {
  testing::CliHome cli;
  EXPECT_EQ(cli.Run({"--drive", "QQ", "options"}).status, 2);
  const testing::CliRun missing = cli.Run({"--drive", "Q=/no/such/folder", "options"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_NE(missing.err.find("/no/such/folder"), std::string::npos);
  EXPECT_EQ(cli.Run({"--yes", "--no", "options"}).status, 2);
  EXPECT_EQ(cli.Run({"no-such-command"}).status, 2);
  const testing::CliRun version = cli.Run({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_NE(version.out.find("sentrune "), std::string::npos);
}

TEST(SeedAddinFolder, CopiesOnlyTheMissingTemplates) {
  testing::FakeEnv env;
  testing::FakeFileSystem& files = env.Files();
  files.AddFile("C:\\Share\\VerifyClassTemplate.txt", "template");
  files.AddFile("C:\\Share\\AlignmentHelper.ctl", "control");
  files.AddFile("C:\\Addin\\AlignmentHelper.ctl", "the user's own");
  EXPECT_EQ(cli::SeedAddinFolder(files, "C:\\Addin\\", "C:\\Share"), std::vector<std::string>{"VerifyClassTemplate.txt"});
  EXPECT_EQ(files.Contents("C:\\Addin\\AlignmentHelper.ctl"), "the user's own");
  EXPECT_TRUE(cli::SeedAddinFolder(files, "C:\\Addin", "C:\\Share").empty());
}

}  // namespace
}  // namespace sentrune
