#pragma once
// Parse4ABS: turns absolute paths on the project's own drive, in the project
// file lines that name files, into paths relative to the project file, so
// that a project survives being moved. The file is backed up before it is
// rewritten, and never rewritten when that backup is not there.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/file_system.h"
#include "settings/option_set.h"

namespace sentrune {

struct PathFixChange {
  std::string oldLine;
  std::string newLine;
};

struct PathFixResult {
  enum class Outcome {
    kCancelled,     // no file was chosen
    kReadOnly,      // the project file is read-only; nothing was examined
    kLink,          // the project file is a symbolic link; nothing was examined
    kNothingFound,  // no line needed a change; the file is untouched
    kFixed,         // backed up, then rewritten
    kNotBackedUp,   // the backup could not be made; the file is untouched
    kFailed,        // an error was trapped and shown; the file is untouched
  };
  Outcome outcome = Outcome::kCancelled;
  int32_t errorCode = 0;  // the trapped error's number for kFailed
  std::string projectFile;
  std::vector<PathFixChange> changes;  // in file order
  std::string backupFile;              // set once a backup was attempted
};

// "c:" for "C:\Src\App.vbp": the text before the first "\", trimmed and in
// lower case; empty for a path that starts with "\" (a network path).
std::string ProjectDriveText(const std::string& projectFile);

// One line of the project file with its handled path made relative to
// `projectFile`; nothing when the line stays as it is. `drive` is
// ProjectDriveText of the project file. Lines are UTF-8.
std::optional<std::string> FixProjectLine(const platform::FileSystem& fs, const std::string& projectFile,
                                          const std::string& drive, const std::string& line);

// "The line:" ... "Has been changed to:" ... for every change, as shown in
// the "Full paths report." window.
std::string PathFixReport(const std::vector<PathFixChange>& changes);

// The menu command: asks for a project file, then runs Parse4ABSFile on it.
PathFixResult Parse4ABS(AddinState& state, const OptionSet& options);

// Examines and fixes an already chosen project file (full Windows path),
// telling the user what happened as the menu command does.
PathFixResult Parse4ABSFile(AddinState& state, const OptionSet& options, const std::string& projectFile);

}  // namespace sentrune
