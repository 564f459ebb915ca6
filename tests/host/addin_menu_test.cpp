// The add-in's menu over the headless IDE: what is built, what opening it
// refreshes, what each handler says, and what removal leaves behind.
#include "host/addin_menu.h"

#include <gtest/gtest.h>

#include "platform/headless/headless_ide.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

struct MenuWorld : TestAddin {
  headless::HeadlessIde ide{files(), &typelibs};
  Connect connect{state};
  std::vector<std::string> ran;

  explicit MenuWorld(bool magnifier = false) {
    if (magnifier) {
      env.SetSpecialFolder(platform::kFolderSystem, "C:\\Windows\\System32");
      files().AddFile("C:\\Windows\\System32\\magnify.exe", "");
    }
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

  std::vector<platform::ControlPtr> TopItems() {
    auto bar = ide.CommandBars()->Item("Add-Ins");
    return bar->Controls()->Items();
  }
  // Each item of the pop-up as "caption[|group][|disabled]", the utilities
  // pop-up's items indented.
  std::vector<std::string> Layout() {
    std::vector<std::string> lines;
    auto describe = [](const platform::ControlPtr& c, const std::string& indent) {
      return indent + c->Caption() + (c->BeginGroup() ? "|group" : "") + (c->Enabled() ? "" : "|disabled");
    };
    for (const auto& top : TopItems()) {
      lines.push_back(describe(top, ""));
      for (const auto& item : top->Controls()->Items()) {
        lines.push_back(describe(item, "  "));
        if (auto sub = item->Controls())
          for (const auto& inner : sub->Items()) lines.push_back(describe(inner, "    "));
      }
    }
    return lines;
  }
  void OpenProject(const std::string& path, const std::string& name) {
    files().AddFile(path, "Type=OleDll\r\nName=\"" + name + "\"\r\n");
    ASSERT_TRUE(ide.Open(path).ok());
  }
};

TEST(AddinMenu, BuildsTheItemsInOrderWithTheirGroups) {
  MenuWorld w;
  EXPECT_EQ(w.Layout(), (std::vector<std::string>{
                            "&Sentrune|group",
                            "  &Show References",
                            "  &Inspect Components",
                            "  Show &Elapsed Times",
                            "  &Project Snapshot",
                            "  &Utilities|group",
                            "    Add/&Refresh cVerifyInstallation",
                            "    &Add AlignmentHelper",
                            "    Fix A&BS Paths|group",
                            "    &Fix VB Associations",
                            "  Sentrune &Options|group",
                            "  Abo&ut|group",
                        }));

  MenuWorld withMagnifier(true);
  const auto layout = withMagnifier.Layout();
  EXPECT_EQ(layout[8], "    Show &Magnifier");
  ASSERT_TRUE(withMagnifier.ide.ClickMenu({"Sentrune", "Utilities", "Show Magnifier"}).ok());
  EXPECT_EQ(withMagnifier.env.Programs().Started(),
            std::vector<std::string>{"C:\\Windows\\System32\\magnify.exe"});
}

TEST(AddinMenu, RemovalDeletesTheControlsAndReleasesTheHandlers) {
  MenuWorld w;
  ASSERT_EQ(w.TopItems().size(), 1u);
  w.connect.AddinInstance_OnDisconnection();
  EXPECT_TRUE(w.TopItems().empty());
  // Clicking what was removed reaches no handler.
  EXPECT_FALSE(w.ide.ClickMenu({"Sentrune", "Utilities", "Fix ABS Paths"}).ok());
  EXPECT_TRUE(w.ran.empty());
  EXPECT_FALSE(w.state.err.number());
}

TEST(AddinMenu, OpeningTheMenuRefreshesCaptionsAndTheElapsedTimesItem) {
  MenuWorld w;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Sentrune Options"}).ok());
  EXPECT_EQ(w.ran, std::vector<std::string>{"options"});
  // The options dialog changed VerifyClass; the menu reloaded the options,
  // and the next opening shows the new caption.
  EXPECT_EQ(w.connect.options()->options().VerifyClass, "cCheck");
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Utilities", "Add/Refresh cCheck"}).ok());

  w.connect.options()->options().TrackTime = false;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Project Snapshot"}).ok());
  EXPECT_EQ(w.Layout()[3], "  Show &Elapsed Times|disabled");
  EXPECT_FALSE(w.ide.ClickMenu({"Sentrune", "Show Elapsed Times"}).ok());

  w.connect.options()->options().TrackTime = true;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Show Elapsed Times"}).ok());
  EXPECT_EQ(w.Layout()[3], "  Show &Elapsed Times");
  EXPECT_EQ(w.ui.forms.size(), 1u);
}

TEST(AddinMenu, OpeningTheMenuTellsTrackingTheActiveProjectWhenItHasNone) {
  MenuWorld w;
  w.OpenProject("C:\\Src\\Widgets\\Widgets.vbp", "Widgets");
  w.connect.tracker()->ProjectManager(nullptr);
  ASSERT_EQ(w.connect.tracker()->ActiveIDEProject(), nullptr);
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "About"}).ok());
  ASSERT_NE(w.connect.tracker()->ActiveIDEProject(), nullptr);
  EXPECT_EQ(w.connect.tracker()->ActiveIDEProject()->Name(), "Widgets");
}

TEST(AddinMenu, SnapshotHandlerReportsItsOutcome) {
  MenuWorld w;
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Project Snapshot"}).ok());
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].prompt, "No projects loaded.");
  EXPECT_EQ(w.ui.boxes[0].title, "Project Snapshot");
  EXPECT_TRUE(w.ui.fileQuestions.empty());

  w.OpenProject("C:\\Src\\Widgets\\Widgets.vbp", "Widgets");
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Project Snapshot"}).ok());
  EXPECT_EQ(w.ui.fileQuestions.size(), 1u);
  EXPECT_EQ(w.ui.boxes.back().prompt, "Operation Complete.");
  EXPECT_EQ(w.ui.boxes.back().title, "Project Snapshot");
}

TEST(AddinMenu, FixAssociationsRunsOnlyAfterYes) {
  MenuWorld w;
  w.ui.QueueAnswer(platform::mb::kNo);
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Utilities", "Fix VB Associations"}).ok());
  EXPECT_TRUE(w.ran.empty());
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].prompt,
            "Fix VB file associations?\r\nThis will force VB to use only Long filenames when opening projects "
            "and other files.");
  EXPECT_EQ(w.ui.boxes[0].style, 36);
  EXPECT_EQ(w.ui.boxes[0].title, "Fix Associations.");

  w.ui.QueueAnswer(platform::mb::kYes);
  ASSERT_TRUE(w.ide.ClickMenu({"Sentrune", "Utilities", "Fix VB Associations"}).ok());
  EXPECT_EQ(w.ran, std::vector<std::string>{"fix associations"});
}

TEST(AddinMenu, DescriptionForHelpMatchesTheBuiltMenu) {
  const auto entries = MenuEntries("cVerifyInstallation", "AlignmentHelper", false);
  MenuWorld w;
  const auto items = w.TopItems().front()->Controls()->Items();
  EXPECT_EQ(items.size() + 4, entries.size());  // four sit inside the utilities pop-up
  EXPECT_EQ(PlainCaption(entries.back().caption), "About");
  EXPECT_EQ(PlainCaption("Fix A&BS && more"), "Fix ABS & more");
  for (const auto& entry : entries) {
    if (entry.command != MenuCommand::kUtilities) {
      EXPECT_FALSE(entry.cliCommand.empty()) << entry.caption;
    }
  }
}

}  // namespace
}  // namespace sentrune::testing
