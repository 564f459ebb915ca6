#pragma once
// The options in memory, read by the whole add-in: one element per project
// type for the per-type options, one field per general option. Three-way
// values are 0 No, 1 Yes (silently), 2 Prompt (ask first).
#include <array>
#include <cstdint>
#include <string>

namespace sentrune {

// VBProject.Type as the option arrays are indexed.
enum class ProjectType : int16_t { kStandardExe = 0, kActiveXExe = 1, kActiveXDll = 2, kActiveXOcx = 3 };

inline constexpr int kProjectTypeCount = 4;

struct OptionSet {
  std::array<int16_t, 4> CreateSnapshot{}, CreateBackup{}, ManageComp{}, CompareCompsBefore{},
      CompareCompsAfter{}, UpdateCompatIfReqd{}, BackupCompat{}, CopyComponents{}, BackupComponents{};
  std::array<std::string, 4> ReleaseFolder{};
  std::string BackupFolderName, DateFormatString;
  int32_t BackupFileCount = 0;
  std::string VerifyClass, AlignControl, SnapAdditionalFiles;
  bool SnapIsReadOnly = false, DefaultStoreComment = false, DefaultGatherDepens = false,
       ShowDiagnostics = false, EnableDeferredActions = false, TrackHistory = false, TrackTime = false,
       ReferenceListFiltered = false, ClearVBW = false;
  std::string FilteredReferenceList;
};

}  // namespace sentrune
