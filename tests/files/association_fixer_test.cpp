// The association fixer over a fake registry and a scripted user.
#include "files/association_fixer.h"

#include <gtest/gtest.h>

#include "support/fake_registry.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

constexpr const char* kVb6 = "C:\\Program Files\\Microsoft Visual Studio\\VB98\\VB6.EXE";
constexpr const char* kCommand = "\"C:\\Program Files\\Microsoft Visual Studio\\VB98\\VB6.EXE\" \"%1\"";
const std::vector<std::string> kClasses = {"ProjectGroup", "Project",      "Form",         "Module",
                                           "ClassModule",  "UserControl",  "Designer",     "PropertyPage",
                                           "UserDocument", "VBZFile"};

std::string KeyOf(const std::string& name) { return "VisualBasic." + name + "\\shell\\open\\command"; }

struct FixerWorld : TestAddin {
  FakeRegistry registry;
  FixerWorld() {
    env.SetTempPath("C:\\Temp\\");
    files().AddFile(kVb6, "");
    env.Programs().SetFindExecutable(33, kVb6);
  }
  void SetAll(const std::string& command) {
    for (const auto& name : kClasses) registry.AddString(platform::kHkeyClassesRoot, KeyOf(name), "", command);
  }
  std::string Command(const std::string& name) {
    auto value = registry.QueryValue(platform::kHkeyClassesRoot, KeyOf(name), "");
    return value.ok() ? value->data : "<missing>";
  }
};

TEST(FindExecutable, AsksAboutATemporaryDummyAndCleansUp) {
  FixerWorld w;
  // The answer comes back in the long form the disk stores, cut at its NUL.
  w.env.Programs().SetFindExecutable(33, std::string("c:\\program files\\microsoft visual studio\\vb98\\vb6.exe") +
                                             '\0' + "junk");
  EXPECT_EQ(lfncFindExecutable(w.state, "vbp"), kVb6);
  EXPECT_EQ(w.env.Programs().Looked(), std::vector<std::string>{"C:\\Temp\\Dummy.vbp"});
  EXPECT_FALSE(w.files().Exists("C:\\Temp\\Dummy.vbp"));

  const std::vector<std::pair<int, std::string>> failures = {
      {31, "no association"}, {2, "file not found"}, {3, "path not found"}, {11, "bad format"}};
  for (const auto& [code, text] : failures) {
    w.env.Programs().SetFindExecutable(code, "ignored");
    EXPECT_EQ(lfncFindExecutable(w.state, "vbp"), text) << code;
  }
}

TEST(FixAssociations, AllCorrectAsksTenConfirmationsAndChangesNothing) {
  FixerWorld w;
  // Letter case alone does not make a command wrong.
  w.SetAll("\"c:\\program files\\microsoft visual studio\\vb98\\vb6.exe\" \"%1\"");
  EXPECT_EQ(lfncFixAssociations(w.state, w.registry), 0);
  ASSERT_EQ(w.ui.boxes.size(), 11u);
  EXPECT_EQ(w.ui.boxes[0].prompt,
            "'ProjectGroup' registry setting is correct. No change required.\r\n"
            "Press Ok to continue or press Cancel to stop processing associations.");
  EXPECT_EQ(w.ui.boxes[0].style, 1);
  EXPECT_EQ(w.ui.boxes[9].prompt.substr(0, 10), "'VBZFile' ");
  EXPECT_EQ(w.ui.boxes[10].prompt, "Operation Complete\r\n0 registry entries were changed");
  EXPECT_EQ(w.ui.boxes[10].style, 64);
  EXPECT_EQ(w.ui.boxes[10].title, "Fix Associations");
}

TEST(FixAssociations, YesWritesNoKeepsCancelStops) {
  FixerWorld w;
  w.SetAll("\"C:\\PROGRA~1\\MICROS~1\\VB98\\VB6.EXE\" \"%1\"");
  w.ui.QueueAnswer(platform::mb::kYes);
  w.ui.QueueAnswer(platform::mb::kNo);
  w.ui.QueueAnswer(platform::mb::kCancel);
  EXPECT_EQ(lfncFixAssociations(w.state, w.registry), 1);
  ASSERT_EQ(w.ui.boxes.size(), 4u);
  EXPECT_EQ(w.ui.boxes[0].prompt, "Fix 'ProjectGroup'?");
  EXPECT_EQ(w.ui.boxes[0].style, 35);
  EXPECT_EQ(w.ui.boxes[2].prompt, "Fix 'Form'?");
  EXPECT_EQ(w.ui.boxes[3].prompt, "Operation Complete\r\n1 registry entries were changed");
  // The program path keeps its own case in what is written.
  EXPECT_EQ(w.Command("ProjectGroup"), std::string(kCommand) + '\0');
  EXPECT_NE(w.Command("Project"), std::string(kCommand) + '\0');
  EXPECT_NE(w.Command("Form"), std::string(kCommand) + '\0');
}

TEST(FixAssociations, MissingKeysAreCreatedAndCancelAtAConfirmationStops) {
  FixerWorld w;
  EXPECT_EQ(lfncFixAssociations(w.state, w.registry), 10);
  for (const auto& name : kClasses) EXPECT_EQ(w.Command(name), std::string(kCommand) + '\0') << name;

  FixerWorld again;
  again.SetAll(kCommand);
  again.ui.QueueAnswer(platform::mb::kOk);
  again.ui.QueueAnswer(platform::mb::kCancel);
  EXPECT_EQ(lfncFixAssociations(again.state, again.registry), 0);
  EXPECT_EQ(again.ui.boxes.size(), 3u);
}

TEST(FixAssociations, WithoutAnAssociationTheFailureWordIsProposed) {
  FixerWorld w;
  w.env.Programs().SetFindExecutable(31, "");
  w.ui.defaultAnswer = platform::mb::kNo;
  EXPECT_EQ(lfncFixAssociations(w.state, w.registry), 0);
  EXPECT_EQ(w.ui.boxes.size(), 11u);
  EXPECT_FALSE(w.registry.HasKey(platform::kHkeyClassesRoot, KeyOf("Project")));
}

}  // namespace
}  // namespace sentrune::testing
