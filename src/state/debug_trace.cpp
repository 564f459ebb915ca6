#include "state/debug_trace.h"

#include <cmath>
#include <cstdio>

#include "runtime/text.h"

namespace sentrune {

TraceArg::TraceArg(double number) {
  // The timer value is a Single in the run time: two decimals are all it has.
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.2f", number);
  text_ = buffer;
  if (text_.find('.') != std::string::npos) {
    while (text_.back() == '0') text_.pop_back();
    if (text_.back() == '.') text_.pop_back();
  }
}

std::string TraceRule(char c, int count) { return std::string(static_cast<size_t>(count), c); }

void DebugTrace::operator()(std::initializer_list<TraceArg> args) {
  const rt::DateTime now = env_.Time().Now();
  std::string text;
  if (!lastTrip_) {
    path_ = env_.ModuleFolder() + env_.ModuleName() + "_Log.txt";
    // Each load starts a fresh trace; a failure here only loses the trace.
    (void)env_.Files().WriteFile(path_, "");
  } else {
    const int64_t pause = rt::DateDiffSeconds(*lastTrip_, now);
    if (pause > 2) {
      text += "\r\n" + TraceRule('/', 40) + "\r\n" + std::to_string(pause) +
              " seconds since last trip here.\r\n" + TraceRule('/', 40) + "\r\n";
    }
  }
  bool first = true;
  for (const TraceArg& arg : args) {
    if (!first) text += ' ';
    text += arg.text();
    first = false;
  }
  text += "\r\n";
  Append(text);
  lastTrip_ = now;
}

void DebugTrace::Append(const std::string& lines) {
  (void)env_.Files().AppendFile(path_, rt::Utf8ToCp1252(lines));
}

}  // namespace sentrune
