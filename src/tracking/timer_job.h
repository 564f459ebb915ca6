#pragma once
// clsTimerJob: the stopwatch of one component, counting whole seconds of the
// wall clock between its start time and now while it runs.
#include <cstdint>
#include <string>
#include <utility>

#include "platform/env.h"
#include "runtime/datetime.h"

namespace sentrune {

class clsTimerJob {
 public:
  // Stopped, at zero seconds, its start time now. The clock must outlive it.
  clsTimerJob(const platform::Clock& clock, std::string key);

  // Running: the stored total plus the seconds since the start time; else
  // the stored total.
  int32_t ElapsedSeconds() const;
  void SetElapsedSeconds(int32_t seconds) { elapsed_ = seconds; }
  rt::DateTime StartTime() const { return start_; }
  void SetStartTime(const rt::DateTime& start) { start_ = start; }
  const std::string& Key() const { return key_; }
  void SetKey(std::string key) { key_ = std::move(key); }
  // The total differs from what the database holds.
  bool Changed() const { return changed_; }
  void SetChanged(bool changed) { changed_ = changed; }
  bool Running() const { return running_; }

  // Stopping folds the time run into the total and restarts the count from
  // now, but only when whole seconds were gained. Starting leaves the start
  // time alone, so a job switched on again also counts the time it was off
  // since it was last stopped with a gain; that is how the stopwatch has
  // always counted, and stored totals depend on it.
  void SetRunning(bool running);

 private:
  const platform::Clock* clock_;
  std::string key_;
  int32_t elapsed_ = 0;
  rt::DateTime start_;
  bool running_ = false;
  bool changed_ = false;
};

}  // namespace sentrune
