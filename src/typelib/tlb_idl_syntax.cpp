#include "typelib/tlb_idl_syntax.h"

#include <array>
#include <bit>
#include <cstdio>
#include <utility>

#include "typelib/tlb_render.h"

namespace sentrune::idl {
namespace {

namespace vt = platform::vt;

// widl knows these by name, whatever they are declared as, and the system's
// IDL files are not imported: they declare names (POINT, IUnknown, ...) that
// libraries define for themselves.
constexpr std::array<std::pair<const char*, const char*>, 10> kAutomationTypes = {{
    {"VARIANT_BOOL", "short"}, {"SCODE", "long"}, {"HRESULT", "long"}, {"DATE", "double"},
    {"CURRENCY", "double"}, {"DECIMAL", "double"}, {"BSTR", "long"}, {"VARIANT", "void*"},
    {"LPSTR", "[string] char*"}, {"LPWSTR", "[string] wchar_t*"}}};

// Declared for their methods, which interfaces deriving from them count;
// stdole2.tlb provides them to the library.
constexpr const char* kIUnknown =
    "[local, uuid(00000000-0000-0000-C000-000000000046)]\n"
    "interface IUnknown {\n"
    "    HRESULT QueryInterface([in] void* riid, [out] void** ppvObj);\n"
    "    unsigned long AddRef();\n"
    "    unsigned long Release();\n"
    "}\n\n";
constexpr const char* kIDispatchMethods =
    " {\n"
    "    HRESULT GetTypeInfoCount([out] unsigned int* pctinfo);\n"
    "    HRESULT GetTypeInfo([in] unsigned int itinfo, [in] unsigned long lcid, [out] void** pptinfo);\n"
    "    HRESULT GetIDsOfNames([in] void* riid, [in] void* rgszNames, [in] unsigned int cNames,\n"
    "                          [in] unsigned long lcid, [out] long* rgdispid);\n"
    "    HRESULT Invoke([in] long dispidMember, [in] void* riid, [in] unsigned long lcid, [in] unsigned short wFlags,\n"
    "                   [in] void* pdispparams, [out] VARIANT* pvarResult, [out] void* pexcepinfo,\n"
    "                   [out] unsigned int* puArgErr);\n"
    "}\n\n";

}  // namespace

std::string Hex(uint32_t value) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "0x%08X", value);
  return buffer;
}

std::string Uuid(const std::string& guid) {
  if (guid.size() == 38 && guid.front() == '{' && guid.back() == '}') return guid.substr(1, 36);
  return guid;
}

bool IsNullGuid(const std::string& guid) {
  return guid.empty() || Uuid(guid) == "00000000-0000-0000-0000-000000000000";
}

std::string Literal(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

std::string Comment(std::string_view text) {
  std::string safe(text);
  for (size_t at = safe.find("*/"); at != std::string::npos; at = safe.find("*/")) safe.replace(at, 2, "* /");
  return "/* " + safe + " */";
}

std::string AttributeList(const std::vector<std::string>& attributes) {
  if (attributes.empty()) return "";
  std::string out = "[";
  for (size_t i = 0; i < attributes.size(); ++i) out += (i ? ", " : "") + attributes[i];
  return out + "] ";
}

std::string BlockHead(const std::vector<std::string>& attributes, const std::string& head) {
  std::string out;
  if (!attributes.empty()) {
    out = AttributeList(attributes);
    out.back() = '\n';
  }
  return out + head + " {\n";
}

std::string Indented(const std::string& lines) {
  std::string out;
  size_t start = 0;
  while (start < lines.size()) {
    const size_t end = lines.find('\n', start);
    if (end != start) out += kIndent;
    out += lines.substr(start, end == std::string::npos ? end : end - start + 1);
    start = end == std::string::npos ? lines.size() : end + 1;
  }
  return out;
}

const char* BaseTypeName(unsigned base) {
  switch (base) {
    case vt::kI2: return "short";
    case vt::kI4: return "long";
    case vt::kR4: return "float";
    case vt::kR8: return "double";
    case vt::kCy: return "CURRENCY";
    case vt::kDate: return "DATE";
    case vt::kBstr: return "BSTR";
    case vt::kDispatch: return "IDispatch*";
    case vt::kError: return "SCODE";
    case vt::kBool: return "VARIANT_BOOL";
    case vt::kVariant: return "VARIANT";
    case vt::kUnknown: return "IUnknown*";
    case vt::kDecimal: return "DECIMAL";
    case vt::kI1: return "char";
    case vt::kUI1: return "unsigned char";
    case vt::kUI2: return "unsigned short";
    case vt::kUI4: return "unsigned long";
    case vt::kI8: return "hyper";
    case vt::kUI8: return "unsigned hyper";
    case vt::kInt: return "int";
    case vt::kUInt: return "unsigned int";
    case vt::kVoid: return "void";
    case vt::kHresult: return "HRESULT";
    case vt::kLpStr: return "LPSTR";
    case vt::kLpWStr: return "LPWSTR";
    default: return nullptr;
  }
}

// Whether widl stores a parameter's default as "no value", which reads as
// empty: for the types it has no default values of, and for a VARIANT*,
// whose null default it stores typed VARIANT.
bool StoresNoValue(const platform::TlbType& type) {
  const unsigned base = type.code & 0xFF;
  if (type.code & vt::kArrayFlag) return true;
  if (type.code & vt::kByRefFlag) return base == vt::kVariant;
  switch (base) {
    case vt::kEmpty: case vt::kI2: case vt::kI4: case vt::kR4: case vt::kBool: case vt::kI1: case vt::kUI1:
    case vt::kUI2: case vt::kUI4: case vt::kInt: case vt::kUInt: case vt::kHresult: case vt::kVariant:
      return false;
    default: return true;
  }
}

// widl writes integer, boolean, string and null-object defaults only; it
// cannot write doubles, currency or dates, and null has no IDL form. A
// float's default it stores as the bits of the integer given.
std::optional<std::string> WidlDefault(const platform::TlbValue& value, const platform::TlbType& type) {
  if (value.vt == vt::kEmpty && StoresNoValue(type)) return "0";
  switch (value.vt) {
    case vt::kBstr: case vt::kLpStr: case vt::kLpWStr: return Literal(value.text);
    case vt::kDispatch: case vt::kUnknown: return "0";
    case vt::kR4:
      if (type.code != vt::kR4) return std::nullopt;
      return Hex(std::bit_cast<uint32_t>(static_cast<float>(value.real))) + " " + Comment(DefaultValueText(value));
    case vt::kEmpty: case vt::kNull: case vt::kR8: case vt::kCy: case vt::kDate: case vt::kDecimal:
      return std::nullopt;
    case vt::kUI1: case vt::kUI2: case vt::kUI4: case vt::kUI8: case vt::kUInt:
      return std::to_string(static_cast<uint64_t>(value.integer));
    default: return std::to_string(value.integer);
  }
}

std::string AutomationDeclarations(const std::set<std::string>& defined) {
  std::string out;
  for (const auto& [name, declared] : kAutomationTypes)
    if (!defined.contains(name)) out += std::string("typedef ") + declared + " " + name + ";\n";
  out += "\n";
  if (!defined.contains("IUnknown")) out += kIUnknown;
  // Without stdole's IUnknown there is no base to declare it with here.
  if (!defined.contains("IDispatch"))
    out += std::string("[local, uuid(00020400-0000-0000-C000-000000000046)]\ninterface IDispatch") +
           (defined.contains("IUnknown") ? "" : " : IUnknown") + kIDispatchMethods;
  return out;
}

}  // namespace sentrune::idl
