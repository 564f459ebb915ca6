#pragma once
// IDL for a type library as the source presents it, written so that widl
// compiles it back into a library whose model compares equal to the
// original's. It is a way to rebuild or hand-edit a component's interface
// description, not a copy of the original IDL: dual interfaces come out with
// the functions of their dispatch view, aliases as placeholder typedefs,
// interfaces derive from IDispatch or IUnknown. Help strings of fields and
// enumeration constants, which widl cannot store, are kept as comments.
//
// Types of other libraries come through importlib of the file the library
// names for them. Where the library does not record a type's name (any
// library but stdole), the IDL calls it IdlImportName(): compiling it needs
// that library, or a stand-in for it, to define that name.
#include <string>

#include "platform/typelib_source.h"
#include "runtime/result.h"

namespace sentrune {

// UTF-8 text; widl reads string literals byte for byte, so write it out in
// Windows-1252 (rt::Utf8ToCp1252) for non-ASCII texts to survive.
// Fails, naming the type info and member, for a library that has what IDL
// cannot say or widl cannot store: a type that is unresolved (code 29
// without an origin), of a library it does not say, or imported under a name
// of its own types; a default that is a double, currency, date or null, or
// empty where widl stores a value.
rt::Result<std::string> TypeLibIdl(const platform::TlbLibrary& library);

// "Imported_" and the type's GUID, or the library's file and the type's
// position in it, as an identifier.
std::string IdlImportName(const platform::TlbImport& origin);

}  // namespace sentrune
