#include "support/host_files.h"

#include <stdio.h>

#include <cctype>
#include <fstream>
#include <iterator>

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

// Where Debian installs Wine's Windows-side binaries: the multiarch library
// folder of either host architecture, or the older non-multiarch one.
std::vector<fs::path> WineFolders(std::string_view arch) {
  const std::string leaf = std::string(arch) + "-windows";
  std::vector<fs::path> folders;
  for (const char* triplet : {"x86_64-linux-gnu", "i386-linux-gnu", "aarch64-linux-gnu"}) {
    folders.push_back(fs::path("/usr/lib") / triplet / "wine" / leaf);
  }
  folders.push_back(fs::path("/usr/lib/wine") / leaf);
  return folders;
}

}  // namespace

std::vector<fs::path> WineFiles(std::string_view arch, std::string_view extension) {
  std::vector<fs::path> files;
  for (const auto& folder : WineFolders(arch)) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
      if (entry.is_regular_file() && entry.path().extension() == extension) files.push_back(entry.path());
    }
    if (!files.empty()) break;
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::optional<fs::path> WineFile(std::string_view arch, std::string_view name) {
  for (const auto& folder : WineFolders(arch)) {
    std::error_code error;
    if (fs::is_regular_file(folder / name, error)) return folder / name;
  }
  return std::nullopt;
}

std::vector<fs::path> CorpusFiles(std::initializer_list<std::string_view> extensions) {
  std::vector<fs::path> files;
  std::error_code error;
  for (auto it = fs::recursive_directory_iterator(CorpusFolder(), error); it != fs::recursive_directory_iterator();
       it.increment(error)) {
    std::string extension = it->path().extension().string();
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (it->is_regular_file() && std::find(extensions.begin(), extensions.end(), extension) != extensions.end())
      files.push_back(it->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<uint8_t> ReadHostBytes(const fs::path& path) {
  const std::string text = ReadHostFile(path);
  return {text.begin(), text.end()};
}

std::string ReadHostFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string CommandOutput(const std::string& command) {
  std::string out;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    pclose(pipe);
  }
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
  return out;
}

}  // namespace sentrune::testing
