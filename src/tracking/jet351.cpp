#include "tracking/jet351.h"

#include <cmath>
#include <exception>
#include <limits>

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/vb_convert.h"
#include "runtime/vb_format.h"
#include "runtime/winpath.h"
#include "tracking/jet_table.h"
#include "tracking/trace_block.h"
#include "tracking/tracking_schema.h"

namespace sentrune {
namespace {

constexpr const char* kTimeLog = "TimeLog";
constexpr const char* kBuildHistory = "BuildHistory";
constexpr const char* kSettings = "Settings";

[[noreturn]] void Fail(const rt::VbError& error) { throw JetFailure{error}; }

// A stored total as the text it reads as: its leading number, cut to a
// whole number, which must fit the job's 32-bit total.
int32_t WholeSeconds(const std::string& text) {
  const double seconds = std::trunc(rt::Val(text));
  if (seconds < std::numeric_limits<int32_t>::min() || seconds > std::numeric_limits<int32_t>::max())
    Fail(rt::MakeError(rt::errnum::kOverflow, "Overflow reading ElapsedSeconds \"" + text + "\""));
  return static_cast<int32_t>(seconds);
}

}  // namespace

void clsJet351::SetCurrentDBName(const std::string& path) {
  state_.trace({"'clsJet351:Property Let CurrentDBName"});
  currentDBName_ = path;
}

SqliteImage* clsJet351::CurrentDBObject() {
  TraceBlock block(state_, 40);
  if (!db_ && !currentDBName_.empty()) {
    openError_.reset();
    try {
      rt::Result<std::string> bytes = state_.files().ReadFile(currentDBName_);
      if (!bytes.ok()) Fail(bytes.error());
      db_ = std::make_unique<SqliteImage>(SqliteImage::Load(*bytes, currentDBName_));
      state_.trace({"'clsJet351:Property Set CurrentDBObject = Object"});
    } catch (const JetFailure& failure) {
      openError_ = failure.error;
    }
  }
  state_.trace({db_ ? "'clsJet351:Property Get CurrentDBObject - returns Object"
                    : "'clsJet351:Property Get CurrentDBObject - returns Nothing"});
  return db_.get();
}

std::optional<rt::VbError> clsJet351::Release() {
  state_.trace({"'clsJet351:Property Set CurrentDBObject = Nothing"});
  const std::unique_ptr<SqliteImage> db = std::move(db_);
  if (!db || !db->Modified()) return std::nullopt;
  try {
    WriteBack(*db);
    return std::nullopt;
  } catch (const JetFailure& failure) {
    return failure.error;
  }
}

void clsJet351::WriteBack(const SqliteImage& db) {
  platform::FileSystem& files = state_.files();
  const std::string& path = db.name();
  const std::string temporary = path + ".tmp";
  // A write cut short (a full disk) or a failed rename leaves no temporary
  // file behind.
  rt::Status written = files.WriteFile(temporary, db.Serialize());
  if (written.ok()) written = files.RenameReplace(temporary, path);
  if (!written.ok()) {
    (void)files.DeleteFile(temporary);
    Fail(written.error());
  }
}

bool clsJet351::DatabaseFileExists() const {
  if (currentDBName_.empty()) return false;
  const rt::Result<uint32_t> attributes = state_.files().GetAttributes(currentDBName_);
  return attributes.ok() && !(*attributes & platform::kAttrDirectory);
}

void clsJet351::EnsureDatabase() {
  if (std::optional<rt::VbError> error = Release()) Fail(*error);
  if (currentDBName_.empty())
    Fail(rt::MakeError(rt::errnum::kBadFileNameOrNumber, "No tracking database is named."));
  if (DatabaseFileExists()) return;
  SqliteImage db = SqliteImage::CreateEmpty(currentDBName_);
  CreateTrackingTables(db);
  WriteBack(db);
}

SqliteImage& clsJet351::Database() {
  if (SqliteImage* db = CurrentDBObject()) return *db;
  if (currentDBName_.empty())
    Fail(rt::MakeError(rt::errnum::kBadFileNameOrNumber, "No tracking database is named."));
  Fail(openError_.value_or(rt::MakeError(rt::errnum::kFileNotFound, currentDBName_)));
}

JetTable clsJet351::OpenTable(const std::string& name) { return JetTable(Database(), name); }

int32_t clsJet351::Trapped(const std::string& procedure, const std::function<void()>& body) {
  std::optional<rt::VbError> error;
  try {
    body();
  } catch (const JetFailure& failure) {
    error = failure.error;
  } catch (const std::exception& unexpected) {
    error = rt::MakeError(jeterr::kEngineError, unexpected.what());
  }
  // Records updated before a failure stay written, as the engine wrote each
  // update on its own; a database found damaged is never written at all.
  if (error && error->number == jeterr::kUnrecognizedFormat) db_.reset();
  if (std::optional<rt::VbError> released = Release(); released && !error) error = released;
  if (!error) return 0;
  Report(procedure, *error);
  return error->number;
}

void clsJet351::Report(const std::string& procedure, const rt::VbError& error) {
  if (!currentDBName_.empty()) state_.failedDatabases.emplace(currentDBName_, error);
  state_.err.Set(error);
  lfncMsgBoxEX(state_, "Error " + std::to_string(error.number) + "\r\n" + error.description,
               platform::mb::kCritical, "clsJet351:" + procedure);
  state_.err.Clear();
}

clsTimerJob& clsJet351::AddTimerJob(const std::string& key) {
  timerJobs_.Add(key, clsTimerJob(state_.env().Time(), key));
  return *timerJobs_.Find(key);
}

void clsJet351::ComponentName(const std::string& name) {
  if (!timerJobs_.Contains(name) && !name.empty()) AddTimerJob(name);
  for (auto& entry : timerJobs_) entry.item.SetRunning(false);
  if (clsTimerJob* job = timerJobs_.Find(name)) job->SetRunning(true);
}

void clsJet351::LoadTimerJobs() {
  TraceBlock block(state_, 40, "'LoadTimerJobs - " + rt::GetFileTitle(currentDBName_));
  const int32_t failed = Trapped("LoadTimerJobs", [&] {
    if (!DatabaseFileExists()) return;
    EnsureDatabase();
    JetTable table = OpenTable(kTimeLog);
    for (const std::vector<std::string>& record : table.Records({"ProjCompID", "ElapsedSeconds"})) {
      const std::string key = rt::Trim(record[0]);
      const int32_t seconds = WholeSeconds(rt::Trim(record[1]));
      if (!timerJobs_.Contains(key)) AddTimerJob(key).SetElapsedSeconds(seconds);
    }
  });
  storedTotalsMissing_ = storedTotalsMissing_ || failed != 0;
}

void clsJet351::SaveTimerJobs() {
  TraceBlock block(state_, 40, "'SaveTimerJobs - " + rt::GetFileTitle(currentDBName_));
  Trapped("SaveTimerJobs", [&] {
    if (storedTotalsMissing_ || !DatabaseFileExists() || timerJobs_.empty()) return;
    bool anyChanged = false;
    for (const auto& entry : timerJobs_) anyChanged = anyChanged || entry.item.Changed();
    if (!anyChanged) return;
    EnsureDatabase();
    JetTable table = OpenTable(kTimeLog);
    for (const auto& entry : timerJobs_)
      if (entry.item.Changed()) SaveJob(table, entry.item);
  });
}

void clsJet351::SaveJob(JetTable& table, const clsTimerJob& job) {
  const std::pair<std::string, JetTable::Value> total{"ElapsedSeconds", int64_t{job.ElapsedSeconds()}};
  if (const std::optional<int64_t> record = table.FindFirst(EqualsCriterion("ProjCompID", job.Key())))
    table.Edit(*record, {total});
  else
    table.AddNew({{"ProjCompID", job.Key()}, total});
  state_.trace({"'Updated - " + job.Key()});
}

int32_t clsJet351::CreateIfMissing() {
  return Trapped("EnsureDatabase", [&] { EnsureDatabase(); });
}

int32_t clsJet351::AddBuildHistory(const std::string& fileName) {
  return Trapped("AddBuildHistory", [&] {
    EnsureDatabase();
    JetTable table = OpenTable(kBuildHistory);
    const rt::Result<rt::DateTime> built = state_.files().GetLastWriteTime(fileName);
    if (!built.ok()) Fail(built.error());
    table.AddNew({{"BuildFileName", fileName}, {"BuildFileDate", rt::Format(*built, "yyyy-mm-dd hh:nn:ss")}});
  });
}

std::vector<BuildHistoryRecord> clsJet351::BuildHistory() {
  std::vector<BuildHistoryRecord> history;
  Trapped("BuildHistory", [&] {
    if (!DatabaseFileExists()) return;
    JetTable table = OpenTable(kBuildHistory);
    for (const std::vector<std::string>& record : table.Records({"BuildEventID", "BuildFileName", "BuildFileDate"}))
      history.push_back({static_cast<int64_t>(rt::Val(record[0])), record[1], record[2]});
  });
  return history;
}

std::string clsJet351::GetDBSetting(const std::string& name) {
  std::string value;
  Trapped("GetDBSetting", [&] {
    EnsureDatabase();
    if (!TableExists(Database(), kSettings)) return;
    JetTable table = OpenTable(kSettings);
    if (const std::optional<int64_t> record = table.FindFirst(EqualsCriterion("SettingName", name)))
      value = table.Field(*record, "SettingValue");
  });
  return value;
}

int32_t clsJet351::SaveDBSetting(const std::string& name, const std::string& value) {
  return Trapped("SaveDBSetting", [&] {
    EnsureDatabase();
    JetTable table = OpenTable(kSettings);
    if (const std::optional<int64_t> record = table.FindFirst(EqualsCriterion("SettingName", name)))
      table.Edit(*record, {{"SettingValue", value}});
    else
      table.AddNew({{"SettingName", name}, {"SettingValue", value}});
  });
}

}  // namespace sentrune
