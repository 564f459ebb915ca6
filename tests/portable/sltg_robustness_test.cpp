// Damaged and hostile SLTG files: each defect gives the "can't load" error
// with a description of what is wrong, never a crash, a hang or an
// allocation the file's size cannot justify.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "platform/portable/sltg_reader.h"
#include "platform/portable/typelib_projection.h"
#include "portable/sltg_test_support.h"
#include "runtime/vb_error.h"

namespace sentrune::portable::testing {
namespace {

using Bytes = std::vector<uint8_t>;

uint16_t Get16(const Bytes& bytes, size_t at) { return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8); }
uint32_t Get32(const Bytes& bytes, size_t at) { return Get16(bytes, at) | static_cast<uint32_t>(Get16(bytes, at + 2)) << 16; }
void Put16(Bytes& bytes, size_t at, uint16_t value) {
  bytes[at] = static_cast<uint8_t>(value);
  bytes[at + 1] = static_cast<uint8_t>(value >> 8);
}

// Where the writer put each block: in directory order, which is file order
// unless the directory is reversed.
struct Layout {
  std::vector<size_t> start;
  std::vector<size_t> length;
  size_t typeTail(size_t type) const { return start[type] + length[type] - 0x36; }
  size_t typeMembers(const Bytes& bytes, size_t type) const {
    return start[type] + Get32(bytes, start[type] + 0x0A) + 9;
  }
  size_t library() const { return start.back(); }
};

Layout LayoutOf(const Bytes& bytes) {
  const size_t entries = Get16(bytes, 4) - 1u;
  size_t at = 0x24 + entries * 8 + 13 + 11 * (entries - 1) + 9;
  Layout layout;
  for (size_t i = 0; i < entries; ++i) {
    layout.start.push_back(at);
    layout.length.push_back(Get32(bytes, 0x24 + i * 8));
    at += layout.length.back();
  }
  return layout;
}

size_t Find(const Bytes& bytes, std::string_view text, size_t from = 0) {
  const Bytes pattern(text.begin(), text.end());
  const auto found =
      std::search(bytes.begin() + static_cast<ptrdiff_t>(from), bytes.end(), pattern.begin(), pattern.end());
  EXPECT_NE(found, bytes.end()) << text;
  return static_cast<size_t>(found - bytes.begin());
}

// Reads and, when that works, projects: neither may crash, and a failure must
// be the "can't load" error with a description.
bool ReadsOrFailsCleanly(const Bytes& bytes) {
  auto raw = ReadSltg(bytes);
  if (raw.ok()) {
    (void)ProjectLibrary(raw.value());
    return true;
  }
  EXPECT_EQ(raw.error().number, rt::errnum::kCantLoadTypeLibrary);
  EXPECT_FALSE(raw.error().description.empty());
  return false;
}

void ExpectFailure(const Bytes& bytes, std::string_view reason) {
  auto raw = ReadSltg(bytes);
  ASSERT_FALSE(raw.ok()) << "expected: " << reason;
  EXPECT_EQ(raw.error().number, rt::errnum::kCantLoadTypeLibrary);
  EXPECT_NE(raw.error().description.find(reason), std::string::npos) << raw.error().description;
}

TEST(SltgRobustness, NamesTheDefectOfADamagedContainer) {
  const Bytes good = BuildSltg(SampleLibrary());
  const Layout layout = LayoutOf(good);

  Bytes bytes = good;
  bytes[0] = 'M';
  ExpectFailure(bytes, "does not start with \"SLTG\"");

  bytes = good;
  Put16(bytes, 0x24 + 8 + 6, 2);  // the second block names itself as the next
  ExpectFailure(bytes, "the block chain loops");

  bytes = good;
  Put16(bytes, 0x0A, 99);
  ExpectFailure(bytes, "names entry 99");

  bytes = good;
  Put16(bytes, 0x24 + 4, 0xFFF0);  // an index name far outside the file
  ExpectFailure(bytes, "outside the index names");

  bytes = good;
  bytes[Find(bytes, "AAAAAAAAAA")] = 'Z';  // the first block's index name
  ExpectFailure(bytes, "names the block \"AAAAAAAAAA\", which is missing or taken");

  bytes = good;
  Put16(bytes, layout.library(), 0x1234);
  ExpectFailure(bytes, "is not the library block");

  bytes = good;
  const size_t count = Find(bytes, std::string(0x40, '\xFF'), layout.library()) + 0x40;
  Put16(bytes, count, 0xFFFF);
  ExpectFailure(bytes, "65535 type infos do not fit");
}

TEST(SltgRobustness, NamesTheDefectOfADamagedTypeInfo) {
  const Bytes good = BuildSltg(SampleLibrary());
  const Layout layout = LayoutOf(good);

  Bytes bytes = good;
  Put16(bytes, layout.start[kColors], 0x0777);
  ExpectFailure(bytes, "is not a type info");

  bytes = good;
  bytes[layout.start[kPoint] + 0x1D] = 9;
  ExpectFailure(bytes, "unknown type kind 9");

  bytes = good;
  const size_t firstFunc = layout.typeMembers(good, kIWidget) + Get16(good, layout.typeTail(kIWidget) + 8);
  bytes[firstFunc] = 0x11;
  ExpectFailure(bytes, "unknown function kind 0x11");

  bytes = good;
  Put16(bytes, layout.typeTail(kIWidget), 0xFFFF);
  ExpectFailure(bytes, "65535 functions do not fit");

  bytes = good;
  bytes[layout.typeMembers(good, kColors)] = 0x0B;
  ExpectFailure(bytes, "unknown variable kind 0xB");

  bytes = good;
  bytes[Find(bytes, "*\\Rffff*#") + 2] = 'X';
  ExpectFailure(bytes, "is not of the form *\\R<lib>*#<n>");

  bytes = good;
  bytes[Find(bytes, "*\\G{") + 3] = '(';
  ExpectFailure(bytes, "is not of the form *\\G{guid}");

  bytes = good;
  Put16(bytes, layout.typeTail(kWidgetRef) + 0x14, 0x7FF0);  // the alias's type far away
  ExpectFailure(bytes, "outside the member area");
}

TEST(SltgRobustness, LimitsHowDeepATypeNests) {
  SltgType deep = Vt(platform::vt::kI4);
  for (int i = 0; i < 40; ++i) deep = Ptr(deep);
  SltgLibrary library = SampleLibrary();
  library.types[kPoint].vars[0].type = deep;
  ExpectFailure(BuildSltg(library), "nests deeper than 32 levels");

  SltgType fine = Vt(platform::vt::kI4);
  for (int i = 0; i < 30; ++i) fine = Ptr(fine);
  library.types[kPoint].vars[0].type = fine;
  EXPECT_TRUE(ReadSltg(BuildSltg(library)).ok());
}

// Records may share bytes, so a small file could describe a huge library:
// here 2000 functions each claim the same list of 31 parameters.
TEST(SltgRobustness, RefusesToAmplifySharedRecords) {
  SltgTypeInfo type{"IMany", "", "", TypeKind::kInterface, 0, 0, {}, {}, {}, {}};
  SltgFunc wide;
  for (int i = 0; i < 31; ++i) wide.params.push_back(SltgParam{"p" + std::to_string(i), 1, Vt(3), false});
  type.funcs.assign(2000, SltgFunc{});
  type.funcs[0] = wide;
  SltgLibrary library;
  library.name = "Many";
  library.types = {type};
  Bytes bytes = BuildSltg(library);
  ASSERT_TRUE(ReadSltg(bytes).ok());

  const Layout layout = LayoutOf(bytes);
  const size_t members = layout.typeMembers(bytes, 0);
  const size_t first = members + Get16(bytes, layout.typeTail(0) + 8);
  for (size_t func = members + Get16(bytes, first + 2); func != members + 0xFFFF;
       func = members + Get16(bytes, func + 2)) {
    Put16(bytes, func + 0x0E, Get16(bytes, first + 0x0E));
    bytes[func + 0x10] = bytes[first + 0x10];
  }
  ExpectFailure(bytes, "more often than its size justifies");
}

TEST(SltgRobustness, FailsCleanlyAtEveryTruncation) {
  const Bytes good = BuildSltg(SampleLibrary());
  const Layout layout = LayoutOf(good);
  // Everything up to the end of the library block is needed; what follows
  // it is not read.
  const size_t needed = layout.library() + layout.length.back() - 8;
  for (size_t size = 0; size < good.size(); size += 97) {
    SCOPED_TRACE("truncated to " + std::to_string(size));
    const bool read = ReadsOrFailsCleanly(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(size)));
    if (size < needed) {
      EXPECT_FALSE(read);
    }
  }
}

