// Every type library Wine installs, and every component VB6 compiled in the
// shared corpus, must read into a model, and two reads of one file must
// compare equal: the model is only useful if it is stable on real files.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/ini/ini_file.h"
#include "platform/pe/pe_image.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/posix/posix_env.h"
#include "platform/pe/pe_test_files.h"
#include "runtime/text.h"
#include "support/fake_ui.h"
#include "support/temp_folder.h"
#include "typelib/parse_tlb.h"

namespace sentrune {
namespace {

namespace fs = std::filesystem;

class RealLibraries : public ::testing::Test {
 protected:
  // Reads the file twice; both reads succeed and compare equal.
  void ExpectStable(const fs::path& file) {
    const std::optional<std::string> path = env_.Files().Drives().HostToWindows(file.string());
    ASSERT_TRUE(path) << file;
    clsParseTLB first(state_), second(state_);
    const TypeLibReadResult read = first.ReadTypeLib(*path);
    ASSERT_EQ(read.number, 0) << file << ": " << read.message;
    ASSERT_EQ(second.ReadTypeLib(*path).number, 0) << file;
    EXPECT_TRUE(first.Compare(second, false, true).empty()) << file;
    EXPECT_FALSE(first.Library().empty()) << file;
    ++read_;
  }

  testing::TempFolder home_;
  posix::PosixEnv env_{[this] {
    posix::PosixEnvOptions options;
    options.homeHostDir = home_.path();
    return options;
  }()};
  testing::FakeUi ui_;
  portable::PortableProfileFiles profiles_{env_.Files()};
  portable::PortableVersionResources versions_{env_.Files()};
  portable::PortableTypeLibSource typelibs_{env_.Files()};
  AddinState state_{Platform{env_, ui_, profiles_, versions_, typelibs_}};
  int read_ = 0;
};

bool HasTypeLib(const fs::path& file) {
  const std::vector<uint8_t> bytes = testing::ReadHostFile(file);
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
  EXPECT_TRUE(ui_.boxes.empty());
  EXPECT_GE(read_, 20);
}

TEST_F(RealLibraries, EveryCompiledCorpusComponentReadsAndComparesEqualToItself) {
  const fs::path corpus = fs::path(SENTRUNE_SHARED_DIR) / "corpus" / "vb6";
  if (!fs::is_directory(corpus)) GTEST_SKIP() << "no corpus";
  for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
    const std::string extension = rt::LCase(entry.path().extension().string());
    if (entry.is_regular_file() && (extension == ".dll" || extension == ".ocx" || extension == ".cmp"))
      ExpectStable(entry.path());
  }
  EXPECT_TRUE(ui_.boxes.empty());
  EXPECT_GT(read_, 0);
}

}  // namespace
}  // namespace sentrune
