// PE images, their version resources and the type libraries they carry.
// Damaged images must give an error or "nothing", never a crash, a hang or a
// span outside the bytes; run under the sanitizers for full effect.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <tuple>

#include "pe_builder.h"
#include "pe_test_files.h"
#include "platform/pe/byte_reader.h"
#include "platform/pe/pe_image.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/pe/version_resources_portable.h"
#include "support/fake_file_system.h"
#include "support/robustness.h"

namespace sentrune::portable {
namespace {

using testing::Get16;
using testing::Get32;
using testing::PeBuilder;
using testing::Set32;
using testing::ToBytes;
using testing::VersionInfoBlock;
using Bytes = std::vector<uint8_t>;

const ResourceId kTypeLib = ResourceId::Named("TYPELIB");
const ResourceId kVersion = ResourceId::Number(kRtVersion);

void Put(testing::FakeFileSystem& files, const std::string& path, const Bytes& bytes) {
  files.AddFile(path, std::string(bytes.begin(), bytes.end()));
}

std::string Text(std::optional<std::span<const uint8_t>> bytes) {
  return bytes ? std::string(bytes->begin(), bytes->end()) : "<none>";
}

// The bounds checks every reader relies on: nothing beyond the bytes, and no
// offset or count that wraps around.
TEST(ByteReader, ReadsLittleEndianOnlyInsideTheBytes) {
  const Bytes bytes = {0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF, 0xFF, 0x7F, 0x80, 0xAB, 0xAB};
  const ByteReader reader(bytes);
  EXPECT_EQ(reader.U32(0), 0x04030201u);
  EXPECT_EQ(reader.I32(4), 0x7FFFFFFF);
  EXPECT_EQ(reader.I8(8), -128);
  EXPECT_EQ(reader.U64(1), 0x807FFFFFFF040302u);
  EXPECT_FALSE(reader.U8(11));
  EXPECT_FALSE(reader.U64(4));
  EXPECT_FALSE(reader.Has(12, 0));
  EXPECT_FALSE(reader.Has(8, UINT64_MAX - 4));
  EXPECT_FALSE(reader.Has(UINT64_MAX, 2));
  EXPECT_FALSE(reader.U32(UINT64_MAX - 1));
  EXPECT_FALSE(reader.Span(0, 12));
  auto sub = reader.Sub(1, 8);
  ASSERT_TRUE(sub);
  EXPECT_EQ(sub->U32(3), 0x7FFFFFFFu);
  EXPECT_FALSE(sub->U32(5));  // relative to the sub-range, which ends at 8
  EXPECT_FALSE(reader.Sub(8, 4));
}

TEST(PeImage, RejectsBytesThatAreNotAWellFormedImage) {
  const Bytes good = PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("x")).Build();
  const size_t coff = Get32(good, 0x3C) + 4;
  const std::tuple<const char*, std::function<void(Bytes&)>, bool> cases[] = {
      {"empty", [](Bytes& b) { b.clear(); }, false},
      {"e_lfanew past the end", [](Bytes& b) { Set32(b, 0x3C, 0xFFFFFFF0); }, false},
      {"no PE signature", [](Bytes& b) { b[0x40] = 'N'; }, false},
      {"optional header cut off", [&](Bytes& b) { b.resize(coff + 30); }, true},
      {"unknown optional header magic", [&](Bytes& b) { b[coff + 20] = 0x07; }, true},
      {"section count past the end", [&](Bytes& b) { b[coff + 2] = 0x40; }, true},
      // The builder writes PE32+, whose data directories start 112 bytes in.
      {"resource RVA in no section", [&](Bytes& b) { Set32(b, coff + 20 + 112 + 16, 0x9000); }, true},
  };
  for (const auto& [what, damage, looksLikePe] : cases) {
    Bytes bytes = good;
    damage(bytes);
    auto image = PeImage::Parse(bytes);
    ASSERT_FALSE(image.ok()) << what;
    EXPECT_EQ(image.error().number, kInvalidFileFormat) << what;
    EXPECT_EQ(PeImage::LooksLikePe(bytes), looksLikePe) << what;
  }
}

TEST(PeImage, MatchesNumbersExactlyNamesIgnoringCaseAndTakesTheFirstLanguage) {
  for (auto arch : {PeBuilder::Arch::kPe32, PeBuilder::Arch::kPe32Plus}) {
    const auto bytes = PeBuilder(arch)
                           .Add(kTypeLib, ResourceId::Number(1), ToBytes("german"), 0x407)
                           .Add(kTypeLib, ResourceId::Number(1), ToBytes("english"), 0x409)
                           .Add(ResourceId::Number(10), ResourceId::Named("Custom"), ToBytes("custom"))
                           .Add(ResourceId::Named("typelib"), ResourceId::Number(3), ToBytes("three"))
                           .Add(ResourceId::Number(10), ResourceId::Number(1), ToBytes("ten"))
                           .Build();
    auto image = PeImage::Parse(bytes);
    ASSERT_TRUE(image.ok()) << image.error().description;
    EXPECT_EQ(image->is64(), arch == PeBuilder::Arch::kPe32Plus);
    const std::tuple<ResourceId, ResourceId, const char*> lookups[] = {
        {kTypeLib, ResourceId::Number(1), "german"},
        {ResourceId::Named("TypeLib"), ResourceId::Number(3), "three"},
        {ResourceId::Named("TYPELIBS"), ResourceId::Number(1), "<none>"},
        {ResourceId::Number(10), ResourceId::Named("CUSTOM"), "custom"},
        {ResourceId::Number(10), ResourceId::Number(1), "ten"},
        {ResourceId::Number(10), ResourceId::Named("1"), "<none>"},  // a name that reads like a number
    };
    for (const auto& [type, name, expected] : lookups) {
      EXPECT_EQ(Text(image->FindResource(type, name)), expected) << type.ToString() << "/" << name.ToString();
    }
    std::vector<std::string> names;
    for (const auto& id : image->ResourceNames(ResourceId::Number(10))) names.push_back(id.ToString());
    EXPECT_EQ(names, (std::vector<std::string>{"Custom", "#1"}));
    EXPECT_TRUE(image->ResourceNames(ResourceId::Number(99)).empty());
  }
}

// Each damage leaves the headers intact, so the image parses, and every
// lookup must end, without a result, inside the bytes.
TEST(PeImage, DamagedOrCyclicResourceTreesEndWithoutAResult) {
  for (const ResourceId& type : {kTypeLib, ResourceId::Number(1)}) {
    const auto good = PeBuilder().Add(type, ResourceId::Number(1), ToBytes("data")).Build();
    const size_t rsrc = PeBuilder::kResourceFileOffset;
    const uint32_t typeDir = Get32(good, rsrc + 20) & 0x7FFFFFFF;
    const uint32_t nameDir = Get32(good, rsrc + typeDir + 20) & 0x7FFFFFFF;
    const uint32_t dataEntry = Get32(good, rsrc + nameDir + 20);
    const std::pair<size_t, uint32_t> damages[] = {
        {rsrc + 20, 0x80000000},                           // type entry points at the root
        {rsrc + typeDir + 20, 0x80000000 | typeDir},       // name entry points at its own directory
        {rsrc + nameDir + 20, 0x80000000},                 // language entry is a directory
        {rsrc + dataEntry + 4, 0x7FFFFFFF},                // data runs past the section
        {rsrc + 12, 0xFFFF0000 | Get16(good, rsrc + 12)},  // entry count past the section
        {rsrc + 16, 0xFFFFFFF0},                           // type name past the section
    };
    for (const auto& [at, value] : damages) {
      Bytes bytes = good;
      Set32(bytes, at, value);
      auto image = PeImage::Parse(bytes);
      ASSERT_TRUE(image.ok()) << at;
      EXPECT_EQ(Text(image->FindResource(type, ResourceId::Number(1))), "<none>") << type.ToString() << " " << at;
      (void)image->ResourceNames(type);
    }
  }
}

// Every Windows-side DLL Wine installs parses; Wine builds a version resource
// into them, so wherever the block's key is in a file, a version must come out.
TEST(PeImage, ReadsEveryInstalledWineDllAndItsVersion) {
  Bytes key;
  for (char c : std::string_view("VS_VERSION_INFO")) key.insert(key.end(), {static_cast<uint8_t>(c), 0});
  bool any = false;
  for (const char* arch : {"x86_64", "i386"}) {
    size_t versions = 0;
    for (const auto& path : testing::WineFiles(arch, ".dll")) {
      any = true;
      const auto bytes = testing::ReadHostFile(path);
      auto image = PeImage::Parse(bytes);
      ASSERT_TRUE(image.ok()) << path << ": " << image.error().description;
      EXPECT_EQ(image->is64(), std::string(arch) == "x86_64") << path;
      if (versions == 5 || std::search(bytes.begin(), bytes.end(), key.begin(), key.end()) == bytes.end()) continue;
      ++versions;
      EXPECT_NE(FormatFileVersion(FileVersionOfImage(bytes)), "0.0.0.0") << path;
    }
  }
  if (!any) GTEST_SKIP() << "Wine's Windows-side DLLs are not installed";
}

bool Inside(std::span<const uint8_t> part, std::span<const uint8_t> whole) {
  return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

// Everything the add-in does with a file's bytes; the version, when there is one.
std::optional<std::string> Exercise(std::span<const uint8_t> bytes) {
  if (auto image = PeImage::Parse(bytes); image.ok()) {
    auto library = image->FindResource(kTypeLib, ResourceId::Number(1));
    EXPECT_TRUE(!library || Inside(*library, bytes));
    (void)image->ResourceNames(kVersion);
  }
  auto raw = ReadTypeLibBytes(bytes, 1);
  if (!raw.ok()) {
    EXPECT_TRUE(raw.error().number == rt::errnum::kNotATypeLibrary ||
                raw.error().number == rt::errnum::kCantLoadTypeLibrary)
        << raw.error().number << " " << raw.error().description;
  }
  const std::string version = FormatFileVersion(FileVersionOfImage(bytes));
  return version == "0.0.0.0" ? std::nullopt : std::optional(version);
}

TEST(PeRobustness, DamagedImagesGiveErrorsOrTheirOwnVersion) {
  std::vector<Bytes> good = {PeBuilder(PeBuilder::Arch::kPe32)
                                 .Add(kTypeLib, ResourceId::Number(1), ToBytes("MSFTjunk"))
                                 .Add(kVersion, ResourceId::Number(1), VersionInfoBlock(0x00010002, 0x00030004))
                                 .Build()};
  for (const char* name : {"stdole2.tlb", "stdole32.tlb"}) {
    if (auto path = testing::WineFile("x86_64", name)) good.push_back(testing::ReadHostFile(*path));
  }
  // Changes in the first pages hit structure; the rest of a real image is mostly code.
  testing::ExpectRobust(Exercise, good, {.hotBytes = 0x1000, .savedInputs = "pe"});
}

TEST(VersionInfo, DecodesWellFormedBlocksAndRejectsMalformedOnes) {
  auto padded = VersionInfoBlock(0x00050006, 0x00070008);
  padded.resize(padded.size() + 6, 0xEE);  // resources are padded past the block's own length
  auto version = DecodeVersionInfo(padded);
  ASSERT_TRUE(version);
  EXPECT_EQ(version->ms, 0x00050006u);
  EXPECT_EQ(version->ls, 0x00070008u);

  const std::pair<const char*, std::function<void(Bytes&)>> damages[] = {
      {"empty", [](Bytes& b) { b.clear(); }},
      {"length shorter than the fixed part", [](Bytes& b) { b[0] = 60; }},
      {"length longer than the bytes", [](Bytes& b) { b[0] = 0xFF; }},
      {"another key", [](Bytes& b) { b[6] = 'X'; }},
      {"wrong signature", [](Bytes& b) { b[40] ^= 1; }},
  };
  for (const auto& [what, damage] : damages) {
    auto block = VersionInfoBlock(0x00010002, 0x00030004);
    damage(block);
    EXPECT_FALSE(DecodeVersionInfo(block)) << what;
  }
}

TEST(VersionInfo, ReadsTheVersionResourceOfCraftedImages) {
  testing::FakeFileSystem files;
  auto add = [&](const std::string& name, const Bytes& bytes) { Put(files, "C:\\v\\" + name, bytes); };
  add("pe32.dll", PeBuilder(PeBuilder::Arch::kPe32)
                      .Add(kVersion, ResourceId::Number(1), VersionInfoBlock(0x00020001, 0x00040003))
                      .Build());
  // Resource 1 is preferred; without it the first one stored serves.
  add("pe64.dll", PeBuilder()
                      .Add(kVersion, ResourceId::Named("ALT"), VersionInfoBlock(0x00090009, 0))
                      .Add(kVersion, ResourceId::Number(7), VersionInfoBlock(0x00070007, 0))
                      .Build());
  add("both.dll", PeBuilder()
                      .Add(kVersion, ResourceId::Number(2), VersionInfoBlock(0x00020002, 0))
                      .Add(kVersion, ResourceId::Number(1), VersionInfoBlock(0x00010001, 0))
                      .Build());
  add("none.dll", PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("x")).Build());
  add("text.dll", ToBytes("just text"));

  PortableVersionResources versions(files);
  const std::pair<const char*, const char*> expected[] = {
      {"pe32.dll", "2.1.4.3"}, {"pe64.dll", "9.9.0.0"}, {"both.dll", "1.1.0.0"},
      {"none.dll", "0.0.0.0"}, {"text.dll", "0.0.0.0"},        {"missing.dll", "0.0.0.0"}};
  for (const auto& [name, version] : expected) {
    EXPECT_EQ(FormatFileVersion(versions.FileVersionOf(std::string("C:\\v\\") + name)), version) << name;
  }
}

// The error number of a load, or 0 with the library's name in `name`.
int32_t LoadNumber(PortableTypeLibSource& source, const std::string& path, std::string* name = nullptr) {
  auto library = source.Load(path);
  if (library.ok()) {
    if (name) *name = library->name;
    return 0;
  }
  // Whatever went wrong, the message says which file it concerns.
  const std::string file = path.substr(0, path.rfind('.'));
  EXPECT_NE(library.error().description.find(file), std::string::npos) << library.error().description;
  return library.error().number;
}

TEST(PortableTypeLibSource, FilesWithoutALibraryAreNamedInTheirErrors) {
  testing::FakeFileSystem files;
  Put(files, "C:\\lib\\notes.tlb", ToBytes("MSF not quite"));
  Put(files, "C:\\lib\\plain.dll", PeBuilder().Add(kVersion, ResourceId::Number(1), ToBytes("v")).Build());
  Put(files, "C:\\lib\\junk.dll", PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("JUNK")).Build());
  auto cut = PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("MSFT")).Build();
  cut.resize(0x100);
  Put(files, "C:\\lib\\cut.dll", cut);

  PortableTypeLibSource source(files);
  const std::pair<const char*, int32_t> loads[] = {
      {"C:\\lib\\missing.tlb", rt::errnum::kFileNotFound},
      {"C:\\lib\\notes.tlb", rt::errnum::kNotATypeLibrary},
      {"C:\\lib\\plain.dll", rt::errnum::kNotATypeLibrary},
      {"C:\\lib\\junk.dll\\2", rt::errnum::kNotATypeLibrary},
      // There is a library, but it cannot be decoded.
      {"C:\\lib\\junk.dll", rt::errnum::kCantLoadTypeLibrary},
      {"C:\\lib\\cut.dll", rt::errnum::kCantLoadTypeLibrary},
  };
  for (const auto& [path, number] : loads) EXPECT_EQ(LoadNumber(source, path), number) << path;
}

