#pragma once
// A project or group file kept as the raw bytes of its lines, so that saving
// rewrites only the lines that were edited: line breaks (CR LF, LF or CR
// alone), a UTF-8 byte order mark, odd lines and non-ASCII bytes of every
// other line come back unchanged.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrune::headless {

struct RawLine {
  uint32_t id = 0;    // stable across edits of other lines
  std::string text;   // the line's bytes without its break
  std::string eol;    // "\r\n", "\n", "\r" or "" (a last line without a break)
};

// A line taken apart at its first "=", key and value trimmed of blanks.
struct KeyValue {
  std::string_view key;
  std::string_view value;
};
std::optional<KeyValue> SplitKeyValue(std::string_view line);

// "[...]" opens a section; keys after it belong to that section.
bool IsSectionHeader(std::string_view line);

class LineFile {
 public:
  // Splits at CR LF, LF or CR; a byte order mark is no part of the first line.
  static LineFile Parse(std::string_view bytes);
  std::string Serialize() const;

  const std::vector<RawLine>& Lines() const { return lines_; }

  // The id of the first line of the leading (unnamed) section with this key
  // (compared without regard to case).
  std::optional<uint32_t> FindKey(std::string_view key) const;
  // The value of that line.
  std::optional<std::string_view> Value(std::string_view key) const;

  // The id of the last line of the leading section whose key is one of
  // `keys`.
  std::optional<uint32_t> LastOfKeys(const std::vector<std::string_view>& keys) const;

  // Edits by line id; an unknown id changes nothing.
  void Replace(uint32_t id, std::string text);
  void Erase(uint32_t id);
  // Inserts a line after the given one, with the break the file uses; a last
  // line without a break gains one. Returns the new line's id.
  uint32_t InsertAfter(uint32_t id, std::string text);

 private:
  std::optional<size_t> IndexOf(uint32_t id) const;
  std::string DominantEol() const;

  std::vector<RawLine> lines_;
  uint32_t nextId_ = 1;
  bool byteOrderMark_ = false;
};

}  // namespace sentrune::headless
