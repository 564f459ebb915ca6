#include "platform/portable/ini_file.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "platform/posix/posix_file_system.h"
#include "support/fake_file_system.h"

namespace sentrune::portable {
namespace {

using testing::FakeFileSystem;
using testing::FsOp;

constexpr const char* kIni = "C:\\Cfg\\Sentrune.ini";

// A fresh host folder mapped as drive C: for one test.
class TempDrive {
 public:
  TempDrive() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sentrune-ini-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~TempDrive() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

enum class Backend { kFake, kPosix };

// The same behaviour over the in-memory file system and over real files.
class ProfileContract : public ::testing::TestWithParam<Backend> {
 protected:
  void SetUp() override {
    if (GetParam() == Backend::kFake) {
      files_ = std::make_unique<FakeFileSystem>();
    } else {
      drive_ = std::make_unique<TempDrive>();
      ASSERT_FALSE(drive_->path().empty());
      posix::DriveMap drives;
      drives.SetDrive('C', drive_->path());
      files_ = std::make_unique<posix::PosixFileSystem>(drives);
    }
    ASSERT_TRUE(files_->CreateDirectory("C:\\Cfg").ok());
    profiles_ = std::make_unique<PortableProfileFiles>(*files_);
  }

  void Put(const std::string& bytes) { ASSERT_TRUE(files_->WriteFile(kIni, bytes).ok()); }
  std::string Bytes() const {
    const rt::Result<std::string> bytes = files_->ReadFile(kIni);
    return bytes ? *bytes : "<missing>";
  }
  std::string Get(const std::string& key, const std::string& defaultValue = "<default>") {
    return profiles_->GetString("Settings", key, defaultValue, 255, kIni);
  }

  std::unique_ptr<TempDrive> drive_;
  std::unique_ptr<platform::FileSystem> files_;
  std::unique_ptr<PortableProfileFiles> profiles_;
};

TEST_P(ProfileContract, ReadsThroughTheBuffer) {
  EXPECT_EQ(Get("Anything"), "<default>");  // no file at all
  EXPECT_EQ(Get("Anything", "History  "), "History");
  Put("[settings]\r\nempty=\r\nLong=" + std::string(300, 'x') + "\r\nQuoted=\" padded \"\r\n");
  EXPECT_EQ(Get("EMPTY"), "");
  EXPECT_EQ(Get("Long"), std::string(254, 'x'));
  EXPECT_EQ(Get("Quoted"), " padded ");
  EXPECT_EQ(Get("Absent"), "<default>");
  EXPECT_EQ(Get("Absent", std::string(300, 'd')), std::string(254, 'd'));
}

TEST_P(ProfileContract, WritesCreateTheFileAndKeepOtherLines) {
  EXPECT_TRUE(profiles_->WriteString("Settings", "TrackTime", "1", kIni));
  EXPECT_EQ(Bytes(), "[Settings]\r\nTrackTime=1\r\n");

  Put("; kept\n[Settings]\nTrackTime=0\nnoise\x01\n[Other]\r\nX=1");
  EXPECT_TRUE(profiles_->WriteString("SETTINGS", "tracktime", "2", kIni));
  EXPECT_TRUE(profiles_->WriteString("Other", "Y", "3", kIni));
  EXPECT_EQ(Bytes(), "; kept\n[Settings]\ntracktime=2\nnoise\x01\n[Other]\r\nX=1\r\nY=3\r\n");

  // No temporary file stays behind.
  const auto entries = files_->List("C:\\Cfg\\*");
  ASSERT_TRUE(entries.ok());
  ASSERT_EQ(entries->size(), 1u);
  EXPECT_EQ((*entries)[0].name, "Sentrune.ini");
}

TEST_P(ProfileContract, TextIsWindows1252InTheFile) {
  EXPECT_TRUE(profiles_->WriteString("Settings", "Cl\xC3\xA9", "Caf\xC3\xA9 \xE2\x82\xAC", kIni));
  EXPECT_EQ(Bytes(), "[Settings]\r\nCl\xE9=Caf\xE9 \x80\r\n");
  EXPECT_EQ(Get("CL\xC3\x89"), "Caf\xC3\xA9 \xE2\x82\xAC");
}

TEST_P(ProfileContract, FailedWritesLeaveTheFileAsItWas) {
  Put("[Settings]\r\nTrackTime=0\r\n");
  ASSERT_TRUE(files_->SetAttributes(kIni, platform::kAttrArchive | platform::kAttrReadOnly).ok());
  EXPECT_FALSE(profiles_->WriteString("Settings", "TrackTime", "1", kIni));
  EXPECT_EQ(Bytes(), "[Settings]\r\nTrackTime=0\r\n");

  EXPECT_FALSE(profiles_->WriteString("Settings", "TrackTime", "1", "C:\\NoSuchFolder\\Sentrune.ini"));
  EXPECT_FALSE(files_->GetAttributes("C:\\NoSuchFolder").ok());
}

INSTANTIATE_TEST_SUITE_P(FakeAndReal, ProfileContract,
                         ::testing::Values(Backend::kFake, Backend::kPosix),
                         [](const auto& info) { return info.param == Backend::kFake ? "Fake" : "Posix"; });

// Failures only the fake can stage, at each step of the rewrite.
TEST(ProfileAtomicWrite, AFailureAtAnyStepKeepsTheOriginal) {
  const std::string original = "[Settings]\r\nTrackTime=0\r\n";
  struct Case {
    FsOp op;
    const char* path;
    int32_t error;
  };
  const Case cases[] = {
      {FsOp::kRead, kIni, rt::errnum::kPermissionDenied},
      {FsOp::kWrite, "C:\\Cfg\\Sentrune.ini.tmp", rt::errnum::kDiskFull},
      {FsOp::kRename, kIni, rt::errnum::kPermissionDenied},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    FakeFileSystem files;
    files.AddFile(kIni, original);
    PortableProfileFiles profiles(files);
    files.FailNext(c.op, c.path, c.error);
    EXPECT_FALSE(profiles.WriteString("Settings", "TrackTime", "1", kIni));
    EXPECT_EQ(files.Contents(kIni), original);
    EXPECT_FALSE(files.Exists("C:\\Cfg\\Sentrune.ini.tmp"));
  }

  FakeFileSystem files;
  files.AddFile(kIni, original);
  PortableProfileFiles profiles(files);
  EXPECT_TRUE(profiles.WriteString("Settings", "TrackTime", "1", kIni));
  ASSERT_EQ(files.Record().renames.size(), 1u);
  EXPECT_EQ(files.Record().renames[0].first, "C:\\Cfg\\Sentrune.ini.tmp");
  EXPECT_EQ(files.Record().renames[0].second, kIni);
}

}  // namespace
}  // namespace sentrune::portable
