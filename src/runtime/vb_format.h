#pragma once
// VB's Format() for dates, with the en-US names and separators that the
// add-in's texts (backup names, log headers, snapshot comments) are built on.
#include <string>
#include <string_view>

#include "runtime/datetime.h"

namespace sentrune::rt {

// Tokens, letters in any case: yyyy, yy, y (day of year), mmmm, mmm, mm, m,
// dddd, ddd, dd, d, hh, h, nn, n, ss, s, w (weekday, 1 = Sunday), ww (week of
// the year, weeks start on Sunday), q (quarter), AM/PM, am/pm, A/P, a/p
// (written in the case given, and they switch the hours to a 12-hour clock
// wherever they stand) and AMPM ("AM"/"PM"). "m" and "mm" mean minutes when
// the date/time token before them, whatever literal text lies between, is an
// hour. "text" in double quotes and \x are literals; every other character
// is copied.
//
// A format that is one of the names "General Date", "Long Date", "Short
// Date", "Long Time", "Medium Time" or "Short Time" (any case) gives the
// en-US form: M/d/yyyy; dddd, mmmm d, yyyy; h:nn:ss AM/PM; h:nn AM/PM; hh:nn.
// "General Date" shows the date alone at midnight and the time alone on
// 12/30/1899, the run time's day zero.
std::string Format(const DateTime& t, std::string_view fmt);

}  // namespace sentrune::rt
