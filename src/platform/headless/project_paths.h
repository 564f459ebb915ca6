#pragma once
// How the IDE turns the paths written in project files into full paths and
// back. All texts are Windows paths.
#include <string>
#include <string_view>

namespace sentrune::headless {

// A value without one pair of enclosing double quotes (Name="Widgets").
std::string Unquote(std::string_view value);

// The full path of `path` as seen from `folder`: an absolute path ("C:\..",
// "\\server\share\..") stands as it is, a root-relative one ("\x") takes
// the folder's root, anything else is joined to the folder. Separators are
// collapsed and "." / ".." resolved (".." at the root goes, as Windows drops
// it). A result that is still not absolute comes back as plain text.
std::string ResolveAgainst(std::string_view folder, std::string_view path);

// The text a project file holds for a full path: relative to the project's
// folder whenever both are on the same drive or share (climbing with "..\"
// as the IDE writes it, without a leading ".\"), else the full path.
std::string PathForProjectFile(std::string_view projectFolder, std::string_view fullPath);

// A type library path may name a resource of a module ("...\MSVBVM60.DLL\3");
// this is the file part of it.
std::string TypeLibFilePart(std::string_view path);

}  // namespace sentrune::headless
