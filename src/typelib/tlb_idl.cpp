#include "typelib/tlb_idl.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "typelib/tlb_render.h"

namespace sentrune {
namespace {

namespace vt = platform::vt;
using platform::TlbLibrary;
using platform::TlbMember;
using platform::TlbParam;
using platform::TlbType;
using platform::TlbTypeInfo;
using platform::TlbValue;

const std::string kIndent(4, ' ');
const std::string kIndent2(8, ' ');

// The inherited IUnknown and IDispatch functions at the head of a dispatch
// view; a dispinterface gets them from IDispatch again.
bool IsInheritedDispatchFunction(const TlbMember& f) {
  static const std::set<std::string_view> kNames = {"QueryInterface", "AddRef", "Release", "GetTypeInfoCount",
                                                    "GetTypeInfo", "GetIDsOfNames", "Invoke"};
  return (f.flags & 0x1) != 0 && kNames.contains(f.name);
}

// Enumerations stdole declares; every other name from outside the library is
// taken for an object type, as the imports components use are.
bool IsImportedEnum(std::string_view name) { return name == "OLE_TRISTATE" || name == "LoadPictureConstants"; }

// The source resolves stdole's aliases to their dispinterfaces, which widl
// knows only by the alias names that ocidl.idl declares.
std::string ImportedName(const std::string& name) {
  if (name == "Font") return "IFontDisp";
  if (name == "Picture") return "IPictureDisp";
  if (name == "FontEvents") return "IFontEventsDisp";
  return name;
}

std::string Hex(uint32_t value) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "0x%08X", value);
  return buffer;
}

std::string Uuid(const std::string& guid) {
  if (guid.size() == 38 && guid.front() == '{' && guid.back() == '}') return guid.substr(1, 36);
  return guid;
}

bool IsNullGuid(const std::string& guid) { return guid.empty() || Uuid(guid) == "00000000-0000-0000-0000-000000000000"; }

// widl turns \\ and \" into one character and keeps every other byte as it
// stands, so that is all that needs escaping.
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

// "[a, b] " before an item; nothing when there are no attributes.
std::string AttributeList(const std::vector<std::string>& attributes) {
  if (attributes.empty()) return "";
  std::string out = "[";
  for (size_t i = 0; i < attributes.size(); ++i) out += (i ? ", " : "") + attributes[i];
  return out + "] ";
}

// The attributes on their own line above a block's head.
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
    out += kIndent + lines.substr(start, end == std::string::npos ? end : end - start + 1);
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

// widl writes integer, boolean, string and null-object defaults only; it
// cannot write reals, currency or dates, and empty or null have no IDL form.
std::optional<std::string> WidlDefault(const TlbValue& value) {
  switch (value.vt) {
    case vt::kBstr: case vt::kLpStr: case vt::kLpWStr: return Literal(value.text);
    case vt::kDispatch: case vt::kUnknown: return "0";
    case vt::kEmpty: case vt::kNull: case vt::kR4: case vt::kR8: case vt::kCy: case vt::kDate: case vt::kDecimal:
      return std::nullopt;
    case vt::kUI1: case vt::kUI2: case vt::kUI4: case vt::kUI8: case vt::kUInt:
      return std::to_string(static_cast<uint64_t>(value.integer));
    default: return std::to_string(value.integer);
  }
}

class IdlWriter {
 public:
  explicit IdlWriter(const TlbLibrary& lib) : lib_(lib) {
    for (const TlbTypeInfo& info : lib_.types)
      if (seen_.insert(info.name).second) unique_.push_back(&info);
  }

  rt::Result<std::string> Write() {
    for (const TlbTypeInfo* info : unique_)
      if (info->kind == "enum") Enum(*info);
    for (const TlbTypeInfo* info : RecordsInDependencyOrder()) Record(*info);
    for (const TlbTypeInfo* info : unique_) Other(*info);
    if (error_) return *error_;
    return Prologue() + Library() + Indented(body_) + "};\n";
  }

