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

}  // namespace

std::span<const Command> Commands() { return kCommands; }

}  // namespace sentrune::cli
