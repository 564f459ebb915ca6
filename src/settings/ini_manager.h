#pragma once
// clsIniManager: one value of one key of one section of an INI file, read
// and written through the profile functions with their 255-byte buffer; and
// modINIManager, which keeps the shared instance over the add-in's own INI
// file.
#include <memory>
#include <string>

#include "state/addin_state.h"
#include "platform/profile.h"

namespace sentrune {

class clsIniManager {
 public:
  // The profile functions must outlive this object.
  explicit clsIniManager(platform::ProfileFiles& profiles) : profiles_(profiles) {}

  void SetDefault(std::string text) { default_ = std::move(text); }
  void SetPath(std::string path) { path_ = std::move(path); }
  void SetKey(std::string key) { key_ = std::move(key); }
  void SetSection(std::string section) { section_ = std::move(section); }
  const std::string& Path() const { return path_; }

  // The stored text of Section/Key (at most 254 bytes of it), else Default.
  std::string Value() const;
  // Stores the text with every NUL cut out; the outcome is kept.
  void SetValue(const std::string& text);
  // What the last write returned: false when the file was left as it was.
  bool LastWriteSucceeded() const { return lastWrite_; }

 private:
  static constexpr uint32_t kBufferSize = 255;

  platform::ProfileFiles& profiles_;
  std::string path_, section_, key_, default_;
  bool lastWrite_ = true;
};

class modINIManager {
 public:
  // The state must outlive this object.
  explicit modINIManager(AddinState& state) : state_(state) {}

  // The shared instance over "<module folder>\<module name>.ini", made on
  // first use.
  clsIniManager& GetIniManager();
  std::string INIGetSetting(const std::string& section, const std::string& key,
                            const std::string& defaultValue);
  void INISaveSetting(const std::string& section, const std::string& key, const std::string& value);

 private:
  AddinState& state_;
  std::unique_ptr<clsIniManager> manager_;
};

}  // namespace sentrune
