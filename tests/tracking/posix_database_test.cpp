// The tracking database on a real host folder: the bytes written through the
// FileSystem must be a database file that the engine opens on its own.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/portable/ini_file.h"
#include "platform/portable/typelib_source_portable.h"
#include "platform/portable/version_resources_portable.h"
#include "platform/posix/posix_env.h"
#include "support/fake_ui.h"
#include "tracking/jet351.h"

namespace sentrune::tracking_test {
namespace {

class HostFolder {
 public:
  HostFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sentrune-tracking-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~HostFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

TEST(PosixTrackingDatabase, IsARealDatabaseFile) {
  HostFolder folder;
  ASSERT_FALSE(folder.path().empty());
  std::filesystem::create_directories(folder.path() + "/home");
  std::ofstream(folder.path() + "/Grid.dll") << "MZ";
  posix::PosixEnvOptions options;
  options.homeHostDir = folder.path() + "/home";
  options.wineprefix = folder.path() + "/no-prefix";
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
  EXPECT_EQ(jet.GetDBSetting("SnapshotBase"), "T:\\Snaps\\");
  EXPECT_TRUE(ui.boxes.empty());
  EXPECT_FALSE(std::filesystem::exists(folder.path() + "/Grid.stn.tmp"));

  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open_v2((folder.path() + "/Grid.stn").c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_stmt* select = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(db,
                               "SELECT BuildFileName, (SELECT SettingValue FROM Settings), "
                               "(SELECT count(*) FROM TimeLog) FROM BuildHistory",
                               -1, &select, nullptr),
            SQLITE_OK);
  ASSERT_EQ(sqlite3_step(select), SQLITE_ROW);
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(select, 0)), "T:\\Grid.dll");
  EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(select, 1)), "T:\\Snaps\\");
  EXPECT_EQ(sqlite3_column_int(select, 2), 0);
  sqlite3_finalize(select);
  sqlite3_close(db);
}

}  // namespace
}  // namespace sentrune::tracking_test
