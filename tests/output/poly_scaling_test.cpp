#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "output/poly_stages.h"
#include "tests/output/plain_poly.h"
#include "tests/output/poly_arrays.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

void scale(PolyInput& input) {
  Quillet::Channels channels = channelsOf(input);
  Quillet::scaleToFullRange(channels);
  copyBack(channels, input);
}

std::array<float, 4> balance(PolyInput& input) {
  Quillet::Channels channels = channelsOf(input);
  const std::array<float, 4> averages = Quillet::balanceChannels(channels);
  copyBack(channels, input);
  return averages;
}

PolyInput flatTrace(std::size_t pointCount, std::uint16_t sample = 0) {
  PolyInput input;
  for (auto& channel : input.channels) channel.assign(pointCount, sample);
  return input;
}

/// Gives the summed signal a maximum at `index`. The stage takes the channel's height from the next
/// sample, which is `height`.
void addPeak(PolyInput& input, std::size_t channel, std::size_t index, std::uint16_t height) {
  input.channels[channel][index] = static_cast<std::uint16_t>(height + 1);
  input.channels[channel][index + 1] = height;
}

PolyInput randomTrace(std::mt19937& random, std::size_t pointCount) {
  PolyInput input;
  const auto limit = 1 + random() % 65535;
  for (auto& channel : input.channels) {
    for (std::size_t i = 0; i < pointCount; ++i) {
      channel.push_back(static_cast<std::uint16_t>(random() % 3 == 0 ? 0 : random() % (limit + 1)));
    }
  }
  return input;
}

TEST(ScaleToFullRange, TheHighestSampleOfAnyChannelBecomes65280) {
  PolyInput input;  // 16320 is a quarter of 65280
  input.channels = {{{0, 1}, {16320, 7}, {100, 8000}, {16319, 0}}};

  scale(input);

  EXPECT_THAT(input.channels, ElementsAre(ElementsAre(0, 4), ElementsAre(65280, 28),
                                          ElementsAre(400, 32000), ElementsAre(65276, 0)));
}

TEST(ScaleToFullRange, ATraceOfZerosStays) {
  PolyInput input = flatTrace(20);

  scale(input);

  EXPECT_THAT(input.channels, Each(Each(0)));
}

TEST(ScaleToFullRange, ProductsAreTruncated) {
  PolyInput input;  // the factors are 65280 / 32639 = 2.00006.. and 65280 / 65535 = 0.996..
  input.channels = {{{32639}, {9}, {32000}, {0}}};
  PolyInput fullRange;
  fullRange.channels = {{{65535}, {1}, {3}, {300}}};

  scale(input);
  scale(fullRange);

  EXPECT_EQ(input.channels[1][0], 18);
  EXPECT_EQ(input.channels[2][0], 64001);  // 64001.96
  EXPECT_THAT(fullRange.channels[1], ElementsAre(0));
  EXPECT_THAT(fullRange.channels[2], ElementsAre(2));    // 2.99
  EXPECT_THAT(fullRange.channels[3], ElementsAre(298));  // 298.8
}

TEST(ScaleToFullRange, TheHighestSampleCanFallJustShort) {
  // 65280 / 25 = 2611.2. The nearest double is 0.4 units of 2^-41 too low. 25 times that is 10
  // units below 65280, where doubles are 16 units apart: it rounds to the double below 65280.
  PolyInput input = flatTrace(1, 25);

  scale(input);

  EXPECT_THAT(input.channels, Each(ElementsAre(65279)));
}

TEST(BalanceChannels, TheHeightIsReadAfterTheMaximumOfTheSum) {
  PolyInput input = flatTrace(3000);  // the sum is 0, 1000, 10
  input.channels[0][1600] = 1000;
  input.channels[1][1601] = 10;
  input.channels[2][1601] = 9;
  const PolyInput untouched = input;

  const auto averages = balance(input);

  EXPECT_THAT(averages, ElementsAre(0, 10, 0, 0));
  EXPECT_EQ(input.channels, untouched.channels);
}

TEST(BalanceChannels, AMaximumBeforeFourZerosCountsForNoChannel) {
  PolyInput input = flatTrace(3000);
  input.channels[0][1600] = 1000;

  const auto averages = balance(input);

  EXPECT_THAT(averages, Each(0));
}

TEST(BalanceChannels, TheFirstOfEqualChannelsTakesTheMaximum) {
  PolyInput input = flatTrace(3000);
  input.channels[3][1600] = 1000;
  for (const std::size_t channel : {1U, 2U, 3U}) input.channels[channel][1601] = 10;

  const auto averages = balance(input);

  EXPECT_THAT(averages, ElementsAre(0, 10, 0, 0));
}

TEST(BalanceChannels, OnlyAStrictMaximumCounts) {
  PolyInput input = flatTrace(3000);
  for (const std::size_t index : {1600U, 1601U, 1602U}) {
    input.channels[0][index] = 1000;  // 1000, 1000
  }
  input.channels[0][1603] = 10;
  input.channels[0][1604] = 20;  // rises to the end of the trace
  for (std::size_t index = 1605; index < 3000; ++index) {
    input.channels[0][index] = static_cast<std::uint16_t>(index);
  }

  const auto averages = balance(input);

  EXPECT_THAT(averages, Each(0));
}

