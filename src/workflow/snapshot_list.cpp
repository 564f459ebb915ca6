#include "workflow/snapshot_list.h"

#include <algorithm>
#include <array>

#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

constexpr std::array<std::string_view, 9> kSourceKeys{"form",         "usercontrol", "propertypage",
                                                      "userdocument", "class",       "module",
                                                      "designer",     "relateddoc",  "resfile32"};
constexpr std::array<std::string_view, 4> kKeysWithX{"form", "usercontrol", "propertypage", "userdocument"};

template <size_t N>
bool OneOf(const std::array<std::string_view, N>& keys, const std::string& key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

std::string WithoutQuotes(std::string_view text) { return rt::Replace(text, "\"", ""); }

// "Name; file" for classes and modules: the file is after the ";", or after
// the "#" the path fixer joins them with.
std::string FileOfValue(const ProjectFileEntry& entry) {
  std::string value = WithoutQuotes(entry.value);
  if (entry.key == "class" || entry.key == "module") {
    size_t joiner = value.find(';');
    if (joiner == std::string::npos) joiner = value.find('#');
    if (joiner != std::string::npos) value = value.substr(joiner + 1);
  }
  return rt::Trim(value);
}

// A project that names its files mechanically: frm gives frx, pag gives pax
// (so a property page's pgx is not found), Report.Dsr gives Report.dca.
std::optional<std::string> CompanionOf(const std::string& key, const std::string& file) {
  if (file.empty()) return std::nullopt;
  if (OneOf(kKeysWithX, key)) return file.substr(0, file.size() - 1) + "x";
  if (key == "designer") {
    const size_t dot = file.rfind('.');
    if (dot != std::string::npos) return file.substr(0, dot + 1) + "dca";
  }
  return std::nullopt;
}

bool UsablePart(const std::string& part) { return part.find_first_of(":*?\"<>|") == std::string::npos; }

std::string JoinParts(const std::vector<std::string>& parts, size_t from) {
  std::string joined;
  for (size_t i = from; i < parts.size(); ++i) joined += (joined.empty() ? "" : "\\") + parts[i];
  return joined;
}

bool IsBelow(const rt::WinPath& folder, const rt::WinPath& file) {
  if (!rt::IEquals(folder.root, file.root) || file.parts.size() <= folder.parts.size()) return false;
  for (size_t i = 0; i < folder.parts.size(); ++i)
    if (!rt::IEquals(folder.parts[i], file.parts[i])) return false;
  return true;
}

// What is left of a relative name once its climbs out are dropped.
std::vector<std::string> AfterClimbing(std::string_view name) {
  std::vector<std::string> kept;
  size_t start = 0;
  while (start <= name.size()) {
    size_t end = name.find_first_of("\\/", start);
    if (end == std::string_view::npos) end = name.size();
    const std::string part(name.substr(start, end - start));
    if (part == "..") {
      if (!kept.empty()) kept.pop_back();
    } else if (!part.empty() && part != ".") {
      kept.push_back(part);
    }
    start = end + 1;
  }
  return kept;
}

std::string RootAsFolder(const std::string& root) {
  if (root.starts_with("\\\\")) return root.substr(2);
  return root.substr(0, root.find(':'));
}

}  // namespace

std::vector<std::string> ProjectFileLines(std::string_view projectText) {
  if (projectText.starts_with("\xEF\xBB\xBF")) projectText.remove_prefix(3);
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < projectText.size()) {
    size_t end = projectText.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = projectText.size();
    lines.emplace_back(projectText.substr(start, end - start));
    start = end + (projectText.substr(end).starts_with("\r\n") ? 2 : 1);
  }
  return lines;
}

std::optional<ProjectFileEntry> SplitProjectLine(std::string_view line) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return ProjectFileEntry{rt::LCase(rt::Trim(line.substr(0, equals))), std::string(line.substr(equals + 1))};
}

std::optional<SnapshotPlace> PlaceInSnapshot(const std::string& projectFolder, const std::string& name) {
  const std::optional<rt::WinPath> folder = rt::ParseWinPath(projectFolder);
  if (!folder || name.empty()) return std::nullopt;
  const bool absolute = rt::ParseWinPath(name).has_value();
  const bool rootRelative = !absolute && (name.front() == '\\' || name.front() == '/');
  std::string full = name;
  if (!absolute) full = rootRelative ? folder->root + name : rt::AddBackslash(projectFolder) + name;
  const std::optional<rt::WinPath> file = rt::ParseWinPath(full);
  if (!file || file->parts.empty() || !std::all_of(file->parts.begin(), file->parts.end(), UsablePart))
    return std::nullopt;
  if (IsBelow(*folder, *file))
    return SnapshotPlace{rt::JoinWinPath(*file), JoinParts(file->parts, folder->parts.size()), false};
  const std::string kept = absolute || rootRelative
                               ? RootAsFolder(file->root) + "\\" + JoinParts(file->parts, 0)
                               : JoinParts(AfterClimbing(name), 0);
  if (kept.empty()) return std::nullopt;
  return SnapshotPlace{rt::JoinWinPath(*file), "_outside\\" + kept, true};
}

std::vector<std::string> SnapshotFileList(const platform::FileSystem& fs, const std::string& projectFile,
                                          std::string_view projectText) {
  const std::string folder = rt::GetFolder(projectFile);
  const auto exists = [&](const std::string& name) {
    const std::optional<SnapshotPlace> place = PlaceInSnapshot(folder, name);
    if (!place) return false;
    const rt::Result<uint32_t> attributes = fs.GetAttributes(place->source);
    return attributes.ok() && !(*attributes & platform::kAttrDirectory);
  };
  std::vector<std::string> list;
  const std::string projectTitle = rt::GetFileTitle(projectFile);
  if (!projectTitle.empty()) {
    const std::string companion = projectTitle.substr(0, projectTitle.size() - 1) + "l";
    if (exists(companion)) list.push_back(companion);
  }
  for (const std::string& line : ProjectFileLines(projectText)) {
    const std::optional<ProjectFileEntry> entry = SplitProjectLine(line);
    if (!entry || !OneOf(kSourceKeys, entry->key)) continue;
    const std::string file = FileOfValue(*entry);
    if (exists(file)) list.push_back(file);
    if (const std::optional<std::string> companion = CompanionOf(entry->key, file);
        companion && exists(*companion))
      list.push_back(*companion);
  }
  return list;
}

}  // namespace sentrune
