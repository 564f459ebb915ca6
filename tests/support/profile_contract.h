#pragma once
// What every implementation of the profile functions keeps, as one suite that
// each test program instantiates with its own folders of INI files:
//   INSTANTIATE_TEST_SUITE_P(Name, ProfileContract, ::testing::Values(ProfileStore{"Name", make}),
//                            ProfileStoreName);
// It defines tests: include it in one file of a program only.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "platform/profile.h"

namespace sentrune::testing {

// An empty folder and the profile functions over it, with what the suite
// needs to set up and inspect its files. Paths are Windows paths.
class ProfileFolder {
 public:
  virtual ~ProfileFolder() = default;
  virtual platform::ProfileFiles& profiles() = 0;
  // A file in the folder; a file in a folder that does not exist.
  virtual std::string Path(const std::string& name) const = 0;
  virtual std::string PathInMissingFolder() const = 0;
  virtual void Put(const std::string& name, const std::string& bytes) = 0;
  // The file's bytes, or "<missing>".
  virtual std::string Bytes(const std::string& name) const = 0;
  virtual void MakeReadOnly(const std::string& name) = 0;
  virtual size_t CountFiles() const = 0;
  virtual bool FolderExists(const std::string& path) const = 0;
};

struct ProfileStore {
  std::string name;
  std::function<std::unique_ptr<ProfileFolder>()> make;
};

// Failures name the store, not its bytes.
inline void PrintTo(const ProfileStore& store, std::ostream* out) { *out << store.name; }
inline std::string ProfileStoreName(const ::testing::TestParamInfo<ProfileStore>& info) { return info.param.name; }

class ProfileContract : public ::testing::TestWithParam<ProfileStore> {
 protected:
  void SetUp() override {
    folder_ = GetParam().make();
    ini_ = folder_->Path("Sentrune.ini");
  }

  void Put(const std::string& bytes) { folder_->Put("Sentrune.ini", bytes); }
  std::string Bytes() const { return folder_->Bytes("Sentrune.ini"); }
  std::string Get(const std::string& key, const std::string& defaultValue = "<default>") {
    return folder_->profiles().GetString("Settings", key, defaultValue, 255, ini_);
  }
  bool Write(const std::string& section, const std::string& key, const std::string& value) {
    return folder_->profiles().WriteString(section, key, value, ini_);
  }

  std::unique_ptr<ProfileFolder> folder_;
  std::string ini_;
};

// One pair of quotes goes, whatever stands between them.
TEST_P(ProfileContract, ReadsThroughTheBuffer) {
  EXPECT_EQ(Get("Anything"), "<default>");  // no file at all
  EXPECT_EQ(Get("Anything", "  History\t  "), "  History\t");
  Put("[settings]\r\nempty=\r\nLong=" + std::string(300, 'x') + "\r\nQuoted=\" padded \"\r\nCl\xE9=Caf\xE9 \x80\r\n" +
      "Pair=\"a\" and \"b\"\r\nMixed=\"mixed'\r\nNone=\"\"\r\nQuotedLong=\"" + std::string(300, 'y') + "\"\r\n");
  EXPECT_EQ(Get("EMPTY"), "");
  EXPECT_EQ(Get("Long"), std::string(254, 'x'));
  EXPECT_EQ(Get("QuotedLong"), std::string(254, 'y'));
  EXPECT_EQ(Get("Quoted"), " padded ");
  EXPECT_EQ(Get("Pair"), "a\" and \"b");
  EXPECT_EQ(Get("Mixed"), "\"mixed'");
  EXPECT_EQ(Get("None"), "");
  EXPECT_EQ(folder_->profiles().GetString("Settings", "Long", "d", 0, ini_), "");
  EXPECT_EQ(Get("Cl\xC3\xA9"), "Caf\xC3\xA9 \xE2\x82\xAC");  // the file's text is Windows-1252
  EXPECT_EQ(Get("Absent", std::string(300, 'd')), std::string(254, 'd'));
}

TEST_P(ProfileContract, WritesCreateTheFileAndKeepTheOtherValues) {
  EXPECT_TRUE(Write("Settings", "Cl\xC3\xA9", "Caf\xC3\xA9 \xE2\x82\xAC"));
  EXPECT_EQ(Bytes(), "[Settings]\r\nCl\xE9=Caf\xE9 \x80\r\n");

  Put("; kept\n[Settings]\nTrackTime=0\nOther=1\n[Other]\r\nX=1");
  EXPECT_TRUE(Write("SETTINGS", "tracktime", "2"));
  EXPECT_TRUE(Write("Other", "Y", "3"));
  EXPECT_EQ(Get("TrackTime"), "2");
  EXPECT_EQ(Get("Other"), "1");
  EXPECT_EQ(folder_->profiles().GetString("Other", "X", "", 255, ini_), "1");
  EXPECT_EQ(folder_->profiles().GetString("Other", "Y", "", 255, ini_), "3");
  EXPECT_EQ(Bytes().rfind("; kept", 0), 0u) << Bytes();

  EXPECT_EQ(folder_->CountFiles(), 1u) << "no temporary file stays behind";
}

TEST_P(ProfileContract, FailedWritesLeaveTheFileAsItWas) {
  Put("[Settings]\r\nTrackTime=0\r\n");
  folder_->MakeReadOnly("Sentrune.ini");
  EXPECT_FALSE(Write("Settings", "TrackTime", "1"));
  EXPECT_EQ(Bytes(), "[Settings]\r\nTrackTime=0\r\n");
  const std::string missing = folder_->PathInMissingFolder();
  EXPECT_FALSE(folder_->profiles().WriteString("Settings", "TrackTime", "1", missing));
  EXPECT_FALSE(folder_->FolderExists(missing.substr(0, missing.rfind('\\'))));
  EXPECT_EQ(folder_->CountFiles(), 1u);
}

}  // namespace sentrune::testing
