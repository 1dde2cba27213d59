#include "output/sample_scaling.h"

#include <numeric>

namespace Quillet {

// Why a fixed factor is exact. With a denominator of 16 bits a product is either whole or at least
// 2^-16 away from the next whole number. The fraction, rounded up to 32 bits, is less than 2^-32
// too large, which times a sample is less than 2^-16: no product gets as far as the next whole
// number, as it does not in `double`. Where the product is whole, the one in `double` can fall
// short of it by a rounding, and be truncated to 1 less; a fraction that is 2^-32 smaller does so
// at all of these samples, and changes no other: a product that is not whole is at least 2^-16
// above the whole number below it.
std::optional<FixedFactor> fixedFactor(std::uint32_t numerator, std::uint32_t denominator,
                                       std::uint32_t largest) {
  const double quotient = static_cast<double>(numerator) / denominator;
  const std::uint32_t divisor = std::gcd(numerator, denominator);
  const std::uint32_t step = denominator / divisor;  // products of its multiples are whole
  const std::uint32_t stepCount = largest * divisor / denominator;
  constexpr std::uint32_t mostSteps = 64;  // to look at one takes as long as to scale a few samples
  if (stepCount > mostSteps) return std::nullopt;

  std::uint32_t shortCount = 0;
  for (std::uint32_t k = 1; k <= stepCount; ++k) {
    const auto product = static_cast<std::uint32_t>(quotient * (k * step));
    if (product != k * (numerator / divisor)) ++shortCount;
  }
  if (shortCount != 0 && shortCount != stepCount) return std::nullopt;

  const std::uint64_t remainder = numerator % denominator;
  const std::uint64_t fraction = ((remainder << 32) + denominator - 1) / denominator;
  // A product only falls short where there is a fraction: whole quotients are exact.
  const std::uint64_t taken = shortCount == 0 ? fraction : fraction - 1;
  return FixedFactor{.whole = static_cast<std::uint16_t>(numerator / denominator),
                     .high = static_cast<std::uint16_t>(taken >> 16),
                     .low = static_cast<std::uint16_t>(taken)};
}

// Stands apart from where factors are made: only of values that come as 16 bits does the compiler
// see that the upper halves of their products are wanted, which x86-64 processors compute directly.
void scaleSamples(std::uint16_t* samples, std::size_t count, const FixedFactor& factor) {
  const std::uint16_t whole = factor.whole;
  const std::uint16_t high = factor.high;
  const std::uint16_t low = factor.low;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t sample = samples[i];
    // 65536 * upper + lower is the sample times `high`; `carried` comes from that times `low`. The
    // two halves are two multiplications, since x86-64 processors have one for each; in different
    // types, since the compiler would otherwise make one and split its products.
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
    // Truncates. By way of 32 signed bits, since processors convert to those several at a time.
    samples[i] = static_cast<std::uint16_t>(static_cast<std::int32_t>(factor * samples[i]));
  }
}

}  // namespace Quillet
