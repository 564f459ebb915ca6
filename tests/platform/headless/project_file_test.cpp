// Reading project files as the IDE reads them, and saving them so that only
// the lines that changed differ from the file read.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/headless/headless_test_support.h"
#include "platform/headless/headless_ide.h"
#include "support/fake_file_system.h"
#include "support/fake_typelib_source.h"

namespace sentrune::headless::test {
namespace {

using testing::FakeFileSystem;
using Lines = std::vector<std::string>;

constexpr char kWidgets[] = "C:\\Src\\Widgets\\Widgets.vbp";
constexpr char kTiny[] = "C:\\Src\\Tiny\\Tiny.vbp";
constexpr char kDir[] = "C:\\Src\\Widgets\\";

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// The Widgets fixture with every file it names but Lost.cls and the ADO type
// library, and the Tiny fixture.
class HeadlessProjectFile : public ::testing::Test {
 protected:
  void SetUp() override {
    fs.AddFile(kWidgets, FixtureBytes("Widgets.vbp"));
    const std::pair<const char*, std::string> files[] = {
        {"Forms\\Main.frm", Source("frmMain", "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\n")},
        {"Forms\\Shell.frm", Source("mdiShell", "VERSION 5.00\r\nBegin VB.MDIForm mdiShell \r\nEnd\r\n")},
        {"Globals.bas", Source("modGlobals", "")}, {"Widget.cls", Source("Widget")}, {"Dial.ctl", Source("Dial")},
        {"DialPage.pag", Source("DialPage")}, {"Report.Dsr", Source("rptSales")},
        {"Doc.dob", "VERSION 5.00\r\n"},  // no VB_Name: named after the file
        {"Forms\\Main.frx", ""}, {"Dial.ctx", ""}, {"DialPage.pgx", ""}, {"Report.dca", ""}, {"Notes.txt", ""},
        {"Widgets.res", ""}, {"Lib\\Helpers.dll", ""}};
    for (const auto& [name, bytes] : files) fs.AddFile(kDir + std::string(name), bytes);
    for (const char* path : {"C:\\Windows\\System32\\stdole2.tlb", "C:\\Program Files\\VB98\\MSVBVM60.DLL"})
      fs.AddFile(path, "MZ");
    fs.AddFile("C:\\Src\\Gadgets\\Gadgets.vbp", "Type=OleDll\r\nName=\"GadgetLib\"\r\n");
    fs.AddFile(kTiny, FixtureBytes("Tiny.vbp"));
    fs.AddFile("C:\\Src\\Tiny\\Main.frm", Source("frmMain"));
  }
  std::shared_ptr<HeadlessProject> Open(const std::string& path) {
    auto opened = ide.Open(path);
    EXPECT_TRUE(opened.ok()) << (opened.ok() ? "" : opened.error().description);
    const auto project = opened.ok() ? opened->projects.at(0) : nullptr;
    if (project) subscription = ide.Events().FileControlEvents(project, recorder);
    return project;
  }

