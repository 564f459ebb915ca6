#include "runtime/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace sentrune::rt {
namespace {

// Code points of bytes 0x80..0x9F; the rest of cp1252 equals Latin-1.
constexpr std::array<char32_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98
};

char32_t Cp1252CodePoint(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? kCp1252High[byte - 0x80] : char32_t{byte};
}

// The cp1252 byte of a code point, or '?' when it has none.
char Cp1252Byte(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<char>(cp);
  for (size_t i = 0; i < kCp1252High.size(); ++i)
    if (kCp1252High[i] == cp) return static_cast<char>(0x80 + i);
  return '?';
}

bool IsContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }

// Decodes one well-formed UTF-8 sequence at `pos` (no overlong forms, no
// surrogates, nothing above U+10FFFF). Returns its length, 0 when malformed.
size_t DecodeUtf8(std::string_view s, size_t pos, char32_t& cp) {
  const auto lead = static_cast<unsigned char>(s[pos]);
  size_t length = 0;
  char32_t min = 0;
  if (lead < 0x80) {
    cp = lead;
    return 1;
  } else if ((lead & 0xE0) == 0xC0) {
    length = 2, min = 0x80, cp = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, min = 0x800, cp = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, min = 0x10000, cp = lead & 0x07;
  } else {
    return 0;
  }
  if (s.size() - pos < length) return 0;
  for (size_t i = 1; i < length; ++i) {
    const auto c = static_cast<unsigned char>(s[pos + i]);
    if (!IsContinuation(c)) return 0;
    cp = (cp << 6) | (c & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return length;
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = 0xFFFD;
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// Latin-1 letters are the two-byte sequences 0xC3 0x80..0xBF (U+00C0..U+00FF),
// so folding needs only the byte before: 0xC3 is always a lead byte.
constexpr unsigned char kLatin1Lead = 0xC3;

char LowerByte(unsigned char previous, unsigned char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c + 32);
  if (previous == kLatin1Lead && c >= 0x80 && c <= 0x9E && c != 0x97)
    return static_cast<char>(c + 0x20);
  return static_cast<char>(c);
}

char UpperByte(unsigned char previous, unsigned char c) {
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 32);
  if (previous == kLatin1Lead && c >= 0xA0 && c <= 0xBE && c != 0xB7)
    return static_cast<char>(c - 0x20);
  return static_cast<char>(c);
}

template <typename Map>
std::string MapBytes(std::string_view text, Map map) {
  std::string out(text);
  unsigned char previous = 0;
  for (char& c : out) {
    const auto original = static_cast<unsigned char>(c);
    c = map(previous, original);
    previous = original;
  }
  return out;
}

}  // namespace

std::string Cp1252ToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (char c : bytes) AppendUtf8(out, Cp1252CodePoint(static_cast<unsigned char>(c)));
  return out;
}

std::string Utf8ToCp1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (size_t pos = 0; pos < utf8.size();) {
    char32_t cp = 0;
    const size_t length = DecodeUtf8(utf8, pos, cp);
    if (length == 0) {
      out += utf8[pos++];
      continue;
    }
    out += Cp1252Byte(cp);
    pos += length;
  }
  return out;
}

std::string LCase(std::string_view text) { return MapBytes(text, LowerByte); }
std::string UCase(std::string_view text) { return MapBytes(text, UpperByte); }

bool IEquals(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  if (a == b) return true;
  unsigned char previousA = 0, previousB = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto ca = static_cast<unsigned char>(a[i]);
    const auto cb = static_cast<unsigned char>(b[i]);
    if (LowerByte(previousA, ca) != LowerByte(previousB, cb)) return false;
    previousA = ca;
    previousB = cb;
  }
  return true;
}

namespace {

constexpr uint64_t kEveryByte = 0x0101010101010101u;

// Up to eight bytes as one word, folded. All-ASCII words fold at once; the
// others byte by byte, which needs the byte before them.
uint64_t FoldWord(const char* bytes, size_t count, unsigned char previous) {
  char folded[8] = {};
  uint64_t word = 0;
  if (count == 8) {
    std::memcpy(&word, bytes, 8);
    if ((word & (0x80 * kEveryByte)) == 0) {
      const uint64_t atLeastA = word + (0x80 - 'A') * kEveryByte;
      const uint64_t aboveZ = word + (0x80 - 'Z' - 1) * kEveryByte;
      return word | ((atLeastA & ~aboveZ & (0x80 * kEveryByte)) >> 2);
    }
  }
  for (size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    folded[i] = LowerByte(previous, byte);
    previous = byte;
  }
  std::memcpy(&word, folded, 8);
  return word;
}

uint64_t Mix(uint64_t hash, uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 29);
}

}  // namespace

size_t IHash(std::string_view text) {
  uint64_t hash = 0xCBF29CE484222325u ^ text.size();
  unsigned char previous = 0;
  for (size_t pos = 0; pos < text.size(); pos += 8) {
    const size_t count = std::min<size_t>(8, text.size() - pos);
    hash = Mix(hash, FoldWord(text.data() + pos, count, previous));
    previous = static_cast<unsigned char>(text[pos + count - 1]);
  }
  // Slots are chosen by the low bits, so the high bits are folded down.
  hash = (hash ^ (hash >> 33)) * 0xFF51AFD7ED558CCDu;
  return static_cast<size_t>(hash ^ (hash >> 33));
}

std::string LTrim(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

std::string RTrim(std::string_view text) {
  const size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string() : std::string(text.substr(0, last + 1));
}

std::string Trim(std::string_view text) { return LTrim(RTrim(text)); }

std::string Replace(std::string_view text, std::string_view find, std::string_view with) {
  if (find.empty()) return std::string(text);
  std::string out;
  size_t start = 0;
  for (size_t hit = text.find(find); hit != std::string_view::npos;
       hit = text.find(find, start)) {
    out.append(text, start, hit - start).append(with);
    start = hit + find.size();
  }
  return out.append(text.substr(start));
}

std::u32string ToCodePoints(std::string_view utf8) {
  std::u32string out;
  out.reserve(utf8.size());
  for (size_t pos = 0; pos < utf8.size();) {
    char32_t cp = 0;
    const size_t length = DecodeUtf8(utf8, pos, cp);
    if (length == 0) {
      out += Cp1252CodePoint(static_cast<unsigned char>(utf8[pos++]));
      continue;
    }
    out += cp;
    pos += length;
  }
  return out;
}

std::string FromCodePoints(std::u32string_view codePoints) {
  std::string out;
  out.reserve(codePoints.size());
  for (char32_t cp : codePoints) AppendUtf8(out, cp);
  return out;
}

}  // namespace sentrune::rt
