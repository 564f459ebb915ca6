#include "tracking/timer_job.h"

#include <gtest/gtest.h>

#include "tracking/jet351.h"
#include "tracking_world.h"

namespace sentrune::tracking_test {
namespace {

TEST(TimerJob, StopFoldsWholeSecondsIntoTheTotal) {
  testing::FakeClock clock;
  const rt::DateTime created = clock.Now();
  clsTimerJob job(clock, "Form1");
  EXPECT_FALSE(job.Running());
  EXPECT_FALSE(job.Changed());

  clock.Advance(5);
  job.SetRunning(true);
  EXPECT_TRUE(job.Changed());
  EXPECT_EQ(job.StartTime(), created);  // switching on leaves the start time
  EXPECT_EQ(job.ElapsedSeconds(), 5);   // so the seconds before count too
  clock.Advance(10);
  EXPECT_EQ(job.ElapsedSeconds(), 15);

  job.SetRunning(false);
  EXPECT_EQ(job.ElapsedSeconds(), 15);
  EXPECT_EQ(job.StartTime(), clock.Now());
  clock.Advance(100);
  EXPECT_EQ(job.ElapsedSeconds(), 15);

  // On again: the 100 seconds it was off are counted as well.
  job.SetRunning(true);
  clock.Advance(1);
  EXPECT_EQ(job.ElapsedSeconds(), 116);
}

TEST(TimerJob, StopWithinTheSameSecondChangesNothing) {
  testing::FakeClock clock;
  clsTimerJob job(clock, "Form1");
  job.SetElapsedSeconds(40);
  job.SetRunning(true);
  job.SetChanged(false);
  const rt::DateTime started = job.StartTime();
  clock.Advance(0.6);
  job.SetRunning(false);
  EXPECT_EQ(job.ElapsedSeconds(), 40);
  EXPECT_EQ(job.StartTime(), started);
  EXPECT_FALSE(job.Changed());
  // Stopping a stopped job does nothing either.
  clock.Advance(30);
  job.SetRunning(false);
  EXPECT_EQ(job.ElapsedSeconds(), 40);
  EXPECT_FALSE(job.Changed());
}

TEST(ComponentName, LeavesExactlyTheNamedJobRunning) {
  testing::TestAddin addin;
  clsJet351 jet(addin.state);
  jet.ComponentName("Form1");
  addin.env.Time().Advance(5);
  jet.ComponentName("Class1");
  addin.env.Time().Advance(7);
  jet.ComponentName("form1");  // keys ignore case
  ASSERT_EQ(jet.TimerJobs().size(), 2u);
  EXPECT_TRUE(jet.TimerJobs().at(0).Running());
  EXPECT_FALSE(jet.TimerJobs().at(1).Running());
  EXPECT_EQ(jet.TimerJobs().at(1).ElapsedSeconds(), 7);

  // An empty name stops every job and starts none.
  jet.ComponentName("");
  EXPECT_EQ(jet.TimerJobs().size(), 2u);
  for (const auto& entry : jet.TimerJobs()) EXPECT_FALSE(entry.item.Running());
  EXPECT_EQ(jet.TimerJobs().at(0).ElapsedSeconds(), 12);
}

}  // namespace
}  // namespace sentrune::tracking_test
