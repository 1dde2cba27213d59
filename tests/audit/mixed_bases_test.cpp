#include "audit/mixed_bases.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "foundation/channels.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t pointCount = 120;

/// A trace of three As at the samples 20, 60 and 100; more peaks are added by the tests.
class MixedBases : public ::testing::Test {
 protected:
  MixedBases() {
    for (int channel = 0; channel < Quillet::channelCount; ++channel) {
      std::ranges::fill(channels_[channel], std::uint16_t{0});
    }
    for (const int position : {20, 60, 100}) addPeak('A', position, 65280);
  }

  /// A triangle of five samples.
  void addPeak(char letter, int position, int height) {
    const auto samples = channels_[Quillet::channelOf(letter)];
    const auto at = static_cast<std::size_t>(position);
    samples[at] = static_cast<std::uint16_t>(height);
    samples[at - 1] = samples[at + 1] = static_cast<std::uint16_t>(height / 2);
  }

  std::vector<Quillet::MixedBase> found(double ratio = 0.33, std::uint32_t begin = 0,
                                        std::uint32_t end = 3) const {
    return Quillet::mixedBases({.bases = bases_,
                                .positions = positions_.data(),
                                .channels = channels_,
                                .begin = begin,
                                .end = end,
                                .ratio = ratio});
  }
  std::vector<std::uint32_t> mixed(double ratio = 0.33, std::uint32_t begin = 0,
                                   std::uint32_t end = 3) const {
    return Quillet::mixedPositions({.mixed = found(ratio, begin, end)});
  }

  Quillet::Channels channels_{pointCount};
  Tessaly::String bases_ = "AAA";
  std::vector<std::int32_t> positions_{20, 60, 100, pointCount};
};

TEST_F(MixedBases, WithoutASecondPeakNoBaseIsMixed) { EXPECT_THAT(mixed(), IsEmpty()); }

TEST_F(MixedBases, AHighSecondPeakUnderTheCallMakesABaseMixed) {
  addPeak('G', 60, 32640);

  EXPECT_THAT(mixed(), ElementsAre(2U));
}

TEST_F(MixedBases, TheSecondPeakMustReachTheRatio) {
  addPeak('G', 60, 32640);  // half of the called peak

  EXPECT_THAT(mixed(0.5), ElementsAre(2U));
  EXPECT_THAT(mixed(0.50001), IsEmpty());
}

// Between the neighbours are 80 samples, so the second peak may stand 10 away from the call.
TEST_F(MixedBases, TheSecondPeakStandsWithinAnEighthOfTheWayBetweenTheNeighbours) {
  const struct {
    int position;
    bool isMixed;
  } cases[] = {{49, false}, {50, true}, {60, true}, {70, true}, {71, false}};
  for (const auto& row : cases) {
    channels_ = Quillet::Channels(pointCount);
    for (int channel = 0; channel < Quillet::channelCount; ++channel) {
      std::ranges::fill(channels_[channel], std::uint16_t{0});
    }
    for (const int position : {20, 60, 100}) addPeak('A', position, 65280);
    addPeak('C', row.position, 60000);
    EXPECT_EQ(!mixed().empty(), row.isMixed) << row.position;
  }
}

// The first base has 0 before it: 60 samples, 7.5 away. The last has the trace's 120 after it: 60.
TEST_F(MixedBases, TheFirstAndTheLastBaseReachToTheTracesEnds) {
  addPeak('C', 27, 60000);
  addPeak('C', 107, 60000);
  EXPECT_THAT(mixed(), ElementsAre(1U, 3U));

  addPeak('C', 28, 65000);
  addPeak('C', 108, 65000);
  EXPECT_THAT(mixed(), IsEmpty());
}

TEST_F(MixedBases, OnlyBasesInsideTheStretchCount) {
  for (const int position : {20, 60, 100}) addPeak('T', position, 60000);

  EXPECT_THAT(mixed(), ElementsAre(1U, 2U, 3U));
  EXPECT_THAT(mixed(0.33, 1, 2), ElementsAre(2U));
  EXPECT_THAT(mixed(0.33, 1, 1), IsEmpty());
  EXPECT_THAT(mixed(0.33, 2, 99), ElementsAre(3U));
}

TEST_F(MixedBases, OnlyACGTCanBeMixed) {
  for (const int position : {20, 60, 100}) addPeak('T', position, 60000);
  bases_ = "aNA";

  EXPECT_THAT(mixed(), ElementsAre(3U));
}

TEST_F(MixedBases, ABaseWithoutRoomBetweenItsNeighboursIsNotMixed) {
  addPeak('G', 60, 65280);
  positions_ = {60, 60, 60, static_cast<std::int32_t>(pointCount)};
  EXPECT_THAT(mixed(0.33, 1, 2), IsEmpty());

  positions_[0] = 59;
  EXPECT_THAT(mixed(0.33, 1, 2), ElementsAre(2U));
}

TEST_F(MixedBases, AreToldUpToAsManyAsNoReadHas) {
  addPeak('G', 60, 65280);
  const std::size_t length = 3 * (Quillet::mostMixedBases + 9);
  bases_ = std::string(length, 'A').c_str();
  positions_.resize(length);
  for (std::size_t i = 0; i < length; ++i) {  // 50, 60, 70, again and again
    positions_[i] = static_cast<std::int32_t>(50 + 10 * (i % 3));
  }

  const auto positions = mixed(0.33, 0, static_cast<std::uint32_t>(length));

  ASSERT_EQ(positions.size(), Quillet::mostMixedBases);
  EXPECT_EQ(positions.back(), 3 * Quillet::mostMixedBases - 1);
}

