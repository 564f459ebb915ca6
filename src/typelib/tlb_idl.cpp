#include "typelib/tlb_idl.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "typelib/tlb_idl_syntax.h"
#include "typelib/tlb_render.h"

namespace sentrune {
namespace {

namespace vt = platform::vt;
using idl::AttributeList;
using idl::BlockHead;
using idl::kIndent;
using idl::Literal;
using platform::TlbImport;
using platform::TlbLibrary;
using platform::TlbMember;
using platform::TlbParam;
using platform::TlbType;
using platform::TlbTypeInfo;

constexpr std::string_view kStdoleGuid = "{00020430-0000-0000-C000-000000000046}";
constexpr const char* kStdoleFile = "stdole2.tlb";

bool IsObjectKind(std::string_view kind) { return kind == "interface" || kind == "dispatch" || kind == "coclass"; }

// How IDL declares an object type info; a dual's dispatch view is written as
// the dual interface.
std::string ObjectWord(const platform::TlbTypeInfo& info) {
  if (info.kind == "coclass") return "coclass ";
  return info.kind == "dispatch" && (info.flags & 0x40) == 0 ? "dispinterface " : "interface ";
}

// The inherited IUnknown and IDispatch functions at the head of a dispatch
// view; a dispinterface gets them from IDispatch again.
bool IsInheritedDispatchFunction(const TlbMember& f) {
  static const std::set<std::string_view> kNames = {"QueryInterface", "AddRef", "Release", "GetTypeInfoCount",
                                                    "GetTypeInfo", "GetIDsOfNames", "Invoke"};
  return (f.flags & 0x1) != 0 && kNames.contains(f.name);
}

// A source that names a type of another library without saying where it
// comes from (the system's) means one of stdole's, as nearly always.
std::string StdoleKind(const std::string& name) {
  if (name == "OLE_TRISTATE" || name == "LoadPictureConstants") return "enum";
  if (name == "GUID" || name == "DISPPARAMS" || name == "EXCEPINFO") return "record";
  return "interface";
}

// The file importlib names for a type's library; empty when unknown.
std::string LibraryFile(const TlbImport* origin) {
  if (origin == nullptr || origin->libraryGuid == kStdoleGuid) return kStdoleFile;
  return origin->library;
}

// A type of another library as the prologue declares it. widl finds it in an
// imported library by name, so what it is declared as matters only to the
// parser and to how widl writes defaults: objects and tagged types by kind,
// the rest as public typedefs.
struct Foreign {
  std::string kind;
  std::string note;  // what it is, as a comment
};

std::string ForeignDeclaration(const std::string& name, const Foreign& foreign) {
  const std::string note = " " + idl::Comment(foreign.note) + "\n";
  // An enumeration, so that widl writes the defaults of parameters of it.
  if (foreign.kind == "enum") return "enum " + name + " {};" + note;
  std::string head = "typedef [public] long ";
  if (foreign.kind == "record") head = "struct ";
  if (foreign.kind == "union") head = "union ";
  if (foreign.kind == "interface") head = "interface ";
  if (foreign.kind == "dispatch") head = "dispinterface ";
  if (foreign.kind == "coclass") head = "coclass ";
  return head + name + ";" + note;
}

class IdlWriter {
 public:
  explicit IdlWriter(const TlbLibrary& lib) : lib_(lib) {
    for (const TlbTypeInfo& info : lib_.types) {
      if (!names_.insert(info.name).second) continue;
      unique_.push_back(&info);
      if (TagWord(info.kind).empty()) typedefNames_.insert(info.name);
    }
  }

  // widl adds a type info where the library first names it, by itself or
  // through another's members, so the library has every type info in its
  // order: enumerations, unions and records by reference (they are defined
  // ahead, where any may name any other), the rest defined in place.
  rt::Result<std::string> Write() {
    for (const TlbTypeInfo* info : unique_) {
      current_ = info->name;
      if (info->kind == "enum") Enum(*info);
      if (info->kind == "union") Union(*info);
      if (info->kind == "record") Record(*info);
      if (info->kind == "interface") Interface(*info);
      if (info->kind == "dispatch") Dispatch(*info);
      if (info->kind == "coclass") Coclass(*info);
      if (info->kind == "module") Module(*info);
      if (info->kind == "alias") Alias(*info);
    }
    if (error_) return *error_;
    if (listing_.ends_with("\n\n")) listing_.pop_back();
    return Prologue() + enums_ + unions_ + records_ + Library() + idl::Indented(listing_) + "};\n";
  }

