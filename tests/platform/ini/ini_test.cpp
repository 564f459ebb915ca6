// INI text lookups and rewrites, and the profile files built on them over the
// in-memory and the real file system.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "../../../fuzz/ini_fuzz_case.h"
#include "platform/ini/ini_file.h"
#include "platform/ini/ini_text.h"
#include "support/fake_file_system.h"
#include "support/host_drive.h"
#include "support/profile_contract.h"
#include "support/robustness.h"
#include "support/temp_folder.h"

namespace sentrune::portable {
namespace {

using namespace std::string_literals;
using ini::SetValue;
using testing::FakeFileSystem;
using testing::FsOp;

std::string Read(std::string_view file, std::string_view section, std::string_view key) {
  const auto value = ini::FindValue(file, section, key);
  return value ? std::string(*value) : std::string("<absent>");
}

TEST(IniLookup, NamesIgnoreCaseValuesAreTrimmedAndOnlyTheFirstSectionCounts) {
  const std::string file =
      "Orphan=before any section\n"
      "[Settings]\r\n"
      "TrackTime=1\r\n"
      "  \tBackupFolderName \t=  \tOld History \t \r\n"
      "CL\xC9=latin\r\n"  // "CLÉ" in cp1252
      "Empty=\r\n"
      ";Key=commented out\n"
      "garbage without equals\n"
      "Key\n"
      "[broken header\n"
      "Dup=first\n"
      "Dup=second\n"
      "[ Other ] trailing text\n"
      "Key=other\n"
      "[settings]\n"
      "Later=in a second Settings section\n";
  const std::tuple<const char*, const char*, const char*> lookups[] = {
      {"SETTINGS", "tracktime", "1"},          {"settings", "backupfoldername", "Old History"},
      {"Settings", "cl\xE9", "latin"},         {"Settings", "Empty", ""},
      {"Settings", "Key", "<absent>"},         {"Settings", "Orphan", "<absent>"},
      {"Settings", "[broken header", "<absent>"}, {"Settings", "Dup", "first"},
      {"Other", "Key", "other"},               {"Settings", "Later", "<absent>"},
  };
  for (const auto& [section, key, value] : lookups) EXPECT_EQ(Read(file, section, key), value) << key;
  EXPECT_EQ(Read("[S]\nA\xD7=1\n", "S", "a\xF7"), "<absent>");  // U+00D7 and U+00F7 are no letter pair
}

TEST(IniWrite, ReplacesInPlaceAddsAfterTheSectionOrCreatesIt) {
  const std::tuple<std::string, const char*, const char*, const char*, std::string> cases[] = {
      // CR LF, LF-only, binary bytes and a last line without a line end: every other byte stays.
      {"; options\r\n[Settings]\nBefore = 1\r\n  trackTime = 0  \nAfter=\x01\xFF\x00z\r\n[Other]\r\nTrackTime=9"s,
       "settings", "TrackTime", "1",
       "; options\r\n[Settings]\nBefore = 1\r\nTrackTime=1\nAfter=\x01\xFF\x00z\r\n[Other]\r\nTrackTime=9"s},
      {"[S]\nk=old\r", "S", "k", "new", "[S]\nk=new\r"},  // a CR ends the file
      {"[S]\r\nDup=1\r\nDup=2\r\n", "S", "dup", "3", "[S]\r\ndup=3\r\nDup=2\r\n"},
      // A missing key goes after the last non-blank line of its section,
      // comments and garbage included.
      {"[A]\r\nx=1\r\n\r\n\r\n[B]\r\ny=2\r\n", "a", "New", "v", "[A]\r\nx=1\r\nNew=v\r\n\r\n\r\n[B]\r\ny=2\r\n"},
      {"[A]\nx=1\n;note\n\n[B]\n", "A", "New", "v", "[A]\nx=1\n;note\nNew=v\r\n\n[B]\n"},
      {"[A]\nx=1", "A", "New", "v", "[A]\nx=1\r\nNew=v\r\n"},  // the last line gets its line end
      {"[A]\nx=1\n[B]\n[A]\ny=2\n", "A", "y", "3", "[A]\nx=1\ny=3\r\n[B]\n[A]\ny=2\n"},  // only the first [A]
      // A missing section (or file) goes at the end.
      {"", "Settings", "Key", "Value", "[Settings]\r\nKey=Value\r\n"},
      {"garbage\x80", "Settings", "Key", "V", "garbage\x80\r\n[Settings]\r\nKey=V\r\n"},
  };
  for (const auto& [file, section, key, value, expected] : cases) {
    EXPECT_EQ(SetValue(file, section, key, value), expected) << file;
  }
}

TEST(IniWrite, LongKeysValuesAndFilesRoundTrip) {
  const std::string key(1000, 'K');
  std::string file = SetValue("[Settings]\r\nA=1\r\n", "Settings", key, std::string(5000, 'v'));
  EXPECT_EQ(Read(file, "settings", std::string(1000, 'k')), std::string(5000, 'v'));
  EXPECT_EQ(SetValue(file, "Settings", key, "short"), "[Settings]\r\nA=1\r\n" + key + "=short\r\n");

  file = "[Settings]\r\n";
  for (int i = 0; file.size() < 10 * 1024 * 1024; ++i) {
    file += "Key" + std::to_string(i) + "=some value of a realistic length " + std::to_string(i) + "\r\n";
  }
  file += "[Tail]\r\nLast=1\r\n";
  const std::string added = SetValue(file, "Settings", "Added", "yes");
  // EXPECT_TRUE: a failure must not print ten megabytes.
  EXPECT_TRUE(added == file.substr(0, file.size() - 16) + "Added=yes\r\n" + file.substr(file.size() - 16));
  std::string expected = added;
  expected.replace(expected.size() - 8, 6, "LAST=2");
  EXPECT_TRUE(SetValue(added, "tail", "LAST", "2") == expected);
}

// Changed copies of one case, and every case the fuzzer saved.
TEST(IniFuzzRegression, DamagedAndSavedCasesKeepTheProperties) {
  const std::string good = "\x08\x03\x05\x00\xFF\x00SettingsKeyValue[Settings]\r\nKey=old\r\n";
  auto keeps = [](std::span<const uint8_t> bytes) -> std::optional<std::string> {
    EXPECT_EQ(ini_fuzz::Violation(ini_fuzz::Decode(bytes.data(), bytes.size())), "");
    return "";
  };
  const auto seen = testing::ExpectRobust(keeps, {{good.begin(), good.end()}}, {.savedInputs = "ini"});
  EXPECT_GT(seen.saved, 0);
}

constexpr const char* kIni = "C:\\Cfg\\Sentrune.ini";

// The folder C:\Cfg of the in-memory file system, or of real files in a fresh
// host folder mapped as drive C:.
class FileSystemProfileFolder : public testing::ProfileFolder {
 public:
  explicit FileSystemProfileFolder(bool real) {
    if (real) files_ = testing::HostDriveFileSystem('C', host_.path());
    else files_ = std::make_unique<FakeFileSystem>();
    EXPECT_TRUE(files_->CreateDirectory("C:\\Cfg").ok());
    profiles_ = std::make_unique<PortableProfileFiles>(*files_);
  }
  platform::ProfileFiles& profiles() override { return *profiles_; }
  std::string Path(const std::string& name) const override { return "C:\\Cfg\\" + name; }
  std::string PathInMissingFolder() const override { return "C:\\NoSuchFolder\\Sentrune.ini"; }
  void Put(const std::string& name, const std::string& bytes) override {
    ASSERT_TRUE(files_->WriteFile(Path(name), bytes).ok());
  }
  std::string Bytes(const std::string& name) const override {
    return files_->ReadFile(Path(name)).value_or("<missing>");
  }
  void MakeReadOnly(const std::string& name) override {
    ASSERT_TRUE(files_->SetAttributes(Path(name), platform::kAttrArchive | platform::kAttrReadOnly).ok());
  }
  size_t CountFiles() const override { return files_->List("C:\\Cfg\\*")->size(); }
  bool FolderExists(const std::string& path) const override { return files_->GetAttributes(path).ok(); }

