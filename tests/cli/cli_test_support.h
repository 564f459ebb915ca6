#pragma once
// The command-line host run in-process on the POSIX wiring, over a
// temporary folder whose "home" is the add-in's folder.
#include <sstream>
#include <string>
#include <vector>

#include "cli_main.h"
#include "posix_host.h"
#include "support/temp_folder.h"
#include "typelib/typelib_world.h"  // FixturePath, ReadHostFile

namespace sentrune::testing {

struct CliRun {
  int status = 0;
  std::string out;
  std::string err;
};

struct Cli {
  TempFolder temp;
  std::vector<std::string> global = {"--no"};  // options before every command

  std::string home() const { return temp / "home"; }
  // `sentrune --home <home> <global...> args...`
  CliRun Run(std::vector<std::string> args) const {
    args.insert(args.begin(), global.begin(), global.end());
    args.insert(args.begin(), {"sentrune", "--home", home()});
    std::vector<const char*> argv;
    for (const std::string& arg : args) argv.push_back(arg.c_str());
    std::istringstream in;
    std::ostringstream out, err;
    cli::PosixHost host;
    const int status = cli::Run(host, static_cast<int>(argv.size()), argv.data(), in, out, err);
    return {status, out.str(), err.str()};
  }
};

}  // namespace sentrune::testing
