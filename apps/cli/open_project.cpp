#include "open_project.h"

#include "platform/headless/headless_ide.h"
#include "session.h"

namespace sentrune::cli {

platform::ProjectPtr OpenOneProject(Session& session, const std::string& argument) {
  if (!session.Ready()) return nullptr;
  const rt::Result<std::string> path = session.ToWindowsPath(argument);
  if (!path.ok()) {
    session.Fail(path.error().description);
    return nullptr;
  }
  const rt::Result<headless::HeadlessIde::OpenResult> opened = session.ide().Open(*path);
  if (!opened.ok()) {
    session.Fail(opened.error().description);
    return nullptr;
  }
  if (opened->projects.size() != 1) {
    session.Fail(argument + " is a group; name one project (.vbp)");
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
