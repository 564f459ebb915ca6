#pragma once
// The verifier's outside world: the type library world's fakes plus a
// registry in which tests register type libraries.
#include <string>

#include "platform/registry.h"
#include "support/fake_registry.h"
#include "typelib/typelib_world.h"

namespace sentrune::testing {

struct VerifyWorld : TypelibWorld {
  FakeRegistry registry;

  // HKCR\TypeLib\{guid}\version\locale\win32 = file.
  void Register(const std::string& guid, const std::string& version, const std::string& file,
                const std::string& locale = "0") {
    registry.AddString(platform::kHkeyClassesRoot, "TypeLib\\" + guid + "\\" + version + "\\" + locale + "\\win32", "",
                       file);
  }
  // A component file with a type library of that GUID and version, and a
  // file version resource.
  void AddLibrary(const std::string& path, const std::string& guid, uint16_t major, uint16_t minor,
                  platform::FileVersion version = {0x00060001, 0x00610052}) {
    AddComponent(path, tlb::Library("Lib", guid, major, minor));
    versions.Set(path, version);
  }
};

}  // namespace sentrune::testing
