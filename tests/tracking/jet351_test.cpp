#include "tracking/jet351.h"

#include <gtest/gtest.h>

#include "tracking/tracking_schema.h"
#include "tracking_world.h"

namespace sentrune::tracking_test {
namespace {

using Rows = std::vector<std::vector<std::string>>;
using testing::FakeClock;
using testing::FakeFileSystem;
using testing::FsOp;

class TrackingDb : public ::testing::Test {
 protected:
  static constexpr const char* kDb = "C:\\Work\\Grid.stn";

  void SetUp() override {
    addin.files().AddFolder("C:\\Work");
    jet.SetCurrentDBName(kDb);
  }
  FakeFileSystem& files() { return addin.files(); }
  Rows Table(const std::string& sql) { return Query(files().Contents(kDb).value(), sql); }
  void CreateDatabase() { ASSERT_EQ(jet.SaveDBSetting("Created", "1"), 0); }
  std::vector<std::string> Titles() {
    std::vector<std::string> titles;
    for (const auto& box : addin.ui.boxes) titles.push_back(box.title);
    return titles;
  }

  testing::TestAddin addin;
  clsJet351 jet{addin.state};
};

TEST(TrackingDatabasePath, CutsAtTheLastDotOfTheWholePath) {
  EXPECT_EQ(TrackingDatabasePath("C:\\Work\\Grid.vbp"), "C:\\Work\\Grid.stn");
  EXPECT_EQ(TrackingDatabasePath("C:\\Work\\Grid.old.vbp"), "C:\\Work\\Grid.old.stn");
  EXPECT_EQ(TrackingDatabasePath("C:\\Work\\Grid"), "C:\\Work\\Grid.stn");
  // A dotted folder above an extensionless file loses the rest of its name.
  EXPECT_EQ(TrackingDatabasePath("C:\\Work.v2\\Grid"), "C:\\Work.stn");
}

TEST_F(TrackingDb, FirstUseCreatesTheTablesAndIndexesThroughARename) {
  EXPECT_EQ(jet.GetDBSetting("CompatBase"), "");
  ASSERT_TRUE(files().Exists(kDb));
  EXPECT_FALSE(files().Exists(std::string(kDb) + ".tmp"));
  EXPECT_EQ(files().Record().renames.front(), std::make_pair(std::string(kDb) + ".tmp", std::string(kDb)));

  EXPECT_EQ(Table("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%' ORDER BY name"),
            (Rows{{"BuildHistory"}, {"Settings"}, {"TimeLog"}}));
  EXPECT_EQ(Table("SELECT name FROM pragma_table_info('TimeLog')"),
            (Rows{{"EventID"}, {"ProjCompID"}, {"ElapsedSeconds"}}));
  EXPECT_EQ(Table("SELECT name FROM pragma_table_info('BuildHistory')"),
            (Rows{{"BuildEventID"}, {"BuildFileName"}, {"BuildFileDate"}}));
  EXPECT_EQ(Table("SELECT name FROM pragma_table_info('Settings')"),
            (Rows{{"SettingID"}, {"SettingName"}, {"SettingValue"}}));
  // pragma_index_list: newest first; "unique" is 1 for the primary key only.
  EXPECT_EQ(Table("SELECT name, \"unique\" FROM pragma_index_list('TimeLog')"),
            (Rows{{"TimeLog_PrimaryKey", "1"}, {"EventID", "0"}}));
  EXPECT_EQ(Table("SELECT name, \"unique\" FROM pragma_index_list('BuildHistory')"),
            (Rows{{"BuildHistory_PrimaryKey", "1"}, {"BuildEventID", "0"}}));
  EXPECT_EQ(Table("SELECT name, \"unique\" FROM pragma_index_list('Settings')"),
            (Rows{{"Settings_PrimaryKey", "1"}, {"SettingID", "0"}}));
}

TEST_F(TrackingDb, SettingsAreFoundByNameWithoutRegardToCase) {
  EXPECT_EQ(jet.SaveDBSetting("CompatBase", "C:\\Models\\"), 0);
  EXPECT_EQ(jet.SaveDBSetting("SnapshotBase", "D:\\Snaps\\"), 0);
  EXPECT_EQ(jet.SaveDBSetting("compatbase", "C:\\Other\\"), 0);
  EXPECT_EQ(jet.GetDBSetting("COMPATBASE"), "C:\\Other\\");
  EXPECT_EQ(jet.GetDBSetting("SnapshotBase"), "D:\\Snaps\\");
  EXPECT_EQ(jet.GetDBSetting("ReleaseBackupBase"), "");
  EXPECT_EQ(Table("SELECT SettingID, SettingName, SettingValue FROM Settings"),
            (Rows{{"1", "CompatBase", "C:\\Other\\"}, {"2", "SnapshotBase", "D:\\Snaps\\"}}));
  EXPECT_TRUE(addin.ui.boxes.empty());

  // The name field holds 50 characters, and a name is framed in quotes
  // without escaping.
  EXPECT_EQ(jet.SaveDBSetting(std::string(51, 'n'), "x"), jeterr::kFieldTooSmall);
  EXPECT_EQ(jet.SaveDBSetting("Bob's", "x"), jeterr::kSyntaxInCriteria);
  EXPECT_EQ(jet.GetDBSetting("Bob's"), "");
  EXPECT_EQ(Titles(), (std::vector<std::string>{"clsJet351:SaveDBSetting", "clsJet351:SaveDBSetting",
                                                "clsJet351:GetDBSetting"}));
  EXPECT_EQ(addin.ui.boxes[1].style, platform::mb::kCritical);
  EXPECT_EQ(Table("SELECT count(*) FROM Settings"), (Rows{{"2"}}));
  EXPECT_FALSE(addin.state.err.pending());
}

TEST_F(TrackingDb, BuildHistoryRecordsTheBuiltFilesTime) {
  files().AddFile("C:\\Work\\Grid.dll", "MZ", rt::DateTime{2021, 3, 4, 17, 5, 6});
  EXPECT_EQ(jet.AddBuildHistory("C:\\Work\\Grid.dll"), 0);
  files().AddFile("C:\\Work\\Grid.dll", "MZ2", rt::DateTime{2021, 3, 5, 8, 0, 0});
  EXPECT_EQ(jet.AddBuildHistory("C:\\Work\\Grid.dll"), 0);
  EXPECT_EQ(Table("SELECT BuildEventID, BuildFileName, BuildFileDate FROM BuildHistory"),
            (Rows{{"1", "C:\\Work\\Grid.dll", "2021-03-04 17:05:06"}, {"2", "C:\\Work\\Grid.dll", "2021-03-05 08:00:00"}}));

  // A built file that is not there adds nothing, but the database exists.
  EXPECT_EQ(jet.AddBuildHistory("C:\\Work\\Gone.dll"), rt::errnum::kFileNotFound);
  EXPECT_EQ(Table("SELECT count(*) FROM BuildHistory"), (Rows{{"2"}}));
  EXPECT_EQ(Titles(), std::vector<std::string>{"clsJet351:AddBuildHistory"});
}

TEST_F(TrackingDb, TimerJobsRoundTripThroughTimeLog) {
  CreateDatabase();
  FakeClock& clock = addin.env.Time();
  jet.ComponentName("Form1");
  clock.Advance(90);
  jet.ComponentName("Class1");
  clock.Advance(30);
  jet.SaveTimerJobs();
  clock.Advance(15);
  jet.SaveTimerJobs();  // the running job's row is edited, not added again
  EXPECT_EQ(Table("SELECT EventID, ProjCompID, ElapsedSeconds FROM TimeLog"),
            (Rows{{"1", "Form1", "90"}, {"2", "Class1", "45"}}));

  clsJet351 reloaded(addin.state);
  reloaded.SetCurrentDBName(kDb);
  reloaded.TimerJobs().Add("FORM1", clsTimerJob(clock, "FORM1"));
  reloaded.LoadTimerJobs();
  ASSERT_EQ(reloaded.TimerJobs().size(), 2u);
  // A job in memory already keeps its own total.
  EXPECT_EQ(reloaded.TimerJobs().at(0).ElapsedSeconds(), 0);
  EXPECT_EQ(reloaded.TimerJobs().keyAt(1), "Class1");
  EXPECT_EQ(reloaded.TimerJobs().at(1).ElapsedSeconds(), 45);
  EXPECT_FALSE(reloaded.TimerJobs().at(1).Running());
  EXPECT_TRUE(addin.ui.boxes.empty());
}

TEST_F(TrackingDb, StoredTotalsReadAsTheirLeadingWholeNumber) {
  CreateDatabase();
  files().AddFile(kDb, [&] {
    SqliteImage db = SqliteImage::Load(*files().Contents(kDb), kDb);
    db.Exec("INSERT INTO TimeLog (ProjCompID, ElapsedSeconds) VALUES ('  Form1 ', '12.9 s');"
            "INSERT INTO TimeLog (ProjCompID, ElapsedSeconds) VALUES (NULL, NULL);"
            "INSERT INTO TimeLog (ProjCompID, ElapsedSeconds) VALUES ('Big', 99999999999);"
            "INSERT INTO TimeLog (ProjCompID, ElapsedSeconds) VALUES ('Late', 5);");
    return db.Serialize();
  }());
  jet.LoadTimerJobs();
  // The overflowing total ends the load, as the engine's failures do.
  ASSERT_EQ(jet.TimerJobs().size(), 2u);
  EXPECT_EQ(jet.TimerJobs().keyAt(0), "Form1");
  EXPECT_EQ(jet.TimerJobs().at(0).ElapsedSeconds(), 12);
  EXPECT_EQ(jet.TimerJobs().keyAt(1), "");
  EXPECT_EQ(Titles(), std::vector<std::string>{"clsJet351:LoadTimerJobs"});
}

TEST_F(TrackingDb, SavingTouchesTheFileOnlyForChangedJobs) {
  // No database file: loading and saving only trace.
  jet.ComponentName("Form1");
  jet.LoadTimerJobs();
  jet.SaveTimerJobs();
  EXPECT_FALSE(files().Exists(kDb));

  CreateDatabase();
  jet.TimerJobs().at(0).SetChanged(false);
  files().ClearRecord();
  const size_t traced = addin.TraceLines().size();
  jet.SaveTimerJobs();
  for (const std::string& written : files().Record().written) EXPECT_EQ(written, addin.state.trace.path());
  EXPECT_TRUE(files().Record().renames.empty());
  const std::vector<std::string> lines = addin.TraceLines();
  const std::string rule(40, '*');
  EXPECT_EQ(std::vector<std::string>(lines.begin() + static_cast<long>(traced), lines.end()),
            (std::vector<std::string>{rule, "'SaveTimerJobs - Grid.stn",
                                      "'clsJet351:Property Set CurrentDBObject = Nothing", "'Elapsed Time: 0",
                                      rule}));
}

TEST_F(TrackingDb, AQuoteInAKeyEndsTheSaveAtThatJob) {
  CreateDatabase();
  for (const char* key : {"Form1", "O'Brien", "Zeta"}) jet.AddTimerJob(key).SetChanged(true);
  jet.SaveTimerJobs();
  EXPECT_EQ(Table("SELECT ProjCompID FROM TimeLog"), (Rows{{"Form1"}}));
  ASSERT_EQ(addin.ui.boxes.size(), 1u);
  EXPECT_EQ(addin.ui.boxes[0].title, "clsJet351:SaveTimerJobs");
  EXPECT_EQ(addin.ui.boxes[0].prompt.rfind("Error 3077\r\n", 0), 0u);
  EXPECT_EQ(jet.TimerJobs().size(), 3u);

  // Text that only parses once the criterion is bracketed must fail too,
  // rather than match every row.
  jet.TimerJobs().Clear();
  clsTimerJob& injected = jet.AddTimerJob("x') OR ('1'='1");
  injected.SetElapsedSeconds(99);
  injected.SetChanged(true);
  jet.SaveTimerJobs();
  EXPECT_EQ(Table("SELECT ProjCompID, ElapsedSeconds FROM TimeLog"), (Rows{{"Form1", "0"}}));
  EXPECT_EQ(addin.ui.boxes.size(), 2u);
}

TEST_F(TrackingDb, AFileThatIsNoDatabaseFailsEachOperationCleanly) {
  for (const std::string& bytes : {std::string("This is not a database, just text.\r\n"), std::string()}) {
    addin.ui.boxes.clear();
    files().AddFile(kDb, bytes);
    jet.TimerJobs().Clear();
    jet.AddTimerJob("Form1").SetChanged(true);
    files().ClearRecord();

    jet.LoadTimerJobs();
    jet.SaveTimerJobs();
    EXPECT_EQ(jet.AddBuildHistory(kDb), jeterr::kUnrecognizedFormat);
    EXPECT_EQ(jet.GetDBSetting("CompatBase"), "");
    EXPECT_EQ(jet.CurrentDBObject(), nullptr);

    EXPECT_EQ(Titles(), (std::vector<std::string>{"clsJet351:LoadTimerJobs", "clsJet351:SaveTimerJobs",
                                                  "clsJet351:AddBuildHistory", "clsJet351:GetDBSetting"}));
    EXPECT_EQ(files().Contents(kDb), bytes);
    EXPECT_TRUE(files().Record().renames.empty());
    EXPECT_EQ(jet.TimerJobs().size(), 1u);
  }
}

TEST_F(TrackingDb, AFailedWriteBackIsReportedAndLeavesTheOldFile) {
  CreateDatabase();
  const std::string before = *files().Contents(kDb);
  files().FailNext(FsOp::kRename, kDb, rt::errnum::kPermissionDenied);
  EXPECT_EQ(jet.SaveDBSetting("CompatBase", "C:\\Models\\"), rt::errnum::kPermissionDenied);
  EXPECT_EQ(files().Contents(kDb), before);
  EXPECT_FALSE(files().Exists(std::string(kDb) + ".tmp"));
  EXPECT_EQ(Titles(), std::vector<std::string>{"clsJet351:SaveDBSetting"});
}

TEST_F(TrackingDb, CurrentDBObjectOpensOnceAndTracesBothDirections) {
  jet.SetCurrentDBName("");
  EXPECT_EQ(jet.CurrentDBObject(), nullptr);
  jet.SetCurrentDBName(kDb);
  EXPECT_EQ(jet.CurrentDBObject(), nullptr);  // no file yet
  CreateDatabase();
  SqliteImage* first = jet.CurrentDBObject();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(jet.CurrentDBObject(), first);

  const std::vector<std::string> lines = addin.TraceLines();
  const std::string rule(40, '*');
  const std::vector<std::string> tail(lines.end() - 9, lines.end());
  EXPECT_EQ(tail, (std::vector<std::string>{rule, "'clsJet351:Property Set CurrentDBObject = Object",
                                            "'clsJet351:Property Get CurrentDBObject - returns Object",
                                            "'Elapsed Time: 0", rule, rule,
                                            "'clsJet351:Property Get CurrentDBObject - returns Object",
                                            "'Elapsed Time: 0", rule}));
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "'clsJet351:Property Get CurrentDBObject - returns Nothing"), 2);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "'clsJet351:Property Let CurrentDBName"), 3);
}

}  // namespace
}  // namespace sentrune::tracking_test
