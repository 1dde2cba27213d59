#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "output/poly_stages.h"
#include "tests/output/poly_arrays.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr std::int32_t smallestInteger = std::numeric_limits<std::int32_t>::min();

// With this average, the factor of a run is its area divided by the sum of its peaks' heights.
constexpr float unitAverage = 16384;

std::vector<std::int32_t> normalise(const std::vector<std::uint16_t>& samples, float average,
                                    const std::vector<std::int32_t>& peakPos,
                                    const std::vector<std::uint32_t>& peakAmp) {
  Quillet::ChannelPeakArrays peaks = dirtyPeaks(peakPos.size());
  std::ranges::copy(peakPos, peaks.positions.get());
  std::ranges::copy(peakAmp, peaks.heights.get());
  std::vector<std::uint64_t> zeros(Quillet::zeroWordCount(samples.size()), 0x5A5A);
  Quillet::normaliseAreas(samples, average, static_cast<std::int32_t>(peakPos.size()), zeros.data(),
                          peaks);
  return vectorOf(peaks.normalisedHeights, peakPos.size());
}

TEST(TruncateToInt32, DropsTheFractionAndGivesTheSmallestIntegerForWhatDoesNotFit) {
  struct Case {
    double value;
    std::int32_t expected;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      {0.0, 0},
      {0.99, 0},
      {-0.99, 0},
      {7.5, 7},
      {-7.5, -7},
      {2147483647.0, 2147483647},
      {2147483647.9, 2147483647},
      {2147483648.0, smallestInteger},
      {-2147483647.5, -2147483647},
      {-2147483648.0, smallestInteger},
      {-2147483648.9, smallestInteger},
      {-2147483649.0, smallestInteger},
      {4294967296.0, smallestInteger},
      {1e300, smallestInteger},
      {infinity, smallestInteger},
      {-infinity, smallestInteger},
      {std::nan(""), smallestInteger},
  };
  for (const Case& c : cases) EXPECT_EQ(Quillet::truncateToInt32(c.value), c.expected) << c.value;
}

TEST(NormaliseAreas, APeakAloneInARunGetsTheRunsArea) {
  const auto normAmp = normalise({0, 10, 20, 10, 0}, unitAverage, {2}, {20});

  EXPECT_THAT(normAmp, ElementsAre(40));  // 40 / 20 * 20
}

TEST(NormaliseAreas, TheAreaIsSharedByHeight) {
  const auto normAmp = normalise({10, 20, 10, 30, 10}, unitAverage, {1, 3}, {16, 48});

  EXPECT_THAT(normAmp, ElementsAre(20, 60));  // 80 / 64 = 1.25
}

TEST(NormaliseAreas, TheAverageIsAFactor) {
  const auto normAmp = normalise({0, 10, 20, 10, 0}, 4096, {2}, {20});

  EXPECT_THAT(normAmp, ElementsAre(10));  // a quarter of the unit average
}

TEST(NormaliseAreas, TheAverageIsMultipliedByTheAreaBeforeTheDivisionAndInDoublePrecision) {
  // 49152 * 7 / 5 / 16384 * 5 is exactly 21. With 7 / 5 computed first, or a step in single
  // precision, the result is just below.
  const auto normAmp = normalise({7}, 49152, {0}, {5});

  EXPECT_THAT(normAmp, ElementsAre(21));
}

TEST(NormaliseAreas, AHeightIsTruncated) {
  const auto normAmp = normalise({15}, unitAverage, {0, 0}, {1, 7});

  EXPECT_THAT(normAmp, ElementsAre(1, 13));  // 15 / 8 = 1.875, 13.125
}

TEST(NormaliseAreas, AnAverageOf0GivesHeightsOf0) {
  const auto normAmp = normalise({0, 10, 20, 10, 0}, 0, {2}, {20});

  EXPECT_THAT(normAmp, ElementsAre(0));
}

