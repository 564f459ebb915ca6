#include "settings/frm_options.h"

#include <array>

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/vb_convert.h"
#include "settings/option_catalogue.h"

namespace sentrune {
namespace {

struct LayoutRow {
  std::string_view baseKey;
  int level;
  bool compatibility;  // only for project types that build components
};

constexpr std::array<LayoutRow, 10> kPerTypeRows = {{
    {"CreateSnapshot", 1, false},
    {"CreateBackup", 1, false},
    {"ManageComp", 1, true},
    {"CompareCompsBefore", 1, true},
    {"CompareCompsAfter", 1, true},
    {"UpdateCompatIfReqd", 2, true},
    {"BackupCompat", 2, true},
    {"CopyComponents", 1, false},
    {"BackupComponents", 2, false},
    {"ReleaseFolder", 2, false},
}};

constexpr std::array<std::string_view, 15> kGeneralRows = {
    "BackupFolderName", "DateFormatString", "BackupFileCount", "VerifyClass", "AlignControl",
    "SnapAdditionalFiles", "SnapIsReadOnly", "DefaultStoreComment", "DefaultGatherDepens",
    "ShowDiagnostics", "EnableDeferredActions", "TrackHistory", "TrackTime", "ReferenceListFiltered",
    "FilteredReferenceList"};

constexpr std::array<const char*, kProjectTypeCount> kSectionTitles = {"Standard EXE", "ActiveX EXE",
                                                                       "ActiveX DLL", "ActiveX OCX"};

}  // namespace

frmOptions::frmOptions(OptionsHandler& handler) : handler_(handler) {}

void frmOptions::RestoreSize(const char* key, int32_t& size) {
  const rt::Result<int32_t> stored = rt::CLng(handler_.GetOption(key, std::to_string(size)));
  if (stored && *stored > 0) size = *stored;
}

void frmOptions::Open() {
  RestoreSize("Options_Height", Height);
  RestoreSize("Options_Width", Width);
  FillGrid();
}

void frmOptions::Close() {
  handler_.SaveOption("Options_Height", std::to_string(Height));
  handler_.SaveOption("Options_Width", std::to_string(Width));
}

void frmOptions::FillGrid() { FillFrom(handler_.options()); }

void frmOptions::ResetToStartValues() {
  FillFrom(StartValues());
  changed_ = true;
}

void frmOptions::AddSection(const std::string& title) {
  rows_.push_back({0, true, title, ""});
}

void frmOptions::AddOption(std::string_view baseKey, int level, int typeIndex, const OptionSet& options) {
  const OptionInfo& info = *FindOption(baseKey);
  const std::string key =
      info.perType() ? OptionKey(typeIndex, std::string(baseKey)) : std::string(baseKey);
  const std::string shown = DisplayText(info.kind(), OptionText(options, info, typeIndex));
  items_.push_back({static_cast<int32_t>(rows_.size()), key, shown, ConfigTypeOf(info.kind())});
  rows_.push_back({level, false, std::string(info.description), shown});
}

void frmOptions::FillFrom(const OptionSet& options) {
  rows_.clear();
  items_.clear();
  for (int type = 0; type < kProjectTypeCount; ++type) {
    AddSection(kSectionTitles[type]);
    for (const LayoutRow& row : kPerTypeRows)
      if (!row.compatibility || type != static_cast<int>(ProjectType::kStandardExe))
        AddOption(row.baseKey, row.level, type, options);
  }
  AddSection("General Options");
  for (std::string_view baseKey : kGeneralRows) AddOption(baseKey, 1, 0, options);
}

int32_t frmOptions::SaveSettings() {
  if (!changed_) return 0;
  bool written = true;
  for (clsConfigItem& item : items_) {
    item.CurrentSetting = StoredValue(item.ConfigType, rows_[item.GridRow].value);
    handler_.SaveOption(item.CFGKey, item.CurrentSetting);
    written = written && handler_.iniManager().GetIniManager().LastWriteSucceeded();
  }
  handler_.LoadOptions();
  if (!written) {
    lfncMsgBoxEX(handler_.state(),
                 "The options could not be saved to " + handler_.iniManager().GetIniManager().Path() + ".",
                 platform::mb::kExclamation, "frmOptions:SaveSettings");
    return rt::errnum::kPathFileAccessError;
  }
  changed_ = false;
  SettingsSaved2 = true;
  return 0;
}

clsConfigItem* frmOptions::FindItem(const std::string& key) {
  for (clsConfigItem& item : items_)
    if (rt::IEquals(item.CFGKey, key)) return &item;
  return nullptr;
}

const clsConfigItem* frmOptions::FindItem(const std::string& key) const {
  return const_cast<frmOptions*>(this)->FindItem(key);
}

rt::Status frmOptions::SetValue(const std::string& key, const std::string& text) {
  const clsConfigItem* item = FindItem(key);
  int typeIndex = 0;
  const OptionInfo* info = item ? FindOptionByStoreKey(item->CFGKey, typeIndex) : nullptr;
  if (!info) {
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         "The options dialog has no option \"" + key +
                             "\"; its keys are those of its rows, such as \"ActiveX_DLL_CreateBackup\" "
                             "or \"BackupFileCount\".",
                         "frmOptions");
  }
  rt::Result<std::string> shown = ParseInput(item->CFGKey, info->kind(), text);
  if (!shown) return shown.error();
  rows_[item->GridRow].value = std::move(shown).value();
  changed_ = true;
  return {};
}

rt::Status frmOptions::BrowseFolder(const std::string& key) {
  const clsConfigItem* item = FindItem(key);
  if (!item || item->ConfigType != kConfigFolder) {
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         "The options dialog has no folder option \"" + key + "\".", "frmOptions");
  }
  std::string& cell = rows_[item->GridRow].value;
  const std::string chosen = handler_.state().ui().BrowseForFolder("Set Release Folder", cell);
  if (!chosen.empty()) {
    cell = chosen;
    changed_ = true;
  }
  return {};
}

std::string frmOptions::CellText(const std::string& key) const {
  const clsConfigItem* item = FindItem(key);
  return item ? rows_[item->GridRow].value : std::string();
}

platform::FormView frmOptions::View() const {
  platform::FormView view;
  view.kind = platform::FormView::Kind::kGrid;
  view.caption = "Options";
  view.headers = {"Option", "Setting"};
  for (const Row& row : rows_) view.rows.push_back({row.level, row.isSection, {row.description, row.value}});
  return view;
}

}  // namespace sentrune
