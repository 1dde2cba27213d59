#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "foundation/big_endian.h"
#include "foundation/string.h"

namespace Tessaly {

// The decimal text of numbers, as fast as result files want it: they hold little else.

/// Bytes that putDecimal() may touch.
inline constexpr std::int32_t longestDecimal = String::integerTextSize;

/// The characters of 0000 to 9999, the first of each in the highest byte.
inline constexpr auto fourDigits = [] {
  std::array<std::uint32_t, 10000> texts{};
  for (std::uint32_t i = 0; i < 10000; ++i) {
    texts[i] = 0x30303030 | i / 1000 << 24 | i / 100 % 10 << 16 | i / 10 % 10 << 8 | i % 10;
  }
  return texts;
}();

/// Puts the decimal text of `value` at `text` and returns its end. Bytes behind the end may be
/// overwritten, as far as longestDecimal reaches: eight digits are stored whatever their number,
/// which the processor could not foresee.
inline char* putDecimal(char* text, std::int32_t value) {
  const auto number = static_cast<std::uint32_t>(value);  // of a negative value, a large one
  if (number >= 100'000'000) return text + String::writeInteger(value, text);

  const std::uint64_t eight =
      std::uint64_t{fourDigits[number / 10000]} << 32 | fourDigits[number % 10000];
  // What stands in front as zeros is skipped, but for the last digit.
  const std::uint64_t figures = eight ^ 0x3030'3030'3030'3030;
  const auto skipped          = static_cast<unsigned>(std::countl_zero(figures | 1)) / 8;
  putBigEndian64(text, eight << (8 * skipped));
  return text + (8 - skipped);
}

}  // namespace Tessaly
