#pragma once
// The Windows profile functions over INI files reached through a FileSystem:
// the file is read whole, looked up or rewritten by the rules of ini_text.h,
// and replaced atomically, so a failed write never leaves half a file.
#include <cstdint>
#include <string>

#include "platform/file_system.h"
#include "platform/profile.h"

namespace sentrune::portable {

class PortableProfileFiles : public platform::ProfileFiles {
 public:
  // The file system must outlive this object.
  explicit PortableProfileFiles(platform::FileSystem& files) : files_(files) {}

  // A file that cannot be read counts as empty: the default comes back.
  std::string GetString(const std::string& section, const std::string& key,
                        const std::string& defaultValue, uint32_t size,
                        const std::string& path) override;
  // Writes "<path>.tmp" beside the file and renames it over the file. False
  // (and the file untouched) when the file exists but cannot be read, is
  // read-only, or the temporary file cannot be written or renamed.
  bool WriteString(const std::string& section, const std::string& key,
                   const std::string& value, const std::string& path) override;

 private:
  platform::FileSystem& files_;
};

}  // namespace sentrune::portable
