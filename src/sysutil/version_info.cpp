#include "sysutil/version_info.h"

namespace sentrune {

std::string FileVersionText(platform::VersionResources& versions, const std::string& path) {
  const std::optional<platform::FileVersion> version = versions.FileVersionOf(path);
  if (!version) return "0.0.0.0";
  return std::to_string(version->ms >> 16) + "." + std::to_string(version->ms & 0xFFFF) + "." +
         std::to_string(version->ls >> 16) + "." + std::to_string(version->ls & 0xFFFF);
}

}  // namespace sentrune
