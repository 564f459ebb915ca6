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

void TakeSnapshot(Session& session, const std::string& argument) {
  const platform::ProjectPtr project = OpenOneProject(session, argument);
  if (!project) return;
  clsProject* sink = session.connect().FindProjectSink(project->Name());
  if (!sink) return session.Fail("the add-in did not take up " + argument);
  const int32_t result = lfncSnapshotEX(*sink, true);
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
      "chosen last time). Files named outside the project folder go under \"_outside\".");
  command.add_option("project", RunWith(command, session, TakeSnapshot), "The .vbp file")->required();
}

}  // namespace sentrune::cli