  FakeFileSystem fs;
  testing::FakeTypeLibSource typelibs;
  HeadlessIde ide{fs, &typelibs};
  Recorder recorder;
  std::unique_ptr<platform::Subscription> subscription;
};

struct ComponentRow {
  std::string name;
  int type;
  Lines files;
  bool operator==(const ComponentRow&) const = default;
};

struct ReferenceRow {
  std::string name, description, fullPath, guid;
  int major, minor;
  bool broken;
  int kind;
  bool operator==(const ReferenceRow&) const = default;
};

TEST_F(HeadlessProjectFile, EveryKindOfLineAndReference) {
  const auto project = Open(kWidgets);
  ASSERT_TRUE(project);
  EXPECT_EQ(project->Type(), platform::vbext_pt_ActiveXDll);
  EXPECT_EQ(project->BuildFileName(), "C:\\Src\\bin\\Widgets.dll");
  EXPECT_EQ(project->CompatibleOleServer(), "C:\\Src\\Widgets\\Compat\\Widgets.dll");
  EXPECT_EQ(project->Value("VersionCompanyName"), "Gadgets \u00a9 Ltd");
  EXPECT_EQ(project->Value("AutoRefresh"), std::nullopt) << "keys of later sections are not project keys";

  const std::string dir = kDir;
  std::vector<ComponentRow> rows;
  for (const auto& component : project->VBComponents())
    rows.push_back({component->Name(), component->Type(), component->FileNames()});
  const std::vector<ComponentRow> expected{
      {"frmMain", platform::vbext_ct_VBForm, {dir + "Forms\\Main.frm", dir + "Forms\\Main.frx"}},
      {"mdiShell", platform::vbext_ct_VBMDIForm, {dir + "Forms\\Shell.frm"}},
      {"Doc", platform::vbext_ct_DocObject, {dir + "Doc.dob"}},
      {"rptSales", platform::vbext_ct_ActiveXDesigner, {dir + "Report.Dsr", dir + "Report.dca"}},
      {"Widgets.res", platform::vbext_ct_ResFile, {dir + "Widgets.res"}},
  };
  ASSERT_EQ(rows.size(), 10u);
  for (const ComponentRow& row : expected)
    EXPECT_NE(std::find(rows.begin(), rows.end(), row), rows.end()) << row.name;
  EXPECT_EQ(project->MissingFiles(), Lines{dir + "Lost.cls"});

  ASSERT_EQ(project->Objects().size(), 2u);
  EXPECT_EQ(project->Objects()[0].version, "2.0");
  EXPECT_TRUE(project->Objects()[1].isProject);
  EXPECT_EQ(project->Objects()[1].file, "..\\Gadgets\\Gadgets.vbp");

  // References are broken exactly when their file is missing.
  std::vector<ReferenceRow> references;
  for (const auto& r : project->References())
    references.push_back({*r->Name(), *r->Description(), *r->FullPath(), *r->Guid(), *r->Major(), *r->Minor(),
                          *r->IsBroken(), *r->Type()});
  const int lib = platform::vbext_rk_TypeLib;
  const std::vector<ReferenceRow> expectedReferences{
      // A resource suffix: the module file decides.
      {"MSVBVM60", "Visual Basic runtime objects and procedures", "C:\\Program Files\\VB98\\MSVBVM60.DLL\\3",
       "{000204EF-0000-0000-C000-000000000046}", 6, 0, false, lib},
      // A stray sixth field: the path is the fourth, the description the last.
      {"msado21", "Microsoft ActiveX Data Objects 2.1 Library", "C:\\Missing\\msado21.tlb",
       "{00000201-0000-0010-8000-00AA006D2EA4}", 2, 1, true, lib},
      // Too few fields: what is there is kept, the rest is empty.
      {"", "", "", "{C79C91A4-10F5-4F71-A490-3B7915514344}", 2, 5, true, lib},
      // Versions are hexadecimal.
      {"Helpers", "Helpers", "C:\\Src\\Widgets\\Lib\\Helpers.dll", "{11111111-2222-3333-4444-555555555555}", 13,
       0, false, lib},
  };
  ASSERT_EQ(references.size(), 6u);
  for (const ReferenceRow& row : expectedReferences)
    EXPECT_NE(std::find(references.begin(), references.end(), row), references.end()) << row.guid;
  EXPECT_EQ(references[4].kind, platform::vbext_rk_Project);
}

TEST(HeadlessProjectRead, BuildFileNameFollowsPath32AndExeName32) {
  const std::pair<std::string, std::string> cases[] = {
      {"Type=Exe\r\nName=\"App\"\r\n", "C:\\Src\\App\\App.exe"},
      {"Type=Control\r\nName=\"Ctl\"\r\nPath32=\"\"\r\n", "C:\\Src\\App\\Ctl.ocx"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"D:\\Out\\.\\Bin\"\r\n", "D:\\Out\\Bin\\Tool.exe"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"..\\..\\..\\..\\Out\"\r\n", "C:\\Out\\Tool.exe"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"\\\\Server\\Share\\Out\"\r\n", "\\\\Server\\Share\\Out\\Tool.exe"},
  };
  for (const auto& [lines, expected] : cases) {
    FakeFileSystem fs;
    fs.AddFile("C:\\Src\\App\\App.vbp", lines);
    HeadlessIde ide(fs);
    const auto opened = ide.Open("C:\\Src\\App\\App.vbp");
    ASSERT_TRUE(opened.ok()) << lines;
    EXPECT_EQ(opened->projects.at(0)->BuildFileName(), expected) << lines;
  }
}

TEST(HeadlessProjectRead, UnusableProjectFilesFailNamingTheFileAndMissingComponentsAreNotFatal) {
  FakeFileSystem fs;
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 7919) % 256);
  fs.AddFile("C:\\P\\Garbage.vbp", garbage);
  fs.AddFile("C:\\P\\Odd.vbp", "Type=Applet\r\nName=\"Odd\"\r\n");
  fs.AddFile("C:\\P\\Late.vbp", "Name=\"Late\"\r\n[Section]\r\nType=Exe\r\n");
  HeadlessIde ide(fs);
  for (const std::string name : {"Garbage", "Odd", "Late", "Missing"}) {
    const std::string path = "C:\\P\\" + name + ".vbp";
    const auto opened = ide.Open(path);
    ASSERT_FALSE(opened.ok()) << path;
    EXPECT_NE(opened.error().description.find(path), std::string::npos) << opened.error().description;
  }
  EXPECT_TRUE(ide.VBProjects().empty());

