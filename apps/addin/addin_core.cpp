#include "addin_core.h"

#include "dialog_ui.h"
#include "host/connect.h"
#include "platform/win32/typelib_source_system.h"
#include "platform/win32/win32_env.h"
#include "platform/win32/win32_profile.h"
#include "platform/win32/win32_registry.h"
#include "platform/win32/win32_version_resources.h"
#include "verify/frm_install_details.h"

namespace sentrune::addin {

struct AddinCore::Parts {
  win32::Win32Env env;  // empty options: the DLL's folder and name
  DialogUi ui;
  win32::Win32ProfileFiles profiles;
  win32::Win32VersionResources versions;
  win32::SystemTypeLibSource typelibs;
  AddinState state{Platform{env, ui, profiles, versions, typelibs}};
  sentrune::Connect connect{state};
};

AddinCore::AddinCore() : parts_(std::make_unique<Parts>()) {
  parts_->connect.ShowDiagnostics = [](sentrune::Connect& connect) {
    win32::Win32Registry registry;
    frmInstallDetails(connect.state()).ShowDiagnostics(&registry);
  };
  parts_->connect.AddinInstance_Initialize();
}

AddinCore::~AddinCore() { Disconnect(); }

void AddinCore::Connect(IDispatch* application) {
  if (application_.get() == application) return;
  Disconnect();
  application->AddRef();
  application_.reset(application);
  // The seam for the IDE's object model: the platform::VBE over
  // `application` (and the add-in menu over its command bars, through
  // connect.SetMenu) is to be built here and handed to
  // parts_->connect.AddinInstance_OnConnection. Until then the core stays
  // initialised and unconnected, as it is between the IDE's loads.
}

void AddinCore::Disconnect() {
  if (!application_) return;
  // Released whether the core's disconnection ends well or not.
  const std::unique_ptr<IDispatch, ComRelease> application = std::move(application_);
  parts_->connect.AddinInstance_OnDisconnection();
}

}  // namespace sentrune::addin
