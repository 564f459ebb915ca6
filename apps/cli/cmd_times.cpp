// `sentrune times`: the elapsed working time per component of a project.
#include <CLI/CLI.hpp>
#include <memory>

#include "commands.h"
#include "host/connect.h"
#include "open_project.h"
#include "session.h"
#include "tracking/activity_tracker.h"

namespace sentrune::cli {

void AddTimesCommand(CLI::App& app, Session& session) {
  CLI::App* times = app.add_subcommand("times", "Show the time worked on each component of a project");
  times->footer("Times come from the project's tracking database (.stn beside the .vbp), which\n"
                "`sentrune watch` fills while TrackTime is on.");
  auto file = std::make_shared<std::string>();
  times->add_option("project", *file, "The .vbp file")->required();
  times->callback([&session, file] {
    if (!OpenOneProject(session, *file)) return;
    session.connect().tracker()->ShowTimerJobs(session.options());
  });
}

}  // namespace sentrune::cli
