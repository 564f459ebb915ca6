#pragma once
// VB's conversions from text: Val() and the CInt/CLng/CBool coercions that
// the add-in applies to option texts and version numbers.
#include <cstdint>
#include <string_view>

#include "runtime/result.h"

namespace sentrune::rt {

// The number at the start of the text, 0 when there is none. Blanks, tabs
// and line feeds are ignored wherever they stand ("1 2" is 12); then an
// optional sign, digits, one ".", digits, and an exponent "E" or "D" with
// optional sign. Reading stops at the first character that cannot continue
// the number, so "6.1.97.82" is 6.1. "&H" and "&O" read hexadecimal and octal
// digits; values up to &HFFFF are 16-bit and up to &HFFFFFFFF 32-bit two's
// complement ("&HFFFF" is -1). Values the run time rejects with an overflow
// (beyond a double, or hexadecimal beyond 32 bits) give 0.
double Val(std::string_view text);

// Text to number as the run time coerces it: the text, trimmed of white
// space, must be a whole number, "True" (-1) or "False" (0) in any case.
// Numbers may have "," digit grouping, a fraction and an exponent, and are
// rounded half to even ("2.5" is 2); "&H"/"&O" texts up to the type's width
// are two's complement. Empty or non-numeric text fails with error 13, a
// value outside the type with error 6.
Result<int16_t> CInt(std::string_view text);
Result<int32_t> CLng(std::string_view text);
// Any number but 0, or "True", is true; 0 or "False" is false; else error 13.
Result<bool> CBool(std::string_view text);

}  // namespace sentrune::rt
