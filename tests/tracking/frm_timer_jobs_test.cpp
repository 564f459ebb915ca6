#include "tracking/frm_timer_jobs.h"

#include <gtest/gtest.h>

#include <limits>

#include "settings/options_handler.h"
#include "tracking_world.h"

namespace sentrune::tracking_test {
namespace {

TEST(FormatElapsed, PadsHoursToFourDigitsAndNeverCutsThem) {
  EXPECT_EQ(frmTimerJobs::FormatElapsed(0), "0000:00:00");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(59), "0000:00:59");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(3723), "0001:02:03");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(100 * 3600), "0100:00:00");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(9999 * 3600 + 3599), "9999:59:59");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(10000 * 3600), "10000:00:00");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(std::numeric_limits<int32_t>::max()), "596523:14:07");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(-61), "-0000:01:01");
  EXPECT_EQ(frmTimerJobs::FormatElapsed(std::numeric_limits<int32_t>::min()), "-596523:14:08");
}

TEST(TimerJobsForm, AProjectWithoutDatabaseShowsColumnsOnly) {
  testing::TestAddin addin;
  OptionsHandler options(addin.state);
  clsJet351 jet(addin.state);
  jet.SetCurrentDBName("C:\\Work\\Unsaved.stn");
  frmTimerJobs form(addin.state, options);
  form.SetTheJetClass(&jet);
  form.Show();
  ASSERT_EQ(addin.ui.forms.size(), 1u);
  EXPECT_EQ(addin.ui.forms[0].caption, "Time Tracking - [Unsaved]");
  EXPECT_EQ(addin.ui.forms[0].headers.size(), 3u);
  EXPECT_TRUE(addin.ui.forms[0].rows.empty());
  EXPECT_FALSE(addin.files().Exists("C:\\Work\\Unsaved.stn"));
  EXPECT_TRUE(addin.ui.boxes.empty());
}

TEST(TimerJobsForm, RemembersItsSizeUnderTimedJobs) {
  testing::TestAddin addin;
  OptionsHandler options(addin.state);
  options.SaveOption("TimedJobs_Height", "4200");
  options.SaveOption("TimedJobs_ColWidth2", "120");
  options.SaveOption("TimedJobs_ColWidth3", "-1");
  frmTimerJobs form(addin.state, options);
  form.Show();
  EXPECT_EQ(form.height, 4200);
  EXPECT_EQ(form.width, -1);
  EXPECT_EQ(form.colWidths, (std::array<int32_t, 3>{35, 120, 78}));
  EXPECT_EQ(options.GetOption("TimedJobs_Height"), "4200");
  EXPECT_EQ(options.GetOption("TimedJobs_Width"), "-1");
  EXPECT_EQ(options.GetOption("TimedJobs_ColWidth1"), "35");
  EXPECT_EQ(options.GetOption("TimedJobs_ColWidth2"), "120");
  EXPECT_EQ(options.GetOption("TimedJobs_ColWidth3"), "78");
  EXPECT_EQ(addin.ui.forms[0].caption, "Time Tracking - []");
}

}  // namespace
}  // namespace sentrune::tracking_test
