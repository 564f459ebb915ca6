#pragma once
// File versions read from the RT_VERSION resource of a PE image, without the
// system's version library: the image is read through the FileSystem and its
// VS_VERSIONINFO block decoded here.
#include <optional>
#include <span>
#include <string>

#include "platform/file_system.h"
#include "platform/version_resource.h"

namespace sentrune::portable {

// The fixed file version of a VS_VERSIONINFO block (the bytes of an RT_VERSION
// resource); nothing when the block is malformed or carries no fixed part.
std::optional<platform::FileVersion> DecodeVersionInfo(std::span<const uint8_t> block);

// The fixed file version of a PE image's bytes: RT_VERSION resource 1, else
// the first RT_VERSION resource stored; nothing on any failure.
std::optional<platform::FileVersion> FileVersionOfImage(std::span<const uint8_t> image);

// "major.minor.build.revision" from the high and low words of the MS then the
// LS version word; "0.0.0.0" when there is no version.
std::string FormatFileVersion(std::optional<platform::FileVersion> version);

class PortableVersionResources : public platform::VersionResources {
 public:
  // The file system must outlive this object.
  explicit PortableVersionResources(const platform::FileSystem& fileSystem) : fs_(fileSystem) {}
  std::optional<platform::FileVersion> FileVersionOf(const std::string& path) override;

 private:
  const platform::FileSystem& fs_;
};

}  // namespace sentrune::portable