TEST(PortableTypeLibSource, FindsTheLibraryWhateverTheExtensionOrResourceNumber) {
  auto image = testing::WineFile("x86_64", "stdole2.tlb");
  if (!image) GTEST_SKIP() << "Wine's stdole2.tlb is not installed";
  const Bytes stdoleImage = testing::ReadHostFile(*image);
  auto parsed = PeImage::Parse(stdoleImage);
  ASSERT_TRUE(parsed.ok());
  auto resource = parsed->FindResource(kTypeLib, ResourceId::Number(1));
  ASSERT_TRUE(resource);
  const Bytes stdole(resource->begin(), resource->end());

  testing::FakeFileSystem files;
  Put(files, "C:\\lib\\multi.dll", PeBuilder(PeBuilder::Arch::kPe32)
                                          .Add(kTypeLib, ResourceId::Number(1), ToBytes("JUNK"))
                                          .Add(kTypeLib, ResourceId::Number(3), stdole)
                                          .Build());
  Put(files, "C:\\lib\\7\\12", stdole);  // all digits, in a folder: the number is the file's name
  Put(files, "C:\\lib\\bare.txt", stdole);
  Put(files, "C:\\lib\\wrapped.tlb", PeBuilder().Add(kTypeLib, ResourceId::Number(1), stdole).Build());
  Put(files, "C:\\lib\\stdole2.tlb", stdoleImage);

  PortableTypeLibSource source(files);
  for (const char* path : {"C:\\lib\\multi.dll\\3", "C:\\lib\\multi.dll\\003", "C:\\lib\\7\\12", "C:\\lib\\bare.txt",
                           "C:\\lib\\wrapped.tlb", "C:\\lib\\stdole2.tlb"}) {
    std::string name;
    EXPECT_EQ(LoadNumber(source, path, &name), 0) << path;
    EXPECT_EQ(name, "stdole") << path;
  }
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll"), rt::errnum::kCantLoadTypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll\\4"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll\\99999999999999999999"), rt::errnum::kNotATypeLibrary);
}

}  // namespace
}  // namespace sentrune::portable
