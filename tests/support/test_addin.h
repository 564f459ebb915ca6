#pragma once
// The add-in's state over in-memory fakes: a scripted user, a file system
// that records what it touched, and the portable readers on top of it.
#include "state/addin_state.h"
#include "platform/ini/ini_file.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/pe/version_resources_portable.h"
#include "support/fake_env.h"
#include "support/fake_ui.h"

namespace sentrune::testing {

struct TestAddin {
  FakeEnv env;
  FakeUi ui;
  portable::PortableProfileFiles profiles{env.Files()};
  portable::PortableVersionResources versions{env.Files()};
  portable::PortableTypeLibSource typelibs{env.Files()};
  AddinState state{Platform{env, ui, profiles, versions, typelibs}};

  FakeFileSystem& files() { return env.Files(); }
  // The add-in's own INI file.
  static constexpr const char* kIni = "C:\\Addin\\Sentrune.ini";
  std::string Ini() { return files().Contents(kIni).value_or("<missing>"); }
  void SetIni(std::string bytes) { files().AddFile(kIni, std::move(bytes)); }
  // The trace file's lines, without their CR LF.
  std::vector<std::string> TraceLines();
};

}  // namespace sentrune::testing
