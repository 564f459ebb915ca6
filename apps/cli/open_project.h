#pragma once
// Opening the project a command works on, as the developer would open it in
// the IDE (so the add-in gives it a sink).
#include <optional>
#include <string>

#include "platform/headless/headless_ide.h"

namespace sentrune::cli {

class Session;

// Opens the session, then the .vbp or .vbg named by `argument` (host or
// Windows path). Nothing after reporting a failure that names the argument
// (exit status 2): a bad path, a missing file, a folder, a file that is no
// project or group.
std::optional<headless::HeadlessIde::OpenResult> OpenProjectFile(Session& session, const std::string& argument);

// The same for one .vbp, made the active project; a group is refused.
platform::ProjectPtr OpenOneProject(Session& session, const std::string& argument);

}  // namespace sentrune::cli
