#pragma once
// The core add-in (sentrune::Connect) inside the IDE, over the system's own
// platform: the files, clock and programs of Windows, the profile functions,
// version.dll, the system's type library loader and the dialogs of
// dialog_ui.h. The add-in's folder is the DLL's.
#include "platform/win32/windows_api.h"

#include <memory>

namespace sentrune::addin {

class AddinCore {
 public:
  // Builds the platform and the state and runs AddinInstance_Initialize.
  AddinCore();
  // Disconnects when still connected.
  ~AddinCore();
  AddinCore(const AddinCore&) = delete;
  AddinCore& operator=(const AddinCore&) = delete;

  // The IDE's VBE object, held (AddRef'd) until Disconnect: the core is
  // connected to it with its menu, whose commands go to this load's log,
  // the IDE's main window owns the message boxes, and the main form's
  // timer starts.
  void Connect(IDispatch* application);
  // Stops the timer, runs AddinInstance_OnDisconnection (which removes the
  // menu and ends the subscriptions), then releases every IDE object.
  void Disconnect();

 private:
  struct Parts;
  struct Connection;
  void Tick();

  std::unique_ptr<Parts> parts_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace sentrune::addin
