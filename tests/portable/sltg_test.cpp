// SLTG libraries written from a description and read back; damaged ones give
// the "can't load" error saying what is wrong, never a crash, a hang or an
// allocation the file's size cannot justify.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include "platform/portable/sltg_help.h"
#include "platform/portable/sltg_reader.h"
#include "platform/portable/typelib_projection.h"
#include "portable/pe_builder.h"
#include "portable/sltg_builder.h"
#include "runtime/vb_error.h"

namespace sentrune::portable::testing {
namespace {

namespace vt = platform::vt;
using Bytes = std::vector<uint8_t>;
using sentrune::testing::Get16, sentrune::testing::Get32, sentrune::testing::Set16;
using V = platform::TlbValue;

enum Position : int32_t { kColors, kPoint, kIWidget, kWidget, kIWidgetEvents, kHandle, kWidgetRef, kConstants };

SltgParam Param(std::string name, uint16_t flags, SltgType type, bool elsewhere = false) {
  return {std::move(name), flags, std::move(type), elsewhere};
}
SltgVar Const(int32_t id, std::string name, V value) {
  return {.memberId = id, .name = std::move(name), .varKind = 2, .type = Vt(value.vt), .value = value};
}
SltgVar Field(std::string name, SltgType type, std::string help = "") {
  return {.name = std::move(name), .help = std::move(help), .type = std::move(type)};
}
SltgFunc Method(int32_t id, std::string name, uint8_t invokeKind, uint16_t slot, std::vector<SltgParam> params) {
  return {.memberId = id, .name = std::move(name), .invokeKind = invokeKind, .vtableOffset = slot,
          .params = std::move(params)};
}

// One type info of every kind (in the order of Position): an enum, a record
// with arrays, a dual interface over stdole's IDispatch, a coclass, a
// dispinterface, two aliases and a module of constants.
SltgLibrary SampleLibrary() {
  SltgTypeInfo colors{"Colors", "Palette colours of a widget", "", TypeKind::kEnum};
  colors.vars = {Const(0, "clrRed", V{vt::kI4, 0, 0, ""}), Const(1, "clrGreen", V{vt::kI4, 0xFFFF, 0, ""}),
                 Const(2, "clrHuge", V{vt::kI4, 100000, 0, ""}), Const(3, "clrNone", V{vt::kI4, -1, 0, ""})};
  colors.vars[1].help = "The green one";
  SltgTypeInfo point{"Point", "", "", TypeKind::kRecord};
  point.vars = {Field("x", Vt(vt::kI4)), Field("y", Vt(vt::kI4), "Vertical position"),
                Field("tags", SafeArray(Vt(vt::kBstr))), Field("grid", CArray(Vt(vt::kI2), {3, 4}))};

  SltgTypeInfo widget{"IWidget", "A widget", "{6B29FC40-CA47-1067-B31D-00DD010662DA}", TypeKind::kInterface,
                      0x1040, 56};
  widget.impls = {{{-1, 0, 4}, 0}};
  widget.funcs = {
      Method(0, "Name", 2, 28, {Param("pName", 2 | 8, Ptr(Vt(vt::kBstr), true))}),
      Method(0, "Name", 4, 32, {Param("", 1, Vt(vt::kBstr))}),
      Method(1, "Resize", 1, 36,
             {Param("width", 1, Vt(vt::kI4)), Param("height", 1, Vt(vt::kI4), true),
              Param("scale", 1, Vt(vt::kVariant))}),
      Method(2, "Items", 2, 40, {Param("pItems", 2 | 8, Ptr(SafeArray(Vt(vt::kBstr))))}),
      Method(3, "Parent", 2, 44, {Param("ppParent", 2 | 8, Ptr(Ptr(Local(kIWidget)), true))}),
      Method(4, "Log", 1, 48, {Param("fmt", 1, Vt(vt::kBstr)), Param("args", 1, SafeArray(Vt(vt::kVariant)))}),
      Method(5, "Locale", 1, 52, {Param("_lcid", 1 | 4, Vt(vt::kI4)), Param("", 2, Ptr(Vt(vt::kI4)), true)})};
  widget.funcs[0].help = "The name of the widget";
  widget.funcs[2].optionalCount = 1;
  widget.funcs[2].flags = 0x40;
  widget.funcs[5].optionalCount = -1;  // vararg

  SltgTypeInfo coclass{"Widget", "The widget", "{6B29FC41-CA47-1067-B31D-00DD010662DA}", TypeKind::kCoclass, 0x2};
  coclass.impls = {{{kIWidget}, 1}, {{kIWidgetEvents}, 3}, {{-1, 1, 7}, 0}};

  SltgTypeInfo events{"IWidgetEvents", "", "{6B29FC42-CA47-1067-B31D-00DD010662DA}", TypeKind::kDispatch,
                      0x1000, 28};
  events.impls = {{{-1, 0, 4}, 0}};
  events.funcs = {Method(1, "Clicked", 1, 0, {Param("x", 1, Vt(vt::kI4), true), Param("button", 1, Local(kColors))})};
  events.funcs[0].funcKind = 4;
  events.funcs[0].ret = Vt(vt::kVoid);
  events.vars = {Field("Enabled", Vt(vt::kBool), "Whether clicks count")};
  events.vars[0].memberId = 7;
  events.vars[0].varKind = 3;

  SltgTypeInfo constants{"Constants", "", "", TypeKind::kModule};
  constants.vars = {Const(0, "Pi", V{vt::kR8, 0, 3.14159, ""}),
                    Const(1, "Title", V{vt::kBstr, 0, 0, "Caf\xC3\xA9 \"open\""}),
                    Const(2, "Mask", V{vt::kUI4, 0xF0000000, 0, ""}), Const(3, "Small", V{vt::kI2, -2, 0, ""}),
                    Const(4, "Yes", V{vt::kBool, -1, 0, ""})};
  SltgVar again = constants.vars.back();
  again.memberId = 5;
  again.sameNameAsPrevious = again.readOnly = true;
  again.flags = 0x40;
  constants.vars.push_back(again);
  constants.funcs = {Method(0x60000000, "Beep", 1, 0, {Param("times", 1, Vt(vt::kI2))})};
  constants.funcs[0].funcKind = 3;
  constants.funcs[0].ret = Vt(vt::kVoid);

  return {"Widgets", "Widget library \xC2\xA9 2001", "{C6A8E0F2-1B3D-4F5A-9C7E-8D0B2A4C6E81}", 2, 5, 1,
          {{"{00020430-0000-0000-C000-000000000046}", 2, 0, 0, "stdole2.tlb"},
           {"{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}", 1, 3, 0x409, "C:\\Shared\\Other.tlb"}},
          {colors, point, widget, coclass, events, {.name = "Handle", .kind = TypeKind::kAlias, .alias = Vt(vt::kI4)},
           {.name = "WidgetRef", .kind = TypeKind::kAlias, .alias = Ptr(Local(kIWidget))}, constants}};
}

template <typename... Parts>
std::string Join(const Parts&... parts) {
  std::ostringstream out;
  ((out << parts << '|'), ...);
  return out.str();
}
std::string Text(const std::optional<V>& value) {
  return value ? Join(value->vt, value->integer, value->real, value->text) : "";
}
bool Wraps(uint16_t code) { return code == vt::kPtr || code == vt::kSafeArray || code == vt::kCArray; }
std::string Text(const SltgRef& ref) { return ref.local >= 0 ? "local " + std::to_string(ref.local) : "import"; }
std::string Text(const RawRef& ref) {
  if (ref.kind == RawRef::Kind::kNone) return "none";
  return ref.kind == RawRef::Kind::kLocal ? "local " + std::to_string(ref.localIndex) : "import";
}
// "3", "26(27(8))", "29(local 2)": a type as text.
std::string Text(const SltgType& type) {
  if (type.vt == vt::kUserDefined) return "29(" + Text(type.ref) + ")";
  return std::to_string(type.vt) + (Wraps(type.vt) ? "(" + Text(type.element.at(0)) + ")" : "");
}
std::string Text(const RawLibrary& raw, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= raw.typeDescs.size()) return "none";
  const RawTypeDesc& desc = raw.typeDescs[static_cast<size_t>(index)];
  if (desc.vt == vt::kUserDefined) return "29(" + Text(desc.ref) + ")";
  return std::to_string(desc.vt) + (Wraps(desc.vt) ? "(" + Text(raw, desc.element) + ")" : "");
}

// Every stored fact of a decoded library, one line per item.
std::vector<std::string> Facts(const RawLibrary& raw) {
  std::vector<std::string> lines = {Join(raw.name, raw.helpString, raw.guid, raw.majorVersion, raw.minorVersion)};
  for (const RawTypeInfo& t : raw.types) {
    lines.push_back(Join(t.name, t.helpString, t.guid, +static_cast<int>(t.kind), t.flags, t.vtableSize,
                         +t.pointerSize, Text(raw, t.aliasType)));
    for (const RawImpl& impl : t.impls) lines.push_back(Join(" impl", Text(impl.ref), impl.flags));
    for (const RawFunc& f : t.funcs) {
      lines.push_back(Join(" func", f.memberId, f.name, f.helpString, +f.funcKind, +f.invokeKind, f.flags,
                           f.vtableOffset, f.optionalCount, Text(raw, f.returnType)));
      for (const RawParam& p : f.params) {
        lines.push_back(Join("  ", p.name, p.flags, Text(raw, p.type), Text(p.defaultValue)));
      }
    }
    for (const RawVar& v : t.vars) {
      lines.push_back(
          Join(" var", v.memberId, v.name, v.helpString, +v.varKind, v.flags, Text(raw, v.type), Text(v.value)));
    }
  }
  return lines;
}

// The same facts as a reader must present the description.
std::vector<std::string> Facts(const SltgLibrary& want) {
  std::vector<std::string> lines = {Join(want.name, want.help, want.guid, want.major, want.minor)};
  for (const SltgTypeInfo& t : want.types) {
    // Duals are presented as MSFT stores them: as dispinterfaces.
    const TypeKind kind = (t.flags & 0x40) ? TypeKind::kDispatch : t.kind;
    lines.push_back(Join(t.name, t.help, t.guid, +static_cast<int>(kind), t.flags, t.vtableSize,
                         want.sysKind == 3 ? 8 : 4, t.alias ? Text(*t.alias) : "none"));
    for (const SltgImpl& impl : t.impls) lines.push_back(Join(" impl", Text(impl.ref), +impl.flags));
    for (const SltgFunc& f : t.funcs) {
      lines.push_back(Join(" func", f.memberId, f.name, f.help, +f.funcKind, +f.invokeKind, f.flags.value_or(0),
                           f.funcKind == 4 ? 0 : f.vtableOffset, f.optionalCount, Text(f.ret)));
      const int count = static_cast<int>(f.params.size());
      for (int i = 0; i < count; ++i) {
        // Optional comes from the count; vararg (-1) makes none optional.
        const bool optional = f.optionalCount > 0 && count - i <= f.optionalCount;
        const SltgParam& p = f.params[static_cast<size_t>(i)];
        lines.push_back(Join("  ", p.name, p.flags | (optional ? 0x10 : 0), Text(p.type), ""));
      }
    }
    std::string name;
    for (const SltgVar& v : t.vars) {
      if (!v.sameNameAsPrevious) name = v.name;
      lines.push_back(Join(" var", v.memberId, name, v.help, +v.varKind, v.flags.value_or(0) | (v.readOnly ? 1 : 0),
                           Text(v.type), Text(v.value)));
    }
  }
  return lines;
}

void ExpectDecodedAsDescribed(const SltgLibrary& described, const RawLibrary& decoded) {
  const auto got = Facts(decoded), want = Facts(described);
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], want[i]);
}

