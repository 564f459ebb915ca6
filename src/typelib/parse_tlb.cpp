#include "typelib/parse_tlb.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "host/msgbox.h"
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

struct Declaration {
  std::string text;
  std::string help;
};

// Copies the key before the item moves: argument evaluation order would
// otherwise decide whether the key is read from a moved-from item.
template <class T>
void AddKeyed(rt::KeyedCollection<T>& to, std::string T::*keyField, T item) {
  std::string key = item.*keyField;
  to.Add(std::move(key), std::move(item));
}

std::string WithHelp(const std::string& text, const std::string& help) {
  return help.empty() ? text : text + " '" + help;
}

}  // namespace

// The reader's working state: per type info its name, position, link pair
// and hidden flag, and the worklist of top-level items.
struct clsParseTLB::Reader {
  Reader(clsParseTLB& owner, const platform::TlbLibrary& library) : model(owner), lib(library) {}

  clsParseTLB& model;
  const platform::TlbLibrary& lib;
  std::vector<std::string> names;
  std::vector<int32_t> positions;
  std::vector<std::pair<int32_t, int32_t>> links;  // default, default source (1-based, -1 none)
  std::vector<bool> hidden;
  rt::KeyedCollection<clsInterfaceInfo> topLevel;

  const platform::TlbTypeInfo& Info(int32_t position) const { return lib.types[position - 1]; }

  int32_t LinkOf(int position) const {
    return position >= 0 && static_cast<size_t>(position) < lib.types.size() ? position + 1 : -1;
  }

  void IndexTypeInfos() {
    for (size_t i = 0; i < lib.types.size(); ++i) {
      const platform::TlbTypeInfo& info = lib.types[i];
      names.push_back(info.name);
      positions.push_back(static_cast<int32_t>(i + 1));
      // Exactly hidden: a hidden type info with other flags stays visible.
      hidden.push_back(info.flags == 16);
      links.emplace_back(LinkOf(info.defaultInterface), LinkOf(info.defaultSource));
    }
  }

  bool ClaimedByAnother(int32_t position) const {
    for (size_t j = 0; j < links.size(); ++j) {
      if (positions[j] == position) continue;
      if (links[j].first == position || links[j].second == position) return true;
    }
    return false;
  }

  void BuildTopLevel() {
    for (size_t i = 0; i < names.size(); ++i) {
      if (hidden[i] || ClaimedByAnother(positions[i])) continue;
      clsInterfaceInfo item;
      item.TypeInfo = positions[i];
      item.MemberName = Info(positions[i]).kind == "enum" ? "Enum " + names[i] : names[i];
      AddKeyed(topLevel, &clsInterfaceInfo::MemberName, std::move(item));
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

  // subEvaluateClass: only members without any flag are bindable by clients.
  static void EvaluateClass(const platform::TlbTypeInfo& info, std::vector<Declaration>& out) {
    for (const platform::TlbMember& function : info.functions)
      if (function.flags == 0) out.push_back({MemberDeclaration(function), function.helpString});
  }

  void EvaluateEnumOrType(const platform::TlbTypeInfo& info) {
    const bool isEnum = info.kind == "enum";
    clsEnumOrType record;
    record.MemberName = info.name;
    for (const platform::TlbMember& variable : info.variables) {
      clsInterfaceInfo member;
      member.MemberHelp = variable.helpString;
      if (isEnum) {
        member.MemberName = variable.name;
        member.MemberValue = variable.value ? static_cast<int32_t>(variable.value->integer) : 0;
      } else {
        member.MemberName = variable.name + TypeText(variable.type);
      }
      AddKeyed(record.Members, &clsInterfaceInfo::MemberName, std::move(member));
    }
    auto& target = isEnum ? model.enums_ : model.types_;
    AddKeyed(target, &clsEnumOrType::MemberName, std::move(record));
  }

  void DisplayInterfaces(int32_t position) {
    const platform::TlbTypeInfo& info = Info(position);
    if (info.kind == "enum" || info.kind == "record") {
      EvaluateEnumOrType(info);
      return;
    }
    std::vector<Declaration> main;
    std::vector<Declaration> events;
    EvaluateClass(info, main);
    const auto [defaultInterface, defaultSource] = links[position - 1];
    if (defaultSource != -1) EvaluateClass(Info(defaultSource), events);
    if (defaultInterface != -1) EvaluateClass(Info(defaultInterface), main);
    AddClass(info, main, events);
  }

  void AddClass(const platform::TlbTypeInfo& info, const std::vector<Declaration>& main,
                const std::vector<Declaration>& events) {
    clsClass cls;
    cls.ClassName = info.name;
    cls.ClassGUID = info.guid;
    for (const Declaration& d : main) {
      clsInterfaceInfo member;
      member.MemberHelp = d.help;
      if (d.text.starts_with("Property")) {
        member.MemberName = sfncStripScopeDefAndHelp(WithHelp("Public " + d.text, d.help), "Property");
        AddKeyed(cls.Properties, &clsInterfaceInfo::MemberName, std::move(member));
      } else {
        member.MemberName = d.text;
        AddKeyed(cls.Methods, &clsInterfaceInfo::MemberName, std::move(member));
      }
    }
    for (const Declaration& d : events) {
      clsInterfaceInfo member;
      member.MemberHelp = d.help;
      // Drops the leading "Sub " of the declaration.
      member.MemberName = rt::Trim(d.text.size() > 4 ? std::string_view(d.text).substr(4) : "");
      AddKeyed(cls.Events, &clsInterfaceInfo::MemberName, std::move(member));
    }
    AddKeyed(model.classes_, &clsClass::ClassName, std::move(cls));
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
