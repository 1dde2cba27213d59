#include "foundation/clock.h"

#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/support/environment.h"
#include "tests/support/sanitizer.h"
#include "tests/support/text_of.h"

namespace {

using Tessaly::Clock;
using Tessaly::String;

// Seconds since 1970-01-01 00:00:00 UTC.
constexpr std::time_t autumnNoon = 1794744280;         // 2026-11-15 12:04:40, a Sunday
constexpr std::time_t winterNight = 1044068709;        // 2003-02-01 03:05:09, a Saturday
constexpr std::time_t lastMoment = 67768036191676799;  // 2147485547-12-31, 2^31 - 1 years past 1900
constexpr std::time_t noSuchMoment = std::numeric_limits<std::time_t>::max();

/// The moment in universal time, after `pattern`.
std::string formatted(std::time_t moment, const char* pattern) {
  EnvironmentVariable zone("TZ", "UTC0");
  return textOf(Clock(moment).format(pattern));
}

}  // namespace

TEST(Clock, NumbersAreThoseOfTheMoment) {
  EnvironmentVariable zone("TZ", "UTC0");

  const Clock clock(autumnNoon);

  EXPECT_EQ(clock.yearsSince1900(), 126);
  EXPECT_EQ(clock.year(), 2026);
  EXPECT_EQ(clock.monthIndex(), 10);
  EXPECT_EQ(clock.month(), 11);
  EXPECT_EQ(clock.dayOfYear(), 318);  // 31+28+31+30+31+30+31+31+30+31 + 14
  EXPECT_EQ(clock.day(), 15);
  EXPECT_EQ(clock.weekday(), 0);
  EXPECT_EQ(clock.hour(), 12);
  EXPECT_EQ(clock.minute(), 4);
  EXPECT_EQ(clock.second(), 40);
}

TEST(Clock, NumbersAreLocalTime) {
  EnvironmentVariable zone("TZ", "XXX-14");  // 14 hours ahead of universal time

  const Clock clock(autumnNoon);

  EXPECT_EQ(clock.day(), 16);
  EXPECT_EQ(clock.weekday(), 1);
  EXPECT_EQ(clock.dayOfYear(), 319);
  EXPECT_EQ(clock.hour(), 2);
  EXPECT_EQ(textOf(clock.asText()), "Mon Nov 16 02:04:40 2026");
}

TEST(Clock, ReadsTheMomentWhenItIsMade) {
  EnvironmentVariable zone("TZ", "UTC0");

  const std::time_t before = std::time(nullptr);
  const Clock clock;
  const std::time_t after = std::time(nullptr);

  bool met = false;
  for (std::time_t moment = before; moment <= after; ++moment) {
    met = met || textOf(clock.asText()) == textOf(Clock(moment).asText());
  }
  EXPECT_TRUE(met) << clock.asText();
}

TEST(Clock, KeepsItsFieldsWhenAnotherClockIsMade) {
  EnvironmentVariable zone("TZ", "UTC0");
  const Clock clock(autumnNoon);

  const Clock other(winterNight);
  const String otherText = other.asText();

  EXPECT_EQ(clock.year(), 2026);
  EXPECT_EQ(other.year(), 2003);
  EXPECT_EQ(textOf(clock.format("%s")), "40");
}

TEST(Clock, AMomentWithoutBrokenDownTimeHasNoNumbersAndNoTexts) {
  const Clock clock(noSuchMoment);

  EXPECT_EQ(clock.yearsSince1900(), -1);
  EXPECT_EQ(clock.year(), -1);
  EXPECT_EQ(clock.monthIndex(), -1);
  EXPECT_EQ(clock.month(), -1);
  EXPECT_EQ(clock.dayOfYear(), -1);
  EXPECT_EQ(clock.day(), -1);
  EXPECT_EQ(clock.weekday(), -1);
  EXPECT_EQ(clock.hour(), -1);
  EXPECT_EQ(clock.minute(), -1);
  EXPECT_EQ(clock.second(), -1);
  EXPECT_EQ(textOf(clock.monthName()), "");
  EXPECT_EQ(textOf(clock.dayName()), "");
  EXPECT_EQ(textOf(clock.asText()), "");
  EXPECT_EQ(textOf(clock.format("temp%y")), "");
}

