#include "tests/support/instrument_trace.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr int baseCount = 880;

const TraceContents& longTrace() {
  static const TraceContents trace = [] {
    std::string bases = mitochondrialBases(3, baseCount);
    bases.replace(78, 3, "TTT");
    return instrumentTrace({.seed = 5, .bases = bases});
  }();
  return trace;
}

/// The samples of the four channels at a base's position; the called channel is first.
std::vector<int> heightsAt(const TraceContents& trace, std::size_t base) {
  std::vector<int> heights;
  for (const std::vector<int>& channel : trace.channels) {
    heights.push_back(channel[static_cast<std::size_t>(trace.peaks[base])]);
  }
  const std::size_t called = std::string("ACGT").find(trace.bases[base]);
  if (called != std::string::npos) std::swap(heights[0], heights[called]);
  return heights;
}

template <typename Value>
double meanOf(std::size_t begin, std::size_t end, Value value) {
  double sum = 0;
  for (std::size_t i = begin; i < end; ++i) sum += value(i);
  return sum / static_cast<double>(end - begin);
}

TEST(InstrumentTrace, PeaksAreAboutTwelveSamplesApart) {
  const std::vector<int>& peaks = longTrace().peaks;
  const auto distance = [&](std::size_t i) { return peaks[i + 1] - peaks[i]; };

  EXPECT_NEAR(meanOf(100, baseCount - 1, distance), 12.0, 0.3);
  for (std::size_t i = 100; i + 1 < baseCount; ++i) {
    EXPECT_GE(distance(i), 8) << i;
    EXPECT_LE(distance(i), 16) << i;
  }
}

TEST(InstrumentTrace, NoiseIsAFewPercentOfTheCalledPeaks) {
  std::vector<double> shares;
  for (std::size_t i = 120; i < 420; ++i) {
    const std::vector<int> heights = heightsAt(longTrace(), i);
    EXPECT_GT(heights[0], 2 * *std::max_element(heights.begin() + 1, heights.end())) << i;
    shares.push_back(*std::max_element(heights.begin() + 1, heights.end()) / double(heights[0]));
  }

  std::nth_element(shares.begin(), shares.begin() + 150, shares.end());
  EXPECT_GE(shares[150], 0.02);
  EXPECT_LE(shares[150], 0.04);
}

TEST(InstrumentTrace, SignalFadesAndPeaksBroaden) {
  const TraceContents& trace = longTrace();
  const auto height = [&](std::size_t i) { return heightsAt(trace, i)[0]; };
  // Where the letter before and after is another, half a spacing off the peak tells its width.
  const auto shoulderShare = [&](std::size_t begin, std::size_t end) {
    double peaks = 0;
    double shoulders = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const char base = trace.bases[i];
      if (base == trace.bases[i - 1] || base == trace.bases[i + 1]) continue;
      const auto& channel = trace.channels[std::string("ACGT").find(base)];
      const auto centre = static_cast<std::size_t>(trace.peaks[i]);
      peaks += channel[centre];
      shoulders += 0.5 * (channel[centre - 6] + channel[centre + 6]);
    }
    return shoulders / peaks;
  };

  EXPECT_LT(meanOf(780, 880, height), 0.6 * meanOf(200, 300, height));
  EXPECT_NEAR(shoulderShare(200, 300), 0.135, 0.06);  // exp(-0.5 * (6 / 3)^2)
  EXPECT_GT(shoulderShare(780, 870), 0.3);
}

TEST(InstrumentTrace, QualitiesRiseStayAndFall) {
  const auto quality = [](std::size_t i) { return longTrace().qualities[i]; };

  EXPECT_LT(meanOf(0, 20, quality), 10);
  EXPECT_GT(meanOf(150, 550, quality), 52);
  EXPECT_LT(meanOf(700, 750, quality), meanOf(600, 650, quality));
  EXPECT_LT(meanOf(820, 880, quality), 20);
}

TEST(InstrumentTrace, ABlobOfDyeLiesNearBaseEighty) {
  const TraceContents& trace = longTrace();
  const auto lowestC = [&](std::size_t base) {  // from the base before to the one after
    const auto first = trace.channels[1].begin();
    return *std::min_element(first + trace.peaks[base - 1], first + trace.peaks[base + 1]);
  };

  EXPECT_GT(lowestC(79), 60);  // the middle of TTT
  EXPECT_LT(lowestC(60), 30);
  EXPECT_LT(lowestC(100), 30);
}

TEST(InstrumentTrace, AFailedOneHasNoSignalAndLowQualities) {
  const TraceContents trace = failedTrace(1, 300);

  for (const std::vector<int>& channel : trace.channels) {
    EXPECT_LT(*std::ranges::max_element(channel), 250);
  }
  EXPECT_LT(*std::ranges::max_element(trace.qualities), 13);
  EXPECT_GE(*std::ranges::min_element(trace.qualities), 1);
  EXPECT_GT(std::ranges::count(trace.bases, 'N'), 50);
}

}  // namespace
