#include "settings/option_catalogue.h"

#include <array>

#include "runtime/text.h"
#include "runtime/vb_convert.h"
#include "settings/options_handler.h"

namespace sentrune {
namespace {

constexpr std::string_view kReferenceList = "|vb6.olb|vb5.olb|MSO.DLL|MSADDNDR.DLL|VB6EXT.OLB|";

// The start values differ from the read defaults on purpose (BackupFileCount
// 0 against 10, TrackTime on against off): a first run writes the start
// values, an absent key later reads the default.
const std::array<OptionInfo, 26> kCatalogue = {{
    {"CreateSnapshot", "2", "2", "Create project snapshot After compile", &OptionSet::CreateSnapshot},
    {"CreateBackup", "2", "2", "Create backup of component Before compile", &OptionSet::CreateBackup},
    {"ManageComp", "2", "2", "Verify Compatibility Settings", &OptionSet::ManageComp},
    {"CompareCompsBefore", "2", "2", "Compare components Before compile", &OptionSet::CompareCompsBefore},
    {"CompareCompsAfter", "2", "2", "Compare components After compile", &OptionSet::CompareCompsAfter},
    {"UpdateCompatIfReqd", "2", "2", "Update Compatible Component if Required",
     &OptionSet::UpdateCompatIfReqd},
    {"BackupCompat", "2", "2", "Backup Compatible Component first", &OptionSet::BackupCompat},
    {"CopyComponents", "2", "0", "Copy component to release folder After compile",
     &OptionSet::CopyComponents},
    {"BackupComponents", "2", "2", "Backup component in release folder first",
     &OptionSet::BackupComponents},
    {"ReleaseFolder", "C:\\", "C:\\", "Release Folder", &OptionSet::ReleaseFolder},
    {"BackupFolderName", "History", "History", "Subfolder name to be used for backups",
     &OptionSet::BackupFolderName},
    {"DateFormatString", "yyyy.mm.dd-hh.nn.ss", "yyyy.mm.dd-hh.nn.ss",
     "Date format string to be used for backups", &OptionSet::DateFormatString},
    {"BackupFileCount", "10", "0", "Limit number of backup files (0 = no limit)",
     &OptionSet::BackupFileCount},
    {"VerifyClass", "cVerifyInstallation", "cVerifyInstallation",
     "Name of Class Module used for Installation Verification", &OptionSet::VerifyClass},
    {"AlignControl", "AlignmentHelper", "AlignmentHelper", "Name used for AlignmentHelper Usercontrol",
     &OptionSet::AlignControl},
    {"SnapAdditionalFiles", "vbw,scc,stn", "", "Additional file extensions for snapshots",
     &OptionSet::SnapAdditionalFiles},
    {"SnapIsReadOnly", "1", "0", "Set Read-Only Attribute for Snapshots.", &OptionSet::SnapIsReadOnly},
    {"DefaultStoreComment", "1", "0", "Default Store Comment Setting (Snapshot).",
     &OptionSet::DefaultStoreComment},
    {"DefaultGatherDepens", "1", "0", "Default Gather Dependencies Setting (Snapshot).",
     &OptionSet::DefaultGatherDepens},
    {"ShowDiagnostics", "1", "0", "Show Startup Diagnostics Window", &OptionSet::ShowDiagnostics},
    {"EnableDeferredActions", "0", "1", "Enable 'Deferred Actions' (batch file) functionality",
     &OptionSet::EnableDeferredActions},
    {"TrackHistory", "0", "1", "Track Build History", &OptionSet::TrackHistory},
    {"TrackTime", "0", "1", "Track Time", &OptionSet::TrackTime},
    {"ReferenceListFiltered", "1", "0", "Filter list of references.", &OptionSet::ReferenceListFiltered},
    {"FilteredReferenceList", kReferenceList, "", "List of references to exclude (Pipe separated).",
     &OptionSet::FilteredReferenceList},
    {"ClearVBW", "0", "1", "", &OptionSet::ClearVBW},
}};

constexpr std::array<std::string_view, 10> kPerTypeLoadOrder = {
    "CreateBackup", "CompareCompsBefore", "CompareCompsAfter", "UpdateCompatIfReqd", "CopyComponents",
    "BackupComponents", "BackupCompat", "ManageComp", "ReleaseFolder", "CreateSnapshot"};

constexpr std::array<std::string_view, 16> kGeneralLoadOrder = {
    "ClearVBW", "BackupFolderName", "DateFormatString", "TrackTime", "TrackHistory", "BackupFileCount",
    "ShowDiagnostics", "SnapAdditionalFiles", "DefaultGatherDepens", "DefaultStoreComment",
    "SnapIsReadOnly", "EnableDeferredActions", "VerifyClass", "AlignControl", "ReferenceListFiltered",
    "FilteredReferenceList"};

template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

}  // namespace

OptionKind OptionInfo::kind() const {
  return std::visit(Overloaded{[](PerTypeNumber) { return OptionKind::kThreeWay; },
                               [](PerTypeText) { return OptionKind::kFolder; },
                               [](GeneralText) { return OptionKind::kText; },
                               [](GeneralCount) { return OptionKind::kWholeNumber; },
                               [](GeneralFlag) { return OptionKind::kYesNo; }},
                    field);
}

std::span<const OptionInfo> OptionCatalogue() { return kCatalogue; }
std::span<const std::string_view> PerTypeLoadOrder() { return kPerTypeLoadOrder; }
std::span<const std::string_view> GeneralLoadOrder() { return kGeneralLoadOrder; }

const OptionInfo* FindOption(std::string_view baseKey) {
  for (const OptionInfo& info : kCatalogue)
    if (rt::IEquals(info.baseKey, baseKey)) return &info;
  return nullptr;
}

const OptionInfo* FindOptionByStoreKey(std::string_view storeKey, int& typeIndex) {
  for (int type = 0; type < kProjectTypeCount; ++type) {
    const std::string prefix = ProjectTypeKeyPrefix(type) + "_";
    if (storeKey.size() > prefix.size() && rt::IEquals(storeKey.substr(0, prefix.size()), prefix)) {
      const OptionInfo* info = FindOption(storeKey.substr(prefix.size()));
      typeIndex = type;
      return info && info->perType() ? info : nullptr;
    }
  }
  const OptionInfo* info = FindOption(storeKey);
  typeIndex = 0;
  return info && !info->perType() ? info : nullptr;
}

std::string OptionText(const OptionSet& options, const OptionInfo& info, int typeIndex) {
  return std::visit(
      Overloaded{[&](PerTypeNumber f) { return std::to_string((options.*f)[typeIndex]); },
                 [&](PerTypeText f) { return (options.*f)[typeIndex]; },
                 [&](GeneralText f) { return options.*f; },
                 [&](GeneralCount f) { return std::to_string(options.*f); },
                 [&](GeneralFlag f) { return std::string(options.*f ? "1" : "0"); }},
      info.field);
}

rt::Status AssignOption(OptionSet& options, const OptionInfo& info, int typeIndex,
                        std::string_view text) {
  return std::visit(
      Overloaded{[&](PerTypeNumber f) -> rt::Status {
                   const rt::Result<int16_t> n = rt::CInt(text);
                   if (!n) return n.error();
                   (options.*f)[typeIndex] = *n;
                   return {};
                 },
                 [&](PerTypeText f) -> rt::Status {
                   (options.*f)[typeIndex] = std::string(text);
                   return {};
                 },
                 [&](GeneralText f) -> rt::Status {
                   options.*f = std::string(text);
                   return {};
                 },
                 [&](GeneralCount f) -> rt::Status {
                   const rt::Result<int32_t> n = rt::CLng(text);
                   if (!n) return n.error();
                   options.*f = *n;
                   return {};
                 },
                 [&](GeneralFlag f) -> rt::Status {
                   const rt::Result<bool> b = rt::CBool(text);
                   if (!b) return b.error();
                   options.*f = *b;
                   return {};
                 }},
      info.field);
}

OptionSet StartValues() {
  OptionSet options;
  for (const OptionInfo& info : kCatalogue) {
    for (int type = 0; type < (info.perType() ? kProjectTypeCount : 1); ++type) {
      // The start values are literals of this table and always convert.
      (void)AssignOption(options, info, type, info.startValue);
    }
  }
  return options;
}

}  // namespace sentrune
