#pragma once
// Opening the one project a command works on, as the developer would open it
// in the IDE (so the add-in gives it a sink).
#include <string>

#include "platform/ide.h"

namespace sentrune::cli {

class Session;

// Opens the session, then the .vbp named by `argument` (host or Windows
// path), and makes it the active project. Null after reporting a failure
// (exit status 2): a bad path, an unreadable file or a group.
platform::ProjectPtr OpenOneProject(Session& session, const std::string& argument);

}  // namespace sentrune::cli
