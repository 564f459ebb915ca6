#pragma once
// The system's VARIANTs and GUIDs in the form platform::TypeLibSource gives
// them.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <string>

#include "platform/typelib_source.h"

namespace sentrune::win32 {

// Integers sign- or zero-extended by their kind, currency as its scaled
// integer, reals and dates as doubles, strings in UTF-8; a value typed
// VARIANT is empty, and any other kind keeps only its type code.
platform::TlbValue ToValue(const VARIANT& value);

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case.
std::string GuidText(const GUID& guid);

}  // namespace sentrune::win32
