#pragma once
// The template files the add-in inserts into user projects ship with the
// program; the command-line host puts them into the add-in's folder on first
// use, where the add-in expects them beside its INI file.
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace sentrune::cli {

// Copies each template file the add-in's folder lacks from `shareFolder`
// (both Windows paths, with or without trailing "\"). Files already there
// are the user's and stay as they are. Returns the names copied; a file that
// cannot be copied is passed over (the command that needs it reports it).
std::vector<std::string> SeedAddinFolder(platform::FileSystem& files, const std::string& addinFolder,
                                         const std::string& shareFolder);

}  // namespace sentrune::cli
