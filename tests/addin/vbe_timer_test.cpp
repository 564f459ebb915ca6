// The main form's timer without a form: ticks arrive through the thread's
// own message loop, a tick that throws does not stop the next one, and
// none arrives once the timer is gone.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "vbe_timer.h"

namespace sentrune::addin {
namespace {

// Runs the thread's message loop until `ticks` reaches `wanted`.
void PumpUntil(const int& ticks, int wanted) {
  MSG message;
  while (ticks < wanted && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

TEST(VbeTimer, TicksThroughTheMessageLoopAndStopsWhenDestroyed) {
  int ticks = 0;
  {
    MessageTimer timer(1, [&] {
      ++ticks;
      if (ticks == 1) throw std::runtime_error("a failing tick");
    });
    ASSERT_TRUE(timer.Running());
    PumpUntil(ticks, 2);
  }
  EXPECT_EQ(ticks, 2);
  MSG message;
  EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE));

  // A second timer after the first is gone registers its window again.
  MessageTimer again(1, [&] { ++ticks; });
  ASSERT_TRUE(again.Running());
  PumpUntil(ticks, 3);
  EXPECT_EQ(ticks, 3);
}

}  // namespace
}  // namespace sentrune::addin
