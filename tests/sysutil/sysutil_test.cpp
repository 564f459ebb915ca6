#include <gtest/gtest.h>

#include "support/test_addin.h"
#include "sysutil/unc_path.h"
#include "sysutil/version_info.h"

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

TEST(FileVersionText, MissingOrBrokenFilesGiveZeros) {
  testing::TestAddin addin;
  addin.files().AddFile("C:\\bin\\junk.dll", "MZ not really a PE image");
  EXPECT_EQ(FileVersionText(addin.versions, "C:\\bin\\junk.dll"), "0.0.0.0");
  EXPECT_EQ(FileVersionText(addin.versions, "C:\\bin\\missing.dll"), "0.0.0.0");
}

}  // namespace
}  // namespace sentrune
