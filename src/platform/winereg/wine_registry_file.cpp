#include "platform/winereg/wine_registry_file.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "platform/winereg/wine_registry_text.h"
#include "platform/registry.h"
#include "runtime/text.h"

namespace sentrune::portable::winereg {

namespace {

constexpr std::string_view kSignature = "WINE REGISTRY Version 2";
// Seconds from 1601-01-01 (FILETIME's epoch) to 1970-01-01.
constexpr int64_t kFiletimeEpochOffset = 11644473600;

// A line as the parser sees it: continuations joined, CR dropped.
struct LogicalLine {
  std::string text;
  size_t offset = 0;  // where its first physical line starts
  size_t number = 0;  // that line's number, from 1
};

std::vector<LogicalLine> SplitLines(std::string_view text) {
  std::vector<LogicalLine> lines;
  size_t pos = 0, number = 0;
  bool continuing = false;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    ++number;
    if (continuing) {
      const size_t start = line.find_first_not_of(" \t");
      lines.back().text += start == std::string_view::npos ? "" : line.substr(start);
    } else {
      lines.push_back({std::string(line), pos, number});
    }
    std::string& joined = lines.back().text;
    continuing = !joined.empty() && joined.back() == '\\';
    if (continuing) joined.pop_back();
    pos = end + 1;
  }
  return lines;
}

std::string Fold(const KeyPath& path, size_t count) {
  std::string folded;
  for (size_t i = 0; i < count; ++i) {
    if (i) folded += '\\';
    folded += rt::LCase(path[i]);
  }
  return folded;
}

bool PathLess(const KeyPath& a, const KeyPath& b) {
  return std::lexicographical_compare(
      a.begin(), a.end(), b.begin(), b.end(),
      [](const std::string& x, const std::string& y) { return NameLess(x, y); });
}

bool IsUnder(const KeyPath& path, const KeyPath& parent) {
  if (path.size() <= parent.size()) return false;
  for (size_t i = 0; i < parent.size(); ++i) {
    if (!rt::IEquals(path[i], parent[i])) return false;
  }
  return true;
}

rt::VbError ParseError(const std::string& label, size_t line, const std::string& why) {
  return rt::MakeError(platform::regerr::kBadDb, "Wine registry file '" + label + "' line " +
                                                     std::to_string(line) + ": " + why);
}

// "[path] stamp" into a section without values.
std::optional<Section> ParseSectionLine(const std::string& line) {
  size_t pos = 1;
  const std::optional<std::u16string> units = UnescapeText(line, pos, ']');
  if (!units) return std::nullopt;
  Section section;
  size_t start = 0;
  for (size_t i = 0; i <= units->size(); ++i) {
    if (i == units->size() || (*units)[i] == u'\\') {
      if (i > start) section.path.push_back(Utf16ToUtf8(units->substr(start, i - start)));
      start = i + 1;
    }
  }
  while (pos < line.size() && line[pos] == ' ') ++pos;
  while (pos < line.size() && line[pos] >= '0' && line[pos] <= '9') {
    section.stamp = section.stamp * 10 + (line[pos++] - '0');
  }
  return section;
}

std::string EscapedPath(const KeyPath& path) {
  std::string text;
  for (size_t i = 0; i < path.size(); ++i) {
    if (i) text += "\\\\";
    text += EscapeText(Utf8ToUtf16(path[i]), EscapeFor::kKeyName);
  }
  return text;
}

std::string Render(const Section& section) {
  const int64_t filetime = (section.stamp + kFiletimeEpochOffset) * 10000000;
  std::string text = "[" + EscapedPath(section.path) + "] " + std::to_string(section.stamp) +
                     "\n#time=" + HexNumber(static_cast<uint64_t>(filetime)) + "\n";
  for (const std::string& line : section.extra) text += line + "\n";
  for (const StoredValue& value : section.values) text += RenderValueLine(value) + "\n";
  return text + "\n";
}

}  // namespace

KeyPath SplitKeyPath(std::string_view path) {
  KeyPath parts;
  size_t start = 0;
  for (size_t i = 0; i <= path.size(); ++i) {
    if (i == path.size() || path[i] == '\\') {
      if (i > start) parts.emplace_back(path.substr(start, i - start));
      start = i + 1;
    }
  }
  return parts;
}

bool NameLess(std::string_view a, std::string_view b) {
  const std::string la = rt::LCase(a), lb = rt::LCase(b);
  return la != lb ? la < lb : a < b;
}

// --- Section

const StoredValue* Section::FindValue(std::string_view name) const {
  for (const StoredValue& value : values) {
    if (rt::IEquals(value.name, name)) return &value;
  }
  return nullptr;
}

