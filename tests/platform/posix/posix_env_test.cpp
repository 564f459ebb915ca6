// The host as the add-in sees it: drives from the Wine prefix's dosdevices,
// special folders from the freedesktop settings, programs through the shell,
// and the prefix's wineserver, found by its server folder, socket and lock in
// a temporary folder that stands in for /tmp. Then a real Wine prefix: Wine
// reads what the store wrote, the store reads what Wine wrote back, and the
// store refuses to write while the prefix's server runs. Setting a prefix up
// takes Wine half a minute, so that is one test with one prefix; it is
// skipped where Wine is not installed.
#include "platform/posix/posix_env.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/drive_map.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/user_dirs.h"
#include "platform/posix/wine_server.h"
#include "platform/posix/wine_server_registry.h"
#include "platform/winereg/wine_registry_file.h"
#include "support/host_files.h"
#include "support/scoped_env.h"
#include "support/temp_folder.h"

namespace sentrune::posix {
namespace {

namespace fs = std::filesystem;
using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using platform::RegValue;
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
  EXPECT_EQ(map.DriveFolder('c'), fs::canonical(prefix / "drive_c").string());
  EXPECT_EQ(map.DriveFolder('Z'), "/");
  EXPECT_FALSE(map.DriveFolder('E'));  // broken link

  // Explicit entries override the prefix's.
  const DriveMap over = DriveMap::Build(prefix.path(), {{'d', prefix.path()}});
  EXPECT_EQ(over.DriveFolder('D'), fs::canonical(prefix.path()).string());
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
    return PosixEnv({.homeHostDir = root_ / "home/.config/sentrune", .wineprefix = std::move(wineprefix),
                     .drives = {{'T', root_.path()}}, .associations = {{"vbp", "C:\\VB98\\VB6.EXE"}}});
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

class WineServerProbe : public ::testing::Test {
 protected:
  void SetUp() override {
    prefix_ = tmp_ + "/prefix";
    fs::create_directories(prefix_);
    struct stat info;
    ASSERT_EQ(stat(prefix_.c_str(), &info), 0);
    char name[64];
    std::snprintf(name, sizeof name, "server-%llx-%llx", static_cast<unsigned long long>(info.st_dev),
                  static_cast<unsigned long long>(info.st_ino));
    server_ = name;
  }
  void TearDown() override {
    if (lockFd_ >= 0) close(lockFd_);
  }
  // A server folder with its socket and lock file, the lock held by us.
  void RunServerIn(const std::string& folder, bool holdLock = true) {
    fs::create_directories(folder);
    for (const char* file : {"/socket", "/lock"}) std::ofstream(folder + file).put('\0');
    if (!holdLock) return;
    lockFd_ = open((folder + "/lock").c_str(), O_RDWR);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    EXPECT_EQ(fcntl(lockFd_, F_SETLK, &lock), 0);
  }

  testing::TempFolder temp_;
  std::string tmp_ = temp_.path(), prefix_, server_;
  int lockFd_ = -1;
};

TEST_F(WineServerProbe, LooksWhereEitherWineKeepsItsServerForASocketAndAHeldLock) {
  const std::string upstream = tmp_ + "/.wine-" + std::to_string(getuid()) + "/" + server_;
  EXPECT_EQ(WineServerFolders(prefix_, tmp_), std::vector<std::string>{upstream});
  std::ofstream(prefix_ + "/wineserver") << "wine-AbC123";
  EXPECT_EQ(WineServerFolders(prefix_, tmp_), (std::vector<std::string>{tmp_ + "/wine-AbC123/" + server_, upstream}));
  EXPECT_TRUE(WineServerFolders(tmp_ + "/no-such-prefix", tmp_).empty());
  EXPECT_FALSE(WineServerRunning(tmp_ + "/no-such-prefix", tmp_));

  // Running means a socket and a held lock.
  std::ofstream(prefix_ + "/wineserver") << "wine-AbC123\n";
  const std::string folder = tmp_ + "/wine-AbC123/" + server_;
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));
  RunServerIn(folder, /*holdLock=*/false);
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));  // a socket left behind by a crash
  fs::remove(folder + "/lock");
  EXPECT_TRUE(WineServerRunning(prefix_, tmp_));  // cannot tell: assume it runs
  RunServerIn(folder);
  EXPECT_TRUE(WineServerRunning(prefix_, tmp_));
  fs::remove(folder + "/socket");  // the server is gone; its lock file stays
  close(lockFd_);
  lockFd_ = -1;
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));
  // Another prefix's server is not ours.
  RunServerIn(tmp_ + "/.wine-" + std::to_string(getuid()) + "/server-1-2");
  EXPECT_FALSE(WineServerRunning(prefix_, tmp_));
}

// A fresh prefix, its server stopped and the folder removed at the end.
class WinePrefix {
 public:
  ~WinePrefix() {
    Run("wineserver -k");
    std::error_code ec;
    // Debian's Wine gives each prefix a server base folder of its own.
    const std::vector<std::string> folders = posix::WineServerFolders(path());
    if (folders.size() == 2) std::filesystem::remove_all(std::filesystem::path(folders[0]).parent_path(), ec);
  }
  const std::string& path() const { return folder_.path(); }
  int Run(const std::string& command) const { return std::system((Env() + command + " >/dev/null 2>&1").c_str()); }
  std::string Query(const std::string& key) const {
    return testing::CommandOutput(Env() + "wine reg query '" + key + "' 2>/dev/null");
  }

