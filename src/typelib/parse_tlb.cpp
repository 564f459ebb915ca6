#include "typelib/parse_tlb.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/vb_error.h"
#include "sysutil/version_info.h"
#include "typelib/tlb_render.h"

namespace sentrune {
namespace {

constexpr const char* kCrLf = "\r\n";
constexpr const char* kParseTitle = "clsParseTLB:ParseTypeLib";

bool IsFile(const platform::FileSystem& fs, const std::string& path) {
  const auto attributes = fs.GetAttributes(path);
  return attributes.ok() && (*attributes & platform::kAttrDirectory) == 0;
}

// "file.dll\2" names file.dll: the number selects a TYPELIB resource, so the
// file's existence, date and version are those of the text before it.
std::string DiskPath(const platform::FileSystem& fs, const std::string& path) {
  if (IsFile(fs, path)) return path;
  const size_t slash = path.rfind('\\');
  if (slash == std::string::npos || slash + 1 == path.size()) return path;
  const bool digits = std::all_of(path.begin() + static_cast<std::ptrdiff_t>(slash) + 1, path.end(),
                                  [](unsigned char c) { return std::isdigit(c) != 0; });
  return digits ? path.substr(0, slash) : path;
}

TypeLibReadResult Trapped(const rt::VbError& error) {
  TypeLibReadResult result;
  result.number = error.number;
  result.trapped = true;
  if (error.number == rt::errnum::kNotATypeLibrary) {
    result.message = std::string("The file doesn't contain a valid TypeLib.") + kCrLf + "Select another file.";
    result.style = platform::mb::kExclamation;
    result.title = "Not an ActiveX Component";
  } else {
    result.message = "Error " + std::to_string(error.number) + kCrLf + error.description;
    result.style = platform::mb::kCritical;
    result.title = kParseTitle;
  }
  result.description = error.description;
  return result;
}

}  // namespace

// The reader's working state: per type info its link pair and whether
// another type info claims it, and the worklist of top-level items.
struct clsParseTLB::Reader {
  Reader(clsParseTLB& owner, const platform::TlbLibrary& library) : model(owner), lib(library) {}

  clsParseTLB& model;
  const platform::TlbLibrary& lib;
  std::vector<std::pair<int32_t, int32_t>> links;  // default, default source (1-based, -1 none)
  std::vector<bool> claimed;
  MemberCollection topLevel;

  const platform::TlbTypeInfo& Info(int32_t position) const { return lib.types[position - 1]; }

  int32_t LinkOf(int position) const {
    return position >= 0 && static_cast<size_t>(position) < lib.types.size() ? position + 1 : -1;
  }

  // A type info named in another's link pair is shown inside that one, not
  // on its own; naming itself does not count.
  void IndexTypeInfos() {
    claimed.assign(lib.types.size(), false);
    for (size_t i = 0; i < lib.types.size(); ++i) {
      const platform::TlbTypeInfo& info = lib.types[i];
      links.emplace_back(LinkOf(info.defaultInterface), LinkOf(info.defaultSource));
      const auto self = static_cast<int32_t>(i + 1);
      for (const int32_t link : {links.back().first, links.back().second})
        if (link != -1 && link != self) claimed[link - 1] = true;
    }
  }

  void BuildTopLevel() {
    for (size_t i = 0; i < lib.types.size(); ++i) {
      const platform::TlbTypeInfo& info = lib.types[i];
      // Exactly hidden: a hidden type info with other flags stays visible.
      if (info.flags == 16 || claimed[i]) continue;
      clsInterfaceInfo item;
      item.TypeInfo = static_cast<int32_t>(i + 1);
      item.MemberName = info.kind == "enum" ? "Enum " + info.name : info.name;
      topLevel.Add(std::move(item));
    }
  }

  void Run() {
    IndexTypeInfos();
    BuildTopLevel();
    for (const auto& entry : topLevel)
      if (Info(entry.item.TypeInfo).kind == "enum") DisplayInterfaces(entry.item.TypeInfo);
    for (const auto& entry : topLevel)
      if (Info(entry.item.TypeInfo).kind != "enum") DisplayInterfaces(entry.item.TypeInfo);
  }

  void EvaluateEnumOrType(const platform::TlbTypeInfo& info) {
    const bool isEnum = info.kind == "enum";
    clsEnumOrType record;
    record.MemberName = info.name;
    record.Members.Reserve(info.variables.size());
    for (const platform::TlbMember& variable : info.variables) {
      clsInterfaceInfo member;
      member.MemberHelp = variable.helpString;
      if (isEnum) {
        member.MemberName = variable.name;
        member.MemberValue = variable.value ? static_cast<int32_t>(variable.value->integer) : 0;
      } else {
        member.MemberName = variable.name + TypeText(variable.type);
      }
      record.Members.Add(std::move(member));
    }
    auto& target = isEnum ? model.enums_ : model.types_;
    target.Add(std::move(record));
  }

