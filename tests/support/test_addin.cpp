#include "support/test_addin.h"

namespace sentrune::testing {

std::vector<std::string> TestAddin::TraceLines() {
  std::vector<std::string> lines;
  const std::optional<std::string> text = files().Contents(state.trace.path());
  if (!text) return lines;
  size_t start = 0;
  while (start < text->size()) {
    size_t end = text->find("\r\n", start);
    if (end == std::string::npos) end = text->size();
    lines.push_back(text->substr(start, end - start));
    start = end + 2;
  }
  return lines;
}

}  // namespace sentrune::testing