RawLibrary Read(const SltgLibrary& library) {
  auto result = ReadSltg(BuildSltg(library));
  EXPECT_TRUE(result.ok()) << (result.ok() ? "" : result.error().description);
  return result.ok() ? std::move(result).value() : RawLibrary{};
}

TEST(SltgReader, DecodesEveryStoredFactInEveryLayout) {
  // The sample itself is the committed fixture, decoded below.
  std::vector<std::pair<std::string, SltgLibrary>> libraries;
  auto variant = [&](const char* what, const std::function<void(SltgLibrary&)>& change) {
    libraries.emplace_back(what, SampleLibrary());
    change(libraries.back().second);
  };
  variant("long name table header", [](SltgLibrary& l) { l.longNameTableHeader = true; });
  variant("reversed directory", [](SltgLibrary& l) { l.reversedDirectory = true; });
  variant("win64", [](SltgLibrary& l) { l.sysKind = 3; });
  variant("repeated help words", [](SltgLibrary& l) {
    l.types[kColors].help = "one";
    l.types[kPoint].help = "x x x y";
  });
  libraries.emplace_back("empty", SltgLibrary{.name = "Empty"});
  // A help tree of a single word and the end word.
  libraries.emplace_back("one help word", SltgLibrary{.name = "One", .types = {{.name = "T", .help = "one"}}});
  for (const auto& [what, library] : libraries) {
    SCOPED_TRACE(what);
    ExpectDecodedAsDescribed(library, Read(library));
  }
}

