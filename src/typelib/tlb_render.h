#pragma once
// Declaration texts of type library members as a VB programmer would write
// them. The text is a member's identity when two builds are compared, so every
// byte here is load-bearing: keys from earlier models must keep matching.
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/typelib_source.h"

namespace sentrune {

// " As Long", "() As String", " As <Unsupported Variant Type(VT_UI2)>"...
std::string sfncTranslateType(uint16_t code);

// sfncTranslateType, except that a user-defined type (base code 0 with a
// name) reads " As " + name, or "() As " + name when it is an array.
std::string TypeText(const platform::TlbType& type);

// "Sub", "Function", "Property Get", ...; empty text for an invoke kind the
// library should never hold.
std::string sfncGetMemberType(int invokeKind, const platform::TlbType& returnType);

// "_B_str_Mid" -> "Mid$", "_B_var_Mid" -> "Mid"; other names as they are.
std::string UnmangleName(std::string_view name);

// A string as VB source text: printable runs in quotes, everything else as
// Chr$(n) calls (a lone tab is `Chr$(9) `).
std::string sfncParseForNonPrintable(std::string_view text);

// A parameter's default value as source text ("" for empty and null).
std::string DefaultValueText(const platform::TlbValue& value);

// The whole declaration of a function of a class (subEvaluateClassMember),
// e.g. "Function Find(ByVal Key As String) As Long".
std::string MemberDeclaration(const platform::TlbMember& member);

// The text after the first occurrence of `scope` (ignoring case), trimmed and
// cut before its first "'" comment: "Public Property Get X() As Long 'help"
// with scope "Property" gives "Get X() As Long".
std::string sfncStripScopeDefAndHelp(std::string_view text, std::string_view scope);
// The same text, as a view into `text`.
std::string_view StripScopeDefAndHelpView(std::string_view text, std::string_view scope);

// Blanks (U+0020) trimmed from both ends, as a view into `text`.
std::string_view TrimBlanks(std::string_view text);

}  // namespace sentrune
