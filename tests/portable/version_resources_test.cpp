#include "platform/portable/version_resources_portable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "pe_builder.h"
#include "pe_test_files.h"

namespace sentrune::portable {
namespace {

using testing::PeBuilder;
using testing::VersionInfoBlock;

const ResourceId kVersion = ResourceId::Number(kRtVersion);

TEST(VersionInfoDecode, ReadsTheFixedFileVersionOfWellFormedBlocks) {
  auto version = DecodeVersionInfo(VersionInfoBlock(0x00050006, 0x00070008));
  ASSERT_TRUE(version);
  EXPECT_EQ(version->ms, 0x00050006u);
  EXPECT_EQ(version->ls, 0x00070008u);

  // Resources are padded; bytes after the block's own length do not matter.
  auto padded = VersionInfoBlock(1, 2);
  padded.resize(padded.size() + 6, 0xEE);
  EXPECT_TRUE(DecodeVersionInfo(padded));
}

TEST(VersionInfoDecode, RejectsMalformedBlocks) {
  const std::pair<const char*, std::function<void(std::vector<uint8_t>&)>> damages[] = {
      {"empty", [](auto& b) { b.clear(); }},
      {"cut inside the fixed part", [](auto& b) { b.resize(60); }},
      {"length shorter than the fixed part", [](auto& b) { b[0] = 60; }},
      {"length longer than the bytes", [](auto& b) { b[0] = 0xFF; }},
      {"no fixed part", [](auto& b) { b[2] = 0; }},
      {"another key", [](auto& b) { b[6] = 'X'; }},
      {"key without its terminator", [](auto& b) { b[36] = 'X'; }},
      {"wrong signature", [](auto& b) { b[40] ^= 1; }},
  };
  for (const auto& [what, damage] : damages) {
    auto block = VersionInfoBlock(0x00010002, 0x00030004);
    damage(block);
    EXPECT_FALSE(DecodeVersionInfo(block)) << what;
  }
}

TEST(FormatFileVersion, JoinsTheFourHalfWordsMostSignificantFirst) {
  EXPECT_EQ(FormatFileVersion(platform::FileVersion{0x00010002, 0x00030004}), "1.2.3.4");
  EXPECT_EQ(FormatFileVersion(platform::FileVersion{0xFFFF0000, 0x0001FFFF}), "65535.0.1.65535");
  EXPECT_EQ(FormatFileVersion(std::nullopt), "0.0.0.0");
}

TEST(PortableVersionResources, ReadsTheVersionResourceOfCraftedImages) {
  testing::MemoryFiles files;
  files.AddFile("C:\\v\\pe32.dll", PeBuilder(PeBuilder::Arch::kPe32)
                                       .Add(kVersion, ResourceId::Number(1), VersionInfoBlock(0x00020001, 0x00040003))
                                       .Build());
  // Resource 1 is preferred; without it the first one stored serves.
  files.AddFile("C:\\v\\pe64.dll", PeBuilder()
                                       .Add(kVersion, ResourceId::Named("ALT"), VersionInfoBlock(0x00090009, 0))
                                       .Add(kVersion, ResourceId::Number(7), VersionInfoBlock(0x00070007, 0))
                                       .Build());
  files.AddFile("C:\\v\\both.dll", PeBuilder()
                                       .Add(kVersion, ResourceId::Number(2), VersionInfoBlock(0x00020002, 0))
                                       .Add(kVersion, ResourceId::Number(1), VersionInfoBlock(0x00010001, 0))
                                       .Build());
  files.AddFile("C:\\v\\none.dll",
                PeBuilder().Add(ResourceId::Named("TYPELIB"), ResourceId::Number(1), testing::ToBytes("x")).Build());
  files.AddFile("C:\\v\\text.dll", testing::ToBytes("just text"));

  PortableVersionResources versions(files);
  auto text = [&](const char* path) { return FormatFileVersion(versions.FileVersionOf(path)); };
  EXPECT_EQ(text("C:\\v\\pe32.dll"), "2.1.4.3");
  EXPECT_EQ(text("C:\\v\\pe64.dll"), "9.9.0.0");
  EXPECT_EQ(text("C:\\v\\both.dll"), "1.1.0.0");
  EXPECT_EQ(text("C:\\v\\none.dll"), "0.0.0.0");
  EXPECT_EQ(text("C:\\v\\text.dll"), "0.0.0.0");
  EXPECT_EQ(text("C:\\v\\missing.dll"), "0.0.0.0");
}

// Wine builds a version resource into its DLLs; wherever the block's key is
// in the file, a version must come out.
TEST(PortableVersionResources, ReadsTheVersionOfRealWineDlls) {
  std::vector<uint8_t> key;
  for (char c : std::string_view("VS_VERSION_INFO")) key.insert(key.end(), {static_cast<uint8_t>(c), 0});
  size_t checked = 0;
  for (const char* arch : {"x86_64", "i386"}) {
    size_t checkedOfArch = 0;
    for (const auto& path : testing::WineFiles(arch, ".dll")) {
      const auto bytes = testing::ReadHostFile(path);
      if (std::search(bytes.begin(), bytes.end(), key.begin(), key.end()) == bytes.end()) continue;
      testing::MemoryFiles files;
      files.AddFile("C:\\windows\\system32\\sample.dll", bytes);
      PortableVersionResources versions(files);
      auto version = versions.FileVersionOf("C:\\windows\\system32\\sample.dll");
      ASSERT_TRUE(version) << path;
      EXPECT_NE(FormatFileVersion(version), "0.0.0.0") << path;
      if (++checkedOfArch == 5) break;
    }
    checked += checkedOfArch;
  }
  if (checked == 0) GTEST_SKIP() << "no Wine DLL with a version resource is installed";
}

}  // namespace
}  // namespace sentrune::portable
