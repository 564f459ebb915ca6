#pragma once
// Windows path texts as the add-in handles them: pure text operations, no
// disk access. Folder, title and extension split at the last "\" or "." of
// the whole text, exactly as the add-in's own helpers do.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrune::rt {

// Text up to and including the last "\"; "" when there is none.
std::string GetFolder(std::string_view path);
// Text after the last "\"; the whole text when there is none.
std::string GetFileTitle(std::string_view path);
// From the last "." of the whole text onward, dot included; "" when there is
// none. A dot in a folder name counts too ("C:\a.b\c" gives ".b\c").
std::string GetExtension(std::string_view path);
// Text before the last "."; the whole text when there is none.
std::string StripExtension(std::string_view path);
// The path with a "\" appended unless it already ends in one.
std::string AddBackslash(std::string_view path);

// An absolute path split into its root and normalised components.
struct WinPath {
  std::string root;                // "C:" (drive upper-cased) or "\\server\share"
  std::vector<std::string> parts;  // no "", "." or ".." left
  bool trailingSlash = false;      // the text ended in a separator
};

// Accepts "X:\..." and "\\server\share\..." with "\" or "/" as separators;
// runs of separators collapse, "." goes, ".." removes the part before it (and
// is dropped at the root, as Windows does). Relative, drive-relative ("C:x")
// and root-relative ("\x") texts, and UNC texts without a share, give nullopt.
std::optional<WinPath> ParseWinPath(std::string_view path);
// The canonical text: root, then "\" before every part, and a final "\" when
// trailingSlash is set or the path is a bare drive root ("C:\").
std::string JoinWinPath(const WinPath& path);

// The path from `from` to `to` as shlwapi's PathRelativePathTo gives it, over
// normalised paths: when `from` names a file its last component is dropped,
// the common prefix is taken by whole components ignoring case, then one ".."
// per remaining component of `from` (or "." when none remains), then the rest
// of `to` including its file name. Paths on different roots (or relative
// ones) have no relative path. "C:\a\b" (dir) to "C:\a\c\d.txt" (file) gives
// "..\c\d.txt"; "C:\a" (dir) to "C:\a\b.txt" gives ".\b.txt".
std::optional<std::string> PathRelativePathTo(std::string_view from, bool fromIsDir,
                                              std::string_view to, bool toIsDir);

// File name matching as FindFirstFile does it on long names, ignoring case:
// "*" matches any run, "?" exactly one character. Two DOS forms are honoured:
// a pattern ending in ".*" also matches a name without a dot ("*.*" matches
// everything, "readme.*" matches "readme"), and one ending in a single "."
// matches only names without a dot ("*." matches "Makefile", not "a.txt").
bool WildcardMatch(std::string_view pattern, std::string_view name);

}  // namespace sentrune::rt
