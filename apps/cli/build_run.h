#pragma once
// One build through the headless IDE, shared by `build` and `demo`.
#include <string>
#include <vector>

namespace sentrune::cli {

class Session;

struct BuildArgs {
  std::string project;
  std::string component;             // stand-in for the compiler's write
  std::vector<std::string> command;  // or the command that writes it
  std::string failOn;                // "any", "incompatible" or empty (never)
};

// Opens the session and the project, fires the IDE's before-write event,
// writes the component, fires the after-write event, saves the project when
// the add-in changed it, and prints what happened and how the build stands
// against its compatibility model. Sets session.exitCode.
void RunBuild(Session& session, const BuildArgs& args);

}  // namespace sentrune::cli
