#include "support/fake_typelib_source.h"

#include "runtime/text.h"

namespace sentrune::testing {

void FakeTypeLibSource::Add(const std::string& path, platform::TlbLibrary library) {
  libraries_[rt::LCase(path)] = std::move(library);
}

void FakeTypeLibSource::Fail(const std::string& path, rt::VbError error) {
  failures_[rt::LCase(path)] = std::move(error);
}

rt::Result<platform::TlbLibrary> FakeTypeLibSource::Load(const std::string& path) {
  loaded.push_back(path);
  const std::string key = rt::LCase(path);
  if (const auto failure = failures_.find(key); failure != failures_.end()) return failure->second;
  if (const auto library = libraries_.find(key); library != libraries_.end()) return library->second;
  return rt::MakeError(rt::errnum::kFileNotFound, "File not found: " + path);
}

namespace tlb {

platform::TlbLibrary Library(std::string name, std::string guid, uint16_t major, uint16_t minor) {
  return {std::move(name), {}, std::move(guid), major, minor, {}};
}

platform::TlbType Type(uint16_t code, std::string userTypeName) { return {code, std::move(userTypeName)}; }

platform::TlbParam Param(std::string name, platform::TlbType type) {
  return {std::move(name), false, false, {}, std::move(type)};
}

platform::TlbMember Function(std::string name, int invokeKind, platform::TlbType returns,
                             std::vector<platform::TlbParam> params, std::string help) {
  return {std::move(name), 0, invokeKind, 0, std::move(help), std::nullopt, std::move(returns), std::move(params)};
}

platform::TlbMember Constant(std::string name, int64_t value, std::string help) {
  const platform::TlbValue constant{platform::vt::kI4, value, 0, {}};
  return {std::move(name), 0, 0, 0, std::move(help), constant, Type(platform::vt::kI4), {}};
}

platform::TlbMember Field(std::string name, platform::TlbType type, std::string help) {
  return {std::move(name), 0, 0, 0, std::move(help), std::nullopt, std::move(type), {}};
}

platform::TlbTypeInfo TypeInfo(std::string name, std::string kind, std::string guid, uint32_t flags) {
  return {std::move(name), std::move(kind), {}, std::move(guid), flags, -1, -1, {}, {}};
}

void AddVbClass(platform::TlbLibrary& library, const std::string& name, const std::string& guid,
                std::vector<platform::TlbMember> members, std::vector<platform::TlbMember> events) {
  // hidden | dual | nonextensible | dispatchable, as the dispatch view reports it.
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
