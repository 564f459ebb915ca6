// `sentrune snapshot`: the menu's project snapshot for one project file.
#include <ostream>

#include "commands.h"
#include "host/connect.h"
#include "open_project.h"
#include "session.h"
#include "workflow/cls_project.h"
#include "workflow/snapshot.h"

namespace sentrune::cli {
namespace {

struct SnapshotArgs {
  std::string project;
  CLI::Option* comment = nullptr;
  std::string commentText;
  bool gather = false;
  bool noGather = false;
};

// The dialog's comment and check box, as the options on the command line
// set them.
SnapshotChoices Choices(const SnapshotArgs& args) {
  SnapshotChoices choices;
  if (args.comment->count() > 0) choices.comment = args.commentText;
  if (args.gather) choices.gather = true;
  if (args.noGather) choices.gather = false;
  return choices;
}

void TakeSnapshot(Session& session, const SnapshotArgs& args) {
  const std::string& argument = args.project;
  const platform::ProjectPtr project = OpenOneProject(session, argument);
  if (!project) return;
  clsProject* sink = session.connect().FindProjectSink(project->Name());
  if (!sink) return session.Fail("the add-in did not take up " + argument);
  const int32_t result = lfncSnapshotEX(*sink, true, Choices(args));
  const BuildReport report = sink->TakeBuildReport();
  if (!report.snapshotFolder.empty())
    session.out << "Snapshot: " << session.ToHostPath(report.snapshotFolder) << '\n';
  for (const BuildReport::OutsideFile& file : report.snapshotOutside)
    session.out << "Outside the project folder: " << session.ToHostPath(file.source) << " -> "
                << session.ToHostPath(file.destination) << '\n';
  if (result != 0) {
    session.err << "sentrune: the snapshot of " << project->Name() << " failed (error " << result << ")\n";
    session.exitCode = kExitStopped;
  } else if (report.snapshotFolder.empty()) {
    session.out << "No snapshot taken.\n";
  }
}

}  // namespace

void SetUpSnapshot(CLI::App& command, Session& session) {
  command.footer(
      "The project file and every source file it names are copied, in their places relative to\n"
      "the project folder, into \"<name> <date>\" beside the project (or under the base folder\n"
      "chosen last time); a name already taken gets \" (2)\", \" (3)\"..., and a symbolic link of\n"
      "that name is refused. Files named outside the project folder go under \"_outside\".\n"
      "As in the IDE's dialog, the comment goes to \"_Snapshot_ReadME.txt\" (read-only) and the\n"
      "dependencies (referenced type libraries and controls) to \"Dependencies\\\"; without the\n"
      "options the dialog's defaults (DefaultStoreComment, DefaultGatherDepens) decide. The\n"
      "dialog's question is still asked, as every question is (--yes takes the snapshot).");
  SnapshotArgs& args = RunWith(command, session, TakeSnapshot);
  command.add_option("project", args.project, "The .vbp file")->required();
  args.comment = command.add_option("--comment", args.commentText, "Store this comment with the snapshot")
                     ->type_name("TEXT");
  auto* gather =
      command.add_flag("--gather-dependencies", args.gather, "Copy the project's dependencies into the snapshot");
  command.add_flag("--no-gather-dependencies", args.noGather, "Leave the dependencies out")->excludes(gather);
}

}  // namespace sentrune::cli