  // A coclass shows its own functions and its default interface's as
  // properties and methods, and its default source's as events.
  void DisplayInterfaces(int32_t position) {
    const platform::TlbTypeInfo& info = Info(position);
    if (info.kind == "enum" || info.kind == "record") {
      EvaluateEnumOrType(info);
      return;
    }
    clsClass cls;
    cls.ClassName = info.name;
    cls.ClassGUID = info.guid;
    const auto [defaultInterface, defaultSource] = links[position - 1];
    ReserveFor(info, defaultInterface, defaultSource, cls);
    EvaluateClass(info, cls);
    if (defaultInterface != -1) EvaluateClass(Info(defaultInterface), cls);
    if (defaultSource != -1) EvaluateEvents(Info(defaultSource), cls);
    model.classes_.Add(std::move(cls));
  }

  // Sized up front: a large library's classes hold thousands of members.
  void ReserveFor(const platform::TlbTypeInfo& info, int32_t defaultInterface, int32_t defaultSource,
                  clsClass& cls) const {
    size_t properties = 0, methods = 0, events = 0;
    const auto count = [&](const platform::TlbTypeInfo& from) {
      for (const platform::TlbMember& function : from.functions) {
        if (function.flags != 0) continue;
        const int kind = function.invokeKind;
        const bool property = kind == 2 || kind == 4 || kind == 8;
        ++(property ? properties : methods);
      }
    };
    count(info);
    if (defaultInterface != -1) count(Info(defaultInterface));
    if (defaultSource != -1) {
      for (const platform::TlbMember& function : Info(defaultSource).functions)
        events += function.flags == 0 ? 1 : 0;
    }
    cls.Properties.Reserve(properties);
    cls.Methods.Reserve(methods);
    cls.Events.Reserve(events);
  }

  // subEvaluateClass: only members without any flag are bindable by clients.
  static void EvaluateClass(const platform::TlbTypeInfo& info, clsClass& cls) {
    for (const platform::TlbMember& function : info.functions) {
      if (function.flags != 0) continue;
      clsInterfaceInfo member;
      member.MemberHelp = function.helpString;
      member.MemberName = MemberDeclaration(function);
      if (member.MemberName.starts_with("Property")) {
        // The help comment the declaration would carry is cut off again, so
        // it is never added.
        KeepOnly(member.MemberName, StripScopeDefAndHelpView(member.MemberName, "Property"));
        cls.Properties.Add(std::move(member));
      } else {
        cls.Methods.Add(std::move(member));
      }
    }
  }

  static void EvaluateEvents(const platform::TlbTypeInfo& info, clsClass& cls) {
    for (const platform::TlbMember& function : info.functions) {
      if (function.flags != 0) continue;
      clsInterfaceInfo member;
      member.MemberHelp = function.helpString;
      member.MemberName = MemberDeclaration(function);
      // Drops the leading "Sub " of the declaration.
      const std::string_view text = member.MemberName;
      KeepOnly(member.MemberName, TrimBlanks(text.size() > 4 ? text.substr(4) : std::string_view()));
      cls.Events.Add(std::move(member));
    }
  }

  // Cuts `text` down to `part`, a view into it, without a copy.
  static void KeepOnly(std::string& text, std::string_view part) {
    if (part.empty()) {
      text.clear();
      return;
    }
    const auto start = static_cast<size_t>(part.data() - text.data());
    text.erase(start + part.size());
    text.erase(0, start);
  }
};

void clsParseTLB::Clear() {
  enums_.Clear();
  types_.Clear();
  classes_.Clear();
}

TypeLibReadResult clsParseTLB::ReadTypeLib(const std::string& FileName) {
  platform::FileSystem& fs = state_->files();
  const std::string diskPath = DiskPath(fs, FileName);
  if (!IsFile(fs, diskPath)) {
    TypeLibReadResult missing;
    missing.number = rt::errnum::kFileNotFound;
    missing.message = std::string("Can't find the file") + kCrLf + "[" + FileName + "]";
    missing.style = platform::mb::kExclamation;
    missing.title = "File Not Found!";
    missing.description = rt::DescribeError(missing.number);
    return missing;
  }
  Clear();
  const rt::Result<platform::TlbLibrary> lib = state_->platform.typelibs.Load(FileName);
  if (!lib) return Trapped(lib.error());
  library_ = lib->name;
  helpString_ = lib->helpString;
  filePath_ = FileName;
  guid_ = lib->guid;
  tlbVersion_ = std::to_string(lib->majorVersion) + "." + std::to_string(lib->minorVersion);
  const rt::Result<rt::DateTime> date = fs.GetLastWriteTime(diskPath);
  if (!date) return Trapped(date.error());
  fileDate_ = *date;
  fileVersion_ = FileVersionText(state_->platform.versions, diskPath);
  Reader(*this, *lib).Run();
  return {};
}

int32_t clsParseTLB::ParseTypeLib(const std::string& FileName) {
  const TypeLibReadResult result = ReadTypeLib(FileName);
  if (result.ok()) return 0;
  // A trapped error is pending while its box shows, as it is in the handler.
  if (result.trapped) state_->err.Raise(result.number, kParseTitle, result.description);
  lfncMsgBoxEX(*state_, result.message, result.style, result.title);
  if (result.trapped) state_->err.Clear();
  return result.number;
}

}  // namespace sentrune
