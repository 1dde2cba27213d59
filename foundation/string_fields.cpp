#include "foundation/string.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace Tessaly {
namespace {

constexpr std::int32_t largestDecimals = 15;
constexpr std::int32_t numberTextSize = 352;  // bytes; 309 digits, 15 decimals, signs and point

enum class Justify { left, right, centre };

struct FieldFormat {
  std::int32_t position = 0;  // "A": characters that the value is shifted by
  Justify justify = Justify::left;
  char fillCharacter = ' ';
  std::int32_t decimals = 0;
  bool alwaysSign = false;
  bool signAtRim = false;
};

/// Reads the digits at `place` and moves past them. A number too large for the type becomes its
/// maximum.
std::int32_t takeNumber(const char*& place) {
  const char* const digits = place;
  while (std::isdigit(static_cast<unsigned char>(*place)) != 0) {
    ++place;
  }
  std::int32_t number = 0;
  if (std::from_chars(digits, place, number).ec == std::errc::result_out_of_range) {
    number = std::numeric_limits<std::int32_t>::max();
  }
  return number;
}

/// Throws a parameter error for a null format.
FieldFormat parsed(const char* place) {
  if (place == nullptr) {
    throw stringParameterError;
  }
  FieldFormat format;
  while (*place != '\0') {
    switch (*place++) {
      case 'A':
        format.position = takeNumber(place);
        break;
      case 'J':
        if (*place == 'R' || *place == 'C') {
          format.justify = *place++ == 'R' ? Justify::right : Justify::centre;
        }
        break;
      case 'F':
        if (*place != '\0') {
          format.fillCharacter = *place++;
        }
        break;
      case 'P':
        format.decimals = std::min(takeNumber(place), largestDecimals);
        break;
      case 'S':
        format.alwaysSign = true;
        break;
      case 'R':
        format.signAtRim = true;
        break;
      default:
        break;
    }
  }
  return format;
}

/// The index in the field where the value starts; `room` is the number of fill characters.
std::int32_t placeOf(const FieldFormat& format, std::int32_t room) {
  const std::int32_t start = format.justify == Justify::centre ? room / 2 : 0;
  const std::int32_t shift = std::min(format.position, room - start);
  return format.justify == Justify::right ? room - shift : start + shift;
}

/// A field of `width` characters, or of the length of a longer value. The first `signCount` (0 or
/// 1) characters of the value are its sign.
String fieldOf(const String& value, std::int32_t signCount, std::int32_t width,
               const FieldFormat& format) {
  if (width < 0) {
    throw stringParameterError;
  }
  const std::int32_t length = value.length();
  const std::int32_t room = std::max(width, length) - length;
  const std::int32_t start = placeOf(format, room);
  const std::int32_t early = format.signAtRim ? signCount : 0;

  String field(length + room);
  field.append(value.text(), early);
  field.append(String(format.fillCharacter, start));
  field.append(value.text() + early, length - early);
  field.append(String(format.fillCharacter, room - start));
  return field;
}

String textField(const String& value, std::int32_t width, const char* format) {
  return fieldOf(value, 0, width, parsed(format));
}

/// `number` is the value's text without a "+". `signable` is false for a NaN, which gets no sign.
String numberField(const String& number, bool negative, bool signable, std::int32_t width,
                   const FieldFormat& format) {
  const bool plus = format.alwaysSign && signable && !negative;
  return fieldOf(plus ? String('+') + number : number, plus || negative ? 1 : 0, width, format);
}

String integerField(std::int32_t value, std::int32_t width, const char* format) {
  return numberField(String::textOf(value), value < 0, true, width, parsed(format));
}

/// `value` with so many decimals; with none, or when it is not finite, the text of textOf().
String decimalsText(double value, std::int32_t decimals) {
  if (decimals == 0 || !std::isfinite(value)) {
    return String::textOf(value);
  }
  char number[numberTextSize];
  const double unsignedZero = value == 0 ? 0 : value;  // a negative zero has no sign
  const char* const end = std::to_chars(number, number + numberTextSize, unsignedZero,
                                        std::chars_format::fixed, decimals)
                              .ptr;
  String text;
  text.append(number, static_cast<std::int32_t>(end - number));  // at most the buffer
  return text;
}

String doubleField(double value, std::int32_t width, const char* format) {
  const FieldFormat how = parsed(format);
  return numberField(decimalsText(value, how.decimals), value < 0, !std::isnan(value), width, how);
}

}  // namespace

void String::setField(const String& value, std::int32_t width, const char* format) {
  set(textField(value, width, format));
}

void String::setField(const char* value, std::int32_t width, const char* format) {
  setField(String(value), width, format);
}

void String::setField(char value, std::int32_t width, const char* format) {
  setField(String(value), width, format);
}

void String::setField(std::int32_t value, std::int32_t width, const char* format) {
  set(integerField(value, width, format));
}

void String::setField(double value, std::int32_t width, const char* format) {
  set(doubleField(value, width, format));
}

void String::appendField(const String& value, std::int32_t width, const char* format) {
  append(textField(value, width, format));
}

void String::appendField(const char* value, std::int32_t width, const char* format) {
  appendField(String(value), width, format);
}

void String::appendField(char value, std::int32_t width, const char* format) {
  appendField(String(value), width, format);
}

void String::appendField(std::int32_t value, std::int32_t width, const char* format) {
  append(integerField(value, width, format));
}

void String::appendField(double value, std::int32_t width, const char* format) {
  append(doubleField(value, width, format));
}

}  // namespace Tessaly
