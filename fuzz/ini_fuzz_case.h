#pragma once
// One INI fuzz case: how raw bytes become a section, key, value, buffer size
// and file, and the properties the INI functions must keep on it. Shared by
// the fuzz target and the regression test that replays saved inputs.
//
// Input layout: byte 0 section length % 41, byte 1 key length % 41, bytes
// 2-3 value length % 301, bytes 4-5 buffer size % 401 (little-endian), then
// the section, key and value bytes; the rest is the file.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ini/ini_text.h"

namespace sentrune::ini_fuzz {

struct Case {
  std::string section, key, value, file;
  uint32_t bufferSize = 0;
};

inline Case Decode(const uint8_t* data, size_t size) {
  std::string_view in(reinterpret_cast<const char*>(data), size);
  auto byteAt = [&](size_t i) { return i < in.size() ? static_cast<uint8_t>(in[i]) : 0u; };
  const size_t sectionLength = byteAt(0) % 41, keyLength = byteAt(1) % 41;
  const size_t valueLength = (byteAt(2) | byteAt(3) << 8) % 301;
  Case c;
  c.bufferSize = (byteAt(4) | byteAt(5) << 8) % 401;
  in.remove_prefix(std::min<size_t>(6, in.size()));
  auto take = [&](size_t n) {
    const std::string_view part = in.substr(0, std::min(n, in.size()));
    in.remove_prefix(part.size());
    return std::string(part);
  };
  c.section = take(sectionLength);
  c.key = take(keyLength);
  c.value = take(valueLength);
  c.file = std::string(in);
  return c;
}

namespace detail {

// Lines with their line ends, so that joining them gives the text back.
inline std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const size_t lf = text.find('\n');
    const size_t length = lf == std::string_view::npos ? text.size() : lf + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

inline std::string_view Content(std::string_view line) {
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

inline bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }
inline bool Trimmed(std::string_view s) { return s.empty() || (!IsSpace(s.front()) && !IsSpace(s.back())); }
inline bool OneLine(std::string_view s) { return s.find_first_of("\r\n") == std::string_view::npos; }

// Names and values the format gives back as they were written.
inline bool RoundTrips(const Case& c) {
  const std::string_view key = c.key, value = c.value;
  if (!Trimmed(c.section) || !Trimmed(key) || !Trimmed(value) || key.empty()) return false;
  if (key.find('=') != std::string_view::npos || key.front() == ';' || key.front() == '[') return false;
  const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'');
  return !(quoted && value.back() == value.front());
}

// What differs between the file before and after a write, line by line:
// the key's line replaced (same line end), or the key's line added, after a
// new section header and after a line end for an unterminated last line.
inline std::string EditViolation(const Case& c, std::string_view after) {
  const std::string_view before = c.file;
  if (before == after) return {};
  const std::vector<std::string_view> in = Lines(before), out = Lines(after);
  size_t head = 0;
  while (head < in.size() && head < out.size() && in[head] == out[head]) ++head;
  size_t tail = 0;
  while (tail < in.size() - head && tail < out.size() - head &&
         in[in.size() - 1 - tail] == out[out.size() - 1 - tail])
    ++tail;
  const std::vector<std::string_view> removed(in.begin() + head, in.end() - tail);
  const std::vector<std::string_view> added(out.begin() + head, out.end() - tail);
  const std::string entry = c.key + "=" + c.value;

  if (removed.size() == 1 && added.size() == 1 && Content(added[0]) == entry) {
    if (removed[0].substr(Content(removed[0]).size()) != added[0].substr(entry.size()))
      return "the replaced line lost its line end";
    return {};
  }
  size_t next = 0;
  if (removed.size() == 1) {
    if (head + 1 != in.size() || removed[0].back() == '\n') return "a line other than the last changed";
    if (added.empty() || added[0] != std::string(removed[0]) + "\r\n") return "the last line changed";
    next = 1;
  } else if (!removed.empty()) {
    return "more than one line changed";
  }
  if (added.size() - next == 2) {
    if (added[next] != "[" + c.section + "]\r\n") return "an unexpected line was added";
    ++next;
  }
  if (added.size() - next != 1 || added[next] != entry + "\r\n")
    return "the key's line was not added as written";
  return {};
}

}  // namespace detail

// Empty when the INI functions behave on the case; else what went wrong.
inline std::string Violation(const Case& c) {
  namespace ini = portable::ini;
  const size_t limit = std::max<uint32_t>(c.bufferSize, 1);
  if (const auto found = ini::FindValue(c.file, c.section, c.key)) {
    if (found->data() < c.file.data() || found->data() + found->size() > c.file.data() + c.file.size())
      return "the value lies outside the file";
    if (ini::CopyToBuffer(*found, c.bufferSize).size() >= limit) return "the value overflows the buffer";
  }
  if (ini::CopyDefaultToBuffer(c.value, c.bufferSize).size() >= limit)
    return "the default overflows the buffer";

  const std::string written = ini::SetValue(c.file, c.section, c.key, c.value);
  using detail::OneLine;
  if (!OneLine(c.section) || !OneLine(c.key) || !OneLine(c.value)) return {};
  if (std::string edit = detail::EditViolation(c, written); !edit.empty()) return edit;
  if (!detail::RoundTrips(c)) return {};
  const auto readBack = ini::FindValue(written, c.section, c.key);
  if (!readBack || *readBack != c.value) return "the value does not read back";
  if (ini::SetValue(written, c.section, c.key, c.value) != written) return "a second write changed the file";
  return {};
}

}  // namespace sentrune::ini_fuzz
