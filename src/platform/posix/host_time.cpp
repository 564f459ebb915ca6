#include "platform/posix/host_time.h"

#include <cerrno>

namespace sentrune::posix {

rt::DateTime LocalDateTime(time_t seconds) {
  tm local{};
  if (!localtime_r(&seconds, &local)) return rt::DateTime{};
  return rt::DateTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                      local.tm_hour,        local.tm_min,     local.tm_sec};
}

std::optional<time_t> HostTime(const rt::DateTime& local) {
  if (!local.IsValid()) return std::nullopt;
  tm fields{};
  fields.tm_year = local.year - 1900;
  fields.tm_mon = local.month - 1;
  fields.tm_mday = local.day;
  fields.tm_hour = local.hour;
  fields.tm_min = local.minute;
  fields.tm_sec = local.second;
  fields.tm_isdst = -1;  // let the zone rules decide, as Windows does for local times
  errno = 0;
  const time_t seconds = mktime(&fields);
  // -1 is also a real second (just before 1970 UTC); only errno tells them apart.
  if (seconds == static_cast<time_t>(-1) && errno != 0) return std::nullopt;
  return seconds;
}

}  // namespace sentrune::posix
