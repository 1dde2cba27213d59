#include "output/poly_peaks.h"

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

PolyResult compute(PolyInput& input) {
  Quillet::PolyPeaks polyPeaks;
  return computeWith(polyPeaks, input);
}

/// Like a real trace: humps of random height over a low floor, in one or two channels at a time.
PolyInput randomTrace(std::mt19937& random, std::size_t pointCount) {
  PolyInput input;
  for (auto& channel : input.channels) {
    for (std::size_t i = 0; i < pointCount; ++i) {
      channel.push_back(static_cast<std::uint16_t>(random() % 4 == 0 ? 0 : random() % 9));
    }
  }
  for (std::size_t center = 6; center + 6 < pointCount; center += 8 + random() % 8) {
    const std::size_t called = random() % 4;
    for (const std::size_t channel : {called, random() % 4}) {
      const auto height = static_cast<int>(random() % 16000);
      for (int offset = -5; offset <= 5; ++offset) {
        const auto index = static_cast<std::size_t>(static_cast<int>(center) + offset);
        auto& sample = input.channels[channel][index];
        sample = static_cast<std::uint16_t>(sample + height * (36 - offset * offset) / 36);
      }
    }
    input.bases += random() % 20 == 0 ? 'N' : "ACGT"[called];
    input.peaks.push_back(static_cast<std::int32_t>(center));
  }
  input.peaks.push_back(static_cast<std::int32_t>(pointCount));
  return input;
}

TEST(ChooseSecondPeaks, TheHighestOtherChannelWinsAndTheFirstOfEqualOnes) {
  struct Case {
    char base;
    std::array<std::uint32_t, 4> heights;
    char second;
    std::int32_t position;
  };
  const Case cases[] = {
      {'A', {900, 10, 30, 20}, 'G', 3},
      {'A', {1, 10, 10, 10}, 'C', 2},
      {'C', {10, 900, 10, 5}, 'A', 1},
      {'G', {0, 0, 900, 1}, 'T', 4},
      {'T', {0, 8, 9, 900}, 'G', 3},
      {'T', {0, 0, 0, 900}, 'N', 0},
      {'A', {0, 0, 0, 0}, 'N', 0},
      {'N', {10, 20, 30, 40}, 'N', 0},
      {'a', {10, 20, 30, 40}, 'N', 0},
      {'-', {10, 20, 30, 40}, 'N', 0},
      {'C', {65534, 65535, 65533, 65535}, 'T', 4},
  };
  for (const Case& c : cases) {
    Quillet::PeakTable peaks;
    for (std::size_t channel = 0; channel < 4; ++channel) {
      peaks[channel] = dirtyPeaks(1);
      peaks[channel].positions[0] = static_cast<std::int32_t>(channel) + 1;
      peaks[channel].heights[0] = c.heights[channel];
    }
    Quillet::SecondPeakArrays second{dirtyArray<char>(1), dirtyArray<std::int32_t>(1)};

    Quillet::chooseSecondPeaks(Tessaly::String(c.base), peaks, second);

    EXPECT_EQ(second.bases[0], c.second) << c.base << ' ' << c.heights[0];
    EXPECT_EQ(second.positions[0], c.position) << c.base << ' ' << c.heights[0];
  }
}

TEST(PolyPeaks, ATraceOfZerosHasNoPeaksAndEveryBaseFallsBackToItsPositionWithHeight0) {
  PolyInput input;
  for (auto& channel : input.channels) channel.assign(2600, 0);
  input.bases = "ACGT";
  input.peaks = {500, 1000, 1600, 2000, 2600};

  const PolyResult result = compute(input);

  EXPECT_THAT(input.channels, Each(Each(0)));
  EXPECT_THAT(result.peakPos, ElementsAre(ElementsAre(500, 0, 0, 0), ElementsAre(0, 1000, 0, 0),
                                          ElementsAre(0, 0, 1600, 0), ElementsAre(0, 0, 0, 2000)));
  EXPECT_THAT(result.peakAmp, Each(Each(0)));
  EXPECT_THAT(result.normAmp, Each(Each(0)));
  EXPECT_EQ(result.secondBase, "NNNN");
  EXPECT_THAT(result.secondPos, Each(0));
}

TEST(PolyPeaks, AChannelWithoutAMaximumCannotBecomeTheSecondPeak) {
  PolyInput input;  // equal samples: the called channel falls back, the others stay at 0
  for (auto& channel : input.channels) channel.assign(100, 65280);
  input.bases = "G";
  input.peaks = {50, 70};

  const PolyResult result = compute(input);

  EXPECT_THAT(result.peakPos,
              ElementsAre(ElementsAre(0), ElementsAre(0), ElementsAre(50), ElementsAre(0)));
  EXPECT_THAT(result.peakAmp,
              ElementsAre(ElementsAre(0), ElementsAre(0), ElementsAre(65280), ElementsAre(0)));
  EXPECT_EQ(result.secondBase, "N");
  EXPECT_THAT(result.secondPos, ElementsAre(0));
}

TEST(PolyPeaks, TheRawAmplitudeRangeDoesNotMatter) {
  // Halving is exact, so both traces scale to the same samples.
  std::mt19937 random(6);
  PolyInput loud = randomTrace(random, 3000);
  for (auto& channel : loud.channels) {
    for (std::uint16_t& sample : channel) sample = static_cast<std::uint16_t>(sample & 0xFFFE);
  }
  PolyInput quiet = loud;
  for (auto& channel : quiet.channels) {
    for (std::uint16_t& sample : channel) sample = static_cast<std::uint16_t>(sample / 2);
  }

  EXPECT_EQ(compute(loud), compute(quiet));
  EXPECT_EQ(loud.channels, quiet.channels);
}

