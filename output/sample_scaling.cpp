#include "output/sample_scaling.h"

#include <numeric>

namespace Quillet {

// Why a fixed factor is exact. The denominator has 16 bits, so a product is either whole or at
// least 2^-16 below the next whole number. The fraction is rounded up to 32 bits: it is less than
// 2^-32 too large, and times a sample less than 2^-16 too large. So no product that is not whole
// reaches the next whole number, neither here nor in `double`. A product that is whole can fall
// short of it in `double` by a rounding, and is then truncated to 1 less. Where all whole products
// of the samples fall short, a fraction that is 2^-32 smaller does the same, and changes no other
// product, since those are at least 2^-16 above the whole number below. Where only some fall short
// there is no fixed factor.
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

// A function of its own, whose factor arrives as 16-bit values: then the compiler sees that only
// the upper halves of 16-bit products are wanted, which x86-64 processors compute directly.
void scaleSamples(std::uint16_t* samples, std::size_t count, const FixedFactor& factor) {
  const std::uint16_t whole = factor.whole;
  const std::uint16_t high = factor.high;
  const std::uint16_t low = factor.low;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t sample = samples[i];
    // 65536 * upper + lower is the sample times `high`; `carried` comes from the sample times
    // `low`. Two multiplications of different types, since x86-64 has one instruction for each half
    // of a product; from a single one the compiler would split the product.
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
