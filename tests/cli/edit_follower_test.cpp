// Which component `watch` reports as edited, driven by a made-up clock.
#include "edit_follower.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "menu_help.h"

namespace sentrune::cli {
namespace {

using Events = std::vector<FollowerEvent>;
const FollowerEvent kSave{FollowerEvent::kSave, {}};
const FollowerEvent kIdle{FollowerEvent::kIdle, {}};
FollowerEvent Active(const std::string& name) { return {FollowerEvent::kActive, name}; }

TEST(EditFollower, TheLastChangedFileIsEditedUntilAnotherChanges) {
  EditFollower follower(1000);
  EXPECT_EQ(follower.Active(), "");
  EXPECT_EQ(follower.Changed("Form1", 1010), Events{Active("Form1")});
  // More writes to the same file are no switch.
  EXPECT_EQ(follower.Changed("Form1", 1020), Events{});
  EXPECT_EQ(follower.Changed("Module1", 1030), Events{Active("Module1")});
  EXPECT_EQ(follower.Changed("Form1", 1040), Events{Active("Form1")});
  EXPECT_EQ(follower.Active(), "Form1");
}

TEST(EditFollower, FiveMinutesWithoutAChangeEndTheEdit) {
  EditFollower follower(0);
  follower.Changed("Form1", 0);
  // Each change restarts the pause.
  follower.Changed("Form1", 200);
  EXPECT_EQ(follower.Tick(499.5), Events{kSave});
  EXPECT_EQ(follower.Active(), "Form1");
  EXPECT_EQ(follower.Tick(500), Events{kIdle});
  EXPECT_EQ(follower.Active(), "");
  EXPECT_EQ(follower.Tick(540), Events{});
  // After a pause the same component starts again, the pause reported first.
  EditFollower again(0);
  again.Changed("Form1", 0);
  EXPECT_EQ(again.Changed("Form1", 400), (Events{kIdle, kSave, Active("Form1")}));
}

TEST(EditFollower, SavesOncePerMinuteWhateverHappens) {
  EditFollower follower(0);
  int saves = 0;
  for (double t = 0; t <= 600; t += 7.5) {
    const Events events = (static_cast<int>(t) % 30 == 0) ? follower.Changed("Form1", t) : follower.Tick(t);
    saves += static_cast<int>(std::count(events.begin(), events.end(), kSave));
  }
  EXPECT_EQ(saves, 10);
  // A long gap (a suspended machine) gives one save, not one per minute missed.
  EXPECT_EQ(follower.Tick(6000), (Events{kIdle, kSave}));
}

TEST(MenuHelp, ListsEveryItemWithItsCommand) {
  const std::string help = MenuHelpText();
  for (const char* expected :
       {"Show References", "sentrune refs", "sentrune inspect, sentrune compare", "Show Elapsed Times",
        "sentrune times", "Project Snapshot", "sentrune snapshot", "Utilities:",
        "Add/Refresh cVerifyInstallation", "sentrune verify-class", "sentrune add-align-control",
        "Show Magnifier", "(none on Linux)", "Fix ABS Paths", "sentrune fix-paths",
        "sentrune fix-associations", "Sentrune Options", "sentrune options", "sentrune --version"}) {
    EXPECT_NE(help.find(expected), std::string::npos) << expected;
  }
  EXPECT_EQ(help.find('&'), std::string::npos);
}

}  // namespace
}  // namespace sentrune::cli
