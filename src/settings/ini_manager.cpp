#include "settings/ini_manager.h"

#include <algorithm>
#include <exception>

#include "state/msgbox.h"

namespace sentrune {

std::string clsIniManager::Value() const {
  return profiles_.GetString(section_, key_, default_, kBufferSize, path_);
}

void clsIniManager::SetValue(const std::string& text) {
  std::string clean = text;
  clean.erase(std::remove(clean.begin(), clean.end(), '\0'), clean.end());
  lastWrite_ = profiles_.WriteString(section_, key_, clean, path_);
}

clsIniManager& modINIManager::GetIniManager() {
  if (!manager_) {
    manager_ = std::make_unique<clsIniManager>(state_.platform.profiles);
    std::string folder = state_.env().ModuleFolder();
    if (folder.empty() || folder.back() != '\\') folder += '\\';
    manager_->SetPath(folder + state_.env().ModuleName() + ".ini");
  }
  return *manager_;
}

std::string modINIManager::INIGetSetting(const std::string& section, const std::string& key,
                                         const std::string& defaultValue) {
  clsIniManager& ini = GetIniManager();
  ini.SetSection(section);
  ini.SetKey(key);
  ini.SetDefault(defaultValue);
  return ini.Value();
}

void modINIManager::INISaveSetting(const std::string& section, const std::string& key,
                                   const std::string& value) {
  try {
    clsIniManager& ini = GetIniManager();
    ini.SetSection(section);
    ini.SetKey(key);
    ini.SetValue(value);
  } catch (const std::exception& e) {
    // Nothing from the store may reach the caller; the user learns of it here.
    state_.err.Raise(rt::errnum::kPathFileAccessError, "modINIManager", e.what());
    lfncMsgBoxEX(state_, state_.err.description(), platform::mb::kCritical,
                 "modINIManager:INISaveSetting");
    state_.err.Clear();
  }
}

}  // namespace sentrune