TEST(SltgRobustness, SurvivesRandomByteChanges) {
  SltgLibrary variant = SampleLibrary();
  variant.longNameTableHeader = true;
  for (const Bytes& good : {BuildSltg(SampleLibrary()), BuildSltg(variant)}) {
    std::mt19937 random(20240611);
    std::uniform_int_distribution<size_t> position(0, good.size() - 1);
    std::uniform_int_distribution<int> value(0, 255), changes(1, 4);
    int failures = 0;
    for (int round = 0; round < 1500; ++round) {
      Bytes bytes = good;
      for (int i = changes(random); i > 0; --i) bytes[position(random)] = static_cast<uint8_t>(value(random));
      if (!ReadsOrFailsCleanly(bytes)) ++failures;
    }
    // Most changed bytes land in data no reader checks (names, help bits,
    // reserved fields); a fair share must still be caught.
    EXPECT_GT(failures, 50);
  }
}

TEST(SltgRobustness, FuzzFindingsStayFixed) {
  const std::filesystem::path folder =
      std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests" / "fixtures" / "fuzz" / "sltg";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no fuzz findings recorded";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    SCOPED_TRACE(entry.path().filename().string());
    std::ifstream in(entry.path(), std::ios::binary);
    ReadsOrFailsCleanly(Bytes((std::istreambuf_iterator<char>(in)), {}));
  }
}

}  // namespace
}  // namespace sentrune::portable::testing
