// Every type library Wine installs, and every component VB6 compiled in the
// shared corpus, must read into a model, and two reads of one file must
// compare equal: the model is only useful if it is stable on real files.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/pe/pe_image.h"
#include "support/host_files.h"
#include "support/posix_addin.h"
#include "support/temp_folder.h"
#include "typelib/parse_tlb.h"

namespace sentrune {
namespace {

namespace fs = std::filesystem;

class RealLibraries : public ::testing::Test {
 protected:
  // Reads the file twice; both reads succeed and compare equal.
  void ExpectStable(const fs::path& file) {
    const std::optional<std::string> path = addin_.env.Files().Drives().HostToWindows(file.string());
    ASSERT_TRUE(path) << file;
    clsParseTLB first(addin_.state), second(addin_.state);
    const TypeLibReadResult read = first.ReadTypeLib(*path);
    ASSERT_EQ(read.number, 0) << file << ": " << read.message;
    ASSERT_EQ(second.ReadTypeLib(*path).number, 0) << file;
    EXPECT_TRUE(first.Compare(second, false, true).empty()) << file;
    EXPECT_FALSE(first.Library().empty()) << file;
    ++read_;
  }

  testing::TempFolder home_;
  testing::PosixAddin addin_{home_.path()};
  int read_ = 0;
};

bool HasTypeLib(const fs::path& file) {
  const std::vector<uint8_t> bytes = testing::ReadHostBytes(file);
  const rt::Result<portable::PeImage> image = portable::PeImage::Parse(bytes);
  return image.ok() && image->FindResource(portable::ResourceId::Named(portable::kTypeLibResourceType),
                                           portable::ResourceId::Number(1));
}

TEST_F(RealLibraries, EveryWineTypeLibraryReadsAndComparesEqualToItself) {
  std::vector<fs::path> files = testing::WineFiles("x86_64", ".tlb");
  for (const fs::path& dll : testing::WineFiles("x86_64", ".dll"))
    if (HasTypeLib(dll)) files.push_back(dll);
  if (files.empty()) GTEST_SKIP() << "Wine's libraries are not installed";
  for (const fs::path& file : files) ExpectStable(file);
  EXPECT_TRUE(addin_.ui.boxes.empty());
  EXPECT_GE(read_, 20);
}

TEST_F(RealLibraries, EveryCompiledCorpusComponentReadsAndComparesEqualToItself) {
  const std::vector<fs::path> files = testing::CorpusFiles({".dll", ".ocx", ".cmp"});
  if (files.empty()) GTEST_SKIP() << "no corpus";
  for (const fs::path& file : files) ExpectStable(file);
  EXPECT_TRUE(addin_.ui.boxes.empty());
  EXPECT_GT(read_, 0);
}

}  // namespace
}  // namespace sentrune
