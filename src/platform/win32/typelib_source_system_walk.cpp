#include "platform/win32/typelib_source_system_walk.h"

#include <array>
#include <string>
#include <vector>

#include "platform/win32/typelib_source_system_com.h"
#include "platform/win32/typelib_source_system_values.h"

namespace sentrune::win32 {
namespace {

namespace vt = platform::vt;
using platform::TlbMember;
using platform::TlbType;

// Deeper than any real declaration; ends alias and pointer cycles.
constexpr int kMaxDepth = 32;
const TlbType kUnresolved{vt::kUserDefined, {}};

constexpr std::array<const char*, 8> kKindWords = {
    "enum", "record", "module", "interface", "dispatch", "coclass", "alias", "union"};

std::string NameOf(ITypeInfo& info) {
  Bstr name;
  if (FAILED(info.GetDocumentation(MEMBERID_NIL, name.Put(), nullptr, nullptr, nullptr))) return {};
  return name.Utf8();
}

bool SameObject(IUnknown& a, IUnknown& b) {
  ComRef<IUnknown> first, second;
  return SUCCEEDED(a.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(first.Put()))) &&
         SUCCEEDED(b.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(second.Put()))) &&
         first.get() == second.get();
}

// The type info a descriptor of `context` refers to; empty when the
// reference cannot be followed (a library that is not registered).
ComRef<ITypeInfo> Referenced(ITypeInfo& context, HREFTYPE ref) {
  ComRef<ITypeInfo> target;
  if (FAILED(context.GetRefTypeInfo(ref, target.Put()))) return {};
  return target;
}

// A descriptor's references are those of the type info it comes from, so
// the walk carries that type info along, through aliases into theirs.
TlbType Project(ITypeInfo& context, const TYPEDESC& desc, int depth = 0);

// Whether a pointer to this descriptor is the object reference itself: it
// names an interface, dispinterface or coclass, directly or through aliases.
bool IsObject(ITypeInfo& context, const TYPEDESC& desc, int depth) {
  if (desc.vt != VT_USERDEFINED || depth > kMaxDepth) return false;
  const ComRef<ITypeInfo> target = Referenced(context, desc.hreftype);
  if (!target) return false;
  const TypeAttr attr(*target);
  if (attr->typekind == TKIND_ALIAS) return IsObject(*target, attr->tdescAlias, depth + 1);
  return attr->typekind == TKIND_INTERFACE || attr->typekind == TKIND_DISPATCH ||
         attr->typekind == TKIND_COCLASS;
}

TlbType Project(ITypeInfo& context, const TYPEDESC& desc, int depth) {
  if (depth > kMaxDepth) return kUnresolved;
  switch (desc.vt) {
    case VT_PTR: {
      TlbType target = Project(context, *desc.lptdesc, depth + 1);
      if (!IsObject(context, *desc.lptdesc, depth + 1)) target.code |= vt::kByRefFlag;
      return target;
    }
    case VT_SAFEARRAY:
    case VT_CARRAY: {
      TlbType element =
          Project(context, desc.vt == VT_CARRAY ? desc.lpadesc->tdescElem : *desc.lptdesc, depth + 1);
      element.code |= vt::kArrayFlag;
      return element;
    }
    case VT_USERDEFINED: {
      const ComRef<ITypeInfo> target = Referenced(context, desc.hreftype);
      if (!target) return kUnresolved;
      const TypeAttr attr(*target);
      if (attr->typekind == TKIND_ALIAS) return Project(*target, attr->tdescAlias, depth + 1);
      return TlbType{vt::kEmpty, NameOf(*target)};
    }
    default: return TlbType{desc.vt, {}};
  }
}

// The names GetNames gives for a member ID: the member's, then its
// parameters' as far as they are stored.
class MemberNames {
 public:
  MemberNames(ITypeInfo& info, MEMBERID id, UINT capacity) : names_(capacity) {
    if (FAILED(info.GetNames(id, names_.data(), capacity, &count_))) count_ = 0;
  }
  MemberNames(const MemberNames&) = delete;
  MemberNames& operator=(const MemberNames&) = delete;
  ~MemberNames() {
    for (UINT i = 0; i < count_; ++i) SysFreeString(names_[i]);
  }
  std::string operator[](size_t i) const {
    if (i >= count_) return {};
    return Narrow(std::wstring_view(names_[i], SysStringLen(names_[i])));
  }

