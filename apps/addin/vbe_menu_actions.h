#pragma once
// The menu's actions inside the IDE: each item wired to the core command
// it names, over this computer's registry. Items whose windows the DLL does
// not have yet stay empty and do nothing.
#include "host/addin_menu.h"

namespace sentrune::addin {

MenuActions IdeMenuActions();

}  // namespace sentrune::addin
