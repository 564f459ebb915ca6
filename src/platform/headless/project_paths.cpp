#include "platform/headless/project_paths.h"

#include "runtime/winpath.h"

namespace sentrune::headless {
namespace {

bool IsAbsolute(std::string_view path) {
  const bool unc = path.size() >= 2 && (path[0] == '\\' || path[0] == '/') &&
                   (path[1] == '\\' || path[1] == '/');
  return unc || (path.size() >= 2 && path[1] == ':');
}

std::string Normalise(std::string text) {
  if (const auto parsed = rt::ParseWinPath(text)) return rt::JoinWinPath(*parsed);
  return text;
}

bool AllDigits(std::string_view text) {
  if (text.empty()) return false;
  for (char c : text)
    if (c < '0' || c > '9') return false;
  return true;
}

}  // namespace

std::string Unquote(std::string_view value) {
  if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
    value = value.substr(1, value.size() - 2);
  return std::string(value);
}

std::string ResolveAgainst(std::string_view folder, std::string_view path) {
  if (IsAbsolute(path)) return Normalise(std::string(path));
  if (!path.empty() && (path[0] == '\\' || path[0] == '/')) {
    const auto base = rt::ParseWinPath(folder);
    if (base) return Normalise(base->root + std::string(path));
  }
  std::string joined(folder);
  if (!path.empty()) joined = rt::AddBackslash(joined).append(path);
  return Normalise(std::move(joined));
}

std::string PathForProjectFile(std::string_view projectFolder, std::string_view fullPath) {
  auto relative = rt::PathRelativePathTo(projectFolder, true, fullPath, false);
  if (!relative) return std::string(fullPath);
  if (relative->starts_with(".\\")) relative->erase(0, 2);
  return *relative;
}

std::string TypeLibFilePart(std::string_view path) {
  const size_t slash = path.rfind('\\');
  if (slash == std::string_view::npos || !AllDigits(path.substr(slash + 1))) return std::string(path);
  const std::string_view file = path.substr(0, slash);
  // A folder named only by digits is not a resource index: the part before
  // the index must look like a module's file name.
  if (rt::GetFileTitle(file).find('.') == std::string::npos) return std::string(path);
  return std::string(file);
}

}  // namespace sentrune::headless
