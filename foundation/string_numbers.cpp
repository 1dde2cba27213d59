#include "foundation/string.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace Tessaly {
namespace {

bool isDigit(char character) { return std::isdigit(static_cast<unsigned char>(character)) != 0; }

bool isSign(char character) { return character == '+' || character == '-'; }

/// The place after the digits from `place` on; `place` itself when there are none.
const char* pastDigits(const char* place, const char* end) {
  return std::find_if_not(place, end, isDigit);
}

/// The place after "." and at least one digit; `place` itself when there are none.
const char* pastFraction(const char* place, const char* end) {
  if (place == end || *place != '.') {
    return place;
  }
  const char* const after = pastDigits(place + 1, end);
  return after == place + 1 ? place : after;
}

/// The place after "e" or "E", an optional sign and at least one digit; `place` itself when there
/// are none.
const char* pastExponent(const char* place, const char* end) {
  if (place == end || (*place != 'e' && *place != 'E')) {
    return place;
  }
  const char* digits = place + 1;
  if (digits != end && isSign(*digits)) {
    ++digits;
  }
  const char* const after = pastDigits(digits, end);
  return after == digits ? place : after;
}

/// The value of a hexadecimal digit, -1 for any other character.
int hexadecimalDigit(char character) {
  if (character >= '0' && character <= '9') {
    return character - '0';
  }
  if (character >= 'a' && character <= 'f') {
    return character - 'a' + 10;
  }
  return character >= 'A' && character <= 'F' ? character - 'A' + 10 : -1;
}

constexpr int keptDigits = 15;   // significant digits of a double's text
constexpr int lowestFixed = -6;  // lowest and highest exponent of ten in fixed notation
constexpr int highestFixed = 15;
constexpr int largestExactPower = 22;  // powers of ten up to 1e22 are exact
constexpr int largestPower = std::numeric_limits<double>::max_exponent10;
constexpr int doubleTextSize = 40;  // bytes; the longest text has 1 + 2 + 5 + 15 characters

/// A positive number as digits d[0].d[1]d[2]... times ten to the `exponent`.
struct Decimal {
  char digits[keptDigits + 1];  // the last one only rounds
  int digitCount;
  int exponent;
};

/// The double nearest to ten to the `exponent` (0..308).
double powerOfTen(int exponent) {
  double power = 1;
  if (exponent <= largestExactPower) {
    for (; exponent > 0; --exponent) {
      power *= 10;
    }
    return power;
  }
  // strtod rounds correctly, and a text without a decimal point is the same in every locale.
  char text[8] = "1e";
  *std::to_chars(text + 2, text + sizeof text - 1, exponent).ptr = '\0';
  return std::strtod(text, nullptr);
}

/// Brings a positive finite value into [1, 10) and returns the exponent of ten taken out of it.
int takeExponent(double& value) {
  int exponent = 0;
  double quotient = value;
  while (quotient >= 10) {
    ++exponent;
    quotient = value / powerOfTen(exponent);
  }
  double mantissa = quotient;
  for (int raised = 0; mantissa < 1; --exponent) {
    if (raised == largestPower) {  // a denormal value: one power is not enough
      quotient = mantissa;
      raised = 0;
    }
    ++raised;
    mantissa = quotient * powerOfTen(raised);
  }
  if (mantissa >= 10) {  // the product was rounded up
    mantissa /= 10;
    ++exponent;
  }
  value = mantissa;
  return exponent;
}

/// A positive finite value, rounded to 15 significant digits, without zeros at the end. The 16th
/// digit decides the rounding; later ones do not count.
Decimal decimalOf(double value) {
  Decimal decimal;
  decimal.exponent = takeExponent(value);
  for (char& place : decimal.digits) {
    const int digit = static_cast<int>(value);  // 0..9, truncated
    place = static_cast<char>('0' + digit);
    value = (value - digit) * 10;
  }

  const bool up = decimal.digits[keptDigits] >= '5';
  const char dropped = up ? '9' : '0';
  int count = keptDigits;
  while (count > 0 && decimal.digits[count - 1] == dropped) {
    --count;
  }
  if (count == 0) {  // fifteen nines, rounded up
    decimal.digits[0] = '1';
    count = 1;
    ++decimal.exponent;
  } else if (up) {
    ++decimal.digits[count - 1];
  }
  decimal.digitCount = count;
  return decimal;
}

/// Appends `count` zeros, at most 15; none for a negative count.
void appendZeros(String& text, int count) {
  text.append("000000000000000", std::max(count, 0));  // enough for fixed notation
}

void appendFixed(String& text, const Decimal& decimal) {
  if (decimal.exponent < 0) {
    text.append("0.");
    appendZeros(text, -decimal.exponent - 1);
    text.append(decimal.digits, decimal.digitCount);
    return;
  }
  const int wholeCount = decimal.exponent + 1;
  text.append(decimal.digits, std::min(wholeCount, decimal.digitCount));
  appendZeros(text, wholeCount - decimal.digitCount);
  if (decimal.digitCount > wholeCount) {
    text.append('.');
    text.append(decimal.digits + wholeCount, decimal.digitCount - wholeCount);
  }
}

void appendScientific(String& text, const Decimal& decimal) {
  text.append(decimal.digits[0]);
  text.append('.');  // Deliberate: the point is written even when no digit follows it.
  text.append(decimal.digits + 1, decimal.digitCount - 1);
  text.append(decimal.exponent < 0 ? "e-" : "e+");
  const int magnitude = std::abs(decimal.exponent);
  if (magnitude < 10) {
    text.append('0');
  }
  char number[String::integerTextSize];
  text.append(number, String::writeInteger(magnitude, number));
}

}  // namespace