 private:
  const TlbTypeInfo* Find(const std::string& name) const {
    for (const TlbTypeInfo* info : unique_)
      if (info->name == name) return info;
    return nullptr;
  }

  void Fail(const std::string& what) {
    if (!error_) error_ = rt::MakeError(rt::errnum::kTypeMismatch, context_ + " " + what);
  }

  std::string ElementName(const TlbType& type) {
    const unsigned base = type.code & 0xFF;
    if (base == 0 && !type.userTypeName.empty()) {
      const TlbTypeInfo* local = type.imported ? nullptr : Find(type.userTypeName);
      return local ? LocalName(*local) : ForeignName(type.userTypeName, type.imported.get());
    }
    if (base == vt::kUserDefined && type.imported)
      return ForeignName(IdlImportName(*type.imported), type.imported.get());
    if (const char* name = idl::BaseTypeName(base)) return name;
    Fail("uses a type IDL cannot name (variant type " + std::to_string(base) + ", unresolved)");
    return "VARIANT";
  }

  // Value types go by their tags, which stay free for references: the
  // typedefs that carry their attributes have other names.
  static std::string LocalName(const TlbTypeInfo& info) {
    if (IsObjectKind(info.kind)) return info.name + "*";
    return TagWord(info.kind) + info.name;
  }

  static std::string TagWord(std::string_view kind) {
    if (kind == "record") return "struct ";
    return kind == "union" ? "union " : kind == "enum" ? "enum " : "";
  }

  std::string ForeignName(const std::string& name, const TlbImport* origin) {
    const std::string library = LibraryFile(origin);
    const std::string kind = origin ? origin->kind : StdoleKind(name);
    const bool tagged = !TagWord(kind).empty();
    if (library.empty() || Clashes(name, tagged)) {
      Fail("uses " + name + (library.empty() ? ", a type of another library that does not say which"
                                              : " of " + library + ", a name the library gives a type of its own"));
      return "VARIANT";
    }
    Import(library);
    std::string note = (kind.empty() ? "a type" : kind) + " of " + library;
    if (origin && !origin->guid.empty()) note += ", " + origin->guid;
    foreign_.try_emplace(name, Foreign{kind, note});
    if (tagged) return TagWord(kind) + name;
    return IsObjectKind(kind) ? name + "*" : name;
  }

  void Import(const std::string& library) {
    if (std::find(importlibs_.begin(), importlibs_.end(), library) == importlibs_.end()) importlibs_.push_back(library);
  }

  // The base of an interface, from stdole2.tlb unless the library defines
  // it: widl takes a base from an imported library before its own.
  std::string Base(const char* name) {
    if (!typedefNames_.contains(name)) Import(kStdoleFile);
    return std::string(" : ") + name;
  }

