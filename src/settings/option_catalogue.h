#pragma once
// Every option of the add-in as data: store key, kind, the default a read
// falls back to, the start value the add-in connects with, the description
// the options dialog shows, and where the value lives in the OptionSet.
// Loading, the start values and the options dialog all work from this table.
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "runtime/result.h"
#include "settings/option_set.h"

namespace sentrune {

enum class OptionKind { kThreeWay, kFolder, kText, kWholeNumber, kYesNo };

using PerTypeNumber = std::array<int16_t, 4> OptionSet::*;
using PerTypeText = std::array<std::string, 4> OptionSet::*;
using GeneralText = std::string OptionSet::*;
using GeneralCount = int32_t OptionSet::*;
using GeneralFlag = bool OptionSet::*;
using OptionField = std::variant<PerTypeNumber, PerTypeText, GeneralText, GeneralCount, GeneralFlag>;

struct OptionInfo {
  std::string_view baseKey;
  std::string_view readDefault;
  std::string_view startValue;   // in its stored form ("1", "0", "2", text)
  std::string_view description;  // empty for an option the dialog does not show
  OptionField field;

  OptionKind kind() const;
  bool perType() const { return kind() == OptionKind::kThreeWay || kind() == OptionKind::kFolder; }
};

// The whole catalogue, per-type options first, in the order of their tables.
std::span<const OptionInfo> OptionCatalogue();
// By base key, without regard to case; nullptr when unknown.
const OptionInfo* FindOption(std::string_view baseKey);
// By full store key ("ActiveX_DLL_CreateBackup", "BackupFileCount"): a
// per-type option only under a type prefix, a general one only without.
// nullptr when unknown; `typeIndex` receives the type (0 for general ones).
const OptionInfo* FindOptionByStoreKey(std::string_view storeKey, int& typeIndex);

// The keys in the order LoadOptions reads them: per type, then general.
std::span<const std::string_view> PerTypeLoadOrder();
std::span<const std::string_view> GeneralLoadOrder();

// The option's value in stored form ("1"/"0" for Yes/No, decimal numbers).
std::string OptionText(const OptionSet& options, const OptionInfo& info, int typeIndex);
// Sets the option from stored text with the run time's conversions; a text
// that does not convert fails (13 or 6) and leaves the option unchanged.
rt::Status AssignOption(OptionSet& options, const OptionInfo& info, int typeIndex,
                        std::string_view text);

// The option set the add-in connects with.
OptionSet StartValues();

}  // namespace sentrune
