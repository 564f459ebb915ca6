// The system's profile functions against the contract every implementation
// keeps, in a fresh folder of the Windows temporary folder, then what only
// this implementation does; and version resources read by version.dll
// against the portable reader's reading of the same files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "platform/pe/version_resources_portable.h"
#include "platform/win32/win32_profile.h"
#include "platform/win32/win32_text.h"
#include "platform/win32/win32_version_resources.h"
#include "support/fake_file_system.h"
#include "support/host_files.h"
#include "support/profile_contract.h"
#include "support/temp_folder.h"

namespace sentrune::win32 {
namespace {

using testing::ProfileContract;

// The host path of a Windows path in UTF-8, whatever the ANSI code page.
std::filesystem::path HostPath(const std::string& path) { return std::filesystem::path(Widen(path)); }

std::string ReadBytes(const std::string& path) {
  std::ifstream in(HostPath(path), std::ios::binary);
  return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "<missing>";
}

class TempProfileFolder : public testing::ProfileFolder {
 public:
  ~TempProfileFolder() override {
    std::error_code ignored;
    for (const std::string& name : readOnly_) {
      std::filesystem::permissions(HostPath(Path(name)), std::filesystem::perms::owner_write,
                                   std::filesystem::perm_options::add, ignored);
    }
  }
  platform::ProfileFiles& profiles() override { return profiles_; }
  std::string Path(const std::string& name) const override { return folder_.path() + "\\" + name; }
  std::string PathInMissingFolder() const override { return Path("NoSuchFolder\\Sentrune.ini"); }
  void Put(const std::string& name, const std::string& bytes) override { folder_.Write(name, bytes); }
  std::string Bytes(const std::string& name) const override { return ReadBytes(Path(name)); }
  void MakeReadOnly(const std::string& name) override {
    // The C run time's chmod without write permission sets FILE_ATTRIBUTE_READONLY.
    std::filesystem::permissions(HostPath(Path(name)), std::filesystem::perms::all,
                                 std::filesystem::perm_options::remove);
    readOnly_.insert(name);
  }
  size_t CountFiles() const override {
    const std::filesystem::directory_iterator entries(folder_.path());
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
  }
  bool FolderExists(const std::string& path) const override {
    return std::filesystem::is_directory(HostPath(path));
  }

 private:
  testing::TempFolder folder_;
  Win32ProfileFiles profiles_;
  std::set<std::string> readOnly_;
};

INSTANTIATE_TEST_SUITE_P(Win32, ProfileContract,
                         ::testing::Values(testing::ProfileStore{
                             "System", [] { return std::make_unique<TempProfileFolder>(); }}),
                         testing::ProfileStoreName);

TEST(Win32Profile, PathsTheAnsiCodePageCannotSpellAndValuesLongerThanTheFirstBuffer) {
  TempProfileFolder folder;
  const std::string japanese = folder.Path("\xE6\x97\xA5\xE6\x9C\xAC");  // "日本": not in Windows-1252
  ASSERT_TRUE(std::filesystem::create_directory(HostPath(japanese)));
  const std::string ini = japanese + "\\Sentrune.ini";
  platform::ProfileFiles& profiles = folder.profiles();
  EXPECT_TRUE(profiles.WriteString("Settings", "Key", "Caf\xC3\xA9", ini));
  EXPECT_EQ(ReadBytes(ini), "[Settings]\r\nKey=Caf\xE9\r\n");
  EXPECT_EQ(profiles.GetString("settings", "key", "", 255, ini), "Caf\xC3\xA9");
  EXPECT_EQ(profiles.GetString("Settings", "Absent", "d\xC3\xA9" "f", 255, ini), "d\xC3\xA9" "f");

  folder.Put("long.ini", "[S]\r\nK=" + std::string(5000, 'v') + "\r\n");
  EXPECT_EQ(profiles.GetString("S", "K", "", 6000, folder.Path("long.ini")), std::string(5000, 'v'));
  EXPECT_EQ(profiles.GetString("S", "K", "", 3000, folder.Path("long.ini")), std::string(2999, 'v'));
  EXPECT_EQ(profiles.GetString("S", "K", "", 5001, folder.Path("long.ini")), std::string(5000, 'v'));
}

TEST(Win32VersionResources, AgreeWithThePortableReaderAndSayNothingForMissingFiles) {
  testing::TempFolder folder;
  testing::FakeFileSystem files;
  for (const char* fixture : {"typelib/widgets.dll", "pe/lookup.dll", "pe/lookup64.dll", "typelib/shapes.tlb"}) {
    const std::string bytes = testing::ReadHostFile(testing::FixtureFolder() / fixture);
    const std::string name = std::filesystem::path(fixture).filename().string();
    folder.Write(name, bytes);
    files.AddFile("C:\\v\\" + name, bytes);
  }
  Win32VersionResources system;
  portable::PortableVersionResources portable(files);
  for (const char* name : {"widgets.dll", "lookup64.dll", "shapes.tlb", "missing.dll"}) {
    EXPECT_EQ(portable::FormatFileVersion(system.FileVersionOf(folder.path() + "\\" + name)),
              portable::FormatFileVersion(portable.FileVersionOf(std::string("C:\\v\\") + name)))
        << name;
  }
  EXPECT_EQ(portable::FormatFileVersion(system.FileVersionOf(folder.path() + "\\widgets.dll")), "1.0.0.7");
  EXPECT_FALSE(system.FileVersionOf(folder.path() + "\\missing.dll"));
  // version.dll looks for resource 1 only, where the portable reader falls
  // back to the first one stored (9.9.0.0 here).
  EXPECT_FALSE(system.FileVersionOf(folder.path() + "\\lookup.dll"));
}

}  // namespace
}  // namespace sentrune::win32
