// `sentrune times`: the elapsed working time per component of a project.
#include <ostream>

#include "commands.h"
#include "host/connect.h"
#include "open_project.h"
#include "session.h"
#include "settings/options_handler.h"
#include "tracking/activity_tracker.h"
#include "tracking/jet351.h"
#include "workflow/step_support.h"

namespace sentrune::cli {
namespace {

void ShowTimes(Session& session, const std::string& argument) {
  const platform::ProjectPtr project = OpenOneProject(session, argument);
  if (!project) return;
  // Reading creates no file.
  clsJet351 jet(session.state());
  jet.SetCurrentDBName(TrackingDatabaseName(*project));
  jet.LoadTimerJobs();
  // A database that cannot be read is not "no time": it is named as the
  // command ends.
  if (session.state().failedDatabases.contains(jet.CurrentDBName())) return;
  if (!jet.TimerJobs().empty()) return session.connect().tracker()->ShowTimerJobs(session.options());
  session.out << "No time recorded for " << project->Name() << " yet. Time is recorded while `sentrune watch "
              << argument << "` runs, or while the add-in is loaded in the VB6 IDE";
  if (!session.options().options().TrackTime)
    session.out << ", once TrackTime is on (`sentrune options set TrackTime Yes`)";
  session.out << ".\n";
}

}  // namespace

void SetUpTimes(CLI::App& command, Session& session) {
  command.footer("Times come from the project's tracking database (.stn beside the .vbp), which\n"
                 "`sentrune watch` or the add-in in the IDE fills while TrackTime is on.");
  command.add_option("project", RunWith(command, session, ShowTimes), "The .vbp file")->required();
}

}  // namespace sentrune::cli
