#pragma once
// The VB Date: a local calendar date and time to the second. Serial numbers
// are the run time's (days since 30 December 1899, time as the fraction).
#include <compare>
#include <cstdint>

namespace sentrune::rt {

struct DateTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;

  // Whole seconds since 1899-12-30 00:00:00; exact for every valid date.
  int64_t ToSeconds() const;
  static DateTime FromSeconds(int64_t seconds);
  // The OLE Automation serial (days, fraction of a day).
  double ToSerial() const;
  static DateTime FromSerial(double serial);
  // Weekday of the date, 1 = Sunday as the run time counts.
  int Weekday() const;
  bool IsValid() const;
  bool HasTime() const { return hour != 0 || minute != 0 || second != 0; }

  friend auto operator<=>(const DateTime& a, const DateTime& b) {
    return a.ToSeconds() <=> b.ToSeconds();
  }
  friend bool operator==(const DateTime& a, const DateTime& b) {
    return a.ToSeconds() == b.ToSeconds();
  }
};

// DateDiff("s", from, to): whole seconds from the first to the second.
inline int64_t DateDiffSeconds(const DateTime& from, const DateTime& to) {
  return to.ToSeconds() - from.ToSeconds();
}
inline DateTime AddSeconds(const DateTime& t, int64_t seconds) {
  return DateTime::FromSeconds(t.ToSeconds() + seconds);
}

}  // namespace sentrune::rt
