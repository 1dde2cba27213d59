#include "output/sample_runs.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using Samples = std::vector<std::uint16_t>;

struct Stretch {
  std::int64_t start;
  std::int64_t end;
  std::uint32_t area;
  bool operator==(const Stretch&) const = default;
};

/// The stretches around all positions, by SampleRuns.
std::vector<Stretch> stretchesIn(const Samples& samples) {
  std::vector<std::uint64_t> storage(Quillet::SampleRuns::wordCount(samples.size()), 0x5A5A);
  const Quillet::SampleRuns runs(samples.data(), samples.size(), storage.data());
  std::vector<Stretch> stretches;
  for (std::int64_t position = 0; position <= static_cast<std::int64_t>(samples.size());
       ++position) {
    const std::int64_t start = runs.startBefore(position);
    const std::int64_t end = runs.endFrom(position);
    stretches.push_back({start, end, runs.area(start, end)});
  }
  return stretches;
}

/// The same, computed one sample at a time.
std::vector<Stretch> plainStretchesIn(const Samples& samples) {
  std::vector<Stretch> stretches;
  for (std::size_t position = 0; position <= samples.size(); ++position) {
    std::size_t start = position;
    std::size_t end = position;
    std::uint32_t area = 0;
    while (start > 0 && samples[start - 1] != 0) area += samples[--start];
    while (end < samples.size() && samples[end] != 0) area += samples[end++];
    stretches.push_back({static_cast<std::int64_t>(start), static_cast<std::int64_t>(end), area});
  }
  return stretches;
}

TEST(SampleRuns, ARunReachesFromZeroToZero) {
  const auto stretches = stretchesIn({0, 0, 5, 6, 7, 0, 9, 0});

  for (const std::size_t position : {2U, 3U, 4U}) {
    EXPECT_EQ(stretches[position], (Stretch{2, 5, 18})) << position;
  }
  EXPECT_EQ(stretches[6], (Stretch{6, 7, 9}));
}

TEST(SampleRuns, TheAreaIsThatOfTheRunAlone) {
  Samples samples = {0, 5, 6, 0, 9};
  samples.resize(100, 0);  // far from the end, where samples are added in blocks

  EXPECT_EQ(stretchesIn(samples)[2], (Stretch{1, 3, 11}));
  EXPECT_EQ(stretchesIn({0, 5, 6, 0, 9})[2], (Stretch{1, 3, 11}));
}

TEST(SampleRuns, AtAZeroTheRunBeforeItEnds) {
  EXPECT_EQ(stretchesIn({5, 6, 0, 7})[2], (Stretch{0, 2, 11}));
  EXPECT_EQ(stretchesIn({5, 6, 0, 0})[3], (Stretch{3, 3, 0}));
}

TEST(SampleRuns, OutsideTheChannelTheSamplesAre0) {
  EXPECT_EQ(stretchesIn({5, 6, 7})[1], (Stretch{0, 3, 18}));
  EXPECT_EQ(stretchesIn({5, 6, 7})[3], (Stretch{0, 3, 18}));  // after the last sample
  EXPECT_EQ(stretchesIn({})[0], (Stretch{0, 0, 0}));
}

TEST(SampleRuns, ARunCanHaveAnyLength) {
  for (const std::size_t length : {1U, 7U, 8U, 9U, 63U, 64U, 65U, 127U, 128U, 129U, 500U}) {
    for (const std::size_t start : {0U, 1U, 62U, 63U, 64U, 65U}) {
      Samples samples(start + length + 70, 0);
      std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(start), length, 65535);
      const Stretch expected{static_cast<std::int64_t>(start),
                             static_cast<std::int64_t>(start + length),
                             static_cast<std::uint32_t>(65535 * length)};

      const auto stretches = stretchesIn(samples);

      for (const std::size_t position : {start, start + length / 2, start + length - 1}) {
        EXPECT_EQ(stretches[position], expected)
            << length << " samples from " << start << ", seen from " << position;
      }
    }
  }
}

TEST(SampleRuns, AnAreaWrapsModulo2To32) {
  const Samples samples(65539, 65535);  // 65539 * 65535 is 2^32 + 131069
  std::vector<std::uint64_t> storage(Quillet::SampleRuns::wordCount(samples.size()));
  const Quillet::SampleRuns runs(samples.data(), samples.size(), storage.data());

  EXPECT_EQ(runs.area(0, 65539), 131069U);
}

TEST(SampleRuns, AgreesWithThePlainSearchOnRandomSamples) {
  std::mt19937 random(1);
  for (int round = 0; round < 30; ++round) {
    Samples samples(random() % 400);
    const auto zeroEvery = 2 + random() % 120;
    const auto limit = round % 2 == 0 ? 65536U : 3U;
    for (auto& sample : samples) {
      sample = static_cast<std::uint16_t>(random() % zeroEvery == 0 ? 0 : random() % limit);
    }

    ASSERT_EQ(stretchesIn(samples), plainStretchesIn(samples)) << round;
  }
}

}  // namespace