 private:
  std::string Env() const { return "WINEPREFIX='" + path() + "' WINEDEBUG=-all DISPLAY= "; }
  testing::TempFolder folder_;
};

const RegValue kCommand{platform::kRegSz, std::string("\"C:\\VB98\\VB6.EXE\" \"%1\"\0", 24)};
const std::pair<const char*, RegValue> kOurs[] = {
    {"Count", {platform::kRegDword, std::string("\x0a\0\0\0", 4)}},
    {"Path", {platform::kRegExpandSz, std::string("%SystemRoot%\\x\0", 15)}},
    {"Name", {platform::kRegSz, std::string("Gr\xc3\xbc\xc3\x9f" "e \"q\"\\\0", 13)}},
    {"List", {platform::kRegMultiSz, std::string("a\0b\0\0", 5)}},
    {"Bytes", {platform::kRegBinary, std::string(40, '\x5a')}},
};

TEST(WinePrefixRoundTrip, WineAndTheStoreReadEachOthersChanges) {
  if (std::system("{ command -v wine && command -v wineboot && command -v wineserver; } >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "Wine is not installed";
  const WinePrefix prefix;
  ASSERT_FALSE(prefix.path().empty());
  ASSERT_EQ(prefix.Run("wineboot -i"), 0);
  ASSERT_EQ(prefix.Run("wineserver -w"), 0);

  posix::PosixFileSystem files{posix::DriveMap()};
  rt::Result<std::unique_ptr<platform::Registry>> opened = posix::OpenWinePrefixRegistry(files, prefix.path());
  ASSERT_TRUE(opened.ok());
  platform::Registry& reg = **opened;

  // What Wine wrote: read, and kept byte for byte when written again.
  for (const char* hive : {"/system.reg", "/user.reg"}) {
    const rt::Result<std::string> bytes = files.ReadFile("Z:" + prefix.path() + hive);
    ASSERT_TRUE(bytes.ok()) << hive;
    const rt::Result<portable::winereg::RegFile> parsed = portable::winereg::RegFile::Parse(*bytes, hive);
    ASSERT_TRUE(parsed.ok()) << parsed.error().description;
    EXPECT_TRUE(parsed->Serialise() == *bytes) << hive;
  }
  const rt::Result<RegValue> exe = reg.QueryValue(kHkeyClassesRoot, ".exe", "");
  ASSERT_TRUE(exe.ok()) << exe.error().description;
  EXPECT_EQ(exe->data, std::string("exefile\0", 8));

  // What we write, Wine reads.
  const std::string command = "VisualBasic.Project\\shell\\open\\command";
  ASSERT_TRUE(reg.CreateKey(kHkeyClassesRoot, command).ok());
  ASSERT_TRUE(reg.SetValue(kHkeyClassesRoot, command, "", kCommand).ok());
  ASSERT_TRUE(reg.CreateKey(kHkeyCurrentUser, "Software\\Sentrune").ok());
  for (const auto& [name, value] : kOurs)
    ASSERT_TRUE(reg.SetValue(kHkeyCurrentUser, "Software\\Sentrune", name, value).ok()) << name;
  const std::string shown = prefix.Query("HKCR\\" + command);
  EXPECT_NE(shown.find("REG_SZ    \"C:\\VB98\\VB6.EXE\" \"%1\""), std::string::npos) << shown;
  const std::string ours = prefix.Query("HKCU\\Software\\Sentrune");
  for (const char* line : {"Count    REG_DWORD    0xa", "Path    REG_EXPAND_SZ    %SystemRoot%\\x",
                           "List    REG_MULTI_SZ    a\\0b"})
    EXPECT_NE(ours.find(line), std::string::npos) << ours;
  ASSERT_EQ(prefix.Run("wineserver -w"), 0);

  // While the prefix's server runs, changes are refused.
  ASSERT_EQ(prefix.Run("wineserver -p"), 0);
  EXPECT_TRUE(posix::WineServerRunning(prefix.path()));
  const rt::Status refused = reg.SetValue(kHkeyCurrentUser, "Software\\Sentrune", "Count", kOurs[0].second);
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().number, platform::regerr::kBusy);
  EXPECT_NE(refused.error().description.find(prefix.path()), std::string::npos);
  ASSERT_EQ(prefix.Run("wineserver -k"), 0);
  prefix.Run("wineserver -w");
  EXPECT_FALSE(posix::WineServerRunning(prefix.path()));

  // Wine changes the hive and writes all of it again; our values survive.
  ASSERT_EQ(prefix.Run("wine reg add 'HKCU\\Software\\Sentrune' /v FromWine /d hello /f"), 0);
  ASSERT_EQ(prefix.Run("wineserver -w"), 0);
  EXPECT_EQ(reg.QueryValue(kHkeyCurrentUser, "Software\\Sentrune", "FromWine")->data, std::string("hello\0", 6));
  for (const auto& [name, value] : kOurs) {
    const rt::Result<RegValue> back = reg.QueryValue(kHkeyCurrentUser, "Software\\Sentrune", name);
    ASSERT_TRUE(back.ok()) << name;
    EXPECT_EQ(back->type, value.type) << name;
    EXPECT_EQ(back->data, value.data) << name;
  }
  EXPECT_EQ(reg.QueryValue(kHkeyClassesRoot, command, "")->data, kCommand.data);
}

}  // namespace
}  // namespace sentrune::posix
