#include "platform/posix/posix_env.h"

#include <gtest/gtest.h>
#include <unistd.h>


#include "support/temp_folder.h"
#include "platform/posix/user_dirs.h"

namespace sentrune::posix {
namespace {

using testing::ScopedEnv;
using testing::TempFolder;

TEST(UserDirs, ParsesTheFreedesktopFile) {
  const std::string text =
      "# written by xdg-user-dirs-update\n"
      "XDG_DESKTOP_DIR=\"$HOME/Old\"\n"
      "  XDG_DESKTOP_DIR = \"$HOME/Mein \\\"Schreibtisch\\\"\"\n";
  EXPECT_EQ(ParseUserDir(text, "XDG_DESKTOP_DIR", "/srv/u"), "/srv/u/Mein \"Schreibtisch\"");
  EXPECT_FALSE(ParseUserDir(text, "XDG_MUSIC_DIR", "/srv/u"));
  const std::pair<const char*, std::optional<std::string>> lines[] = {
      {"\"/srv/desk\"", "/srv/desk"}, {"\"desk\"", std::nullopt}, {"\"$HOMEX/desk\"", std::nullopt}};
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

  root_.Write("tmp/Dummy.VBP", "Test");
  root_.Write("tmp/Dummy.txt", "Test");
  std::string program;
  EXPECT_EQ(programs.FindExecutable("T:\\tmp\\Dummy.txt", program), 31);
  EXPECT_EQ(programs.FindExecutable("T:\\nowhere\\Dummy.vbp", program), 3);
  EXPECT_GE(programs.FindExecutable("T:\\TMP\\dummy.vbp", program), 32);
  EXPECT_EQ(program, "C:\\VB98\\VB6.EXE");
}

}  // namespace
}  // namespace sentrune::posix
