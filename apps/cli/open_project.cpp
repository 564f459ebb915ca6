#include "open_project.h"

#include "runtime/text.h"
#include "session.h"

namespace sentrune::cli {

std::optional<headless::HeadlessIde::OpenResult> OpenProjectFile(Session& session, const std::string& argument) {
  if (!session.Ready()) return std::nullopt;
  const rt::Result<std::string> path = session.ExistingFile(argument);
  if (!path.ok()) {
    session.Fail(path.error().description);
    return std::nullopt;
  }
  rt::Result<headless::HeadlessIde::OpenResult> opened = session.ide().Open(*path);
  if (!opened.ok()) {
    // The IDE names the file by its Windows path; the user typed another.
    session.Fail(rt::Replace(opened.error().description, *path, argument));
    return std::nullopt;
  }
  return std::move(*opened);
}

platform::ProjectPtr OpenOneProject(Session& session, const std::string& argument) {
  const std::optional<headless::HeadlessIde::OpenResult> opened = OpenProjectFile(session, argument);
  if (!opened) return nullptr;
  if (opened->projects.size() != 1) {
    session.Fail(argument + ": is a group; name one project (.vbp)");
    return nullptr;
  }
  platform::ProjectPtr project = opened->projects.front();
  if (const rt::Status active = session.ide().SetActiveProject(project); !active.ok()) {
    session.Fail(active.error().description);
    return nullptr;
  }
  return project;
}

}  // namespace sentrune::cli