  // Whether the library's own types leave a name free for an imported type:
  // tags for records and unions, the names of typedefs and objects for the rest.
  bool Clashes(const std::string& name, bool tagged) const {
    const TlbTypeInfo* local = Find(name);
    if (local == nullptr) return false;
    const bool localTagged = !TagWord(local->kind).empty();
    return tagged == localTagged;
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

  // A named item of a type: a fixed-size array puts its bounds after the
  // name, an open one (stored with no elements) empty brackets.
  std::string Declaration(const TlbType& type, const std::string& name) {
    if (!(type.code & vt::kArrayFlag) || type.bounds.empty()) return TypeName(type) + " " + name;
    std::string text = ElementName(type) + ((type.code & vt::kByRefFlag) ? "* " : " ") + name;
    for (const uint32_t count : type.bounds) text += count ? "[" + std::to_string(count) + "]" : "[]";
    return text;
  }

  static std::string DefaultDescription(const platform::TlbValue& value) {
    const std::string text = DefaultValueText(value);
    return (text.empty() ? "" : text + ", ") + "variant type " + std::to_string(value.vt);
  }

  // widl stores the value of a property put without a name, and every other
  // parameter with one.
  std::string Parameter(const TlbParam& p, size_t index, bool putValue) {
    if (p.name.empty() && !putValue)
      Fail("has parameter " + std::to_string(index + 1) + " without a name, which widl cannot store");
    const std::string name = p.name.empty() ? "rhs" + std::to_string(index) : p.name;
    std::vector<std::string> attributes{(p.type.code & vt::kByRefFlag) ? "in, out" : "in"};
    if (p.optional) attributes.push_back("optional");
    if (p.hasDefault) {
      const std::optional<std::string> value = idl::WidlDefault(p.defaultValue, p.type);
      if (!value) Fail("gives " + name + " a default widl cannot store (" + DefaultDescription(p.defaultValue) + ")");
      attributes.push_back("defaultvalue(" + value.value_or("0") + ")");
    }
    return AttributeList(attributes) + Declaration(p.type, name);
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

  // How a function is written: as stored (an interface's or dispinterface's),
  // as a module's entry point, or in the vtable form of a dual interface's
  // dispatch view (an HRESULT, and the result through a [retval]).
  enum class Form { kStored, kModule, kDual };

  std::string Function(const TlbMember& f, Form form) {
    context_ = current_ + "." + f.name;
    std::vector<std::string> attributes;
    attributes.push_back(form == Form::kModule ? "entry(" + Literal(f.name) + ")"
                                               : "id(" + idl::Hex(static_cast<uint32_t>(f.memberId)) + ")");
    if (f.invokeKind == 2) attributes.push_back("propget");
    if (f.invokeKind == 4) attributes.push_back("propput");
    if (f.invokeKind == 8) attributes.push_back("propputref");
    AddFlagAttributes(f.flags, attributes);
    if (!f.helpString.empty()) attributes.push_back("helpstring(" + Literal(f.helpString) + ")");
    std::vector<std::string> params;
    const bool put = f.invokeKind == 4 || f.invokeKind == 8;
    for (size_t i = 0; i < f.params.size(); ++i)
      params.push_back(Parameter(f.params[i], i, put && i + 1 == f.params.size()));
    std::string returns = TypeName(f.type);
    if (form == Form::kDual) {
      if (f.type.code != vt::kVoid) params.push_back("[out, retval] " + returns + "* " + RetvalName(f));
      returns = "HRESULT";
    }
    std::string line = kIndent + AttributeList(attributes) + returns + (form == Form::kModule ? " __stdcall " : " ") +
                       f.name + "(";
    for (size_t i = 0; i < params.size(); ++i) line += (i ? ", " : "") + params[i];
    return line + ");\n";
  }

  // The dispatch view keeps no name for the [retval]; one the others leave free.
  static std::string RetvalName(const TlbMember& f) {
    std::string name = "retval";
    const auto taken = [&] {
      return std::any_of(f.params.begin(), f.params.end(), [&](const TlbParam& p) { return p.name == name; });
    };
    while (taken()) name += "_";
    return name;
  }

  static std::vector<std::string> TypeAttributes(const TlbTypeInfo& info) {
    std::vector<std::string> attributes;
    if (!idl::IsNullGuid(info.guid)) attributes.push_back("uuid(" + idl::Uuid(info.guid) + ")");
    if (info.flags & 0x10) attributes.push_back("hidden");
    if (info.flags & 0x200) attributes.push_back("restricted");
    if (!info.helpString.empty()) attributes.push_back("helpstring(" + Literal(info.helpString) + ")");
    return attributes;
  }

  // Interfaces, dispinterfaces and coclasses declared ahead so that the
  // library's types may name each other in any order; then what the library
  // takes from others.
  std::string Prologue() const {
    std::string out = idl::AutomationDeclarations(typedefNames_);
    for (const TlbTypeInfo* info : unique_)
      if (IsObjectKind(info->kind)) out += ObjectWord(*info) + info->name + ";\n";
    if (!foreign_.empty()) {
      out += "\n" + idl::Comment("Types of the imported libraries, which widl finds there by name. Imported_... "
                                 "stands for one that this library does not name.") + "\n";
    }
    for (const auto& [name, foreign] : foreign_) out += ForeignDeclaration(name, foreign);
    for (const auto& [name, element] : pointerTypedefs_) out += "typedef " + element + " " + name + ";\n";
    return out + "\n";
  }

  std::string Library() const {
    std::vector<std::string> attributes{"uuid(" + idl::Uuid(lib_.guid) + ")",
                                        "version(" + std::to_string(lib_.majorVersion) + "." +
                                            std::to_string(lib_.minorVersion) + ")"};
    if (!lib_.helpString.empty()) attributes.push_back("helpstring(" + Literal(lib_.helpString) + ")");
    std::string out = BlockHead(attributes, "library " + lib_.name);
    // For a dispinterface widl imports IDispatch from stdole2.tlb itself.
    for (const std::string& file : importlibs_) out += kIndent + "importlib(" + Literal(file) + ");\n";
    return out + (importlibs_.empty() ? "" : "\n");
  }

  // Adds to the library's contents; a block stands apart from what is around it.
  void List(const std::string& item, bool block) {
    const bool apart = !listing_.empty() && !listing_.ends_with("\n\n");
    if (block && apart) listing_ += "\n";
    listing_ += item;
    if (block) listing_ += "\n";
  }

  // widl takes no attributes on fields and constants; a help string stays
  // visible (the comparison of models does not look at it).
  static std::string HelpComment(const TlbMember& member) {
    return member.helpString.empty() ? "" : " " + idl::Comment(member.helpString);
  }

  // widl takes attributes of an enumeration, union or record only from a
  // typedef, whose name must then differ from the tag.
  std::string ValueHead(const TlbTypeInfo& info, std::string& tail) const {
    const std::vector<std::string> attributes = TypeAttributes(info);
    const std::string head = TagWord(info.kind) + info.name + " {\n";
    if (attributes.empty()) {
      tail = "};\n\n";
      return head;
    }
    std::string carrier = info.name + "_";
    while (names_.contains(carrier)) carrier += "_";
    tail = "} " + carrier + ";\n\n";
    return "typedef " + AttributeList(attributes) + head;
  }

  void Enum(const TlbTypeInfo& info) {
    std::string tail;
    enums_ += ValueHead(info, tail);
    for (size_t i = 0; i < info.variables.size(); ++i) {
      const TlbMember& c = info.variables[i];
      const int32_t value = c.value ? static_cast<int32_t>(c.value->integer) : 0;
      enums_ += kIndent + c.name + " = " + std::to_string(value) + (i + 1 < info.variables.size() ? "," : "");
      enums_ += HelpComment(c) + "\n";
    }
    enums_ += tail;
    List("enum " + info.name + ";\n", false);
  }

  // The source keeps no members of a union.
  void Union(const TlbTypeInfo& info) {
    std::string tail;
    unions_ += ValueHead(info, tail) + kIndent + "long placeholder;\n" + tail;
    List("union " + info.name + ";\n", false);
  }

  void Record(const TlbTypeInfo& info) {
    std::string tail;
    records_ += ValueHead(info, tail);
    for (const TlbMember& field : info.variables) {
      context_ = info.name + "." + field.name;
      records_ += kIndent + Declaration(field.type, field.name) + ";" + HelpComment(field) + "\n";
    }
    records_ += tail;
    List("struct " + info.name + ";\n", false);
  }

  // The source does not say what an interface derives from: one the system
  // may call through IDispatch (dispatchable) derives from that, IUnknown
  // from nothing, and the rest from IUnknown.
  void Interface(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info);
    attributes.insert(attributes.begin(), "odl");
    if (info.flags & 0x80) attributes.push_back("nonextensible");
    if (info.flags & 0x100) attributes.push_back("oleautomation");
    std::string head = "interface " + info.name;
    const bool dispatchable = (info.flags & 0x1000) && info.name != "IDispatch";
    if (info.name != "IUnknown") head += Base(dispatchable ? "IDispatch" : "IUnknown");
    std::string block = BlockHead(attributes, head);
    for (const TlbMember& f : info.functions) block += Function(f, Form::kStored);
    List(block + "};\n", true);
  }

  // A dual interface comes back as one, deriving from IDispatch with the
  // functions of its dispatch view, which include its bases'.
  void Dispatch(const TlbTypeInfo& info) {
    const bool dual = (info.flags & 0x40) != 0;
    std::vector<std::string> attributes = TypeAttributes(info);
    if (dual) attributes.insert(attributes.begin(), {"odl", "dual", "oleautomation"});
    if (dual && (info.flags & 0x80)) attributes.push_back("nonextensible");
    const std::string head = dual ? "interface " + info.name + Base("IDispatch") : "dispinterface " + info.name;
    std::string block = BlockHead(attributes, head) + (dual ? "" : "properties:\nmethods:\n");
    for (const TlbMember& f : info.functions)
      if (!IsInheritedDispatchFunction(f)) block += Function(f, dual ? Form::kDual : Form::kStored);
    List(block + "};\n", true);
  }

  void Coclass(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info);
    static const std::array<std::pair<uint32_t, const char*>, 4> kFlags = {
        {{0x1, "appobject"}, {0x4, "licensed"}, {0x20, "control"}, {0x400, "aggregatable"}}};
    if ((info.flags & 0x2) == 0) attributes.push_back("noncreatable");
    for (const auto& [bit, name] : kFlags)
      if (info.flags & bit) attributes.push_back(name);
    List(BlockHead(attributes, "coclass " + info.name) + Implemented(info.defaultInterface, "[default] ") +
             Implemented(info.defaultSource, "[default, source] ") + "};\n",
         true);
  }

