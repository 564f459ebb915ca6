// Following the IDE's active component, and showing the totals.
#include "tracking/activity_tracker.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/headless/headless_ide.h"
#include "settings/options_handler.h"
#include "tracking/frm_timer_jobs.h"
#include "tracking_world.h"

namespace sentrune::tracking_test {
namespace {

class Tracking : public ::testing::Test, protected TrackingWorld {
 protected:
  static constexpr const char* kGridDb = "C:\\Work\\Grid.stn";

  void SetUp() override {
    options.TrackTime = true;
    grid = Open("Grid", {"Form1", "Class1"});
    form1 = grid->VBComponents()[0];
    class1 = grid->VBComponents()[1];
  }
  // Writes C:\Work\<name>.vbp with these classes and its database, and opens it.
  platform::ProjectPtr Open(const std::string& name, const std::vector<std::string>& classes) {
    std::string lines = "Type=OleDll\r\n";
    for (const std::string& c : classes) {
      lines += "Class=" + c + "; " + c + ".cls\r\n";
      files().AddFile("C:\\Work\\" + c + ".cls", "Attribute VB_Name = \"" + c + "\"\r\n");
    }
    files().AddFile("C:\\Work\\" + name + ".vbp", lines + "Name=\"" + name + "\"\r\n");
    clsJet351 creator(state);
    creator.SetCurrentDBName("C:\\Work\\" + name + ".stn");
    EXPECT_EQ(creator.SaveDBSetting("CompatBase", ""), 0);
    auto opened = ide.Open("C:\\Work\\" + name + ".vbp");
    return opened.ok() ? opened->projects.at(0) : nullptr;
  }
  Rows TimeLog() { return Table(kGridDb, "SELECT ProjCompID, ElapsedSeconds FROM TimeLog"); }
  // Position of the first trace line after `from` that equals `line`.
  size_t TracedAt(const std::string& line, size_t from = 0) {
    const std::vector<std::string> lines = TraceLines();
    return static_cast<size_t>(std::find(lines.begin() + static_cast<long>(from), lines.end(), line) -
                               lines.begin());
  }
  OptionSet options;
  headless::HeadlessIde ide{files()};
  ActivityTracker tracker{state, options, ide};
  platform::ProjectPtr grid;
  platform::ComponentPtr form1, class1;
};

// Showing the list saves first; a project change saves too, and the
// component's manager runs after the project's.
TEST_F(Tracking, TotalsFollowTheActiveComponentAndAreSavedWhenShownAndOnAProjectChange) {
  OptionsHandler handler(state);
  tracker.TrackActivity(grid, form1);
  Advance(3723);
  tracker.TrackActivity(grid, class1);
  Advance(5);
  tracker.ShowTimerJobs(handler);
  EXPECT_EQ(TimeLog(), (Rows{{"Form1", "3723"}, {"Class1", "5"}}));
  EXPECT_EQ(ui.forms.at(0).caption, "Time Tracking - [Grid]");
  EXPECT_EQ(ui.forms[0].rows.at(0).cells, (Strings{"1", "Form1", "0001:02:03"}));
  EXPECT_EQ(ui.forms[0].rows.at(1).cells, (Strings{"2", "Class1", "0000:00:05"}));
  Advance(15);
  const platform::ProjectPtr shapes = Open("Shapes", {"Circle"});
  const platform::ComponentPtr circle = shapes->VBComponents()[0];
  tracker.TrackActivity(shapes, circle);
  EXPECT_EQ(TimeLog(), (Rows{{"Form1", "3723"}, {"Class1", "20"}}));
  EXPECT_LT(TracedAt("'ProjectManager"), TracedAt("'ComponentManager"));

  // The same component again is not stopped and started; no component
  // leaves the jobs alone.
  const rt::DateTime started = tracker.JetClass()->TimerJobs().at(0).StartTime();
  Advance(10);
  tracker.TrackActivity(shapes, circle);
  tracker.TrackActivity(shapes, nullptr);
  EXPECT_EQ(Jobs(tracker.JetClass()->TimerJobs()), Strings{"Circle=10 running"});
  EXPECT_EQ(tracker.JetClass()->TimerJobs().at(0).StartTime(), started);
}

TEST_F(Tracking, WithTrackTimeOffComponentsAreFollowedButNotTimed) {
  tracker.TrackActivity(grid, form1);
  Advance(30);
  options.TrackTime = false;
  tracker.TrackActivity(grid, class1);
  EXPECT_EQ(tracker.ActiveIDEComponent(), class1);
  EXPECT_EQ(tracker.JetClass()->TimerJobs().size(), 1u);

  // Jobs loaded while tracking was on are still saved; none are loaded now.
  const platform::ProjectPtr shapes = Open("Shapes", {"Circle"});
  tracker.TrackActivity(shapes, shapes->VBComponents()[0]);
  EXPECT_EQ(TimeLog(), (Rows{{"Form1", "30"}}));
  EXPECT_EQ(tracker.JetClass(), nullptr);
}

// The component must be let go before the closed project's totals are saved.
TEST_F(Tracking, StaleObjectsOfAClosedProjectLetGoOfTheComponentFirst) {
  tracker.TrackActivity(grid, form1);
  Advance(45);
  ASSERT_TRUE(ide.Close(grid).ok());
  const size_t before = TraceLines().size();
  tracker.TrackActivity(grid, form1);
  EXPECT_LT(TracedAt("'ComponentManager", before), TracedAt("'ProjectManager", before));
  EXPECT_EQ(tracker.ActiveIDEProject(), nullptr);
  EXPECT_EQ(tracker.ActiveIDEComponent(), nullptr);
  EXPECT_EQ(tracker.JetClass(), nullptr);
  EXPECT_EQ(TimeLog(), (Rows{{"Form1", "45"}}));

  // Only one of them stale: the usual order.
  const platform::ProjectPtr shapes = Open("Shapes", {"Circle"});
  const size_t later = TraceLines().size();
  tracker.TrackActivity(shapes, form1);
  EXPECT_LT(TracedAt("'ProjectManager", later), TracedAt("'ComponentManager", later));
}

TEST_F(Tracking, TheDatabaseNameFollowsOnlyProjectsSavedOnDisk) {
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), kGridDb);
  Open("Moved", {});
  ASSERT_TRUE(files().DeleteFile("C:\\Work\\Moved.vbp").ok());
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), kGridDb);
  files().AddFile("C:\\Work.v2\\Legacy", "Type=Exe\r\n");
  ASSERT_TRUE(ide.Open("C:\\Work.v2\\Legacy").ok());
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), "C:\\Work.stn");
}