 private:
  const TlbTypeInfo* Find(const std::string& name) const {
    for (const TlbTypeInfo* info : unique_)
      if (info->name == name) return info;
    return nullptr;
  }

  static bool IsValueKind(const std::string& kind) {
    return kind == "enum" || kind == "record" || kind == "alias" || kind == "union";
  }

  std::string ElementName(const TlbType& type) {
    const unsigned base = type.code & 0xFF;
    if (base == 0 && !type.userTypeName.empty()) {
      const TlbTypeInfo* info = Find(type.userTypeName);
      if (info ? IsValueKind(info->kind) : IsImportedEnum(type.userTypeName)) return type.userTypeName;
      return (info ? type.userTypeName : ImportedName(type.userTypeName)) + "*";
    }
    if (const char* name = BaseTypeName(base)) return name;
    if (!error_)
      error_ = rt::MakeError(rt::errnum::kTypeMismatch, context_ + " uses a type IDL cannot name (variant type " +
                                                            std::to_string(base) + ", unresolved or imported)");
    return "VARIANT";
  }

  // widl takes no pointer inside SAFEARRAY(...), so arrays of objects go
  // through a typedef declared outside the library (which adds no type info).
  std::string ArrayElement(const std::string& element) {
    if (!element.ends_with('*')) return element;
    const std::string name = element.substr(0, element.size() - 1) + "__ptr";
    pointerTypedefs_.insert({name, element});
    return name;
  }

  std::string TypeName(const TlbType& type) {
    std::string name = ElementName(type);
    if (type.code & vt::kArrayFlag) name = "SAFEARRAY(" + ArrayElement(name) + ")";
    if (type.code & vt::kByRefFlag) name += "*";
    return name;
  }

  std::string Parameter(const TlbParam& p, size_t index) {
    std::vector<std::string> attributes{(p.type.code & vt::kByRefFlag) ? "in, out" : "in"};
    const std::optional<std::string> value = p.hasDefault ? WidlDefault(p.defaultValue) : std::nullopt;
    if (p.optional || (p.hasDefault && !value)) attributes.push_back("optional");
    if (value) attributes.push_back("defaultvalue(" + *value + ")");
    // The value of a property put is stored without a name.
    std::string text = AttributeList(attributes) + TypeName(p.type) + " " +
                       (p.name.empty() ? "rhs" + std::to_string(index) : p.name);
    if (p.hasDefault && !value) text += " " + Comment("= " + DefaultValueText(p.defaultValue));
    return text;
  }

  static void AddFlagAttributes(uint32_t flags, std::vector<std::string>& attributes) {
    static const std::array<std::pair<uint32_t, const char*>, 11> kFlags = {{
        {0x1, "restricted"}, {0x2, "source"}, {0x4, "bindable"}, {0x8, "requestedit"}, {0x10, "displaybind"},
        {0x20, "defaultbind"}, {0x40, "hidden"}, {0x100, "defaultcollelem"}, {0x200, "uidefault"},
        {0x400, "nonbrowsable"}, {0x1000, "immediatebind"}}};
    const size_t before = attributes.size();
    for (const auto& [bit, name] : kFlags)
      if (flags & bit) attributes.push_back(name);
    // Any flag keeps a member out of the model; hidden stands in for the rest.
    if (flags != 0 && attributes.size() == before) attributes.push_back("hidden");
  }

  std::string Function(const TlbMember& f, bool inModule) {
    context_ = current_ + "." + f.name;
    std::vector<std::string> attributes;
    attributes.push_back(inModule ? "entry(" + Literal(f.name) + ")" : "id(" + Hex(static_cast<uint32_t>(f.memberId)) + ")");
    if (f.invokeKind == 2) attributes.push_back("propget");
    if (f.invokeKind == 4) attributes.push_back("propput");
    if (f.invokeKind == 8) attributes.push_back("propputref");
    AddFlagAttributes(f.flags, attributes);
    if (!f.helpString.empty()) attributes.push_back("helpstring(" + Literal(f.helpString) + ")");
    std::string line = kIndent + AttributeList(attributes) + TypeName(f.type) + (inModule ? " __stdcall " : " ") +
                       f.name + "(";
    for (size_t i = 0; i < f.params.size(); ++i) line += (i ? ", " : "") + Parameter(f.params[i], i);
    return line + ");\n";
  }

