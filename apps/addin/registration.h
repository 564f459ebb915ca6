#pragma once
// What DllRegisterServer and DllUnregisterServer write and remove, over any
// registry so that it can be checked over a stored one:
//   <classes>\Sentrune.Connect\CLSID                = {clsid}
//   <classes>\CLSID\{clsid}\ProgID                  = Sentrune.Connect
//   <classes>\CLSID\{clsid}\InprocServer32          = the DLL's path, ThreadingModel
//   HKCU\Software\Microsoft\Visual Basic\6.0\Addins\Sentrune.Connect: the IDE's list
// <classes> is the machine's HKLM\Software\Classes (what HKEY_CLASSES_ROOT
// writes new keys to) when it may be written, else the user's
// HKCU\Software\Classes, which needs no administrator.
#include <string>

#include "platform/registry.h"
#include "runtime/result.h"

namespace sentrune::addin {

inline constexpr const char* kAddinsKey = "Software\\Microsoft\\Visual Basic\\6.0\\Addins";

// Registers the class of the DLL at `dllPath` (a full Windows path) and
// lists the add-in for the IDE. A registration of ours in the other class
// root is removed, since the user's would shadow the machine's. On failure
// nothing of ours is left behind.
rt::Status RegisterServer(platform::Registry& registry, const std::string& dllPath);

// Removes every key registration writes, from both class roots, and the
// IDE's Addins key when no other add-in is listed there. Keys that are not
// there count as removed; a key of ours that has gained a sub-key of someone
// else's stays, and that is a failure.
rt::Status UnregisterServer(platform::Registry& registry);

}  // namespace sentrune::addin
