#pragma once
// The about box: the product's name, version and purpose, and the way to
// its compiled help, "Help\Sentrune.chm" in the add-in's folder, which the
// system's viewer opens.
#include <functional>
#include <string>

#include "state/addin_state.h"

namespace sentrune::addin {

// Opens a document with the program the system associates with it; false
// when none could.
using OpenDocument = std::function<bool(const std::string& path)>;

// Shows the box and, when the user asks for the help, opens the help file,
// or says that there is none.
void ShowAboutBox(AddinState& state, const OpenDocument& open);

// The shell's "open" verb.
bool OpenWithShell(const std::string& path);

}  // namespace sentrune::addin
