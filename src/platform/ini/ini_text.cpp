#include "platform/ini/ini_text.h"

namespace sentrune::portable::ini {
namespace {

constexpr std::string_view kNewLine = "\r\n";

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

// The same folding rt::IEquals applies, on the cp1252 bytes: in that code page
// the Latin-1 letters keep their Latin-1 byte values.
unsigned char FoldByte(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c + 0x20);
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<unsigned char>(c + 0x20);
  return c;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (FoldByte(static_cast<unsigned char>(a[i])) != FoldByte(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

// One line of the file: its text is [begin, end), its line end (LF, CR LF,
// or a lone CR at the very end) runs to next, where the next line starts.
struct Line {
  size_t begin = 0;
  size_t end = 0;
  size_t next = 0;
  bool endsInLineFeed = false;
};

class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  bool Next(Line& line) {
    if (pos_ >= text_.size()) return false;
    const size_t lf = text_.find('\n', pos_);
    const bool hasLf = lf != std::string_view::npos;
    size_t end = hasLf ? lf : text_.size();
    if (end > pos_ && text_[end - 1] == '\r') --end;
    line = {pos_, end, hasLf ? lf + 1 : text_.size(), hasLf};
    pos_ = line.next;
    return true;
  }

 private:
  std::string_view text_;
  size_t pos_ = 0;
};

enum class LineKind { kBlank, kComment, kSection, kKey, kGarbage };

struct ParsedLine {
  LineKind kind = LineKind::kGarbage;
  std::string_view name;
  std::string_view value;
};

ParsedLine Parse(std::string_view text) {
  const std::string_view body = Trim(text);
  if (body.empty()) return {LineKind::kBlank, {}, {}};
  if (body.front() == ';') return {LineKind::kComment, {}, {}};
  if (body.front() == '[') {
    const size_t close = body.rfind(']');
    if (close != std::string_view::npos)
      return {LineKind::kSection, Trim(body.substr(1, close - 1)), {}};
  }
  const size_t equals = body.find('=');
  if (equals == std::string_view::npos) return {LineKind::kGarbage, {}, {}};
  return {LineKind::kKey, Trim(body.substr(0, equals)), Trim(body.substr(equals + 1))};
}

// Where section/key sits: the key's line when present, else the last
// non-blank line of the section (its header at least) when the section is.
struct Location {
  std::optional<Line> keyLine;
  std::optional<Line> sectionEnd;
};

Location Locate(std::string_view file, std::string_view section, std::string_view key) {
  Location found;
  bool inSection = false;
  LineReader reader(file);
  Line line;
  while (reader.Next(line)) {
    const ParsedLine parsed = Parse(file.substr(line.begin, line.end - line.begin));
    if (parsed.kind == LineKind::kSection) {
      if (inSection) break;  // later sections of the same name do not count
      inSection = SameName(parsed.name, section);
      if (inSection) found.sectionEnd = line;
      continue;
    }
    if (!inSection || parsed.kind == LineKind::kBlank) continue;
    found.sectionEnd = line;
    if (parsed.kind == LineKind::kKey && SameName(parsed.name, key)) {
      found.keyLine = line;
      break;
    }
  }
  return found;
}

std::string Splice(std::string_view file, size_t from, size_t to, std::string_view insert) {
  std::string out;
  out.reserve(file.size() - (to - from) + insert.size());
  out.append(file.substr(0, from));
  out.append(insert);
  out.append(file.substr(to));
  return out;
}

// The buffer keeps one byte for the terminating NUL.
std::string CutToBuffer(std::string_view text, uint32_t size) {
  return size == 0 ? std::string() : std::string(text.substr(0, size - 1));
}

}  // namespace

std::optional<std::string_view> FindValue(std::string_view file, std::string_view section,
                                          std::string_view key) {
  const Location found = Locate(file, section, key);
  if (!found.keyLine) return std::nullopt;
  const Line& line = *found.keyLine;
  return Parse(file.substr(line.begin, line.end - line.begin)).value;
}

std::string CopyToBuffer(std::string_view value, uint32_t size) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    value = value.substr(1, value.size() - 2);
  }
  return CutToBuffer(value, size);
}

std::string CopyDefaultToBuffer(std::string_view defaultValue, uint32_t size) {
  while (!defaultValue.empty() && defaultValue.back() == ' ') defaultValue.remove_suffix(1);
  return CutToBuffer(defaultValue, size);
}

std::string SetValue(std::string_view file, std::string_view section, std::string_view key,
                     std::string_view value) {
  std::string entry;
  entry.reserve(key.size() + 1 + value.size());
  entry.append(key).append("=").append(value);

  const Location found = Locate(file, section, key);
  if (found.keyLine) return Splice(file, found.keyLine->begin, found.keyLine->end, entry);

  if (found.sectionEnd) {
    const Line& last = *found.sectionEnd;
    // A last line without a line end (the end of the file) gets one first.
    std::string insert = last.endsInLineFeed ? std::string() : std::string(kNewLine);
    insert.append(entry).append(kNewLine);
    return Splice(file, last.next, last.next, insert);
  }

  std::string out(file);
  if (!out.empty() && out.back() != '\n') out.append(kNewLine);
  out.append("[").append(section).append("]").append(kNewLine);
  out.append(entry).append(kNewLine);
  return out;
}

}  // namespace sentrune::portable::ini
