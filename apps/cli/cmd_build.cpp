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
  command.add_option("--fail-on", args.failOn, "Exit with 1 when the build is incompatible with its model")
      ->check(CLI::IsMember({"any", "incompatible"}).description(""))
      ->type_name("any|incompatible");
  command.footer(
      "Before the build the add-in may back up the old component and compare it with the\n"
      "compatibility model; after it, set up or update the model, record the build, take a\n"
      "snapshot and copy the component to the release folder, as the options say. When it\n"
      "compared the build with the model, a last line judges the build as `compare` does:\n"
      "Compatibility: identical, compatible or incompatible. --fail-on any fails a build that\n"
      "differs from its model at all.\n"
      "Example: sentrune --yes build Widgets.vbp --component builds/Widgets-1.1.dll --fail-on incompatible");
}

}  // namespace sentrune::cli
