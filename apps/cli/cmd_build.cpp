// `sentrune build`: one build of a project, played the way the IDE plays it,
// so that the add-in's chain runs around it.
#include "build_run.h"
#include "commands.h"
#include "session.h"

namespace sentrune::cli {

void SetUpBuild(CLI::App& command, Session& session) {
  BuildArgs& args = RunWith(command, session, RunBuild);
  command.add_option("project", args.project, "The project file (.vbp)")->required();
  command.add_option("--component", args.component,
                     "Copy FILE over the build file as the stand-in for the compiler's write")
      ->type_name("FILE");
  command.add_option("command", args.command,
                     "After --: the command that writes the component (a VB6 command-line build)");
  command.footer(
      "Before the build the add-in may back up the old component and compare it with the\n"
      "compatibility model; after it, set up or update the model, record the build, take a\n"
      "snapshot and copy the component to the release folder, as the options say.\n"
      "Example: sentrune --yes build Widgets.vbp --component builds/Widgets-1.1.dll\n"
      "Exit status: 0 the chain ran to its end, 1 a step ended it, 2 bad input.");
}

}  // namespace sentrune::cli