TEST(BalanceChannels, TheSummedSignalWrapsModulo65536) {
  PolyInput hidden = flatTrace(3000, 5000);  // 20000, 80000 - 65536 = 14464, 20000
  for (auto& channel : hidden.channels) channel[1600] = 20000;
  PolyInput made = flatTrace(3000, 20000);  // 14464, 20000, 14464
  for (auto& channel : made.channels) channel[1600] = 5000;

  EXPECT_THAT(balance(hidden), Each(0));
  EXPECT_THAT(balance(made), ElementsAre(20000, 0, 0, 0));
}

TEST(BalanceChannels, OnlyMaximaFrom1500UpTo2498OrTwoBeforeTheEndCount) {
  struct Case {
    std::size_t pointCount;
    std::size_t maximumIndex;
    float average;
  };
  const Case cases[] = {
      {3000, 1499, 0},  {3000, 1500, 77}, {3000, 2498, 77}, {3000, 2499, 0},
      {2501, 2498, 77}, {2500, 2498, 77}, {2500, 2499, 0},  {2000, 1998, 77},
      {2000, 1999, 0},  {1502, 1500, 77}, {1501, 1500, 0},  {1500, 1499, 0},
  };
  for (const Case& c : cases) {
    PolyInput input = flatTrace(c.pointCount);
    input.channels[2][c.maximumIndex] = 78;
    if (c.maximumIndex + 1 < c.pointCount) input.channels[2][c.maximumIndex + 1] = 77;

    const auto averages = balance(input);

    EXPECT_THAT(averages, ElementsAre(0, 0, c.average, 0))
        << c.pointCount << " points, maximum at " << c.maximumIndex;
  }
}

TEST(BalanceChannels, ATraceOfAtMost1501PointsHasNoAverages) {
  std::mt19937 random(1);
  for (const std::size_t pointCount : {0U, 1U, 1498U, 1499U, 1500U, 1501U}) {
    PolyInput input = randomTrace(random, pointCount);
    const PolyInput untouched = input;

    const auto averages = balance(input);

    EXPECT_THAT(averages, Each(0)) << pointCount;
    EXPECT_EQ(input.channels, untouched.channels) << pointCount;
  }
}

TEST(BalanceChannels, AnAverageIsAWholeNumber) {
  PolyInput input = flatTrace(3000);
  addPeak(input, 0, 1600, 10);
  addPeak(input, 0, 1700, 10);
  addPeak(input, 0, 1800, 12);

  const auto averages = balance(input);

  EXPECT_THAT(averages, ElementsAre(10, 0, 0, 0));  // 32 / 3
}

TEST(BalanceChannels, AllSamplesComeDownToTheSmallestAverage) {
  PolyInput input = flatTrace(3000);
  addPeak(input, 0, 1600, 400);
  addPeak(input, 1, 1700, 100);
  addPeak(input, 2, 1800, 200);
  for (auto& channel : input.channels) channel[0] = 7;
  for (auto& channel : input.channels) channel[2999] = 4003;

  const auto averages = balance(input);

  EXPECT_THAT(averages, ElementsAre(400, 100, 200, 0));
  EXPECT_EQ(input.channels[0][0], 1);  // a quarter of 7
  EXPECT_EQ(input.channels[0][1600], 100);
  EXPECT_EQ(input.channels[0][2999], 1000);
  EXPECT_EQ(input.channels[1][0], 7);  // the channel with the smallest average stays
  EXPECT_EQ(input.channels[1][2999], 4003);
  EXPECT_EQ(input.channels[2][0], 3);  // half of 7
  EXPECT_EQ(input.channels[2][2999], 2001);
  EXPECT_EQ(input.channels[3][0], 7);  // no average: unchanged
  EXPECT_EQ(input.channels[3][2999], 4003);
}

TEST(BalanceChannels, TheFactorIsADouble) {
  // Computed with double arithmetic in another program. Single precision gives 12 and 15.
  struct Case {
    std::uint16_t smallest;
    std::uint16_t scaled;
  };
  for (const Case& c : {Case{13, 13}, Case{15, 14}}) {
    PolyInput input = flatTrace(3000);
    addPeak(input, 0, 1600, 22);
    addPeak(input, 1, 1700, c.smallest);
    input.channels[0][0] = 22;

    balance(input);

    EXPECT_EQ(input.channels[0][0], c.scaled) << c.smallest;
  }
}

TEST(Scaling, AgreesWithThePlainComputationOnRandomTraces) {
  std::mt19937 random(3);
  for (int round = 0; round < 150; ++round) {
    PolyInput input = randomTrace(random, random() % 3000);
    PolyInput plain = input;

    scale(input);
    plainScale(plain);
    ASSERT_EQ(input.channels, plain.channels) << round;

    ASSERT_EQ(balance(input), plainBalance(plain)) << round;
    ASSERT_EQ(input.channels, plain.channels) << round;
  }
}

TEST(Scaling, AgreesWithThePlainComputationForEverySample) {
  for (const int highest : {1, 3, 25, 1000, 3306, 13324, 32640, 65279, 65280, 65535}) {
    PolyInput input;
    for (auto& channel : input.channels) {
      for (int sample = 0; sample <= highest; ++sample) {
        channel.push_back(static_cast<std::uint16_t>(sample));
      }
    }
    PolyInput plain = input;

    scale(input);
    plainScale(plain);

    EXPECT_EQ(input.channels, plain.channels) << highest;
  }
}

}  // namespace
