// The MSFT reader on the compiled fixtures, on libraries written by the test
// builder (values and damage no compiler writes), on every real library at
// hand, and on truncated, flipped and fuzzer-found bytes (run under the
// sanitizers for full effect).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "tlb_test_files.h"
#include "platform/pe/pe_builder.h"
#include "platform/pe/pe_image.h"

namespace sentrune::portable {
namespace {

namespace fs = std::filesystem;
namespace vt = platform::vt;
using platform::TlbValue;
using testing::DecodeFixture;
using testing::RawFunction;
using testing::RawType;
using Bytes = std::vector<uint8_t>;

TEST(MsftReader, ReadsTheCompiledFixture) {
  const RawLibrary library = DecodeFixture("widgets.tlb");
  EXPECT_EQ(testing::Facts(library).at(0), "Widgets|Widgets and their parts|{5E1A0C01-7D3B-4C2E-9F10-000000000001}|1|0|");
  ASSERT_EQ(library.types.size(), 7u);
  const RawTypeInfo& widget = RawType(library, "_Widget");
  EXPECT_EQ(widget.kind, TypeKind::kDispatch);
  EXPECT_EQ(widget.flags, 0x11D0);  // dispatchable, automation, nonextensible, dual, hidden
  EXPECT_EQ(widget.guid, "{5E1A0C01-7D3B-4C2E-9F10-000000000101}");
  EXPECT_EQ(RawType(library, "Part").flags, 0);  // noncreatable: no TYPEFLAG_FCANCREATE
  const RawFunc& find = RawFunction(widget, "Find");
  EXPECT_EQ(find.memberId, 0x60030000);
  EXPECT_EQ(find.helpString, "Finds a part by its key");
  EXPECT_EQ(RawFunction(widget, "Font", 8).memberId, 0x68030001);
  EXPECT_EQ(widget.impls.at(0).ref.importedGuid, "{00020400-0000-0000-C000-000000000046}");  // IDispatch

  const RawTypeInfo& colors = RawType(library, "WidgetColors");
  EXPECT_EQ(colors.helpString, "Colours a widget can take");
  ASSERT_EQ(colors.vars.size(), 4u);
  EXPECT_EQ(colors.vars[1].name, "wgGreen");
  EXPECT_EQ(colors.vars[1].varKind, 2);
  EXPECT_EQ(colors.vars[1].value, (TlbValue{vt::kI4, 1, 0, ""}));
  EXPECT_EQ(colors.vars[3].value, (TlbValue{vt::kI4, -1, 0, ""}));
  const RawFunc& configure = RawFunction(widget, "Configure");
  ASSERT_EQ(configure.params.size(), 12u);
  const std::pair<size_t, TlbValue> defaults[] = {
      {0, {vt::kI2, 10, 0, ""}},
      {3, {vt::kI4, -100000, 0, ""}},  // stored, not packed
      {4, {vt::kBstr, 0, 0, "He said \"hi\"\tand left \xC3\xA9"}},
      {5, {vt::kBstr, 0, 0, ""}},
      {6, {vt::kBool, -1, 0, ""}},
      {9, {vt::kDispatch, 0, 0, ""}},
  };
  for (const auto& [index, value] : defaults) EXPECT_EQ(configure.params[index].defaultValue, value) << index;
  EXPECT_FALSE(configure.params[11].defaultValue.has_value());
  EXPECT_EQ(configure.params[11].flags, 0x1 | 0x10);
}

void Put(Bytes& out, uint32_t value, int bytes = 4) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}
void Pad4(Bytes& out) {
  while (out.size() % 4) out.push_back(0x57);
}

// Writes small MSFT libraries: the values and damaged structures no
// available compiler produces (real, currency and date constants, cyclic
// descriptors, records that overrun their block).
class MsftBuilder {
 public:
  // Types are DataType words: an inline VT (Inline) or a descriptor offset.
  // Values are value references.
  struct Param {
    std::string name;
    int32_t type;
  };
  struct Func {
    int32_t memberId;
    std::string name;
    int32_t returnType;
    std::vector<Param> params;
  };
  struct Var {
    int32_t memberId;
    std::string name;
    int32_t type, value;
  };
  static constexpr uint32_t kTypeInfoSize = 0x64;
  static constexpr int kSegments = 15;

