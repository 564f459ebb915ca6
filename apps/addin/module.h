#pragma once
// The DLL as a whole: how many of its objects and server locks are alive
// (DllCanUnloadNow may let the DLL go only at zero), and where it lies.
#include "platform/win32/windows_api.h"

#include <string>

namespace sentrune::addin {

// Counts one live object or server lock more, or one less.
void LockModule();
void UnlockModule();
bool ModuleInUse();

// The DLL's own full path in UTF-8 (not that of the program that loaded
// it); empty when the system cannot say.
std::string ModulePath();

// The module this code is in: the DLL inside the IDE, the test program in
// the tests. Its windows and resources are looked up there.
HMODULE ThisModule();

}  // namespace sentrune::addin
