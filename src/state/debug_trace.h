#pragma once
// DebugMod's trace: appends one line per call to "<module>_Log.txt" beside the
// add-in, emptied on the first call of each load, with a banner before a line
// that follows a pause of more than two seconds.
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "platform/env.h"
#include "runtime/datetime.h"

namespace sentrune {

// One argument of a trace line: text as it stands, numbers as the run time
// prints them.
class TraceArg {
 public:
  TraceArg(std::string_view text) : text_(text) {}        // NOLINT: implicit by design
  TraceArg(const std::string& text) : text_(text) {}      // NOLINT
  TraceArg(const char* text) : text_(text) {}             // NOLINT
  TraceArg(int32_t number) : text_(std::to_string(number)) {}  // NOLINT
  TraceArg(int64_t number) : text_(std::to_string(number)) {}  // NOLINT
  TraceArg(double number);                                 // NOLINT
  TraceArg(bool flag) : text_(flag ? "True" : "False") {}  // NOLINT
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

class DebugTrace {
 public:
  explicit DebugTrace(platform::Env& env) : env_(env) {}

  // Writes the arguments, separated by a blank, as one line.
  void operator()(std::initializer_list<TraceArg> args);

  // The trace file of this load; empty until the first call.
  const std::string& path() const { return path_; }

 private:
  void Append(const std::string& lines);

  platform::Env& env_;
  std::string path_;
  std::optional<rt::DateTime> lastTrip_;
};

// A line of `count` copies of `c`, for the framing lines of the trace.
std::string TraceRule(char c, int count);

}  // namespace sentrune
