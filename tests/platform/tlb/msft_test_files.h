#pragma once
// The type library fixtures of tests/fixtures/typelib, decoded and projected,
// and lookups by name into the results: a missing item is a test failure and
// gives an empty one.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/pe/pe_test_files.h"
#include "platform/tlb/msft_reader.h"
#include "platform/tlb/typelib_projection.h"

namespace sentrune::testing {

inline std::vector<uint8_t> TypeLibFixture(std::string_view fileName) {
  auto bytes = ReadHostFile(std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/typelib" / fileName);
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

}  // namespace sentrune::testing
