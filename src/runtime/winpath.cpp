#include "runtime/winpath.h"

#include "runtime/text.h"

namespace sentrune::rt {
namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsDriveRoot(std::string_view root) { return root.size() == 2 && root[1] == ':'; }

// Splits at runs of separators, resolving "." and ".." against what came
// before; ".." at the root has nothing to remove and vanishes.
std::vector<std::string> NormalisedParts(std::string_view rest) {
  std::vector<std::string> parts;
  size_t pos = 0;
  while (pos < rest.size()) {
    size_t end = pos;
    while (end < rest.size() && !IsSeparator(rest[end])) ++end;
    const std::string_view part = rest.substr(pos, end - pos);
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != ".") {
      parts.emplace_back(part);
    }
    pos = end + 1;
  }
  return parts;
}

// The next component of a UNC root at `pos`, which moves past it.
std::string_view TakeComponent(std::string_view text, size_t& pos) {
  const size_t start = pos;
  while (pos < text.size() && !IsSeparator(text[pos])) ++pos;
  return text.substr(start, pos - start);
}

// Splits "\\server\share..." into its root and the text after it.
std::optional<std::pair<std::string, std::string_view>> SplitUncRoot(std::string_view path) {
  size_t pos = 2;
  const std::string_view server = TakeComponent(path, pos);
  if (server.empty() || pos >= path.size()) return std::nullopt;
  ++pos;
  const std::string_view share = TakeComponent(path, pos);
  if (share.empty()) return std::nullopt;
  std::string root = "\\\\";
  root.append(server).append("\\").append(share);
  return std::make_pair(std::move(root), path.substr(pos));
}

std::optional<std::pair<std::string, std::string_view>> SplitRoot(std::string_view path) {
  if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1]))
    return SplitUncRoot(path);
  const bool letter = path.size() >= 3 && ((path[0] >= 'A' && path[0] <= 'Z') ||
                                           (path[0] >= 'a' && path[0] <= 'z'));
  if (!letter || path[1] != ':' || !IsSeparator(path[2])) return std::nullopt;
  return std::make_pair(UCase(path.substr(0, 2)), path.substr(2));
}

// Standard glob over code points: "*" any run, "?" one code point, with the
// usual backtrack to the latest star.
bool Glob(std::u32string_view pattern, std::u32string_view name) {
  size_t p = 0, n = 0;
  size_t starP = std::u32string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == U'?' || pattern[p] == name[n])) {
      ++p, ++n;
    } else if (p < pattern.size() && pattern[p] == U'*') {
      starP = p++;
      starN = n;
    } else if (starP != std::u32string_view::npos) {
      p = starP + 1;
      n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == U'*') ++p;
  return p == pattern.size();
}

}  // namespace

std::string GetFolder(std::string_view path) {
  const size_t slash = path.rfind('\\');
  return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash + 1));
}

std::string GetFileTitle(std::string_view path) {
  const size_t slash = path.rfind('\\');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string GetExtension(std::string_view path) {
  const size_t dot = path.rfind('.');
  return dot == std::string_view::npos ? std::string() : std::string(path.substr(dot));
}

std::string StripExtension(std::string_view path) {
  return std::string(path.substr(0, path.rfind('.')));
}

std::string AddBackslash(std::string_view path) {
  std::string out(path);
  if (out.empty() || out.back() != '\\') out += '\\';
  return out;
}

std::optional<WinPath> ParseWinPath(std::string_view path) {
  auto split = SplitRoot(path);
  if (!split) return std::nullopt;
  WinPath result;
  result.root = std::move(split->first);
  result.parts = NormalisedParts(split->second);
  result.trailingSlash = !split->second.empty() && IsSeparator(path.back());
  return result;
}

std::string JoinWinPath(const WinPath& path) {
  std::string out = path.root;
  for (const std::string& part : path.parts) out.append("\\").append(part);
  if (path.trailingSlash || (path.parts.empty() && IsDriveRoot(path.root))) out += '\\';
  return out;
}

std::optional<std::string> PathRelativePathTo(std::string_view from, bool fromIsDir,
                                              std::string_view to, bool toIsDir) {
  const auto source = ParseWinPath(from);
  const auto target = ParseWinPath(to);
  if (!source || !target || !IEquals(source->root, target->root)) return std::nullopt;
  size_t fromDepth = source->parts.size();
  if (!fromIsDir && fromDepth > 0) --fromDepth;
  size_t toDirDepth = target->parts.size();
  if (!toIsDir && toDirDepth > 0) --toDirDepth;

  size_t common = 0;
  while (common < fromDepth && common < toDirDepth &&
         IEquals(source->parts[common], target->parts[common]))
    ++common;

  std::string out = common == fromDepth ? "." : "..";
  for (size_t i = common + 1; i < fromDepth; ++i) out += "\\..";
  for (size_t i = common; i < target->parts.size(); ++i) out.append("\\").append(target->parts[i]);
  if (target->trailingSlash && common < target->parts.size()) out += '\\';
  return out;
}

bool WildcardMatch(std::string_view pattern, std::string_view name) {
  const std::u32string p = ToCodePoints(LCase(pattern));
  const std::u32string n = ToCodePoints(LCase(name));
  const bool nameHasDot = n.find(U'.') != std::u32string::npos;
  const std::u32string_view view = p;
  if (view.ends_with(U".*"))
    return Glob(view, n) || (!nameHasDot && Glob(view.substr(0, view.size() - 2), n));
  if (view.ends_with(U'.')) return !nameHasDot && Glob(view.substr(0, view.size() - 1), n);
  return Glob(view, n);
}

}  // namespace sentrune::rt
