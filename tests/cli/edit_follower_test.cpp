// Which component `watch` reports as edited, driven by a made-up clock.
#include "edit_follower.h"

#include <gtest/gtest.h>

namespace sentrune::cli {
namespace {

const FollowerEvent kSave{FollowerEvent::kSave, {}};
const FollowerEvent kIdle{FollowerEvent::kIdle, {}};
FollowerEvent Active(const std::string& name) { return {FollowerEvent::kActive, name}; }

// One follower through a day's edits: a change of a component's file, or
// with none time passing, and what each causes.
TEST(EditFollower, TheLastChangedFileIsEditedUntilAnotherChangesOrFiveMinutesPass) {
  EditFollower follower(0);
  const struct {
    const char* changed;
    double at;
    std::vector<FollowerEvent> events;
    const char* active;
  } steps[] = {
      {"Form1", 0, {Active("Form1")}, "Form1"},
      {"Form1", 10, {}, "Form1"},  // more writes to the same file are no switch
      {"Module1", 20, {Active("Module1")}, "Module1"},
      {"Form1", 60, {kSave, Active("Form1")}, "Form1"},  // saves come every minute, changes or not
      {"Form1", 200, {kSave}, "Form1"},  // restarts the pause
      {nullptr, 260, {kSave}, "Form1"},
      {nullptr, 499.5, {kSave}, "Form1"},
      {nullptr, 500, {kIdle}, ""},
      {nullptr, 540, {}, ""},
      {"Form1", 900, {kSave, Active("Form1")}, "Form1"},
      // A pause no tick saw is reported before the same component starts again.
      {"Form1", 1300, {kIdle, kSave, Active("Form1")}, "Form1"},
      // A long gap (a suspended machine) gives one save, not one per minute missed.
      {nullptr, 7000, {kIdle, kSave}, ""},
  };
  for (const auto& step : steps) {
    EXPECT_EQ(step.changed ? follower.Changed(step.changed, step.at) : follower.Tick(step.at), step.events) << step.at;
    EXPECT_EQ(follower.Active(), step.active) << step.at;
  }
}

}  // namespace
}  // namespace sentrune::cli
