#pragma once
#include <iosfwd>

namespace sentrune::cli {

class HostPlatform;

// Parses the command line, runs one command on the host's platform, returns
// the exit status. `host` is only used during the call.
int Main(HostPlatform& host, int argc, char** argv);
// The same over given streams, for tests that drive the host in-process.
int Run(HostPlatform& host, int argc, const char* const* argv, std::istream& in, std::ostream& out,
        std::ostream& err);

}  // namespace sentrune::cli
