#include "verify/insert_components.h"

#include <gtest/gtest.h>

#include "runtime/text.h"
#include "verify/verify_project_world.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;

constexpr const char* kClassFile = "C:\\Src\\App\\cVerifyInstallation.cls";
constexpr const char* kTlbInfAdded = "A reference to tlbinf32.dll (required) has been added to your project.";

TEST(InsertVerifyClass, WritesAddsAndSavesWithTheTlbInfReference) {
  ProjectWorld w;
  w.OpenApp(WidgetsReference());
  EXPECT_EQ(InsertVerifyClass(w.state, w.options, w.ide, nullptr), InsertOutcome::kAdded);
  EXPECT_EQ(w.Prompts(), (std::vector<std::string>{kTlbInfAdded, "Class module has been added/refreshed."}));
  EXPECT_EQ(w.ui.boxes[1].title, "Sentrune");
  const std::string cls = w.env.Files().Contents(kClassFile).value_or("");
  EXPECT_NE(cls.find("Attribute VB_Name = \"cVerifyInstallation\"\r\n"), std::string::npos);
  EXPECT_NE(cls.find("\r\nGUID:=\"{11111111-0000-0000-0000-000000000001}\", _\r\n"), std::string::npos);
  EXPECT_EQ(cls.find("|||"), std::string::npos);
  const std::string vbp = w.ProjectText();
  EXPECT_NE(vbp.find("\r\nClass=cVerifyInstallation; cVerifyInstallation.cls\r\n"), std::string::npos);
  EXPECT_NE(rt::UCase(vbp).find("{8B217740-717D-11CE-AB5B-D41203C10000}"), std::string::npos);
  EXPECT_EQ(vbp.find("Module=Main; Main.bas\r\n"), vbp.find("Module="));
}

TEST(InsertVerifyClass, RefreshAsksAndReplacesInPlace) {
  ProjectWorld w;
  w.OpenApp(WidgetsReference());
  ASSERT_EQ(InsertVerifyClass(w.state, w.options, w.ide, nullptr), InsertOutcome::kAdded);
  const std::string edited = "Attribute VB_Name = \"cVerifyInstallation\"\r\n";
  ASSERT_TRUE(w.env.Files().WriteFile(kClassFile, edited).ok());
  ASSERT_TRUE(w.env.Files().SetAttributes(kClassFile, 33).ok());
  w.ui.boxes.clear();

  w.ui.QueueAnswer(mb::kNo);
  EXPECT_EQ(InsertVerifyClass(w.state, w.options, w.ide, nullptr), InsertOutcome::kDeclined);
  EXPECT_EQ(w.Prompts(), std::vector<std::string>{"cVerifyInstallation already exists. Refresh?"});
  EXPECT_EQ(w.ui.boxes[0].style, mb::kYesNo + mb::kQuestion);
  EXPECT_EQ(w.env.Files().Contents(kClassFile), edited);

  w.ui.boxes.clear();
  w.ui.QueueAnswer(mb::kYes);
  EXPECT_EQ(InsertVerifyClass(w.state, w.options, w.ide, nullptr), InsertOutcome::kAdded);
  // The reference added the first time is found now, so it is not added again.
  EXPECT_EQ(w.Prompts(), (std::vector<std::string>{"cVerifyInstallation already exists. Refresh?",
                                                   "Class module has been added/refreshed."}));
  EXPECT_NE(w.env.Files().Contents(kClassFile)->find("ProcessItem"), std::string::npos);
  const std::string vbp = w.ProjectText();
  EXPECT_EQ(vbp.find("Class="), vbp.rfind("Class="));
}