  static int32_t Inline(uint16_t vt) { return static_cast<int32_t>(0x80000000u | vt); }
  int32_t AddTypeDesc(uint16_t vt, int32_t target) {
    Put(typeDescs_, vt | 0x7FFE0000u);
    Put(typeDescs_, static_cast<uint32_t>(target));
    return static_cast<int32_t>(typeDescs_.size() - 8);
  }
  // A stored value: its VT word, then `payload` as the file holds it.
  int32_t AddValue(uint16_t vt, const Bytes& payload) {
    const auto at = static_cast<int32_t>(values_.size());
    Put(values_, vt, 2);
    values_.insert(values_.end(), payload.begin(), payload.end());
    Pad4(values_);
    return at;
  }
  void AddType(TypeKind kind, std::string name, std::vector<Func> funcs, std::vector<Var> vars) {
    Type type{kind, AddName(name), std::move(funcs), std::move(vars), {}, {}};
    for (const Func& func : type.funcs) {
      type.memberNames.push_back(AddName(func.name));
      type.paramNames.emplace_back();
      for (const Param& param : func.params) type.paramNames.back().push_back(AddName(param.name));
    }
    for (const Var& var : type.vars) type.memberNames.push_back(AddName(var.name));
    types_.push_back(std::move(type));
  }

  // With `helpDllWord`, the header announces a help DLL; `wordPresent` says
  // whether the file really holds the extra word before the type info offsets.
  Bytes Build(bool helpDllWord = false, bool wordPresent = true) const {
    MsftBuilder self = *this;
    const int32_t libraryName = self.AddName("Built");
    const auto count = static_cast<uint32_t>(types_.size());
    Bytes infos(count * kTypeInfoSize, 0);
    std::vector<Bytes> blocks;
    for (uint32_t i = 0; i < count; ++i) {
      const Type& type = types_[i];
      const size_t at = i * kTypeInfoSize;
      testing::Set32(infos, at, static_cast<uint32_t>(type.kind));
      testing::Set16(infos, at + 0x18, static_cast<uint32_t>(type.funcs.size()));
      testing::Set16(infos, at + 0x1A, static_cast<uint32_t>(type.vars.size()));
      for (size_t field : {0x2C, 0x3C, 0x48, 0x54}) testing::Set32(infos, at + field, 0xFFFFFFFF);
      testing::Set32(infos, at + 0x34, static_cast<uint32_t>(type.name));
      testing::Set16(infos, at + 0x4C, type.kind == TypeKind::kInterface ? 1 : 0);
      blocks.push_back(MemberBlock(type));
    }
    std::vector<const Bytes*> segments(kSegments, nullptr);
    segments[0] = &infos;
    segments[7] = &self.names_;
    segments[9] = &self.typeDescs_;
    segments[11] = &self.values_;

    // Magic, version, GUID, locale, ..., type info count; help string ..
    // name characters; the library's name and the rest of the header.
    Bytes out;
    for (uint32_t word : {0x5446534Du, 0x00010002u, 0xFFFFFFFFu, 0x409u, 0u, helpDllWord ? 0x101u : 0x1u, 0x1u, 0u,
                          count, 0xFFFFFFFFu, 0u, 0u, 0u, 0u, static_cast<uint32_t>(libraryName), 0xFFFFFFFFu,
                          0xFFFFFFFFu, 0x20u, 0x80u, 0xFFFFFFFFu, 0u}) {
      Put(out, word);
    }
    if (helpDllWord && wordPresent) Put(out, 0xFFFFFFFF);
    for (uint32_t i = 0; i < count; ++i) Put(out, i * kTypeInfoSize);
    size_t position = out.size() + kSegments * 16;
    for (const Bytes* segment : segments) {
      const bool present = segment != nullptr && !segment->empty();
      for (uint32_t word : {present ? static_cast<uint32_t>(position) : 0xFFFFFFFF,
                            present ? static_cast<uint32_t>(segment->size()) : 0u, 0xFFFFFFFFu, 0x0Fu}) {
        Put(out, word);
      }
      if (present) position += segment->size();
    }
    for (uint32_t i = 0; i < count; ++i) {
      testing::Set32(infos, i * kTypeInfoSize + 4, static_cast<uint32_t>(position));
      position += blocks[i].size();
    }
    for (const Bytes* segment : segments) {
      if (segment != nullptr) out.insert(out.end(), segment->begin(), segment->end());
    }
    for (const Bytes& block : blocks) out.insert(out.end(), block.begin(), block.end());
    return out;
  }

