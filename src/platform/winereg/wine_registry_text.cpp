#include "platform/winereg/wine_registry_text.h"

#include <cstdio>

#include "runtime/text.h"

namespace sentrune::portable::winereg {

namespace {

constexpr size_t kWrapColumn = 76;

bool IsHexDigit(char16_t c) {
  return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool IsOctalDigit(char16_t c) { return c >= u'0' && c <= u'7'; }

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The letter escapes Wine uses for control characters, or 0.
char LetterFor(char16_t c) {
  switch (c) {
    case 7:
      return 'a';
    case 8:
      return 'b';
    case 9:
      return 't';
    case 10:
      return 'n';
    case 11:
      return 'v';
    case 12:
      return 'f';
    case 13:
      return 'r';
    case 27:
      return 'e';
    default:
      return 0;
  }
}

char16_t ControlFor(char letter) {
  switch (letter) {
    case 'a':
      return 7;
    case 'b':
      return 8;
    case 't':
      return 9;
    case 'n':
      return 10;
    case 'v':
      return 11;
    case 'f':
      return 12;
    case 'r':
      return 13;
    case 'e':
      return 27;
    default:
      return 0;
  }
}

void AppendCodePoint(char32_t cp, std::u16string& out) {
  if (cp >= 0x10000 && cp <= 0x10FFFF) {
    cp -= 0x10000;
    out += static_cast<char16_t>(0xD800 + (cp >> 10));
    out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
  } else {
    out += static_cast<char16_t>(cp);
  }
}

// The escape after a backslash at text[pos]; pos moves past it.
void ReadEscape(std::string_view text, size_t& pos, std::u16string& out) {
  const char c = text[pos];
  if (const char16_t control = ControlFor(c)) {
    out += control;
    ++pos;
  } else if (c == 'x' && pos + 1 < text.size() && HexValue(text[pos + 1]) >= 0) {
    unsigned value = 0;
    size_t end = pos + 1;
    for (; end < text.size() && end < pos + 5 && HexValue(text[end]) >= 0; ++end) {
      value = value * 16 + static_cast<unsigned>(HexValue(text[end]));
    }
    out += static_cast<char16_t>(value);
    pos = end;
  } else if (c >= '0' && c <= '7') {
    unsigned value = 0;
    size_t end = pos;
    for (; end < text.size() && end < pos + 3 && text[end] >= '0' && text[end] <= '7'; ++end) {
      value = value * 8 + static_cast<unsigned>(text[end] - '0');
    }
    out += static_cast<char16_t>(value);
    pos = end;
  } else {
    out += static_cast<char16_t>(static_cast<unsigned char>(c));
    ++pos;
  }
}

// The length of the UTF-8 sequence at text[pos]; 1 for a byte that starts
// none, which then reads as its cp1252 character.
size_t SequenceLength(std::string_view text, size_t pos) {
  const auto lead = static_cast<unsigned char>(text[pos]);
  const size_t length = lead >= 0xF0 && lead < 0xF8 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
  if (pos + length > text.size()) return 1;
  for (size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[pos + i]) & 0xC0) != 0x80) return 1;
  }
  return length;
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (const char32_t cp : rt::ToCodePoints(utf8)) AppendCodePoint(cp, out);
  return out;
}

std::string Utf16ToUtf8(std::u16string_view units) {
  std::u32string points;
  points.reserve(units.size());
  for (size_t i = 0; i < units.size(); ++i) {
    const char16_t u = units[i];
    if (u >= 0xD800 && u < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
        units[i + 1] < 0xE000) {
      points += static_cast<char32_t>(0x10000 + ((u - 0xD800) << 10) + (units[i + 1] - 0xDC00));
      ++i;
    } else {
      points += u;  // a lone surrogate is written as U+FFFD by FromCodePoints
    }
  }
  return rt::FromCodePoints(points);
}

std::string Utf16ToBytes(std::u16string_view units) {
  std::string bytes;
  bytes.reserve(units.size() * 2);
  for (const char16_t u : units) {
    bytes += static_cast<char>(u & 0xFF);
    bytes += static_cast<char>(u >> 8);
  }
  return bytes;
}

std::u16string BytesToUtf16(std::string_view bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                   (static_cast<unsigned char>(bytes[i + 1]) << 8));
  }
  return units;
}

std::string EscapeText(std::u16string_view units, EscapeFor where) {
  std::string out;
  out.reserve(units.size());
  char buffer[16];
  for (size_t i = 0; i < units.size(); ++i) {
    const char16_t c = units[i];
    const char16_t next = i + 1 < units.size() ? units[i + 1] : 0;
    const bool delimiter = where == EscapeFor::kKeyName ? (c == u'[' || c == u']') : c == u'"';
    if (c == u'\\' || delimiter) {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 32) {
      if (const char letter = LetterFor(c)) {
        out += '\\';
        out += letter;
      } else {
        std::snprintf(buffer, sizeof buffer, IsOctalDigit(next) ? "\\%03o" : "\\%o", unsigned{c});
        out += buffer;
      }
    } else if (c < 128) {
      out += static_cast<char>(c);
    } else {
      std::snprintf(buffer, sizeof buffer, IsHexDigit(next) ? "\\x%04x" : "\\x%x", unsigned{c});
      out += buffer;
    }
  }
  return out;
}

std::optional<std::u16string> UnescapeText(std::string_view text, size_t& pos, char terminator) {
  std::u16string out;
  size_t i = pos;
  while (i < text.size()) {
    const char c = text[i];
    if (c == terminator) {
      pos = i + 1;
      return out;
    }
    if (c == '\\' && i + 1 < text.size()) {
      ++i;
      ReadEscape(text, i, out);
      continue;
    }
    // Wine writes ASCII only; anything else is taken as UTF-8 text.
    const size_t length = SequenceLength(text, i);
    out += Utf8ToUtf16(text.substr(i, length));
    i += length;
  }
  return std::nullopt;
}

std::string HexList(std::string_view bytes, size_t column) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 3 + bytes.size() / 8);
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto b = static_cast<unsigned char>(bytes[i]);
    out += kDigits[b >> 4];
    out += kDigits[b & 15];
    column += 2;
    if (i + 1 == bytes.size()) break;
    out += ',';
    ++column;
    if (column > kWrapColumn) {
      out += "\\\n  ";
      column = 2;
    }
  }
  return out;
}

std::optional<std::string> ParseHexList(std::string_view text) {
  std::string bytes;
  size_t i = 0;
  const auto skipBlanks = [&] {
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r')) ++i;
  };
  skipBlanks();
  while (i < text.size()) {
    int value = HexValue(text[i]);
    if (value < 0) return std::nullopt;
    ++i;
    if (i < text.size() && HexValue(text[i]) >= 0) value = value * 16 + HexValue(text[i++]);
    bytes += static_cast<char>(value);
    skipBlanks();
    if (i == text.size()) break;
    if (text[i] != ',') return std::nullopt;
    ++i;
    skipBlanks();
  }
  return bytes;
}

std::string HexNumber(uint64_t value) {
  char buffer[24];
  std::snprintf(buffer, sizeof buffer, "%llx", static_cast<unsigned long long>(value));
  return buffer;
}

}  // namespace sentrune::portable::winereg
