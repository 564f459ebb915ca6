// The headless IDE: reading project files as the IDE reads them and saving
// them so that only the lines that changed differ from the file read; groups,
// events and menus; and real projects written by others, read in place
// through the host's file system, each opening and serializing unchanged.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/headless/headless_ide.h"
#include "platform/headless/headless_project.h"
#include "platform/ide.h"
#include "support/expected_file.h"
#include "support/fake_file_system.h"
#include "support/fake_typelib_source.h"
#include "support/host_drive.h"
#include "support/host_files.h"

namespace sentrune::headless::test {
namespace {

namespace hostfs = std::filesystem;
using testing::FakeFileSystem;
using Lines = std::vector<std::string>;

using testing::ReadHostFile;
std::string FixtureBytes(const std::string& name) { return ReadHostFile(testing::FixtureFolder() / "vbp" / name); }
// Every file of a folder of tests/fixtures/vbp, at `to` in the fake.
void AddFixtureTree(FakeFileSystem& fs, const std::string& name, const std::string& to) {
  const hostfs::path from = testing::FixtureFolder() / "vbp" / name;
  for (const auto& entry : hostfs::recursive_directory_iterator(from))
    if (entry.is_regular_file()) fs.AddFile(to + "/" + relative(entry.path(), from).string(), ReadHostFile(entry));
}

// A component source file as the IDE writes one.
std::string Source(const std::string& vbName, const std::string& header = "VERSION 1.0 CLASS\r\n") {
  return header + "Attribute VB_Name = \"" + vbName + "\"\r\nOption Explicit\r\n";
}

// A project as the add-in sees it, one line per component, object and
// reference, to compare with a committed copy.
std::string Describe(HeadlessProject& project) {
  std::string out = project.Name() + " type " + std::to_string(project.Type()) + " builds " +
                    project.BuildFileName() + " compatible " + project.CompatibleOleServer() + "\n";
  for (const auto& component : project.VBComponents()) {
    out += "component " + component->Name() + " type " + std::to_string(component->Type());
    for (const std::string& file : component->FileNames()) out += " " + file;
    out += "\n";
  }
  for (const std::string& file : project.MissingFiles()) out += "missing " + file + "\n";
  for (const ObjectLine& o : project.Objects())
    out += "object " + (o.isProject ? std::string("project") : o.guid + " " + o.version) + " " + o.file + "\n";
  for (const auto& r : project.References()) {
    out += "reference type " + std::to_string(*r->Type()) + (*r->IsBroken() ? " broken " : " ") + *r->Name() + " " +
           *r->Guid() + " " + std::to_string(*r->Major()) + "." + std::to_string(*r->Minor()) + " " +
           *r->FullPath() + " \"" + *r->Description() + "\"\n";
  }
  return out;
}

// Every event as one line of text, so a test compares what arrived in order.
class Recorder : public platform::VBProjectsEventsSink,
                 public platform::VBComponentsEventsSink,
                 public platform::FileControlEventsSink,
                 public platform::CommandBarEventsSink {
 public:
  std::vector<std::string> heard;
  bool cancelWrites = false;

  void ItemAdded(const platform::ProjectPtr& p) override { heard.push_back("ProjectAdded " + p->Name()); }
  void ItemRemoved(const platform::ProjectPtr& p) override { heard.push_back("ProjectRemoved " + p->Name()); }
  void ItemActivated(const platform::ProjectPtr& p) override { heard.push_back("ProjectActivated " + p->Name()); }
  void ItemAdded(const platform::ComponentPtr& c) override { heard.push_back("Added " + c->Name()); }
  void ItemRemoved(const platform::ComponentPtr& c) override { heard.push_back("Removed " + c->Name()); }
  void ItemSelected(const platform::ComponentPtr& c) override { heard.push_back("Selected " + c->Name()); }
  void ItemActivated(const platform::ComponentPtr& c) override { heard.push_back("Activated " + c->Name()); }
  void AfterAddFile(const platform::ProjectPtr& p, int type, const std::string& file) override {
    heard.push_back("AfterAddFile " + p->Name() + " " + std::to_string(type) + " " + file);
  }
  void AfterRemoveFile(const platform::ProjectPtr& p, int type, const std::string& file) override {
    heard.push_back("AfterRemoveFile " + p->Name() + " " + std::to_string(type) + " " + file);
  }
  void AfterWriteFile(const platform::ProjectPtr& p, int type, const std::string& file, int16_t result) override {
    heard.push_back("AfterWriteFile " + p->Name() + " " + std::to_string(type) + " " + file + " " +
                    std::to_string(result));
  }
  void RequestWriteFile(const platform::ProjectPtr& p, const std::string& file, bool& cancel) override {
    heard.push_back("RequestWriteFile " + p->Name() + " " + file);
    cancel = cancelWrites;
  }
  void Click(const platform::ControlPtr& control, bool& handled, bool&) override {
    heard.push_back("Click " + control->Caption());
    handled = true;
  }
};

constexpr char kWidgets[] = "C:\\Src\\Widgets\\Widgets.vbp";
constexpr char kTiny[] = "C:\\Src\\Tiny\\Tiny.vbp";

// fixtures/vbp/Src as C:\Src: Widgets.vbp with every file it names but
// Lost.cls and the ADO type library, Gadgets.vbp, and Tiny.vbp.
class HeadlessProjectFile : public ::testing::Test {
 protected:
  void SetUp() override {
    AddFixtureTree(fs, "Src", "C:\\Src");
    for (const char* path : {"C:\\Windows\\System32\\stdole2.tlb", "C:\\Program Files\\VB98\\MSVBVM60.DLL"})
      fs.AddFile(path, "MZ");
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

// What to look for in the copy: a reference path with a resource suffix (the
// module file decides whether it is broken), one with a stray sixth field (the
// path is the fourth, the description the last), one with too few fields (what
// is there is kept), a hexadecimal version, and a .dob without VB_Name (named
// after its file).
TEST_F(HeadlessProjectFile, EveryKindOfLineAndReference) {
  const auto project = Open(kWidgets);
  ASSERT_TRUE(project);
  testing::ExpectMatchesFile(Describe(*project), "vbp/Widgets.read.txt");
  EXPECT_EQ(project->Value("VersionCompanyName"), "Gadgets \u00a9 Ltd");
  EXPECT_EQ(project->Value("AutoRefresh"), std::nullopt) << "keys of later sections are not project keys";
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
  EXPECT_EQ(*fs.Contents("C:\\Copies\\Tiny.vbp"), FixtureBytes("Src/Tiny/Tiny.vbp"));
  EXPECT_EQ(tiny->BuildFileName(), "C:\\Copies\\out\\Tiny.exe");
}

// Each copy differs from Widgets.vbp in the two compatibility lines alone: a
// path on the project's drive is written relative, an empty one drops its line.
TEST_F(HeadlessProjectFile, CompatibilitySettingRewritesOnlyItsLines) {
  const auto project = Open(kWidgets);
  const std::pair<std::string, std::string> cases[] = {
      {"C:\\Src\\Models\\Widgets.dll", "relative"}, {"D:\\Models\\Widgets.dll", "other-drive"}, {"", "none"}};
  for (const auto& [path, copy] : cases) {
    ASSERT_TRUE(project->SetCompatibleOleServer(path).ok());
    EXPECT_EQ(project->CompatibleOleServer(), path);
    ASSERT_TRUE(project->Save().ok());
    testing::ExpectMatchesFile(*fs.Contents(kWidgets), "vbp/Widgets.compatible-" + copy + ".vbp");
  }
  // Missing lines follow the path block, with the file's own line breaks;
  // the [Extra] section's CompatibleMode is not the project's.
  const auto tiny = Open(kTiny);
  ASSERT_TRUE(tiny->SetCompatibleOleServer("C:\\Src\\Tiny\\Compat\\Tiny.exe").ok());
  testing::ExpectMatchesFile(tiny->Serialize(), "vbp/Tiny.compatible.vbp");
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
  testing::ExpectMatchesFile(project->Serialize(), "vbp/Tiny.added.vbp");

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
  fs.FailNext(testing::FsOp::kRename, "", rt::errnum::kPermissionDenied);
  EXPECT_EQ(project->Save().code(), rt::errnum::kPermissionDenied);
  EXPECT_EQ(*fs.Contents(kWidgets), FixtureBytes("Src/Widgets/Widgets.vbp"));
  ASSERT_EQ(fs.Record().written.size(), 1u);
  EXPECT_FALSE(fs.Exists(fs.Record().written[0])) << "no temporary file is left behind";
  EXPECT_EQ(recorder.heard, Lines{"AfterWriteFile Widgets 3 " + std::string(kWidgets) + " 70"});
}

// fixtures/vbp/G as C:\G: a group of two projects, the second referencing the
// first, plus a member that is missing.
class HeadlessGroup : public ::testing::Test {
 protected:
  HeadlessGroup() { AddFixtureTree(fs, "G", "C:\\G"); }
  FakeFileSystem fs;
  std::unique_ptr<HeadlessIde> ide = std::make_unique<HeadlessIde>(fs);
};

TEST_F(HeadlessGroup, OpenEveryMemberAndActivateTheStartupProject) {
  Recorder projects;
  const auto subscription = ide->Events().VBProjectsEvents(projects);
  const auto opened = ide->Open("C:\\G\\Suite.vbg");
  ASSERT_TRUE(opened.ok());
  ASSERT_EQ(opened->projects.size(), 2u);
  ASSERT_EQ(opened->problems.size(), 1u);
  EXPECT_NE(opened->problems[0].description.find("C:\\G\\Gone\\Gone.vbp"), std::string::npos);
  EXPECT_EQ(ide->ActiveVBProject(), opened->projects[1]);
  EXPECT_EQ(projects.heard, (Lines{"ProjectAdded CoreLib", "ProjectAdded App", "ProjectActivated App"}));

  // A project reference takes the name of the open project it points to.
  const auto app = ide->FindProject("app");
  ASSERT_TRUE(ide->RenameProject(ide->FindProject("CoreLib"), "Core").ok());
  EXPECT_EQ(*app->References()[0]->Name(), "Core");

  projects.heard.clear();
  ASSERT_TRUE(ide->Open("C:\\G\\Suite.vbg").ok());
  EXPECT_EQ(ide->VBProjects().size(), 2u);
  EXPECT_EQ(projects.heard, Lines{}) << "opening the group again opens nothing new";
  fs.AddFile("C:\\G\\Bad.vbg", "Project=Lib\\Lib.vbp\r\n");
  EXPECT_FALSE(ide->Open("C:\\G\\Bad.vbg").ok());
}

TEST_F(HeadlessGroup, ProjectEventsReachOnlyTheirOwnSinks) {
  ASSERT_TRUE(ide->Open("C:\\G\\Suite.vbg").ok());
  const auto lib = ide->FindProject("CoreLib");
  const auto app = ide->FindProject("App");
  Recorder libSink, appSink;
  auto libComponents = ide->Events().VBComponentsEvents(lib, libSink);
  auto libFiles = ide->Events().FileControlEvents(lib, libSink);
  auto appComponents = ide->Events().VBComponentsEvents(app, appSink);
  auto appFiles = ide->Events().FileControlEvents(app, appSink);

  const auto thing = lib->VBComponents()[0];
  ASSERT_TRUE(ide->SelectComponent(thing).ok());
  ASSERT_TRUE(ide->ActivateComponent(app->VBComponents()[0]).ok());
  EXPECT_EQ(ide->ActiveWindow()->Caption(), "App - Main (Code)");
  appSink.cancelWrites = true;
  EXPECT_TRUE(*ide->FireRequestWriteFile(app, "C:\\G\\App\\App.exe"));
  EXPECT_FALSE(*ide->FireRequestWriteFile(lib, "C:\\G\\Lib\\CoreLib.dll"));
  EXPECT_EQ(libSink.heard, (Lines{"Selected Thing", "RequestWriteFile CoreLib C:\\G\\Lib\\CoreLib.dll"}));
  EXPECT_EQ(appSink.heard, (Lines{"Activated Main", "RequestWriteFile App C:\\G\\App\\App.exe"}));

  // Ending a subscription ends the events, the other kind goes on.
  libSink.heard.clear();
  libComponents.reset();
  ASSERT_TRUE(ide->SelectComponent(thing).ok());
  ASSERT_TRUE(lib->Save().ok());
  EXPECT_EQ(libSink.heard, (Lines{"AfterWriteFile CoreLib 3 C:\\G\\Lib\\Lib.vbp 0"}));

  // A closed project raises nothing and takes no new sinks.
  ASSERT_TRUE(ide->Close(lib).ok());
  libSink.heard.clear();
  EXPECT_FALSE(ide->FireAfterWriteFile(lib, platform::vbext_ft_Exe, "x", 0).ok());
  ASSERT_TRUE(lib->Save().ok());
  EXPECT_EQ(libSink.heard, Lines{});
  EXPECT_EQ(ide->Events().FileControlEvents(lib, libSink), nullptr);
  EXPECT_EQ(ide->SelectedVBComponent(), nullptr) << "the selected component left with its project";
}

// Unsubscribes another sink from inside a handler.
class Dropper : public platform::VBComponentsEventsSink {
 public:
  std::unique_ptr<platform::Subscription>* victim = nullptr;
  void ItemSelected(const platform::ComponentPtr&) override { victim->reset(); }
};

TEST_F(HeadlessGroup, SinksMayUnsubscribeDuringDeliveryAndAfterTheIdeIsGone) {
  ASSERT_TRUE(ide->Open("C:\\G\\Lib\\Lib.vbp").ok());
  const auto lib = ide->FindProject("CoreLib");
  Dropper dropper;
  Recorder late;
  auto first = ide->Events().VBComponentsEvents(lib, dropper);
  auto second = ide->Events().VBComponentsEvents(lib, late);
  dropper.victim = &second;
  ASSERT_TRUE(ide->SelectComponent(lib->VBComponents()[0]).ok());
  EXPECT_EQ(late.heard, Lines{});
  ide.reset();
  first.reset();
}

TEST(HeadlessIdeMenus, ClickingOpensEachMenuOnTheWay) {
  FakeFileSystem fs;
  HeadlessIde ide(fs);
  const auto popup = *ide.CommandBars()->Item("add-ins")->Controls()->Add(platform::msoControlPopup);
  popup->SetCaption("&Sentrune");
  const auto options = *popup->Controls()->Add(platform::msoControlButton);
  options->SetCaption("Sentrune &Options");
  const auto about = *popup->Controls()->Add(platform::msoControlButton);
  about->SetCaption("Abo&ut");
  Recorder clicks;
  const auto onPopup = ide.Events().CommandBarEvents(popup, clicks);
  const auto onOptions = ide.Events().CommandBarEvents(options, clicks);

  EXPECT_TRUE(*ide.ClickMenu({"Sentrune", "sentrune options"}));
  EXPECT_FALSE(*ide.ClickMenu({"Sentrune", "About"})) << "nobody handles About";
  EXPECT_EQ(clicks.heard, (Lines{"Click &Sentrune", "Click Sentrune &Options", "Click &Sentrune"}));
  // Disabled and missing items are in tests/host, through the add-in's menu.

  ASSERT_TRUE(popup->Delete().ok());
  EXPECT_FALSE(popup->Delete().ok());
  EXPECT_EQ(ide.Events().CommandBarEvents(options, clicks), nullptr) << "items of a deleted menu are gone too";
  EXPECT_FALSE(popup->Controls()->Add(platform::msoControlButton).ok());
}


// Real projects written by others, read in place through the host's file
// system; skipped where the corpus is not there.
class HeadlessCorpus : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!hostfs::is_directory(root_)) GTEST_SKIP() << "no corpus at " << root_;
    // Paths that climb out of a project stop at S:\ and never reach the
    // rest of the machine.
    files_ = testing::HostDriveFileSystem('S', root_);
  }

