#pragma once
#include <string>

namespace sentrune::cli {

// The help footer that maps each item of the add-in's IDE menu to the
// command doing the same here.
std::string MenuHelpText();

}  // namespace sentrune::cli
