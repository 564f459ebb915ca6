#pragma once
// Files of the host that tests read: the committed fixtures, the real PE
// files Debian's Wine packages install and the VB6 corpus (tests skip when
// those are absent), and what a shell command prints; and little-endian
// fields of a byte buffer for tests that damage one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrune::testing {

// Windows-side binaries of Wine for an architecture ("x86_64" or "i386") with
// an extension (".dll"), sorted by name; empty when Wine is not installed.
std::vector<std::filesystem::path> WineFiles(std::string_view arch, std::string_view extension);
// One such file by name, when installed.
std::optional<std::filesystem::path> WineFile(std::string_view arch, std::string_view name);

// The real VB6 projects and components of ../shared/corpus/vb6, which tests
// read in place or copy out, never change.
inline std::filesystem::path CorpusFolder() { return std::filesystem::path(SENTRUNE_SHARED_DIR) / "corpus/vb6"; }
// Its files with one of these extensions (lower case: ".vbp"), whatever their
// case, sorted; empty without the corpus.
std::vector<std::filesystem::path> CorpusFiles(std::initializer_list<std::string_view> extensions);

// The contents of a host file; empty when it cannot be read.
std::vector<uint8_t> ReadHostBytes(const std::filesystem::path& path);
std::string ReadHostFile(const std::filesystem::path& path);
// What the shell prints for the command, without its final line ends.
std::string CommandOutput(const std::string& command);

// A relative host path as the rest of a Windows path: "a/b.vbp" is "a\\b.vbp".
inline std::string Backslashed(const std::filesystem::path& relative) {
  std::string text = relative.string();
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

inline std::filesystem::path FixtureFolder() { return std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures"; }
// A file of tests/fixtures ("pe/lookup.dll"); a missing one is a failure.
inline std::vector<uint8_t> FixtureFile(std::string_view name) {
  auto bytes = ReadHostBytes(FixtureFolder() / name);
  EXPECT_FALSE(bytes.empty()) << "fixture " << name << " is missing";
  return bytes;
}

// Where `text` first occurs in the bytes from `from` on; not finding it is a failure.
inline size_t FindText(const std::vector<uint8_t>& bytes, std::string_view text, size_t from = 0) {
  const std::vector<uint8_t> pattern(text.begin(), text.end());
  const auto found =
      std::search(bytes.begin() + static_cast<ptrdiff_t>(from), bytes.end(), pattern.begin(), pattern.end());
  EXPECT_NE(found, bytes.end()) << text;
  return static_cast<size_t>(found - bytes.begin());
}

inline uint32_t Get16(const std::vector<uint8_t>& b, size_t at) { return b[at] | b[at + 1] << 8; }
inline uint32_t Get32(const std::vector<uint8_t>& b, size_t at) { return Get16(b, at) | Get16(b, at + 2) << 16; }
inline void Set16(std::vector<uint8_t>& b, size_t at, uint32_t v) {
  b[at] = static_cast<uint8_t>(v);
  b[at + 1] = static_cast<uint8_t>(v >> 8);
}
inline void Set32(std::vector<uint8_t>& b, size_t at, uint32_t v) { Set16(b, at, v), Set16(b, at + 2, v >> 16); }

}  // namespace sentrune::testing
