#pragma once
// File version resources (version.dll's GetFileVersionInfo / VerQueryValue).
#include <cstdint>
#include <optional>
#include <string>

namespace sentrune::platform {

// dwFileVersionMS / dwFileVersionLS of VS_FIXEDFILEINFO.
struct FileVersion {
  uint32_t ms = 0;
  uint32_t ls = 0;
};

class VersionResources {
 public:
  virtual ~VersionResources() = default;
  // The fixed file version of the file at a Windows path; nothing when the
  // file is missing, unreadable, not a PE image or has no version resource.
  virtual std::optional<FileVersion> FileVersionOf(const std::string& path) = 0;
};

}  // namespace sentrune::platform