TEST_F(MixedBases, PositionsOutsideTheTraceAreNoTrouble) {
  positions_ = {-2147483647 - 1, 2147483647, -1, static_cast<std::int32_t>(pointCount)};

  EXPECT_THAT(mixed(0.0), ::testing::SizeIs(::testing::Le(3U)));
}

TEST_F(MixedBases, TheSecondPeakIsTheHighestAndItsHeightIsMeasuredByTheCalledOne) {
  addPeak('C', 60, 30000);
  addPeak('T', 61, 48960);  // three quarters of the called peak
  addPeak('G', 62, 40000);

  ASSERT_THAT(found(), ::testing::SizeIs(1));
  EXPECT_EQ(found()[0].position, 2U);
  EXPECT_EQ(found()[0].second, 'T');
  EXPECT_EQ(found()[0].ratio, 0.75);
}

// The called peak stands 2 samples beside the called position.
TEST_F(MixedBases, TheCalledHeightIsTheHighestNearTheCall) {
  positions_[1] = 58;
  addPeak('C', 58, 32640);

  ASSERT_THAT(found(), ::testing::SizeIs(1));
  EXPECT_EQ(found()[0].ratio, 0.5);
}

TEST_F(MixedBases, AShoulderOfANeighbourIsNoSecondPeak) {
  const auto rising = channels_[Quillet::channelOf('G')];
  for (std::size_t i = 40; i <= 84; ++i) rising[i] = static_cast<std::uint16_t>(1000 * (i - 39));

  EXPECT_THAT(mixed(), IsEmpty());  // G is at 21000 and rises where A is called
}

// Half a base's distance is 20 samples here. Noise on a flank makes maxima, too.
TEST_F(MixedBases, APeakFallsByATenthOnBothSides) {
  const struct {
    std::uint16_t before;  // what the signal falls to before it rises to a peak of 40000
    bool isMixed;
  } cases[] = {{39000, false}, {36000, false}, {35999, true}, {10000, true}};
  const auto samples = channels_[Quillet::channelOf('G')];
  for (const auto& row : cases) {
    std::fill(samples.begin() + 30, samples.begin() + 60, row.before);
    samples[60] = 40000;
    EXPECT_EQ(!mixed().empty(), row.isMixed) << row.before;
    std::reverse(samples.begin(), samples.end());  // the top is then at 59
    EXPECT_EQ(!mixed().empty(), row.isMixed) << row.before << " on the other side";
    std::reverse(samples.begin(), samples.end());
  }
}

TEST_F(MixedBases, APeakFallsWithinHalfABasesDistance) {
  const auto samples = channels_[Quillet::channelOf('G')];
  std::fill(samples.begin() + 41, samples.begin() + 80, std::uint16_t{40000});
  EXPECT_THAT(mixed(), ElementsAre(2U));

  std::fill(samples.begin() + 30, samples.begin() + 91, std::uint16_t{40000});
  EXPECT_THAT(mixed(), IsEmpty());
}

TEST_F(MixedBases, APeakWithAFlatTopCounts) {
  const auto samples = channels_[Quillet::channelOf('G')];
  for (std::size_t i = 45; i <= 75; ++i) samples[i] = 40000;

  EXPECT_THAT(mixed(), ElementsAre(2U));
}

TEST_F(MixedBases, SignalThatStaysLevelIsNoPeak) {
  std::ranges::fill(channels_[Quillet::channelOf('G')], std::uint16_t{40000});

  EXPECT_THAT(mixed(), IsEmpty());
}

// A blob in one channel or noise in a short one changes the heights of a .poly.
TEST_F(MixedBases, OtherPartsOfTheTraceDoNotCount) {
  addPeak('G', 60, 32640);
  addPeak('G', 40, 65280);
  addPeak('G', 80, 65280);

  EXPECT_THAT(mixed(0.5), ElementsAre(2U));
  EXPECT_THAT(mixed(0.51), IsEmpty());
}

TEST_F(MixedBases, WithoutACalledHeightAnySecondPeakCounts) {
  std::ranges::fill(channels_[Quillet::channelOf('A')], std::uint16_t{0});
  addPeak('G', 60, 10);

  ASSERT_THAT(found(1000), ::testing::SizeIs(1));
  EXPECT_EQ(found()[0].second, 'G');
  EXPECT_GT(found()[0].ratio, 1e300);
}

TEST_F(MixedBases, ThePlaceReachesAtMost32SamplesFarFromTheCall) {
  channels_ = Quillet::Channels(1000);
  for (int channel = 0; channel < Quillet::channelCount; ++channel) {
    std::ranges::fill(channels_[channel], std::uint16_t{0});
  }
  positions_ = {0, 500, 1000, 1000};
  addPeak('A', 500, 60000);
  addPeak('C', 534, 60000);
  EXPECT_THAT(mixed(0.33, 1, 2), IsEmpty());

  addPeak('C', 532, 60000);
  EXPECT_THAT(mixed(0.33, 1, 2), ElementsAre(2U));
}

}  // namespace
