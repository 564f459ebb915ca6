#include "tracking/tracking_schema.h"

#include "runtime/winpath.h"

namespace sentrune {

std::string TrackingDatabasePath(const std::string& projectFileName) {
  return rt::StripExtension(projectFileName) + ".stn";
}

// Each ID is the row's own key, counting from 1. Next to it, every table gets
// a plain index named after the ID field and a unique one that plays the
// part of the table's "PrimaryKey" (index names are shared by the whole
// database, so the table's name leads it). Texts compare without regard to
// case, as keys do everywhere in the add-in. Dates are ISO text
// ("2004-05-06 14:03:09"), which sorts in time order.
void CreateTrackingTables(SqliteImage& db) {
  db.Exec(
      "CREATE TABLE \"TimeLog\" ("
      "EventID INTEGER PRIMARY KEY AUTOINCREMENT, "
      "ProjCompID TEXT COLLATE NOCASE, "
      "ElapsedSeconds INTEGER);"
      "CREATE INDEX \"EventID\" ON \"TimeLog\" (EventID);"
      "CREATE UNIQUE INDEX \"TimeLog_PrimaryKey\" ON \"TimeLog\" (EventID);"
      "CREATE TABLE \"BuildHistory\" ("
      "BuildEventID INTEGER PRIMARY KEY AUTOINCREMENT, "
      "BuildFileName TEXT, "
      "BuildFileDate DATETIME);"
      "CREATE INDEX \"BuildEventID\" ON \"BuildHistory\" (BuildEventID);"
      "CREATE UNIQUE INDEX \"BuildHistory_PrimaryKey\" ON \"BuildHistory\" (BuildEventID);"
      "CREATE TABLE \"Settings\" ("
      "SettingID INTEGER PRIMARY KEY AUTOINCREMENT, "
      "SettingName TEXT(50) COLLATE NOCASE CHECK (length(SettingName) <= 50), "
      "SettingValue TEXT);"
      "CREATE INDEX \"SettingID\" ON \"Settings\" (SettingID);"
      "CREATE UNIQUE INDEX \"Settings_PrimaryKey\" ON \"Settings\" (SettingID);");
}

}  // namespace sentrune
