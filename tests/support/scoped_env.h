#pragma once
// An environment variable set for the length of one test (POSIX hosts).
#include <stdlib.h>
#include <time.h>

#include <optional>
#include <string>

namespace sentrune::testing {

// Sets (or, with nullopt, removes) an environment variable until destroyed.
class ScopedEnv {
 public:
  ScopedEnv(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (const char* old = getenv(name_.c_str())) old_ = old;
    Apply(value);
  }
  ~ScopedEnv() { Apply(old_); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  void Apply(const std::optional<std::string>& value) {
    if (value) setenv(name_.c_str(), value->c_str(), 1);
    else unsetenv(name_.c_str());
    tzset();
  }
  std::string name_;
  std::optional<std::string> old_;
};

}  // namespace sentrune::testing
