// `sentrune compare` and `sentrune inspect` over the committed fixtures.
#include <gtest/gtest.h>

#include "cli/cli_test_support.h"

namespace sentrune::testing {
namespace {

TEST(CompareCommand, ReportsDifferencesLevelAndExitStatus) {
  const std::string base = FixturePath("widgets.tlb"), version = FixturePath("widgets_version.tlb");
  const struct {
    std::string build;
    std::vector<std::string> flags;
    int status;
    std::vector<std::string> printed;
  } cases[] = {
      {FixturePath("widgets_member_removed.tlb"), {}, 1,
       {"1 Differences Found.\n--> Widgets [", "Compatibility: incompatible\n"}},
      {FixturePath("widgets_member_added.tlb"), {"--fail-on", "incompatible"}, 0, {"Compatibility: compatible\n"}},
      // A fresh store ignores minor differences; the flag and details override it.
      {version, {}, 0, {"0 Differences Found.\nCompatibility: identical\n"}},
      {version, {"--no-ignore-minor", "--details"}, 1, {"TLB Version String (A) = 1.1\n"}},
  };
  Cli cli;
  for (const auto& c : cases) {
    std::vector<std::string> args = {"compare", c.build, base};
    args.insert(args.end(), c.flags.begin(), c.flags.end());
    const CliRun run = cli.Run(args);
    EXPECT_EQ(run.status, c.status) << c.build;
    for (const std::string& text : c.printed) EXPECT_NE((run.out + run.err).find(text), std::string::npos) << text;
  }
}

TEST(InspectCommand, PrintsTheTreeAndWritesXml) {
  Cli cli;
  cli.temp.Write("w.tlb", ReadHostFile(FixturePath("widgets.tlb")));
  const std::string file = cli.temp / "w.tlb";
  EXPECT_NE(cli.Run({"inspect", file}).out.find("\n      Properties\n        Get Caption() As String 'The text shown"),
            std::string::npos);
  EXPECT_EQ(cli.Run({"inspect", file, "--xml"}).out, file + ".xml\n");
  EXPECT_TRUE(ReadHostFile(file + ".xml").starts_with("   <w.tlb>\r\n      <Library>\r\n"));
}

}  // namespace
}  // namespace sentrune::testing
