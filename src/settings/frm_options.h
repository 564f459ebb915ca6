#pragma once
// frmOptions: every option in one outline grid (a section per project type,
// then "General Options"), edited in place and written back through the
// options store. The add-in also uses it unseen to write the start values on
// a first run.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/ui.h"
#include "runtime/result.h"
#include "settings/option_input.h"
#include "settings/option_set.h"
#include "settings/options_handler.h"

namespace sentrune {

// One editable grid row.
struct clsConfigItem {
  int32_t GridRow = 0;         // index into the rows of View()
  std::string CFGKey;          // the full store key
  std::string CurrentSetting;  // as last shown or saved
  int16_t ConfigType = kConfigText;
};

class frmOptions {
 public:
  // The handler must outlive the form.
  explicit frmOptions(OptionsHandler& handler);

  // Restores the remembered size and fills the grid; Close remembers the size.
  void Open();
  void Close();

  // Builds the rows from the in-memory option set.
  void FillGrid();
  // Fills the rows from the start values and marks the form changed.
  void ResetToStartValues();

  // When changed: stores every row's value, then reloads the option set.
  // 0 on success; 75 (after telling the user) when the INI file could not be
  // written, in which case the form stays changed.
  int32_t SaveSettings();

  // Sets the value of the row stored under `key` (any case), checked against
  // the row's kind. Unknown keys and unfitting texts fail with a message
  // naming the key and what it accepts, and change nothing.
  rt::Status SetValue(const std::string& key, const std::string& text);
  // The folder browser for a folder row ("Set Release Folder"), starting at
  // the row's folder; a chosen folder replaces the row's value.
  rt::Status BrowseFolder(const std::string& key);

  platform::FormView View() const;
  const std::vector<clsConfigItem>& Items() const { return items_; }
  // The shown value of the row stored under `key`; empty when there is none.
  std::string CellText(const std::string& key) const;

  bool Changed() const { return changed_; }
  void SetChanged(bool changed) { changed_ = changed; }

  bool SettingsSaved2 = false;  // set once a save has reached the file
  int32_t Height = kDesignHeight;
  int32_t Width = kDesignWidth;

 private:
  static constexpr int32_t kDesignHeight = 6600;  // twips
  static constexpr int32_t kDesignWidth = 8400;

  struct Row {
    int level = 0;
    bool isSection = false;
    std::string description;
    std::string value;
  };

  void FillFrom(const OptionSet& options);
  void AddSection(const std::string& title);
  void AddOption(std::string_view baseKey, int level, int typeIndex, const OptionSet& options);
  clsConfigItem* FindItem(const std::string& key);
  const clsConfigItem* FindItem(const std::string& key) const;
  void RestoreSize(const char* key, int32_t& size);

  OptionsHandler& handler_;
  std::vector<Row> rows_;
  std::vector<clsConfigItem> items_;
  bool changed_ = false;
};

}  // namespace sentrune