TEST(SltgReader, NamesKnownImportsAndProjectsTheDualAsItsDispatchView) {
  const RawLibrary raw = Read(SampleLibrary());
  const RawRef& dispatch = raw.types[kIWidget].impls.at(0).ref;
  EXPECT_EQ(dispatch.importedName, "IDispatch");
  EXPECT_EQ(dispatch.importedGuid, "{00020400-0000-0000-C000-000000000046}");
  const RawRef& foreign = raw.types[kWidget].impls.at(2).ref;  // from a library that is not stdole
  EXPECT_EQ(foreign.kind, RawRef::Kind::kImported);
  EXPECT_EQ(foreign.importedName, "");

  const platform::TlbLibrary projected = ProjectLibrary(raw);
  const platform::TlbTypeInfo& dual = projected.types.at(kIWidget);
  EXPECT_EQ(dual.kind, "dispatch");
  ASSERT_EQ(dual.functions.size(), 7u + 7u);
  EXPECT_EQ(dual.functions[7].name, "Name");
  EXPECT_EQ(dual.functions[7].type.code, vt::kBstr);  // the [retval] became the return
  EXPECT_TRUE(dual.functions[7].params.empty());
  EXPECT_EQ(dual.functions[8].params.at(0).name, "");
  EXPECT_EQ(projected.types.at(kWidget).defaultInterface, kIWidget);
  EXPECT_EQ(projected.types.at(kWidget).defaultSource, kIWidgetEvents);
}

