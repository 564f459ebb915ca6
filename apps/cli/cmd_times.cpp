// `sentrune times`: the elapsed working time per component of a project.
#include "commands.h"
#include "host/connect.h"
#include "open_project.h"
#include "session.h"
#include "tracking/activity_tracker.h"

namespace sentrune::cli {
namespace {

void ShowTimes(Session& session, const std::string& argument) {
  if (OpenOneProject(session, argument)) session.connect().tracker()->ShowTimerJobs(session.options());
}

}  // namespace

void SetUpTimes(CLI::App& command, Session& session) {
  command.footer("Times come from the project's tracking database (.stn beside the .vbp), which\n"
                 "`sentrune watch` fills while TrackTime is on.");
  command.add_option("project", RunWith(command, session, ShowTimes), "The .vbp file")->required();
}

}  // namespace sentrune::cli
