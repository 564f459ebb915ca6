#pragma once
// A type library source over libraries built in the test: each path given to
// Add loads its library; any other path fails with 53, or with the error set
// for it, as the real readers fail.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/typelib_source.h"
#include "runtime/text.h"
#include "runtime/vb_error.h"

namespace sentrune::testing {

class FakeTypeLibSource : public platform::TypeLibSource {
 public:
  // Paths are matched without regard to case, as Windows matches them.
  void Add(const std::string& path, platform::TlbLibrary library) { libraries_[rt::LCase(path)] = std::move(library); }
  void Fail(const std::string& path, rt::VbError error) { failures_[rt::LCase(path)] = std::move(error); }

  rt::Result<platform::TlbLibrary> Load(const std::string& path) override {
    loaded.push_back(path);
    if (const auto failure = failures_.find(rt::LCase(path)); failure != failures_.end()) return failure->second;
    if (const auto library = libraries_.find(rt::LCase(path)); library != libraries_.end()) return library->second;
    return rt::MakeError(rt::errnum::kFileNotFound, "File not found: " + path);
  }

  std::vector<std::string> loaded;  // every path asked for, in order

 private:
  std::map<std::string, platform::TlbLibrary> libraries_;
  std::map<std::string, rt::VbError> failures_;
};

// Short builders for the libraries tests hand to the fake.
namespace tlb {

inline platform::TlbLibrary Library(std::string name, std::string guid, uint16_t major = 1, uint16_t minor = 0) {
  return {std::move(name), {}, std::move(guid), major, minor, {}};
}
inline platform::TlbType Type(uint16_t code, std::string userTypeName = {}) { return {code, std::move(userTypeName)}; }
inline platform::TlbParam Param(std::string name, platform::TlbType type) {
  return {std::move(name), false, false, {}, std::move(type)};
}
// A function (invoke kind 1 method, 2 get, 4 let, 8 set).
inline platform::TlbMember Function(std::string name, int invokeKind, platform::TlbType returns,
                                    std::vector<platform::TlbParam> params = {}, std::string help = {}) {
  return {std::move(name), 0, invokeKind, 0, std::move(help), std::nullopt, std::move(returns), std::move(params)};
}
inline platform::TlbMember Constant(std::string name, int64_t value, std::string help = {}) {
  const platform::TlbValue constant{platform::vt::kI4, value, 0, {}};
  return {std::move(name), 0, 0, 0, std::move(help), constant, Type(platform::vt::kI4), {}};
}
inline platform::TlbMember Field(std::string name, platform::TlbType type, std::string help = {}) {
  return {std::move(name), 0, 0, 0, std::move(help), std::nullopt, std::move(type), {}};
}
inline platform::TlbTypeInfo TypeInfo(std::string name, std::string kind, std::string guid = {}, uint32_t flags = 0) {
  return {std::move(name), std::move(kind), {}, std::move(guid), flags, -1, -1, {}, {}};
}

// A class the way the VB compiler lays it out: a hidden dual interface
// "_Name" (dispatch view, hidden | dual | nonextensible | dispatchable), a
// hidden event dispinterface "__Name" when there are events, and the coclass
// "Name" claiming both.
inline void AddVbClass(platform::TlbLibrary& library, const std::string& name, const std::string& guid,
                       std::vector<platform::TlbMember> members, std::vector<platform::TlbMember> events = {}) {
  platform::TlbTypeInfo dual = TypeInfo("_" + name, "dispatch", "{00000000-0000-0000-0000-0000000000D1}", 0x10D0);
  dual.functions = std::move(members);
  library.types.push_back(std::move(dual));
  platform::TlbTypeInfo coclass = TypeInfo(name, "coclass", guid, 0x2);
  coclass.defaultInterface = static_cast<int>(library.types.size()) - 1;
  if (!events.empty()) {
    platform::TlbTypeInfo source = TypeInfo("__" + name, "dispatch", "{00000000-0000-0000-0000-0000000000E1}", 0x1010);
    source.functions = std::move(events);
    library.types.push_back(std::move(source));
    coclass.defaultSource = static_cast<int>(library.types.size()) - 1;
  }
  library.types.push_back(std::move(coclass));
}

}  // namespace tlb
}  // namespace sentrune::testing