void Section::SetValue(StoredValue value) {
  for (StoredValue& stored : values) {
    if (rt::IEquals(stored.name, value.name)) {
      stored.type = value.type;
      stored.data = std::move(value.data);
      return;
    }
  }
  const auto at = std::find_if(values.begin(), values.end(), [&](const StoredValue& stored) {
    return NameLess(value.name, stored.name);
  });
  values.insert(at, std::move(value));
}

bool Section::EraseValue(std::string_view name) {
  const auto at = std::find_if(values.begin(), values.end(), [&](const StoredValue& stored) {
    return rt::IEquals(stored.name, name);
  });
  if (at == values.end()) return false;
  values.erase(at);
  return true;
}

// --- RegFile

rt::Result<RegFile> RegFile::Parse(std::string_view text, const std::string& label) {
  const std::vector<LogicalLine> lines = SplitLines(text);
  if (lines.empty() || lines.front().text != kSignature) {
    return ParseError(label, 1, "not a Wine registry file of version 2");
  }
  RegFile file;
  std::vector<size_t> starts;  // offset of each section's first line
  for (const LogicalLine& line : lines) {
    const std::string& t = line.text;
    if (!t.empty() && t[0] == '[') {
      std::optional<Section> section = ParseSectionLine(t);
      if (!section) return ParseError(label, line.number, "key name without closing \"]\"");
      starts.push_back(line.offset);
      file.sections_.push_back(std::move(*section));
      continue;
    }
    if (file.sections_.empty()) continue;  // header lines: ";; ...", "#arch=..."
    Section& section = file.sections_.back();
    if (t.find_first_not_of(" \t") == std::string::npos || t.rfind("#time=", 0) == 0) continue;
    if (t[0] == '#' || t[0] == ';') {
      section.extra.push_back(t);
      continue;
    }
    std::string why;
    std::optional<StoredValue> value = ParseValueLine(t, why);
    if (!value) return ParseError(label, line.number, why);
    section.values.push_back(std::move(*value));
  }
  starts.push_back(text.size());
  file.header_ = std::string(text.substr(0, starts.front()));
  for (size_t i = 0; i < file.sections_.size(); ++i) {
    file.sections_[i].raw = std::string(text.substr(starts[i], starts[i + 1] - starts[i]));
  }
  file.Reindex();
  return file;
}

std::string RegFile::Serialise() const {
  std::string text = header_;
  for (const Section& section : sections_) {
    if (!text.empty() && text.back() != '\n') text += '\n';
    text += section.raw.empty() ? Render(section) : section.raw;
  }
  return text;
}

const Section* RegFile::Find(const KeyPath& path) const {
  const auto found = index_.find(Fold(path, path.size()));
  return found == index_.end() ? nullptr : &sections_[found->second];
}

bool RegFile::KeyExists(const KeyPath& path) const {
  if (path.empty()) return true;
  const std::string folded = Fold(path, path.size());
  return index_.count(folded) || below_.count(folded);
}

std::vector<std::string> RegFile::SubkeyNames(const KeyPath& path) const {
  std::vector<std::string> names;
  std::unordered_set<std::string> seen;
  for (const Section& section : sections_) {
    if (!IsUnder(section.path, path)) continue;
    const std::string& name = section.path[path.size()];
    if (seen.insert(rt::LCase(name)).second) names.push_back(name);
  }
  std::stable_sort(names.begin(), names.end(),
                   [](const std::string& a, const std::string& b) { return NameLess(a, b); });
  return names;
}

Section& RegFile::Touch(const KeyPath& path, int64_t now) {
  const auto found = index_.find(Fold(path, path.size()));
  size_t at;
  if (found != index_.end()) {
    at = found->second;
  } else {
    Section section;
    section.path = path;
    at = InsertSection(std::move(section));
  }
  Section& section = sections_[at];
  section.raw.clear();
  section.stamp = now;
  return section;
}

void RegFile::Remove(const KeyPath& path, int64_t now) {
  const auto found = index_.find(Fold(path, path.size()));
  if (path.empty() || found == index_.end()) return;
  sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(found->second));
  Reindex();
  const KeyPath parent(path.begin(), path.end() - 1);
  if (!KeyExists(parent)) {
    Section section;
    section.path = parent;
    section.stamp = now;
    InsertSection(std::move(section));
  }
}

size_t RegFile::InsertSection(Section section) {
  const auto at = std::find_if(sections_.begin(), sections_.end(), [&](const Section& other) {
    return PathLess(section.path, other.path);
  });
  const size_t index = static_cast<size_t>(at - sections_.begin());
  sections_.insert(at, std::move(section));
  Reindex();
  return index;
}

void RegFile::Reindex() {
  index_.clear();
  below_.clear();
  for (size_t i = 0; i < sections_.size(); ++i) {
    const KeyPath& path = sections_[i].path;
    for (size_t depth = 0; depth < path.size(); ++depth) ++below_[Fold(path, depth)];
    index_[Fold(path, path.size())] = i;
  }
}

}  // namespace sentrune::portable::winereg
