#pragma once
// The 8.3 aliases Windows gives long names, reproduced for a folder's entries
// so that paths saved by tools that stored short names ("PROGRA~1") still
// resolve on a host file system that keeps no such aliases.
#include <string>
#include <vector>

namespace sentrune::posix {

// True for a name Windows keeps as its own short name: one to eight
// characters, an optional dot and one to three more, no blanks and only the
// characters short names allow (letter case does not matter).
bool IsShortName(const std::string& name);

// The short alias of every name of one folder, in the order of `names`. A
// valid short name stands for itself in upper case. Any other name gets up to
// six upper-case characters of its base (blanks and dots dropped, leading
// dots ignored, disallowed characters as "_"), "~N" and up to three characters
// of its extension; N counts the names sharing that basis in case-insensitive
// sorted order, skipping aliases taken by real short names, and the base
// shrinks as N grows so the alias keeps eight characters.
std::vector<std::string> ShortNames(const std::vector<std::string>& names);

}  // namespace sentrune::posix
