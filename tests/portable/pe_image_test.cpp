#include "platform/portable/pe_image.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "pe_builder.h"
#include "pe_test_files.h"

namespace sentrune::portable {
namespace {

using testing::PeBuilder;
using testing::ToBytes;

const ResourceId kTypeLib = ResourceId::Named("TYPELIB");

std::string Text(std::optional<std::span<const uint8_t>> bytes) {
  return bytes ? std::string(bytes->begin(), bytes->end()) : "<none>";
}

uint32_t Get32(const std::vector<uint8_t>& b, size_t at) {
  return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (uint32_t{b[at + 3]} << 24);
}

void Put32(std::vector<uint8_t>& b, size_t at, uint32_t value) {
  for (int i = 0; i < 4; ++i) b[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

TEST(PeImageParse, RejectsBytesThatAreNotAWellFormedImage) {
  const std::vector<uint8_t> good = PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("x")).Build();
  const size_t coff = Get32(good, 0x3C) + 4;
  struct Case {
    const char* what;
    std::function<void(std::vector<uint8_t>&)> damage;
    bool looksLikePe;
  };
  const Case cases[] = {
      {"empty", [](auto& b) { b.clear(); }, false},
      {"only the MZ signature", [](auto& b) { b.resize(2); }, false},
      {"e_lfanew past the end", [](auto& b) { Put32(b, 0x3C, 0xFFFFFFF0); }, false},
      {"no PE signature", [](auto& b) { b[0x40] = 'N'; }, false},
      {"optional header cut off", [&](auto& b) { b.resize(coff + 30); }, true},
      {"unknown optional header magic", [&](auto& b) { b[coff + 20] = 0x07; }, true},
      {"section count past the end", [&](auto& b) { b[coff + 2] = 0x40; }, true},
      // The builder writes PE32+, whose data directories start 112 bytes in.
      {"resource RVA in no section", [&](auto& b) { Put32(b, coff + 20 + 112 + 16, 0x9000); }, true},
  };
  for (const Case& c : cases) {
    std::vector<uint8_t> bytes = good;
    c.damage(bytes);
    auto image = PeImage::Parse(bytes);
    ASSERT_FALSE(image.ok()) << c.what;
    EXPECT_EQ(image.error().number, kInvalidFileFormat) << c.what;
    EXPECT_EQ(PeImage::LooksLikePe(bytes), c.looksLikePe) << c.what;
  }
}

TEST(PeImageParse, FindsResourcesThroughBothOptionalHeaderLayouts) {
  for (auto arch : {PeBuilder::Arch::kPe32, PeBuilder::Arch::kPe32Plus}) {
    const auto bytes = PeBuilder(arch).Add(kTypeLib, ResourceId::Number(1), ToBytes("library")).Build();
    auto image = PeImage::Parse(bytes);
    ASSERT_TRUE(image.ok()) << image.error().description;
    EXPECT_EQ(image->is64(), arch == PeBuilder::Arch::kPe32Plus);
    EXPECT_EQ(Text(image->FindResource(kTypeLib, ResourceId::Number(1))), "library");
  }
}

TEST(PeImageResources, MatchesNumbersExactlyAndNamesIgnoringCase) {
  const auto bytes = PeBuilder()
                         .Add(kTypeLib, ResourceId::Number(1), ToBytes("one"))
                         .Add(ResourceId::Number(10), ResourceId::Named("Custom"), ToBytes("custom"))
                         .Add(ResourceId::Named("typelib"), ResourceId::Number(3), ToBytes("three"))
                         .Add(ResourceId::Number(10), ResourceId::Number(1), ToBytes("ten"))
                         .Build();
  auto image = PeImage::Parse(bytes);
  ASSERT_TRUE(image.ok());
  EXPECT_EQ(Text(image->FindResource(ResourceId::Named("TypeLib"), ResourceId::Number(3))), "three");
  EXPECT_EQ(Text(image->FindResource(kTypeLib, ResourceId::Number(2))), "<none>");
  EXPECT_EQ(Text(image->FindResource(ResourceId::Named("TYPELIBS"), ResourceId::Number(1))), "<none>");
  EXPECT_EQ(Text(image->FindResource(ResourceId::Number(10), ResourceId::Named("CUSTOM"))), "custom");
  EXPECT_EQ(Text(image->FindResource(ResourceId::Number(10), ResourceId::Number(1))), "ten");
  // A name that reads like a number is still a name.
  EXPECT_EQ(Text(image->FindResource(ResourceId::Number(10), ResourceId::Named("1"))), "<none>");
  EXPECT_EQ(Text(image->FindResource(ResourceId::Number(16), ResourceId::Number(1))), "<none>");

  std::vector<std::string> names;
  for (const auto& id : image->ResourceNames(ResourceId::Number(10))) names.push_back(id.ToString());
  EXPECT_EQ(names, (std::vector<std::string>{"Custom", "#1"}));
  EXPECT_TRUE(image->ResourceNames(ResourceId::Number(99)).empty());
}

TEST(PeImageResources, TakesTheFirstLanguageStored) {
  const auto bytes = PeBuilder()
                         .Add(kTypeLib, ResourceId::Number(1), ToBytes("german"), 0x407)
                         .Add(kTypeLib, ResourceId::Number(1), ToBytes("english"), 0x409)
                         .Build();
  auto image = PeImage::Parse(bytes);
  ASSERT_TRUE(image.ok());
  EXPECT_EQ(Text(image->FindResource(kTypeLib, ResourceId::Number(1))), "german");
}

// Each damage leaves the headers intact, so the image parses, and every
// lookup must end, without a result, inside the bytes.
TEST(PeImageResources, DamagedOrCyclicTreesEndWithoutAResult) {
  for (const ResourceId& type : {kTypeLib, ResourceId::Number(1)}) {
    const auto good = PeBuilder().Add(type, ResourceId::Number(1), ToBytes("data")).Build();
    const size_t rsrc = PeBuilder::kResourceFileOffset;
    const uint32_t typeDir = Get32(good, rsrc + 20) & 0x7FFFFFFF;
    const uint32_t nameDir = Get32(good, rsrc + typeDir + 20) & 0x7FFFFFFF;
    const uint32_t dataEntry = Get32(good, rsrc + nameDir + 20);
    const std::pair<const char*, std::function<void(std::vector<uint8_t>&)>> damages[] = {
        {"type entry points at the root", [&](auto& b) { Put32(b, rsrc + 20, 0x80000000); }},
        {"name entry points at its own directory",
         [&](auto& b) { Put32(b, rsrc + typeDir + 20, 0x80000000 | typeDir); }},
        {"language entry is a directory", [&](auto& b) { Put32(b, rsrc + nameDir + 20, 0x80000000); }},
        {"data runs past the section", [&](auto& b) { Put32(b, rsrc + dataEntry + 4, 0x7FFFFFFF); }},
        {"data RVA below every section", [&](auto& b) { Put32(b, rsrc + dataEntry, 0x10); }},
        {"data entry past the section", [&](auto& b) { Put32(b, rsrc + nameDir + 20, 0x7FFFFFF0); }},
        {"entry count past the section", [&](auto& b) { b[rsrc + 14] = 0xFF; b[rsrc + 15] = 0xFF; }},
        {"subdirectory past the section", [&](auto& b) { Put32(b, rsrc + 20, 0xFFFFFFF0); }},
        {"type name past the section", [&](auto& b) { Put32(b, rsrc + 16, 0xFFFFFFF0); }},
    };
    for (const auto& [what, damage] : damages) {
      std::vector<uint8_t> bytes = good;
      damage(bytes);
      auto image = PeImage::Parse(bytes);
      ASSERT_TRUE(image.ok()) << what;
      EXPECT_EQ(Text(image->FindResource(type, ResourceId::Number(1))), "<none>") << type.ToString() << what;
      (void)image->ResourceNames(type);
    }
  }
}

TEST(PeImageWine, ParsesEveryInstalledDllOfBothArchitectures) {
  bool any = false;
  for (const char* arch : {"x86_64", "i386"}) {
    for (const auto& path : testing::WineFiles(arch, ".dll")) {
      any = true;
      const auto bytes = testing::ReadHostFile(path);
      auto image = PeImage::Parse(bytes);
      ASSERT_TRUE(image.ok()) << path << ": " << image.error().description;
      EXPECT_EQ(image->is64(), std::string(arch) == "x86_64") << path;
    }
  }
  if (!any) GTEST_SKIP() << "Wine's Windows-side DLLs are not installed";
}

TEST(PeImageWine, FindsTheTypeLibraryResourceOfStdole) {
  auto path = testing::WineFile("x86_64", "stdole2.tlb");
  if (!path) GTEST_SKIP() << "Wine's stdole2.tlb is not installed";
  const auto bytes = testing::ReadHostFile(*path);
  auto image = PeImage::Parse(bytes);
  ASSERT_TRUE(image.ok());
  const std::string library = Text(image->FindResource(ResourceId::Named("typelib"), ResourceId::Number(1)));
  const std::string magic = library.substr(0, 4);
  EXPECT_TRUE(magic == "MSFT" || magic == "SLTG") << magic;
  EXPECT_EQ(Text(image->FindResource(kTypeLib, ResourceId::Number(2))), "<none>");
}

}  // namespace
}  // namespace sentrune::portable