 private:
  std::vector<BSTR> names_;
  UINT count_ = 0;
};

std::string HelpOf(ITypeInfo& info, MEMBERID id) {
  Bstr help;
  if (FAILED(info.GetDocumentation(id, nullptr, help.Put(), nullptr, nullptr))) return {};
  return help.Utf8();
}

platform::TlbParam Param(ITypeInfo& info, const ELEMDESC& elem, std::string name) {
  platform::TlbParam param;
  param.name = std::move(name);
  const USHORT flags = elem.paramdesc.wParamFlags;
  param.optional = (flags & PARAMFLAG_FOPT) != 0;
  param.hasDefault = (flags & PARAMFLAG_FHASDEFAULT) != 0;
  if (param.hasDefault && elem.paramdesc.pparamdescex != nullptr) {
    param.defaultValue = ToValue(elem.paramdesc.pparamdescex->varDefaultValue);
  }
  param.type = Project(info, elem.tdesc);
  return param;
}

std::vector<TlbMember> Functions(ITypeInfo& info, const TYPEATTR& attr) {
  std::vector<TlbMember> functions;
  functions.reserve(attr.cFuncs);
  for (UINT i = 0; i < attr.cFuncs; ++i) {
    FUNCDESC* desc = nullptr;
    const HRESULT hr = info.GetFuncDesc(i, &desc);
    // Wine's loader counts a dual's dispatch view by its vtable size, which
    // also covers slots of procedures the library does not list (those of a
    // VB6 class that are not public): the count then runs past the list.
    if (hr == TYPE_E_ELEMENTNOTFOUND) break;
    Check(hr, "GetFuncDesc(" + std::to_string(i) + ")");
    const FuncDesc func(info, desc);
    TlbMember& member = functions.emplace_back();
    const MemberNames names(info, func->memid, static_cast<UINT>(func->cParams) + 1);
    member.name = names[0];
    member.memberId = func->memid;
    member.invokeKind = func->invkind;
    member.flags = func->wFuncFlags;
    member.helpString = HelpOf(info, func->memid);
    member.type = Project(info, func->elemdescFunc.tdesc);
    member.params.reserve(static_cast<size_t>(func->cParams));
    for (SHORT p = 0; p < func->cParams; ++p) {
      member.params.push_back(Param(info, func->lprgelemdescParam[p], names[static_cast<size_t>(p) + 1]));
    }
  }
  return functions;
}

std::vector<TlbMember> Variables(ITypeInfo& info, const TYPEATTR& attr) {
  std::vector<TlbMember> variables;
  variables.reserve(attr.cVars);
  for (UINT i = 0; i < attr.cVars; ++i) {
    const VarDesc var(info, i);
    TlbMember& member = variables.emplace_back();
    Bstr name, help;
    if (SUCCEEDED(info.GetDocumentation(var->memid, name.Put(), help.Put(), nullptr, nullptr))) {
      member.name = name.Utf8();
      member.helpString = help.Utf8();
    }
    member.memberId = var->memid;
    member.flags = var->wVarFlags;
    if (var->varkind == VAR_CONST && var->lpvarValue != nullptr) {
      member.value = ToValue(*var->lpvarValue);
      if (attr.typekind == TKIND_ENUM) member.value->integer = static_cast<int32_t>(member.value->integer);
    }
    member.type = Project(info, var->elemdescVar.tdesc);
  }
  return variables;
}

// The position in `library` of a coclass's implemented type; -1 for one
// from another library or one that cannot be followed.
int ImplPosition(ITypeLib& library, ITypeInfo& coclass, UINT impl) {
  HREFTYPE ref = 0;
  if (FAILED(coclass.GetRefTypeOfImplType(impl, &ref))) return -1;
  const ComRef<ITypeInfo> target = Referenced(coclass, ref);
  ComRef<ITypeLib> container;
  UINT index = 0;
  if (!target || FAILED(target->GetContainingTypeLib(container.Put(), &index))) return -1;
  return SameObject(library, *container) ? static_cast<int>(index) : -1;
}

