// Reading project files as the IDE reads them.
#include <gtest/gtest.h>

#include "support/fake_file_system.h"
#include "headless/headless_test_support.h"
#include "platform/headless/headless_ide.h"

namespace sentrune::headless::test {
namespace {

using platform::vbext_ct_ActiveXDesigner;
using testing::FakeFileSystem;

constexpr char kWidgets[] = "C:\\Src\\Widgets\\Widgets.vbp";

// The Widgets fixture with every file it names, except Lost.cls and the
// ADO type library.
void AddWidgets(FakeFileSystem& fs) {
  fs.AddFile(kWidgets, FixtureBytes("Widgets.vbp"));
  const std::string dir = "C:\\Src\\Widgets\\";
  fs.AddFile(dir + "Forms\\Main.frm", Source("frmMain", "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\n"));
  fs.AddFile(dir + "Forms\\Main.frx", "binary");
  fs.AddFile(dir + "Forms\\Shell.frm", Source("mdiShell", "VERSION 5.00\r\nBegin VB.MDIForm mdiShell \r\nEnd\r\n"));
  fs.AddFile(dir + "Globals.bas", Source("modGlobals", ""));
  fs.AddFile(dir + "Widget.cls", Source("Widget"));
  fs.AddFile(dir + "Dial.ctl", Source("Dial"));
  fs.AddFile(dir + "Dial.ctx", "binary");
  fs.AddFile(dir + "DialPage.pag", Source("DialPage"));
  fs.AddFile(dir + "DialPage.pgx", "binary");
  fs.AddFile(dir + "Doc.dob", "VERSION 5.00\r\n");  // no VB_Name: named after the file
  fs.AddFile(dir + "Report.Dsr", Source("rptSales"));
  fs.AddFile(dir + "Report.dca", "cache");
  fs.AddFile(dir + "Notes.txt", "notes");
  fs.AddFile(dir + "Widgets.res", "res");
  fs.AddFile(dir + "Lib\\Helpers.dll", "MZ");
  fs.AddFile("C:\\Windows\\System32\\stdole2.tlb", "tlb");
  fs.AddFile("C:\\Program Files\\VB98\\MSVBVM60.DLL", "MZ");
  fs.AddFile("C:\\Src\\Gadgets\\Gadgets.vbp", "Type=OleDll\r\nName=\"GadgetLib\"\r\n");
}

std::shared_ptr<HeadlessProject> OpenOne(HeadlessIde& ide, const std::string& path) {
  auto opened = ide.Open(path);
  EXPECT_TRUE(opened.ok()) << (opened.ok() ? "" : opened.error().description);
  return opened.ok() ? opened->projects.at(0) : nullptr;
}

struct ComponentRow {
  std::string name;
  int type;
  std::vector<std::string> files;
  bool operator==(const ComponentRow&) const = default;
};

TEST(HeadlessProjectRead, EveryKindOfLine) {
  FakeFileSystem fs;
  AddWidgets(fs);
  HeadlessIde ide(fs);
  const auto project = OpenOne(ide, kWidgets);
  ASSERT_TRUE(project);

  EXPECT_EQ(project->Name(), "Widgets");
  EXPECT_EQ(project->Type(), platform::vbext_pt_ActiveXDll);
  EXPECT_EQ(project->FileName(), kWidgets);
  EXPECT_EQ(project->BuildFileName(), "C:\\Src\\bin\\Widgets.dll");
  EXPECT_EQ(project->CompatibleOleServer(), "C:\\Src\\Widgets\\Compat\\Widgets.dll");
  EXPECT_EQ(project->Value("VersionCompanyName"), "Gadgets \u00a9 Ltd");
  EXPECT_EQ(project->Value("FavorPentiumPro(tm)"), "0");
  EXPECT_EQ(project->Value("AutoRefresh"), std::nullopt) << "keys of later sections are not project keys";

  const std::string dir = "C:\\Src\\Widgets\\";
  std::vector<ComponentRow> rows;
  for (const auto& component : project->VBComponents())
    rows.push_back({component->Name(), component->Type(), component->FileNames()});
  const std::vector<ComponentRow> expected{
      {"frmMain", platform::vbext_ct_VBForm, {dir + "Forms\\Main.frm", dir + "Forms\\Main.frx"}},
      {"mdiShell", platform::vbext_ct_VBMDIForm, {dir + "Forms\\Shell.frm"}},
      {"modGlobals", platform::vbext_ct_StdModule, {dir + "Globals.bas"}},
      {"Widget", platform::vbext_ct_ClassModule, {dir + "Widget.cls"}},
      {"Dial", platform::vbext_ct_UserControl, {dir + "Dial.ctl", dir + "Dial.ctx"}},
      {"DialPage", platform::vbext_ct_PropPage, {dir + "DialPage.pag", dir + "DialPage.pgx"}},
      {"Doc", platform::vbext_ct_DocObject, {dir + "Doc.dob"}},
      {"rptSales", vbext_ct_ActiveXDesigner, {dir + "Report.Dsr", dir + "Report.dca"}},
      {"Notes.txt", platform::vbext_ct_RelatedDocument, {dir + "Notes.txt"}},
      {"Widgets.res", platform::vbext_ct_ResFile, {dir + "Widgets.res"}},
  };
  EXPECT_EQ(rows, expected);
  EXPECT_EQ(project->MissingFiles(), std::vector<std::string>{dir + "Lost.cls"});

  ASSERT_EQ(project->Objects().size(), 2u);
  EXPECT_EQ(project->Objects()[0].guid, "{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}");
  EXPECT_EQ(project->Objects()[0].version, "2.0");
  EXPECT_EQ(project->Objects()[0].file, "MSCOMCTL.OCX");
  EXPECT_TRUE(project->Objects()[1].isProject);
  EXPECT_EQ(project->Objects()[1].file, "..\\Gadgets\\Gadgets.vbp");
}

struct ReferenceRow {
  std::string name, description, fullPath, guid;
  int major, minor;
  bool broken;
  int kind;
  bool operator==(const ReferenceRow&) const = default;
};

std::vector<ReferenceRow> Rows(platform::VBProject& project) {
  std::vector<ReferenceRow> rows;
  for (const auto& r : project.References())
    rows.push_back({*r->Name(), *r->Description(), *r->FullPath(), *r->Guid(), *r->Major(), *r->Minor(),
                    *r->IsBroken(), *r->Type()});
  return rows;
}

TEST(HeadlessProjectRead, ReferencesAreBrokenExactlyWhenTheirFileIsMissing) {
  FakeFileSystem fs;
  AddWidgets(fs);
  HeadlessIde ide(fs);
  const auto project = OpenOne(ide, kWidgets);
  ASSERT_TRUE(project);
  const int lib = platform::vbext_rk_TypeLib;
  const std::vector<ReferenceRow> expected{
      // ".." climbs from the project folder; the drive root stops it.
      {"stdole2", "OLE Automation", "C:\\Windows\\System32\\stdole2.tlb", "{00020430-0000-0000-C000-000000000046}",
       2, 0, false, lib},
      // A resource suffix: the module file decides.
      {"MSVBVM60", "Visual Basic runtime objects and procedures", "C:\\Program Files\\VB98\\MSVBVM60.DLL\\3",
       "{000204EF-0000-0000-C000-000000000046}", 6, 0, false, lib},
      // A stray sixth field: the path is the fourth, the description the last.
      {"msado21", "Microsoft ActiveX Data Objects 2.1 Library", "C:\\Missing\\msado21.tlb",
       "{00000201-0000-0010-8000-00AA006D2EA4}", 2, 1, true, lib},
      // Too few fields: what is there is kept, the rest is empty.
      {"", "", "", "{C79C91A4-10F5-4F71-A490-3B7915514344}", 2, 5, true, lib},
      {"Gadgets", "", "C:\\Src\\Gadgets\\Gadgets.vbp", "", 0, 0, false, platform::vbext_rk_Project},
      // Versions are hexadecimal.
      {"Helpers", "Helpers", "C:\\Src\\Widgets\\Lib\\Helpers.dll", "{11111111-2222-3333-4444-555555555555}", 13,
       0, false, lib},
  };
  EXPECT_EQ(Rows(*project), expected);

  fs.AddFile("C:\\Missing\\msado21.tlb", "tlb");
  ASSERT_TRUE(ide.Close(project).ok());
  const auto reopened = OpenOne(ide, kWidgets);
  EXPECT_FALSE(*reopened->References()[2]->IsBroken());
}

TEST(HeadlessProjectRead, BuildFileNameFollowsPath32AndExeName32) {
  struct Case {
    std::string lines;
    std::string expected;
  };
  const std::vector<Case> cases{
      {"Type=Exe\r\nName=\"App\"\r\n", "C:\\Src\\App\\App.exe"},
      {"Type=OleExe\r\nName=\"Srv\"\r\n", "C:\\Src\\App\\Srv.exe"},
      {"Type=OleDll\r\nName=\"Lib\"\r\nPath32=\"\"\r\n", "C:\\Src\\App\\Lib.dll"},
      {"Type=Control\r\nName=\"Ctl\"\r\n", "C:\\Src\\App\\Ctl.ocx"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"D:\\Out\\.\\Bin\"\r\n", "D:\\Out\\Bin\\Tool.exe"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"..\\..\\..\\..\\Out\"\r\n", "C:\\Out\\Tool.exe"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"\\Out\"\r\n", "C:\\Out\\Tool.exe"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"\\\\Server\\Share\\Out\"\r\n", "\\\\Server\\Share\\Out\\Tool.exe"},
      {"Type=Exe\r\nExeName32=\"Tool.exe\"\r\nPath32=\"..\\Build\\\"\r\n", "C:\\Src\\Build\\Tool.exe"},
  };
  for (const Case& c : cases) {
    FakeFileSystem fs;
    fs.AddFile("C:\\Src\\App\\App.vbp", c.lines);
    HeadlessIde ide(fs);
    const auto project = OpenOne(ide, "C:\\Src\\App\\App.vbp");
    ASSERT_TRUE(project);
    EXPECT_EQ(project->BuildFileName(), c.expected) << c.lines;
  }
}

TEST(HeadlessProjectRead, UnusableProjectFilesFailNamingTheFile) {
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
}

TEST(HeadlessProjectRead, TenThousandMissingFilesAreReportedNotFatal) {
  std::string lines = "Type=Exe\r\n";
  for (int i = 0; i < 10000; ++i) lines += "Class=C" + std::to_string(i) + "; Gone\\C" + std::to_string(i) + ".cls\r\n";
  lines += "Name=\"Hollow\"\r\n";
  FakeFileSystem fs;
  fs.AddFile("C:\\P\\Hollow.vbp", lines);
  HeadlessIde ide(fs);
  const auto project = OpenOne(ide, "C:\\P\\Hollow.vbp");
  ASSERT_TRUE(project);
  EXPECT_TRUE(project->VBComponents().empty());
  ASSERT_EQ(project->MissingFiles().size(), 10000u);
  EXPECT_EQ(project->MissingFiles().back(), "C:\\P\\Gone\\C9999.cls");
  EXPECT_EQ(project->Serialize(), lines);
}

}  // namespace
}  // namespace sentrune::headless::test
