// The SLTG reader on damaged copies of the committed sample libraries and on
// small libraries written here in shapes the samples do not hold (what it
// reads from the samples as they are is checked in projection_test.cpp).
// Damaged files give the "can't load" error saying what is wrong, never a
// crash, a hang or an allocation the size cannot justify.
#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "platform/tlb/sltg_help.h"
#include "platform/tlb/sltg_reader.h"
#include "tlb_test_files.h"
#include "runtime/vb_error.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using Bytes = std::vector<uint8_t>;
using testing::Get16, testing::Get32, testing::Set16, testing::FindText;

// The sample's type infos, in order.
enum Position : int32_t { kColors, kPoint, kIWidget, kWidget, kIWidgetEvents, kHandle, kWidgetRef, kConstants };

Bytes Fixture(const char* name) { return testing::FixtureFile(std::string("sltg/") + name); }

RawLibrary Read(const Bytes& bytes) {
  auto result = ReadSltg(bytes);
  EXPECT_TRUE(result.ok()) << (result.ok() ? "" : result.error().description);
  return result.ok() ? std::move(result).value() : RawLibrary{};
}

// A minimal writer: one interface whose functions take parameters of the
// given type words, for shapes the samples do not hold.
struct Func {
  std::string name;
  std::vector<std::pair<std::string, std::vector<uint16_t>>> params;
};

struct Out {
  Bytes b;
  void U8(size_t v) { b.push_back(static_cast<uint8_t>(v)); }
  void U16(size_t v) { U8(v), U8(v >> 8); }
  void U32(size_t v) { U16(v & 0xFFFF), U16(v >> 16); }
  void Words(std::initializer_list<size_t> words) { for (size_t w : words) U16(w); }
  void Text(std::string_view text) { b.insert(b.end(), text.begin(), text.end()); }
  void Fill(size_t count, uint8_t v) { b.insert(b.end(), count, v); }
  void Append(const Out& more) { b.insert(b.end(), more.b.begin(), more.b.end()); }
};

Bytes BuildInterface(const std::vector<Func>& funcs) {
  constexpr uint16_t kNone = 0xFFFF;
  Out names;  // entries: 8 bytes of hash links, then the name
  std::map<std::string, size_t> named;
  auto name = [&](const std::string& text) -> size_t {
    if (text.empty()) return kNone;
    auto [found, added] = named.try_emplace(text, names.b.size());
    if (added) names.Fill(8, 0xFF), names.Text(text), names.Fill(2 - text.size() % 2, 0);
    return found->second;
  };
  name("Lib");
  Out m;  // function records, each followed by its parameters
  for (size_t i = 0; i < funcs.size(); ++i) {
    const Func& f = funcs[i];
    const size_t args = m.b.size() + 22;
    size_t size = 0;
    for (const auto& [_, words] : f.params) size += 2 + 2 * words.size();
    m.Words({0x124C, i + 1 < funcs.size() ? args + size : kNone, name(f.name), 0, 0, 0, kNone, args});
    m.U8(f.params.size() << 3 | 4), m.U8(0x80);
    m.Words({vt::kHresult, 0});
    for (const auto& [param, words] : f.params) {
      m.U16(name(param) + 1);  // the second letter: the type follows
      for (uint16_t word : words) m.U16(word);
    }
  }
  Out type;
  type.U16(0x0501);
  for (uint32_t word : {0xFFFFFFFFu, 0xFFFFFFFFu, 0x22u, 0xFFFFFFFFu, 0u, 0xFFFE0000u}) type.U32(word);
  type.U8(2), type.U8(0), type.U8(2), type.U8(static_cast<uint8_t>(TypeKind::kInterface)), type.U32(0);
  type.Words({1, kNone}), type.U8(1), type.U32(m.b.size());
  type.Append(m);
  type.Words({funcs.size(), 0, 0, 0, funcs.empty() ? size_t{kNone} : 0u, kNone, kNone, 0, 0, 0, kNone, kNone, 0, 0,
              0, 0, 0, 4, 0, 0, 0, kNone, kNone, kNone, kNone, 0, 0});
  Out library;
  library.Words({0x51CC, 3, 0, kNone, kNone, kNone, 0, 0, 1, 0x409, 0, 0, 0, 1, 0});
  library.Fill(16 + 0x40, 0xFF);
  library.U16(1);
  library.U16(10), library.Text("AAAAAAAAAA");
  library.Words({kNone, kNone, name("I"), 0, kNone, 0, 0, kNone});
  library.Fill(16, 0), library.U16(static_cast<uint16_t>(TypeKind::kInterface));
  library.U32(library.b.size() + 10), library.U16(1), library.U32(0);  // no help tree
  library.Words({0xFFFF, 1, 2, 0xFF00, 0xFFFF, 0xFFFF});
  library.Fill(0x200, 0xFF);
  library.U32(names.b.size()), library.Append(names), library.U32(0x01FFFF01), library.U32(0);

  Out out;
  out.Text("SLTG");
  out.Words({3, 9, 13, 1});
  out.Fill(16, 0), out.U32(0x44), out.U32(0xFFFF0000);
  out.U32(type.b.size()), out.Words({13, 2}), out.U32(library.b.size()), out.Words({9, 0});
  out.Text(std::string_view("\1CompObj\0dir\0AAAAAAAAAA\0", 24));
  out.Fill(9, 0);
  out.Append(type), out.Append(library);
  return out.b;
}

