// The DLL's own menu actions over the fakes: the about box and its help,
// the options and the comparison viewer shown through the Ui, the commands
// noted in this load's log, and the IDE's main window as the owner of every
// box.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/connect.h"
#include "load_log.h"
#include "platform/headless/headless_ide.h"
#include "support/test_addin.h"
#include "vbe_application.h"
#include "vbe_fake_dispatch.h"
#include "vbe_menu_actions.h"

namespace sentrune::addin {
namespace {

namespace mb = platform::mb;
using sentrune::testing::TestAddin;

constexpr const char* kHelp = "C:\\Addin\\Help\\Sentrune.chm";
constexpr const char* kNoHelp = "Sorry, No help available at this time.";

struct ActionWorld : TestAddin {
  headless::HeadlessIde ide{files(), &typelibs};
  Connect connect{state};
  std::vector<std::string> opened;
  bool opens = true;
  MenuActions actions = IdeMenuActions([this](const std::string& path) {
    opened.push_back(path);
    return opens;
  });
};

TEST(AddinMenuActions, AboutNamesTheVersionAndOpensTheHelpOnlyWhenAskedAndPresent) {
  ActionWorld world;
  world.state.gstrHelpFile = kHelp;

  world.ui.QueueAnswer(mb::kNo);
  world.actions.ShowAbout(world.connect);
  ASSERT_EQ(world.ui.boxes.size(), 1u);
  EXPECT_NE(world.ui.boxes[0].prompt.find(std::string("Sentrune ") + SENTRUNE_VERSION), std::string::npos);
  EXPECT_EQ(world.ui.boxes[0].style, mb::kYesNo + mb::kInformation);
  EXPECT_TRUE(world.opened.empty());

  world.actions.ShowAbout(world.connect);  // Yes, but no help file
  EXPECT_TRUE(world.opened.empty());
  EXPECT_EQ(world.ui.Prompts().back(), kNoHelp);

  world.files().AddFile(kHelp, "ITSF");
  const size_t before = world.ui.boxes.size();
  world.actions.ShowAbout(world.connect);
  EXPECT_EQ(world.opened, std::vector<std::string>{kHelp});
  EXPECT_EQ(world.ui.boxes.size(), before + 1);  // the about box, nothing after it

  world.opens = false;  // no viewer for .chm files
  world.actions.ShowAbout(world.connect);
  EXPECT_EQ(world.ui.Prompts().back(), kNoHelp);
}

TEST(AddinMenuActions, OptionsAndInspectShowTheirFormsThroughTheUi) {
  ActionWorld world;
  world.connect.AddinInstance_OnConnection(world.ide);
  world.ui.forms.clear();

  world.actions.ShowOptions(world.connect);
  ASSERT_EQ(world.ui.forms.size(), 1u);
  EXPECT_EQ(world.ui.forms[0].caption, "Options");

  world.ui.QueueOpenFile(std::nullopt);  // cancelled: nothing to show
  world.actions.InspectComponents(world.connect);
  EXPECT_EQ(world.ui.forms.size(), 1u);

  std::ifstream in(std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/typelib/shapes.tlb",
                   std::ios::binary);
  world.files().AddFile("C:\\Libs\\shapes.tlb", {std::istreambuf_iterator<char>(in), {}});
  world.ui.QueueOpenFile("C:\\Libs\\shapes.tlb");
  world.ui.QueueOpenFile("C:\\Libs\\shapes.tlb");
  world.actions.InspectComponents(world.connect);
  ASSERT_EQ(world.ui.forms.size(), 2u);
  EXPECT_EQ(world.ui.forms[1].caption, "Comparison Results");
  world.connect.AddinInstance_OnDisconnection();
}

TEST(AddinLoadLog, NotesEachCommandBeforeItRunsAndAppendsAcrossConnections) {
  ActionWorld world;
  const std::string path = "C:\\Addin\\Logs\\Sentrune 040506-140309.txt";
  world.state.gstrLogFile = path;
  std::string seen;  // the log as the about box found it
  {
    LoadLog log(world.state);
    MenuActions actions;
    actions.ShowAbout = [&](Connect&) { seen = world.files().Contents(path).value_or(""); };
    Logged(std::move(actions), log).ShowAbout(world.connect);
    EXPECT_FALSE(Logged(MenuActions{}, log).ShowOptions);  // nothing to run, nothing noted
  }
  EXPECT_NE(seen.find("14:03:09\tMenu: About\r\n"), std::string::npos) << seen;
  {
    LoadLog again(world.state);
    again.Note("second connection");
  }
  const std::string text = world.files().Contents(path).value_or("");
  EXPECT_NE(text.find("Menu: About"), std::string::npos) << text;
  EXPECT_NE(text.find("second connection"), std::string::npos) << text;
  EXPECT_NE(text.rfind(" --- End Log ---"), text.find(" --- End Log ---")) << text;  // each closed
}

TEST(AddinOwnerWindow, IsTheIdesMainWindowOrNone) {
  testing::FakeObject window, vbe;  // the VBE holds the window: it goes first
  window.values["hwnd"] = Variant(int32_t{0x10A2C});
  vbe.values["mainwindow"] = Variant(static_cast<IDispatch*>(&window));
  EXPECT_EQ(VbeApplication(ComPtr<IDispatch>(&vbe)).MainWindowHandle(), reinterpret_cast<HWND>(LONG_PTR{0x10A2C}));

  vbe.values.erase("mainwindow");  // Nothing
  EXPECT_EQ(VbeApplication(ComPtr<IDispatch>(&vbe)).MainWindowHandle(), nullptr);
  vbe.failures["mainwindow"] = E_FAIL;
  EXPECT_EQ(VbeApplication(ComPtr<IDispatch>(&vbe)).MainWindowHandle(), nullptr);
}

}  // namespace
}  // namespace sentrune::addin
