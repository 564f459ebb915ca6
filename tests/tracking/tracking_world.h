#pragma once
// What the tracking tests stand on: the add-in over fakes with a project
// folder C:\Work, a look into the bytes of a tracking database, the
// stopwatches in memory, and the titles of the boxes shown.
#include <string>
#include <vector>

#include "support/test_addin.h"
#include "tracking/sqlite_image.h"
#include "tracking/timer_job.h"

namespace sentrune::tracking_test {

using Rows = std::vector<std::vector<std::string>>;
using Strings = std::vector<std::string>;

// The rows a query gives on a database file's bytes, every value as text.
inline Rows Query(const std::string& bytes, const std::string& sql) {
  SqliteImage db = SqliteImage::Load(bytes, "inspected");
  Statement statement(db, sql);
  Rows rows;
  while (statement.Step()) {
    std::vector<std::string>& row = rows.emplace_back();
    for (int column = 0; column < statement.ColumnCount(); ++column) row.push_back(statement.Text(column));
  }
  return rows;
}

// Each job as "key=seconds", with " running" when it runs.
inline Strings Jobs(const rt::KeyedCollection<clsTimerJob>& jobs) {
  Strings shown;
  for (const auto& entry : jobs)
    shown.push_back(entry.key() + "=" + std::to_string(entry.item.ElapsedSeconds()) +
                    (entry.item.Running() ? " running" : ""));
  return shown;
}

struct TrackingWorld : testing::TestAddin {
  TrackingWorld() { files().AddFolder("C:\\Work"); }
  Rows Table(const std::string& db, const std::string& sql) { return Query(files().Contents(db).value(), sql); }
  void Advance(double seconds) { env.Time().Advance(seconds); }
};

}  // namespace sentrune::tracking_test