TEST(PolyPeaks, AreaAndBalanceComeFromTheRescaledChannels) {
  // Computed by hand: the trace has a quarter of the full range (16320), and channel C is balanced
  // from an average of 800 down to the 400 of channel A.
  PolyInput input;
  for (auto& channel : input.channels) channel.assign(2600, 0);
  input.channels[0][1600] = 101;  // tallied: A, 4 * 100
  input.channels[0][1601] = 100;
  input.channels[1][1700] = 201;  // tallied: C, 4 * 200
  input.channels[1][1701] = 200;
  input.channels[1][299] = 16320;  // C: 65280, balanced to 32640
  input.channels[1][300] = 8160;   // C: 32640, balanced to 16320
  input.bases = "C";
  input.peaks = {300, 700};

  const PolyResult result = compute(input);

  EXPECT_EQ(input.channels[0][1600], 404);
  EXPECT_EQ(input.channels[1][1700], 402);
  EXPECT_EQ(result.peakPos[1][0], 300);
  EXPECT_EQ(result.peakAmp[1][0], 32640U);
  // 800 * (32640 + 16320) / 32640 = 1200; 1200 * 32640 / 16384 = 2390.6
  EXPECT_EQ(result.normAmp[1][0], 2390);
}

TEST(PolyPeaks, WithoutBasesThereAreNoPeaksToHand) {
  std::mt19937 random(7);
  PolyInput input = randomTrace(random, 3000);
  PolyInput plain = input;
  input.bases.clear();

  compute(input);  // must not read the null peaks

  plainScale(plain);
  plainBalance(plain);
  EXPECT_EQ(input.channels, plain.channels);
}

TEST(PolyPeaks, AnEarlierTraceDoesNotChangeTheResult) {
  std::mt19937 random(8);
  Quillet::PolyPeaks used;
  for (const std::size_t pointCount : {3000U, 1600U, 0U, 2400U, 40U, 5000U, 1502U}) {
    PolyInput input = randomTrace(random, pointCount);
    PolyInput again = input;

    EXPECT_EQ(computeWith(used, input), compute(again)) << pointCount;
  }
}

TEST(PolyPeaks, AgreesWithThePlainComputationOnTracesLikeRealOnes) {
  std::mt19937 random(9);
  Quillet::PolyPeaks polyPeaks;
  for (int round = 0; round < 100; ++round) {
    PolyInput input = randomTrace(random, random() % 4000);
    PolyInput plain = input;

    ASSERT_EQ(computeWith(polyPeaks, input), plainPoly(plain)) << round;
    ASSERT_EQ(input.channels, plain.channels) << round;
  }
}

TEST(PolyPeaks, AgreesWithThePlainComputationWhenThePeaksAreNotThoseOfTheTrace) {
  std::mt19937 random(10);
  Quillet::PolyPeaks polyPeaks;
  for (int round = 0; round < 200; ++round) {
    PolyInput input = randomTrace(random, random() % 2700);
    const auto size = static_cast<int>(input.pointCount());
    for (std::int32_t& peak : input.peaks) {
      if (random() % 4 == 0) peak = static_cast<int>(random() % 6000) - 1500;
      if (round % 3 == 0) peak = size - peak;
    }
    PolyInput plain = input;

    ASSERT_EQ(computeWith(polyPeaks, input), plainPoly(plain)) << round;
  }
}

TEST(PolyPeaks, AReleasedLongTraceLeavesTheObjectAsGoodAsNew) {
  std::mt19937 random(18);
  const PolyInput longTrace = randomTrace(random, (std::size_t{1} << 18) + 1);
  const PolyInput shortTrace = randomTrace(random, 2000);

  Quillet::PolyPeaks polyPeaks;
  for (const PolyInput* trace : {&longTrace, &shortTrace, &longTrace}) {
    PolyInput reused = *trace;
    PolyInput fresh = *trace;
    EXPECT_TRUE(computeWith(polyPeaks, reused) == compute(fresh));
    polyPeaks.releaseLongTrace();
  }
}

PolyInput levelTrace(std::size_t pointCount, std::size_t baseCount) {
  PolyInput input;
  for (auto& channel : input.channels) channel.assign(pointCount, 1);
  input.bases.assign(baseCount, 'N');
  input.peaks.assign(baseCount + 1, 0);
  return input;
}

TEST(PolyPeaks, OnlyALongTraceIsReleasedWithAllItsArrays) {
  struct Case {
    std::size_t pointCount;
    std::size_t baseCount;
    bool isReleased;
  };
  const Case cases[] = {
      {std::size_t{1} << 18, std::size_t{1} << 15, false},
      {(std::size_t{1} << 18) + 1, 10, true},
      {10, (std::size_t{1} << 15) + 1, true},
  };
  for (const Case& c : cases) {
    PolyInput input = levelTrace(c.pointCount, c.baseCount);
    Quillet::PolyPeaks polyPeaks;
    computeWith(polyPeaks, input);

    polyPeaks.releaseLongTrace();

    for (int channel = 0; channel < 4; ++channel) {
      EXPECT_EQ(polyPeaks.channel(channel).positions == nullptr, c.isReleased);
      EXPECT_EQ(polyPeaks.channel(channel).heights == nullptr, c.isReleased);
      EXPECT_EQ(polyPeaks.channel(channel).normalisedHeights == nullptr, c.isReleased);
    }
    EXPECT_EQ(polyPeaks.secondPeaks().bases == nullptr, c.isReleased);
    EXPECT_EQ(polyPeaks.secondPeaks().positions == nullptr, c.isReleased);
  }
}

}  // namespace
