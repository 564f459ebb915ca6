// `sentrune options`, the global options, the help's menu map and the
// add-in's folder.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/cli_test_support.h"
#include "menu_help.h"
#include "seed_templates.h"

namespace sentrune::testing {
namespace {

TEST(OptionsCommand, WritesStartValuesOnFirstRunAndSetsOnlyValidValues) {
  Cli cli;
  const std::string iniFile = cli.home() + "/Sentrune.ini";
  const CliRun first = cli.Run({"options"});
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_THAT(first.out, ::testing::ContainsRegex(" 0 +BackupFileCount\n"));
  EXPECT_THAT(first.out, ::testing::ContainsRegex(" Yes +TrackTime\n"));
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

TEST(MenuHelp, ListsEveryItemWithItsCommand) {
  for (const char* line :
       {"Show References +sentrune refs\n", "Inspect Components +sentrune inspect, sentrune compare\n",
        "Show Elapsed Times +sentrune times\n", "Project Snapshot +sentrune snapshot\n", "  Utilities:\n",
        "Add/Refresh cVerifyInstallation +sentrune verify-class\n", "Add AlignmentHelper +sentrune add-align-control\n",
        "Show Magnifier +\\(none on Linux\\)\n", "Fix ABS Paths +sentrune fix-paths\n",
        "Fix VB Associations +sentrune fix-associations\n", "Sentrune Options +sentrune options\n",
        "About +sentrune --version\n"})
    EXPECT_THAT(cli::MenuHelpText(), ::testing::ContainsRegex(line));
}

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
