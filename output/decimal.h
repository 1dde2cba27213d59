#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "foundation/string.h"

namespace Quillet {

// The decimal text of numbers. Plainly: divide by 10 until nothing is left, and reverse the digits;
// the tests compare with std::to_string. The number of digits is unpredictable, so a loop over them
// mispredicts its end. Here the digits come from tables, in groups of three, three and two:
//
//   1234567 -> 12|345|67
//
// Leading zeros have no text. So each table has a second half, whose texts lack them; a 1 in front
// of a group, its mark, selects that half. The first group is marked. A marked group of zeros alone
// has no text and passes the mark on to the next group.
//
//   1234567: look up 1012, 345, 67       put "12", "345", "67"
//   42:      look up 1000, 1000, 142     put "", "", "42"
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
  std::uint32_t taken;  // 100 * the group; for 1000 it is 100 less, so the next one is marked
};

/// The groups of three digits. Entries 0 to 999 have all three; 1000 to 1999 (marked) lack leading
/// zeros.
inline constexpr auto leadingDigits = [] {
  std::array<DigitGroup, 2000> groups{};
  for (std::uint32_t i = 0; i < 2000; ++i) {
    DigitText& text = groups[i].text;
    const std::uint32_t digits[] = {i / 100 % 10, i / 10 % 10, i % 10};
    // Leading zeros of a marked group: those of 000, of 001 to 009, of 010 to 099.
    const int skipped = i == 1000 ? 3 : i < 1000 ? 0 : i < 1010 ? 2 : i < 1100 ? 1 : 0;
    for (int k = skipped; k < 3; ++k) {
      text.characters[text.length++] = static_cast<char>('0' + digits[k]);
    }
    groups[i].taken = 100 * (i == 1000 ? 999 : i);
  }
  return groups;
}();

/// The last two digits and a blank, which the length leaves out. Entries 0 to 99 have both digits;
/// 100 to 199 (marked) lack a leading zero.
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

/// Puts the decimal text of `value` and a blank at `text`, and returns the place of the blank. Up
/// to longestDecimal bytes from `text` on may be overwritten.
inline char* putDecimal(char* text, std::int32_t value) {
  const auto number = static_cast<std::uint32_t>(value);  // a negative value becomes a large one
  if (number >= 100'000'000) [[unlikely]] {
    text += Tessaly::String::writeInteger(value, text);
    *text = ' ';
    return text;
  }
  const std::uint32_t marked = 100'000'000 + number;
  const DigitGroup& group = leadingDigits[marked / 100'000];
  return putLastFive(group.text.put(text), marked - 1000 * group.taken);
}

/// The same, but faster for values from 0 to 99999: two look-ups instead of three.
inline char* putShortDecimal(char* text, std::int32_t value) {
  const auto number = static_cast<std::uint32_t>(value);
  if (number >= 100'000) [[unlikely]] {
    return putDecimal(text, value);
  }
  return putLastFive(text, 100'000 + number);
}

}  // namespace Quillet
