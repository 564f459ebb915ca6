// The fakes' own promises that the contract suite does not cover: the
// failures a test can inject, and the controllable clock.
#include <gtest/gtest.h>

#include "support/fake_env.h"
#include "support/fake_file_system.h"

namespace sentrune::testing {
namespace {

TEST(FakeFileSystem, InjectedFailuresHitOnceAndOnlyTheirTarget) {
  FakeFileSystem fs;
  fs.AddFile("C:\\Rel\\Widgets.dll", "old");
  fs.AddFile("C:\\Rel\\Other.dll", "other");
  fs.FailNext(FsOp::kDelete, "c:\\rel\\WIDGETS.DLL", 70);
  EXPECT_TRUE(fs.DeleteFile("C:\\Rel\\Other.dll").ok());
  EXPECT_EQ(fs.DeleteFile("C:\\Rel\\Widgets.dll").code(), 70);
  EXPECT_TRUE(fs.DeleteFile("C:\\Rel\\Widgets.dll").ok());

  // A failure part way down a path leaves the folders made before it.
  fs.FailNext(FsOp::kCreateDirectory, "C:\\Rel\\Backup\\Deep", 75);
  EXPECT_EQ(fs.MakeSureDirectoryPathExists("C:\\Rel\\Backup\\Deep\\x.dll").code(), 75);
  EXPECT_TRUE(fs.IsFolder("C:\\Rel\\Backup"));
  EXPECT_FALSE(fs.Exists("C:\\Rel\\Backup\\Deep"));
  fs.FailNext(FsOp::kRead, "", 57);  // any path
  EXPECT_EQ(fs.ReadFile("C:\\anything.txt").error().number, 57);

  fs.LimitDrives("c");
  EXPECT_EQ(fs.ReadFile("Q:\\a.txt").error().number, 71);
  EXPECT_EQ(fs.ReadFile("\\\\server\\share\\a.txt").error().number, 76);
}

TEST(FakeEnv, ClockDrivesTimerAcrossMidnightAndTheTimesOfWrittenFiles) {
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

}  // namespace
}  // namespace sentrune::testing
