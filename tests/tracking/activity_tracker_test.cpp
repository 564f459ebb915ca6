#include "tracking/activity_tracker.h"

#include <gtest/gtest.h>

#include "settings/options_handler.h"
#include "tracking_world.h"

namespace sentrune::tracking_test {
namespace {

using Rows = std::vector<std::vector<std::string>>;

class Tracking : public ::testing::Test {
 protected:
  static constexpr const char* kGridDb = "C:\\Work\\Grid.stn";
  static constexpr const char* kShapesDb = "C:\\Work\\Shapes.stn";

  void SetUp() override {
    options.TrackTime = true;
    for (const char* file : {"C:\\Work\\Grid.vbp", "C:\\Work\\Shapes.vbp"}) addin.files().AddFile(file, "Type=OleDll");
    for (const char* db : {kGridDb, kShapesDb}) {
      clsJet351 creator(addin.state);
      creator.SetCurrentDBName(db);
      ASSERT_EQ(creator.SaveDBSetting("CompatBase", ""), 0);
    }
    grid = ide.Open("Grid", "C:\\Work\\Grid.vbp");
    form1 = grid->Add("Form1");
    class1 = grid->Add("Class1");
  }
  Rows TimeLog(const char* db) {
    return Query(*addin.files().Contents(db), "SELECT ProjCompID, ElapsedSeconds FROM TimeLog");
  }
  long Traced(const std::string& line) {
    const std::vector<std::string> lines = addin.TraceLines();
    return std::count(lines.begin(), lines.end(), line);
  }
  // Position of the first trace line after `from` that equals `line`.
  size_t TracedAt(const std::string& line, size_t from = 0) {
    const std::vector<std::string> lines = addin.TraceLines();
    return static_cast<size_t>(std::find(lines.begin() + static_cast<long>(from), lines.end(), line) -
                               lines.begin());
  }
  void Advance(double seconds) { addin.env.Time().Advance(seconds); }

