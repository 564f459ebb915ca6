#include "support/test_addin.h"

#include <algorithm>

namespace sentrune::testing {

std::vector<std::string> TestAddin::TraceLines() {
  std::vector<std::string> lines;
  const std::string text = files().Contents(state.trace.path()).value_or("");
  for (size_t start = 0, end; start < text.size(); start = end + 2) {
    end = std::min(text.find("\r\n", start), text.size());
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

}  // namespace sentrune::testing
