#pragma once
// Reading a component's type library for the commands that show or compare
// models: no message box, a line on stderr that names the file instead.
#include <string>

#include "typelib/parse_tlb.h"

namespace sentrune::cli {

class Session;

// Message texts break lines with CR LF; a terminal wants LF.
std::string ForTerminal(const std::string& text);

// Reads the component at the Windows path `path` into `model`. Empty on
// success, else why not, after `shownName` (the file as the user knows it):
// "X: is a folder", "X: no such file", "X: The file doesn't contain a valid
// TypeLib." or the reader's own description.
std::string ReadModelAt(Session& session, const std::string& path, const std::string& shownName,
                        clsParseTLB& model);

// Reads the component named on the command line into `model`; on failure
// the reason is on stderr and the exit status is 2.
bool ReadModel(Session& session, const std::string& argument, clsParseTLB& model);

}  // namespace sentrune::cli
