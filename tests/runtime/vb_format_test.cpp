// VB dates: serial numbers and the Format() patterns the add-in writes.
#include "runtime/vb_format.h"

#include <gtest/gtest.h>

namespace sentrune::rt {
namespace {

const DateTime kBuild{2004, 5, 6, 14, 3, 9};  // a Thursday in a leap year

void ExpectFormats(const DateTime& t, std::initializer_list<std::pair<const char*, const char*>> cases) {
  for (const auto& [fmt, expected] : cases) EXPECT_EQ(Format(t, fmt), expected) << fmt;
}

TEST(DateTime, SerialsRoundTripAroundTheEpoch) {
  EXPECT_DOUBLE_EQ((DateTime{1899, 12, 30}).ToSerial(), 0.0);
  EXPECT_DOUBLE_EQ((DateTime{1900, 1, 1, 12}).ToSerial(), 2.5);
  // Before the epoch the fraction counts forward from a negative day.
  EXPECT_DOUBLE_EQ((DateTime{1899, 12, 29, 6}).ToSerial(), -1.25);
  for (const DateTime& t :
       {kBuild, DateTime{1899, 12, 29, 6}, DateTime{100, 1, 1}, DateTime{9999, 12, 31, 23, 59, 59}}) {
    EXPECT_EQ(DateTime::FromSerial(t.ToSerial()), t);
    EXPECT_EQ(DateTime::FromSeconds(t.ToSeconds()), t);
  }
  EXPECT_EQ((DateTime{2026, 11, 22}).Weekday(), 1);  // a Sunday
  EXPECT_FALSE((DateTime{2023, 2, 29}).IsValid());
  EXPECT_TRUE((DateTime{2024, 2, 29}).IsValid());
  EXPECT_EQ(DateDiffSeconds(DateTime{2024, 2, 28, 23, 59, 58}, DateTime{2024, 2, 29, 0, 0, 1}), 3);
}

// After an hour, "m" is the minute.
TEST(Format, TokensLiteralsAndMonthOrMinute) {
  ExpectFormats(kBuild, {
      {"yyyy.mm.dd-hh.nn.ss", "2004.05.06-14.03.09"}, {"YYYY-MM-DD HH.NN.SS", "2004-05-06 14.03.09"},
      {"m/d/yy h:n:s", "5/6/04 14:3:9"},              {"mmm mmmm ddd dddd", "May May Thu Thursday"},
      {"y w ww q", "127 5 19 2"},                     {"yyyyy", "2004127"},  // yyyy, then y: the day of the year
      {"\\y\\e\\a\\r yyyy", "year 2004"},             {"\"at\" hh\"h\"", "at 14h"},
      {"\"open yy", "open yy"},                       {"yy\\", "04"},
      {"yyyy_#,", "2004_#,"},                         {"\\\u00E9yy", "\u00E904"},
      {"hh:mm", "14:03"},     {"hh\\h m", "14h 3"}, {"mm hh", "05 14"},
      {"hh:nn mm", "14:03 05"}, {"hh mmm", "14 May"}, {"hh:mm:ss dd/mm", "14:03:09 06/05"},
  });
}

TEST(Format, AmPmSwitchesToTwelveHourClockAndNamedFormatsAreEnglish) {
  ExpectFormats(kBuild, {
      {"h:nn AM/PM", "2:03 PM"}, {"hh:nn am/pm", "02:03 pm"}, {"h A/P", "2 P"},
      {"AM/PM h", "PM 2"},       {"hAMPM", "2PM"},            {"SHORT DATE", "5/6/2004"},
      {"General Date", "5/6/2004 2:03:09 PM"},                {"Long Date", "Thursday, May 6, 2004"},
      {"Long Time", "2:03:09 PM"},                            {"Short Time", "14:03"},
  });
  ExpectFormats(DateTime{2004, 5, 6, 0, 5}, {{"h:nn AM/PM", "12:05 AM"}, {"h:nn", "0:05"}});
  ExpectFormats(DateTime{2004, 5, 6, 12, 0}, {{"h:nn AM/PM", "12:00 PM"}});
  ExpectFormats(DateTime{2004, 5, 6}, {{"General Date", "5/6/2004"}});
  ExpectFormats(DateTime{1899, 12, 30, 14, 3, 9}, {{"General Date", "2:03:09 PM"}});
  ExpectFormats(DateTime{}, {{"General Date", "12:00:00 AM"}});
}

}  // namespace
}  // namespace sentrune::rt