  std::string lines = "Type=Exe\r\n";
  for (int i = 0; i < 10000; ++i) lines += "Class=C" + std::to_string(i) + "; Gone\\C" + std::to_string(i) + ".cls\r\n";
  fs.AddFile("C:\\P\\Hollow.vbp", lines);
  const auto opened = ide.Open("C:\\P\\Hollow.vbp");
  ASSERT_TRUE(opened.ok());
  EXPECT_EQ(opened->projects[0]->MissingFiles().size(), 10000u);
  EXPECT_EQ(opened->projects[0]->Serialize(), lines);
}

TEST_F(HeadlessProjectFile, UnchangedProjectsSaveByteForByteThroughARename) {
  for (const char* path : {kWidgets, kTiny}) {
    const auto project = Open(path);
    const std::string before = *fs.Contents(path);
    fs.ClearRecord();
    ASSERT_TRUE(project->Save().ok());
    EXPECT_EQ(*fs.Contents(path), before) << path;
    ASSERT_EQ(fs.Record().renames.size(), 1u);
    EXPECT_EQ(fs.Record().renames[0].second, path);
    EXPECT_FALSE(fs.Exists(fs.Record().renames[0].first));
  }
  EXPECT_EQ(recorder.heard, (Lines{"AfterWriteFile Widgets 3 " + std::string(kWidgets) + " 0",
                                   "AfterWriteFile Tiny 3 " + std::string(kTiny) + " 0"}));

  const auto tiny = ide.FindProject("Tiny");
  fs.AddFolder("C:\\Copies");
  ASSERT_TRUE(tiny->SaveAs("C:\\Copies\\Tiny.vbp").ok());
  EXPECT_EQ(*fs.Contents("C:\\Copies\\Tiny.vbp"), FixtureBytes("Tiny.vbp"));
  EXPECT_EQ(tiny->BuildFileName(), "C:\\Copies\\out\\Tiny.exe");
}

TEST_F(HeadlessProjectFile, CompatibilitySettingRewritesOnlyItsLines) {
  const auto project = Open(kWidgets);
  const std::string original = FixtureBytes("Widgets.vbp");
  const std::pair<std::string, std::string> cases[] = {
      {"C:\\Src\\Models\\Widgets.dll", "..\\Models\\Widgets.dll"},
      {"D:\\Models\\Widgets.dll", "D:\\Models\\Widgets.dll"},
  };
  for (const auto& [path, written] : cases) {
    ASSERT_TRUE(project->SetCompatibleOleServer(path).ok());
    EXPECT_EQ(project->CompatibleOleServer(), path);
    ASSERT_TRUE(project->Save().ok());
    const std::string expected = Replaced(original, "CompatibleMode=\"1\"", "CompatibleMode=\"2\"");
    EXPECT_EQ(*fs.Contents(kWidgets),
              Replaced(expected, "CompatibleEXE32=\"Compat\\Widgets.dll\"", "CompatibleEXE32=\"" + written + "\""));
  }
  ASSERT_TRUE(project->SetCompatibleOleServer("").ok());
  const std::string expected = Replaced(original, "CompatibleMode=\"1\"", "CompatibleMode=\"0\"");
  EXPECT_EQ(project->Serialize(), Replaced(expected, "CompatibleEXE32=\"Compat\\Widgets.dll\"\r\n", ""));

  // Missing lines follow the path block, with the file's own line breaks;
  // the [Extra] section's CompatibleMode is not the project's.
  const auto tiny = Open(kTiny);
  ASSERT_TRUE(tiny->SetCompatibleOleServer("C:\\Src\\Tiny\\Compat\\Tiny.exe").ok());
  EXPECT_NE(tiny->Serialize().find("Path32=\"out\"\nCompatibleMode=\"2\"\nCompatibleEXE32=\"Compat\\Tiny.exe\"\nName"),
            std::string::npos);
  EXPECT_TRUE(tiny->Serialize().ends_with("[Extra]\nCompatibleMode=\"1\""));
}

