#include "platform/posix/posix_env.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <thread>

#include "host_fixtures.h"
#include "platform/posix/user_dirs.h"

namespace sentrune::posix {
namespace {

using test::ScopedEnv;
using test::TempFolder;

TEST(UserDirs, ParsesTheFreedesktopFile) {
  const std::string text =
      "# written by xdg-user-dirs-update\n"
      "XDG_DESKTOP_DIR=\"$HOME/Old\"\n"
      "  XDG_DESKTOP_DIR = \"$HOME/Mein \\\"Schreibtisch\\\"\"\n";
  EXPECT_EQ(ParseUserDir(text, "XDG_DESKTOP_DIR", "/srv/u"), "/srv/u/Mein \"Schreibtisch\"");
  EXPECT_FALSE(ParseUserDir(text, "XDG_MUSIC_DIR", "/srv/u"));
  const std::pair<const char*, std::optional<std::string>> lines[] = {
      {"\"/srv/desk\"", "/srv/desk"}, {"\"$HOME\"", "/h"}, {"\"desk\"", std::nullopt},
      {"$HOME/desk", std::nullopt}, {"\"$HOMEX/desk\"", std::nullopt}};
  for (const auto& [value, expected] : lines)
    EXPECT_EQ(ParseUserDir(std::string("XDG_DESKTOP_DIR=") + value, "XDG_DESKTOP_DIR", "/h"), expected) << value;
}

// A user whose home, configuration and temporary folders live on drive T:.
class PosixEnvFolders : public ::testing::Test {
 protected:
  PosixEnvFolders() { root_.MakeFolder("tmp"); }

  TempFolder root_;
  ScopedEnv home_{"HOME", root_ / "home"};
  ScopedEnv config_{"XDG_CONFIG_HOME", root_ / "home/.config"};
  ScopedEnv tmp_{"TMPDIR", root_ / "tmp"};
  ScopedEnv prefix_{"WINEPREFIX", std::nullopt};

  PosixEnv MakeEnv(std::string wineprefix = "") {
    PosixEnvOptions options;
    options.homeHostDir = root_ / "home/.config/sentrune";
    options.wineprefix = std::move(wineprefix);
    options.drives = {{'T', root_.path()}};
    options.associations = {{"vbp", "C:\\VB98\\VB6.EXE"}};
    return PosixEnv(std::move(options));
  }
};

TEST_F(PosixEnvFolders, FoldersAreWindowsPathsOnTheMappedDrives) {
  root_.MakeFolder("home/.config/sentrune");
  PosixEnv env = MakeEnv();
  EXPECT_EQ(env.ModuleFolder(), "T:\\home\\.config\\sentrune\\");
  EXPECT_EQ(env.TempPath(), "T:\\tmp\\");
  EXPECT_EQ(env.SpecialFolderPath(platform::kFolderAppData), "T:\\home\\.config");
  EXPECT_EQ(env.SpecialFolderPath(platform::kFolderSystem), "") << "no prefix";
  EXPECT_EQ(env.SpecialFolderPath(0x1234), "");

  // The desktop comes from user-dirs, else ~/Desktop if it exists.
  EXPECT_EQ(env.SpecialFolderPath(platform::kFolderDesktop), "");
  root_.MakeFolder("home/Desktop");
  EXPECT_EQ(MakeEnv().SpecialFolderPath(platform::kFolderDesktop), "T:\\home\\Desktop");
  root_.Write("home/.config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
  root_.MakeFolder("home/Schreibtisch");
  EXPECT_EQ(MakeEnv().SpecialFolderPath(platform::kFolderDesktop), "T:\\home\\Schreibtisch");

  TempFolder prefix;
  prefix.MakeFolder("drive_c/windows/system32");
  prefix.MakeFolder("dosdevices");
  ASSERT_EQ(symlink("../drive_c", (prefix / "dosdevices/c:").c_str()), 0);
  PosixEnv wine = MakeEnv(prefix.path());
  EXPECT_EQ(wine.SpecialFolderPath(platform::kFolderSystem), "C:\\windows\\system32");
  EXPECT_TRUE(wine.Files().GetAttributes("C:\\Windows\\System32").ok());
}

TEST_F(PosixEnvFolders, ProgramsRunThroughTheShellAndOnlyConfiguredAssociationsAreFound) {
  PosixEnv env = MakeEnv();
  platform::Processes& programs = env.Programs();
  EXPECT_EQ(*programs.Run("exit 3"), 3);
  EXPECT_EQ(*programs.Run("printf %s 'two words' > \"" + (root_ / "tmp/out file") + "\""), 0);
  EXPECT_EQ(*env.Files().ReadFile("T:\\tmp\\out file"), "two words");
  EXPECT_EQ(programs.Run("no-such-program-for-sentrune").error().number, 53);
  ASSERT_TRUE(programs.Start("echo started > \"" + (root_ / "tmp/started") + "\"").ok());
  for (int i = 0; i < 200 && !env.Files().ReadFile("T:\\tmp\\started").ok(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  EXPECT_EQ(*env.Files().ReadFile("T:\\tmp\\started"), "started\n");

  root_.Write("tmp/Dummy.VBP", "Test");
  root_.Write("tmp/Dummy.txt", "Test");
  std::string program;
  EXPECT_EQ(programs.FindExecutable("T:\\tmp\\Dummy.txt", program), 31);
  EXPECT_EQ(programs.FindExecutable("T:\\tmp\\Missing.vbp", program), 2);
  EXPECT_EQ(programs.FindExecutable("T:\\nowhere\\Dummy.vbp", program), 3);
  EXPECT_GE(programs.FindExecutable("T:\\TMP\\dummy.vbp", program), 32);
  EXPECT_EQ(program, "C:\\VB98\\VB6.EXE");
}

TEST(PosixClock, ReportsLocalTime) {
  ScopedEnv zone("TZ", "UTC-13");  // far from UTC, so a clock in UTC would be caught
  const PosixClock clock;
  const time_t shifted = time(nullptr) + 13 * 3600;
  tm fields{};
  gmtime_r(&shifted, &fields);
  const rt::DateTime expected{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
                              fields.tm_hour,        fields.tm_min,     fields.tm_sec};
  EXPECT_LE(std::llabs(rt::DateDiffSeconds(expected, clock.Now())), 2);
  const double expectedTimer = fields.tm_hour * 3600.0 + fields.tm_min * 60.0 + fields.tm_sec;
  const double apart = std::fmod(clock.Timer() - expectedTimer + 86400 + 43200, 86400) - 43200;
  EXPECT_LE(std::abs(apart), 2.0);
}

}  // namespace
}  // namespace sentrune::posix
