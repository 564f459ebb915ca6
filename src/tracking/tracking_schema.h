#pragma once
// The shape of a project's tracking database and where it lies.
#include <string>

#include "tracking/sqlite_image.h"

namespace sentrune {

// The project file's full path up to its last "." (of the whole path, so a
// dotted folder of an extensionless file is cut there too), then ".stn"; a
// path without any "." gets ".stn" appended.
std::string TrackingDatabasePath(const std::string& projectFileName);

// Creates the three tables "TimeLog", "BuildHistory" and "Settings" with
// their two indexes each in an empty database.
void CreateTrackingTables(SqliteImage& db);

}  // namespace sentrune
