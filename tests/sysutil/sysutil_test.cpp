#include <gtest/gtest.h>

#include "support/fake_env.h"
#include "sysutil/unc_path.h"

namespace sentrune {
namespace {

TEST(MappedDrive2UncPath, JoinsTheShareWithExactlyOneBackslash) {
  testing::FakeEnv env;
  env.SetNetworkConnection("N:", "\\\\server\\share\\");
  EXPECT_EQ(MappedDrive2UncPath(env, "N:\\dir\\file.dll"), "\\\\server\\share\\dir\\file.dll");
  EXPECT_EQ(MappedDrive2UncPath(env, "n:\\"), "\\\\server\\share");
  EXPECT_EQ(MappedDrive2UncPath(env, "C:\\dir\\file.dll"), "C:\\dir\\file.dll");
  EXPECT_EQ(MappedDrive2UncPath(env, "\\\\other\\x\\y"), "\\\\other\\x\\y");
  EXPECT_EQ(MappedDrive2UncPath(env, ""), "");
}

}  // namespace
}  // namespace sentrune
