#pragma once
// The tracking database held wholly in memory: loaded from a file's bytes and
// turned back into bytes, so that the file itself is only ever touched through
// the platform's FileSystem and works on every implementation of it, the
// in-memory fake included. Failures are thrown as JetFailure and caught at the
// boundary of the clsJet351 operation that met them.
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "runtime/vb_error.h"

struct sqlite3;
struct sqlite3_stmt;

namespace sentrune {

// Error numbers as the desktop database engine numbered the same failures.
namespace jeterr {
inline constexpr int32_t kEngineError = 3000;  // anything without a closer match
inline constexpr int32_t kSyntaxInCriteria = 3077;
inline constexpr int32_t kTableNotFound = 3078;
inline constexpr int32_t kFieldTooSmall = 3163;
inline constexpr int32_t kUnrecognizedFormat = 3343;
}  // namespace jeterr

struct JetFailure {
  rt::VbError error;
};

class SqliteImage {
 public:
  // A new, empty database; `name` labels errors (the file it is meant for).
  static SqliteImage CreateEmpty(const std::string& name);
  // The database in `bytes`. Bytes that are not a whole, sound database (an
  // empty or truncated file, a damaged page) fail with kUnrecognizedFormat.
  static SqliteImage Load(std::string_view bytes, const std::string& name);

  SqliteImage(SqliteImage&& other) noexcept;
  SqliteImage& operator=(SqliteImage&&) = delete;
  SqliteImage(const SqliteImage&) = delete;
  ~SqliteImage();

  // The whole database as the bytes of a file.
  std::string Serialize() const;
  // Runs statements that return no rows.
  void Exec(const std::string& sql);
  // True once a row was added, changed or removed since the image was made.
  bool Modified() const;
  const std::string& name() const { return name_; }

  // The engine's failure `code` as the error the caller reports.
  rt::VbError Failure(int code) const;
  sqlite3* handle() const { return db_; }

 private:
  SqliteImage(sqlite3* db, std::string name) : db_(db), name_(std::move(name)) {}

  sqlite3* db_;
  std::string name_;
};

// One prepared statement. Text after the first statement is refused, so that
// a single statement built from text can never run a second one.
class Statement {
 public:
  Statement(SqliteImage& db, const std::string& sql);
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  // Parameters count from 1.
  void Bind(int index, std::string_view text);
  void Bind(int index, int64_t value);
  // Advances to the next row; false when there is none.
  bool Step();
  int ColumnCount() const;
  // Columns count from 0; a null reads as empty text or 0.
  std::string Text(int column) const;
  int64_t Int(int column) const;

 private:
  SqliteImage& db_;
  sqlite3_stmt* stmt_ = nullptr;
};

}  // namespace sentrune
