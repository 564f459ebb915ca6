#pragma once
#include <iosfwd>

namespace sentrune::cli {
// Parses the command line, runs one command, returns the exit status.
int Main(int argc, char** argv);
// The same over given streams, for tests that drive the host in-process.
int Run(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err);
}  // namespace sentrune::cli
