#pragma once
// The add-in's state over the POSIX platform and the portable readers, with a
// scripted user: for tests whose files must be the host's own.
#include "platform/ini/ini_file.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/posix/posix_env.h"
#include "platform/tlb/typelib_source_portable.h"
#include "state/addin_state.h"
#include "support/fake_ui.h"

namespace sentrune::testing {

struct PosixAddin {
  // The add-in's folder and the drives beside the prefix's, as host paths.
  using Drives = std::vector<std::pair<char, std::string>>;
  explicit PosixAddin(std::string home, std::string wineprefix = {}, Drives drives = {})
      : env({std::move(home), std::move(wineprefix), std::move(drives), {}}) {}

  posix::PosixEnv env;
  FakeUi ui;
  portable::PortableProfileFiles profiles{env.Files()};
  portable::PortableVersionResources versions{env.Files()};
  portable::PortableTypeLibSource typelibs{env.Files()};
  AddinState state{Platform{env, ui, profiles, versions, typelibs}};
};

}  // namespace sentrune::testing
