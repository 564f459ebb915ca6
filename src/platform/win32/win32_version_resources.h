#pragma once
// File versions as version.dll reads them: the fixed part ("\") of the
// block GetFileVersionInfoW returns.
#include <optional>
#include <string>

#include "platform/version_resource.h"

namespace sentrune::win32 {

class Win32VersionResources : public platform::VersionResources {
 public:
  std::optional<platform::FileVersion> FileVersionOf(const std::string& path) override;
};

}  // namespace sentrune::win32
