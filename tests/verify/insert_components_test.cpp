// The verification class and alignment control: generating their text and
// inserting them into the active project.
#include "verify/insert_components.h"

#include <gtest/gtest.h>

#include "runtime/text.h"
#include "support/expected_file.h"
#include "verify/verify_template.h"
#include "verify/verify_world.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;

constexpr const char* kClassFile = "C:\\Src\\App\\cVerifyInstallation.cls";
constexpr const char* kTlbInfAdded = "A reference to tlbinf32.dll (required) has been added to your project.";
constexpr const char* kRefreshed = "Class module has been added/refreshed.";

InsertOutcome InsertClass(ProjectWorld& w, bool withRegistry = false) {
  return InsertVerifyClass(w.state, w.options, w.ide, withRegistry ? &w.registry : nullptr);
}

TEST(InsertVerifyClass, WritesAddsAndSavesThenRefreshesInPlaceWhenAsked) {
  ProjectWorld w;
  w.OpenApp(kWidgetsReference);
  EXPECT_EQ(InsertClass(w), InsertOutcome::kAdded);
  EXPECT_EQ(w.ui.Prompts(), (Strings{kTlbInfAdded, kRefreshed}));
  EXPECT_NE(w.env.Files().Contents(kClassFile).value_or("").find("\r\nGUID:=\"{11111111-0000-0000-0000-000000000001}\", _\r\n"), std::string::npos);
  const std::string vbp = w.ProjectText();
  ExpectMatchesFile(vbp, "verify/App.vbp");

  // An edited, read-only copy is kept when declined, replaced when not.
  const std::string edited = "Attribute VB_Name = \"cVerifyInstallation\"\r\n";
  ASSERT_TRUE(w.env.Files().WriteFile(kClassFile, edited).ok());
  ASSERT_TRUE(w.env.Files().SetAttributes(kClassFile, 33).ok());
  w.ui.boxes.clear();
  w.ui.QueueAnswer(mb::kNo);
  EXPECT_EQ(InsertClass(w), InsertOutcome::kDeclined);
  EXPECT_EQ(w.ui.Prompts(), Strings{"cVerifyInstallation already exists. Refresh?"});
  EXPECT_EQ(w.env.Files().Contents(kClassFile), edited);
  w.ui.boxes.clear();
  w.ui.QueueAnswer(mb::kYes);
  EXPECT_EQ(InsertClass(w), InsertOutcome::kAdded);
  // The reference added the first time is found now, so it is not added again.
  EXPECT_EQ(w.ui.Prompts(), (Strings{"cVerifyInstallation already exists. Refresh?", kRefreshed}));
  EXPECT_NE(w.env.Files().Contents(kClassFile), edited);
  EXPECT_EQ(w.ProjectText(), vbp);
}

TEST(InsertVerifyClass, ReportsWhatStopsIt) {
  ProjectWorld none;
  none.OpenApp("Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Windows\\System32\\stdole2.tlb#OLE\r\n");
  EXPECT_EQ(InsertClass(none), InsertOutcome::kNothingToDo);
  EXPECT_EQ(none.ui.Prompts(), Strings{"No external dependencies found\r\nAdd/refresh will not take place."});

  ProjectWorld missing;
  missing.OpenApp(kWidgetsReference);
  ASSERT_TRUE(missing.env.Files().DeleteFile("C:\\Addin\\VerifyClassTemplate.txt").ok());
  EXPECT_EQ(InsertClass(missing), InsertOutcome::kFailed);
  EXPECT_EQ(missing.ui.Prompts(), Strings{"Unable to insert the verification class.\r\nThe file:\r\n"
                                       "C:\\Addin\\VerifyClassTemplate.txt is missing."});
  EXPECT_FALSE(missing.env.Files().Exists(kClassFile));
}

TEST(InsertVerifyClass, TlbInfFromTheRegistryOrReportedMissing) {
  ProjectWorld registered;
  registered.OpenApp(kWidgetsReference);
  registered.AddLibrary("C:\\Tools\\TLI.dll", kTlbInfGuid, 1, 0);
  registered.Register(kTlbInfGuid, "1.0", "C:\\Tools\\TLI.dll");
  ASSERT_EQ(InsertClass(registered, true), InsertOutcome::kAdded);
  EXPECT_NE(registered.ProjectText().find("Tools\\TLI.dll#"), std::string::npos);

  ProjectWorld absent;
  absent.OpenApp(kWidgetsReference);
  ASSERT_TRUE(absent.env.Files().DeleteFile(std::string(FakeEnv::kSystem) + "\\tlbinf32.dll").ok());
  EXPECT_EQ(InsertClass(absent), InsertOutcome::kAdded);
  ASSERT_EQ(absent.ui.boxes.size(), 2u);
  EXPECT_TRUE(absent.ui.boxes[0].prompt.starts_with("A reference to tlbinf32.dll (required) could not be added"));
}

