#include "platform/headless/line_file.h"

#include "runtime/text.h"

namespace sentrune::headless {
namespace {

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

std::optional<KeyValue> SplitKeyValue(std::string_view line) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return KeyValue{TrimBlanks(line.substr(0, equals)), TrimBlanks(line.substr(equals + 1))};
}

bool IsSectionHeader(std::string_view line) {
  line = TrimBlanks(line);
  return line.size() >= 2 && line.front() == '[' && line.back() == ']';
}

LineFile LineFile::Parse(std::string_view bytes) {
  LineFile file;
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  file.byteOrderMark_ = bytes.starts_with(kByteOrderMark);
  if (file.byteOrderMark_) bytes.remove_prefix(kByteOrderMark.size());
  size_t pos = 0;
  while (pos < bytes.size()) {
    const size_t end = bytes.find_first_of("\r\n", pos);
    RawLine line;
    line.id = file.nextId_++;
    if (end == std::string_view::npos) {
      line.text = bytes.substr(pos);
      pos = bytes.size();
    } else {
      line.text = bytes.substr(pos, end - pos);
      const bool crlf = bytes[end] == '\r' && end + 1 < bytes.size() && bytes[end + 1] == '\n';
      line.eol = crlf ? "\r\n" : std::string(1, bytes[end]);
      pos = end + line.eol.size();
    }
    file.lines_.push_back(std::move(line));
  }
  return file;
}

std::string LineFile::Serialize() const {
  std::string out = byteOrderMark_ ? "\xEF\xBB\xBF" : "";
  for (const RawLine& line : lines_) out.append(line.text).append(line.eol);
  return out;
}

std::optional<uint32_t> LineFile::FindKey(std::string_view key) const {
  for (const RawLine& line : lines_) {
    if (IsSectionHeader(line.text)) break;
    const auto pair = SplitKeyValue(line.text);
    if (pair && rt::IEquals(pair->key, key)) return line.id;
  }
  return std::nullopt;
}

std::optional<std::string_view> LineFile::Value(std::string_view key) const {
  const auto id = FindKey(key);
  if (!id) return std::nullopt;
  return SplitKeyValue(lines_[*IndexOf(*id)].text)->value;
}

std::optional<uint32_t> LineFile::LastOfKeys(const std::vector<std::string_view>& keys) const {
  std::optional<uint32_t> last;
  for (const RawLine& line : lines_) {
    if (IsSectionHeader(line.text)) break;
    const auto pair = SplitKeyValue(line.text);
    if (!pair) continue;
    for (const std::string_view key : keys)
      if (rt::IEquals(pair->key, key)) last = line.id;
  }
  return last;
}

void LineFile::Replace(uint32_t id, std::string text) {
  if (const auto index = IndexOf(id)) lines_[*index].text = std::move(text);
}

void LineFile::Erase(uint32_t id) {
  if (const auto index = IndexOf(id)) lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*index));
}

uint32_t LineFile::InsertAfter(uint32_t id, std::string text) {
  if (lines_.empty()) {
    lines_.push_back(RawLine{nextId_++, std::move(text), ""});
    return lines_.back().id;
  }
  const std::string eol = DominantEol();
  const size_t index = IndexOf(id).value_or(lines_.size() - 1);
  RawLine line{nextId_++, std::move(text), eol};
  if (lines_[index].eol.empty()) {
    lines_[index].eol = eol;
    line.eol.clear();
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(line));
  return lines_[index + 1].id;
}

std::optional<size_t> LineFile::IndexOf(uint32_t id) const {
  for (size_t i = 0; i < lines_.size(); ++i)
    if (lines_[i].id == id) return i;
  return std::nullopt;
}

// A file written with LF alone keeps LF alone in the lines we add.
std::string LineFile::DominantEol() const {
  for (const RawLine& line : lines_)
    if (!line.eol.empty()) return line.eol;
  return "\r\n";
}

}  // namespace sentrune::headless