TEST(ClockNames, MonthNamesStandInOrderAndOutsideThemIsNothing) {
  const char* const expected[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};
  for (int index = 0; index < 12; ++index) {
    EXPECT_EQ(textOf(Clock::monthName(index)), expected[index]);
  }
  for (int index : {12, -1, 13, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(textOf(Clock::monthName(index)), "") << index;
  }
}

TEST(ClockNames, DayNamesBeginWithSundayAndOutsideThemIsNothing) {
  const char* const expected[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                  "Thursday", "Friday", "Saturday"};
  for (int index = 0; index < 7; ++index) {
    EXPECT_EQ(textOf(Clock::dayName(index)), expected[index]);
  }
  for (int index : {7, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(textOf(Clock::dayName(index)), "") << index;
  }
}

TEST(ClockNames, OfTheMomentAreThoseOfItsFields) {
  EnvironmentVariable zone("TZ", "UTC0");

  EXPECT_EQ(textOf(Clock(autumnNoon).monthName()), "November");
  EXPECT_EQ(textOf(Clock(autumnNoon).dayName()), "Sunday");
  EXPECT_EQ(textOf(Clock(winterNight).monthName()), "February");
  EXPECT_EQ(textOf(Clock(winterNight).dayName()), "Saturday");
}

TEST(ClockText, IsTheDateTextWithoutItsLineFeed) {
  EnvironmentVariable zone("TZ", "UTC0");

  EXPECT_EQ(textOf(Clock(autumnNoon).asText()), "Sun Nov 15 12:04:40 2026");
  EXPECT_EQ(textOf(Clock(winterNight).asText()), "Sat Feb  1 03:05:09 2003");
  EXPECT_EQ(textOf(Clock(0).asText()), "Thu Jan  1 00:00:00 1970");
}

TEST(ClockFormat, NamesATemporaryFile) {
  EXPECT_EQ(formatted(autumnNoon, "temp%y%M%D%h%m%s"), "temp261115120440");
}

TEST(ClockFormat, PatternsGiveTheirFields) {
  const struct {
    const char* pattern;
    const char* expected;
  } cases[] = {
      {"", ""},
      {"plain text", "plain text"},
      {"%%", "%"},
      {"%%%%", "%%"},
      {"%Y", "2026"},
      {"%y", "26"},
      {"%M", "11"},
      {"%D", "15"},
      {"%h", "12"},
      {"%m", "04"},
      {"%s", "40"},
      {"%Y-%M-%D", "2026-11-15"},
      {"%%y", "%y"},
      {"%%%y", "%26"},
      {"100%% at %h", "100% at 12"},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(formatted(autumnNoon, row.pattern), row.expected) << row.pattern;
  }
}

TEST(ClockFormat, ValuesBelowTenHaveALeadingZero) {
  EXPECT_EQ(formatted(winterNight, "%y %Y %M %D %h %m %s"), "03 2003 02 01 03 05 09");
}

TEST(ClockFormat, AnUnknownLetterGivesTwoZeros) {
  for (const char* pattern : {"%q", "% ", "%d", "%H", "%S", "%1", "%\xFF"}) {
    EXPECT_EQ(formatted(autumnNoon, pattern), "00") << pattern;
  }
}

TEST(ClockFormat, ALonePercentAtTheEndGivesTwoZerosAndStops) {
  const char pattern[] = "a%\0%Y";  // the rest after the zero byte is not read

  EXPECT_EQ(formatted(autumnNoon, pattern), "a00");
}

TEST(ClockFormat, EveryLengthAroundTheBufferStepsIsWhole) {
  for (std::size_t step : {1024U, 2048U}) {
    for (std::size_t length = step - 12; length <= step + 4; ++length) {
      const std::string plain(length, 'x');
      EXPECT_EQ(formatted(autumnNoon, (plain + "%Y%Y%%%m").c_str()), plain + "20262026%04");
    }
  }
}

// A digit is the character "0" plus its value, even when the value is not 0 to 9.
TEST(ClockFormat, YearsOutsideFourDigitsStayWithinTheirCharacters) {
  EXPECT_EQ(formatted(327415824000, "[%Y|%y]"), "[<345|45]");     // 12345-05-25: 12 past "0" is "<"
  EXPECT_EQ(formatted(-2208988800 - 1, "[%Y|%y]"), "[1899|0/]");  // 1899: year -1, one before "0"
  EXPECT_EQ(formatted(-62198755200, "[%Y|%y]"), "[000/|0/]");     // year -1: 1901 before 1900
}

TEST(ClockFormat, TheLastYearOfAllIsFourCharacters) {
  EnvironmentVariable zone("TZ", "UTC0");

  const Clock clock(lastMoment);

  EXPECT_EQ(clock.yearsSince1900(), std::numeric_limits<int>::max());
  EXPECT_EQ(clock.year(), -2147481749);  // 2147485547 - 2^32: the sum wraps
  EXPECT_EQ(clock.format("%Y").length(), 4);
  EXPECT_EQ(textOf(clock.format("%M%D")), "1231");
}

TEST(ClockFormat, WithoutMemoryItThrowsOne) {
  if (underAddressSanitizer) GTEST_SKIP() << "the sanitizer reserves memory of its own";
  const std::string pattern(2 << 20, 'x');
  const Clock clock(autumnNoon);

  const auto formatWithoutMemory = [&] {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0) _exit(2);
    limit.rlim_cur = 1;  // byte: the process can get no more memory
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(3);
    try {
      clock.format(pattern.c_str());
    } catch (int value) {
      _exit(value == 1 ? 42 : 4);
    } catch (...) {
      _exit(5);
    }
    _exit(6);
  };

  EXPECT_EXIT(formatWithoutMemory(), ::testing::ExitedWithCode(42), "");
}
