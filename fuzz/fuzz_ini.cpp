// Reads and writes INI text made of arbitrary bytes: besides not crashing, a
// write changes only the written key's line and reads back (ini_fuzz_case.h).
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "ini_fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string problem = sentrune::ini_fuzz::Violation(sentrune::ini_fuzz::Decode(data, size));
  if (!problem.empty()) {
    std::fprintf(stderr, "INI property broken: %s\n", problem.c_str());
    std::abort();
  }
  return 0;
}
