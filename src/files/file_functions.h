#pragma once
// modFileFunctions: the path and file operations the whole add-in shares,
// dated backup names, the guarded copy and the rotation of old backups.
// Nothing here lets an error escape: each operation answers with its result
// value (and the ones that copy or delete with the run time's error number).
#include <cstdint>
#include <string>

#include "state/addin_state.h"
#include "platform/file_system.h"
#include "settings/option_set.h"

namespace sentrune {

// True for a non-empty path whose attributes can be read and that is not a
// folder; any failure reads as false.
bool lfncFileExists(const platform::FileSystem& fs, const std::string& path);

// Appends "\" when missing and creates every missing folder of the path.
bool lfncEnsureFolder(platform::FileSystem& fs, const std::string& folder);

// The path of `target` relative to the project file `fromFile`, for project
// files that must not hold absolute paths. Unless both exist as files, or
// when no relative path exists (another drive), `target` comes back as given.
std::string lfncRelativePath(const platform::FileSystem& fs, const std::string& fromFile,
                             const std::string& target);

// folder + base name + "-" + the component's own last-write time in
// DateFormatString + extension. The folder is `baseFolder` (with a "\"
// added) or, when that is empty, the component's folder + BackupFolderName.
// Empty text when the component's time cannot be read.
std::string lfncMakeBackupName(const platform::FileSystem& fs, const OptionSet& options,
                               const std::string& component, const std::string& baseFolder);

// `path` when nothing has that name yet, else the first free name of the form
// "Widgets-2004.05.06-14.03.09 (2).dll": two builds within one second of
// file time must not make the second dated copy replace the first.
std::string UnusedName(const platform::FileSystem& fs, const std::string& path);

// Clears the way for writing `target`: -1 when it may be written (it is
// missing, or writable now and replaced by the copy in one step), 2 when the
// user refused to overwrite it, else the error number that stopped it.
int32_t lfncPrepareOverwrite(AddinState& state, const std::string& target, bool silent);

// The guarded copy: 0 only when the whole file is in place, 2 the user
// refused the overwrite, 7 the destination was in use and the copy went to
// the deferred actions; else the error number, after telling the user. A
// failed copy leaves neither a partial destination nor a temporary file.
// `reserved` has no effect; callers pass -1 (True) as they always have.
int32_t lfncCopyFileEX(AddinState& state, const OptionSet& options, const std::string& source,
                       const std::string& destination, bool reserved, bool silent);

// Keeps the `keep` newest normal files of folder + pattern and deletes the
// rest, read-only ones included. A count below 1 means no limit, so nothing
// is deleted. 0, or the error number (after telling the user) of the failure
// that stopped it.
int32_t lfncRotateBackups(AddinState& state, const std::string& folder, const std::string& pattern,
                          int32_t keep);

// Writes `text` and CR LF to `path` in Windows-1252, replacing the file (or
// appending to it), even when it was read-only; `readOnly` leaves it
// read-only. 0, or the error number after telling the user.
int32_t lfncWriteTextFile(AddinState& state, const std::string& path, const std::string& text, bool append,
                          bool readOnly);

}  // namespace sentrune
