#include "runtime/datetime.h"

#include <cmath>

namespace sentrune::rt {
namespace {

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's algorithm).
int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yoe + era * 400 + (m <= 2));
}

const int64_t kEpochDays = DaysFromCivil(1899, 12, 30);
constexpr int64_t kDay = 86400;

int64_t FloorDiv(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

}  // namespace

int64_t DateTime::ToSeconds() const {
  return (DaysFromCivil(year, month, day) - kEpochDays) * kDay + hour * 3600 + minute * 60 + second;
}

DateTime DateTime::FromSeconds(int64_t seconds) {
  DateTime t;
  const int64_t days = FloorDiv(seconds, kDay);
  const int64_t rest = seconds - days * kDay;
  CivilFromDays(days + kEpochDays, t.year, t.month, t.day);
  t.hour = static_cast<int>(rest / 3600);
  t.minute = static_cast<int>(rest / 60 % 60);
  t.second = static_cast<int>(rest % 60);
  return t;
}

double DateTime::ToSerial() const {
  const int64_t days = DaysFromCivil(year, month, day) - kEpochDays;
  const double fraction = (hour * 3600 + minute * 60 + second) / static_cast<double>(kDay);
  // Before the epoch the run time keeps the time as a positive fraction of a
  // negative day number.
  return days >= 0 ? days + fraction : days - fraction;
}

DateTime DateTime::FromSerial(double serial) {
  if (!std::isfinite(serial)) return DateTime{};
  const double whole = std::trunc(serial);
  const int64_t secondsOfDay = std::llround(std::fabs(serial - whole) * kDay);
  return FromSeconds(static_cast<int64_t>(whole) * kDay + secondsOfDay);
}

int DateTime::Weekday() const {
  const int64_t days = DaysFromCivil(year, month, day);  // 1970-01-01 was a Thursday
  return static_cast<int>(((days % 7) + 7 + 4) % 7) + 1;
}

bool DateTime::IsValid() const {
  if (month < 1 || month > 12 || day < 1 || hour < 0 || hour > 23 || minute < 0 ||
      minute > 59 || second < 0 || second > 59 || year < 100 || year > 9999)
    return false;
  int y = 0, m = 0, d = 0;
  CivilFromDays(DaysFromCivil(year, month, day), y, m, d);
  return y == year && m == month && d == day;
}

}  // namespace sentrune::rt