  // Where the built file holds the member block of a type info.
  size_t MemberBlockOffset(const Bytes& built, size_t typeIndex) const {
    const size_t table = testing::Get32(built, 0x54 + types_.size() * 4);  // the first segment
    return testing::Get32(built, table + typeIndex * kTypeInfoSize + 4);
  }

 private:
  struct Type {
    TypeKind kind;
    int32_t name;
    std::vector<Func> funcs;
    std::vector<Var> vars;
    // Name table offsets: functions', then variables'; and per function its parameters'.
    std::vector<int32_t> memberNames;
    std::vector<std::vector<int32_t>> paramNames;
  };

  int32_t AddName(std::string_view text) {
    const auto at = static_cast<int32_t>(names_.size());
    Put(names_, 0xFFFFFFFF);  // hreftype
    Put(names_, 0xFFFFFFFF);  // hash chain
    Put(names_, static_cast<uint32_t>(text.size() & 0xFF));
    names_.insert(names_.end(), text.begin(), text.end());
    Pad4(names_);
    return at;
  }

  // The records' size, the records, their member IDs, names and offsets.
  static Bytes MemberBlock(const Type& type) {
    Bytes records, ids, offsets;
    for (size_t f = 0; f < type.funcs.size(); ++f) {
      const Func& func = type.funcs[f];
      Put(offsets, static_cast<uint32_t>(records.size()));
      Put(ids, static_cast<uint32_t>(func.memberId));
      Put(records, static_cast<uint32_t>(24 + func.params.size() * 12 + (f << 16)));
      Put(records, static_cast<uint32_t>(func.returnType));
      Put(records, 0);                                  // FUNCFLAGS
      Put(records, static_cast<uint32_t>(28 + 4 * f));  // vtable offset
      Put(records, 1u | 1u << 3 | 4u << 8);             // pure virtual function, stdcall
      Put(records, static_cast<uint32_t>(func.params.size()));
      for (size_t p = 0; p < func.params.size(); ++p) {
        Put(records, static_cast<uint32_t>(func.params[p].type));
        Put(records, static_cast<uint32_t>(type.paramNames[f][p]));
        Put(records, 1);  // [in]
      }
    }
    for (const Var& var : type.vars) {
      Put(offsets, static_cast<uint32_t>(records.size()));
      Put(ids, static_cast<uint32_t>(var.memberId));
      for (int32_t word : {20, var.type, 0, 2 /* VAR_CONST */, var.value}) Put(records, static_cast<uint32_t>(word));
    }
    Bytes block;
    Put(block, static_cast<uint32_t>(records.size()));
    block.insert(block.end(), records.begin(), records.end());
    block.insert(block.end(), ids.begin(), ids.end());
    for (int32_t name : type.memberNames) Put(block, static_cast<uint32_t>(name));
    block.insert(block.end(), offsets.begin(), offsets.end());
    return block;
  }

