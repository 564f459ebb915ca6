#include "runtime/vb_format.h"

#include <array>
#include <vector>

#include "runtime/text.h"

namespace sentrune::rt {
namespace {

constexpr std::array<const char*, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<const char*, 7> kDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};

enum class Kind { Literal, Year, Month, Day, Hour, Minute, Second, Week, Quarter, AmPm };

// One piece of a format. `width` is the count of letters (yy = 2); an AM/PM
// token carries its morning text in `text` and its afternoon text in `alt`.
struct Token {
  Kind kind = Kind::Literal;
  int width = 0;
  std::string text;
  std::string alt;
};

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

size_t RunLength(std::string_view fmt, size_t pos) {
  size_t end = pos;
  while (end < fmt.size() && Lower(fmt[end]) == Lower(fmt[pos])) ++end;
  return end - pos;
}

// The letter's kind and the widths it comes in, longest first.
bool LetterToken(char letter, size_t run, Token& token) {
  auto pick = [&](Kind kind, std::initializer_list<int> widths) {
    token.kind = kind;
    for (int width : widths) {
      if (static_cast<size_t>(width) > run) continue;
      token.width = width;
      return true;
    }
    return false;
  };
  switch (letter) {
    case 'y': return pick(Kind::Year, {4, 2, 1});
    case 'm': return pick(Kind::Month, {4, 3, 2, 1});
    case 'd': return pick(Kind::Day, {4, 3, 2, 1});
    case 'h': return pick(Kind::Hour, {2, 1});
    case 'n': return pick(Kind::Minute, {2, 1});
    case 's': return pick(Kind::Second, {2, 1});
    case 'w': return pick(Kind::Week, {2, 1});
    case 'q': return pick(Kind::Quarter, {1});
    default: return false;
  }
}

// Reads the token at `pos` and moves past it.
Token NextToken(std::string_view fmt, size_t& pos) {
  const std::string_view rest = fmt.substr(pos);
  Token token;
  if (rest.size() >= 5 && IEquals(rest.substr(0, 5), "am/pm")) {
    pos += 5;
    return {Kind::AmPm, 0, std::string(rest.substr(0, 2)), std::string(rest.substr(3, 2))};
  }
  if (rest.size() >= 4 && IEquals(rest.substr(0, 4), "ampm")) {
    pos += 4;
    return {Kind::AmPm, 0, "AM", "PM"};
  }
  if (rest.size() >= 3 && IEquals(rest.substr(0, 3), "a/p")) {
    pos += 3;
    return {Kind::AmPm, 0, std::string(rest.substr(0, 1)), std::string(rest.substr(2, 1))};
  }
  if (rest[0] == '"') {
    const size_t close = rest.find('"', 1);
    token.text = rest.substr(1, close == std::string_view::npos ? close : close - 1);
    pos = close == std::string_view::npos ? fmt.size() : pos + close + 1;
    return token;
  }
  if (rest[0] == '\\') {
    // The escaped character may be a whole UTF-8 sequence.
    size_t end = rest.size() > 1 ? 2 : 1;
    while (end < rest.size() && (static_cast<unsigned char>(rest[end]) & 0xC0) == 0x80) ++end;
    token.text = rest.substr(1, end - 1);
    pos += end;
    return token;
  }
  if (LetterToken(Lower(rest[0]), RunLength(fmt, pos), token)) {
    pos += token.width;
    return token;
  }
  token.text = rest.substr(0, 1);
  ++pos;
  return token;
}

// Splits the format and turns "m"/"mm" after an hour into minutes.
std::vector<Token> Tokenize(std::string_view fmt) {
  std::vector<Token> tokens;
  Kind previous = Kind::Literal;
  for (size_t pos = 0; pos < fmt.size();) {
    Token token = NextToken(fmt, pos);
    if (token.kind == Kind::Month && token.width <= 2 && previous == Kind::Hour)
      token.kind = Kind::Minute;
    if (token.kind != Kind::Literal && token.kind != Kind::AmPm) previous = token.kind;
    tokens.push_back(std::move(token));
  }
  return tokens;
}

std::string Number(int value, int width) {
  std::string digits = std::to_string(value);
  if (width == 2 && digits.size() < 2) digits.insert(0, 1, '0');
  return digits;
}

int DayOfYear(const DateTime& t) {
  const DateTime date{t.year, t.month, t.day};
  return static_cast<int>(DateDiffSeconds(DateTime{t.year, 1, 1}, date) / 86400) + 1;
}

// Weeks start on Sunday and week 1 is the one holding 1 January.
int WeekOfYear(const DateTime& t) {
  return (DayOfYear(t) - 1 + DateTime{t.year, 1, 1}.Weekday() - 1) / 7 + 1;
}

std::string RenderYear(const DateTime& t, int width) {
  if (width == 4) return std::to_string(t.year);
  if (width == 2) return Number(t.year % 100, 2);
  return std::to_string(DayOfYear(t));
}

std::string RenderMonth(const DateTime& t, int width) {
  const bool known = t.month >= 1 && t.month <= 12;
  const std::string name = known ? kMonthNames[t.month - 1] : "";
  return width == 4 ? name : width == 3 ? name.substr(0, 3) : Number(t.month, width);
}

std::string RenderDay(const DateTime& t, int width) {
  const std::string name = kDayNames[t.Weekday() - 1];
  return width == 4 ? name : width == 3 ? name.substr(0, 3) : Number(t.day, width);
}

std::string Render(const Token& token, const DateTime& t, bool twelveHour) {
  switch (token.kind) {
    case Kind::Literal: return token.text;
    case Kind::Year: return RenderYear(t, token.width);
    case Kind::Month: return RenderMonth(t, token.width);
    case Kind::Day: return RenderDay(t, token.width);
    case Kind::Hour:
      return Number(twelveHour ? (t.hour + 11) % 12 + 1 : t.hour, token.width);
    case Kind::Minute: return Number(t.minute, token.width);
    case Kind::Second: return Number(t.second, token.width);
    case Kind::Week: return std::to_string(token.width == 2 ? WeekOfYear(t) : t.Weekday());
    case Kind::Quarter: return std::to_string((t.month - 1) / 3 + 1);
    case Kind::AmPm: return t.hour < 12 ? token.text : token.alt;
  }
  return {};
}

// The en-US pattern behind a named format, or the format itself.
std::string_view ExpandNamed(const DateTime& t, std::string_view fmt) {
  if (IEquals(fmt, "General Date")) {
    if (t.year == 1899 && t.month == 12 && t.day == 30) return "h:nn:ss AM/PM";
    return t.HasTime() ? "M/d/yyyy h:nn:ss AM/PM" : "M/d/yyyy";
  }
  if (IEquals(fmt, "Long Date")) return "dddd, mmmm d, yyyy";
  if (IEquals(fmt, "Short Date")) return "M/d/yyyy";
  if (IEquals(fmt, "Long Time")) return "h:nn:ss AM/PM";
  if (IEquals(fmt, "Medium Time")) return "h:nn AM/PM";
  if (IEquals(fmt, "Short Time")) return "hh:nn";
  return fmt;
}

}  // namespace

std::string Format(const DateTime& t, std::string_view fmt) {
  const std::vector<Token> tokens = Tokenize(ExpandNamed(t, fmt));
  bool twelveHour = false;
  for (const Token& token : tokens) twelveHour = twelveHour || token.kind == Kind::AmPm;
  std::string out;
  for (const Token& token : tokens) out += Render(token, t, twelveHour);
  return out;
}

}  // namespace sentrune::rt
