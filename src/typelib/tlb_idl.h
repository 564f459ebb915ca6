#pragma once
// IDL for a type library as the source presents it, written so that widl
// compiles it back into a library whose model compares equal to the
// original's. It is a way to rebuild or hand-edit a component's interface
// description, not a copy of the original IDL: dual interfaces come out as
// dispinterfaces (their dispatch view), aliases as placeholder typedefs.
// What widl cannot write is kept as a comment and does not come back:
// defaults that are reals, currency, dates, empty or null, and help strings
// of enumeration constants. Types from libraries other than stdole are
// written by name and need their importlib added by hand.
#include <string>

#include "platform/typelib_source.h"
#include "runtime/result.h"

namespace sentrune {

// UTF-8 text; widl reads string literals byte for byte, so write it out in
// Windows-1252 (rt::Utf8ToCp1252) for non-ASCII texts to survive.
// Fails for a library that names a type it cannot resolve (code 29 without
// a name), since no IDL can say that.
rt::Result<std::string> TypeLibIdl(const platform::TlbLibrary& library);

}  // namespace sentrune
