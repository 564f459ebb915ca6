#pragma once
// What the tracking tests stand on: the add-in over fakes and a look into the
// bytes of a tracking database.
#include <string>
#include <vector>

#include "support/test_addin.h"
#include "tracking/sqlite_image.h"

namespace sentrune::tracking_test {

// The rows a query gives on a database file's bytes, every value as text.
inline std::vector<std::vector<std::string>> Query(const std::string& bytes, const std::string& sql) {
  SqliteImage db = SqliteImage::Load(bytes, "inspected");
  Statement statement(db, sql);
  std::vector<std::vector<std::string>> rows;
  while (statement.Step()) {
    std::vector<std::string>& row = rows.emplace_back();
    for (int column = 0; column < statement.ColumnCount(); ++column) row.push_back(statement.Text(column));
  }
  return rows;
}

}  // namespace sentrune::tracking_test
