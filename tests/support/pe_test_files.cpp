#include "platform/pe/pe_test_files.h"

#include <algorithm>
#include <fstream>

namespace sentrune::testing {
namespace {

// Where Debian installs Wine's Windows-side binaries: the multiarch library
// folder of either host architecture, or the older non-multiarch one.
std::vector<std::filesystem::path> WineFolders(std::string_view arch) {
  const std::string leaf = std::string(arch) + "-windows";
  std::vector<std::filesystem::path> folders;
  for (const char* triplet : {"x86_64-linux-gnu", "i386-linux-gnu", "aarch64-linux-gnu"}) {
    folders.push_back(std::filesystem::path("/usr/lib") / triplet / "wine" / leaf);
  }
  folders.push_back(std::filesystem::path("/usr/lib/wine") / leaf);
  return folders;
}

}  // namespace

std::vector<std::filesystem::path> WineFiles(std::string_view arch, std::string_view extension) {
  std::vector<std::filesystem::path> files;
  for (const auto& folder : WineFolders(arch)) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
      if (entry.is_regular_file() && entry.path().extension() == extension) files.push_back(entry.path());
    }
    if (!files.empty()) break;
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::optional<std::filesystem::path> WineFile(std::string_view arch, std::string_view name) {
  for (const auto& folder : WineFolders(arch)) {
    std::error_code error;
    if (std::filesystem::is_regular_file(folder / name, error)) return folder / name;
  }
  return std::nullopt;
}

std::vector<uint8_t> ReadHostFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  std::vector<uint8_t> bytes(static_cast<size_t>(std::max<std::streamoff>(in.tellg(), 0)));
  in.seekg(0);
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(in.gcount()));
  return bytes;
}

}  // namespace sentrune::testing
