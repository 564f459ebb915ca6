#pragma once
// Host time stamps and the run time's local dates, converted through the
// host's own time zone rules as the IDE's run time would report them.
#include <ctime>
#include <optional>

#include "runtime/datetime.h"

namespace sentrune::posix {

// Seconds since the Unix epoch as a local date and time.
rt::DateTime LocalDateTime(time_t seconds);
// A local date and time as seconds since the Unix epoch; nothing for an
// invalid date or one the host cannot represent.
std::optional<time_t> HostTime(const rt::DateTime& local);

}  // namespace sentrune::posix