 private:
  testing::TempFolder host_;
  std::unique_ptr<platform::FileSystem> files_;
  std::unique_ptr<PortableProfileFiles> profiles_;
};

const testing::ProfileStore kStores[] = {
    {"Fake", [] { return std::make_unique<FileSystemProfileFolder>(false); }},
    {"Host", [] { return std::make_unique<FileSystemProfileFolder>(true); }},
};

using testing::ProfileContract;
INSTANTIATE_TEST_SUITE_P(FakeAndReal, ProfileContract, ::testing::ValuesIn(kStores), testing::ProfileStoreName);

// What the engine keeps beyond the contract, where the system's functions
// (Wine's, at least) differ: letters beyond ASCII match in either case, and a
// rewrite leaves every other line as it was, byte for byte.
class PortableProfile : public ProfileContract {};

TEST_P(PortableProfile, FoldsLatinCaseAndKeepsOtherLinesByteForByte) {
  Put("[settings]\r\nCl\xE9=Caf\xE9 \x80\r\n");
  EXPECT_EQ(Get("CL\xC3\x89"), "Caf\xC3\xA9 \xE2\x82\xAC");
  Put("; kept\n[Settings]\nTrackTime=0\nnoise\x01\n[Other]\r\nX=1");
  EXPECT_TRUE(Write("SETTINGS", "tracktime", "2"));
  EXPECT_TRUE(Write("Other", "Y", "3"));
  EXPECT_EQ(Bytes(), "; kept\n[Settings]\ntracktime=2\nnoise\x01\n[Other]\r\nX=1\r\nY=3\r\n");
}

INSTANTIATE_TEST_SUITE_P(FakeAndReal, PortableProfile, ::testing::ValuesIn(kStores), testing::ProfileStoreName);

// Failures only the fake can stage, at each step of the rewrite.
TEST(ProfileAtomicWrite, AFailureAtAnyStepKeepsTheOriginal) {
  const std::string original = "[Settings]\r\nTrackTime=0\r\n";
  const std::tuple<FsOp, const char*, int32_t> failures[] = {
      {FsOp::kRead, kIni, rt::errnum::kPermissionDenied},
      {FsOp::kWrite, "C:\\Cfg\\Sentrune.ini.tmp", rt::errnum::kDiskFull},
      {FsOp::kRename, kIni, rt::errnum::kPermissionDenied},
  };
  for (const auto& [op, path, error] : failures) {
    FakeFileSystem files;
    files.AddFile(kIni, original);
    files.FailNext(op, path, error);
    EXPECT_FALSE(PortableProfileFiles(files).WriteString("Settings", "TrackTime", "1", kIni)) << path;
    EXPECT_EQ(files.Contents(kIni), original) << path;
    EXPECT_FALSE(files.Exists("C:\\Cfg\\Sentrune.ini.tmp")) << path;
  }
  FakeFileSystem files;
  files.AddFile(kIni, original);
  EXPECT_TRUE(PortableProfileFiles(files).WriteString("Settings", "TrackTime", "1", kIni));
  EXPECT_EQ(files.Record().renames,
            (std::vector<std::pair<std::string, std::string>>{{"C:\\Cfg\\Sentrune.ini.tmp", kIni}}));
}

}  // namespace
}  // namespace sentrune::portable
