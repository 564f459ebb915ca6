// Constants of every VARIANT kind, stored and packed into the reference, in
// libraries written by the test builder (widl writes few of these kinds).
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "msft_builder.h"
#include "platform/portable/msft_reader.h"

namespace sentrune::portable {
namespace {

namespace vt = platform::vt;
using platform::TlbValue;
using testing::MsftBuilder;

template <typename T>
std::vector<uint8_t> Bytes(T value) {
  std::vector<uint8_t> bytes(sizeof(T));
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

std::vector<uint8_t> CountedText(int32_t length, std::string_view text) {
  // Sized once: GCC 12 at -O2 misreads an insert after the count as overflow.
  std::vector<uint8_t> bytes(sizeof length + text.size());
  std::memcpy(bytes.data(), &length, sizeof length);
  std::copy(text.begin(), text.end(), bytes.begin() + sizeof length);
  return bytes;
}

// A packed reference: the VT in bits 26-30 and the value in the low 26 bits.
int32_t Packed(uint16_t type, uint32_t bits) {
  return static_cast<int32_t>(0x80000000u | (uint32_t{type} << 26) | (bits & 0x03FFFFFF));
}

// Decodes an enum holding one constant per reference and returns the values.
std::vector<TlbValue> Decode(MsftBuilder& builder, const std::vector<int32_t>& refs) {
  std::vector<MsftBuilder::Var> vars;
  for (size_t i = 0; i < refs.size(); ++i) {
    vars.push_back({static_cast<int32_t>(0x40000000 + i), "c" + std::to_string(i),
                    MsftBuilder::Inline(vt::kI4), refs[i]});
  }
  builder.AddType(TypeKind::kEnum, "Values", {}, vars);
  auto library = ReadMsft(builder.Build());
  EXPECT_TRUE(library.ok()) << library.error().description;
  std::vector<TlbValue> values;
  if (!library.ok()) return values;
  for (const RawVar& var : library->types.at(0).vars) values.push_back(var.value.value_or(TlbValue{}));
  return values;
}

TEST(MsftValues, StoredValuesOfEveryKind) {
  MsftBuilder b;
  const std::vector<int32_t> refs = {
      b.AddValue(vt::kR4, Bytes(1.5f)),
      b.AddValue(vt::kR8, Bytes(-2.25)),
      b.AddValue(vt::kCy, Bytes(int64_t{125000})),  // 12.5 scaled by 10000
      b.AddValue(vt::kDate, Bytes(36526.5)),
      b.AddValue(vt::kI8, Bytes(int64_t{-5000000000})),
      b.AddValue(vt::kUI8, Bytes(uint64_t{5000000000})),
      b.AddValue(vt::kUI4, Bytes(uint32_t{0xFFFFFFFF})),
      b.AddValue(vt::kI1, Bytes(int8_t{-3})),
      b.AddValue(vt::kUI2, Bytes(uint16_t{65535})),
      b.AddValue(vt::kError, Bytes(uint32_t{0x800A0005})),
      b.AddValue(vt::kBool, Bytes(int16_t{-1})),
      b.AddValue(vt::kBstr, CountedText(4, "\x80 \xE9\"")),
      b.AddValue(vt::kBstr, CountedText(-1, "")),
      b.AddValue(vt::kEmpty, {}),
      b.AddValue(vt::kNull, {}),
      b.AddValue(vt::kUnknown, {}),
  };
  const std::vector<TlbValue> expected = {
      {vt::kR4, 0, 1.5, ""},
      {vt::kR8, 0, -2.25, ""},
      {vt::kCy, 125000, 0, ""},
      {vt::kDate, 0, 36526.5, ""},
      {vt::kI8, -5000000000, 0, ""},
      {vt::kUI8, 5000000000, 0, ""},
      {vt::kUI4, 4294967295, 0, ""},
      {vt::kI1, -3, 0, ""},
      {vt::kUI2, 65535, 0, ""},
      {vt::kError, -2146828283, 0, ""},
      {vt::kBool, -1, 0, ""},
      {vt::kBstr, 0, 0, "\xE2\x82\xAC \xC3\xA9\""},  // cp1252 text arrives as UTF-8
      {vt::kBstr, 0, 0, ""},                          // a null string
      {vt::kEmpty, 0, 0, ""},
      {vt::kNull, 0, 0, ""},
      {vt::kUnknown, 0, 0, ""},
  };
  EXPECT_EQ(Decode(b, refs), expected);
}

TEST(MsftValues, PackedValuesAreSignExtendedByType) {
  MsftBuilder b;
  const std::vector<int32_t> refs = {
      Packed(vt::kI2, 0x03FFFFFB),  // -5 in 26 bits
      Packed(vt::kI2, 0xFFFB),      // -5 in 16 bits
      Packed(vt::kI1, 0xFD),
      Packed(vt::kBool, 0xFFFF),
      Packed(vt::kUI2, 40000),
      Packed(vt::kI4, 100000),
      Packed(vt::kUI1, 200),
      Packed(vt::kDispatch, 0),
      Packed(vt::kR4, 0),
      Packed(vt::kInt, 7),
  };
  const std::vector<TlbValue> expected = {
      {vt::kI2, -5, 0, ""},  {vt::kI2, -5, 0, ""},      {vt::kI1, -3, 0, ""},
      {vt::kBool, -1, 0, ""}, {vt::kUI2, 40000, 0, ""}, {vt::kI4, 100000, 0, ""},
      {vt::kUI1, 200, 0, ""}, {vt::kDispatch, 0, 0, ""}, {vt::kR4, 0, 0.0, ""},
      {vt::kInt, 7, 0, ""},
  };
  EXPECT_EQ(Decode(b, refs), expected);
}

TEST(MsftValues, ParameterDefaultsAreReadOnlyWhenFlagged) {
  MsftBuilder b;
  const int32_t text = b.AddValue(vt::kBstr, CountedText(2, "ok"));
  b.AddType(TypeKind::kInterface, "IDefaults",
            {{0x60020000, "Run", MsftBuilder::Inline(vt::kHresult),
              {{"a", MsftBuilder::Inline(vt::kBstr), 0x11, text},
               {"b", MsftBuilder::Inline(vt::kI4), 0x1, -1},
               {"c", MsftBuilder::Inline(vt::kI2), 0x11, Packed(vt::kI2, 9)}}}},
            {});
  auto library = ReadMsft(b.Build());
  ASSERT_TRUE(library.ok()) << library.error().description;
  const RawFunc& run = library->types.at(0).funcs.at(0);
  ASSERT_EQ(run.params.size(), 3u);
  EXPECT_EQ(run.params[0].name, "a");
  EXPECT_EQ(run.params[0].defaultValue, (TlbValue{vt::kBstr, 0, 0, "ok"}));
  EXPECT_FALSE(run.params[1].defaultValue.has_value());
  EXPECT_EQ(run.params[2].defaultValue, (TlbValue{vt::kI2, 9, 0, ""}));
}

}  // namespace
}  // namespace sentrune::portable
