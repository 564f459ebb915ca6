#pragma once
// clsShellFolders: special folders by their shell number (0 is the desktop).
#include <string>

#include "platform/env.h"

namespace sentrune {

// The folder's path, or empty text when the platform does not know it.
inline std::string ShellFolderPath(platform::Env& env, int folder) {
  return env.SpecialFolderPath(folder);
}

}  // namespace sentrune
