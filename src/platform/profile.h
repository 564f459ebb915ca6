#pragma once
// The Windows profile functions over INI files, by Windows path.
#include <cstdint>
#include <string>

namespace sentrune::platform {

class ProfileFiles {
 public:
  virtual ~ProfileFiles() = default;
  // GetPrivateProfileStringA: the value of section/key (both without regard to
  // case; the value trimmed of blanks), else defaultValue; at most size - 1
  // bytes of the file's ANSI text come back, as the fixed buffer holds them.
  // Text is UTF-8 here and Windows-1252 in the file.
  virtual std::string GetString(const std::string& section, const std::string& key,
                                const std::string& defaultValue, uint32_t size,
                                const std::string& path) = 0;
  // WritePrivateProfileStringA: sets section/key to value, creating the file
  // and the section when missing and keeping every other line byte for byte.
  // The file is replaced atomically. False when the file could not be written.
  virtual bool WriteString(const std::string& section, const std::string& key,
                           const std::string& value, const std::string& path) = 0;
};

}  // namespace sentrune::platform