  std::string Implemented(int position, const char* attributes) const {
    if (position < 0 || static_cast<size_t>(position) >= lib_.types.size()) return "";
    const TlbTypeInfo& target = lib_.types[position];
    return kIndent + attributes + ObjectWord(target) + target.name + ";\n";
  }

  void Module(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info);
    attributes.insert(attributes.begin(), "dllname(" + Literal(lib_.name + ".dll") + ")");
    std::string block = BlockHead(attributes, "module " + info.name);
    for (const TlbMember& f : info.functions) block += Function(f, Form::kModule);
    List(block + "};\n", true);
  }

  // The source resolves aliases, so nothing refers to one: only its name and
  // GUID reach the model.
  void Alias(const TlbTypeInfo& info) {
    std::vector<std::string> attributes = TypeAttributes(info);
    attributes.insert(attributes.begin(), "public");
    List("typedef " + AttributeList(attributes) + "long " + info.name + ";\n", false);
  }

  const TlbLibrary& lib_;
  std::vector<const TlbTypeInfo*> unique_;  // the first type info of each name
  std::set<std::string> names_;
  std::set<std::string> typedefNames_;  // all but those of enumerations, unions and records (tags)
  std::vector<std::string> importlibs_;
  std::map<std::string, Foreign> foreign_;  // by name
  std::set<std::pair<std::string, std::string>> pointerTypedefs_;  // name, pointer type
  std::string enums_, unions_, records_;  // definitions ahead of the library
  std::string listing_;                   // the library's contents
  std::string current_;  // the type info and member being written, for errors
  std::string context_;
  std::optional<rt::VbError> error_;
};

}  // namespace

rt::Result<std::string> TypeLibIdl(const platform::TlbLibrary& library) { return IdlWriter(library).Write(); }

std::string IdlImportName(const platform::TlbImport& origin) {
  std::string name = "Imported_";
  name += idl::IsNullGuid(origin.guid) ? origin.library + "_" + std::to_string(origin.index) : idl::Uuid(origin.guid);
  for (size_t i = 9; i < name.size(); ++i)
    if (!std::isalnum(static_cast<unsigned char>(name[i]))) name[i] = '_';
  return name;
}

}  // namespace sentrune
