#pragma once
// Described SLTG libraries for the reader's tests and a comparison of a
// description with what ReadSltg returns for it.
#include <string>

#include "platform/portable/typelib_raw.h"
#include "portable/sltg_builder.h"

namespace sentrune::portable::testing {

inline const std::string kStdoleGuid = "{00020430-0000-0000-C000-000000000046}";
inline const std::string kOtherLibraryGuid = "{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}";

// A library with one type info of every kind: an enum, a record with arrays,
// a dual interface over stdole's IDispatch, a coclass, a dispinterface, two
// aliases and a module of constants. The positions are these:
enum SamplePosition : int32_t {
  kColors, kPoint, kIWidget, kWidget, kIWidgetEvents, kHandle, kWidgetRef, kConstants,
};
SltgLibrary SampleLibrary();

// "I4", "PTR(SAFEARRAY(BSTR))", "USERDEFINED(local 2)", "USERDEFINED(import)".
std::string Describe(const SltgType& type);
std::string Describe(const RawLibrary& raw, int32_t typeDesc);

// Every stored fact of the description against the decoded library, with
// gtest expectations naming the type and member that differ.
void ExpectDecodedAsDescribed(const SltgLibrary& described, const RawLibrary& decoded);

}  // namespace sentrune::portable::testing
