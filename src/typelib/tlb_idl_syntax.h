#pragma once
// The pieces of IDL text the type library's IDL is made of, as widl reads
// them. Private to the IDL writer (tlb_idl.cpp).
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/typelib_source.h"

namespace sentrune::idl {

inline const std::string kIndent(4, ' ');

std::string Hex(uint32_t value);  // "0x0000002A"
// "{XXXXXXXX-...}" without its braces, as uuid() takes it.
std::string Uuid(const std::string& guid);
bool IsNullGuid(const std::string& guid);
// A string literal: widl turns \\ and \" into one character and keeps every
// other byte as it stands.
std::string Literal(std::string_view text);
std::string Comment(std::string_view text);
// "[a, b] " before an item; nothing when there are no attributes.
std::string AttributeList(const std::vector<std::string>& attributes);
// The attributes on their own line above a block's head.
std::string BlockHead(const std::vector<std::string>& attributes, const std::string& head);
std::string Indented(const std::string& lines);

// The IDL name of a variant type, nullptr for one IDL has no name for.
const char* BaseTypeName(unsigned base);
// A default value of a parameter of `type` as widl writes it; nullopt for
// those it cannot write.
std::optional<std::string> WidlDefault(const platform::TlbValue& value, const platform::TlbType& type);

// Declarations of the Automation types and of IUnknown and IDispatch, but
// of none the library defines itself (`defined` holds its names).
std::string AutomationDeclarations(const std::set<std::string>& defined);

}  // namespace sentrune::idl