// The first implemented type flagged default and, separately, the first
// flagged default and source; restricted is ignored, and nothing falls back
// to an unflagged one.
void LinkPair(ITypeLib& library, ITypeInfo& coclass, const TYPEATTR& attr, platform::TlbTypeInfo& out) {
  bool haveInterface = false, haveSource = false;
  for (UINT i = 0; i < attr.cImplTypes; ++i) {
    INT flags = 0;
    if (FAILED(coclass.GetImplTypeFlags(i, &flags)) || !(flags & IMPLTYPEFLAG_FDEFAULT)) continue;
    const bool source = (flags & IMPLTYPEFLAG_FSOURCE) != 0;
    if (source ? haveSource : haveInterface) continue;
    (source ? out.defaultSource : out.defaultInterface) = ImplPosition(library, coclass, i);
    (source ? haveSource : haveInterface) = true;
  }
}

// A dual interface shows its dispatch view, also where the library keeps the
// interface half at the type's position.
ComRef<ITypeInfo> Presented(ComRef<ITypeInfo> info) {
  {
    const TypeAttr attr(*info);
    if (attr->typekind != TKIND_INTERFACE || !(attr->wTypeFlags & TYPEFLAG_FDUAL)) return info;
  }
  HREFTYPE ref = 0;
  Check(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &ref), "GetRefTypeOfImplType(-1)");
  ComRef<ITypeInfo> view;
  Check(info->GetRefTypeInfo(ref, view.Put()), "GetRefTypeInfo of the dispatch view");
  return view;
}

platform::TlbTypeInfo ReadType(ITypeLib& library, UINT index) {
  const std::string where = "type info " + std::to_string(index) + ": ";
  ComRef<ITypeInfo> stored;
  Check(library.GetTypeInfo(index, stored.Put()), where + "GetTypeInfo");
  platform::TlbTypeInfo out;
  Bstr name, help;
  Check(stored->GetDocumentation(MEMBERID_NIL, name.Put(), help.Put(), nullptr, nullptr),
        where + "GetDocumentation");
  out.name = name.Utf8();
  out.helpString = help.Utf8();
  try {
    const ComRef<ITypeInfo> info = Presented(std::move(stored));
    const TypeAttr attr(*info);
    out.kind = static_cast<size_t>(attr->typekind) < kKindWords.size() ? kKindWords[attr->typekind] : "";
    out.guid = GuidText(attr->guid);
    out.flags = attr->wTypeFlags;
    switch (attr->typekind) {
      case TKIND_COCLASS: LinkPair(library, *info, *attr, out); break;
      case TKIND_INTERFACE: case TKIND_DISPATCH: case TKIND_MODULE:
        out.functions = Functions(*info, *attr);
        break;
      case TKIND_ENUM: case TKIND_RECORD: out.variables = Variables(*info, *attr); break;
      default: break;
    }
  } catch (const TypeLibCallError& error) {
    throw TypeLibCallError(where + out.name + ": " + error.what(), error.hr());
  }
  return out;
}

}  // namespace

platform::TlbLibrary ReadLoadedLibrary(ITypeLib& library) {
  platform::TlbLibrary out;
  TLIBATTR* attr = nullptr;
  Check(library.GetLibAttr(&attr), "GetLibAttr");
  out.guid = GuidText(attr->guid);
  out.majorVersion = attr->wMajorVerNum;
  out.minorVersion = attr->wMinorVerNum;
  library.ReleaseTLibAttr(attr);
  Bstr name, help;
  Check(library.GetDocumentation(-1, name.Put(), help.Put(), nullptr, nullptr), "GetDocumentation");
  out.name = name.Utf8();
  out.helpString = help.Utf8();
  const UINT count = library.GetTypeInfoCount();
  out.types.reserve(count);
  for (UINT i = 0; i < count; ++i) out.types.push_back(ReadType(library, i));
  return out;
}

}  // namespace sentrune::win32
