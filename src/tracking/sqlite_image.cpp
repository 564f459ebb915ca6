#include "tracking/sqlite_image.h"

#include <sqlite3.h>

#include <cstring>
#include <utility>

namespace sentrune {
namespace {

[[noreturn]] void Throw(int32_t number, std::string description) {
  throw JetFailure{rt::MakeError(number, std::move(description))};
}

sqlite3* OpenMemory(const std::string& name) {
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) != SQLITE_OK) {
    sqlite3_close(db);
    Throw(jeterr::kEngineError, "Cannot open a database for '" + name + "'.");
  }
  return db;
}

}  // namespace

SqliteImage SqliteImage::CreateEmpty(const std::string& name) { return SqliteImage(OpenMemory(name), name); }

SqliteImage SqliteImage::Load(std::string_view bytes, const std::string& name) {
  if (bytes.empty()) Throw(jeterr::kUnrecognizedFormat, "Unrecognized database format '" + name + "'.");
  SqliteImage image(OpenMemory(name), name);
  auto* buffer = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size()));
  if (buffer == nullptr) Throw(jeterr::kEngineError, "Out of memory loading '" + name + "'.");
  std::memcpy(buffer, bytes.data(), bytes.size());
  const auto size = static_cast<sqlite3_int64>(bytes.size());
  // The engine owns the buffer from here on, even when it refuses it.
  const int rc = sqlite3_deserialize(image.db_, "main", buffer, size, size,
                                     SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
  if (rc != SQLITE_OK) throw JetFailure{image.Failure(rc)};
  // The engine reads a page only when a query reaches it, so a damaged table
  // would surface half way through an operation, after others were changed
  // and could be written back with the damage. Every page is checked first.
  Statement check(image, "PRAGMA quick_check");
  if (!check.Step() || check.Text(0) != "ok")
    Throw(jeterr::kUnrecognizedFormat, "Unrecognized database format '" + name + "'.");
  return image;
}

SqliteImage::SqliteImage(SqliteImage&& other) noexcept
    : db_(std::exchange(other.db_, nullptr)), name_(std::move(other.name_)) {}

SqliteImage::~SqliteImage() { sqlite3_close(db_); }

std::string SqliteImage::Serialize() const {
  sqlite3_int64 size = 0;
  unsigned char* bytes = sqlite3_serialize(db_, "main", &size, 0);
  if (bytes == nullptr) Throw(jeterr::kEngineError, "Cannot serialize the database '" + name_ + "'.");
  std::string copy(reinterpret_cast<const char*>(bytes), static_cast<size_t>(size));
  sqlite3_free(bytes);
  return copy;
}

void SqliteImage::Exec(const std::string& sql) {
  const int rc = sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) throw JetFailure{Failure(rc)};
}

bool SqliteImage::Modified() const { return sqlite3_total_changes(db_) > 0; }

rt::VbError SqliteImage::Failure(int code) const {
  const std::string engine = sqlite3_errmsg(db_);
  switch (code & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return rt::MakeError(jeterr::kUnrecognizedFormat, "Unrecognized database format '" + name_ + "'.");
    case SQLITE_CONSTRAINT:
      return rt::MakeError(jeterr::kFieldTooSmall,
                           "The field is too small to accept the amount of data you attempted to add. (" +
                               name_ + ": " + engine + ")");
    default:
      return rt::MakeError(jeterr::kEngineError, name_ + ": " + engine);
  }
}

Statement::Statement(SqliteImage& db, const std::string& sql) : db_(db) {
  const char* tail = nullptr;
  const int rc = sqlite3_prepare_v2(db.handle(), sql.c_str(), static_cast<int>(sql.size()), &stmt_, &tail);
  if (rc != SQLITE_OK) throw JetFailure{db.Failure(rc)};
  if (stmt_ == nullptr || std::string_view(tail).find_first_not_of(" \t\r\n") != std::string_view::npos)
    Throw(jeterr::kEngineError, db.name() + ": not a single statement: " + sql);
}

Statement::~Statement() { sqlite3_finalize(stmt_); }

void Statement::Bind(int index, std::string_view text) {
  const int rc = sqlite3_bind_text(stmt_, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  if (rc != SQLITE_OK) throw JetFailure{db_.Failure(rc)};
}

void Statement::Bind(int index, int64_t value) {
  const int rc = sqlite3_bind_int64(stmt_, index, value);
  if (rc != SQLITE_OK) throw JetFailure{db_.Failure(rc)};
}

bool Statement::Step() {
  const int rc = sqlite3_step(stmt_);
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  throw JetFailure{db_.Failure(rc)};
}

int Statement::ColumnCount() const { return sqlite3_column_count(stmt_); }

std::string Statement::Text(int column) const {
  const unsigned char* text = sqlite3_column_text(stmt_, column);
  if (text == nullptr) return {};
  return std::string(reinterpret_cast<const char*>(text), static_cast<size_t>(sqlite3_column_bytes(stmt_, column)));
}

int64_t Statement::Int(int column) const { return sqlite3_column_int64(stmt_, column); }

}  // namespace sentrune
