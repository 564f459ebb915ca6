#include "addin_core.h"

#include "dialog_ui.h"
#include "fault_trap.h"
#include "host/connect.h"
#include "load_log.h"
#include "platform/win32/typelib_source_system.h"
#include "platform/win32/win32_env.h"
#include "platform/win32/win32_profile.h"
#include "platform/win32/win32_registry.h"
#include "platform/win32/win32_version_resources.h"
#include "verify/frm_install_details.h"
#include "vbe_application.h"
#include "vbe_menu_actions.h"
#include "vbe_timer.h"

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

// What lives while the IDE has the add-in connected: the IDE's objects,
// held through its VBE, the log the menu writes to, and the timer, which
// goes first.
struct AddinCore::Connection {
  Connection(IDispatch* ide, AddinState& state) : vbe(ComPtr<IDispatch>(ide)), log(state) {}
  VbeApplication vbe;
  LoadLog log;
  std::unique_ptr<MessageTimer> timer;
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
  if (connection_ && connection_->vbe.get() == application) return;
  Disconnect();
  if (application == nullptr) return;
  connection_ = std::make_unique<Connection>(application, parts_->state);
  SetFaultReporter([&log = connection_->log](const Fault& fault) { log.NoteFault(fault); });
  parts_->connect.BuildEnded = [&log = connection_->log](const BuildEnd& build) { log.NoteBuild(build); };
  parts_->ui.SetOwner(connection_->vbe.MainWindowHandle());
  sentrune::Connect& connect = parts_->connect;
  connect.SetMenu(std::make_unique<AddinMenuModel>(Logged(IdeMenuActions(), connection_->log)));
  connect.AddinInstance_OnConnection(connection_->vbe);
  const frmAddinMain* form = connect.mainForm();
  if (form != nullptr && form->tmrActiveWindow.Interval > 0) {
    connection_->timer = std::make_unique<MessageTimer>(static_cast<UINT>(form->tmrActiveWindow.Interval),
                                                        [this] { Tick(); });
  }
}

void AddinCore::Tick() {
  sentrune::Connect& connect = parts_->connect;
  if (connect.mainForm() == nullptr || connect.tracker() == nullptr || connect.gobjVBInstance == nullptr) return;
  connect.mainForm()->tmrActiveWindow_Timer(*connect.gobjVBInstance, *connect.tracker());
}

void AddinCore::Disconnect() {
  if (!connection_) return;
  // Released whether the core's disconnection ends well or not.
  const std::unique_ptr<Connection> connection = std::move(connection_);
  connection->timer.reset();
  parts_->connect.AddinInstance_OnDisconnection();
  parts_->ui.SetOwner(nullptr);
  SetFaultReporter(nullptr);
  parts_->connect.BuildEnded = nullptr;
}

}  // namespace sentrune::addin
