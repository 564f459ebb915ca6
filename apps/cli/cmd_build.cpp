// `sentrune build`: one build of a project, played the way the IDE plays it,
// so that the add-in's chain runs around it.
#include <CLI/CLI.hpp>
#include <ostream>

#include "build_run.h"
#include "commands.h"
#include "session.h"

namespace sentrune::cli {

void AddBuildCommand(CLI::App& app, Session& session) {
  auto args = std::make_shared<BuildArgs>();
  CLI::App* build = app.add_subcommand(
      "build", "Build a project's component with the add-in's chain around it");
  build->add_option("project", args->project, "The project file (.vbp)")->required();
  build->add_option("--component", args->component,
                    "Copy FILE over the build file as the stand-in for the compiler's write")
      ->type_name("FILE");
  build->add_option("command", args->command,
                    "After --: the command that writes the component (a VB6 command-line build)");
  build->footer(
      "Before the build the add-in may back up the old component and compare it with the\n"
      "compatibility model; after it, set up or update the model, record the build, take a\n"
      "snapshot and copy the component to the release folder, as the options say.\n"
      "Example: sentrune --yes build Widgets.vbp --component builds/Widgets-1.1.dll\n"
      "Exit status: 0 the chain ran to its end, 1 a step ended it, 2 bad input.");
  build->callback([&session, args] {
    if (session.Ready()) RunBuild(session, *args);
  });
}

}  // namespace sentrune::cli
