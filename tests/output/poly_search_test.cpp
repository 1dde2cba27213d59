#include <algorithm>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "output/poly_stages.h"
#include "tests/output/plain_poly.h"
#include "tests/output/poly_arrays.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr std::int32_t largestInteger = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallestInteger = std::numeric_limits<std::int32_t>::min();

PolyResult search(PolyInput& input) {
  Quillet::Channels channels = channelsOf(input);
  const Tessaly::String bases = basesOf(input);
  std::vector<std::int16_t> maxima(4 * input.channels[0].size(), 0x5BCD);
  Quillet::PeakTable peaks;
  for (Quillet::ChannelPeakArrays& channel : peaks) channel = dirtyPeaks(input.bases.size());

  Quillet::findPeaks({channels, bases, input.peaks.data()}, maxima.data(), peaks);

  PolyResult result;
  for (std::size_t channel = 0; channel < 4; ++channel) {
    result.peakPos[channel] = vectorOf(peaks[channel].positions, input.bases.size());
    result.peakAmp[channel] = vectorOf(peaks[channel].heights, input.bases.size());
  }
  return result;
}

struct Found {
  std::int32_t position;
  std::uint32_t height;
  bool operator==(const Found&) const = default;
};

/// The result for base `base` in channel A of a trace with these samples in A and only N called.
Found findInA(const std::vector<std::uint16_t>& samples, const std::vector<std::int32_t>& peaks,
              std::size_t base) {
  PolyInput input;
  input.channels.fill(std::vector<std::uint16_t>(samples.size(), 0));
  input.channels[0] = samples;
  input.bases.assign(peaks.size() - 1, 'N');
  input.peaks = peaks;
  const PolyResult result = search(input);
  return {result.peakPos[0][base], result.peakAmp[0][base]};
}

std::vector<std::uint16_t> spikeAt(std::size_t index, std::size_t count, std::uint16_t height) {
  std::vector<std::uint16_t> samples(count, 0);
  samples[index] = height;
  return samples;
}

constexpr Found nothing{0, 0};

TEST(FindPeaks, ThePositionIsTheIndexAfterTheMaximum) {
  EXPECT_EQ(findInA(spikeAt(9, 20, 500), {10, 20}, 0), (Found{10, 500}));
}

TEST(FindPeaks, ARangeOfAnyLengthGivesItsFirstHighestMaximum) {
  std::vector<std::size_t> lengths(20);
  std::iota(lengths.begin(), lengths.end(), std::size_t{1});
  lengths.push_back(40000);  // far longer than a range that is searched in lanes
  for (const std::size_t length : lengths) {
    // The peaks 0, 20 and this one make the range of base 1 start at 11.
    const auto nextPeak = static_cast<std::int32_t>(2 * (11 + length) - 20);
    const std::size_t first = 11;
    const std::size_t last = first + length - 1;
    for (const std::size_t index : {first, (first + last) / 2, last}) {
      std::vector<std::uint16_t> samples(last + 10, 0);
      samples[first - 2] = samples[last + 2] = 900;  // outside
      samples[index] = 500;
      // Later maxima of the same height, and lower ones, do not count.
      for (std::size_t k = index + 2; k <= last; k += 2) samples[k] = k % 4 == 0 ? 500 : 499;
      for (std::size_t k = first; k + 2 <= index; k += 2) samples[k] = 499;
      const auto position = static_cast<std::int32_t>(index + 1);

      const Found found = findInA(samples, {0, 20, nextPeak}, 1);

      EXPECT_EQ(found, (Found{position, 500})) << length << ", " << index;
    }
  }
}

TEST(FindPeaks, AMaximumStandsMoreThan3AboveBothNeighboursTogether) {
  struct Case {
    std::uint16_t left;
    std::uint16_t sample;
    std::uint16_t right;
    bool isMaximum;
  };
  const Case cases[] = {
      {100, 101, 100, false},      {100, 102, 101, false},       {100, 102, 100, true},
      {101, 103, 101, true},       {101, 103, 102, false},       {99, 102, 102, false},
      {98, 102, 102, true},        {200, 102, 0, true},          {201, 102, 0, false},
      {65535, 65535, 65531, true}, {65535, 65535, 65532, false}, {65534, 65535, 65534, false},
      {65533, 65535, 65533, true}, {0, 65535, 65535, true},
  };
  for (const Case& c : cases) {
    // The range has only the three samples, so only the one in the middle can be the maximum.
    const Found found = findInA({0, 0, c.left, c.sample, c.right, 0, 0}, {1, 3, 5, 7}, 1);

    EXPECT_EQ(found, c.isMaximum ? (Found{4, c.sample}) : nothing)
        << c.left << ' ' << c.sample << ' ' << c.right;
  }
}

TEST(FindPeaks, AShoulderOnASlopeCountsAsAMaximum) {
  EXPECT_EQ(findInA({0, 0, 90, 80, 10, 0, 0}, {1, 3, 5, 7}, 1), (Found{4, 80}));
}

