// `sentrune fix-paths`: makes the absolute paths on a project file's own
// drive relative to it, after backing the file up.
#include <filesystem>
#include <ostream>
#include <system_error>

#include "commands.h"
#include "files/path_fixer.h"
#include "platform/headless/headless_project.h"
#include "runtime/text.h"
#include "runtime/vb_error.h"
#include "session.h"
#include "settings/options_handler.h"

namespace sentrune::cli {
namespace {

using Outcome = PathFixResult::Outcome;

// " to " and where the link leads, for a user who runs the command there.
std::string LinkTarget(Session& session, const std::string& link) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::canonical(session.ToHostPath(link), error);
  return error ? std::string() : " to " + target.string();
}

// The fixer has told the user through its own boxes and report window; this
// adds what a script needs: which file, where the files went and the exit
// status.
void Conclude(Session& session, const PathFixResult& result, const std::string& argument) {
  switch (result.outcome) {
    case Outcome::kFixed:
      session.out << "Backup: " << session.ToHostPath(result.backupFile) << '\n'
                  << "Rewritten: " << session.ToHostPath(result.projectFile) << " (" << result.changes.size()
                  << (result.changes.size() == 1 ? " line" : " lines") << " changed)\n";
      return;
    case Outcome::kReadOnly:
      return session.Fail(argument + ": is read-only; nothing was changed");
    case Outcome::kLink:
      return session.Fail(argument + ": is a symbolic link" + LinkTarget(session, result.projectFile) +
                          "; nothing was changed: run fix-paths on the file it points to");
    case Outcome::kNotBackedUp:
      return session.Stop(argument + ": no backup could be made at '" + session.ToHostPath(result.backupFile) +
                          "'; nothing was changed");
    case Outcome::kFailed:
      return session.Stop(argument + ": the paths could not be fixed: " + rt::DescribeError(result.errorCode));
    case Outcome::kNothingFound:
    case Outcome::kCancelled:
      return;
  }
}

// Only a project file is handed to the fixer, which would otherwise report
// any file at all as parsed.
bool IsProjectFile(Session& session, const std::string& path, const std::string& argument) {
  const headless::ProjectContext context{.files = session.state().files(), .typelibs = nullptr, .events = {}};
  const auto project = headless::HeadlessProject::Load(context, path);
  if (!project.ok()) session.Fail(rt::Replace(project.error().description, path, argument));
  return project.ok();
}

void FixPaths(Session& session, const std::string& argument) {
  if (!session.Ready()) return;
  const rt::Result<std::string> path = session.ExistingFile(argument);
  if (!path.ok()) return session.Fail(path.error().description);
  if (!IsProjectFile(session, *path, argument)) return;
  Conclude(session, Parse4ABSFile(session.state(), session.options().options(), *path), argument);
}

}  // namespace

void SetUpFixPaths(CLI::App& command, Session& session) {
  command.footer(
      "Only paths on the project's own drive, to files that exist, are rewritten. The file is\n"
      "backed up into its backup folder first and left alone when that backup fails. A project\n"
      "file that is a symbolic link is refused: run fix-paths on the file it points to.");
  command.add_option("project", RunWith(command, session, FixPaths), "The .vbp file")->required();
}

}  // namespace sentrune::cli
