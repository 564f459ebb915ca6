#pragma once
// The type library fixtures of tests/fixtures/typelib (and sltg), decoded and
// projected; lookups by name into the results (a missing item is a test
// failure and gives an empty one); every stored fact of a decoded library.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/pe/pe_test_files.h"
#include "platform/tlb/msft_reader.h"
#include "platform/tlb/typelib_projection.h"
#include "support/robustness.h"

namespace sentrune::testing {

inline std::vector<uint8_t> TypeLibFixture(std::string_view fileName, std::string_view folder = "typelib") {
  auto bytes = ReadHostFile(std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures" / folder / fileName);
  EXPECT_FALSE(bytes.empty()) << "fixture " << fileName << " is missing";
  return bytes;
}

inline portable::RawLibrary DecodeFixture(std::string_view fileName) {
  auto library = portable::ReadMsft(TypeLibFixture(fileName));
  if (library.ok()) return std::move(library).value();
  ADD_FAILURE() << fileName << ": " << library.error().description;
  return {};
}

inline platform::TlbLibrary ProjectFixture(std::string_view fileName) {
  return portable::ProjectLibrary(DecodeFixture(fileName));
}

template <typename Item>
const Item& Named(const std::vector<Item>& items, std::string_view name, int invokeKind = -1) {
  for (const Item& item : items) {
    if (item.name != name) continue;
    if constexpr (requires { item.invokeKind; }) {
      if (invokeKind != -1 && item.invokeKind != invokeKind) continue;
    }
    return item;
  }
  ADD_FAILURE() << "no " << name << " with invoke kind " << invokeKind;
  static const Item kMissing{};
  return kMissing;
}

inline const portable::RawTypeInfo& RawType(const portable::RawLibrary& library, std::string_view name) {
  return Named(library.types, name);
}
inline const portable::RawFunc& RawFunction(const portable::RawTypeInfo& type, std::string_view name,
                                            int invokeKind = 1) {
  return Named(type.funcs, name, invokeKind);
}
inline const platform::TlbTypeInfo& Type(const platform::TlbLibrary& library, std::string_view name) {
  return Named(library.types, name);
}
inline const platform::TlbMember& Function(const platform::TlbTypeInfo& type, std::string_view name,
                                           int invokeKind = 1) {
  return Named(type.functions, name, invokeKind);
}
inline const platform::TlbMember& Variable(const platform::TlbTypeInfo& type, std::string_view name) {
  return Named(type.variables, name);
}

template <typename... Parts>
std::string Join(const Parts&... parts) {
  std::ostringstream out;
  ((out << parts << '|'), ...);
  return out.str();
}
inline std::string Text(const portable::RawLibrary& raw, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= raw.typeDescs.size()) return "none";
  const portable::RawTypeDesc& d = raw.typeDescs[static_cast<size_t>(index)];
  return Join(d.vt, +static_cast<int>(d.ref.kind), d.ref.localIndex, d.ref.importedName, Text(raw, d.element));
}
inline std::string Text(const std::optional<platform::TlbValue>& v) {
  return v ? Join(v->vt, v->integer, v->real, v->text) : "";
}

// Every stored fact of a decoded library, one line per item.
inline std::vector<std::string> Facts(const portable::RawLibrary& raw) {
  std::vector<std::string> lines = {Join(raw.name, raw.helpString, raw.guid, raw.majorVersion, raw.minorVersion)};
  for (const portable::RawTypeInfo& t : raw.types) {
    lines.push_back(Join(t.name, t.helpString, t.guid, +static_cast<int>(t.kind), t.flags, t.vtableSize,
                         +t.pointerSize, Text(raw, t.aliasType)));
    for (const portable::RawImpl& impl : t.impls) lines.push_back(Join(" impl", impl.ref.localIndex, impl.flags));
    for (const portable::RawFunc& f : t.funcs) {
      lines.push_back(Join(" func", f.memberId, f.name, f.helpString, +f.funcKind, +f.invokeKind, f.flags,
                           f.vtableOffset, f.optionalCount, Text(raw, f.returnType)));
      for (const portable::RawParam& p : f.params) lines.push_back(Join("  ", p.name, p.flags, Text(raw, p.type)));
    }
    for (const portable::RawVar& v : t.vars) {
      lines.push_back(
          Join(" var", v.memberId, v.name, v.helpString, +v.varKind, v.flags, Text(raw, v.type), Text(v.value)));
    }
  }
  return lines;
}

// A robustness reader over a decoder: decodes and projects, and sums up
// every stored fact; a refusal must be the "can't load" error with a reason.
inline Reader DecodeAndProject(rt::Result<portable::RawLibrary> (*decode)(std::span<const uint8_t>)) {
  return [decode](std::span<const uint8_t> bytes) -> std::optional<std::string> {
    auto raw = decode(bytes);
    if (!raw.ok()) {
      EXPECT_EQ(raw.error().number, rt::errnum::kCantLoadTypeLibrary);
      EXPECT_FALSE(raw.error().description.empty());
      return std::nullopt;
    }
    EXPECT_EQ(portable::ProjectLibrary(*raw).types.size(), raw->types.size());
    std::string facts;
    for (const std::string& line : Facts(*raw)) facts += line + "\n";
    return facts;
  };
}

}  // namespace sentrune::testing
