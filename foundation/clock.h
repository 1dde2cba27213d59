#pragma once

#include <ctime>

#include "foundation/string.h"

namespace Tessaly {

/// One moment of local time, read when the object is made.
///
/// The moment is a `time_t`; its broken-down form is local time in the zone of the environment
/// variable TZ, or in the system's zone where TZ is not set. A moment that has no broken-down form
/// (a year beyond `int`) is unknown: numbers are then -1 and texts empty. A plain value: owns
/// nothing, prints nothing.
/// Errors: where memory is out, format() throws the integer 1 for its buffer, and the Strings that
/// are handed out throw as Strings do. Nothing else fails.
class Clock {
 public:
  /// Now.
  Clock();
  explicit Clock(std::time_t moment);

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

  // English names; empty for an index outside the table.
  String monthName() const;
  static String monthName(int index);
  String dayName() const;
  static String dayName(int index);

  /// The C library's date text without its line feed, as in "Sun Nov 15 12:04:40 2026": 24
  /// characters when the year has four digits.
  String asText() const;

  /// Copies `pattern`, putting numbers for %y (year, 2 digits), %Y (year, 4 digits), %M (month),
  /// %D (day), %h, %m, %s (2 digits each) and "%" for %%; any other letter stands for "00".
  String format(const char* pattern) const;

 private:
  std::time_t seconds_;
  // The C library's own storage is overwritten by the next clock; a copy keeps clocks apart.
  std::tm fields_{};
  bool known_ = false;
};

}  // namespace Tessaly
