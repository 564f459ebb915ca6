#include "cli_main.h"

#include <iostream>

namespace sentrune::cli {
int Main(int, char**) {
  std::cout << "sentrune " << SENTRUNE_VERSION << "\n";
  return 0;
}
}  // namespace sentrune::cli