  static std::vector<std::string> TypeAttributes(const TlbTypeInfo& info, bool withUuid) {
    std::vector<std::string> attributes;
    if (withUuid && !IsNullGuid(info.guid)) attributes.push_back("uuid(" + Uuid(info.guid) + ")");
    if (info.flags & 0x10) attributes.push_back("hidden");
    if (info.flags & 0x200) attributes.push_back("restricted");
    if (!info.helpString.empty()) attributes.push_back("helpstring(" + Literal(info.helpString) + ")");
    return attributes;
  }

  // Imports, then every interface, dispinterface and coclass declared ahead
  // so that the library's types may name each other in any order.
  std::string Prologue() const {
    std::string out = "import \"oaidl.idl\";\nimport \"ocidl.idl\";\n\n";
    for (const TlbTypeInfo* info : unique_) {
      if (info->kind == "interface") out += "interface " + info->name + ";\n";
      if (info->kind == "dispatch") out += "dispinterface " + info->name + ";\n";
      if (info->kind == "coclass") out += "coclass " + info->name + ";\n";
    }
    for (const auto& [name, element] : pointerTypedefs_) out += "typedef " + element + " " + name + ";\n";
    return out + "\n";
  }

  std::string Library() const {
    std::vector<std::string> attributes{"uuid(" + Uuid(lib_.guid) + ")", "version(" + std::to_string(lib_.majorVersion) +
                                                                             "." + std::to_string(lib_.minorVersion) + ")"};
    if (!lib_.helpString.empty()) attributes.push_back("helpstring(" + Literal(lib_.helpString) + ")");
    return BlockHead(attributes, "library " + lib_.name) + kIndent + "importlib(\"stdole2.tlb\");\n\n";
  }

  void Enum(const TlbTypeInfo& info) {
    body_ += "typedef " + AttributeList(TypeAttributes(info, true)) + "enum " + info.name + " {\n";
    for (size_t i = 0; i < info.variables.size(); ++i) {
      const TlbMember& c = info.variables[i];
      const int32_t value = c.value ? static_cast<int32_t>(c.value->integer) : 0;
      body_ += kIndent + c.name + " = " + std::to_string(value) + (i + 1 < info.variables.size() ? "," : "");
      // widl takes no attributes on constants; the help string stays visible.
      body_ += (c.helpString.empty() ? "" : " " + Comment(c.helpString)) + "\n";
    }
    body_ += "} " + info.name + ";\n\n";
  }

  void Record(const TlbTypeInfo& info) {
    body_ += "typedef " + AttributeList(TypeAttributes(info, true)) + "struct " + info.name + " {\n";
    for (const TlbMember& field : info.variables) {
      context_ = info.name + "." + field.name;
      std::vector<std::string> attributes;
      if (!field.helpString.empty()) attributes.push_back("helpstring(" + Literal(field.helpString) + ")");
      body_ += kIndent + AttributeList(attributes) + TypeName(field.type) + " " + field.name + ";\n";
    }
    body_ += "} " + info.name + ";\n\n";
  }

