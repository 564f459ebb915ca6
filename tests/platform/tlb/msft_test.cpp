// The MSFT reader on the compiled fixture changed in place (values and
// damage no compiler writes: real, currency and 64-bit constants, cyclic or
// endless descriptor chains, records that overrun their block), on every
// real library at hand, and on truncated, flipped and fuzzer-found bytes (run
// under the sanitizers for full effect). What it reads from the fixtures as
// they are is checked in projection_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "tlb_test_files.h"
#include "platform/pe/pe_image.h"

namespace sentrune::portable {
namespace {

namespace fs = std::filesystem;
namespace vt = platform::vt;
using platform::TlbValue;
using testing::Get32;
using testing::Set32;
using Bytes = std::vector<uint8_t>;

// Where the parts of widgets.tlb lie. It has no help DLL word, so the segment
// directory follows the type info offsets; widl writes each type's first
// member record first. _Widget's first function has one parameter.
constexpr size_t kWidget = 0, kColors = 2;
size_t Directory(const Bytes& b) { return 0x54 + 4 * Get32(b, 0x20); }
size_t Segment(const Bytes& b, int index) { return Get32(b, Directory(b) + 16 * index); }
size_t TypeInfo(const Bytes& b, size_t type) { return Segment(b, 0) + Get32(b, 0x54 + 4 * type); }
size_t FirstRecord(const Bytes& b, size_t type) { return Get32(b, TypeInfo(b, type) + 4) + 4; }
// The string default of _Widget.Configure: VT, length, characters.
size_t StoredString(const Bytes& b) { return testing::FindText(b, "He said") - 6; }

Bytes Widgets() { return testing::FixtureFile("typelib/widgets.tlb"); }

template <typename T>
Bytes Raw(T value) {
  Bytes bytes(sizeof(T));
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

// A value reference and, for a stored value, what it points at.
struct ValueRef {
  int32_t ref;
  uint16_t vt = 0;
  Bytes payload = {};
};
ValueRef Stored(uint16_t type, Bytes payload) { return {0, type, std::move(payload)}; }
// Packs the VT into bits 26-30 and the value into the low 26 bits.
ValueRef Packed(uint16_t type, uint32_t bits) {
  return {static_cast<int32_t>(0x80000000u | (uint32_t{type} << 26) | (bits & 0x03FFFFFF))};
}

// The first WidgetColors constant as decoded with the given value; a stored
// one takes the place of the string default, whose slot is big enough.
TlbValue DecodeConstant(const ValueRef& value) {
  Bytes b = Widgets();
  const size_t slot = StoredString(b);
  int32_t ref = value.ref;
  if (ref >= 0) {
    testing::Set16(b, slot, value.vt);
    std::copy(value.payload.begin(), value.payload.end(), b.begin() + static_cast<ptrdiff_t>(slot) + 2);
    ref = static_cast<int32_t>(slot - Segment(b, 11));
  }
  Set32(b, FirstRecord(b, kColors) + 16, static_cast<uint32_t>(ref));
  auto library = ReadMsft(b);
  if (!library.ok()) ADD_FAILURE() << library.error().description;
  return library.ok() ? library->types.at(kColors).vars.at(0).value.value_or(TlbValue{}) : TlbValue{};
}

TEST(MsftValues, StoredValuesOfEveryKind) {
  const Bytes text = {4, 0, 0, 0, 0x80, ' ', 0xE9, '"'};  // its length, then cp1252
  const std::pair<ValueRef, TlbValue> cases[] = {
      {Stored(vt::kR4, Raw(1.5f)), {vt::kR4, 0, 1.5, ""}},
      {Stored(vt::kR8, Raw(-2.25)), {vt::kR8, 0, -2.25, ""}},
      {Stored(vt::kCy, Raw(int64_t{125000})), {vt::kCy, 125000, 0, ""}},  // 12.5 scaled by 10000
      {Stored(vt::kI8, Raw(int64_t{-5000000000})), {vt::kI8, -5000000000, 0, ""}},
      {Stored(vt::kUI4, Raw(uint32_t{0xFFFFFFFF})), {vt::kUI4, 4294967295, 0, ""}},
      {Stored(vt::kI1, Raw(int8_t{-3})), {vt::kI1, -3, 0, ""}},
      {Stored(vt::kError, Raw(uint32_t{0x800A0005})), {vt::kError, -2146828283, 0, ""}},
      {Stored(vt::kBstr, text), {vt::kBstr, 0, 0, "\xE2\x82\xAC \xC3\xA9\""}},
      {Stored(vt::kBstr, Raw(int32_t{-1})), {vt::kBstr, 0, 0, ""}},  // a null string
      {Stored(vt::kEmpty, {}), {vt::kEmpty, 0, 0, ""}},
      // Packed values are sign-extended by their type.
      {Packed(vt::kI2, 0x03FFFFFB), {vt::kI2, -5, 0, ""}},  // -5 in 26 bits
      {Packed(vt::kI2, 0xFFFB), {vt::kI2, -5, 0, ""}},      // -5 in 16 bits
      {Packed(vt::kUI2, 40000), {vt::kUI2, 40000, 0, ""}},
      {Packed(vt::kI4, 100000), {vt::kI4, 100000, 0, ""}},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(DecodeConstant(value), expected) << value.vt;
}

// The error description, or "" when the bytes decoded.
std::string Failure(const Bytes& bytes) {
  auto library = ReadMsft(bytes);
  if (library.ok()) return "";
  EXPECT_EQ(library.error().number, rt::errnum::kCantLoadTypeLibrary);
  return library.error().description;
}

// Each defect is an error that says what is wrong.
TEST(MsftDamage, BrokenContainersRecordsAndValuesAreErrors) {
  const Bytes good = Widgets();
  const size_t record = FirstRecord(good, kWidget), string = StoredString(good);
  auto damaged = [&](size_t at, uint32_t value) {
    Bytes bytes = good;
    Set32(bytes, at, value);
    return bytes;
  };
  // The descriptor table moved to the end and made a chain of 100 pointers,
  // which the first function returns the end of.
  const size_t descriptors = Directory(good) + 9 * 16;
  Bytes deep = damaged(descriptors, static_cast<uint32_t>(good.size()));
  Set32(deep, descriptors + 4, 8 * 100);
  deep.resize(good.size() + 8 * 100);
  for (uint32_t i = 0; i < 100; ++i) {
    Set32(deep, good.size() + 8 * i, 0x7FFE0000 | vt::kPtr);
    Set32(deep, good.size() + 8 * i + 4, i == 0 ? 0x80000000 | vt::kI4 : 8 * (i - 1));
  }
  Set32(deep, record + 4, 8 * 99);

  const std::pair<Bytes, const char*> cases[] = {
      {{}, "shorter than an MSFT header"},
      {damaged(0, 0x5846534D), "MSFT"},
      {damaged(0x20, 0x40000000), "type info count"},
      {damaged(Directory(good) + 12, 0), "segment directory"},  // the first entry's marker word
      {damaged(Directory(good) + 7 * 16 + 4, 0x7FFFFFF0), "name table lies outside"},
      {Bytes(good.begin(), good.end() - 8), "members lie outside"},
      {damaged(record, 8), "bad size 8"},
      {damaged(record + 20, 50), "cannot hold 50 parameters"},                // in a 44-byte record
      {damaged(record + 44 - 12 + 4, 0x00FFFFF0), "outside the name table"},  // the parameter's name
      {damaged(TypeInfo(good, kWidget), 9), "unknown kind 9"},
      {damaged(string + 2, 0xFFFFFFF0), "negative length"},
      {damaged(string, vt::kVariant), "unsupported type 12"},
      // A chain deeper than any declaration is refused instead of recursing on.
      {deep, "nest too deeply"},
      {damaged(record + 4, 3), "not an entry"},  // a return type between descriptors
  };
  for (const auto& [bytes, reason] : cases) EXPECT_NE(Failure(bytes).find(reason), std::string::npos) << reason;
}

TEST(MsftDamage, TypeInfosCannotShareMoreMembersThanTheFileHolds) {
  Bytes bytes = Widgets();
  // Every type info given _Widget's 22 functions: seven copies are more than the file holds.
  for (size_t type = 1; type < 7; ++type) {
    for (size_t field : {0x04, 0x18}) {  // the member block; the function and variable counts
      Set32(bytes, TypeInfo(bytes, type) + field, Get32(bytes, TypeInfo(bytes, kWidget) + field));
    }
  }
  EXPECT_NE(Failure(bytes).find("type infos share member records"), std::string::npos);
}

// Defects the system's loader also tolerates give a library whose broken
// parts stay unresolved.
TEST(MsftDamage, CyclicDescriptorsAndAMisplacedHelpDllWordAreTolerated) {
  const Bytes good = Widgets();
  Bytes cyclic = good;
  Set32(cyclic, Segment(good, 9) + 16 + 4, 16);  // the pointer to stdole's Font points to itself
  auto library = ReadMsft(cyclic);
  ASSERT_TRUE(library.ok()) << library.error().description;
  const platform::TlbLibrary projected = ProjectLibrary(*library);
  const auto& functions = projected.types.at(kWidget).functions;
  const auto font = std::find_if(functions.begin(), functions.end(), [](const auto& f) { return f.name == "Font"; });
  ASSERT_NE(font, functions.end());
  EXPECT_EQ(font->type, (platform::TlbType{vt::kUserDefined | vt::kByRefFlag, ""}));

  // The header announces a help DLL, and the word that follows the header is
  // missing, or there with every offset after it moved on.
  Bytes absent = good;
  Set32(absent, 0x14, Get32(good, 0x14) | 0x100);
  Bytes present = absent;
  present.insert(present.begin() + 0x54, 4, 0xFF);
  for (int i = 0; i < 15; ++i) {
    const size_t entry = Directory(good) + 4 + 16 * i;
    if (Get32(present, entry) != 0xFFFFFFFF) Set32(present, entry, Get32(present, entry) + 4);
  }
  for (size_t type = 0; type < 7; ++type) {
    const size_t at = Segment(good, 0) + 4 + Get32(good, 0x54 + 4 * type) + 4;
    Set32(present, at, Get32(present, at) + 4);
  }
  const auto expected = testing::Facts(testing::DecodeFixture("typelib/widgets.tlb"));
  for (const Bytes& bytes : {absent, present}) {
    auto read = ReadMsft(bytes);
    ASSERT_TRUE(read.ok()) << read.error().description;
    EXPECT_EQ(testing::Facts(*read), expected);
  }
}

// Decodes every MSFT library in the TYPELIB resources of `files`; returns how many there were.
size_t DecodeAll(const std::vector<fs::path>& files) {
  size_t count = 0;
  const auto type = ResourceId::Named(kTypeLibResourceType);
  for (const fs::path& file : files) {
    const auto bytes = testing::ReadHostBytes(file);
    if (!PeImage::LooksLikePe(bytes)) continue;
    auto image = PeImage::Parse(bytes);
    if (!image.ok()) continue;
    for (const ResourceId& name : image->ResourceNames(type)) {
      auto data = image->FindResource(type, name);
      if (!data || data->size() < 4 || !std::equal(data->begin(), data->begin() + 4, "MSFT")) continue;
      ++count;
      const std::string label = file.filename().string() + "\\" + name.ToString();
      auto raw = ReadMsft(*data);
      if (!raw.ok()) {
        ADD_FAILURE() << label << ": " << raw.error().description;
        continue;
      }
      EXPECT_FALSE(raw->name.empty()) << label;
      EXPECT_EQ(ProjectLibrary(*raw).types.size(), raw->types.size()) << label;
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
  const std::vector<fs::path> files = testing::CorpusFiles({".dll", ".ocx", ".cmp"});
  if (files.empty()) GTEST_SKIP() << "the VB6 corpus is not present";
  EXPECT_GE(DecodeAll(files), files.size());  // every component carries at least one library
}

TEST(MsftRobustness, DamagedFixturesDecodeOrFailCleanly) {
  std::vector<Bytes> good;
  for (const char* name : {"widgets.tlb", "shapes.tlb", "widgets64.tlb"}) {
    good.push_back(testing::FixtureFile(std::string("typelib/") + name));
  }
  const auto seen = testing::ExpectRobust(testing::DecodeAndProject(ReadMsft), good, {.savedInputs = "msft"});
  EXPECT_GT(seen.changedRead, 0);  // most changes hit names, strings or padding
}

}  // namespace
}  // namespace sentrune::portable
