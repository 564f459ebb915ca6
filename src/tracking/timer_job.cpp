#include "tracking/timer_job.h"

#include <algorithm>
#include <limits>

namespace sentrune {

clsTimerJob::clsTimerJob(const platform::Clock& clock, std::string key)
    : clock_(&clock), key_(std::move(key)), start_(clock.Now()) {}

int32_t clsTimerJob::ElapsedSeconds() const {
  if (!running_) return elapsed_;
  const int64_t total = elapsed_ + rt::DateDiffSeconds(start_, clock_->Now());
  return static_cast<int32_t>(std::clamp<int64_t>(total, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

void clsTimerJob::SetRunning(bool running) {
  if (running_ && !running) {
    const int32_t total = ElapsedSeconds();
    if (total != elapsed_) {
      elapsed_ = total;
      start_ = clock_->Now();
      changed_ = true;
    }
  }
  running_ = running;
  if (running) changed_ = true;
}

}  // namespace sentrune
