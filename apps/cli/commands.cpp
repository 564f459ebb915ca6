#include "commands.h"

#include "host/addin_menu.h"

namespace sentrune::cli {
namespace {

constexpr Command kCommands[] = {
    {"options", "Show the options grid; 'set' changes one option, 'reset' restores the start values",
     SetUpOptions, MenuCommand::kOptions},
    {"build", "Build a project's component with the add-in's chain around it", SetUpBuild},
    {"demo", "Play three builds of the Widgets example in a temporary copy and show what happens", SetUpDemo},
    {"inspect", "Show a component's type library as the viewer's tree", SetUpInspect, MenuCommand::kInspect},
    {"compare", "Compare a new build's type library (A) with its model (B)", SetUpCompare, MenuCommand::kInspect},
    {"refs", "List the references of a project or of every project of a group", SetUpRefs,
     MenuCommand::kReferences},
    {"fix-paths", "Make absolute paths in a project file relative to it", SetUpFixPaths, MenuCommand::kParse4ABS},
    {"snapshot", "Copy a project's source files into a dated folder", SetUpSnapshot, MenuCommand::kProjectSnapshot},
    {"times", "Show the time worked on each component of a project", SetUpTimes, MenuCommand::kShowTimer},
    {"history", "List a project's recorded builds; --compat shows where binary compatibility broke",
     SetUpHistory},
    {"watch", "Track the time worked on a project's components from file changes", SetUpWatch},
    {"fix-associations", "Repair the open commands of the VB file classes", SetUpFixAssociations,
     MenuCommand::kFixAssociations},
    {"verify", "Check that the components the add-in needs are registered and recent enough", SetUpVerify},
    {"verify-class", "Add or refresh the installation verification class in a project (and save it)",
     SetUpVerifyClass, MenuCommand::kInsertClass},
    {"add-align-control", "Add the alignment user control to a project (and save it)", SetUpAlignControl,
     MenuCommand::kInsertUserControl},
    {"details", "The diagnostics view: the verification run line by line", SetUpDetails},
};

// What exit status 1 means, for the commands where "a step could not do its
// work" would say too little.
constexpr struct {
  const char* command;
  const char* stopped;
} kStopped[] = {
    {"options", "the options file could not be written"},
    {"build", "a step of the build could not do its work, or the build failed --fail-on"},
    {"demo", "a build of the story could not do its work"},
    {"inspect", "the XML or IDL could not be written"},
    {"compare", "the builds differ (with --fail-on incompatible: A is incompatible with B)"},
    {"fix-paths", "the project file could not be backed up or rewritten (read-only or a link: 2)"},
    {"watch", "the files could not be watched or the totals kept"},
    {"verify", "a component failed"},
    {"verify-class", "the class was not added"},
    {"add-align-control", "the control was not added"},
    {"details", "a component failed"},
    {"refs", "a project of the group could not be opened (none: 2)"},
    {"history", "the tracking database or a dated copy could not be read"},
    {"snapshot", "the snapshot could not be made"},
};

}  // namespace

std::span<const Command> Commands() { return kCommands; }

std::string ExitStatusHelp(std::string_view command) {
  std::string stopped = "a step could not do its work";
  for (const auto& entry : kStopped)
    if (command == entry.command) stopped = entry.stopped;
  return "Exit status:\n  0  done\n  1  " + stopped +
         "\n  2  bad input: a missing file, a folder, a file that is no project or has no type\n"
         "     library, or bad arguments";
}

}  // namespace sentrune::cli
