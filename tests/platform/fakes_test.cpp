// The fakes' own promises that the contract suite does not cover: what they
// record, the failures a test can inject, and the controllable clock.
#include <gtest/gtest.h>

#include "support/fake_env.h"
#include "support/fake_file_system.h"

namespace sentrune::testing {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;
using Strings = std::vector<std::string>;

TEST(FakeFileSystem, RecordsSuccessfulChangesWithTheCallersPaths) {
  FakeFileSystem fs;
  fs.AddFile("C:\\Src\\Widgets.dll", "dll");
  ASSERT_TRUE(fs.MakeSureDirectoryPathExists("c:\\src\\History\\Old\\x.dll").ok());
  ASSERT_TRUE(fs.CopyFile("C:\\Src\\Widgets.dll", "c:\\src\\history\\W.dll", false).ok());
  ASSERT_TRUE(fs.SetAttributes("C:\\Src\\History\\W.dll", 33).ok());
  EXPECT_FALSE(fs.DeleteFile("C:\\Src\\History\\W.dll").ok());
  ASSERT_TRUE(fs.SetAttributes("C:\\Src\\History\\W.dll", 32).ok());
  ASSERT_TRUE(fs.DeleteFile("C:\\Src\\History\\W.dll").ok());
  ASSERT_TRUE(fs.WriteFile("C:\\Src\\a.tmp", "a").ok());
  ASSERT_TRUE(fs.AppendFile("C:\\Src\\log.txt", "b").ok());
  ASSERT_TRUE(fs.RenameReplace("C:\\Src\\a.tmp", "C:\\Src\\a.txt").ok());
  ASSERT_TRUE(fs.RemoveDirectory("C:\\Src\\History\\Old").ok());

  const FsRecord& record = fs.Record();
  EXPECT_EQ(record.createdFolders, (Strings{"C:\\src\\History", "C:\\src\\History\\Old"}));
  EXPECT_EQ(record.copies, (Pairs{{"C:\\Src\\Widgets.dll", "c:\\src\\history\\W.dll"}}));
  EXPECT_EQ(record.attributeSets.size(), 2u);
  EXPECT_EQ(record.attributeSets[0].second, 33u);
  EXPECT_EQ(record.deleted, Strings{"C:\\Src\\History\\W.dll"});
  EXPECT_EQ(record.written, (Strings{"C:\\Src\\a.tmp", "C:\\Src\\log.txt"}));
  EXPECT_EQ(record.renames, (Pairs{{"C:\\Src\\a.tmp", "C:\\Src\\a.txt"}}));
  EXPECT_EQ(record.removedFolders, Strings{"C:\\Src\\History\\Old"});
  EXPECT_EQ(fs.Paths(), (Strings{"C:\\Src", "C:\\Src\\a.txt", "C:\\Src\\History", "C:\\Src\\log.txt",
                                 "C:\\Src\\Widgets.dll"}));
}

TEST(FakeFileSystem, InjectedFailuresHitOnceAndOnlyTheirTarget) {
  FakeFileSystem fs;
  fs.AddFile("C:\\Rel\\Widgets.dll", "old");
  fs.AddFile("C:\\Rel\\Other.dll", "other");
  fs.FailNext(FsOp::kDelete, "c:\\rel\\WIDGETS.DLL", 70);
  EXPECT_TRUE(fs.DeleteFile("C:\\Rel\\Other.dll").ok());
  EXPECT_EQ(fs.DeleteFile("C:\\Rel\\Widgets.dll").code(), 70);
  EXPECT_TRUE(fs.Exists("C:\\Rel\\Widgets.dll"));
  EXPECT_TRUE(fs.DeleteFile("C:\\Rel\\Widgets.dll").ok());

  fs.FailNext(FsOp::kCreateDirectory, "C:\\Rel\\Backup\\Deep", 75);
  EXPECT_EQ(fs.MakeSureDirectoryPathExists("C:\\Rel\\Backup\\Deep\\x.dll").code(), 75);
  EXPECT_TRUE(fs.IsFolder("C:\\Rel\\Backup"));
  EXPECT_FALSE(fs.Exists("C:\\Rel\\Backup\\Deep"));

  fs.AddFile("C:\\Rel\\New.dll", "new");
  fs.FailNext(FsOp::kCopy, "C:\\Rel\\Target.dll", 61);
  fs.FailNext(FsOp::kRead, "", 57);
  EXPECT_EQ(fs.CopyFile("C:\\Rel\\New.dll", "C:\\Rel\\Target.dll", false).code(), 61);
  EXPECT_FALSE(fs.Exists("C:\\Rel\\Target.dll"));
  EXPECT_EQ(fs.ReadFile("C:\\anything.txt").error().number, 57);
  EXPECT_EQ(fs.Contents("C:\\Rel\\New.dll"), "new");
}

TEST(FakeFileSystem, DrivesExistOnDemandUnlessLimited) {
  FakeFileSystem fs;
  EXPECT_TRUE(fs.WriteFile("Q:\\a.txt", "a").ok());
  EXPECT_TRUE(fs.WriteFile("\\\\server\\share\\a.txt", "a").ok());
  fs.LimitDrives("c");
  EXPECT_EQ(fs.ReadFile("Q:\\a.txt").error().number, 71);
  EXPECT_EQ(fs.ReadFile("\\\\server\\share\\a.txt").error().number, 76);
  EXPECT_TRUE(fs.WriteFile("C:\\a.txt", "a").ok());
}

TEST(FakeEnv, ClockDrivesTimerAndTheTimesOfWrittenFiles) {
  FakeEnv env;
  env.Time().Set(rt::DateTime{2024, 2, 28, 23, 59, 0});
  env.Time().Advance(59.75);
  EXPECT_EQ(env.Time().Now(), (rt::DateTime{2024, 2, 28, 23, 59, 59}));
  EXPECT_DOUBLE_EQ(env.Time().Timer(), 86399.75);
  env.Time().Advance(0.5);
  EXPECT_EQ(env.Time().Now(), (rt::DateTime{2024, 2, 29, 0, 0, 0}));
  EXPECT_DOUBLE_EQ(env.Time().Timer(), 0.25);
  ASSERT_TRUE(env.Files().WriteFile("C:\\Temp\\x.txt", "x").ok());
  EXPECT_EQ(*env.Files().GetLastWriteTime("C:\\Temp\\x.txt"), (rt::DateTime{2024, 2, 29}));
}

TEST(FakeEnv, DefaultsAndRecordedProgramsAndDoEvents) {
  FakeEnv env;
  EXPECT_EQ(env.TempPath(), "C:\\Temp\\");
  EXPECT_EQ(env.ModuleFolder(), "C:\\Addin\\");
  EXPECT_EQ(env.ModuleName(), "Sentrune");
  EXPECT_TRUE(env.Files().IsFolder(env.SpecialFolderPath(platform::kFolderDesktop)));
  EXPECT_TRUE(env.Files().IsFolder(env.ModuleFolder()));
  EXPECT_EQ(env.SpecialFolderPath(0x99), "");
  EXPECT_FALSE(env.NetworkConnection("X:"));
  env.SetNetworkConnection("x:", "\\\\server\\share");
  EXPECT_EQ(env.NetworkConnection("X:"), "\\\\server\\share");

  env.Programs().QueueRunResult(rt::Result<int>(rt::MakeError(53)));
  EXPECT_EQ(env.Programs().Run("missing.exe").error().number, 53);
  EXPECT_EQ(*env.Programs().Run("cmd /c exit"), 0);
  EXPECT_EQ(env.Programs().Ran(), (Strings{"missing.exe", "cmd /c exit"}));
  std::string program;
  EXPECT_EQ(env.Programs().FindExecutable("C:\\Temp\\Dummy.vbp", program), 31);
  env.Programs().SetFindExecutable(42, "C:\\VB98\\VB6.EXE");
  EXPECT_EQ(env.Programs().FindExecutable("C:\\Temp\\Dummy.vbp", program), 42);
  EXPECT_EQ(program, "C:\\VB98\\VB6.EXE");

  env.DoEvents();
  env.DoEvents();
  EXPECT_EQ(env.DoEventsCount(), 2);
}

}  // namespace
}  // namespace sentrune::testing
