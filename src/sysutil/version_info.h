#pragma once
// clsVersionInfo: a file's version as the four dotted numbers of its fixed
// version information.
#include <string>

#include "platform/version_resource.h"

namespace sentrune {

// "major.minor.build.revision" from the high and low words of the file
// version; "0.0.0.0" when the file has no readable version resource.
std::string FileVersionText(platform::VersionResources& versions, const std::string& path);

}  // namespace sentrune
