#pragma once
// The text forms of Wine's registry files: quoted strings with their
// escapes, and the comma-separated hex byte lists that Wine wraps at a fixed
// column. Wine keeps names and strings as UTF-16 and writes everything that
// is not printable ASCII as an escape, so the files are plain ASCII.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sentrune::portable::winereg {

// UTF-8 (bytes that are not valid UTF-8 read as Windows-1252) <-> UTF-16.
// Lone surrogates become U+FFFD on the way to UTF-8.
std::u16string Utf8ToUtf16(std::string_view utf8);
std::string Utf16ToUtf8(std::u16string_view units);

// UTF-16 code units <-> their little-endian bytes; an odd last byte is
// dropped, as no whole code unit holds it.
std::string Utf16ToBytes(std::u16string_view units);
std::u16string BytesToUtf16(std::string_view bytes);

// Where an escaped text appears: key names also escape the brackets that
// delimit them; value names and strings escape the double quote.
enum class EscapeFor { kKeyName, kQuoted };

// The escaped form Wine writes: "\\" and the delimiter escaped; the control
// characters with a letter of their own as \a \b \t \n \v \f \r \e, the
// other ones in octal (three digits when an octal digit follows); units from
// U+0080 up as \x and hex (four digits when a hex digit follows).
std::string EscapeText(std::u16string_view units, EscapeFor where);

// Reads an escaped text from `text` at `pos` up to the first unescaped
// `terminator` and leaves `pos` just behind that terminator. Besides the
// escapes above, "\" before any other character stands for that character.
// Nothing when the terminator never comes.
std::optional<std::u16string> UnescapeText(std::string_view text, size_t& pos, char terminator);

// "xx,xx,..." in lower case. Like Wine, the line is broken with "\" and
// continued after two blanks once it grows past 76 columns; `column` is how
// much of the line precedes the first byte.
std::string HexList(std::string_view bytes, size_t column);

// The bytes of a list of one- or two-digit hex numbers separated by commas
// (blanks allowed around them); nothing when it holds anything else.
std::optional<std::string> ParseHexList(std::string_view text);

// Lower-case hex without leading zeros ("0" for zero).
std::string HexNumber(uint64_t value);

}  // namespace sentrune::portable::winereg
