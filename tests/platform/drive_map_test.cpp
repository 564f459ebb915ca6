#include "platform/posix/drive_map.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "host_fixtures.h"

namespace sentrune::posix {
namespace {

using test::ScopedEnv;
using test::TempFolder;

// A prefix laid out as Wine lays it out: relative and absolute links, the
// raw-device and port entries that must not become drives, a broken link.
class WinePrefix : public ::testing::Test {
 protected:
  void SetUp() override {
    prefix_.MakeFolder("drive_c/windows/system32");
    prefix_.MakeFolder("dosdevices");
    data_.MakeFolder("Projects");
    Link("../drive_c", "c:");
    Link("/", "z:");
    Link(data_.path(), "D:");
    Link("/dev/null", "c::");
    Link("/dev/ttyS0", "com1");
    Link(prefix_ / "missing", "e:");
  }
  void Link(const std::string& target, const std::string& name) {
    ASSERT_EQ(symlink(target.c_str(), (prefix_ / ("dosdevices/" + name)).c_str()), 0);
  }

  TempFolder prefix_;
  TempFolder data_;
};

TEST_F(WinePrefix, DosdevicesLinksBecomeDrivesAndExplicitEntriesOverride) {
  const DriveMap map = DriveMap::Build(prefix_.path(), {});
  EXPECT_EQ(map.DriveFolder('c'), std::filesystem::canonical(prefix_ / "drive_c").string());
  EXPECT_EQ(map.DriveFolder('D'), std::filesystem::canonical(data_.path()).string());
  EXPECT_EQ(map.DriveFolder('Z'), "/");
  EXPECT_FALSE(map.DriveFolder('E'));  // broken link
  EXPECT_FALSE(map.DriveFolder('Q'));

  const DriveMap overridden = DriveMap::Build(prefix_.path(), {{'d', prefix_.path()}, {'Q', data_ / "Projects"}});
  EXPECT_EQ(overridden.DriveFolder('D'), std::filesystem::canonical(prefix_.path()).string());
  EXPECT_EQ(overridden.DriveFolder('q'), std::filesystem::canonical(data_ / "Projects").string());
}

TEST_F(WinePrefix, HostPathsGoToTheMostSpecificDrive) {
  const DriveMap map = DriveMap::Build(prefix_.path(), {{'P', data_ / "Projects"}});
  EXPECT_EQ(map.HostToWindows(prefix_ / "drive_c/windows/system32"), "C:\\windows\\system32");
  EXPECT_EQ(map.HostToWindows(data_ / "Projects/Widgets/Widgets.vbp"), "P:\\Widgets\\Widgets.vbp");
  EXPECT_EQ(map.HostToWindows(data_ / "other.txt"), "D:\\other.txt");
  EXPECT_EQ(map.HostToWindows(data_.path() + "/"), "D:\\");
  EXPECT_EQ(map.HostToWindows("/"), "Z:\\");
  // A link to a drive's folder is seen through; the file name is kept.
  ASSERT_EQ(symlink((data_ / "Projects").c_str(), (prefix_ / "shortcut").c_str()), 0);
  EXPECT_EQ(map.HostToWindows(prefix_ / "shortcut/./New File.txt"), "P:\\New File.txt");
  // Only whole components match: "/ProjectsX" is not inside "/Projects".
  EXPECT_EQ(map.HostToWindows(data_ / "ProjectsX"), "D:\\ProjectsX");

  const DriveMap noRoot = DriveMap::Build("", {{'Z', data_.path()}});
  EXPECT_FALSE(noRoot.HostToWindows(prefix_.path()));
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
