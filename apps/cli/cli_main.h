#pragma once

namespace sentrune::cli {
// Parses the command line, runs one command, returns the exit status.
int Main(int argc, char** argv);
}  // namespace sentrune::cli
