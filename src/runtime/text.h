#pragma once
// Text as the VB run time treats it, over UTF-8 std::string: the Windows-1252
// boundary conversion, case folding, trimming and replacing.
#include <string>
#include <string_view>

namespace sentrune::rt {

// Every byte maps to one code point; the five bytes cp1252 leaves undefined
// (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the C1 controls of the same value, as
// Windows' own conversion does, so any file survives a read and write.
std::string Cp1252ToUtf8(std::string_view bytes);

// Code points without a cp1252 byte become '?'. Bytes that are not part of a
// valid UTF-8 sequence are written as they are, so that text which came from
// Cp1252ToUtf8 or was never valid UTF-8 round-trips byte for byte.
std::string Utf8ToCp1252(std::string_view utf8);

// Case mapping of ASCII and Latin-1 letters (U+00C0..U+00DE <-> U+00E0..U+00FE
// without U+00D7 and U+00F7); every other byte is kept, so the length in
// bytes never changes.
std::string LCase(std::string_view text);
std::string UCase(std::string_view text);

// Equality after LCase folding, without allocating.
bool IEquals(std::string_view a, std::string_view b);
// A hash of LCase(text), without allocating: texts IEquals calls equal hash
// alike.
size_t IHash(std::string_view text);

// VB trims blanks (U+0020) only: tabs and line breaks stay.
std::string Trim(std::string_view text);
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);

// Every occurrence of `find`, left to right, case-sensitive; a found text is
// not searched again. An empty `find` leaves the text unchanged.
std::string Replace(std::string_view text, std::string_view find, std::string_view with);

// Bytes that are not valid UTF-8 decode as the cp1252 character of that byte,
// the same reading Utf8ToCp1252 gives them.
std::u32string ToCodePoints(std::string_view utf8);
// Surrogates and values above U+10FFFF are written as U+FFFD.
std::string FromCodePoints(std::u32string_view codePoints);

}  // namespace sentrune::rt
