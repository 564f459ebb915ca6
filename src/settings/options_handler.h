#pragma once
// modOptionsHandler: the options store (section "Settings" of the add-in's
// INI file) and the in-memory option set filled from it.
#include <string>

#include "state/addin_state.h"
#include "settings/ini_manager.h"
#include "settings/option_set.h"

namespace sentrune {

// "Standard_EXE", "ActiveX_EXE", "ActiveX_DLL", "ActiveX_OCX"; "" outside 0..3.
std::string ProjectTypeKeyPrefix(int index);
// The type's prefix, "_" and the base key ("ActiveX_DLL_CreateBackup").
std::string OptionKey(int projectTypeIndex, const std::string& baseKey);

class OptionsHandler {
 public:
  // The state must outlive this object.
  explicit OptionsHandler(AddinState& state);

  // The stored text of the key; the default only when the key is absent.
  std::string GetOption(const std::string& key, const std::string& defaultValue = "");
  void SaveOption(const std::string& key, const std::string& value);

  // Puts the start values into the option set.
  void InitOptionDefaults();
  // Fills the option set from the store. The first text that does not
  // convert is reported and ends the load: options not read by then keep
  // their previous values.
  void LoadOptions();

  OptionSet& options() { return options_; }
  const OptionSet& options() const { return options_; }

  AddinState& state() const { return state_; }
  // The shared INI object, whose last write result tells whether a save
  // reached the file.
  modINIManager& iniManager() { return ini_; }

 private:
  bool ReadOption(std::string_view baseKey, int typeIndex);

  AddinState& state_;
  modINIManager ini_;
  OptionSet options_{};
};

// The connection's options step: when "Standard_EXE_CreateBackup" has never
// been stored, the options dialog silently saves the option set as it stands
// (the start values, after InitOptionDefaults) and reloads it; otherwise the
// option set is loaded from the store.
void LoadOptionsWithFirstRun(OptionsHandler& handler);

}  // namespace sentrune
