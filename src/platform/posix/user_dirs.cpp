#include "platform/posix/user_dirs.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/posix/drive_map.h"

namespace sentrune::posix {

namespace {

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The text between the quotes of `"..."`, escapes removed.
std::optional<std::string> Unquote(std::string_view value) {
  if (value.size() < 2 || value.front() != '"' || value.back() != '"') return std::nullopt;
  std::string out;
  for (size_t i = 1; i + 1 < value.size(); ++i) {
    if (value[i] == '\\' && i + 2 < value.size()) ++i;
    out += value[i];
  }
  return out;
}

}  // namespace

std::optional<std::string> ParseUserDir(std::string_view text, std::string_view key, const std::string& home) {
  std::optional<std::string> found;
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) {
    const std::string_view trimmed = TrimBlanks(line);
    const size_t equals = trimmed.find('=');
    if (trimmed.empty() || trimmed[0] == '#' || equals == std::string_view::npos) continue;
    if (TrimBlanks(trimmed.substr(0, equals)) != key) continue;
    std::optional<std::string> value = Unquote(TrimBlanks(trimmed.substr(equals + 1)));
    if (!value) continue;
    if (value->rfind("$HOME", 0) == 0 && (value->size() == 5 || (*value)[5] == '/'))
      found = home + value->substr(5);
    else if (!value->empty() && (*value)[0] == '/')
      found = *value;
  }
  return found;
}

std::string ConfigHome() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/') return config;
  return HomeFolder() + "/.config";
}

std::string DesktopFolder() {
  const std::string home = HomeFolder();
  std::ifstream file(ConfigHome() + "/user-dirs.dirs", std::ios::binary);
  if (file) {
    std::ostringstream text;
    text << file.rdbuf();
    if (std::optional<std::string> desktop = ParseUserDir(text.str(), "XDG_DESKTOP_DIR", home)) return *desktop;
  }
  return home + "/Desktop";
}

}  // namespace sentrune::posix
