// The headless IDE's events, groups and menus.
#include <gtest/gtest.h>

#include "platform/headless/headless_test_support.h"
#include "platform/headless/headless_ide.h"
#include "support/fake_file_system.h"

namespace sentrune::headless::test {
namespace {

using testing::FakeFileSystem;
using Lines = std::vector<std::string>;

// A group of two projects, the second referencing the first, plus a member
// that is missing.
void AddGroup(FakeFileSystem& fs) {
  fs.AddFile("C:\\G\\Suite.vbg",
             "VBGROUP 5.0\r\nProject=Lib\\Lib.vbp\r\nProject=Gone\\Gone.vbp\r\nStartupProject=App\\App.vbp\r\n");
  fs.AddFile("C:\\G\\Lib\\Lib.vbp", "Type=OleDll\r\nClass=Thing; Thing.cls\r\nName=\"CoreLib\"\r\n");
  fs.AddFile("C:\\G\\Lib\\Thing.cls", Source("Thing"));
  fs.AddFile("C:\\G\\App\\App.vbp", "Type=Exe\r\nReference=*\\A..\\Lib\\Lib.vbp\r\nModule=Main; Main.bas\r\nName=\"App\"\r\n");
  fs.AddFile("C:\\G\\App\\Main.bas", Source("Main", ""));
}

TEST(HeadlessIdeGroups, OpenEveryMemberAndActivateTheStartupProject) {
  FakeFileSystem fs;
  AddGroup(fs);
  HeadlessIde ide(fs);
  Recorder projects;
  const auto subscription = ide.Events().VBProjectsEvents(projects);
  const auto opened = ide.Open("C:\\G\\Suite.vbg");
  ASSERT_TRUE(opened.ok());
  ASSERT_EQ(opened->projects.size(), 2u);
  ASSERT_EQ(opened->problems.size(), 1u);
  EXPECT_NE(opened->problems[0].description.find("C:\\G\\Gone\\Gone.vbp"), std::string::npos);
  EXPECT_EQ(ide.ActiveVBProject(), opened->projects[1]);
  EXPECT_EQ(projects.heard, (Lines{"ProjectAdded CoreLib", "ProjectAdded App", "ProjectActivated App"}));

  // A project reference takes the name of the open project it points to.
  const auto app = ide.FindProject("app");
  ASSERT_TRUE(ide.RenameProject(ide.FindProject("CoreLib"), "Core").ok());
  EXPECT_EQ(*app->References()[0]->Name(), "Core");

  projects.heard.clear();
  ASSERT_TRUE(ide.Open("C:\\G\\Suite.vbg").ok());
  EXPECT_EQ(ide.VBProjects().size(), 2u);
  EXPECT_EQ(projects.heard, Lines{}) << "opening the group again opens nothing new";
  fs.AddFile("C:\\G\\Bad.vbg", "Project=Lib\\Lib.vbp\r\n");
  EXPECT_FALSE(ide.Open("C:\\G\\Bad.vbg").ok());
}

TEST(HeadlessIdeEvents, ProjectEventsReachOnlyTheirOwnSinks) {
  FakeFileSystem fs;
  AddGroup(fs);
  HeadlessIde ide(fs);
  ASSERT_TRUE(ide.Open("C:\\G\\Suite.vbg").ok());
  const auto lib = ide.FindProject("CoreLib");
  const auto app = ide.FindProject("App");
  Recorder libSink, appSink;
  auto libComponents = ide.Events().VBComponentsEvents(lib, libSink);
  auto libFiles = ide.Events().FileControlEvents(lib, libSink);
  auto appComponents = ide.Events().VBComponentsEvents(app, appSink);
  auto appFiles = ide.Events().FileControlEvents(app, appSink);

  const auto thing = lib->VBComponents()[0];
  ASSERT_TRUE(ide.SelectComponent(thing).ok());
  ASSERT_TRUE(ide.ActivateComponent(app->VBComponents()[0]).ok());
  EXPECT_EQ(ide.ActiveWindow()->Caption(), "App - Main (Code)");
  appSink.cancelWrites = true;
  EXPECT_TRUE(*ide.FireRequestWriteFile(app, "C:\\G\\App\\App.exe"));
  EXPECT_FALSE(*ide.FireRequestWriteFile(lib, "C:\\G\\Lib\\CoreLib.dll"));
  EXPECT_EQ(libSink.heard, (Lines{"Selected Thing", "RequestWriteFile CoreLib C:\\G\\Lib\\CoreLib.dll"}));
  EXPECT_EQ(appSink.heard, (Lines{"Activated Main", "RequestWriteFile App C:\\G\\App\\App.exe"}));

  // Ending a subscription ends the events, the other kind goes on.
  libSink.heard.clear();
  libComponents.reset();
  ASSERT_TRUE(ide.SelectComponent(thing).ok());
  ASSERT_TRUE(lib->Save().ok());
  EXPECT_EQ(libSink.heard, (Lines{"AfterWriteFile CoreLib 3 C:\\G\\Lib\\Lib.vbp 0"}));

  // A closed project raises nothing and takes no new sinks.
  ASSERT_TRUE(ide.Close(lib).ok());
  libSink.heard.clear();
  EXPECT_FALSE(ide.FireAfterWriteFile(lib, platform::vbext_ft_Exe, "x", 0).ok());
  ASSERT_TRUE(lib->Save().ok());
  EXPECT_EQ(libSink.heard, Lines{});
  EXPECT_EQ(ide.Events().FileControlEvents(lib, libSink), nullptr);
  EXPECT_EQ(ide.SelectedVBComponent(), nullptr) << "the selected component left with its project";
}

// Unsubscribes another sink from inside a handler.
class Dropper : public platform::VBComponentsEventsSink {
 public:
  std::unique_ptr<platform::Subscription>* victim = nullptr;
  void ItemSelected(const platform::ComponentPtr&) override { victim->reset(); }
};

TEST(HeadlessIdeEvents, SinksMayUnsubscribeDuringDeliveryAndAfterTheIdeIsGone) {
  FakeFileSystem fs;
  AddGroup(fs);
  auto ide = std::make_unique<HeadlessIde>(fs);
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
  const auto bar = ide.CommandBars()->Item("add-ins");
  ASSERT_TRUE(bar);
  const auto popup = *bar->Controls()->Add(platform::msoControlPopup);
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
  options->SetEnabled(false);
  EXPECT_FALSE(ide.ClickMenu({"Sentrune", "Sentrune Options"}).ok());
  EXPECT_FALSE(ide.ClickMenu({"Sentrune", "Help"}).ok());

  ASSERT_TRUE(popup->Delete().ok());
  EXPECT_FALSE(popup->Delete().ok());
  EXPECT_EQ(ide.Events().CommandBarEvents(options, clicks), nullptr) << "items of a deleted menu are gone too";
  EXPECT_FALSE(popup->Controls()->Add(platform::msoControlButton).ok());
}

}  // namespace
}  // namespace sentrune::headless::test