  testing::TestAddin addin;
  OptionSet options;
  FakeVbe ide;
  ActivityTracker tracker{addin.state, options, ide};
  std::shared_ptr<FakeProject> grid;
  std::shared_ptr<FakeComponent> form1, class1;
};

TEST_F(Tracking, TotalsFollowTheActiveComponentAndAreSavedOnAProjectChange) {
  tracker.TrackActivity(grid, form1);
  Advance(60);
  tracker.TrackActivity(grid, class1);
  Advance(20);
  ASSERT_NE(tracker.JetClass(), nullptr);
  EXPECT_EQ(tracker.JetClass()->CurrentDBName(), kGridDb);

  const std::shared_ptr<FakeProject> shapes = ide.Open("Shapes", "C:\\Work\\Shapes.vbp");
  const std::shared_ptr<FakeComponent> circle = shapes->Add("Circle");
  tracker.TrackActivity(shapes, circle);
  EXPECT_EQ(TimeLog(kGridDb), (Rows{{"Form1", "60"}, {"Class1", "20"}}));
  EXPECT_EQ(tracker.JetClass()->CurrentDBName(), kShapesDb);
  EXPECT_EQ(tracker.ActiveIDEProject(), shapes);
  EXPECT_EQ(tracker.ActiveIDEComponent(), circle);

  EXPECT_EQ(Traced("'Resetting ActiveIDEComponent. Was: Nothing, Is: Form1"), 1);
  EXPECT_EQ(Traced("'Resetting ActiveIDEComponent. Was: Form1, Is: Class1"), 1);
  EXPECT_EQ(Traced("'Setting mobjJetClass.ComponentName = Circle"), 1);
  EXPECT_EQ(Traced("'Resetting ActiveIDEProject"), 2);
  // ProjectManager first for usable objects, framed by 60 "*".
  EXPECT_EQ(TracedAt("'ProjectManager") - 1, TracedAt(std::string(60, '*')));
  EXPECT_LT(TracedAt("'ProjectManager"), TracedAt("'ComponentManager"));

  // Back in the project that is already active, nothing is reloaded.
  tracker.TrackActivity(shapes, circle);
  EXPECT_EQ(Traced("'Resetting ActiveIDEProject"), 2);
  EXPECT_EQ(Traced("'modTimerFunctions:ProjectManager - JetClass.CurrentDBObject Was Nothing"), 0);
}

TEST_F(Tracking, WithTrackTimeOffComponentsAreFollowedButNotTimed) {
  tracker.TrackActivity(grid, form1);
  Advance(30);
  options.TrackTime = false;
  tracker.TrackActivity(grid, class1);
  EXPECT_EQ(tracker.ActiveIDEComponent(), class1);
  EXPECT_EQ(Traced("'Resetting ActiveIDEComponent. Was: Form1, Is: Class1"), 1);
  EXPECT_EQ(tracker.JetClass()->TimerJobs().size(), 1u);  // no job for Class1

  // Jobs loaded while tracking was on are still saved; none are loaded now.
  const std::shared_ptr<FakeProject> shapes = ide.Open("Shapes", "C:\\Work\\Shapes.vbp");
  tracker.TrackActivity(shapes, shapes->Add("Circle"));
  EXPECT_EQ(TimeLog(kGridDb), (Rows{{"Form1", "30"}}));
  EXPECT_EQ(tracker.JetClass(), nullptr);
  EXPECT_EQ(Traced("'LoadTimerJobs - Shapes.stn"), 0);
}

TEST_F(Tracking, TheSameComponentAgainAndANamelessOneStartNothing) {
  tracker.TrackActivity(grid, form1);
  const rt::DateTime started = tracker.JetClass()->TimerJobs().at(0).StartTime();
  Advance(10);
  tracker.TrackActivity(grid, form1);
  const clsTimerJob& job = tracker.JetClass()->TimerJobs().at(0);
  EXPECT_TRUE(job.Running());
  EXPECT_EQ(job.ElapsedSeconds(), 10);
  EXPECT_EQ(job.StartTime(), started);  // not stopped and started again
  EXPECT_EQ(Traced("'Setting mobjJetClass.ComponentName = Form1"), 1);

  tracker.TrackActivity(grid, grid->Add(""));
  EXPECT_EQ(tracker.JetClass()->TimerJobs().size(), 1u);
  EXPECT_FALSE(tracker.JetClass()->TimerJobs().at(0).Running());
  EXPECT_EQ(Traced("'Setting mobjJetClass.ComponentName = "), 1);

  // No component at all leaves the jobs as they are.
  tracker.JetClass()->ComponentName("Form1");
  tracker.TrackActivity(grid, nullptr);
  EXPECT_EQ(tracker.ActiveIDEComponent(), nullptr);
  EXPECT_TRUE(tracker.JetClass()->TimerJobs().at(0).Running());
}

TEST_F(Tracking, StaleObjectsOfAClosedProjectLetGoOfTheComponentFirst) {
  tracker.TrackActivity(grid, form1);
  Advance(45);
  ide.Close(grid);
  const size_t before = addin.TraceLines().size();
  tracker.TrackActivity(grid, form1);
  EXPECT_LT(TracedAt("'ComponentManager", before), TracedAt("'ProjectManager", before));
  EXPECT_EQ(tracker.ActiveIDEProject(), nullptr);
  EXPECT_EQ(tracker.ActiveIDEComponent(), nullptr);
  EXPECT_EQ(tracker.JetClass(), nullptr);
  EXPECT_EQ(TimeLog(kGridDb), (Rows{{"Form1", "45"}}));

  // Only one of them stale: the usual order.
  const std::shared_ptr<FakeProject> shapes = ide.Open("Shapes", "C:\\Work\\Shapes.vbp");
  const size_t later = addin.TraceLines().size();
  tracker.TrackActivity(shapes, form1);
  EXPECT_LT(TracedAt("'ProjectManager", later), TracedAt("'ComponentManager", later));
  EXPECT_EQ(tracker.ActiveIDEProject(), shapes);
  EXPECT_EQ(tracker.ActiveIDEComponent(), nullptr);
}

TEST_F(Tracking, TheDatabaseNameFollowsOnlyProjectsSavedOnDisk) {
  const long lets = Traced("'clsJet351:Property Let CurrentDBName");
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), kGridDb);
  tracker.GetJetClass();
  EXPECT_EQ(Traced("'clsJet351:Property Let CurrentDBName"), lets + 1);

  ide.Open("Project1", "");  // never saved
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), kGridDb);
  ide.Open("Moved", "C:\\Work\\Moved.vbp");  // its file is gone
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), kGridDb);
  addin.files().AddFile("C:\\Work.v2\\Legacy", "Type=Exe");
  ide.Open("Legacy", "C:\\Work.v2\\Legacy");
  EXPECT_EQ(tracker.GetJetClass().CurrentDBName(), "C:\\Work.stn");
}

TEST_F(Tracking, ShowTimerJobsSavesFirstAndListsTheTotals) {
  OptionsHandler handler(addin.state);
  tracker.TrackActivity(grid, form1);
  Advance(3723);
  tracker.TrackActivity(grid, class1);
  Advance(5);
  tracker.ShowTimerJobs(handler);
  EXPECT_EQ(TimeLog(kGridDb), (Rows{{"Form1", "3723"}, {"Class1", "5"}}));

  ASSERT_EQ(addin.ui.forms.size(), 1u);
  const platform::FormView& view = addin.ui.forms[0];
  EXPECT_EQ(view.kind, platform::FormView::Kind::kGrid);
  EXPECT_EQ(view.caption, "Time Tracking - [Grid]");
  EXPECT_EQ(view.headers, (std::vector<std::string>{"Item", "Component", "Elapsed Time"}));
  ASSERT_EQ(view.rows.size(), 2u);
  EXPECT_EQ(view.rows[0].cells, (std::vector<std::string>{"1", "Form1", "0001:02:03"}));
  EXPECT_EQ(view.rows[1].cells, (std::vector<std::string>{"2", "Class1", "0000:00:05"}));
}

}  // namespace
}  // namespace sentrune::tracking_test