  Bytes names_, typeDescs_, values_;
  std::vector<Type> types_;
};

template <typename T>
Bytes Raw(T value) {
  Bytes bytes(sizeof(T));
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

Bytes CountedText(int32_t length, std::string_view text) {
  // Sized once: GCC 12 at -O2 misreads an insert after the count as overflow.
  Bytes bytes(sizeof length + text.size());
  std::memcpy(bytes.data(), &length, sizeof length);
  std::copy(text.begin(), text.end(), bytes.begin() + sizeof length);
  return bytes;
}

// A reference that packs the VT into bits 26-30 and the value into the low 26 bits.
int32_t Packed(uint16_t type, uint32_t bits) {
  return static_cast<int32_t>(0x80000000u | (uint32_t{type} << 26) | (bits & 0x03FFFFFF));
}

// Decodes an enum holding one constant per reference and returns the values.
std::vector<TlbValue> DecodeConstants(MsftBuilder& builder, const std::vector<int32_t>& refs) {
  std::vector<MsftBuilder::Var> vars;
  for (size_t i = 0; i < refs.size(); ++i) {
    vars.push_back({static_cast<int32_t>(0x40000000 + i), "c" + std::to_string(i), MsftBuilder::Inline(vt::kI4),
                    refs[i]});
  }
  builder.AddType(TypeKind::kEnum, "Values", {}, vars);
  auto library = ReadMsft(builder.Build());
  std::vector<TlbValue> values;
  if (!library.ok()) {
    ADD_FAILURE() << library.error().description;
    return values;
  }
  for (const RawVar& var : library->types.at(0).vars) values.push_back(var.value.value_or(TlbValue{}));
  return values;
}

TEST(MsftValues, StoredValuesOfEveryKind) {
  MsftBuilder b;
  const std::vector<std::pair<int32_t, TlbValue>> cases = {
      {b.AddValue(vt::kR4, Raw(1.5f)), {vt::kR4, 0, 1.5, ""}},
      {b.AddValue(vt::kR8, Raw(-2.25)), {vt::kR8, 0, -2.25, ""}},
      {b.AddValue(vt::kCy, Raw(int64_t{125000})), {vt::kCy, 125000, 0, ""}},  // 12.5 scaled by 10000
      {b.AddValue(vt::kI8, Raw(int64_t{-5000000000})), {vt::kI8, -5000000000, 0, ""}},
      {b.AddValue(vt::kUI4, Raw(uint32_t{0xFFFFFFFF})), {vt::kUI4, 4294967295, 0, ""}},
      {b.AddValue(vt::kI1, Raw(int8_t{-3})), {vt::kI1, -3, 0, ""}},
      {b.AddValue(vt::kError, Raw(uint32_t{0x800A0005})), {vt::kError, -2146828283, 0, ""}},
      {b.AddValue(vt::kBstr, CountedText(4, "\x80 \xE9\"")), {vt::kBstr, 0, 0, "\xE2\x82\xAC \xC3\xA9\""}},  // cp1252
      {b.AddValue(vt::kBstr, CountedText(-1, "")), {vt::kBstr, 0, 0, ""}},  // a null string
      {b.AddValue(vt::kEmpty, {}), {vt::kEmpty, 0, 0, ""}},
      // Packed values are sign-extended by their type.
      {Packed(vt::kI2, 0x03FFFFFB), {vt::kI2, -5, 0, ""}},  // -5 in 26 bits
      {Packed(vt::kI2, 0xFFFB), {vt::kI2, -5, 0, ""}},      // -5 in 16 bits
      {Packed(vt::kUI2, 40000), {vt::kUI2, 40000, 0, ""}},
      {Packed(vt::kI4, 100000), {vt::kI4, 100000, 0, ""}},
  };
  std::vector<int32_t> refs;
  std::vector<TlbValue> expected;
  for (const auto& [ref, value] : cases) refs.push_back(ref), expected.push_back(value);
  EXPECT_EQ(DecodeConstants(b, refs), expected);
}

MsftBuilder OneInterface() {
  MsftBuilder b;
  b.AddType(TypeKind::kInterface, "IThing",
            {{0x60020000, "Run", MsftBuilder::Inline(vt::kHresult), {{"count", MsftBuilder::Inline(vt::kI4)}}}}, {});
  return b;
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
  MsftBuilder one = OneInterface();
  const Bytes good = one.Build();
  ASSERT_EQ(Failure(good), "");
  const size_t record = one.MemberBlockOffset(good, 0) + 4;
  auto damaged = [&](size_t at, uint32_t value) {
    Bytes bytes = good;
    testing::Set32(bytes, at, value);
    return bytes;
  };
  auto enumWith = [](uint16_t type, const Bytes& payload) {
    MsftBuilder b;
    b.AddType(TypeKind::kEnum, "E", {}, {{0x40000000, "x", MsftBuilder::Inline(vt::kI4), b.AddValue(type, payload)}});
    return b.Build();
  };
  MsftBuilder deep;
  int32_t inner = MsftBuilder::Inline(vt::kI4);
  for (int i = 0; i < 200; ++i) inner = deep.AddTypeDesc(vt::kPtr, inner);
  deep.AddType(TypeKind::kInterface, "IDeep", {{1, "Get", inner, {}}}, {});
  MsftBuilder misaligned;
  misaligned.AddTypeDesc(vt::kPtr, MsftBuilder::Inline(vt::kI4));
  misaligned.AddType(TypeKind::kInterface, "IOdd", {{1, "Get", 3, {}}}, {});

  const std::pair<Bytes, const char*> cases[] = {
      {{}, "shorter than an MSFT header"},
      {damaged(0, 0x5846534D), "MSFT"},
      {damaged(0x20, 0x40000000), "type info count"},
      {damaged(0x54 + 4 + 12, 0), "segment directory"},  // the first entry's marker word
      {damaged(0x54 + 4 + 7 * 16 + 4, 0x7FFFFFF0), "name table lies outside"},
      {Bytes(good.begin(), good.end() - 8), "members lie outside"},
      {damaged(record, 8), "bad size 8"},
      {damaged(record + 20, 50), "cannot hold 50 parameters"},           // in a 36-byte record
      {damaged(record + 24 + 4, 0x00FFFFF0), "outside the name table"},  // the parameter's name
      {damaged(0x54 + 4 + 15 * 16, 9), "unknown kind 9"},                // the type info table follows the directory
      {enumWith(vt::kBstr, {0xF0, 0xFF, 0xFF, 0xFF}), "negative length"},
      {enumWith(vt::kVariant, {0, 0, 0, 0}), "unsupported type 12"},
      // A chain deeper than any declaration is refused instead of recursing on.
      {deep.Build(), "nest too deeply"},
      {misaligned.Build(), "not an entry"},
  };
  for (const auto& [bytes, reason] : cases) EXPECT_NE(Failure(bytes).find(reason), std::string::npos) << reason;
}

TEST(MsftDamage, TypeInfosCannotShareMoreMembersThanTheFileHolds) {
  MsftBuilder builder;
  std::vector<MsftBuilder::Func> funcs;
  for (int32_t i = 0; i < 100; ++i) {
    funcs.push_back({i, "F", MsftBuilder::Inline(vt::kHresult),
                     {{"a", MsftBuilder::Inline(vt::kI4)}, {"b", MsftBuilder::Inline(vt::kI4)}}});
  }
  builder.AddType(TypeKind::kInterface, "IBig", funcs, {});
  for (int i = 0; i < 4; ++i) builder.AddType(TypeKind::kInterface, "ISharing", {}, {});
  Bytes bytes = builder.Build();
  ASSERT_EQ(Failure(bytes), "");
  // Point the empty type infos at the first one's member block.
  const size_t table = 0x54 + 5 * 4 + 15 * 16;
  for (size_t i = 1; i < 5; ++i) {
    std::memcpy(&bytes[table + i * 0x64 + 4], &bytes[table + 4], 4);
    std::memcpy(&bytes[table + i * 0x64 + 0x18], &bytes[table + 0x18], 4);
  }
  EXPECT_NE(Failure(bytes).find("type infos share member records"), std::string::npos);
}

// Defects the system's loader also tolerates give a library whose broken
// parts stay unresolved.
TEST(MsftDamage, CyclicDescriptorsAndAMisplacedHelpDllWordAreTolerated) {
  MsftBuilder cyclic;
  const int32_t self = cyclic.AddTypeDesc(vt::kPtr, 0);  // a pointer to itself
  cyclic.AddType(TypeKind::kInterface, "ILoop", {{1, "Get", self, {}}}, {});
  auto library = ReadMsft(cyclic.Build());
  ASSERT_TRUE(library.ok()) << library.error().description;
  EXPECT_EQ(ProjectLibrary(*library).types.at(0).functions.at(0).type.code, vt::kUserDefined | vt::kByRefFlag);

  for (bool present : {true, false}) {
    auto withWord = ReadMsft(OneInterface().Build(true, present));
    ASSERT_TRUE(withWord.ok()) << present << ": " << withWord.error().description;
    EXPECT_EQ(withWord->name, "Built");
    EXPECT_EQ(withWord->types.at(0).funcs.at(0).params.at(0).name, "count");
  }
}

// Decodes every MSFT library in the TYPELIB resources of `files`; returns how many there were.
size_t DecodeAll(const std::vector<fs::path>& files) {
  size_t count = 0;
  const auto type = ResourceId::Named(kTypeLibResourceType);
  for (const fs::path& file : files) {
    const auto bytes = testing::ReadHostFile(file);
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
  EXPECT_GE(DecodeAll(files), files.size());  // every component carries at least one library
}

TEST(MsftRobustness, DamagedFixturesDecodeOrFailCleanly) {
  std::vector<Bytes> good;
  for (const char* name : {"widgets.tlb", "shapes.tlb", "widgets64.tlb"}) good.push_back(testing::TypeLibFixture(name));
  const auto seen = testing::ExpectRobust(testing::DecodeAndProject(ReadMsft), good, {.savedInputs = "msft"});
  EXPECT_GT(seen.changedRead, 0);  // most changes hit names, strings or padding
}

}  // namespace
}  // namespace sentrune::portable
