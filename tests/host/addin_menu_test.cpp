// The add-in's menu over the headless IDE: what is built, what opening it
// refreshes, what each handler says, and what removal leaves behind.
#include "host/addin_menu.h"

#include <gtest/gtest.h>

#include "host_world.h"
#include "support/expected_file.h"

namespace sentrune::testing {
namespace {

struct MenuWorld : HostWorld {
  Strings ran;

  explicit MenuWorld(bool magnifier = false) {
    if (magnifier) files().AddFile("C:\\Windows\\System32\\magnify.exe", "");  // in the system folder
    MenuActions actions;
    actions.FixAbsPaths = [this](Connect&) { ran.push_back("fix paths"); };
    actions.FixAssociations = [this](Connect&) { ran.push_back("fix associations"); };
    actions.ShowOptions = [this](Connect& c) {
      ran.push_back("options");
      c.options()->SaveOption("VerifyClass", "cCheck");
    };
    connect.SetMenu(std::make_unique<AddinMenuModel>(actions));
    connect.AddinInstance_OnConnection(ide);
  }

  std::vector<platform::ControlPtr> TopItems() { return ide.CommandBars()->Item("Add-Ins")->Controls()->Items(); }
  // Each item of the pop-up as "caption[|group][|disabled]", the utilities
  // pop-up's items indented.
  Strings Layout() {
    Strings lines;
    const auto describe = [&](const platform::ControlPtr& c, const std::string& indent) {
      lines.push_back(indent + c->Caption() + (c->BeginGroup() ? "|group" : "") + (c->Enabled() ? "" : "|disabled"));
      return c->Controls() ? c->Controls()->Items() : std::vector<platform::ControlPtr>{};
    };
    for (const auto& top : TopItems())
      for (const auto& item : describe(top, ""))
        for (const auto& inner : describe(item, "  ")) describe(inner, "    ");
    return lines;
  }
};

TEST(AddinMenu, BuildsTheItemsInOrderWithTheirGroups) {
  MenuWorld w;
  std::string layout;
  for (const std::string& line : w.Layout()) layout += line + "\n";
  ExpectMatchesFile(layout, "host/menu.layout.txt");
  // The help text reads the captions aloud.
  EXPECT_EQ(PlainCaption("Fix A&BS && more"), "Fix ABS & more");

  MenuWorld withMagnifier(true);
  EXPECT_EQ(withMagnifier.Layout()[8], "    Show &Magnifier");
  ASSERT_TRUE(withMagnifier.ide.ClickMenu({"Sentrune", "Utilities", "Show Magnifier"}).ok());
  EXPECT_EQ(withMagnifier.env.Programs().Started(), Strings{"C:\\Windows\\System32\\magnify.exe"});
}

TEST(AddinMenu, OpeningTheMenuRefreshesCaptionsTrackingAndTheElapsedTimesItem) {
  MenuWorld w;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Sentrune Options"}).ok());
  EXPECT_EQ(w.ran, Strings{"options"});
  // The options dialog changed VerifyClass; the menu reloaded the options,
  // and the next opening shows the new caption.
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Utilities", "Add/Refresh cCheck"}).ok());

  // Tracking without a project is given the IDE's active one.
  w.Open("C:\\Src\\Widgets\\Widgets.vbp", "Widgets");
  w.connect.tracker()->ProjectManager(nullptr);
  w.connect.options()->options().TrackTime = false;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "About"}).ok());
  EXPECT_EQ(w.Layout()[3], "  Show &Elapsed Times|disabled");
  EXPECT_FALSE(w.ide.ClickMenu({"Sentrune", "Show Elapsed Times"}).ok());
  EXPECT_EQ(w.connect.tracker()->ActiveIDEProject(), nullptr);

  w.connect.options()->options().TrackTime = true;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Show Elapsed Times"}).ok());
  EXPECT_EQ(w.Layout()[3], "  Show &Elapsed Times");
  ASSERT_NE(w.connect.tracker()->ActiveIDEProject(), nullptr);
  EXPECT_EQ(w.connect.tracker()->ActiveIDEProject()->Name(), "Widgets");
  EXPECT_EQ(w.ui.forms.size(), 1u);
}

TEST(AddinMenu, SnapshotHandlerReportsItsOutcome) {
  MenuWorld w;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Project Snapshot"}).ok());
  EXPECT_TRUE(w.ui.fileQuestions.empty());
  w.Open("C:\\Src\\Widgets\\Widgets.vbp", "Widgets");
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Project Snapshot"}).ok());
  EXPECT_EQ(w.ui.fileQuestions.size(), 1u);
  EXPECT_EQ(w.ui.Titles(), (Strings{"Project Snapshot", "Project Snapshot"}));
  EXPECT_EQ(w.ui.Prompts(), (Strings{"No projects loaded.", "Operation Complete."}));
}

TEST(AddinMenu, FixAssociationsRunsOnlyAfterYesAndRemovalEndsEveryHandler) {
  MenuWorld w;
  w.ui.QueueAnswer(platform::mb::kNo);
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Utilities", "Fix VB Associations"}).ok());
  EXPECT_TRUE(w.ran.empty());
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].style, platform::mb::kYesNo + platform::mb::kQuestion);
  w.ui.QueueAnswer(platform::mb::kYes);
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Utilities", "Fix VB Associations"}).ok());
  EXPECT_EQ(w.ran, Strings{"fix associations"});

  // Removal deletes the controls; what was removed reaches no handler.
  w.connect.AddinInstance_OnDisconnection();
  EXPECT_TRUE(w.TopItems().empty());
  EXPECT_FALSE(w.ide.ClickMenu({"Sentrune", "Utilities", "Fix ABS Paths"}).ok());
  EXPECT_EQ(w.ran, Strings{"fix associations"});
  EXPECT_FALSE(w.state.err.number());
}

}  // namespace
}  // namespace sentrune::testing
