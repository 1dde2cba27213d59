#include "output/sample_scaling.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::Optional;

std::vector<std::uint16_t> samplesUpTo(std::uint32_t largest) {
  std::vector<std::uint16_t> samples(largest + 1);
  std::iota(samples.begin(), samples.end(), std::uint16_t{0});
  return samples;
}

std::vector<std::uint16_t> scaled(std::vector<std::uint16_t> samples, const auto& factor) {
  Quillet::scaleSamples(samples.data(), samples.size(), factor);
  return samples;
}

TEST(FixedFactor, TakesAQuotientApart) {
  EXPECT_THAT(Quillet::fixedFactor(3, 4, 4), Optional(FieldsAre(0, 0xC000, 0)));
  EXPECT_THAT(Quillet::fixedFactor(7, 2, 4), Optional(FieldsAre(3, 0x8000, 0)));
  EXPECT_THAT(Quillet::fixedFactor(65280, 32640, 32), Optional(FieldsAre(2, 0, 0)));
  EXPECT_THAT(Quillet::fixedFactor(5, 5, 5), Optional(FieldsAre(1, 0, 0)));
  EXPECT_THAT(Quillet::fixedFactor(1, 65535, 1), Optional(FieldsAre(0, 1, 2)));  // 1.0000153 / 2^16
}

TEST(FixedFactor, IsRoundedUp) {
  // 2^32 / 3 is 1431655765.3, 0x55555555 and a third.
  EXPECT_THAT(Quillet::fixedFactor(1, 3, 3), Optional(FieldsAre(0, 0x5555, 0x5556)));
}

TEST(FixedFactor, IsOneLessWhereWholeProductsFallShortInDouble) {
  // 65280 is 2251 * 29 + 1. 2^32 / 29 is 148102320.6.
  ASSERT_LT(65280.0 / 29 * 29, 65280.0);

  const auto factor = Quillet::fixedFactor(65280, 29, 29);

  constexpr std::uint32_t taken = 148102321 - 1;
  ASSERT_THAT(factor, Optional(FieldsAre(2251, taken >> 16, taken & 0xFFFF)));
  EXPECT_EQ(scaled({29}, *factor)[0], 65279);
}

TEST(FixedFactor, ThereIsNoneWhereOnlySomeWholeProductsFallShort) {
  ASSERT_EQ(65280.0 / 25 * 5, 13056.0);
  ASSERT_LT(65280.0 / 25 * 25, 65280.0);

  EXPECT_EQ(Quillet::fixedFactor(65280, 25, 25), std::nullopt);
  EXPECT_NE(Quillet::fixedFactor(65280, 25, 24), std::nullopt);
}

TEST(FixedFactor, MoreThan64WholeProductsAreNotLookedAt) {
  EXPECT_NE(Quillet::fixedFactor(1, 2, 129), std::nullopt);
  EXPECT_EQ(Quillet::fixedFactor(1, 2, 130), std::nullopt);
}

TEST(FixedFactor, GivesTheTruncatedDoubleProductOfEverySample) {
  std::mt19937 engine(1);
  const auto below = [&](std::uint32_t limit) {
    return static_cast<std::uint32_t>(engine()) % limit;
  };
  int found = 0;
  for (int round = 0; round < 400; ++round) {
    // In turn: a factor above 1 to the full range, and a factor of at most 1.
    const bool toFullRange = round % 2 == 0;
    const std::uint32_t denominator = 1 + below(round % 4 == 0 ? 4000 : 65535);
    const std::uint32_t numerator = toFullRange ? 65280 : 1 + below(denominator);
    const std::uint32_t largest = toFullRange ? denominator : 65535;
    const auto factor = Quillet::fixedFactor(numerator, denominator, largest);
    if (!factor) continue;
    ++found;

    const auto samples = scaled(samplesUpTo(largest), *factor);

    const double quotient = static_cast<double>(numerator) / denominator;
    for (std::uint32_t k = 0; k <= largest; ++k) {
      ASSERT_EQ(samples[k], static_cast<std::uint32_t>(quotient * k))
          << k << " * " << numerator << " / " << denominator;
    }
  }
  EXPECT_GT(found, 300);
}

TEST(ScaleSamples, ProductsAreTruncated) {
  const Quillet::FixedFactor threeQuarters{.whole = 0, .high = 0xC000, .low = 0};
  EXPECT_THAT(scaled({0, 1, 2, 3, 4, 65535}, threeQuarters), ElementsAre(0, 0, 1, 2, 3, 49151));
  EXPECT_THAT(scaled({0, 1, 2, 3, 4, 65535}, 0.75), ElementsAre(0, 0, 1, 2, 3, 49151));
}

TEST(ScaleSamples, TheLowerPartsCarryIntoTheProduct) {
  // A third, rounded up. For 3: the lower half of 3 * 0x5555 is 0xFFFF, the upper half of
  // 3 * 0x5556 is 1. Their sum carries into the product, which is 1.
  const Quillet::FixedFactor third{.whole = 0, .high = 0x5555, .low = 0x5556};
  EXPECT_THAT(scaled({3, 6, 65535}, third), ElementsAre(1, 2, 21845));
}

}  // namespace
