#include "tracking/trace_block.h"

namespace sentrune {

TraceBlock::TraceBlock(AddinState& state, int ruleLength, const std::string& title)
    : state_(state), ruleLength_(ruleLength), started_(state.Timer()) {
  state_.trace({TraceRule('*', ruleLength_)});
  if (!title.empty()) state_.trace({title});
}

TraceBlock::~TraceBlock() {
  state_.trace({"'Elapsed Time:", state_.Timer() - started_});
  state_.trace({TraceRule('*', ruleLength_)});
}

}  // namespace sentrune