// The committed files were written by the test writer and checked with an
// independent dump tool; decoding them guards against the writer and the
// reader drifting together. SENTRUNE_WRITE_FIXTURES=1 rewrites them.
TEST(SltgReader, DecodesTheCommittedFixtures) {
  const std::filesystem::path folder = std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/sltg";
  SltgLibrary variant = SampleLibrary();
  variant.longNameTableHeader = variant.reversedDirectory = true;
  const std::pair<const char*, SltgLibrary> fixtures[] = {{"sample.tlb", SampleLibrary()},
                                                          {"sample-variant.tlb", variant}};
  for (const auto& [file, library] : fixtures) {
    SCOPED_TRACE(file);
    if (std::getenv("SENTRUNE_WRITE_FIXTURES")) {
      const auto bytes = BuildSltg(library);
      std::ofstream(folder / file, std::ios::binary)
          .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    std::ifstream in(folder / file, std::ios::binary);
    ASSERT_TRUE(in) << "missing fixture";
    const Bytes bytes((std::istreambuf_iterator<char>(in)), {});
    EXPECT_EQ(bytes, BuildSltg(library)) << "the writer's output changed";
    auto raw = ReadSltg(bytes);
    ASSERT_TRUE(raw.ok()) << raw.error().description;
    ExpectDecodedAsDescribed(library, raw.value());
  }
}

// Where the writer put each block, in directory order.
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

size_t Find(const Bytes& bytes, std::string_view text, size_t from = 0) {
  const Bytes pattern(text.begin(), text.end());
  const auto found =
      std::search(bytes.begin() + static_cast<ptrdiff_t>(from), bytes.end(), pattern.begin(), pattern.end());
  EXPECT_NE(found, bytes.end()) << text;
  return static_cast<size_t>(found - bytes.begin());
}

// Reads and, when that works, projects; a failure must be the "can't load"
// error with a description.
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

TEST(SltgRobustness, NamesTheDefectOfADamagedFile) {
  const Bytes good = BuildSltg(SampleLibrary());
  const Layout layout = LayoutOf(good);
  const size_t typeCount = Find(good, std::string(0x40, '\xFF'), layout.library()) + 0x40;
  const size_t firstFunc = layout.typeMembers(good, kIWidget) + Get16(good, layout.typeTail(kIWidget) + 8);
  const std::pair<std::function<void(Bytes&)>, const char*> damages[] = {
      {[](Bytes& b) { b[0] = 'M'; }, "does not start with \"SLTG\""},
      {[](Bytes& b) { Set16(b, 0x24 + 8 + 6, 2); }, "the block chain loops"},  // block 2 is its own next
      {[](Bytes& b) { Set16(b, 0x0A, 99); }, "names entry 99"},
      {[](Bytes& b) { Set16(b, 0x24 + 4, 0xFFF0); }, "outside the index names"},
      {[](Bytes& b) { b[Find(b, "AAAAAAAAAA")] = 'Z'; }, "names the block \"AAAAAAAAAA\", which is missing or taken"},
      {[&](Bytes& b) { Set16(b, layout.library(), 0x1234); }, "is not the library block"},
      {[&](Bytes& b) { Set16(b, typeCount, 0xFFFF); }, "65535 type infos do not fit"},
      {[&](Bytes& b) { Set16(b, layout.start[kColors], 0x0777); }, "is not a type info"},
      {[&](Bytes& b) { b[layout.start[kPoint] + 0x1D] = 9; }, "unknown type kind 9"},
      {[&](Bytes& b) { b[firstFunc] = 0x11; }, "unknown function kind 0x11"},
      {[&](Bytes& b) { Set16(b, layout.typeTail(kIWidget), 0xFFFF); }, "65535 functions do not fit"},
      {[&](Bytes& b) { b[layout.typeMembers(good, kColors)] = 0x0B; }, "unknown variable kind 0xB"},
      {[](Bytes& b) { b[Find(b, "*\\Rffff*#") + 2] = 'X'; }, "is not of the form *\\R<lib>*#<n>"},
      {[](Bytes& b) { b[Find(b, "*\\G{") + 3] = '('; }, "is not of the form *\\G{guid}"},
      {[&](Bytes& b) { Set16(b, layout.typeTail(kWidgetRef) + 0x14, 0x7FF0); }, "outside the member area"},
  };
  for (const auto& [damage, reason] : damages) {
    Bytes bytes = good;
    damage(bytes);
    ExpectFailure(bytes, reason);
  }
}

TEST(SltgRobustness, LimitsHowDeepATypeNests) {
  for (int depth : {30, 40}) {
    SltgType type = Vt(vt::kI4);
    for (int i = 0; i < depth; ++i) type = Ptr(type);
    SltgLibrary library = SampleLibrary();
    library.types[kPoint].vars[0].type = type;
    if (depth > 32) {
      ExpectFailure(BuildSltg(library), "nests deeper than 32 levels");
    } else {
      EXPECT_TRUE(ReadSltg(BuildSltg(library)).ok());
    }
  }
}

// Records may share bytes, so a small file could describe a huge library:
// here 2000 functions each claim the same list of 31 parameters.
TEST(SltgRobustness, RefusesToAmplifySharedRecords) {
  SltgTypeInfo type{.name = "IMany"};
  type.funcs.assign(2000, SltgFunc{});
  for (int i = 0; i < 31; ++i) type.funcs[0].params.push_back(Param("p" + std::to_string(i), 1, Vt(vt::kI4)));
  Bytes bytes = BuildSltg({.name = "Many", .types = {type}});
  ASSERT_TRUE(ReadSltg(bytes).ok());

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

TEST(SltgRobustness, FailsCleanlyAtEveryTruncation) {
  const Bytes good = BuildSltg(SampleLibrary());
  const Layout layout = LayoutOf(good);
  // Everything up to the end of the library block is needed; what follows is not read.
  const size_t needed = layout.library() + layout.length.back() - 8;
  for (size_t size = 0; size < good.size(); size += 97) {
    SCOPED_TRACE("truncated to " + std::to_string(size));
    const bool read = ReadsOrFailsCleanly(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(size)));
    EXPECT_TRUE(size >= needed || !read);
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
  const std::filesystem::path folder = std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/fuzz/sltg";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no fuzz findings recorded";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    SCOPED_TRACE(entry.path().filename().string());
    std::ifstream in(entry.path(), std::ios::binary);
    ReadsOrFailsCleanly(Bytes((std::istreambuf_iterator<char>(in)), {}));
  }
}

std::string DecodeHelp(const Bytes& tree, const Bytes& bits, uint64_t budgetUnits = 1 << 20) {
  sltg::Budget budget(budgetUnits);
  sltg::HelpDecoder decoder(sltg::Region(ByteReader(tree), "help tree"), budget);
  return decoder.Decode(ByteReader(bits));
}

TEST(SltgHelpStrings, FollowsEachByteFromItsHighestBit) {
  // Root: the 1-branch is the leaf "alpha"; the 0-branch (at 10) is a node
  // whose 1-branch is "caf\xE9" and whose 0-branch (at 19) ends the string.
  // Codes: alpha 1, café 01, end 00.
  const Bytes tree = {0x80, 0x00, 0x0A, 0x00, 'a', 'l', 'p', 'h', 'a', 0x00,
                      0x80, 0x00, 0x13, 0x00, 'c', 'a', 'f', 0xE9, 0x00, 0x00, 0x00};
  EXPECT_EQ(DecodeHelp(tree, {0x68}), "caf\xC3\xA9 alpha caf\xC3\xA9");  // 01 1 01 00
  // Running out of bits ends the string as the end word does.
  EXPECT_EQ(DecodeHelp(tree, {0xFF}), "alpha alpha alpha alpha alpha alpha alpha alpha");
  EXPECT_EQ(DecodeHelp(tree, {}), "");
  EXPECT_EQ(DecodeHelp({}, {0x68}), "");  // a library without a tree
}

TEST(SltgHelpStrings, StopsOrFailsOnHostileTrees) {
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
}  // namespace sentrune::portable::testing
