#pragma once

#include <ctime>

#include "foundation/string.h"

namespace Tessaly {

/// One moment of local time, read when the object is made.
///
/// The zone is that of the environment variable TZ, or the system's zone when TZ is not set. A
/// moment whose year does not fit an `int` is unknown: its numbers are -1 and its texts empty. A
/// plain value: owns nothing, prints nothing.
/// Errors: only lack of memory. format() then throws the integer 1 when its buffer can not grow;
/// every returned String throws as Strings do.
class Clock {
 public:
  /// The present moment.
  Clock();
  explicit Clock(std::time_t moment);

  // Each number is -1 when the moment is unknown.
  int yearsSince1900() const;
  int monthIndex() const;  // 0..11
  int year() const;
  int month() const;      // 1..12
  int dayOfYear() const;  // 0..365
  int day() const;        // 1..31
  int weekday() const;    // 0..6, 0 is Sunday
  int hour() const;
  int minute() const;
  int second() const;

  // English names. An index outside the table gives the empty text.
  String monthName() const;
  static String monthName(int index);
  String dayName() const;
  static String dayName(int index);

  /// The text that ctime() gives, without its line feed: "Sun Nov 15 12:04:40 2026".
  String asText() const;

  /// Copies `pattern` and replaces %Y (year, 4 digits), %y (year, 2 digits), %M (month), %D (day),
  /// %h, %m, %s (2 digits each) and %% (a "%"). Any other letter after "%" becomes "00".
  String format(const char* pattern) const;

 private:
  std::time_t seconds_;
  // A copy: localtime() overwrites its storage at the next call.
  std::tm fields_{};
  bool known_ = false;
};

}  // namespace Tessaly