TEST(InsertAlignControl, AddsOnceRenamedAndPublicInControlProjects) {
  ProjectWorld w;
  w.options.AlignControl = "Guide";
  w.OpenApp(kWidgetsReference, "Control");
  EXPECT_EQ(InsertAlignControl(w.state, w.options, w.ide), InsertOutcome::kAdded);
  // Renamed in its Begin line and VB_Name, and public.
  ExpectMatchesFile(w.env.Files().Contents("C:\\Src\\App\\Guide.ctl").value_or(""), "verify/Guide.ctl");
  EXPECT_NE(w.ProjectText().find("\r\nUserControl=Guide.ctl\r\n"), std::string::npos);
  EXPECT_EQ(InsertAlignControl(w.state, w.options, w.ide), InsertOutcome::kNothingToDo);
  EXPECT_EQ(w.ui.Prompts(), (Strings{"UserControl has been added.", "Guide already exists."}));

  ProjectWorld exe;
  exe.OpenApp("");
  ASSERT_TRUE(exe.env.Files().DeleteFile("C:\\Addin\\AlignmentHelper.ctl").ok());
  EXPECT_EQ(InsertAlignControl(exe.state, exe.options, exe.ide), InsertOutcome::kFailed);
  EXPECT_EQ(exe.ui.Prompts(), Strings{"Failed to add UserControl."});
}

// Only the marker and the name change; texts are quoted as VB needs.
TEST(VerifyTemplate, ClassTextFromTheShippedTemplate) {
  const VerifyBlock a{"Say \"A\"", "{A}", "1.0", "1.0.0.0", "C:\\A.dll"};
  const VerifyBlock b{"B", "{B}", "2.0", "2.0.0.0", "C:\\B.dll"};
  ExpectMatchesFile(GenerateVerifyClass(rt::Cp1252ToUtf8(ShippedTemplate("VerifyClassTemplate.txt")), {a, b}, "cCheck"),
                    "verify/cCheck.cls");
}

TEST(VerifyTemplate, ModuleAttributesAreReplacedOrAddedAfterTheHeader) {
  const std::string module =
      "VERSION 5.00\r\nBegin VB.UserControl X\r\n   Begin VB.Label L\r\n   End\r\nEnd\r\n"
      "Attribute VB_Name = \"X\"\r\nOption Explicit\r\n";
  EXPECT_EQ(SetModuleAttribute(module, "VB_Name", "\"Y\""),
            rt::Replace(module, "VB_Name = \"X\"", "VB_Name = \"Y\""));
  EXPECT_EQ(SetModuleAttribute(module, "VB_Exposed", "True"),
            rt::Replace(module, "\"X\"\r\n", "\"X\"\r\nAttribute VB_Exposed = True\r\n"));
  EXPECT_EQ(SetModuleAttribute("Option Explicit\r\n", "VB_Name", "\"M\""),
            "Attribute VB_Name = \"M\"\r\nOption Explicit\r\n");
}

// Runtime libraries, filtered references and tlbinf32.dll get no block; a
// broken reference is told about; a project reference is asked about and
// read from its built component; blocks take the library's name, as the IDE
// names references.
TEST(VerifyTemplate, ScanFollowsEveryReferenceRule) {
  ProjectWorld w;
  w.env.Files().AddFile("C:\\Src\\Other\\Other.vbp", "Type=OleDll\r\nName=\"Other\"\r\nExeName32=\"Other.dll\"\r\n");
  w.AddLibrary("C:\\Src\\Other\\Other.dll", "{22222222-0000-0000-0000-000000000001}", 3, 1);
  ASSERT_TRUE(w.ide.Open("C:\\Src\\Other\\Other.vbp").ok());
  w.env.Files().AddFile("C:\\Windows\\System32\\msvbvm60.dll", "MZ");
  w.OpenApp(
      "Reference=*\\G{000204EF-0000-0000-C000-000000000046}#6.0#0#C:\\Windows\\System32\\msvbvm60.dll\\3#VB\r\n"
      "Reference=*\\G{99999999-0000-0000-0000-000000000001}#1.0#0#C:\\Lib\\Missing.dll#Gone Library\r\n"
      "Reference=*\\A..\\Other\\Other.vbp\r\n"
      "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Windows\\System32\\stdole2.tlb#OLE\r\n"
      "Reference=*\\G{8B217740-717D-11CE-AB5B-D41203C10000}#1.0#0#C:\\Windows\\System32\\TLBINF32.DLL#TLI\r\n" +
      kWidgetsReference);
  std::string transcript;
  const auto scan = [&](const char* heading, int answer) {
    w.ui.boxes.clear();
    w.ui.QueueAnswer(mb::kOk);  // the broken reference's box
    w.ui.QueueAnswer(answer);
    const ReferenceScan r = ScanReferences(w.state, w.options, *w.ide.ActiveVBProject(), w.ide.VBProjects());
    transcript += std::string("== ") + heading + (r.hasTlbInf ? ", refers to tlbinf32.dll\n" : "\n");
    for (const VerifyBlock& b : r.blocks)
      transcript += b.componentName + " | " + b.guid + " | " + b.tlbVersion + " | " + b.fileVersion + " | " +
                    b.fullPath + "\n";
    for (const AskedBox& box : w.ui.boxes) transcript += std::to_string(box.style) + ": " + box.prompt + "\n";
  };
  scan("project reference accepted", mb::kYes);
  scan("declined", mb::kNo);
  ASSERT_TRUE(w.env.Files().DeleteFile("C:\\Src\\Other\\Other.dll").ok());
  scan("no built component", mb::kYes);
  ExpectMatchesFile(transcript, "verify/scan.txt");
}

}  // namespace
}  // namespace sentrune::testing
