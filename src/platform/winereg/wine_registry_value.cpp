#include "platform/winereg/wine_registry_value.h"

#include <cstdio>

#include "platform/winereg/wine_registry_text.h"
#include "platform/registry.h"

namespace sentrune::portable::winereg {

namespace {

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Reads the hex number of "(N):" at `pos`; pos moves past the colon.
std::optional<uint32_t> ReadTypeNumber(std::string_view text, size_t& pos) {
  if (pos >= text.size() || text[pos] != '(') return std::nullopt;
  const size_t close = text.find("):", pos);
  if (close == std::string_view::npos || close == pos + 1 || close - pos - 1 > 8)
    return std::nullopt;
  uint32_t type = 0;
  for (size_t i = pos + 1; i < close; ++i) {
    const char c = text[i];
    const int digit = HexDigit(c);
    if (digit < 0) return std::nullopt;
    type = type * 16 + static_cast<uint32_t>(digit);
  }
  pos = close + 2;
  return type;
}

bool OnlyBlanksFrom(std::string_view text, size_t pos) {
  return text.find_first_not_of(" \t\r", pos) == std::string_view::npos;
}

// A quoted string at `pos` as stored text data: UTF-16LE with a NUL unit.
std::optional<std::string> ReadQuotedData(std::string_view text, size_t pos, std::string& why) {
  ++pos;  // the opening quote
  std::optional<std::u16string> units = UnescapeText(text, pos, '"');
  if (!units) {
    why = "string without closing quote";
    return std::nullopt;
  }
  if (!OnlyBlanksFrom(text, pos)) {
    why = "text after the closing quote";
    return std::nullopt;
  }
  units->push_back(u'\0');
  return Utf16ToBytes(*units);
}

std::optional<std::string> ReadDword(std::string_view digits, std::string& why) {
  uint32_t number = 0;
  size_t count = 0;
  for (const char c : digits) {
    if (c == ' ' || c == '\t' || c == '\r') break;
    const int digit = HexDigit(c);
    if (digit < 0 || ++count > 8) {
      why = "bad dword";
      return std::nullopt;
    }
    number = number * 16 + static_cast<uint32_t>(digit);
  }
  if (count == 0 || !OnlyBlanksFrom(digits, count)) {
    why = "bad dword";
    return std::nullopt;
  }
  std::string data(4, '\0');
  for (int i = 0; i < 4; ++i) data[i] = static_cast<char>((number >> (8 * i)) & 0xFF);
  return data;
}

// The data part after "=": sets type and data.
bool ReadData(std::string_view text, StoredValue& value, std::string& why) {
  std::optional<std::string> data;
  size_t pos = 0;
  if (StartsWith(text, "\"")) {
    value.type = platform::kRegSz;
    data = ReadQuotedData(text, 0, why);
  } else if (StartsWith(text, "str")) {
    pos = 3;
    const std::optional<uint32_t> type = ReadTypeNumber(text, pos);
    if (!type || pos >= text.size() || text[pos] != '"') {
      why = "bad str() value";
      return false;
    }
    value.type = *type;
    data = ReadQuotedData(text, pos, why);
  } else if (StartsWith(text, "dword:")) {
    value.type = platform::kRegDword;
    data = ReadDword(text.substr(6), why);
  } else if (StartsWith(text, "hex")) {
    pos = 3;
    value.type = platform::kRegBinary;
    if (StartsWith(text.substr(pos), ":")) {
      ++pos;
    } else if (const std::optional<uint32_t> type = ReadTypeNumber(text, pos)) {
      value.type = *type;
    } else {
      why = "bad hex() value";
      return false;
    }
    data = ParseHexList(text.substr(pos));
    if (!data) why = "bad hex byte list";
  } else {
    why = "unknown kind of value";
  }
  if (!data) return false;
  value.data = std::move(*data);
  return true;
}

}  // namespace

std::optional<StoredValue> ParseValueLine(std::string_view line, std::string& why) {
  StoredValue value;
  size_t pos = 0;
  if (StartsWith(line, "@")) {
    pos = 1;
  } else if (StartsWith(line, "\"")) {
    pos = 1;
    std::optional<std::u16string> name = UnescapeText(line, pos, '"');
    if (!name) {
      why = "value name without closing quote";
      return std::nullopt;
    }
    value.name = Utf16ToUtf8(*name);
  } else {
    why = "not a value line";
    return std::nullopt;
  }
  if (pos >= line.size() || line[pos] != '=') {
    why = "missing \"=\" after the value name";
    return std::nullopt;
  }
  if (!ReadData(line.substr(pos + 1), value, why)) return std::nullopt;
  return value;
}

std::string RenderValueLine(const StoredValue& value) {
  std::string line = value.name.empty()
                         ? std::string("@=")
                         : "\"" + EscapeText(Utf8ToUtf16(value.name), EscapeFor::kQuoted) + "\"=";
  const bool text = value.type == platform::kRegSz || value.type == platform::kRegExpandSz ||
                    value.type == platform::kRegMultiSz;
  const std::u16string units = text ? BytesToUtf16(value.data) : std::u16string();
  if (text && value.data.size() % 2 == 0 && !units.empty() && units.back() == u'\0') {
    if (value.type != platform::kRegSz) line += "str(" + HexNumber(value.type) + "):";
    const std::u16string_view body(units.data(), units.size() - 1);
    return line + "\"" + EscapeText(body, EscapeFor::kQuoted) + "\"";
  }
  if (value.type == platform::kRegDword && value.data.size() == 4) {
    uint32_t number = 0;
    for (int i = 3; i >= 0; --i) number = (number << 8) | static_cast<unsigned char>(value.data[i]);
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "dword:%08x", number);
    return line + buffer;
  }
  line += value.type == platform::kRegBinary ? "hex:" : "hex(" + HexNumber(value.type) + "):";
  return line + HexList(value.data, line.size());
}

}  // namespace sentrune::portable::winereg
