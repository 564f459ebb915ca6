#include "tracking/jet_table.h"

namespace sentrune {
namespace {

// Names come from the add-in's own code, never from data.
std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

}  // namespace

bool TableExists(SqliteImage& db, const std::string& table) {
  Statement find(db, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE");
  find.Bind(1, table);
  return find.Step();
}

std::string EqualsCriterion(const std::string& field, const std::string& value) {
  return field + " = '" + value + "'";
}

JetTable::JetTable(SqliteImage& db, const std::string& table) : db_(db), table_(table) {
  if (!TableExists(db, table))
    throw JetFailure{rt::MakeError(jeterr::kTableNotFound, "Cannot find the table '" + table + "' in '" +
                                                               db.name() + "'.")};
}

std::vector<std::vector<std::string>> JetTable::Records(const std::vector<std::string>& fields) {
  std::string columns;
  for (const std::string& field : fields) columns += (columns.empty() ? "" : ", ") + Quoted(field);
  Statement select(db_, "SELECT " + columns + " FROM " + Quoted(table_) + " ORDER BY rowid");
  std::vector<std::vector<std::string>> records;
  while (select.Step()) {
    std::vector<std::string>& record = records.emplace_back();
    for (size_t i = 0; i < fields.size(); ++i) record.push_back(select.Text(static_cast<int>(i)));
  }
  return records;
}

std::optional<int64_t> JetTable::FindFirst(const std::string& criterion) {
  // The criterion stands as it is, so that text which would not parse as a
  // condition fails here too; the line break keeps a trailing "--" from
  // commenting out the order.
  const std::string sql = "SELECT rowid FROM " + Quoted(table_) + " WHERE " + criterion + "\nORDER BY rowid";
  try {
    Statement find(db_, sql);
    if (find.Step()) return find.Int(0);
    return std::nullopt;
  } catch (const JetFailure& failure) {
    if (failure.error.number == jeterr::kUnrecognizedFormat) throw;
    throw JetFailure{rt::MakeError(jeterr::kSyntaxInCriteria,
                                   "Syntax error in criteria expression '" + criterion + "'.")};
  }
}

std::string JetTable::Field(int64_t record, const std::string& field) {
  Statement select(db_, "SELECT " + Quoted(field) + " FROM " + Quoted(table_) + " WHERE rowid = ?1");
  select.Bind(1, record);
  return select.Step() ? select.Text(0) : std::string();
}

void JetTable::AddNew(const Fields& fields) {
  std::string columns, places;
  for (size_t i = 0; i < fields.size(); ++i) {
    columns += (i ? ", " : "") + Quoted(fields[i].first);
    places += (i ? ", ?" : "?") + std::to_string(i + 1);
  }
  Run("INSERT INTO " + Quoted(table_) + " (" + columns + ") VALUES (" + places + ")", fields, std::nullopt);
}

void JetTable::Edit(int64_t record, const Fields& fields) {
  std::string assignments;
  for (size_t i = 0; i < fields.size(); ++i)
    assignments += (i ? ", " : "") + Quoted(fields[i].first) + " = ?" + std::to_string(i + 1);
  Run("UPDATE " + Quoted(table_) + " SET " + assignments + " WHERE rowid = ?" + std::to_string(fields.size() + 1),
      fields, record);
}

void JetTable::Run(const std::string& sql, const Fields& fields, std::optional<int64_t> record) {
  Statement statement(db_, sql);
  int index = 1;
  for (const auto& [name, value] : fields)
    std::visit([&](const auto& v) { statement.Bind(index++, v); }, value);
  if (record) statement.Bind(index, *record);
  statement.Step();
}

}  // namespace sentrune
