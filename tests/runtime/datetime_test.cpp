#include "runtime/datetime.h"

#include <gtest/gtest.h>

namespace sentrune::rt {
namespace {

TEST(DateTime, SerialsRoundTripAroundTheEpoch) {
  EXPECT_DOUBLE_EQ((DateTime{1899, 12, 30}).ToSerial(), 0.0);
  EXPECT_DOUBLE_EQ((DateTime{1900, 1, 1, 12}).ToSerial(), 2.5);
  // Before the epoch the fraction counts forward from a negative day.
  EXPECT_DOUBLE_EQ((DateTime{1899, 12, 29, 6}).ToSerial(), -1.25);
  for (const DateTime& t : {DateTime{2004, 5, 6, 14, 3, 9}, DateTime{1899, 12, 29, 6},
                            DateTime{100, 1, 1}, DateTime{9999, 12, 31, 23, 59, 59}}) {
    EXPECT_EQ(DateTime::FromSerial(t.ToSerial()), t);
    EXPECT_EQ(DateTime::FromSeconds(t.ToSeconds()), t);
  }
}

TEST(DateTime, WeekdayAndValidity) {
  EXPECT_EQ((DateTime{2004, 5, 6}).Weekday(), 5);  // a Thursday
  EXPECT_EQ((DateTime{2026, 11, 22}).Weekday(), 1);  // a Sunday
  EXPECT_FALSE((DateTime{2023, 2, 29}).IsValid());
  EXPECT_TRUE((DateTime{2024, 2, 29}).IsValid());
  EXPECT_EQ(DateDiffSeconds(DateTime{2024, 2, 28, 23, 59, 58}, DateTime{2024, 2, 29, 0, 0, 1}), 3);
}

}  // namespace
}  // namespace sentrune::rt
