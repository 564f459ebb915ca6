// A real Wine prefix: Wine reads what the store wrote, the store reads what
// Wine wrote back, and the store refuses to write while the prefix's server
// runs. Setting a prefix up takes Wine half a minute, so this is one test
// with one prefix; it is skipped where Wine is not installed.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/winereg/wine_registry_file.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/wine_server.h"
#include "platform/posix/wine_server_registry.h"
#include "support/temp_folder.h"

namespace sentrune {
namespace {

using platform::kHkeyClassesRoot;
using platform::kHkeyCurrentUser;
using platform::RegValue;

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
    std::string out;
    if (FILE* pipe = popen((Env() + "wine reg query '" + key + "' 2>/dev/null").c_str(), "r")) {
      char buffer[4096];
      for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
      pclose(pipe);
    }
    return out;
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
}  // namespace sentrune
