#include "output/sample_scaling.h"

#include <numeric>

namespace Quillet {

// Why a fixed factor is exact:
// - The denominator has 16 bits, so a product that is not whole is at least 2^-16 below the next
//   whole number.
// - The fraction is rounded up to 32 bits. It is less than 2^-32 too large, and times a sample less
//   than 2^-16 too large. So a product that is not whole stays below the next whole number, here
//   and in `double`.
// - A whole product can be a little too small in `double`, by a rounding, and then truncates to 1
//   less. When this holds for all whole products, a fraction that is 2^-32 smaller gives the same.
//   It changes no other product, since those are at least 2^-16 above the whole number below. When
//   it holds for only some, there is no fixed factor.
std::optional<FixedFactor> fixedFactor(std::uint32_t numerator, std::uint32_t denominator,
                                       std::uint32_t largest) {
  const double quotient = static_cast<double>(numerator) / denominator;
  const std::uint32_t divisor = std::gcd(numerator, denominator);
  const std::uint32_t step = denominator / divisor;  // a multiple of it has a whole product
  const std::uint32_t stepCount = largest * divisor / denominator;
  constexpr std::uint32_t mostSteps = 64;  // checking one takes as long as scaling a few samples
  if (stepCount > mostSteps) return std::nullopt;

  std::uint32_t shortCount = 0;
  for (std::uint32_t k = 1; k <= stepCount; ++k) {
    const auto product = static_cast<std::uint32_t>(quotient * (k * step));
    if (product != k * (numerator / divisor)) ++shortCount;
  }
  if (shortCount != 0 && shortCount != stepCount) return std::nullopt;

  const std::uint64_t remainder = numerator % denominator;
  const std::uint64_t fraction = ((remainder << 32) + denominator - 1) / denominator;
  // Whole products come out too small only with a fraction: whole quotients are exact.
  const std::uint64_t taken = shortCount == 0 ? fraction : fraction - 1;
  return FixedFactor{.whole = static_cast<std::uint16_t>(numerator / denominator),
                     .high = static_cast<std::uint16_t>(taken >> 16),
                     .low = static_cast<std::uint16_t>(taken)};
}

// A function of its own with a 16-bit factor: then the compiler sees that only the upper halves of
// 16-bit products are needed, for which x86-64 has an instruction.
void scaleSamples(std::uint16_t* samples, std::size_t count, const FixedFactor& factor) {
  const std::uint16_t whole = factor.whole;
  const std::uint16_t high = factor.high;
  const std::uint16_t low = factor.low;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t sample = samples[i];
    // 65536 * upper + lower is the sample times `high`; `carried` is the upper half of the sample
    // times `low`. The two multiplications have different types, because x86-64 has one instruction
    // for each half of a product; a single one the compiler would have to split.
    const auto upper = static_cast<std::uint16_t>((std::uint32_t{sample} * high) >> 16);
    const auto lower = static_cast<std::uint16_t>(std::uint64_t{sample} * high);
    const auto carried = static_cast<std::uint16_t>((std::uint32_t{sample} * low) >> 16);
    const auto sum = static_cast<std::uint16_t>(lower + carried);  // wraps: see the next line
    const std::uint32_t overflow = sum < lower ? 1 : 0;
    samples[i] = static_cast<std::uint16_t>(std::uint32_t{sample} * whole + upper + overflow);
  }
}

void scaleSamples(std::uint16_t* samples, std::size_t count, double factor) {
  for (std::size_t i = 0; i < count; ++i) {
    // Truncates, by way of signed 32 bits: processors convert several `double` at a time to those.
    samples[i] = static_cast<std::uint16_t>(static_cast<std::int32_t>(factor * samples[i]));
  }
}

}  // namespace Quillet
