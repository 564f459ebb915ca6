// Damaged and hostile MSFT files: each defect is an error result that says
// what is wrong, or (for defects the system's loader also tolerates) a
// library whose broken parts stay unresolved.
#include <gtest/gtest.h>

#include <cstring>

#include "msft_builder.h"
#include "platform/portable/msft_reader.h"
#include "platform/portable/typelib_projection.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using testing::MsftBuilder;

MsftBuilder OneInterface() {
  MsftBuilder b;
  b.AddType(TypeKind::kInterface, "IThing",
            {{0x60020000, "Run", MsftBuilder::Inline(vt::kHresult),
              {{"count", MsftBuilder::Inline(vt::kI4)}}}},
            {});
  return b;
}

void Put32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
  std::memcpy(&bytes[at], &value, 4);
}

// The error description, or "" when the bytes decoded.
std::string Failure(const std::vector<uint8_t>& bytes) {
  auto library = ReadMsft(bytes);
  if (library.ok()) return "";
  EXPECT_EQ(library.error().number, rt::errnum::kCantLoadTypeLibrary);
  return library.error().description;
}

TEST(MsftDamage, BrokenContainersAreErrors) {
  const std::vector<uint8_t> good = OneInterface().Build();
  ASSERT_EQ(Failure(good), "");

  EXPECT_NE(Failure({}).find("shorter than an MSFT header"), std::string::npos);
  std::vector<uint8_t> magic = good;
  magic[3] = 'X';
  EXPECT_NE(Failure(magic).find("MSFT"), std::string::npos);

  std::vector<uint8_t> count = good;
  Put32(count, 0x20, 0x40000000);
  EXPECT_NE(Failure(count).find("type info count"), std::string::npos);

  std::vector<uint8_t> directory = good;
  Put32(directory, 0x54 + 4 + 12, 0);  // the first entry's marker word
  EXPECT_NE(Failure(directory).find("segment directory"), std::string::npos);

  std::vector<uint8_t> segment = good;
  Put32(segment, 0x54 + 4 + 7 * 16 + 4, 0x7FFFFFF0);  // name table length
  EXPECT_NE(Failure(segment).find("name table lies outside"), std::string::npos);

  std::vector<uint8_t> cut(good.begin(), good.end() - 8);
  EXPECT_NE(Failure(cut).find("members lie outside"), std::string::npos);
}

TEST(MsftDamage, BrokenRecordsAreErrors) {
  MsftBuilder builder = OneInterface();
  const std::vector<uint8_t> good = builder.Build();
  const size_t block = builder.MemberBlockOffset(good, 0);
  const size_t record = block + 4;

  std::vector<uint8_t> tiny = good;
  Put32(tiny, record, 8);
  EXPECT_NE(Failure(tiny).find("bad size 8"), std::string::npos);

  std::vector<uint8_t> params = good;
  params[record + 20] = 50;  // 50 parameters in a 36-byte record
  EXPECT_NE(Failure(params).find("cannot hold 50 parameters"), std::string::npos);

  std::vector<uint8_t> name = good;
  Put32(name, record + 24 + 4, 0x00FFFFF0);  // the parameter's name offset
  EXPECT_NE(Failure(name).find("outside the name table"), std::string::npos);

  std::vector<uint8_t> kind = good;
  Put32(kind, 0x54 + 4 + 15 * 16, 9);  // the type info table follows the directory
  EXPECT_NE(Failure(kind).find("unknown kind 9"), std::string::npos);

  MsftBuilder strings;
  const int32_t value = strings.AddValue(vt::kBstr, {0xF0, 0xFF, 0xFF, 0xFF});
  strings.AddType(TypeKind::kEnum, "E", {}, {{0x40000000, "x", MsftBuilder::Inline(vt::kI4), value}});
  EXPECT_NE(Failure(strings.Build()).find("negative length"), std::string::npos);

  MsftBuilder variant;
  const int32_t stored = variant.AddValue(vt::kVariant, {0, 0, 0, 0});
  variant.AddType(TypeKind::kEnum, "E", {}, {{0x40000000, "x", MsftBuilder::Inline(vt::kI4), stored}});
  EXPECT_NE(Failure(variant.Build()).find("unsupported type 12"), std::string::npos);
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
  std::vector<uint8_t> bytes = builder.Build();
  ASSERT_EQ(Failure(bytes), "");
  // Point the empty type infos at the first one's member block.
  const size_t table = 0x54 + 5 * 4 + 15 * 16;
  for (size_t i = 1; i < 5; ++i) {
    std::memcpy(&bytes[table + i * 0x64 + 4], &bytes[table + 4], 4);
    std::memcpy(&bytes[table + i * 0x64 + 0x18], &bytes[table + 0x18], 4);
  }
  EXPECT_NE(Failure(bytes).find("type infos share member records"), std::string::npos);
}

TEST(MsftDamage, DescriptorChainsAreBounded) {
  // A pointer to itself decodes (each descriptor is read once) and projects
  // to a finite type.
  MsftBuilder cyclic;
  const int32_t self = cyclic.AddTypeDesc(vt::kPtr, 0);
  cyclic.AddType(TypeKind::kInterface, "ILoop", {{1, "Get", self, {}}}, {});
  auto library = ReadMsft(cyclic.Build());
  ASSERT_TRUE(library.ok()) << library.error().description;
  const platform::TlbLibrary projected = ProjectLibrary(*library);
  EXPECT_EQ(projected.types.at(0).functions.at(0).type.code, vt::kUserDefined | vt::kByRefFlag);

  // A chain deeper than any declaration is refused instead of recursing on.
  MsftBuilder deep;
  int32_t inner = MsftBuilder::Inline(vt::kI4);
  for (int i = 0; i < 200; ++i) inner = deep.AddTypeDesc(vt::kPtr, inner);
  deep.AddType(TypeKind::kInterface, "IDeep", {{1, "Get", inner, {}}}, {});
  EXPECT_NE(Failure(deep.Build()).find("nest too deeply"), std::string::npos);

  MsftBuilder misaligned;
  misaligned.AddTypeDesc(vt::kPtr, MsftBuilder::Inline(vt::kI4));
  misaligned.AddType(TypeKind::kInterface, "IOdd", {{1, "Get", 3, {}}}, {});
  EXPECT_NE(Failure(misaligned.Build()).find("not an entry"), std::string::npos);
}

TEST(MsftDamage, HelpDllWordIsFoundWhereverTheWriterPutIt) {
  for (bool present : {true, false}) {
    auto library = ReadMsft(OneInterface().Build(true, present));
    ASSERT_TRUE(library.ok()) << present << ": " << library.error().description;
    EXPECT_EQ(library->name, "Built");
    EXPECT_EQ(library->types.at(0).funcs.at(0).params.at(0).name, "count");
  }
}

}  // namespace
}  // namespace sentrune::portable