TEST(FindPeaks, TheHighestMaximumWinsAndTheFirstOfEqualOnes) {
  EXPECT_EQ(findInA({0, 50, 0, 70, 0, 70, 0, 60, 0, 0}, {0, 18, 20}, 0), (Found{4, 70}));
}

TEST(FindPeaks, ARangeReachesFromMidwayToMidwayWithoutItsEnds) {
  struct Case {
    std::size_t maximumIndex;
    bool isFound;
  };
  // Base 1 of the peaks 10, 21, 31: from 15 to 26.
  for (const Case& c : {Case{15, false}, Case{16, true}, Case{25, true}, Case{26, false}}) {
    const Found found = findInA(spikeAt(c.maximumIndex, 40, 9), {10, 21, 31, 40}, 1);

    EXPECT_EQ(found.height != 0, c.isFound) << c.maximumIndex;
  }
}

TEST(FindPeaks, TheFirstRangeBeginsAtHalfTheFirstPeak) {
  for (std::size_t index : {4U, 5U, 6U}) {  // the peak 11: from 5 on
    EXPECT_EQ(findInA(spikeAt(index, 40, 9), {11, 30}, 0).height != 0, index == 6) << index;
  }
}

TEST(FindPeaks, MidwayIsTruncatedTowardZero) {
  // (-3 + 2) / 2 is 0, so the range starts at 0 and its first maximum can be at 1. -1 / 2 is 0 too.
  EXPECT_EQ(findInA(spikeAt(0, 10, 9), {-3, 2, 10}, 1), nothing);
  EXPECT_EQ(findInA(spikeAt(1, 10, 9), {-3, 2, 10}, 1), (Found{2, 9}));
  EXPECT_EQ(findInA(spikeAt(0, 10, 9), {-1, 10}, 0), nothing);
}

TEST(FindPeaks, SamplesOutsideTheTraceAre0) {
  EXPECT_EQ(findInA(spikeAt(0, 10, 9), {-4, 10}, 0), (Found{1, 9}));
  EXPECT_EQ(findInA(spikeAt(9, 10, 9), {5, 20}, 0), (Found{10, 9}));
  EXPECT_EQ(findInA(spikeAt(9, 10, 9), {5, 15}, 0), (Found{10, 9}));
  EXPECT_EQ(findInA({9}, {-5, 7}, 0), (Found{1, 9}));
  EXPECT_EQ(findInA({3, 3}, {-5, 9}, 0), nothing);  // 2 * 3 - 0 - 3 = 3
  EXPECT_EQ(findInA({4, 4}, {-5, 9}, 0), (Found{1, 4}));
  EXPECT_EQ(findInA({}, {-5, 9}, 0), nothing);
}

TEST(FindPeaks, SumsOfFarPositionsDoNotWrap) {
  const auto samples = spikeAt(5, 10, 9);
  const int far = 1000000000;

  EXPECT_EQ(findInA(samples, {smallestInteger, largestInteger, largestInteger}, 1), (Found{6, 9}));
  EXPECT_EQ(findInA(samples, {smallestInteger, smallestInteger, 30}, 1), nothing);
  // The lower end is 1573741823. A sum of 32 bits would wrap and make it negative.
  EXPECT_EQ(findInA(samples, {largestInteger, far, 10 - far}, 1), nothing);
  EXPECT_EQ(findInA(samples, {largestInteger, largestInteger, largestInteger}, 1), nothing);
}

TEST(FindPeaks, ARangeThatEndsBeforeItBeginsIsEmpty) {
  EXPECT_EQ(findInA(spikeAt(5, 10, 9), {2, 9, 2, 9, 1}, 2), nothing);
  EXPECT_EQ(findInA(spikeAt(5, 10, 9), {9, 5, 1}, 1), nothing);
}

TEST(FindPeaks, OnlyTheCalledChannelFallsBackToItsOwnPosition) {
  PolyInput input;  // equal samples, no maximum anywhere
  input.channels = {{std::vector<std::uint16_t>(40, 11), std::vector<std::uint16_t>(40, 12),
                     std::vector<std::uint16_t>(40, 13), std::vector<std::uint16_t>(40, 14)}};
  input.bases = "ACGT";
  input.peaks = {8, 16, 24, 32, 38};

  const PolyResult result = search(input);

  EXPECT_THAT(result.peakPos, ElementsAre(ElementsAre(8, 0, 0, 0), ElementsAre(0, 16, 0, 0),
                                          ElementsAre(0, 0, 24, 0), ElementsAre(0, 0, 0, 32)));
  EXPECT_THAT(result.peakAmp, ElementsAre(ElementsAre(11, 0, 0, 0), ElementsAre(0, 12, 0, 0),
                                          ElementsAre(0, 0, 13, 0), ElementsAre(0, 0, 0, 14)));
}

TEST(FindPeaks, OtherLettersThanUpperCaseACGTDoNotFallBack) {
  PolyInput input;
  input.channels.fill(std::vector<std::uint16_t>(40, 11));
  input.bases = "Nac-";
  input.peaks = {8, 16, 24, 32, 38};

  const PolyResult result = search(input);

  EXPECT_THAT(result.peakPos, Each(Each(0)));
  EXPECT_THAT(result.peakAmp, Each(Each(0)));
}

