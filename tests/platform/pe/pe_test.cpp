// PE images, their version resources and the type libraries they carry: the
// committed images (tests/fixtures/pe/make-fixtures.sh, and widgets.dll of the
// type library fixtures) and every DLL Wine installs. Damaged images must give
// an error or "nothing", never a crash, a hang or a span outside the bytes;
// run under the sanitizers for full effect.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <tuple>

#include "platform/pe/byte_reader.h"
#include "platform/pe/pe_image.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/pe/version_resources_portable.h"
#include "support/fake_file_system.h"
#include "support/host_files.h"
#include "support/robustness.h"

namespace sentrune::portable {
namespace {

using testing::FixtureFile;
using testing::Get16;
using testing::Get32;
using testing::Set16;
using testing::Set32;
using Bytes = std::vector<uint8_t>;

const ResourceId kTypeLib = ResourceId::Named("TYPELIB");
const ResourceId kVersion = ResourceId::Number(kRtVersion);

// Where the resource directory starts in the file: its section header's raw data offset.
size_t ResourceSection(const Bytes& image) { return Get32(image, testing::FindText(image, ".rsrc") + 20); }

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
  const Bytes good = FixtureFile("pe/lookup64.dll");
  const size_t coff = Get32(good, 0x3C) + 4;
  const std::tuple<const char*, std::function<void(Bytes&)>, bool> cases[] = {
      {"empty", [](Bytes& b) { b.clear(); }, false},
      {"e_lfanew past the end", [](Bytes& b) { Set32(b, 0x3C, 0xFFFFFFF0); }, false},
      {"no PE signature", [&](Bytes& b) { b[coff - 4] = 'N'; }, false},
      {"optional header cut off", [&](Bytes& b) { b.resize(coff + 30); }, true},
      {"unknown optional header magic", [&](Bytes& b) { b[coff + 20] = 0x07; }, true},
      {"section count past the end", [&](Bytes& b) { Set16(b, coff + 2, 0xFFFF); }, true},
      // A PE32+ image's data directories start 112 bytes into its optional header.
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

// The resource compiler stores names upper-cased, named entries first.
TEST(PeImage, MatchesNumbersExactlyNamesIgnoringCaseAndTakesTheFirstLanguage) {
  for (const std::string name : {"lookup.dll", "lookup64.dll"}) {
    const Bytes bytes = FixtureFile("pe/" + name);
    auto image = PeImage::Parse(bytes);
    ASSERT_TRUE(image.ok()) << image.error().description;
    EXPECT_EQ(image->is64(), name == "lookup64.dll");
    const std::tuple<ResourceId, ResourceId, const char*> lookups[] = {
        {kTypeLib, ResourceId::Number(1), "german"},
        {ResourceId::Named("TypeLib"), ResourceId::Number(3), "three"},
        {ResourceId::Named("TYPELIBS"), ResourceId::Number(1), "<none>"},
        {ResourceId::Number(10), ResourceId::Named("Custom"), "custom"},
        {ResourceId::Number(10), ResourceId::Number(1), "ten"},
        {ResourceId::Number(10), ResourceId::Named("1"), "<none>"},  // a name that reads like a number
    };
    for (const auto& [type, id, expected] : lookups) {
      EXPECT_EQ(Text(image->FindResource(type, id)), expected)
          << name << ": " << type.ToString() << "/" << id.ToString();
    }
    std::vector<std::string> names;
    for (const auto& id : image->ResourceNames(ResourceId::Number(10))) names.push_back(id.ToString());
    EXPECT_EQ(names, (std::vector<std::string>{"CUSTOM", "#1"}));
    EXPECT_TRUE(image->ResourceNames(ResourceId::Number(99)).empty());
  }
}

// Each damage leaves the headers intact, so the image parses, and every
// lookup must end, without a result, inside the bytes.
TEST(PeImage, DamagedOrCyclicResourceTreesEndWithoutAResult) {
  const Bytes good = FixtureFile("typelib/widgets.dll");
  const size_t rsrc = ResourceSection(good);
  // The root lists TYPELIB, then the version type; each holds resource 1 in one language.
  for (size_t entry : {0, 1}) {
    const ResourceId type = entry == 0 ? kTypeLib : kVersion;
    const size_t field = rsrc + 16 + 8 * entry;
    const uint32_t typeDir = Get32(good, field + 4) & 0x7FFFFFFF;
    const uint32_t nameDir = Get32(good, rsrc + typeDir + 20) & 0x7FFFFFFF;
    const uint32_t dataEntry = Get32(good, rsrc + nameDir + 20);
    const std::pair<size_t, uint32_t> damages[] = {
        {field + 4, 0x80000000},                           // type entry points at the root
        {rsrc + typeDir + 20, 0x80000000 | typeDir},       // name entry points at its own directory
        {rsrc + nameDir + 20, 0x80000000},                 // language entry is a directory
        {rsrc + dataEntry + 4, 0x7FFFFFFF},                // data runs past the section
        {rsrc + 12, 0xFFFF0000 | Get16(good, rsrc + 12)},  // entry count past the section
        {field, 0xFFFFFFF0},                               // type name past the section
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
      const auto bytes = testing::ReadHostBytes(path);
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
  std::vector<Bytes> good = {FixtureFile("typelib/widgets.dll"), FixtureFile("pe/lookup.dll")};
  for (const char* name : {"stdole2.tlb", "stdole32.tlb"}) {
    if (auto path = testing::WineFile("x86_64", name)) good.push_back(testing::ReadHostBytes(*path));
  }
  // Changes in the first pages hit structure; the rest of a real image is mostly code.
  testing::ExpectRobust(Exercise, good, {.hotBytes = 0x1000, .savedInputs = "pe"});
}

TEST(VersionInfo, DecodesWellFormedBlocksAndRejectsMalformedOnes) {
  const Bytes image = FixtureFile("typelib/widgets.dll");
  auto parsed = PeImage::Parse(image);
  ASSERT_TRUE(parsed.ok());
  const auto resource = parsed->FindResource(kVersion, ResourceId::Number(1));
  ASSERT_TRUE(resource);
  const Bytes block(resource->begin(), resource->end());
  Bytes padded = block;
  padded.resize(padded.size() + 6, 0xEE);  // resources are padded past the block's own length
  EXPECT_EQ(FormatFileVersion(DecodeVersionInfo(padded)), "1.0.0.7");

  const std::pair<const char*, std::function<void(Bytes&)>> damages[] = {
      {"empty", [](Bytes& b) { b.clear(); }},
      {"length shorter than the fixed part", [](Bytes& b) { Set16(b, 0, 60); }},
      {"length longer than the bytes", [](Bytes& b) { Set16(b, 0, 0xFFFF); }},
      {"another key", [](Bytes& b) { b[6] = 'X'; }},
      {"wrong signature", [](Bytes& b) { b[40] ^= 1; }},
  };
  for (const auto& [what, damage] : damages) {
    Bytes bytes = block;
    damage(bytes);
    EXPECT_FALSE(DecodeVersionInfo(bytes)) << what;
  }
}

TEST(VersionInfo, ReadsTheVersionResourceOfImages) {
  testing::FakeFileSystem files;
  Bytes none = FixtureFile("typelib/widgets.dll");
  Put(files, "C:\\v\\pe32.dll", none);
  Set32(none, ResourceSection(none) + 24, 17);  // the version type renumbered
  Put(files, "C:\\v\\none.dll", none);
  // Resource 1 is preferred; without it the first one stored serves.
  Put(files, "C:\\v\\first.dll", FixtureFile("pe/lookup.dll"));
  Put(files, "C:\\v\\one.dll", FixtureFile("pe/lookup64.dll"));
  files.AddFile("C:\\v\\text.dll", "just text");

  PortableVersionResources versions(files);
  const std::pair<const char*, const char*> expected[] = {
      {"pe32.dll", "1.0.0.7"}, {"first.dll", "9.9.0.0"}, {"one.dll", "1.1.0.0"},
      {"none.dll", "0.0.0.0"}, {"text.dll", "0.0.0.0"},  {"missing.dll", "0.0.0.0"}};
  for (const auto& [name, version] : expected) {
    EXPECT_EQ(FormatFileVersion(versions.FileVersionOf(std::string("C:\\v\\") + name)), version) << name;
  }
}

// The library's name, or the error number of the load.
std::string Load(PortableTypeLibSource& source, const std::string& path) {
  auto library = source.Load(path);
  if (library.ok()) return library->name;
  // Whatever went wrong, the message says which file it concerns.
  const std::string file = path.substr(0, path.rfind('.'));
  EXPECT_NE(library.error().description.find(file), std::string::npos) << library.error().description;
  return std::to_string(library.error().number);
}

TEST(PortableTypeLibSource, FindsTheLibraryWhateverTheExtensionOrResourceNumber) {
  testing::FakeFileSystem files;
  const Bytes lookup = FixtureFile("pe/lookup.dll"), library = FixtureFile("typelib/widgets.tlb");
  files.AddFile("C:\\lib\\notes.tlb", "MSF not quite");
  Put(files, "C:\\lib\\lookup.dll", lookup);
  Put(files, "C:\\lib\\cut.dll", Bytes(lookup.begin(), lookup.begin() + 0x100));
  Put(files, "C:\\lib\\7\\12", library);  // all digits, in a folder: the number is the file's name
  Put(files, "C:\\lib\\bare.txt", library);
  Put(files, "C:\\lib\\wrapped.tlb", FixtureFile("typelib/widgets.dll"));

  PortableTypeLibSource source(files);
  const std::string notALibrary = std::to_string(rt::errnum::kNotATypeLibrary);
  const std::string cantLoad = std::to_string(rt::errnum::kCantLoadTypeLibrary);
  const std::pair<const char*, std::string> loads[] = {
      {"C:\\lib\\missing.tlb", std::to_string(rt::errnum::kFileNotFound)},
      {"C:\\lib\\notes.tlb", notALibrary},
      {"C:\\lib\\lookup.dll\\2", notALibrary},
      {"C:\\lib\\lookup.dll\\99999999999999999999", notALibrary},
      // There is a library, but it cannot be decoded.
      {"C:\\lib\\lookup.dll", cantLoad},
      {"C:\\lib\\cut.dll", cantLoad},
      {"C:\\lib\\lookup.dll\\4", "Widgets"},
      {"C:\\lib\\lookup.dll\\004", "Widgets"},
      {"C:\\lib\\7\\12", "Widgets"},
      {"C:\\lib\\bare.txt", "Widgets"},
      {"C:\\lib\\wrapped.tlb", "Widgets"},
  };
  for (const auto& [path, expected] : loads) EXPECT_EQ(Load(source, path), expected) << path;
}

}  // namespace
}  // namespace sentrune::portable
