#pragma once
// A type library source over libraries built in the test: each path given to
// Add loads its library; any other path fails with 53, or with the error set
// for it, as the real readers fail.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/typelib_source.h"
#include "runtime/vb_error.h"

namespace sentrune::testing {

class FakeTypeLibSource : public platform::TypeLibSource {
 public:
  // Paths are matched without regard to case, as Windows matches them.
  void Add(const std::string& path, platform::TlbLibrary library);
  void Fail(const std::string& path, rt::VbError error);

  rt::Result<platform::TlbLibrary> Load(const std::string& path) override;

  std::vector<std::string> loaded;  // every path asked for, in order

 private:
  std::map<std::string, platform::TlbLibrary> libraries_;
  std::map<std::string, rt::VbError> failures_;
};

// Short builders for the libraries tests hand to the fake.
namespace tlb {

platform::TlbLibrary Library(std::string name, std::string guid, uint16_t major = 1, uint16_t minor = 0);
platform::TlbType Type(uint16_t code, std::string userTypeName = {});
platform::TlbParam Param(std::string name, platform::TlbType type);
// A function (invoke kind 1 method, 2 get, 4 let, 8 set).
platform::TlbMember Function(std::string name, int invokeKind, platform::TlbType returns,
                             std::vector<platform::TlbParam> params = {}, std::string help = {});
platform::TlbMember Constant(std::string name, int64_t value, std::string help = {});
platform::TlbMember Field(std::string name, platform::TlbType type, std::string help = {});
platform::TlbTypeInfo TypeInfo(std::string name, std::string kind, std::string guid = {}, uint32_t flags = 0);

// A class the way the VB compiler lays it out: a hidden dual interface
// "_Name" (dispatch view), a hidden event dispinterface "__Name" when there
// are events, and the coclass "Name" claiming both.
void AddVbClass(platform::TlbLibrary& library, const std::string& name, const std::string& guid,
                std::vector<platform::TlbMember> members, std::vector<platform::TlbMember> events = {});

}  // namespace tlb
}  // namespace sentrune::testing