// Showing the list for a project that has no database must not create one;
// a stored column width of -1 falls back to the designed width.
TEST(TimerJobsForm, NoDatabaseShowsColumnsOnlyAndSizesAreRemembered) {
  testing::TestAddin addin;
  OptionsHandler options(addin.state);
  options.SaveOption("TimedJobs_Height", "4200");
  options.SaveOption("TimedJobs_ColWidth2", "120");
  options.SaveOption("TimedJobs_ColWidth3", "-1");
  clsJet351 jet(addin.state);
  jet.SetCurrentDBName("C:\\Work\\Unsaved.stn");
  frmTimerJobs form(addin.state, options);
  form.SetTheJetClass(&jet);
  form.Show();
  EXPECT_TRUE(addin.ui.forms.at(0).rows.empty());
  EXPECT_FALSE(addin.files().Exists("C:\\Work\\Unsaved.stn"));
  EXPECT_TRUE(addin.ui.boxes.empty());

  EXPECT_EQ(form.height, 4200);
  EXPECT_EQ(form.colWidths, (std::array<int32_t, 3>{35, 120, 78}));
  EXPECT_EQ(options.GetOption("TimedJobs_Width"), "-1");
  EXPECT_EQ(options.GetOption("TimedJobs_ColWidth3"), "78");
  // Hours are padded to four digits and never cut.
  EXPECT_EQ(frmTimerJobs::FormatElapsed(-61), "-0000:01:01");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(std::numeric_limits<int32_t>::min()), "-596523:14:08");
}

}  // namespace
}  // namespace sentrune::tracking_test
