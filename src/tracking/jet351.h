#pragma once
// clsJet351: one project's tracking database (the ".stn" file beside the
// project file) and the timer jobs of that project kept in memory.
//
// The file is opened for each operation and let go at its end, so it is
// never held between IDE events: its bytes are read through the FileSystem
// into an in-memory database, and an operation that changed something writes
// the whole database back through a temporary file renamed over the original.
//
// Every public operation traps its own failures: the rest of that operation
// is abandoned, the in-memory jobs stay as they are, the error is shown
// through lfncMsgBoxEX titled "clsJet351:" and the operation's name, and the
// file joins the state's failedDatabases. A file that is not a sound
// database is never written, whatever the operation.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "runtime/keyed_collection.h"
#include "tracking/sqlite_image.h"
#include "tracking/timer_job.h"

namespace sentrune {

class JetTable;

// One "BuildHistory" row: the built file and its last-modified time as
// stored ("yyyy-mm-dd hh:nn:ss").
struct BuildHistoryRecord {
  int64_t id = 0;
  std::string fileName;
  std::string fileDate;
};

class clsJet351 {
 public:
  // The state must outlive this object.
  explicit clsJet351(AddinState& state) : state_(state) {}

  // Reads every "TimeLog" record into a timer job. A key already in
  // TimerJobs keeps its in-memory job, whose total is the newer one. Does
  // nothing but trace when the file does not exist.
  void LoadTimerJobs();
  // Writes the total of every changed job to "TimeLog". Opens nothing when
  // the file does not exist or no job is changed, nor ever after a load of
  // this object failed: its totals lack the stored ones and would replace
  // them. Jobs stay marked changed: a running job keeps gaining time after
  // the save.
  void SaveTimerJobs();
  rt::KeyedCollection<clsTimerJob>& TimerJobs() { return timerJobs_; }
  // Makes the named job the only one running, adding it first when it is
  // new; an empty name only stops every job.
  void ComponentName(const std::string& name);

  const std::string& CurrentDBName() const { return currentDBName_; }
  void SetCurrentDBName(const std::string& path);

  // The open database, opened from CurrentDBName on first use; null when
  // there is no name or the file cannot be opened (the operation that needs
  // it reports why).
  SqliteImage* CurrentDBObject();

  // Zero seconds, start time now; joins TimerJobs under its key. A key that
  // is there already gives the job that holds it.
  clsTimerJob& AddTimerJob(const std::string& key);

  // Each creates the file when missing. The results are 0 or the number of
  // the error that ended the operation. CreateIfMissing only does that: for
  // a host that gathers times in a project whose database no build created.
  int32_t CreateIfMissing();
  int32_t AddBuildHistory(const std::string& fileName);
  // Every "BuildHistory" row in the order they were added; none, and no file
  // created, when the database does not exist.
  std::vector<BuildHistoryRecord> BuildHistory();
  std::string GetDBSetting(const std::string& name);
  int32_t SaveDBSetting(const std::string& name, const std::string& value);

 private:
  // Runs `body` under the operation's trap, then releases the database.
  int32_t Trapped(const std::string& procedure, const std::function<void()>& body);
  void Report(const std::string& procedure, const rt::VbError& error);
  // Lets go of the open database, first writing it back when it changed;
  // the write's failure, if any.
  std::optional<rt::VbError> Release();
  // Releases the database; creates the file with its tables when missing.
  void EnsureDatabase();
  // The open database, or the reason it could not be opened.
  SqliteImage& Database();
  JetTable OpenTable(const std::string& name);
  bool DatabaseFileExists() const;
  // Through a temporary file in the same folder, renamed over the original.
  void WriteBack(const SqliteImage& db);
  void SaveJob(JetTable& table, const clsTimerJob& job);

  AddinState& state_;
  std::string currentDBName_;
  std::unique_ptr<SqliteImage> db_;
  std::optional<rt::VbError> openError_;
  bool storedTotalsMissing_ = false;
  rt::KeyedCollection<clsTimerJob> timerJobs_;
};

}  // namespace sentrune
