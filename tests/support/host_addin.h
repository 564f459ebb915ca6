#pragma once
// The add-in's state over the host's own platform and the portable readers,
// with a scripted user: for tests whose files must be the host's own. Its
// folder is the host folder `home`, and drive `letter` stands for
// `hostFolder`.
#include <filesystem>
#include <memory>
#include <string>

#include "platform/ini/ini_file.h"
#include "platform/pe/version_resources_portable.h"
#include "platform/tlb/typelib_source_portable.h"
#include "state/addin_state.h"
#include "support/fake_ui.h"
#include "support/host_drive.h"

namespace sentrune::testing {

struct HostAddin {
  HostAddin(const std::filesystem::path& home, char letter, const std::filesystem::path& hostFolder)
      : letter(letter), hostFolder(hostFolder), env(HostDriveEnv(home, letter, hostFolder)) {}

  // The Windows path of a host path under the drive's folder.
  std::string OnDrive(const std::filesystem::path& hostPath) const {
    return HostDrivePath(letter, hostFolder, hostPath);
  }

  char letter;
  std::filesystem::path hostFolder;
  std::unique_ptr<platform::Env> env;
  FakeUi ui;
  portable::PortableProfileFiles profiles{env->Files()};
  portable::PortableVersionResources versions{env->Files()};
  portable::PortableTypeLibSource typelibs{env->Files()};
  AddinState state{Platform{*env, ui, profiles, versions, typelibs}};
};

}  // namespace sentrune::testing
