#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "foundation/string.h"

namespace Quillet {

// The decimal text of numbers. Plainly: divide by 10 until nothing is left, and reverse the digits.
// The tests compare with std::to_string. A loop over the digits mispredicts its end: their number
// is unpredictable. Here they come from tables, in groups of three, three and two:
//
//   1234567 -> 12|345|67
//
// Zeros in front of the first digit have no text. So each table has a second half without them, and
// a group that is the first to have a digit is marked by a 1 in front, which leads there. 1234567
// is looked up as 1012, 345, 67, which give "12", "345", "67". An empty group passes the mark on:
// 42 is looked up as 1000, 1000, 142, which give "", "", "42".
//
// With std::to_chars instead, a whole run costs 14 % more CPU.

/// Bytes that putDecimal() and putShortDecimal() may touch: the longest text and a blank.
inline constexpr std::int32_t longestDecimal = Tessaly::String::integerTextSize + 1;

/// Up to three characters in one word of four bytes, so that one store copies them.
struct DigitText {
  char characters[3];
  std::uint8_t length;  // how many of them count

  char* put(char* text) const {
    std::memcpy(text, this, sizeof *this);  // with the length, which the next text overwrites
    return text + length;
  }
};

static_assert(sizeof(DigitText) == 4);

struct DigitGroup {
  DigitText text;
  std::uint32_t taken;  // 100 * the group, or 100 less, which passes the mark on to the next one
};

/// Three digits that others follow: entries 0 to 999 have all three, 1000 to 1999 (marked) lack the
/// zeros in front.
inline constexpr auto leadingDigits = [] {
  std::array<DigitGroup, 2000> groups{};
  for (std::uint32_t i = 0; i < 2000; ++i) {
    DigitText& text = groups[i].text;
    const std::uint32_t digits[] = {i / 100 % 10, i / 10 % 10, i % 10};
    // Zeros in front of a marked group: those of 000, of 001 to 009, of 010 to 099.
    const int skipped = i == 1000 ? 3 : i < 1000 ? 0 : i < 1010 ? 2 : i < 1100 ? 1 : 0;
    for (int k = skipped; k < 3; ++k) {
      text.characters[text.length++] = static_cast<char>('0' + digits[k]);
    }
    groups[i].taken = 100 * (i == 1000 ? 999 : i);
  }
  return groups;
}();

/// The last two digits and a blank, which does not count: entries 0 to 99 have both digits, 100 to
/// 199 (marked) lack a zero in front.
inline constexpr auto lastDigits = [] {
  std::array<DigitText, 200> texts{};
  for (std::uint32_t i = 0; i < 200; ++i) {
    const auto tens = static_cast<char>('0' + i / 10 % 10);
    const auto ones = static_cast<char>('0' + i % 10);
    texts[i] =
        i >= 100 && i < 110 ? DigitText{{ones, ' ', ' '}, 1} : DigitText{{tens, ones, ' '}, 2};
  }
  return texts;
}();

/// Puts the text of the last five digits and a blank; returns the place of the blank.
inline char* putLastFive(char* text, std::uint32_t number) {
  const DigitGroup& group = leadingDigits[number / 100];
  return lastDigits[number - group.taken].put(group.text.put(text));
}

/// Puts the decimal text of `value` and a blank at `text`, and returns the place of the blank.
/// Bytes after it may be overwritten, as far as longestDecimal reaches.
inline char* putDecimal(char* text, std::int32_t value) {
  const auto number = static_cast<std::uint32_t>(value);  // of a negative value, a large one
  if (number >= 100'000'000) [[unlikely]] {
    text += Tessaly::String::writeInteger(value, text);
    *text = ' ';
    return text;
  }
  const std::uint32_t marked = 100'000'000 + number;
  const DigitGroup& group = leadingDigits[marked / 100'000];
  return putLastFive(group.text.put(text), marked - 1000 * group.taken);
}

/// The same, faster for values that are hardly ever negative or above 99999: it looks up two
/// groups.
inline char* putShortDecimal(char* text, std::int32_t value) {
  const auto number = static_cast<std::uint32_t>(value);
  if (number >= 100'000) [[unlikely]] {
    return putDecimal(text, value);
  }
  return putLastFive(text, 100'000 + number);
}

}  // namespace Quillet