TEST(InsertVerifyClass, ReportsWhatStopsIt) {
  ProjectWorld none;
  none.OpenApp("Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Windows\\System32\\stdole2.tlb#OLE\r\n");
  EXPECT_EQ(InsertVerifyClass(none.state, none.options, none.ide, nullptr), InsertOutcome::kNothingToDo);
  ASSERT_EQ(none.ui.boxes.size(), 1u);
  EXPECT_EQ(none.ui.boxes[0].prompt, "No external dependencies found\r\nAdd/refresh will not take place.");
  EXPECT_EQ(none.ui.boxes[0].title, "No dependencies");
  EXPECT_EQ(none.ui.boxes[0].style, 64);

  ProjectWorld missing;
  missing.OpenApp(WidgetsReference());
  ASSERT_TRUE(missing.env.Files().DeleteFile("C:\\Addin\\VerifyClassTemplate.txt").ok());
  EXPECT_EQ(InsertVerifyClass(missing.state, missing.options, missing.ide, nullptr), InsertOutcome::kFailed);
  ASSERT_EQ(missing.ui.boxes.size(), 1u);
  EXPECT_EQ(missing.ui.boxes[0].prompt,
            "Unable to insert the verification class.\r\nThe file:\r\nC:\\Addin\\VerifyClassTemplate.txt is missing.");
  EXPECT_EQ(missing.ui.boxes[0].title, "Sentrune Template file missing.");
  EXPECT_FALSE(missing.env.Files().Exists(kClassFile));
}

TEST(InsertVerifyClass, TlbInfFromTheRegistryOrReportedMissing) {
  ProjectWorld registered;
  registered.OpenApp(WidgetsReference());
  registered.AddLibrary("C:\\Tools\\TLI.dll", kTlbInfGuid, 1, 0);
  registered.Register(kTlbInfGuid, "1.0", "C:\\Tools\\TLI.dll");
  ASSERT_EQ(InsertVerifyClass(registered.state, registered.options, registered.ide, &registered.registry),
            InsertOutcome::kAdded);
  EXPECT_NE(registered.ProjectText().find("Tools\\TLI.dll#"), std::string::npos);

  ProjectWorld absent;
  absent.OpenApp(WidgetsReference());
  ASSERT_TRUE(absent.env.Files().DeleteFile(std::string(FakeEnv::kSystem) + "\\tlbinf32.dll").ok());
  EXPECT_EQ(InsertVerifyClass(absent.state, absent.options, absent.ide, nullptr), InsertOutcome::kAdded);
  ASSERT_EQ(absent.ui.boxes.size(), 2u);
  EXPECT_TRUE(absent.ui.boxes[0].prompt.starts_with("A reference to tlbinf32.dll (required) could not be added"));
  EXPECT_EQ(absent.ui.boxes[0].style, 48);
  EXPECT_EQ(absent.ui.boxes[1].prompt, "Class module has been added/refreshed.");
}

TEST(InsertAlignControl, AddsOnceRenamedAndPublicInControlProjects) {
  ProjectWorld w;
  w.options.AlignControl = "Guide";
  w.OpenApp(WidgetsReference(), "Control");
  EXPECT_EQ(InsertAlignControl(w.state, w.options, w.ide), InsertOutcome::kAdded);
  const std::string ctl = w.env.Files().Contents("C:\\Src\\App\\Guide.ctl").value_or("");
  EXPECT_TRUE(ctl.starts_with("VERSION 5.00\r\nBegin VB.UserControl Guide\r\n"));
  EXPECT_NE(ctl.find("Attribute VB_Name = \"Guide\"\r\n"), std::string::npos);
  EXPECT_NE(ctl.find("Attribute VB_Exposed = True\r\n"), std::string::npos);
  EXPECT_NE(w.ProjectText().find("\r\nUserControl=Guide.ctl\r\n"), std::string::npos);

  EXPECT_EQ(InsertAlignControl(w.state, w.options, w.ide), InsertOutcome::kNothingToDo);
  EXPECT_EQ(w.Prompts(), (std::vector<std::string>{"UserControl has been added.", "Guide already exists."}));
  EXPECT_EQ(w.ui.boxes[1].style, 64);
  EXPECT_EQ(w.ui.boxes[1].title, "Sentrune");

  ProjectWorld exe;
  exe.OpenApp("");
  ASSERT_TRUE(exe.env.Files().DeleteFile("C:\\Addin\\AlignmentHelper.ctl").ok());
  EXPECT_EQ(InsertAlignControl(exe.state, exe.options, exe.ide), InsertOutcome::kFailed);
  EXPECT_EQ(exe.Prompts(), std::vector<std::string>{"Failed to add UserControl."});
  EXPECT_EQ(exe.ui.boxes[0].style, 48);
}

}  // namespace
}  // namespace sentrune::testing