void String::set(std::int32_t value) {
  char number[integerTextSize];
  keepOrStore(number, writeInteger(value, number));
}

void String::set(double value) { set(textOf(value)); }

bool String::isDecimalNumber() const {
  const char* place = text_.get();
  const char* const end = place + length_;
  if (place != end && isSign(*place)) {
    ++place;
  }
  const char* const mantissa = place;
  place = pastFraction(pastDigits(place, end), end);
  if (place == mantissa) {
    return false;
  }
  place = pastExponent(place, end);
  return place == end || isWhiteSpace(*place);
}

std::int32_t String::hexadecimalValue() const {
  std::uint32_t value = 0;
  // Deliberate: "0X" is not skipped, so that "0X1F" is 0: its digits end at the "X".
  for (const char* place = text_.get() + (startsWith("0x") ? 2 : 0);; ++place) {
    const int digit = hexadecimalDigit(*place);  // -1 for the final zero byte
    if (digit < 0) {
      break;
    }
    value = value * 16 + static_cast<std::uint32_t>(digit);
  }
  return static_cast<std::int32_t>(value);  // the low 32 bits as a signed number
}

std::int32_t String::writeInteger(std::int32_t value, char* destination) {
  const std::to_chars_result result =
      std::to_chars(destination, destination + integerTextSize, value);
  return static_cast<std::int32_t>(result.ptr - destination);  // at most 11
}

String String::textOf(std::int32_t value) {
  String text;
  text.set(value);
  return text;
}

String String::textOf(double value) {
  if (std::isnan(value)) {
    return "nan";
  }
  if (value == 0) {
    return "0";
  }
  String text(doubleTextSize);
  if (value < 0) {
    text.append('-');
    value = -value;
  }
  if (std::isinf(value)) {
    text.append("inf");
    return text;
  }
  const Decimal decimal = decimalOf(value);
  if (decimal.exponent >= lowestFixed && decimal.exponent <= highestFixed) {
    appendFixed(text, decimal);
  } else {
    appendScientific(text, decimal);
  }
  return text;
}

}  // namespace Tessaly