TEST(NormaliseAreas, ARunEndsBeforeItsFirstZero) {
  // The runs are 1..2 and 4..5: positions 0 and 3 are before their runs.
  const std::vector<std::uint16_t> samples = {0, 10, 10, 0, 30, 30, 0};

  EXPECT_THAT(normalise(samples, unitAverage, {0, 1, 3, 4}, {10, 10, 10, 10}),
              ElementsAre(0, 20, 0, 60));
  EXPECT_THAT(normalise(samples, unitAverage, {2, 5}, {10, 10}), ElementsAre(20, 60));
}

TEST(NormaliseAreas, APositionAfterTheLastRunGets0) {
  EXPECT_THAT(normalise({10, 0, 0}, unitAverage, {0, 1, 2}, {10, 10, 10}), ElementsAre(10, 0, 0));
}

TEST(NormaliseAreas, APositionThatNoRunReachesGets0AndSoDoAllAfterIt) {
  EXPECT_THAT(normalise({10, 10}, unitAverage, {0, 2, 1}, {10, 10, 10}), ElementsAre(20, 0, 0));
  EXPECT_THAT(normalise({10, 0}, unitAverage, {2, 0}, {10, 10}), ElementsAre(0, 0));
}

TEST(NormaliseAreas, WithoutSamplesEveryHeightIs0) {
  EXPECT_THAT(normalise({}, unitAverage, {0, -1, 5}, {10, 10, 10}), Each(0));
}

TEST(NormaliseAreas, TheCursorOnlyMovesForward) {
  // Base 0 is in the second run (area 60). Base 1 comes after it and shares that run, although its
  // position is in the first.
  const auto normAmp = normalise({0, 10, 10, 0, 30, 30}, unitAverage, {5, 1}, {10, 20});

  EXPECT_THAT(normAmp, ElementsAre(20, 40));
}

TEST(NormaliseAreas, APositionBeforeOneAlreadyPassedGets0) {
  // Position 2 is in a gap: base 0 is passed when the run after the gap starts.
  const auto normAmp = normalise({10, 10, 0, 30}, unitAverage, {2, 1, 3}, {10, 10, 10});

  EXPECT_THAT(normAmp, ElementsAre(0, 0, 30));
}

TEST(NormaliseAreas, ANegativePositionLiesBeforeEveryRun) {
  const auto normAmp = normalise({10, 10}, unitAverage, {-1, smallestInteger, 1}, {10, 10, 10});

  EXPECT_THAT(normAmp, ElementsAre(0, 0, 20));
}

TEST(NormaliseAreas, TheHeightSumWrapsModulo65536) {
  // 40000 + 30000 = 65536 + 4464. The area is twice 4464.
  const auto normAmp = normalise({8928}, unitAverage, {0, 0}, {40000, 30000});

  EXPECT_THAT(normAmp, ElementsAre(80000, 60000));
}

TEST(NormaliseAreas, AHeightSumThatWrapsTo0CountsAs0) {
  const auto normAmp = normalise({500}, unitAverage, {0, 0}, {32768, 32768});

  EXPECT_THAT(normAmp, ElementsAre(32768, 32768));  // the average alone
}

TEST(NormaliseAreas, TheAreaWrapsModulo4294967296) {
  // 65538 * 65535 = 4295032830 = 4294967296 + 65534
  const std::vector<std::uint16_t> samples(65538, 65535);

  EXPECT_THAT(normalise(samples, unitAverage, {65537}, {1}), ElementsAre(65534));
}

TEST(NormaliseAreas, AHeightThatDoesNotFitBecomesTheSmallestInteger) {
  // The sum of heights, 65537, wraps to 1: the factor is 65535 * 65535 / 16384 = 262136.0..
  const auto normAmp = normalise({65535}, 65535, {0, 0}, {65535, 2});

  EXPECT_THAT(normAmp, ElementsAre(smallestInteger, 524272));
}

}  // namespace
