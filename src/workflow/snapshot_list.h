#pragma once
// Which files a snapshot takes, read from the project file, and where each
// one goes inside the snapshot folder.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace sentrune {

// The files the project file names for a snapshot, as it names them (double
// quotes removed), in order: the project's own companion (its name with the
// last character made "l"), then each source file followed by its companion
// (last character "x" for forms, user controls, property pages and user
// documents; ".dca" for designers). Only files that exist are listed.
// `projectText` is the project file's UTF-8 text.
std::vector<std::string> SnapshotFileList(const platform::FileSystem& fs, const std::string& projectFile,
                                          std::string_view projectText);

struct SnapshotPlace {
  std::string source;    // full path of the file
  std::string relative;  // path below the snapshot folder
  bool outside = false;  // the project names it outside its own folder
};

// A file inside the project's folder keeps its place relative to it. Any
// other goes below "_outside\" so that a snapshot never writes beyond its
// folder: a relative name keeps what follows its climb out ("..\Shared\a.bas"
// gives "_outside\Shared\a.bas"), an absolute one its whole path with the
// drive or share as a folder ("D:\Lib\a.bas" gives "_outside\D\Lib\a.bas").
// Nothing for a name that is no usable path.
std::optional<SnapshotPlace> PlaceInSnapshot(const std::string& projectFolder, const std::string& name);

// The project file's lines, without line ends.
std::vector<std::string> ProjectFileLines(std::string_view projectText);
// The key (trimmed, lower case) and value of a "key=value" line.
struct ProjectFileEntry {
  std::string key;
  std::string value;
};
std::optional<ProjectFileEntry> SplitProjectLine(std::string_view line);

}  // namespace sentrune