TEST_F(HeadlessProjectFile, AddedAndRemovedItemsTouchOnlyTheirLines) {
  const auto project = Open(kTiny);
  Recorder components;
  const auto componentEvents = ide.Events().VBComponentsEvents(project, components);
  fs.AddFile("C:\\Src\\Tiny\\cVerify.cls", Source("cVerifyInstallation"));
  fs.AddFile("C:\\Src\\Shared\\Dial.ctl", Source("AlignmentHelper"));
  fs.AddFile("C:\\Windows\\System32\\tlbinf32.dll", "MZ");
  auto info = testing::tlb::Library("TLI", "{8B217740-717D-11CE-AB5B-D41203C10000}", 1, 0);
  info.helpString = "TypeLib Information";
  typelibs.Add("C:\\Windows\\System32\\tlbinf32.dll", info);

  ASSERT_TRUE(project->AddComponentFromFile("C:\\Src\\Tiny\\cVerify.cls").ok());
  const auto added = project->AddComponentFromFile("C:\\Src\\Shared\\Dial.ctl");
  ASSERT_TRUE(added.ok());
  EXPECT_FALSE(project->AddComponentFromFile("C:\\Src\\Tiny\\cVerify.cls").ok()) << "the name is taken";
  EXPECT_FALSE(project->AddComponentFromFile("C:\\Src\\Tiny\\Nowhere.cls").ok());
  ASSERT_TRUE(project->AddReferenceFromFile("C:\\Windows\\System32\\tlbinf32.dll").ok());
  EXPECT_FALSE(project->AddReferenceFromFile("C:\\Windows\\System32\\tlbinf32.dll").ok()) << "same GUID";
  EXPECT_TRUE(project->Serialize().starts_with(
      "Type=Exe\nReference=*\\G{8B217740-717D-11CE-AB5B-D41203C10000}#1.0#0#..\\..\\Windows\\System32\\"
      "tlbinf32.dll#TypeLib Information\nForm=Main.frm\nClass=cVerifyInstallation; cVerify.cls\n"
      "UserControl=..\\Shared\\Dial.ctl\nStartup="));

  ASSERT_TRUE(project->RemoveComponent(**added).ok());
  EXPECT_FALSE(project->RemoveComponent(**added).ok());
  EXPECT_EQ(project->Serialize().find("Dial.ctl"), std::string::npos);
  EXPECT_EQ(components.heard, (Lines{"Added cVerifyInstallation", "Added AlignmentHelper", "Removed AlignmentHelper"}));
  EXPECT_EQ(recorder.heard, (Lines{"AfterAddFile Tiny 2 C:\\Src\\Tiny\\cVerify.cls",
                                   "AfterAddFile Tiny 7 C:\\Src\\Shared\\Dial.ctl",
                                   "AfterRemoveFile Tiny 7 C:\\Src\\Shared\\Dial.ctl"}));
}

TEST_F(HeadlessProjectFile, FailedWritesLeaveTheFileAndReportTheError) {
  const auto project = Open(kWidgets);
  ASSERT_TRUE(project->SetCompatibleOleServer("C:\\Src\\Widgets\\Compat\\New.dll").ok());
  const auto pathsBefore = fs.Paths();
  fs.FailNext(testing::FsOp::kRename, "", rt::errnum::kPermissionDenied);
  EXPECT_EQ(project->Save().code(), rt::errnum::kPermissionDenied);
  EXPECT_EQ(*fs.Contents(kWidgets), FixtureBytes("Widgets.vbp"));
  EXPECT_EQ(fs.Paths(), pathsBefore) << "no temporary file is left behind";
  EXPECT_EQ(recorder.heard, Lines{"AfterWriteFile Widgets 3 " + std::string(kWidgets) + " 70"});
}

}  // namespace
}  // namespace sentrune::headless::test
