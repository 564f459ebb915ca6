#pragma once
// Sentrune.dll loaded as the IDE loads it: a copy in a folder of its own,
// registered through its own export, found in the IDE's add-in list,
// created by ProgID through COM and connected through IDTExtensibility2
// after the IDE has started (ext_cm_AfterStartup), as when the Add-In
// Manager loads it.
//
// Assumed where the notes are silent: the AddInInst argument is Nothing
// (the add-in is not expected to use its AddIn object), and the custom
// arrays are empty arrays of Variants.
#include "platform/win32/windows_api.h"

#include <filesystem>
#include <string>

#include "extensibility.h"

namespace sentrune::testing::ide {

class LoadedAddin {
 public:
  // Copies the Sentrune.dll beside the test program into `folder`.
  explicit LoadedAddin(const std::filesystem::path& folder);
  // Whatever is still held is released; the registration is removed.
  ~LoadedAddin();
  LoadedAddin(const LoadedAddin&) = delete;
  LoadedAddin& operator=(const LoadedAddin&) = delete;

  const std::filesystem::path& dll() const { return dll_; }
  // DllRegisterServer; then whether the IDE's add-in list names the copy.
  HRESULT Register();
  bool Listed() const;
  // CLSIDFromProgID, CoCreateInstance, QueryInterface for IDTExtensibility2.
  HRESULT Create();
  // OnConnection then OnStartupComplete; the first failure.
  HRESULT Connect(IDispatch* vbe);
  // OnBeginShutdown then OnDisconnection(ext_dm_UserClosed).
  HRESULT Disconnect();
  // The IDE's last Release of the add-in.
  void Release();
  // DllCanUnloadNow of the loaded copy.
  HRESULT CanUnloadNow() const;

 private:
  HRESULT Export(const char* name) const;

  std::filesystem::path dll_;
  HMODULE module_ = nullptr;
  addin::IDTExtensibility2* addin_ = nullptr;
  SAFEARRAY* custom_ = nullptr;
};

}  // namespace sentrune::testing::ide
