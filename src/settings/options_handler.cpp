#include "settings/options_handler.h"

#include <array>

#include "state/msgbox.h"
#include "settings/option_catalogue.h"

namespace sentrune {
namespace {

constexpr const char* kSection = "Settings";

}  // namespace

std::string ProjectTypeKeyPrefix(int index) {
  static const std::array<const char*, kProjectTypeCount> kPrefixes = {"Standard_EXE", "ActiveX_EXE",
                                                                       "ActiveX_DLL", "ActiveX_OCX"};
  return index >= 0 && index < kProjectTypeCount ? kPrefixes[index] : "";
}

std::string OptionKey(int projectTypeIndex, const std::string& baseKey) {
  return ProjectTypeKeyPrefix(projectTypeIndex) + "_" + baseKey;
}

OptionsHandler::OptionsHandler(AddinState& state) : state_(state), ini_(state) {}

std::string OptionsHandler::GetOption(const std::string& key, const std::string& defaultValue) {
  return ini_.INIGetSetting(kSection, key, defaultValue);
}

void OptionsHandler::SaveOption(const std::string& key, const std::string& value) {
  ini_.INISaveSetting(kSection, key, value);
}

void OptionsHandler::InitOptionDefaults() { options_ = StartValues(); }

// Reads one option into the set; on a text that does not convert, reports
// it and answers false so that the load stops there.
bool OptionsHandler::ReadOption(std::string_view baseKey, int typeIndex) {
  const OptionInfo& info = *FindOption(baseKey);
  const std::string key = info.perType() ? OptionKey(typeIndex, std::string(baseKey)) : std::string(baseKey);
  const std::string text = GetOption(key, std::string(info.readDefault));
  const rt::Status converted = AssignOption(options_, info, typeIndex, text);
  if (converted) return true;
  state_.err.Set(converted.error());
  lfncMsgBoxEX(state_, state_.err.description() + "\r\nOption: " + key + " = \"" + text + "\"",
               platform::mb::kCritical, "modOptionsHandler:LoadOptions");
  state_.err.Clear();
  return false;
}

void OptionsHandler::LoadOptions() {
  for (int type = 0; type < kProjectTypeCount; ++type)
    for (std::string_view baseKey : PerTypeLoadOrder())
      if (!ReadOption(baseKey, type)) return;
  for (std::string_view baseKey : GeneralLoadOrder())
    if (!ReadOption(baseKey, 0)) return;

  // Nothing can be copied to a release folder that is not named.
  for (int type = 0; type < kProjectTypeCount; ++type)
    if (options_.ReleaseFolder[type].empty()) options_.CopyComponents[type] = 0;
  if (options_.BackupFolderName.empty() || options_.BackupFolderName.back() != '\\')
    options_.BackupFolderName += '\\';
}

}  // namespace sentrune
