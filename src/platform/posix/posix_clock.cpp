#include "platform/posix/posix_clock.h"

#include <ctime>

#include "platform/posix/host_time.h"

namespace sentrune::posix {

rt::DateTime PosixClock::Now() const { return LocalDateTime(std::time(nullptr)); }

double PosixClock::Timer() const {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  if (!localtime_r(&now.tv_sec, &local)) return 0.0;
  return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec + now.tv_nsec / 1e9;
}

}  // namespace sentrune::posix
