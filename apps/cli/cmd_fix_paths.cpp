// `sentrune fix-paths`: makes the absolute paths on a project file's own
// drive relative to it, after backing the file up.
#include <ostream>

#include "commands.h"
#include "files/file_functions.h"
#include "files/path_fixer.h"
#include "session.h"
#include "settings/options_handler.h"

namespace sentrune::cli {
namespace {

using Outcome = PathFixResult::Outcome;

// The fixer has told the user through its own boxes and report window; this
// adds what a script needs: where the files went and the exit status.
void Conclude(Session& session, const PathFixResult& result, const std::string& argument) {
  switch (result.outcome) {
    case Outcome::kFixed:
      session.out << "Backup: " << session.ToHostPath(result.backupFile) << '\n'
                  << "Rewritten: " << session.ToHostPath(result.projectFile) << " (" << result.changes.size()
                  << (result.changes.size() == 1 ? " line" : " lines") << " changed)\n";
      return;
    case Outcome::kReadOnly:
      session.exitCode = kExitBadInput;
      return;
    case Outcome::kNotBackedUp:
      session.err << "sentrune: no backup could be made at '" << session.ToHostPath(result.backupFile) << "'; '"
                  << argument << "' was not changed\n";
      session.exitCode = kExitStopped;
      return;
    case Outcome::kFailed:
      session.exitCode = kExitStopped;
      return;
    case Outcome::kNothingFound:
    case Outcome::kCancelled:
      return;
  }
}

void FixPaths(Session& session, const std::string& argument) {
  if (!session.Ready()) return;
  const rt::Result<std::string> path = session.ToWindowsPath(argument);
  if (!path.ok()) return session.Fail(path.error().description);
  if (!lfncFileExists(session.state().files(), *path))
    return session.Fail("no such project file '" + argument + "'");
  Conclude(session, Parse4ABSFile(session.state(), session.options().options(), *path), argument);
}

}  // namespace

void SetUpFixPaths(CLI::App& command, Session& session) {
  command.footer(
      "Only paths on the project's own drive, to files that exist, are rewritten. The file is\n"
      "backed up into its backup folder first and left alone when that backup fails.");
  command.add_option("project", RunWith(command, session, FixPaths), "The .vbp file")->required();
}

}  // namespace sentrune::cli