// Where each block lies, in directory order.
struct Layout {
  std::vector<size_t> start, length;
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

void ExpectFailure(const Bytes& bytes, std::string_view reason) {
  auto raw = ReadSltg(bytes);
  ASSERT_FALSE(raw.ok()) << "expected: " << reason;
  EXPECT_EQ(raw.error().number, rt::errnum::kCantLoadTypeLibrary);
  EXPECT_NE(raw.error().description.find(reason), std::string::npos) << raw.error().description;
}

TEST(SltgRobustness, NamesTheDefectOfADamagedFile) {
  const Bytes good = Fixture("sample.tlb");
  const Layout layout = LayoutOf(good);
  const size_t typeCount = FindText(good, std::string(0x40, '\xFF'), layout.library()) + 0x40;
  const size_t firstFunc = layout.typeMembers(good, kIWidget) + Get16(good, layout.typeTail(kIWidget) + 8);
  const std::pair<std::function<void(Bytes&)>, const char*> damages[] = {
      {[](Bytes& b) { b[0] = 'M'; }, "does not start with \"SLTG\""},
      {[](Bytes& b) { Set16(b, 0x24 + 8 + 6, 2); }, "the block chain loops"},  // block 2 is its own next
      {[](Bytes& b) { Set16(b, 0x0A, 99); }, "names entry 99"},
      {[](Bytes& b) { b[FindText(b, "AAAAAAAAAA")] = 'Z'; }, "names the block \"AAAAAAAAAA\", which is missing or taken"},
      {[&](Bytes& b) { Set16(b, layout.library(), 0x1234); }, "is not the library block"},
      {[&](Bytes& b) { Set16(b, typeCount, 0xFFFF); }, "65535 type infos do not fit"},
      {[&](Bytes& b) { Set16(b, layout.start[kColors], 0x0777); }, "is not a type info"},
      {[&](Bytes& b) { b[layout.start[kPoint] + 0x1D] = 9; }, "unknown type kind 9"},
      {[&](Bytes& b) { b[firstFunc] = 0x11; }, "unknown function kind 0x11"},
      {[&](Bytes& b) { Set16(b, layout.typeTail(kIWidget), 0xFFFF); }, "65535 functions do not fit"},
      {[&](Bytes& b) { b[layout.typeMembers(good, kColors)] = 0x0B; }, "unknown variable kind 0xB"},
      {[](Bytes& b) { b[FindText(b, "*\\Rffff*#") + 2] = 'X'; }, "is not of the form *\\R<lib>*#<n>"},
      {[](Bytes& b) { b[FindText(b, "*\\G{") + 3] = '('; }, "is not of the form *\\G{guid}"},
      {[&](Bytes& b) { Set16(b, layout.typeTail(kWidgetRef) + 0x14, 0x7FF0); }, "outside the member area"},
  };
  for (const auto& [damage, reason] : damages) {
    Bytes bytes = good;
    damage(bytes);
    ExpectFailure(bytes, reason);
  }
}

TEST(SltgRobustness, LimitsHowDeepATypeNestsAndHowOftenARecordIsShared) {
  const auto nested = [](size_t depth) {  // a parameter behind `depth` pointers
    std::vector<uint16_t> words(depth, vt::kPtr);
    words.push_back(vt::kI4);
    return BuildInterface({{"Get", {{"p", words}}}});
  };
  EXPECT_EQ(Read(nested(30)).types.at(0).funcs.at(0).params.at(0).name, "p");
  ExpectFailure(nested(40), "nests deeper than 32 levels");

  // Records may share bytes, so a small file could describe a huge library:
  // here 2000 functions each claim the same list of 31 parameters.
  std::vector<Func> funcs(2000);
  for (int i = 0; i < 31; ++i) funcs[0].params.push_back({"p" + std::to_string(i), {vt::kI4}});
  Bytes bytes = BuildInterface(funcs);
  ASSERT_EQ(Read(bytes).types.at(0).funcs.size(), 2000u);

  const Layout layout = LayoutOf(bytes);
  const size_t members = layout.typeMembers(bytes, 0);
  const size_t first = members + Get16(bytes, layout.typeTail(0) + 8);
  for (size_t func = members + Get16(bytes, first + 2); func != members + 0xFFFF;
       func = members + Get16(bytes, func + 2)) {
    Set16(bytes, func + 0x0E, Get16(bytes, first + 0x0E));
    bytes[func + 0x10] = bytes[first + 0x10];
  }
  ExpectFailure(bytes, "more often than its size justifies");
}

TEST(SltgRobustness, DamagedSamplesDecodeOrFailCleanly) {
  const auto seen = testing::ExpectRobust(testing::DecodeAndProject(ReadSltg),
                                          {Fixture("sample.tlb"), Fixture("sample-variant.tlb")},
                                          {.rounds = 1500, .maxChanges = 4, .savedInputs = "sltg"});
  // Most changed bytes land in data no reader checks (names, help bits,
  // reserved fields); a fair share must still be caught.
  EXPECT_GT(seen.changedRefused, 100);
}

std::string DecodeHelp(const Bytes& tree, const Bytes& bits, uint64_t budgetUnits = 1 << 20) {
  sltg::Budget budget(budgetUnits);
  sltg::HelpDecoder decoder(sltg::Region(ByteReader(tree), "help tree"), budget);
  return decoder.Decode(ByteReader(bits));
}

// Each byte is followed from its highest bit; hostile trees stop or fail.
TEST(SltgHelpStrings, DecodesBitsThroughTheTree) {
  // Root: the 1-branch is the leaf "alpha"; the 0-branch (at 10) is a node
  // whose 1-branch is "caf\xE9" and whose 0-branch (at 19) ends the string.
  // Codes: alpha 1, café 01, end 00.
  const Bytes tree = {0x80, 0x00, 0x0A, 0x00, 'a', 'l', 'p', 'h', 'a', 0x00,
                      0x80, 0x00, 0x13, 0x00, 'c', 'a', 'f', 0xE9, 0x00, 0x00, 0x00};
  EXPECT_EQ(DecodeHelp(tree, {0x68}), "caf\xC3\xA9 alpha caf\xC3\xA9");  // 01 1 01 00
  // Running out of bits ends the string as the end word does.
  EXPECT_EQ(DecodeHelp(tree, {0xFF}), "alpha alpha alpha alpha alpha alpha alpha alpha");
  EXPECT_EQ(DecodeHelp({}, {0x68}), "");  // a library without a tree

  // A 0-branch back to the root spends every bit without a word.
  const Bytes loop = {0x80, 0x00, 0x00, 0x00, 'w', 0x00};
  const Bytes zeros(4096, 0);
  EXPECT_EQ(DecodeHelp(loop, zeros), "");
  EXPECT_THROW(DecodeHelp(loop, zeros, 1000), sltg::SltgError);  // more bits than the budget allows
  // A tree that is one leaf gives its word once, not forever.
  EXPECT_EQ(DecodeHelp({0x00, 'o', 'n', 'e', 0x00}, zeros), "one");
  // Branches and words must stay inside the tree.
  EXPECT_THROW(DecodeHelp({0x80, 0x7F, 0xFF}, zeros), sltg::SltgError);
  EXPECT_THROW(DecodeHelp({0x80, 0x00, 0x00, 0x00, 'w'}, {0xFF}), sltg::SltgError);
}

}  // namespace
}  // namespace sentrune::portable
