#pragma once
// One table of the tracking database, used the way the add-in uses a
// recordset: read every record, find the first record that meets a criterion
// text, add a record, edit one. Every failure throws JetFailure.
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tracking/sqlite_image.h"

namespace sentrune {

// True when the database holds a table of that name (names ignore case).
bool TableExists(SqliteImage& db, const std::string& table);

// Field, " = '", value, "'". The value is deliberately not escaped: criteria
// are built this way everywhere in the add-in, so a value holding a single
// quote gives a malformed criterion and the find fails.
std::string EqualsCriterion(const std::string& field, const std::string& value);

class JetTable {
 public:
  using Value = std::variant<std::string, int64_t>;
  using Fields = std::vector<std::pair<std::string, Value>>;

  // Fails with kTableNotFound when the database has no such table.
  JetTable(SqliteImage& db, const std::string& table);

  // The named fields of every record as text (a null as empty text), in the
  // order the records were added.
  std::vector<std::vector<std::string>> Records(const std::vector<std::string>& fields);
  // The first record, in that order, that meets the criterion; nothing when
  // none does. A criterion that does not parse as one condition fails with
  // kSyntaxInCriteria.
  std::optional<int64_t> FindFirst(const std::string& criterion);
  // One field of a record FindFirst gave, as text (a null as empty text).
  std::string Field(int64_t record, const std::string& field);
  // AddNew and Update.
  void AddNew(const Fields& fields);
  // Edit and Update of a record FindFirst gave.
  void Edit(int64_t record, const Fields& fields);

 private:
  void Run(const std::string& sql, const Fields& fields, std::optional<int64_t> record);

  SqliteImage& db_;
  std::string table_;
};

}  // namespace sentrune