  // A record can hold another by value only when that one is declared first.
  std::vector<const TlbTypeInfo*> RecordsInDependencyOrder() const {
    std::vector<const TlbTypeInfo*> pending;
    for (const TlbTypeInfo* info : unique_)
      if (info->kind == "record") pending.push_back(info);
    std::vector<const TlbTypeInfo*> ordered;
    std::set<std::string> done;
    while (!pending.empty()) {
      auto ready = std::find_if(pending.begin(), pending.end(), [&](const TlbTypeInfo* r) {
        return std::all_of(r->variables.begin(), r->variables.end(), [&](const TlbMember& f) {
          const TlbTypeInfo* used = Find(f.type.userTypeName);
          return !used || used == r || used->kind != "record" || done.contains(used->name);
        });
      });
      if (ready == pending.end()) ready = pending.begin();  // a cycle: keep the library's order
      done.insert((*ready)->name);
      ordered.push_back(*ready);
      pending.erase(ready);
    }
    return ordered;
  }

  void Other(const TlbTypeInfo& info) {
    current_ = info.name;
    if (info.kind == "interface") Interface(info);
    if (info.kind == "dispatch") Dispatch(info);
    if (info.kind == "coclass") Coclass(info);
    if (info.kind == "module") Module(info);
    if (info.kind == "alias") Alias(info);
    if (info.kind == "union") Union(info);
  }

  void Interface(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info, true);
    attributes.insert(attributes.begin(), "odl");
    if (info.flags & 0x100) attributes.push_back("oleautomation");
    body_ += BlockHead(attributes, "interface " + info.name + " : IUnknown");
    for (const TlbMember& f : info.functions) body_ += Function(f, false);
    body_ += "};\n\n";
  }

  void Dispatch(const TlbTypeInfo& info) {
    body_ += BlockHead(TypeAttributes(info, true), "dispinterface " + info.name) + "properties:\nmethods:\n";
    for (const TlbMember& f : info.functions)
      if (!IsInheritedDispatchFunction(f)) body_ += Function(f, false);
    body_ += "};\n\n";
  }

  void Coclass(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info, true);
    if ((info.flags & 0x2) == 0) attributes.push_back("noncreatable");
    if (info.flags & 0x1) attributes.push_back("appobject");
    if (info.flags & 0x4) attributes.push_back("licensed");
    if (info.flags & 0x20) attributes.push_back("control");
    body_ += BlockHead(attributes, "coclass " + info.name);
    body_ += Implemented(info.defaultInterface, "[default] ") + Implemented(info.defaultSource, "[default, source] ");
    body_ += "};\n\n";
  }

  std::string Implemented(int position, const char* attributes) const {
    if (position < 0 || static_cast<size_t>(position) >= lib_.types.size()) return "";
    const TlbTypeInfo& target = lib_.types[position];
    return kIndent + attributes + (target.kind == "dispatch" ? "dispinterface " : "interface ") + target.name + ";\n";
  }

  void Module(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info, true);
    attributes.insert(attributes.begin(), "dllname(" + Literal(lib_.name + ".dll") + ")");
    body_ += BlockHead(attributes, "module " + info.name);
    for (const TlbMember& f : info.functions) body_ += Function(f, true);
    body_ += "};\n\n";
  }

  // The source resolves aliases, so nothing refers to one: only its name
  // (and its zero GUID) reach the model.
  void Alias(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info, false);
    attributes.insert(attributes.begin(), "public");
    body_ += "typedef " + AttributeList(attributes) + "long " + info.name + ";\n\n";
  }

  void Union(const TlbTypeInfo& info) {
    body_ += "typedef " + AttributeList(TypeAttributes(info, false)) + "union " + info.name + " {\n" + kIndent +
             "long placeholder;\n} " + info.name + ";\n\n";
  }

  const TlbLibrary& lib_;
  std::vector<const TlbTypeInfo*> unique_;  // the first type info of each name
  std::set<std::string> seen_;
  std::set<std::pair<std::string, std::string>> pointerTypedefs_;  // name, pointer type
  std::string body_;
  std::string current_;  // the type info and member being written, for errors
  std::string context_;
  std::optional<rt::VbError> error_;
};

}  // namespace

rt::Result<std::string> TypeLibIdl(const platform::TlbLibrary& library) { return IdlWriter(library).Write(); }

}  // namespace sentrune
