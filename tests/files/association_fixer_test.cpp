// The association fixer over the Wine-prefix store in memory and a scripted user.
#include "files/association_fixer.h"

#include <gtest/gtest.h>

#include "support/test_addin.h"
#include "support/test_registry.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;
constexpr const char* kVb6 = "C:\\Program Files\\Microsoft Visual Studio\\VB98\\VB6.EXE";
const std::string kCommand = std::string("\"") + kVb6 + "\" \"%1\"";

struct FixerWorld : TestAddin {
  TestRegistry registry;
  FixerWorld() {
    files().AddFile(kVb6, "");
    // The answer comes back in the long form the disk stores, cut at its NUL.
    env.Programs().SetFindExecutable(33, std::string("c:\\program files\\microsoft visual studio\\vb98\\vb6.exe") +
                                              '\0' + "junk");
  }
  std::string Command(const std::string& name) {
    auto value = registry.QueryValue(platform::kHkeyClassesRoot, "VisualBasic." + name + "\\shell\\open\\command", "");
    return value.ok() ? value->data : "<missing>";
  }
};

TEST(FindExecutable, AsksAboutATemporaryDummyAndCleansUp) {
  FixerWorld w;
  EXPECT_EQ(lfncFindExecutable(w.state, "vbp"), kVb6);
  EXPECT_EQ(w.env.Programs().Looked(), std::vector<std::string>{"C:\\Temp\\Dummy.vbp"});
  EXPECT_FALSE(w.files().Exists("C:\\Temp\\Dummy.vbp"));
  w.env.Programs().SetFindExecutable(31, "ignored");
  EXPECT_EQ(lfncFindExecutable(w.state, "vbp"), "no association");
}

TEST(FixAssociations, AsksBeforeEachChangeAndStopsAtCancel) {
  FixerWorld w;
  // Letter case alone does not make a command wrong; a missing key is created.
  w.registry.AddString(platform::kHkeyClassesRoot, "VisualBasic.ProjectGroup\\shell\\open\\command", "",
                       "\"c:\\program files\\microsoft visual studio\\vb98\\vb6.exe\" \"%1\"");
  for (int answer : {mb::kOk, mb::kYes, mb::kNo, mb::kCancel}) w.ui.QueueAnswer(answer);
  EXPECT_EQ(lfncFixAssociations(w.state, w.registry), 1);
  ASSERT_EQ(w.ui.boxes.size(), 5u);
  EXPECT_TRUE(w.ui.boxes[0].prompt.starts_with("'ProjectGroup' registry setting is correct.")) << w.ui.boxes[0].prompt;
  EXPECT_EQ(w.ui.boxes[3].prompt, "Fix 'Module'?");
  EXPECT_EQ(w.ui.boxes[4].prompt, "Operation Complete\r\n1 registry entries were changed");
  EXPECT_EQ(w.Command("Project"), kCommand + '\0');
  EXPECT_EQ(w.Command("Form"), "<missing>");

  FixerWorld yes;
  EXPECT_EQ(lfncFixAssociations(yes.state, yes.registry), 10);
  EXPECT_EQ(yes.Command("VBZFile"), kCommand + '\0');
}

}  // namespace
}  // namespace sentrune::testing