TEST(FindPeaks, AFallBackOutsideTheTraceKeepsItsPositionWithHeight0) {
  PolyInput input;
  // So low that the ends of the trace, next to a 0, are no maxima either.
  input.channels.fill(std::vector<std::uint16_t>(40, 3));
  input.bases = "AAAA";
  input.peaks = {40, -1, largestInteger, smallestInteger, 38};

  const PolyResult result = search(input);

  EXPECT_THAT(result.peakPos[0], ElementsAre(40, -1, largestInteger, smallestInteger));
  EXPECT_THAT(result.peakAmp[0], Each(0));
}

/// Peaks over `pointCount` samples, of a kind from ordinary to hostile.
std::vector<std::int32_t> layPeaks(int kind, std::size_t count, int pointCount,
                                   std::mt19937& random) {
  const auto anywhere = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<std::uint32_t>(high - low + 1));
  };
  std::vector<std::int32_t> peaks(count);
  for (std::size_t i = 0; i < count; ++i) {
    const bool inFirstHalf = i % 4 < 2;  // 0, 0, N, N, 0, 0: the widest ranges
    const std::int32_t kinds[] = {
        anywhere(0, pointCount),
        anywhere(0, pointCount),
        anywhere(-2 * pointCount, 3 * pointCount),
        inFirstHalf ? 0 : pointCount,
        inFirstHalf ? -pointCount : 2 * pointCount,
        i % 2 == 0 ? 0 : pointCount,
        pointCount / 2,
    };
    peaks[i] = kinds[kind];
  }
  if (kind == 0) std::sort(peaks.begin(), peaks.end());
  return peaks;
}
constexpr int peakKindCount = 7;

PolyInput randomInput(int kind, std::mt19937& random) {
  PolyInput input;
  const int pointCount = static_cast<int>(random() % 300);
  const std::uint32_t limit = random() % 2 == 0 ? 12 : 65536;  // many equal samples, or few
  for (auto& channel : input.channels) {
    for (int i = 0; i < pointCount; ++i) {
      channel.push_back(static_cast<std::uint16_t>(random() % limit));
    }
  }
  for (std::size_t n = random() % 120; n > 0; --n) input.bases += "ACGTNa"[random() % 6];
  input.peaks = layPeaks(kind, input.bases.size() + 1, pointCount, random);
  return input;
}

TEST(FindPeaks, AgreesWithThePlainWalkWhateverThePeaks) {
  std::mt19937 random(4);
  for (int round = 0; round < 60 * peakKindCount; ++round) {
    PolyInput input = randomInput(round % peakKindCount, random);

    PolyResult plain;
    plainSearch(input, plain);

    ASSERT_EQ(search(input), plain) << "round " << round;
  }
}

TEST(FindPeaks, WideRangesAtEveryBlockBoundaryAgreeWithThePlainWalk) {
  std::mt19937 random(5);
  PolyInput input;
  for (auto& channel : input.channels) {
    for (int i = 0; i < 200; ++i) channel.push_back(static_cast<std::uint16_t>(random() % 50));
  }
  for (int low = -3; low < 203; low += 3) {  // the base between has the range low .. high
    for (int high = low; high < 203; high += 5) {
      for (const int peak : {low, low, high, high}) input.peaks.push_back(peak);
    }
  }
  input.bases.assign(input.peaks.size() - 1, 'G');

  PolyResult plain;
  plainSearch(input, plain);

  EXPECT_EQ(search(input), plain);
}

TEST(FindPeaks, OverlappingRangesTakeNoMoreThanLogarithmicTime) {
  constexpr int pointCount = 1000000;
  PolyInput input;
  input.channels.fill(spikeAt(pointCount / 4, pointCount, 9));
  input.channels[1] = spikeAt(3 * pointCount / 4, pointCount, 9);
  for (int i = 0; i < pointCount; ++i) input.peaks.push_back(i % 4 < 2 ? 0 : pointCount);
  input.peaks.push_back(0);
  input.bases.assign(pointCount, 'N');

  const std::clock_t start = std::clock();
  const PolyResult result = search(input);
  const auto seconds = (std::clock() - start) / CLOCKS_PER_SEC;

  // The ranges of every four bases: N/2..0, 0..N/2, N/2..N, N..N/2.
  const auto last = static_cast<std::size_t>(pointCount) - 4;
  EXPECT_EQ(result.peakPos[0][last + 1], pointCount / 4 + 1);
  EXPECT_EQ(result.peakPos[1][last + 1], 0);
  EXPECT_EQ(result.peakPos[0][last + 2], 0);
  EXPECT_EQ(result.peakPos[1][last + 2], 3 * pointCount / 4 + 1);
  EXPECT_EQ(result.peakPos[0][last + 3], 0);
  EXPECT_EQ(result.peakPos[1][last + 3], 0);
  // A search sample by sample would take 10^12 steps, which is minutes.
  EXPECT_LT(seconds, 40);
}

}  // namespace
