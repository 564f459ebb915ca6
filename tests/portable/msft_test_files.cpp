#include "msft_test_files.h"

#include <gtest/gtest.h>

#include <string>

#include "pe_test_files.h"
#include "platform/portable/msft_reader.h"
#include "platform/portable/typelib_projection.h"

namespace sentrune::testing {
namespace {

template <typename Item, typename Match>
const Item& Find(const std::vector<Item>& items, std::string_view what, Match match) {
  for (const Item& item : items) {
    if (match(item)) return item;
  }
  ADD_FAILURE() << "no " << what;
  static const Item kMissing{};
  return kMissing;
}

}  // namespace

std::vector<uint8_t> TypeLibFixture(std::string_view fileName) {
  const auto path = std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/typelib" / fileName;
  auto bytes = ReadHostFile(path);
  EXPECT_FALSE(bytes.empty()) << "fixture " << fileName << " is missing";
  return bytes;
}

portable::RawLibrary DecodeFixture(std::string_view fileName) {
  auto library = portable::ReadMsft(TypeLibFixture(fileName));
  if (!library.ok()) {
    ADD_FAILURE() << fileName << ": " << library.error().description;
    return {};
  }
  return std::move(library).value();
}

platform::TlbLibrary ProjectFixture(std::string_view fileName) {
  return portable::ProjectLibrary(DecodeFixture(fileName));
}

const portable::RawTypeInfo& RawType(const portable::RawLibrary& library, std::string_view name) {
  return Find(library.types, "type " + std::string(name),
              [&](const portable::RawTypeInfo& type) { return type.name == name; });
}

const portable::RawFunc& RawFunction(const portable::RawTypeInfo& type, std::string_view name,
                                     int invokeKind) {
  return Find(type.funcs, "function " + std::string(name), [&](const portable::RawFunc& func) {
    return func.name == name && func.invokeKind == invokeKind;
  });
}

const platform::TlbTypeInfo& Type(const platform::TlbLibrary& library, std::string_view name) {
  return Find(library.types, "type " + std::string(name),
              [&](const platform::TlbTypeInfo& type) { return type.name == name; });
}

const platform::TlbMember& Function(const platform::TlbTypeInfo& type, std::string_view name,
                                    int invokeKind) {
  return Find(type.functions, "function " + std::string(name),
              [&](const platform::TlbMember& m) { return m.name == name && m.invokeKind == invokeKind; });
}

const platform::TlbMember& Variable(const platform::TlbTypeInfo& type, std::string_view name) {
  return Find(type.variables, "variable " + std::string(name),
              [&](const platform::TlbMember& m) { return m.name == name; });
}

}  // namespace sentrune::testing
