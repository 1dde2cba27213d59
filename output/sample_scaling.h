#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Quillet {

// Samples are scaled by a quotient of two whole numbers. What they come to is laid down as the
// product in `double`, without its fraction; mostly whole numbers of 16 bits give the same, in less
// than half the time where the compiler turns the loop into vector instructions.

/// The factor whole + (65536 * high + low) / 2^32.
struct FixedFactor {
  std::uint16_t whole;
  std::uint16_t high;
  std::uint16_t low;
};

/// The fixed factor with which every sample up to `largest` comes out as it does with the quotient
/// as a `double`; none where there is no such factor, or where it takes long to tell.
/// Both numbers are 1..65535; the largest sample times the quotient is at most 65535.
std::optional<FixedFactor> fixedFactor(std::uint32_t numerator, std::uint32_t denominator,
                                       std::uint32_t largest);

/// Every sample becomes the product without its fraction, which must be within 16 bits.
void scaleSamples(std::uint16_t* samples, std::size_t count, const FixedFactor& factor);
void scaleSamples(std::uint16_t* samples, std::size_t count, double factor);

}  // namespace Quillet
