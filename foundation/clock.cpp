#include "foundation/clock.h"

#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace Tessaly {

namespace {

constexpr const char* monthNames[] = {"January",   "February", "March",    "April",
                                      "May",       "June",     "July",     "August",
                                      "September", "October",  "November", "December"};
constexpr const char* dayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};

constexpr int unknown = -1;

/// The name at `index`; empty outside the table.
template <std::size_t count>
String nameAt(const char* const (&names)[count], int index) {
  // The cast makes a negative index a large one, past every table.
  return static_cast<unsigned>(index) < count ? String(names[index]) : String();
}

/// The digit of 0..9. Any other value gives one other character: the cast keeps the lowest byte.
char digit(int value) { return static_cast<char>('0' + value); }

/// Builds the text of format(). The buffer grows in steps of 1024 bytes.
class PatternText {
 public:
  static constexpr std::size_t longestPiece = 4;  // characters: "%Y" gives four

  /// Makes room for `longestPiece` characters. Call it before each piece.
  void reserve() {
    if (length_ + longestPiece <= size_) return;
    std::unique_ptr<char[]> larger(new (std::nothrow) char[size_ + step]);
    if (larger == nullptr) throw 1;
    if (length_ > 0) std::memcpy(larger.get(), characters_.get(), length_);
    characters_ = std::move(larger);
    size_ += step;
  }

  void put(char character) { characters_[length_++] = character; }

  void putTwoDigits(int value) {
    const int tens = value / 10;
    put(digit(tens));
    put(digit(value - 10 * tens));
  }

  void putFourDigits(int value) {
    const int thousands = value / 1000;
    const int rest = value - 1000 * thousands;
    const int hundreds = rest / 100;
    put(digit(thousands));
    put(digit(hundreds));
    putTwoDigits(rest - 100 * hundreds);
  }

  String text() const {
    String result;
    // The length fits 32 bits: patterns are a few characters long.
    if (length_ > 0) result.append(characters_.get(), static_cast<std::int32_t>(length_));
    return result;
  }

 private:
  static constexpr std::size_t step = 1024;
  std::unique_ptr<char[]> characters_;
  std::size_t length_ = 0;
  std::size_t size_ = 0;
};

}  // namespace

Clock::Clock() : Clock(std::time(nullptr)) {}

Clock::Clock(std::time_t moment) : seconds_(moment) {
  if (const std::tm* fields = std::localtime(&seconds_)) {
    fields_ = *fields;
    known_ = true;
  }
}

int Clock::yearsSince1900() const { return known_ ? fields_.tm_year : unknown; }
int Clock::monthIndex() const { return known_ ? fields_.tm_mon : unknown; }
int Clock::year() const {
  // The sum wraps for the last 1900 values of `tm_year`, where it does not fit an `int`.
  return known_ ? static_cast<int>(static_cast<unsigned>(fields_.tm_year) + 1900U) : unknown;
}
int Clock::month() const { return known_ ? fields_.tm_mon + 1 : unknown; }
int Clock::dayOfYear() const { return known_ ? fields_.tm_yday : unknown; }
int Clock::day() const { return known_ ? fields_.tm_mday : unknown; }
int Clock::weekday() const { return known_ ? fields_.tm_wday : unknown; }
int Clock::hour() const { return known_ ? fields_.tm_hour : unknown; }
int Clock::minute() const { return known_ ? fields_.tm_min : unknown; }
int Clock::second() const { return known_ ? fields_.tm_sec : unknown; }

String Clock::monthName() const { return monthName(monthIndex()); }
String Clock::monthName(int index) { return nameAt(monthNames, index); }
String Clock::dayName() const { return dayName(weekday()); }
String Clock::dayName(int index) { return nameAt(dayNames, index); }

String Clock::asText() const {
  const char* line = known_ ? std::ctime(&seconds_) : nullptr;
  String text(line != nullptr ? line : "");
  text.removeLast(1);  // the line feed
  return text;
}

String Clock::format(const char* pattern) const {
  if (!known_) return String();
  PatternText result;
  for (; *pattern != '\0'; ++pattern) {
    result.reserve();
    if (*pattern != '%') {
      result.put(*pattern);
      continue;
    }
    ++pattern;
    switch (*pattern) {
      case '%':
        result.put('%');
        break;
      case 'y':
        result.putTwoDigits(fields_.tm_year % 100);
        break;
      case 'Y':
        result.putFourDigits(year());
        break;
      case 'M':
        result.putTwoDigits(month());
        break;
      case 'D':
        result.putTwoDigits(day());
        break;
      case 'h':
        result.putTwoDigits(hour());
        break;
      case 'm':
        result.putTwoDigits(minute());
        break;
      case 's':
        result.putTwoDigits(second());
        break;
      default:
        result.putTwoDigits(0);  // Deliberate: an unknown letter, or no letter, gives "00".
        if (*pattern == '\0') return result.text();
        break;
    }
  }
  return result.text();
}

}  // namespace Tessaly
