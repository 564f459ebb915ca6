// Damaged images of every kind must give an error or "nothing", never a crash,
// a hang or a span outside the bytes. Run under the sanitizers for full effect.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "pe_builder.h"
#include "pe_test_files.h"
#include "platform/portable/pe_image.h"
#include "platform/portable/typelib_source_portable.h"
#include "platform/portable/version_resources_portable.h"

namespace sentrune::portable {
namespace {

using testing::PeBuilder;

bool Inside(std::span<const uint8_t> part, std::span<const uint8_t> whole) {
  return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

// Everything the add-in does with a file's bytes. Returns the version text so
// that callers can compare it with the undamaged image's.
std::string Exercise(std::span<const uint8_t> bytes) {
  if (auto image = PeImage::Parse(bytes); image.ok()) {
    auto library = image->FindResource(ResourceId::Named("TYPELIB"), ResourceId::Number(1));
    EXPECT_TRUE(!library || Inside(*library, bytes));
    (void)image->ResourceNames(ResourceId::Number(kRtVersion));
  }
  auto raw = ReadTypeLibBytes(bytes, 1);
  if (!raw.ok()) {
    EXPECT_TRUE(raw.error().number == rt::errnum::kNotATypeLibrary ||
                raw.error().number == rt::errnum::kCantLoadTypeLibrary)
        << raw.error().number << " " << raw.error().description;
  }
  return FormatFileVersion(FileVersionOfImage(bytes));
}

std::vector<std::filesystem::path> RealSamples() {
  std::vector<std::filesystem::path> samples;
  for (const char* name : {"stdole2.tlb", "stdole32.tlb"}) {
    if (auto path = testing::WineFile("x86_64", name)) samples.push_back(*path);
  }
  return samples;
}

TEST(PeRobustness, TruncatedRealImagesGiveErrorsOrTheirOwnVersion) {
  const auto samples = RealSamples();
  if (samples.empty()) GTEST_SKIP() << "Wine's Windows-side files are not installed";
  for (const auto& path : samples) {
    const auto whole = testing::ReadHostFile(path);
    const std::string version = Exercise(whole);
    ASSERT_NE(version, "0.0.0.0") << path;
    for (size_t cut = 0; cut < whole.size(); cut += 97) {
      // A copy of exactly `cut` bytes, so that the sanitizers see any overread.
      const std::vector<uint8_t> bytes(whole.begin(), whole.begin() + cut);
      const std::string seen = Exercise(bytes);
      EXPECT_TRUE(seen == "0.0.0.0" || seen == version) << path << " cut at " << cut << ": " << seen;
    }
  }
}

TEST(PeRobustness, RandomByteFlipsNeverEscapeTheBytes) {
  std::vector<std::vector<uint8_t>> originals;
  originals.push_back(PeBuilder(PeBuilder::Arch::kPe32)
                          .Add(ResourceId::Named("TYPELIB"), ResourceId::Number(1), testing::ToBytes("MSFTjunk"))
                          .Add(ResourceId::Number(kRtVersion), ResourceId::Number(1),
                               testing::VersionInfoBlock(0x00010002, 0x00030004))
                          .Build());
  for (const auto& path : RealSamples()) originals.push_back(testing::ReadHostFile(path));

  std::mt19937 random(20240229);
  for (const auto& original : originals) {
    // Flips in the first kilobyte and the resource area hit structure; the
    // rest of a real image is mostly code.
    const size_t hot = std::min<size_t>(original.size(), 0x1000);
    for (int round = 0; round < 400; ++round) {
      std::vector<uint8_t> bytes = original;
      const int flips = 1 + static_cast<int>(random() % 8);
      for (int i = 0; i < flips; ++i) {
        const size_t limit = (random() % 2) ? hot : bytes.size();
        bytes[random() % limit] ^= static_cast<uint8_t>(1u << (random() % 8));
      }
      Exercise(bytes);
    }
  }
}

TEST(PeRobustness, SavedFuzzerInputsStayHarmless) {
  const std::filesystem::path folder = std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/fuzz/pe";
  std::error_code error;
  size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (!entry.is_regular_file()) continue;
    SCOPED_TRACE(entry.path().filename().string());
    Exercise(testing::ReadHostFile(entry.path()));
    ++count;
  }
  if (count == 0) GTEST_SKIP() << "no saved fuzzer inputs";
}

}  // namespace
}  // namespace sentrune::portable
