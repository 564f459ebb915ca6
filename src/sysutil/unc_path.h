#pragma once
// clsUNC: a path on a mapped network drive in its network form.
#include <string>

#include "platform/env.h"

namespace sentrune {

// "X:\dir\file" on a drive mapped to "\\server\share" gives
// "\\server\share\dir\file" (one "\" at the joint); every other path, UNC
// paths included, comes back unchanged.
std::string MappedDrive2UncPath(platform::Env& env, const std::string& path);

}  // namespace sentrune
