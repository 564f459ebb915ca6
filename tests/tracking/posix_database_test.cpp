// The tracking database on a real host folder: the bytes written through the
// FileSystem must be a database file that the engine opens on its own.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>

#include "platform/ini/ini_file.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/posix/posix_env.h"
#include "platform/tlb/typelib_source_portable.h"
#include "support/fake_ui.h"
#include "support/temp_folder.h"
#include "tracking/jet351.h"

namespace sentrune::tracking_test {
namespace {

TEST(PosixTrackingDatabase, IsARealDatabaseFile) {
  testing::TempFolder folder;
  folder.Write("Grid.dll", "MZ");
  folder.MakeFolder("home");
  {
    posix::PosixEnvOptions options;
    options.homeHostDir = folder / "home";
    options.wineprefix = folder / "no-prefix";
    options.drives = {{'T', folder.path()}};
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
    EXPECT_FALSE(std::filesystem::exists(folder / "Grid.stn.tmp"));
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
}

}  // namespace
}  // namespace sentrune::tracking_test
