// Real libraries decode without error, and damaged ones never crash the
// reader or the projection (run under the sanitizers for full effect).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "msft_test_files.h"
#include "pe_test_files.h"
#include "platform/portable/msft_reader.h"
#include "platform/portable/pe_image.h"
#include "platform/portable/typelib_projection.h"

namespace sentrune::portable {
namespace {

namespace fs = std::filesystem;

// Decodes and projects; true when the bytes held a decodable library.
bool Exercise(std::span<const uint8_t> bytes) {
  auto raw = ReadMsft(bytes);
  if (!raw.ok()) {
    EXPECT_EQ(raw.error().number, rt::errnum::kCantLoadTypeLibrary);
    EXPECT_FALSE(raw.error().description.empty());
    return false;
  }
  const platform::TlbLibrary library = ProjectLibrary(*raw);
  EXPECT_EQ(library.types.size(), raw->types.size());
  return true;
}

// Every MSFT library in the TYPELIB resources of a file; the resource names
// go into `labels` for messages.
std::vector<std::vector<uint8_t>> TypeLibResources(const fs::path& path, std::vector<std::string>& labels) {
  std::vector<std::vector<uint8_t>> found;
  const auto bytes = testing::ReadHostFile(path);
  if (!PeImage::LooksLikePe(bytes)) return found;
  auto image = PeImage::Parse(bytes);
  if (!image.ok()) return found;
  const auto type = ResourceId::Named(kTypeLibResourceType);
  for (const ResourceId& name : image->ResourceNames(type)) {
    auto data = image->FindResource(type, name);
    if (!data || data->size() < 4 || !std::equal(data->begin(), data->begin() + 4, "MSFT")) continue;
    found.emplace_back(data->begin(), data->end());
    labels.push_back(path.filename().string() + "\\" + name.ToString());
  }
  return found;
}

// Decodes every library found in `files`; returns how many there were.
size_t DecodeAll(const std::vector<fs::path>& files) {
  size_t count = 0;
  for (const fs::path& file : files) {
    std::vector<std::string> labels;
    const auto libraries = TypeLibResources(file, labels);
    for (size_t i = 0; i < libraries.size(); ++i) {
      ++count;
      auto raw = ReadMsft(libraries[i]);
      if (!raw.ok()) {
        ADD_FAILURE() << labels[i] << ": " << raw.error().description;
        continue;
      }
      EXPECT_FALSE(raw->name.empty()) << labels[i];
      EXPECT_EQ(ProjectLibrary(*raw).types.size(), raw->types.size()) << labels[i];
    }
  }
  return count;
}

TEST(MsftCorpus, EveryWineTypeLibraryDecodes) {
  std::vector<fs::path> files;
  for (const char* extension : {".dll", ".ocx", ".exe", ".tlb"}) {
    for (const char* arch : {"x86_64", "i386"}) {
      const auto found = testing::WineFiles(arch, extension);
      files.insert(files.end(), found.begin(), found.end());
    }
  }
  if (files.empty()) GTEST_SKIP() << "Wine's Windows-side files are not installed";
  // mshtml.tlb, stdole2.tlb, oleaut32, msxml*, scrrun, ... at the least.
  EXPECT_GE(DecodeAll(files), 40u);
}

TEST(MsftCorpus, Vb6ComponentsDecode) {
  const fs::path corpus = fs::path(SENTRUNE_SHARED_DIR) / "corpus" / "vb6";
  std::error_code error;
  if (!fs::is_directory(corpus, error)) GTEST_SKIP() << "the VB6 corpus is not present";
  std::vector<fs::path> files;
  for (auto it = fs::recursive_directory_iterator(corpus, error); it != fs::recursive_directory_iterator();
       it.increment(error)) {
    std::string extension = it->path().extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
    if (extension == ".dll" || extension == ".ocx" || extension == ".cmp") files.push_back(it->path());
  }
  if (files.empty()) GTEST_SKIP() << "the VB6 corpus holds no components";
  std::sort(files.begin(), files.end());
  // Every component carries at least one library.
  EXPECT_GE(DecodeAll(files), files.size());
}

TEST(MsftRobustness, TruncatedFixturesNeverCrash) {
  for (const char* name : {"widgets.tlb", "shapes.tlb", "widgets64.tlb"}) {
    const auto whole = testing::TypeLibFixture(name);
    ASSERT_TRUE(Exercise(whole)) << name;
    for (size_t cut = 0; cut < whole.size(); cut += 97) {
      // A copy of exactly `cut` bytes, so that the sanitizers see any overread.
      const std::vector<uint8_t> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(cut));
      Exercise(bytes);
    }
  }
}

TEST(MsftRobustness, RandomByteFlipsNeverCrash) {
  const auto whole = testing::TypeLibFixture("widgets.tlb");
  std::mt19937 random(20240601);
  std::uniform_int_distribution<size_t> position(0, whole.size() - 1);
  std::uniform_int_distribution<int> value(0, 255), flips(1, 8);
  size_t decoded = 0;
  for (int round = 0; round < 3000; ++round) {
    std::vector<uint8_t> bytes = whole;
    for (int i = flips(random); i > 0; --i) bytes[position(random)] = static_cast<uint8_t>(value(random));
    decoded += Exercise(bytes) ? 1 : 0;
  }
  // Most flips hit names, strings or padding and leave a decodable library.
  EXPECT_GT(decoded, 0u);
}

TEST(MsftRobustness, SavedFuzzerInputsStayHarmless) {
  const fs::path folder = fs::path(SENTRUNE_SOURCE_DIR) / "tests" / "fixtures" / "fuzz" / "msft";
  std::error_code error;
  if (!fs::is_directory(folder, error)) GTEST_SKIP() << "no saved fuzzer inputs";
  size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (!entry.is_regular_file()) continue;
    Exercise(testing::ReadHostFile(entry.path()));
    ++count;
  }
  if (count == 0) GTEST_SKIP() << "no saved fuzzer inputs";
}

}  // namespace
}  // namespace sentrune::portable
