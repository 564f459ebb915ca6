#pragma once
// The user's well-known folders as the freedesktop conventions place them.
#include <optional>
#include <string>
#include <string_view>

namespace sentrune::posix {

// The folder a user-dirs.dirs text gives for `key` (such as
// "XDG_DESKTOP_DIR"): a double-quoted "$HOME/..." or absolute path, with
// $HOME replaced by `home` and backslash escapes removed. Nothing when the
// key is absent or its value has another form; the last assignment wins.
std::optional<std::string> ParseUserDir(std::string_view text, std::string_view key, const std::string& home);

// $XDG_CONFIG_HOME when it is an absolute path, else ~/.config.
std::string ConfigHome();

// XDG_DESKTOP_DIR from ConfigHome()/user-dirs.dirs, else ~/Desktop.
std::string DesktopFolder();

}  // namespace sentrune::posix
