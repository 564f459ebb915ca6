#pragma once
// The menu's actions inside the IDE: each item wired to the core command
// it names, over this computer's registry. Until the DLL has windows of its
// own, the options and the comparison viewer show their forms as text
// through the platform's Ui.
#include "about_box.h"
#include "host/addin_menu.h"

namespace sentrune::addin {

// `open` opens the help file from the about box.
MenuActions IdeMenuActions(const OpenDocument& open = OpenWithShell);

}  // namespace sentrune::addin
