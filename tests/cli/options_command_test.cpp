// `sentrune options`, the global options, the help's menu map and the
// add-in's folder.
#include <gtest/gtest.h>

#include "cli/cli_test_support.h"
#include "menu_help.h"
#include "seed_templates.h"
#include "support/expected_file.h"

namespace sentrune::testing {
namespace {

TEST(OptionsCommand, WritesStartValuesOnFirstRunAndSetsOnlyValidValues) {
  Cli cli;
  const std::string iniFile = cli.home() + "/Sentrune.ini";
  const CliRun first = cli.Run({"options"});
  ASSERT_EQ(first.status, 0) << first.err;
  ExpectMatchesFile(first.out, "cli/options.txt");  // the grid as the console renders it
  const std::string ini = ReadHostFile(iniFile);
  EXPECT_NE(ini.find("TrackTime=1\r\n"), std::string::npos);
  EXPECT_EQ(cli.Run({"options"}).out, first.out);
  for (const auto& [key, value, named] : {std::tuple{"NoSuchKey", "1", "NoSuchKey"},
                                          std::tuple{"ActiveX_DLL_CreateBackup", "Maybe", "Prompt"}}) {
    const CliRun refused = cli.Run({"options", "set", key, value});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find(named), std::string::npos) << refused.err;
  }
  // Neither the second run nor a refused value wrote anything.
  EXPECT_EQ(ReadHostFile(iniFile), ini);
  ASSERT_EQ(cli.Run({"options", "set", "activex_dll_createbackup", "yes"}).status, 0);
  EXPECT_NE(ReadHostFile(iniFile).find("ActiveX_DLL_CreateBackup=1\r\n"), std::string::npos);
  ASSERT_EQ(cli.Run({"options", "reset"}).status, 0);
  EXPECT_EQ(ReadHostFile(iniFile), ini);
}

TEST(GlobalOptions, BadInputIsRefusedWithStatusTwo) {
  Cli cli;
  EXPECT_EQ(cli.Run({"--drive", "QQ", "options"}).status, 2);
  const CliRun missing = cli.Run({"--drive", "Q=/no/such/folder", "options"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_NE(missing.err.find("/no/such/folder"), std::string::npos) << missing.err;
  EXPECT_EQ(cli.Run({"--version"}).status, 0);
}

TEST(MenuHelp, ListsEveryItemWithItsCommand) { ExpectMatchesFile(cli::MenuHelpText(), "cli/menu-help.txt"); }

TEST(SeedAddinFolder, CopiesOnlyTheMissingTemplates) {
  FakeFileSystem files;
  files.AddFile("C:\\Share\\VerifyClassTemplate.txt", "template");
  files.AddFile("C:\\Share\\AlignmentHelper.ctl", "control");
  files.AddFile("C:\\Addin\\AlignmentHelper.ctl", "the user's own");
  EXPECT_EQ(cli::SeedAddinFolder(files, "C:\\Addin\\", "C:\\Share"),
            std::vector<std::string>{"VerifyClassTemplate.txt"});
  EXPECT_EQ(files.Contents("C:\\Addin\\AlignmentHelper.ctl"), "the user's own");
  EXPECT_TRUE(cli::SeedAddinFolder(files, "C:\\Addin", "C:\\Share").empty());
}

}  // namespace
}  // namespace sentrune::testing
