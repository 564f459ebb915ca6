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

  // The IDE's VBE object, held (AddRef'd) until Disconnect.
  void Connect(IDispatch* application);
  // AddinInstance_OnDisconnection, then the application is released.
  void Disconnect();

 private:
  struct Parts;
  struct ComRelease {
    void operator()(IDispatch* object) const { object->Release(); }
  };
  std::unique_ptr<Parts> parts_;
  std::unique_ptr<IDispatch, ComRelease> application_;
};

}  // namespace sentrune::addin
