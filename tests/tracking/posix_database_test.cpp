// The tracking database on a real host folder: the bytes written through the
// FileSystem must be a database file that the engine opens on its own.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/ini/ini_file.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/posix/posix_env.h"
#include "support/fake_ui.h"
#include "tracking/jet351.h"

namespace sentrune::tracking_test {
namespace {

namespace fs = std::filesystem;

TEST(PosixTrackingDatabase, IsARealDatabaseFile) {
  const fs::path folder = fs::temp_directory_path() / ("sentrune-tracking-" + std::to_string(getpid()));
  fs::create_directories(folder / "home");
  std::ofstream(folder / "Grid.dll") << "MZ";
  {
    posix::PosixEnvOptions options;
    options.homeHostDir = (folder / "home").string();
    options.wineprefix = (folder / "no-prefix").string();
    options.drives = {{'T', folder.string()}};
    posix::PosixEnv env(options);
    testing::FakeUi ui;
    portable::PortableProfileFiles profiles{env.Files()};
    portable::PortableVersionResources versions{env.Files()};
    portable::PortableTypeLibSource typelibs{env.Files()};
    AddinState state{Platform{env, ui, profiles, versions, typelibs}};
    clsJet351 jet(state);
    jet.SetCurrentDBName("T:\\Grid.stn");
    ASSERT_EQ(jet.AddBuildHistory("T:\\Grid.dll"), 0);
    ASSERT_EQ(jet.SaveDBSetting("SnapshotBase", "T:\\Snaps\\"), 0);
    EXPECT_TRUE(ui.boxes.empty());
    EXPECT_FALSE(fs::exists(folder / "Grid.stn.tmp"));
  }

  sqlite3* db = nullptr;
  sqlite3_stmt* select = nullptr;
  ASSERT_EQ(sqlite3_open_v2((folder / "Grid.stn").c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  ASSERT_EQ(sqlite3_prepare_v2(db, "SELECT BuildFileName, (SELECT SettingValue FROM Settings) FROM BuildHistory", -1,
                               &select, nullptr),
            SQLITE_OK);
  ASSERT_EQ(sqlite3_step(select), SQLITE_ROW);
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(select, 0)), "T:\\Grid.dll");
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(select, 1)), "T:\\Snaps\\");
  sqlite3_finalize(select);
  sqlite3_close(db);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace sentrune::tracking_test
