#pragma once
// The real PE files Debian's Wine packages install, found at test time (tests
// skip when they are absent), and the bytes of a host file.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace sentrune::testing {

// Windows-side binaries of Wine for an architecture ("x86_64" or "i386") with
// an extension (".dll"), sorted by name; empty when Wine is not installed.
std::vector<std::filesystem::path> WineFiles(std::string_view arch, std::string_view extension);
// One such file by name, when installed.
std::optional<std::filesystem::path> WineFile(std::string_view arch, std::string_view name);

std::vector<uint8_t> ReadHostFile(const std::filesystem::path& path);

}  // namespace sentrune::testing
