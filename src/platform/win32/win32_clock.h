#pragma once
// The local wall clock, and the local dates of the file system's time stamps,
// both as the VB run time reports them.
#include <cstdint>
#include <optional>

#include "platform/env.h"
#include "runtime/datetime.h"

namespace sentrune::win32 {

class Win32Clock : public platform::Clock {
 public:
  rt::DateTime Now() const override;
  // With the milliseconds the system clock gives.
  double Timer() const override;
};

// A FILETIME (100-nanosecond units since 1601, UTC) as a local date, to the
// second. Like the run time's FileDateTime it applies the current offset from
// UTC, not the one in force at that date, so that it agrees with Explorer and
// the IDE's own dialogs on the same machine.
rt::DateTime LocalDateTime(uint64_t fileTime);
// The reverse, over the same offset; nothing for a date the system cannot
// represent.
std::optional<uint64_t> FileTimeOfLocal(const rt::DateTime& local);

}  // namespace sentrune::win32