  // Corpus files with this extension (any case), relative, in a fixed order.
  std::vector<hostfs::path> Find(std::string_view extension) const {
    std::vector<hostfs::path> found;
    for (const hostfs::path& file : testing::CorpusFiles({extension}))
      found.push_back(file.lexically_normal().lexically_relative(root_.lexically_normal()));
    return found;
  }
  static std::string Windows(const hostfs::path& relative) { return "S:\\" + testing::Backslashed(relative); }
  std::shared_ptr<HeadlessProject> OpenProject(HeadlessIde& ide, const std::string& relative) {
    auto opened = ide.Open(Windows(relative));
    EXPECT_TRUE(opened.ok()) << relative << ": " << (opened.ok() ? "" : opened.error().description);
    return opened.ok() ? opened->projects.at(0) : nullptr;
  }

  const hostfs::path root_ = testing::CorpusFolder();
  std::unique_ptr<platform::FileSystem> files_;
};

TEST_F(HeadlessCorpus, EveryProjectOpensAndSerializesUnchanged) {
  const auto projects = Find(".vbp");
  EXPECT_GE(projects.size(), 23u);
  for (const hostfs::path& relative : projects) {
    HeadlessIde ide(*files_);
    const auto project = OpenProject(ide, relative.string());
    if (!project) continue;
    // Every component file is found (whatever the case of its name) but the
    // one that a stale 8.3 path places outside the repository.
    for (const std::string& missing : project->MissingFiles())
      EXPECT_NE(missing.find("\\PROGRA~2\\"), std::string::npos) << relative << ": " << missing;
    EXPECT_EQ(project->Serialize(), ReadHostFile(root_ / relative)) << relative;
  }
}

TEST_F(HeadlessCorpus, EveryGroupOpens) {
  const auto groups = Find(".vbg");
  EXPECT_GE(groups.size(), 7u);
  for (const hostfs::path& relative : groups) {
    HeadlessIde ide(*files_);
    const auto opened = ide.Open(Windows(relative));
    ASSERT_TRUE(opened.ok()) << relative;
    // The one group naming its member by a stale 8.3 path reports it and
    // goes on; every other member opens.
    const bool stale = relative.string().find("CSWindow") != std::string::npos;
    EXPECT_EQ(opened->problems.size(), stale ? 1u : 0u) << relative;
    EXPECT_EQ(opened->projects.empty(), stale) << relative;
    EXPECT_EQ(ide.ActiveVBProject() == nullptr, stale) << relative;
  }
}

TEST_F(HeadlessCorpus, OdditiesReadAsTheIdeReadsThem) {
  HeadlessIde ide(*files_);
  // A UNC output folder and a type library named by a resource index: the
  // module file alone decides whether it is broken, and only Windows has it.
  const auto midi = OpenProject(ide, "KieuManh1974-vb6misc/Midi/midi.vbp");
  ASSERT_TRUE(midi);
  EXPECT_EQ(midi->BuildFileName(), "\\\\Vboxsvr\\c_drive\\Development\\Programming\\Midi\\midi.exe");
  EXPECT_EQ(*midi->References()[1]->IsBroken(), !files_->GetAttributes("C:\\WINDOWS\\system32\\ieframe.dll").ok());

  // Folder names whose case differs from the disk still resolve.
  const auto fcgi = OpenProject(ide, "jpbro-VbFcgi/src/VbFcgiAppDemo/VbFcgiApp.vbp");
  ASSERT_TRUE(fcgi);
  EXPECT_TRUE(fcgi->MissingFiles().empty());
  const auto lib = fcgi->References()[2];
  EXPECT_EQ(*lib->Major(), 13);
  EXPECT_FALSE(*lib->IsBroken());
  EXPECT_EQ(fcgi->CompatibleOleServer(), "S:\\jpbro-VbFcgi\\bin\\VbFcgiApp.dll");
  const auto csWindow = OpenProject(ide, "guille-phillips-vb6projects/Code Summary/CSWindow/CSWindow.vbp");
  ASSERT_TRUE(csWindow);
  EXPECT_TRUE(files_->GetAttributes(csWindow->CompatibleOleServer()).ok());

  // Six "#" fields, no ExeName32, and a trailing section.
  const auto server = OpenProject(ide, "RizkyKhapidsyah-Sample-ActiveX-Exe-Server_v1.0__VB6/MyServer.vbp");
  ASSERT_TRUE(server);
  EXPECT_EQ(*server->References()[0]->FullPath(), "C:\\Windows\\SysWOW64\\stdole2.tlb");
  EXPECT_EQ(server->BuildFileName(), "S:\\RizkyKhapidsyah-Sample-ActiveX-Exe-Server_v1.0__VB6\\MyServer.exe");

  // An 8.3 path that climbs out of the repository is a missing component.
  const auto names = OpenProject(ide, "KieuManh1974-vb6misc/Media Name Standardiser/StandardNames.vbp");
  ASSERT_TRUE(names);
  EXPECT_EQ(names->MissingFiles().size(), 1u);
}

}  // namespace
}  // namespace sentrune::headless::test
