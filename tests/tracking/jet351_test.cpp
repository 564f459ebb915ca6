// The tracking database and the stopwatches whose totals it keeps; then the
// database on a real host folder, whose bytes written through the FileSystem
// must be a database file that the engine opens on its own, and which is
// never written when it is damaged.
#include "tracking/jet351.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>

#include "support/host_addin.h"
#include "support/host_files.h"
#include "support/temp_folder.h"
#include "tracking_world.h"

namespace sentrune::tracking_test {
namespace {

class TrackingDb : public ::testing::Test, protected TrackingWorld {
 protected:
  static constexpr const char* kDb = "C:\\Work\\Grid.stn";

  TrackingDb() { jet.SetCurrentDBName(kDb); }
  Rows Table(const std::string& sql) { return TrackingWorld::Table(kDb, sql); }
  void CreateDatabase() { ASSERT_EQ(jet.SaveDBSetting("Created", "1"), 0); }

  clsJet351 jet{state};
};

TEST_F(TrackingDb, SettingsAreFoundByNameWithoutRegardToCaseAndBuildsAreRecorded) {
  // The first use creates the file through a rename.
  EXPECT_EQ(jet.SaveDBSetting("CompatBase", "C:\\Models\\"), 0);
  EXPECT_EQ(files().Record().renames.front(), std::make_pair(std::string(kDb) + ".tmp", std::string(kDb)));
  EXPECT_FALSE(files().Exists(std::string(kDb) + ".tmp"));
  EXPECT_EQ(jet.SaveDBSetting("SnapshotBase", "D:\\Snaps\\"), 0);
  EXPECT_EQ(jet.SaveDBSetting("compatbase", "C:\\Other\\"), 0);
  EXPECT_EQ(jet.GetDBSetting("COMPATBASE"), "C:\\Other\\");
  EXPECT_EQ(jet.GetDBSetting("ReleaseBackupBase"), "");
  EXPECT_EQ(Table("SELECT SettingID, SettingName, SettingValue FROM Settings"),
            (Rows{{"1", "CompatBase", "C:\\Other\\"}, {"2", "SnapshotBase", "D:\\Snaps\\"}}));
  EXPECT_TRUE(ui.boxes.empty());

  // Names are framed in quotes without escaping and hold 50 characters: both
  // must fail cleanly rather than write a wrong row.
  EXPECT_EQ(jet.SaveDBSetting(std::string(51, 'n'), "x"), jeterr::kFieldTooSmall);
  EXPECT_EQ(jet.SaveDBSetting("Bob's", "x"), jeterr::kSyntaxInCriteria);
  EXPECT_EQ(jet.GetDBSetting("Bob's"), "");
  EXPECT_EQ(Table("SELECT count(*) FROM Settings"), (Rows{{"2"}}));

  // The build history records the built file's time.
  files().AddFile("C:\\Work\\Grid.dll", "MZ", rt::DateTime{2021, 3, 4, 17, 5, 6});
  EXPECT_EQ(jet.AddBuildHistory("C:\\Work\\Grid.dll"), 0);
  EXPECT_EQ(jet.AddBuildHistory("C:\\Work\\Gone.dll"), rt::errnum::kFileNotFound);
  EXPECT_EQ(Table("SELECT BuildEventID, BuildFileName, BuildFileDate FROM BuildHistory"),
            (Rows{{"1", "C:\\Work\\Grid.dll", "2021-03-04 17:05:06"}}));
  // Read back in the order recorded; a project without a database has none
  // and gets no file for asking.
  files().AddFile("C:\\Work\\Grid.dll", "MZ", rt::DateTime{2022, 1, 2, 3, 4, 5});
  EXPECT_EQ(jet.AddBuildHistory("C:\\Work\\Grid.dll"), 0);
  const std::vector<BuildHistoryRecord> history = jet.BuildHistory();
  ASSERT_EQ(history.size(), 2u);
  EXPECT_EQ(history[1].id, 2);
  EXPECT_EQ(history[1].fileName, "C:\\Work\\Grid.dll");
  EXPECT_EQ(history[1].fileDate, "2022-01-02 03:04:05");
  clsJet351 unbuilt{state};
  unbuilt.SetCurrentDBName("C:\\Work\\Never.stn");
  EXPECT_TRUE(unbuilt.BuildHistory().empty());
  EXPECT_FALSE(files().Exists("C:\\Work\\Never.stn"));
  EXPECT_EQ(ui.Titles(), (Strings{"clsJet351:SaveDBSetting", "clsJet351:SaveDBSetting", "clsJet351:GetDBSetting",
                               "clsJet351:AddBuildHistory"}));
  EXPECT_EQ(ui.boxes[1].style, platform::mb::kCritical);
  EXPECT_FALSE(state.err.pending());
}

TEST_F(TrackingDb, TimerJobsRoundTripThroughTimeLogAndOnlyTheNamedOneRuns) {
  CreateDatabase();
  jet.ComponentName("Form1");
  Advance(90);
  jet.ComponentName("Class1");
  Advance(30);
  jet.SaveTimerJobs();
  Advance(15);
  jet.SaveTimerJobs();  // the running job's row is edited, not added again
  EXPECT_EQ(Table("SELECT EventID, ProjCompID, ElapsedSeconds FROM TimeLog"),
            (Rows{{"1", "Form1", "90"}, {"2", "Class1", "45"}}));
  jet.ComponentName("form1");  // keys ignore case
  EXPECT_EQ(Jobs(jet.TimerJobs()), (Strings{"Form1=135 running", "Class1=45"}));  // see TimerJob below
  jet.ComponentName("");  // stops every job and starts none
  EXPECT_EQ(Jobs(jet.TimerJobs()), (Strings{"Form1=135", "Class1=45"}));

  clsJet351 reloaded(state);
  reloaded.SetCurrentDBName(kDb);
  reloaded.TimerJobs().Add("FORM1", clsTimerJob(env.Time(), "FORM1"));
  reloaded.LoadTimerJobs();
  EXPECT_EQ(Jobs(reloaded.TimerJobs()), (Strings{"FORM1=0", "Class1=45"}));  // a job in memory keeps its total
  EXPECT_TRUE(ui.boxes.empty());
}

TEST_F(TrackingDb, StoredTotalsReadAsTheirLeadingWholeNumber) {
  CreateDatabase();
  SqliteImage db = SqliteImage::Load(*files().Contents(kDb), kDb);
  db.Exec("INSERT INTO TimeLog (ProjCompID, ElapsedSeconds) VALUES ('  Form1 ', '12.9 s'), (NULL, NULL),"
          " ('Big', 99999999999), ('Late', 5);");
  files().AddFile(kDb, db.Serialize());
  jet.LoadTimerJobs();
  // The overflowing total ends the load, as the engine's failures do.
  EXPECT_EQ(Jobs(jet.TimerJobs()), (Strings{"Form1=12", "=0"}));
  EXPECT_EQ(ui.Titles(), Strings{"clsJet351:LoadTimerJobs"});
}

TEST_F(TrackingDb, SavingTouchesTheFileOnlyForChangedJobsAndAFailedWriteLeavesIt) {
  jet.ComponentName("Form1");
  jet.LoadTimerJobs();
  jet.SaveTimerJobs();
  EXPECT_FALSE(files().Exists(kDb)) << "loading and saving never create the database";

  CreateDatabase();
  jet.TimerJobs().at(0).SetChanged(false);
  files().ClearRecord();
  jet.SaveTimerJobs();
  for (const std::string& written : files().Record().written) EXPECT_EQ(written, state.trace.path());
  EXPECT_TRUE(files().Record().renames.empty());

  // A failed write-back is reported and leaves the old file.
  const std::string before = *files().Contents(kDb);
  files().FailNext(testing::FsOp::kRename, kDb, rt::errnum::kPermissionDenied);
  EXPECT_EQ(jet.SaveDBSetting("CompatBase", "C:\\Models\\"), rt::errnum::kPermissionDenied);
  EXPECT_EQ(files().Contents(kDb), before);
  EXPECT_FALSE(files().Exists(std::string(kDb) + ".tmp"));
  EXPECT_EQ(ui.Titles(), Strings{"clsJet351:SaveDBSetting"});
}

TEST_F(TrackingDb, AQuoteInAKeyEndsTheSaveAtThatJob) {
  CreateDatabase();
  for (const char* key : {"Form1", "O'Brien", "Zeta"}) jet.AddTimerJob(key).SetChanged(true);
  jet.SaveTimerJobs();
  EXPECT_EQ(Table("SELECT ProjCompID FROM TimeLog"), (Rows{{"Form1"}}));
  EXPECT_EQ(ui.Titles(), Strings{"clsJet351:SaveTimerJobs"});
  EXPECT_TRUE(ui.boxes[0].prompt.starts_with("Error 3077\r\n"));

  // Text that only parses once the criterion is bracketed must fail too,
  // rather than match every row.
  jet.TimerJobs().Clear();
  clsTimerJob& injected = jet.AddTimerJob("x') OR ('1'='1");
  injected.SetElapsedSeconds(99);
  injected.SetChanged(true);
  jet.SaveTimerJobs();
  EXPECT_EQ(Table("SELECT ProjCompID, ElapsedSeconds FROM TimeLog"), (Rows{{"Form1", "0"}}));
  EXPECT_EQ(ui.boxes.size(), 2u);
}

// Stored totals depend on how the stopwatch has always counted: starting
// keeps the start time, so time spent stopped after a gain counts too.
TEST(TimerJob, StopFoldsWholeSecondsIntoTheTotal) {
  testing::FakeClock clock;
  clsTimerJob job(clock, "Form1");
  clock.Advance(5);
  job.SetRunning(true);
  EXPECT_TRUE(job.Changed());
  EXPECT_EQ(job.ElapsedSeconds(), 5);
  clock.Advance(10);
  job.SetRunning(false);
  EXPECT_EQ(job.ElapsedSeconds(), 15);
  EXPECT_EQ(job.StartTime(), clock.Now());
  clock.Advance(100);
  EXPECT_EQ(job.ElapsedSeconds(), 15);
  job.SetRunning(true);
  clock.Advance(1);
  EXPECT_EQ(job.ElapsedSeconds(), 116);

  // Less than a second gained, or stopping a stopped job, changes nothing.
  job.SetRunning(false);
  job.SetRunning(true);
  job.SetChanged(false);
  const rt::DateTime started = job.StartTime();
  clock.Advance(0.6);
  job.SetRunning(false);
  clock.Advance(30);
  job.SetRunning(false);
  EXPECT_EQ(job.ElapsedSeconds(), 116);
  EXPECT_EQ(job.StartTime(), started);
  EXPECT_FALSE(job.Changed());
}

// The file on a real host folder: what is written is a database file that
// the engine opens on its own, and a file that is not a sound database, the
// way a disk or a copy leaves one, fails every operation, is never written,
// and is kept for the host to name.
TEST(HostTrackingDatabase, IsARealDatabaseFileAndADamagedOneIsNeverWritten) {
  testing::TempFolder folder;
  folder.Write("Grid.dll", "MZ");
  folder.MakeFolder("home");
  const std::filesystem::path file = folder / "Grid.stn";
  {
    testing::HostAddin addin(folder / "home", 'T', folder.path());
    clsJet351 jet(addin.state);
    jet.SetCurrentDBName("T:\\Grid.stn");
    ASSERT_EQ(jet.AddBuildHistory("T:\\Grid.dll"), 0);
    ASSERT_EQ(jet.SaveDBSetting("SnapshotBase", "T:\\Snaps\\"), 0);
    jet.AddTimerJob("Form1").SetChanged(true);
    jet.SaveTimerJobs();
    EXPECT_TRUE(addin.ui.boxes.empty());
    EXPECT_FALSE(std::filesystem::exists(folder / "Grid.stn.tmp"));
  }

  sqlite3* db = nullptr;
  sqlite3_stmt* select = nullptr;
  ASSERT_EQ(sqlite3_open_v2(file.string().c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  ASSERT_EQ(sqlite3_prepare_v2(db, "SELECT BuildFileName, (SELECT SettingValue FROM Settings) FROM BuildHistory", -1,
                               &select, nullptr),
            SQLITE_OK);
  ASSERT_EQ(sqlite3_step(select), SQLITE_ROW);
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(select, 0)), "T:\\Grid.dll");
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(select, 1)), "T:\\Snaps\\");
  sqlite3_finalize(select);
  sqlite3_close(db);

