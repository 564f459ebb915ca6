#pragma once
// The type library fixtures of tests/fixtures/typelib, decoded and projected,
// and lookups by name into the results.
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/portable/typelib_raw.h"
#include "platform/typelib_source.h"

namespace sentrune::testing {

std::vector<uint8_t> TypeLibFixture(std::string_view fileName);

// Decoding failures are reported as test failures and give an empty library.
portable::RawLibrary DecodeFixture(std::string_view fileName);
platform::TlbLibrary ProjectFixture(std::string_view fileName);

// The named item; a test failure and a static empty item when it is missing.
const portable::RawTypeInfo& RawType(const portable::RawLibrary& library, std::string_view name);
const portable::RawFunc& RawFunction(const portable::RawTypeInfo& type, std::string_view name,
                                     int invokeKind = 1);
const platform::TlbTypeInfo& Type(const platform::TlbLibrary& library, std::string_view name);
const platform::TlbMember& Function(const platform::TlbTypeInfo& type, std::string_view name,
                                    int invokeKind = 1);
const platform::TlbMember& Variable(const platform::TlbTypeInfo& type, std::string_view name);

}  // namespace sentrune::testing
