#pragma once
// The add-in's state over fakes, with the real INI engine over the fake file
// system, for the settings tests.
#include <string>

#include "state/addin_state.h"
#include "platform/ini/ini_file.h"
#include "support/fake_env.h"
#include "support/fake_ui.h"

namespace sentrune::test {

class NoVersions : public platform::VersionResources {
 public:
  std::optional<platform::FileVersion> FileVersionOf(const std::string&) override { return {}; }
};

class NoTypeLibs : public platform::TypeLibSource {
 public:
  rt::Result<platform::TlbLibrary> Load(const std::string&) override {
    return rt::MakeError(rt::errnum::kNotATypeLibrary);
  }
};

struct SettingsHarness {
  static constexpr const char* kIni = "C:\\Addin\\Sentrune.ini";

  std::string Ini() { return env.Files().Contents(kIni).value_or("<missing>"); }
  void SetIni(std::string bytes) { env.Files().AddFile(kIni, std::move(bytes)); }

  testing::FakeEnv env;
  testing::FakeUi ui;
  portable::PortableProfileFiles profiles{env.Files()};
  NoVersions versions;
  NoTypeLibs typelibs;
  AddinState state{Platform{env, ui, profiles, versions, typelibs}};
};

}  // namespace sentrune::test