  const std::string sound = testing::ReadHostFile(file);
  ASSERT_GT(sound.size(), 3 * 4096u);
  std::string zeroedPage = sound;
  zeroedPage.replace(4096, 4096, 4096, '\0');
  const std::pair<const char*, std::string> damaged[] = {
      {"text", "This is not a database, just text.\r\n"},
      {"empty", ""},
      {"cut inside a page", sound.substr(0, 3000)},
      {"cut after the first page", sound.substr(0, 4096)},
      // The schema reads; only a table's own page is gone.
      {"a zeroed table page", zeroedPage},
  };
  for (const auto& [what, bytes] : damaged) {
    SCOPED_TRACE(what);
    folder.Write("Grid.stn", bytes);
    testing::HostAddin addin(folder / "home", 'T', folder.path());
    clsJet351 jet(addin.state);
    jet.SetCurrentDBName("T:\\Grid.stn");
    jet.LoadTimerJobs();
    // Totals gathered without the stored ones would replace them.
    jet.AddTimerJob("Form1").SetChanged(true);
    jet.SaveTimerJobs();
    EXPECT_EQ(jet.AddBuildHistory("T:\\Grid.dll"), jeterr::kUnrecognizedFormat);
    EXPECT_EQ(jet.SaveDBSetting("CompBackupBase", "T:\\Elsewhere\\"), jeterr::kUnrecognizedFormat);
    EXPECT_EQ(jet.GetDBSetting("SnapshotBase"), "");
    EXPECT_TRUE(jet.BuildHistory().empty());
    EXPECT_EQ(addin.ui.Titles(), (Strings{"clsJet351:LoadTimerJobs", "clsJet351:AddBuildHistory",
                                          "clsJet351:SaveDBSetting", "clsJet351:GetDBSetting",
                                          "clsJet351:BuildHistory"}));
    for (const auto& box : addin.ui.boxes)
      EXPECT_EQ(box.prompt, "Error 3343\r\nUnrecognized database format 'T:\\Grid.stn'.");
    EXPECT_TRUE(testing::ReadHostFile(file) == bytes) << "the file was written";
    EXPECT_FALSE(std::filesystem::exists(folder / "Grid.stn.tmp"));
    ASSERT_EQ(addin.state.failedDatabases.size(), 1u);
    EXPECT_EQ(addin.state.failedDatabases.begin()->first, "T:\\Grid.stn");
  }
}

}  // namespace
}  // namespace sentrune::tracking_test
