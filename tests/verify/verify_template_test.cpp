#include "verify/verify_template.h"

#include <gtest/gtest.h>

#include "runtime/text.h"
#include "verify/verify_project_world.h"

namespace sentrune::testing {
namespace {

namespace mb = platform::mb;

TEST(VerifyTemplate, BlockLinesQuoteTheirTextsForVb) {
  const VerifyBlock block{"Say \"Hi\"", "{G}", "1.2", "2.0.3.4", "C:\\Lib\\Hi.dll"};
  EXPECT_EQ(VerifyBlockLines(block), (std::vector<std::string>{
                                         "sCompName = \"Say \"\"Hi\"\"\"",
                                         "RaiseEvent BeforeVerify(sCompName, bAborted)",
                                         "If bAborted = False Then",
                                         "lErrorCode = ProcessItem(ComponentName:= sCompName, _",
                                         "GUID:=\"{G}\", _",
                                         "MinTLBVersion:=\"1.2\", _",
                                         "MinFileVersion:=\"2.0.3.4\", _",
                                         "FullPath:=\"C:\\Lib\\Hi.dll\")",
                                         "RaiseEvent AfterVerify(sCompName, lErrorCode, bAborted)",
                                         "End If",
                                     }));
}

TEST(VerifyTemplate, ClassTextChangesOnlyTheMarkerAndTheName) {
  const std::string templateText = rt::Cp1252ToUtf8(ShippedTemplate("VerifyClassTemplate.txt"));
  ASSERT_NE(templateText.find("\r\n|||\r\n"), std::string::npos);
  const VerifyBlock a{"A", "{A}", "1.0", "1.0.0.0", "C:\\A.dll"};
  const VerifyBlock b{"B", "{B}", "2.0", "2.0.0.0", "C:\\B.dll"};
  const std::string text = GenerateVerifyClass(templateText, {a, b}, "cCheck");

  std::string calls;
  for (const VerifyBlock& block : {a, b})
    for (const std::string& line : VerifyBlockLines(block)) calls += (calls.empty() ? "" : "\r\n") + line;
  std::string expected = rt::Replace(templateText, "|||", calls);
  expected = rt::Replace(expected, "Attribute VB_Name = \"cVerifyInstallation\"", "Attribute VB_Name = \"cCheck\"");
  EXPECT_EQ(text, expected);
  EXPECT_NE(text.find("Attribute VB_Creatable = False\r\n"), std::string::npos);
  EXPECT_NE(text.find("Attribute VB_Exposed = False\r\n"), std::string::npos);
}

TEST(VerifyTemplate, ModuleAttributesAreReplacedOrAddedAfterTheHeader) {
  const std::string module =
      "VERSION 5.00\r\nBegin VB.UserControl X\r\n   Begin VB.Label L\r\n   End\r\nEnd\r\n"
      "Attribute VB_Name = \"X\"\r\nOption Explicit\r\n";
  EXPECT_EQ(SetModuleAttribute(module, "VB_Name", "\"Y\""),
            rt::Replace(module, "VB_Name = \"X\"", "VB_Name = \"Y\""));
  EXPECT_EQ(SetModuleAttribute(module, "VB_Exposed", "True"),
            rt::Replace(module, "\"X\"\r\n", "\"X\"\r\nAttribute VB_Exposed = True\r\n"));
  EXPECT_EQ(SetModuleAttribute("VERSION 1.0 CLASS\nBEGIN\n  MultiUse = -1\nEND\nOption Explicit", "VB_Name", "\"C\""),
            "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\nEND\r\nAttribute VB_Name = \"C\"\r\nOption Explicit");
  EXPECT_EQ(SetModuleAttribute("Option Explicit\r\n", "VB_Name", "\"M\""),
            "Attribute VB_Name = \"M\"\r\nOption Explicit\r\n");
}

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
      WidgetsReference());
  platform::VBProject& app = *w.ide.ActiveVBProject();

  w.ui.QueueAnswer(mb::kOk);  // the broken reference's box
  w.ui.QueueAnswer(mb::kYes);
  const ReferenceScan scan = ScanReferences(w.state, w.options, app, w.ide.VBProjects());
  EXPECT_TRUE(scan.hasTlbInf);
  ASSERT_EQ(scan.blocks.size(), 2u);
  EXPECT_EQ(scan.blocks[0].componentName, "Other");
  EXPECT_EQ(scan.blocks[0].fullPath, "C:\\Src\\Other\\Other.dll");
  EXPECT_EQ(scan.blocks[0].tlbVersion, "3.1");
  EXPECT_EQ(scan.blocks[1].componentName, "Lib");  // the library's name, as the IDE names references
  EXPECT_EQ(scan.blocks[1].guid, ProjectWorld::kWidgetsGuid);
  EXPECT_EQ(scan.blocks[1].fileVersion, "2.0.3.4");
  ASSERT_EQ(w.ui.boxes.size(), 2u);
  EXPECT_EQ(w.ui.boxes[0].prompt, "Reference to 'Missing' is broken.\r\nThis reference will be skipped.");
  EXPECT_EQ(w.ui.boxes[0].style, 64);
  EXPECT_EQ(w.ui.boxes[0].title, "Broken Reference Detected");
  EXPECT_EQ(w.ui.boxes[1].prompt,
            "Reference to project 'Other' detected.\r\nClick 'Yes' to extract compiled component's filename. "
            "Click 'No' to skip this reference.");
  EXPECT_EQ(w.ui.boxes[1].style, 68);
  EXPECT_EQ(w.ui.boxes[1].title, "Project Reference Detected");

  // Declined, or with no built component, the project reference gets no block.
  w.ui.QueueAnswer(mb::kOk);
  w.ui.QueueAnswer(mb::kNo);
  EXPECT_EQ(ScanReferences(w.state, w.options, app, w.ide.VBProjects()).blocks.size(), 1u);
  ASSERT_TRUE(w.env.Files().DeleteFile("C:\\Src\\Other\\Other.dll").ok());
  w.ui.boxes.clear();
  w.ui.QueueAnswer(mb::kOk);
  w.ui.QueueAnswer(mb::kYes);
  EXPECT_EQ(ScanReferences(w.state, w.options, app, w.ide.VBProjects()).blocks.size(), 1u);
  EXPECT_EQ(w.ui.boxes.back().prompt, "Reference 'Other' will be skipped");
}

}  // namespace
}  // namespace sentrune::testing
