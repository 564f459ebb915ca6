#pragma once
// The type libraries Wine installs: its .tlb files and the components that
// carry one as their first TYPELIB resource. Empty without Wine.
#include <filesystem>
#include <vector>

#include "platform/pe/pe_image.h"
#include "support/host_files.h"

namespace sentrune::testing {

inline bool HasTypeLib(const std::filesystem::path& file) {
  const std::vector<uint8_t> bytes = ReadHostBytes(file);
  const rt::Result<portable::PeImage> image = portable::PeImage::Parse(bytes);
  return image.ok() && image->FindResource(portable::ResourceId::Named(portable::kTypeLibResourceType),
                                           portable::ResourceId::Number(1));
}

inline std::vector<std::filesystem::path> WineTypeLibraries() {
  std::vector<std::filesystem::path> files = WineFiles("x86_64", ".tlb");
  for (const char* extension : {".dll", ".ocx"})
    for (const std::filesystem::path& file : WineFiles("x86_64", extension))
      if (HasTypeLib(file)) files.push_back(file);
  return files;
}

}  // namespace sentrune::testing
