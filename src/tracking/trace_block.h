#pragma once
// A block of the tracking code's trace: framed by rules of "*", closed by
// the time it took, so that slow database work stands out in the trace.
#include <string>

#include "state/addin_state.h"

namespace sentrune {

class TraceBlock {
 public:
  // Traces a rule of `ruleLength` "*" and then the title, when there is one.
  TraceBlock(AddinState& state, int ruleLength, const std::string& title = {});
  // Traces "'Elapsed Time:" with the seconds since the opening, then the rule.
  ~TraceBlock();
  TraceBlock(const TraceBlock&) = delete;
  TraceBlock& operator=(const TraceBlock&) = delete;

 private:
  AddinState& state_;
  int ruleLength_;
  double started_;
};

}  // namespace sentrune
