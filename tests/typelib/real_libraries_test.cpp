// Every type library Wine installs, and every component VB6 compiled in the
// shared corpus, must read into a model, and two reads of one file must
// compare equal: the model is only useful if it is stable on real files.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/host_addin.h"
#include "support/host_files.h"
#include "support/temp_folder.h"
#include "typelib/parse_tlb.h"
#include "typelib/wine_libraries.h"

namespace sentrune {
namespace {

namespace fs = std::filesystem;

class RealLibraries : public ::testing::Test {
 protected:
  // Reads the file twice; both reads succeed and compare equal.
  void ExpectStable(testing::HostAddin& addin, const fs::path& file) {
    const std::string path = addin.OnDrive(file);
    clsParseTLB first(addin.state), second(addin.state);
    const TypeLibReadResult read = first.ReadTypeLib(path);
    ASSERT_EQ(read.number, 0) << file << ": " << read.message;
    ASSERT_EQ(second.ReadTypeLib(path).number, 0) << file;
    EXPECT_TRUE(first.Compare(second, false, true).empty()) << file;
    EXPECT_FALSE(first.Library().empty()) << file;
    ++read_;
  }

  testing::TempFolder home_;
  int read_ = 0;
};

TEST_F(RealLibraries, EveryWineTypeLibraryReadsAndComparesEqualToItself) {
  const std::vector<fs::path> files = testing::WineTypeLibraries();
  if (files.empty()) GTEST_SKIP() << "Wine's libraries are not installed";
  // Wine keeps them all in one folder.
  testing::HostAddin addin(home_.path(), 'W', files.front().parent_path());
  for (const fs::path& file : files) ExpectStable(addin, file);
  EXPECT_TRUE(addin.ui.boxes.empty());
  EXPECT_GE(read_, 20);
}

TEST_F(RealLibraries, EveryCompiledCorpusComponentReadsAndComparesEqualToItself) {
  const std::vector<fs::path> files = testing::CorpusFiles({".dll", ".ocx", ".cmp"});
  if (files.empty()) GTEST_SKIP() << "no corpus";
  testing::HostAddin addin(home_.path(), 'S', testing::CorpusFolder());
  for (const fs::path& file : files) ExpectStable(addin, file);
  EXPECT_TRUE(addin.ui.boxes.empty());
  EXPECT_GT(read_, 0);
}

}  // namespace
}  // namespace sentrune
