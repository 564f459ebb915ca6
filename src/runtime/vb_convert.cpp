#include "runtime/vb_convert.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "runtime/text.h"

namespace sentrune::rt {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Hexadecimal or octal digits read so far; anything past 32 bits is pinned
// just above them, which every caller treats as an overflow.
constexpr uint64_t kBeyond32Bits = 0x100000000ULL;

// Reads the digits of an "&H"/"&O" number at the start of `digits`; `used`
// is how many characters took part.
uint64_t RadixValue(std::string_view digits, bool hex, size_t& used) {
  uint64_t value = 0;
  for (used = 0; used < digits.size(); ++used) {
    const char c = Lower(digits[used]);
    int digit = -1;
    if (IsDigit(c)) digit = c - '0';
    else if (hex && c >= 'a' && c <= 'f') digit = c - 'a' + 10;
    if (digit < 0 || (!hex && digit > 7)) break;
    value = std::min(value * (hex ? 16 : 8) + digit, kBeyond32Bits);
  }
  return value;
}

// The length of the decimal number at the start of `s`:
// [+|-] digits [. digits] [(E|D) [+|-] digits], with at least one digit
// before the exponent; 0 when there is none. With `grouping`, "," may follow
// any digit of the whole part.
size_t ScanDecimal(std::string_view s, bool grouping) {
  size_t pos = (!s.empty() && (s[0] == '+' || s[0] == '-')) ? 1 : 0;
  size_t digits = 0;
  for (; pos < s.size() && (IsDigit(s[pos]) || (grouping && digits && s[pos] == ',')); ++pos)
    digits += IsDigit(s[pos]);
  if (pos < s.size() && s[pos] == '.')
    for (++pos; pos < s.size() && IsDigit(s[pos]); ++pos) ++digits;
  if (digits == 0) return 0;
  if (pos < s.size() && (Lower(s[pos]) == 'e' || Lower(s[pos]) == 'd')) {
    size_t exp = pos + 1;
    if (exp < s.size() && (s[exp] == '+' || s[exp] == '-')) ++exp;
    if (exp < s.size() && IsDigit(s[exp])) {
      while (exp < s.size() && IsDigit(s[exp])) ++exp;
      pos = exp;
    }
  }
  return pos;
}

// The value of a text ScanDecimal accepted whole; nullopt beyond a double.
std::optional<double> DecimalValue(std::string_view number) {
  std::string plain;
  for (char c : number) {
    if (c == ',' || c == '+') continue;
    plain += Lower(c) == 'd' ? 'e' : c;
  }
  double value = 0;
  const auto [end, ec] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (ec != std::errc() || end != plain.data() + plain.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

// A number read from text: a decimal value, or the unsigned bit pattern of
// an "&H"/"&O" number that each type reads as its own two's complement.
struct Number {
  double value = 0;
  bool radix = false;
};

bool IsRadixPrefix(std::string_view s) {
  return s.size() >= 2 && s[0] == '&' && (Lower(s[1]) == 'h' || Lower(s[1]) == 'o');
}

Result<Number> ParseNumberText(std::string_view raw) {
  const size_t first = raw.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return MakeError(errnum::kTypeMismatch);
  const std::string_view text = raw.substr(first, raw.find_last_not_of(" \t\r\n") - first + 1);
  if (IEquals(text, "true")) return Number{-1, false};
  if (IEquals(text, "false")) return Number{0, false};
  if (IsRadixPrefix(text)) {
    size_t used = 0;
    const uint64_t bits = RadixValue(text.substr(2), Lower(text[1]) == 'h', used);
    if (used == 0 || used != text.size() - 2) return MakeError(errnum::kTypeMismatch);
    return Number{static_cast<double>(bits), true};
  }
  if (ScanDecimal(text, true) != text.size()) return MakeError(errnum::kTypeMismatch);
  const auto value = DecimalValue(text);
  if (!value) return MakeError(errnum::kOverflow);
  return Number{*value, false};
}

double RoundHalfEven(double x) {
  const double floor = std::floor(x);
  const double fraction = x - floor;
  if (fraction > 0.5) return floor + 1;
  if (fraction < 0.5) return floor;
  return std::fmod(floor, 2) == 0 ? floor : floor + 1;
}

// The text as a signed integer type; Unsigned is its unsigned twin.
template <typename Int, typename Unsigned>
Result<Int> ToInteger(std::string_view text) {
  auto number = ParseNumberText(text);
  if (!number) return number.error();
  constexpr double kUnsignedMax = static_cast<double>(static_cast<Unsigned>(-1));
  if (number->radix) {
    if (number->value > kUnsignedMax) return MakeError(errnum::kOverflow);
    return static_cast<Int>(static_cast<Unsigned>(number->value));
  }
  const double rounded = RoundHalfEven(number->value);
  if (rounded < static_cast<double>(std::numeric_limits<Int>::min()) ||
      rounded > static_cast<double>(std::numeric_limits<Int>::max()))
    return MakeError(errnum::kOverflow);
  return static_cast<Int>(rounded);
}

}  // namespace

double Val(std::string_view text) {
  std::string s;
  for (char c : text)
    if (c != ' ' && c != '\t' && c != '\n') s += c;
  if (IsRadixPrefix(s)) {
    size_t used = 0;
    const uint64_t bits = RadixValue(std::string_view(s).substr(2), Lower(s[1]) == 'h', used);
    if (bits <= 0xFFFF) return static_cast<int16_t>(static_cast<uint16_t>(bits));
    if (bits <= 0xFFFFFFFF) return static_cast<int32_t>(static_cast<uint32_t>(bits));
    return 0;
  }
  const size_t length = ScanDecimal(s, false);
  return length == 0 ? 0 : DecimalValue(std::string_view(s).substr(0, length)).value_or(0);
}

Result<int16_t> CInt(std::string_view text) { return ToInteger<int16_t, uint16_t>(text); }
Result<int32_t> CLng(std::string_view text) { return ToInteger<int32_t, uint32_t>(text); }

Result<bool> CBool(std::string_view text) {
  auto number = ParseNumberText(text);
  if (!number) return number.error();
  return number->value != 0;
}

}  // namespace sentrune::rt
