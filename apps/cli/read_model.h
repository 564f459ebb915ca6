#pragma once
// Reading a component's type library for the commands that show or compare
// models: no message box, the reader's message on stderr instead.
#include <string>

#include "typelib/parse_tlb.h"

namespace sentrune::cli {

class Session;

// Message texts break lines with CR LF; a terminal wants LF.
std::string ForTerminal(const std::string& text);

// Reads the component named on the command line into `model`; on failure
// the reader's message is on stderr and the exit status is 2.
bool ReadModel(Session& session, const std::string& argument, clsParseTLB& model);

}  // namespace sentrune::cli
