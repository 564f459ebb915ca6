#include "platform/posix/drive_map.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace sentrune::posix {
namespace {

using testing::ScopedEnv;
using testing::TempFolder;

// A prefix laid out as Wine lays it out: relative and absolute links, the
// raw-device and port entries that must not become drives, a broken link.
TEST(DriveMap, DosdevicesLinksBecomeDrivesAndHostPathsGoToTheMostSpecificDrive) {
  TempFolder prefix, data;
  prefix.MakeFolder("drive_c/windows/system32");
  prefix.MakeFolder("dosdevices");
  data.MakeFolder("Projects");
  const std::pair<std::string, const char*> links[] = {
      {"../drive_c", "c:"}, {"/", "z:"}, {data.path(), "D:"}, {"/dev/null", "c::"}, {"/dev/ttyS0", "com1"},
      {prefix / "missing", "e:"}};
  for (const auto& [target, name] : links)
    ASSERT_EQ(symlink(target.c_str(), (prefix / "dosdevices/" + name).c_str()), 0) << name;
  const DriveMap map = DriveMap::Build(prefix.path(), {});
  EXPECT_EQ(map.DriveFolder('c'), std::filesystem::canonical(prefix / "drive_c").string());
  EXPECT_EQ(map.DriveFolder('Z'), "/");
  EXPECT_FALSE(map.DriveFolder('E'));  // broken link

  // Explicit entries override the prefix's.
  const DriveMap over = DriveMap::Build(prefix.path(), {{'d', prefix.path()}});
  EXPECT_EQ(over.DriveFolder('D'), std::filesystem::canonical(prefix.path()).string());
  EXPECT_EQ(over.HostToWindows(prefix / "drive_c/windows/system32"), "C:\\windows\\system32");
  const DriveMap both = DriveMap::Build(prefix.path(), {{'P', data / "Projects"}});
  EXPECT_EQ(both.HostToWindows(data / "Projects/Widgets/Widgets.vbp"), "P:\\Widgets\\Widgets.vbp");
  EXPECT_EQ(both.HostToWindows(data.path() + "/"), "D:\\");
  EXPECT_EQ(both.HostToWindows("/"), "Z:\\");
  // A link to a drive's folder is seen through; the file name is kept.
  ASSERT_EQ(symlink((data / "Projects").c_str(), (prefix / "shortcut").c_str()), 0);
  EXPECT_EQ(both.HostToWindows(prefix / "shortcut/./New File.txt"), "P:\\New File.txt");
  // Only whole components match: "/ProjectsX" is not inside "/Projects".
  EXPECT_EQ(both.HostToWindows(data / "ProjectsX"), "D:\\ProjectsX");
  EXPECT_FALSE(DriveMap::Build("", {{'Z', data.path()}}).HostToWindows(prefix.path()));
}

TEST(DriveMap, SplitNamesTheDriveFolderOrFailsLikeTheRunTime) {
  const DriveMap map = DriveMap::Build("", {{'T', "/srv/data"}});
  const rt::Result<DriveLocation> split = map.Split("t:\\Src/.\\x\\..\\Widgets.dll");
  ASSERT_TRUE(split.ok());
  EXPECT_EQ(split->windowsRoot, "T:");
  EXPECT_EQ(split->hostRoot, "/srv/data");
  EXPECT_EQ(split->parts, (std::vector<std::string>{"Src", "Widgets.dll"}));
  EXPECT_EQ(map.Split("\\\\server\\share\\x").error().number, 76);
  EXPECT_EQ(map.Split("Q:\\x").error().number, 71);
  EXPECT_EQ(map.Split("Src\\x").error().number, 52);
  EXPECT_NE(map.Split("Q:\\x").error().description.find("Q:\\x"), std::string::npos);
}

TEST(DriveMap, DefaultPrefixComesFromTheEnvironmentOrHome) {
  TempFolder home;
  ScopedEnv homeVar("HOME", home.path());
  {
    ScopedEnv prefix("WINEPREFIX", "/opt/prefix");
    EXPECT_EQ(DefaultWinePrefix(), "/opt/prefix");
  }
  ScopedEnv prefix("WINEPREFIX", std::nullopt);
  EXPECT_EQ(DefaultWinePrefix(), "");
  home.MakeFolder(".wine");
  EXPECT_EQ(DefaultWinePrefix(), home / ".wine");
}

}  // namespace
}  // namespace sentrune::posix
