#pragma once
// The host's wall clock in local time.
#include "platform/env.h"

namespace sentrune::posix {

class PosixClock : public platform::Clock {
 public:
  rt::DateTime Now() const override;
  double Timer() const override;
};

}  // namespace sentrune::posix
