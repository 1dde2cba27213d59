#include "report/trace_picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/channels.h"
#include "tests/report/made_rows.h"
#include "tests/report/picture_levels.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Samples = std::vector<std::uint16_t>;

/// What a trace file holds. Without positions all calls stand at 0.
struct MadeTrace {
  std::array<Samples, 4> channels = {};
  std::string bases = {};
  std::vector<std::uint8_t> qualities = {};
  std::vector<std::uint32_t> positions = {};

  Quillet::TraceContent content() const {
    std::vector<std::uint8_t> stored = qualities;
    stored.resize(bases.size());
    Quillet::TraceContent content = contentOf(bases, stored);
    content.channels = Quillet::Channels(static_cast<std::uint32_t>(channels[0].size()));
    for (int channel = 0; channel < Quillet::channelCount; ++channel) {
      std::ranges::copy(channels[static_cast<std::size_t>(channel)],
                        content.channels[channel].begin());
    }
    std::ranges::copy(positions, content.calls.peaks.get());
    return content;
  }
};

/// A picture, read with code of the test's own.
struct Picture {
  std::vector<std::uint32_t> head;
  std::array<std::vector<int>, 4> levels;
  std::string bases;
  std::vector<int> qualities;
  std::vector<long> positions;
  std::string seconds;
  std::vector<int> percents;
  std::string resultBases;
  std::vector<int> resultQualities;
  std::vector<long> resultPositions;
};

class Bytes {
 public:
  explicit Bytes(const std::string& bytes) : bytes_(bytes) {}

  int next() { return static_cast<unsigned char>(bytes_.at(place_++)); }
  std::uint32_t word() {
    const auto low = static_cast<std::uint32_t>(next() + 256 * next());
    return low + 65536U * static_cast<std::uint32_t>(next() + 256 * next());
  }
  std::vector<int> list(std::size_t count) {
    std::vector<int> values;
    while (values.size() < count) values.push_back(next());
    return values;
  }
  std::string text(std::size_t count) {
    std::string values;
    while (values.size() < count) values += static_cast<char>(next());
    return values;
  }
  std::vector<long> positions(std::size_t count) {
    const std::vector<int> low = list(count);
    const std::vector<int> high = list(count);
    std::vector<long> values;
    long position = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const int difference = low[i] + 256 * high[i];
      position += difference < 32768 ? difference : difference - 65536;
      values.push_back(position);
    }
    return values;
  }
  bool isAtEnd() const { return place_ == bytes_.size(); }

 private:
  const std::string& bytes_;
  std::size_t place_ = 0;
};

Picture read(const std::string& bytes) {
  Bytes rest(bytes);
  Picture picture;
  while (picture.head.size() < 8) picture.head.push_back(rest.word());
  for (std::vector<int>& levels : picture.levels) {
    levels = levelsOf(rest.list(picture.head[1]));
  }
  picture.bases = rest.text(picture.head[4]);
  picture.qualities = rest.list(picture.head[4]);
  picture.positions = rest.positions(picture.head[4]);
  picture.seconds = rest.text(picture.head[5]);
  picture.percents = rest.list(picture.head[5]);
  if (picture.head[7] == 1) {
    picture.resultBases = rest.text(picture.head[6]);
    picture.resultQualities = rest.list(picture.head[6]);
    picture.resultPositions = rest.positions(picture.head[6]);
  }
  if (!rest.isAtEnd()) throw std::runtime_error("more bytes than the head says");
  return picture;
}

std::string bytesOf(const MadeTrace& trace, const Quillet::PhdResult* result = nullptr) {
  const Quillet::TraceContent content = trace.content();
  const Quillet::SampleRow row = rowOf("a", Quillet::SampleState::differs);
  return Quillet::tracePicture({.row = row, .content = &content, .result = result}).bytes;
}

Picture pictureOf(const MadeTrace& trace) { return read(bytesOf(trace)); }

/// A trace of 30 As, one at each sample; the heights are the samples.
MadeTrace calledAt(const Samples& heights) {
  MadeTrace trace;
  trace.channels.fill(Samples(heights.size()));
  trace.channels[0] = heights;
  trace.bases = std::string(heights.size(), 'A');
  for (std::uint32_t i = 0; i < heights.size(); ++i) trace.positions.push_back(i);
  return trace;
}

/// The scale of a trace whose trim range is empty.
Quillet::PictureScale scaleOf(const MadeTrace& trace) {
  return Quillet::pictureScale(trace.content(), 0, 0);
}

Samples rising(int count, int first, int step) {
  Samples samples;
  for (int i = 0; i < count; ++i) samples.push_back(static_cast<std::uint16_t>(first + i * step));
  return samples;
}

}  // namespace

// Four of the five Ts are 100, and so is their 99th percentile: level 255 stands for 200.
TEST(TracePicture, HoldsEverySecondSampleInLevels) {
  const MadeTrace trace{.channels = {Samples{0, 9, 20, 9, 40}, Samples{1, 0, 0, 0, 1},
                                     Samples{39, 7, 38, 7, 0}, Samples{100, 100, 100, 100, 500}}};

  const Picture picture = pictureOf(trace);

  EXPECT_THAT(picture.head, ElementsAre(5, 3, 200, 200, 0, 0, 0, 0));
  EXPECT_THAT(picture.levels[0], ElementsAre(0, 26, 51));      // 0, 25.5, 51
  EXPECT_THAT(picture.levels[1], ElementsAre(1, 0, 1));        // 1.275, 0, 1.275
  EXPECT_THAT(picture.levels[2], ElementsAre(50, 48, 0));      // 49.7, 48.45, 0
  EXPECT_THAT(picture.levels[3], ElementsAre(128, 128, 255));  // 127.5, 127.5, 637.5
}

TEST(TracePicture, IsTheBytesThatItsTableTells) {
  const MadeTrace trace{
      .channels = {Samples{10, 0, 5}, Samples{0, 0, 0}, Samples{0, 0, 10}, Samples{2, 2, 2}},
      .bases = "Ct",
      .qualities = {7, 250},
      .positions = {300, 1}};
  const Quillet::PhdResult result{.bases = "N", .qualities = {20}, .positions = {258}};

  const std::string bytes = bytesOf(trace, &result);

  // The 99th percentile of three samples is the second: 5 in A, 0 in G. Level 255 is 10.
  const std::vector<int> expected{3,   0,   0, 0,    // samples
                                  2,   0,   0, 0,    // kept
                                  10,  0,   0, 0,    // top
                                  10,  0,   0, 0,    // in sight
                                  2,   0,   0, 0,    // bases
                                  0,   0,   0, 0,    // mixed
                                  1,   0,   0, 0,    // bases of the result
                                  1,   0,   0, 0,    // there is a result
                                  255, 129,          // A: 255, 128
                                  0,   0,            // C
                                  0,   255,          // G
                                  51,  205,          // T: 51 after 102 was expected
                                  'C', 't', 7, 250,  //
                                  44,  213,          // low bytes of 300 and -299
                                  1,   254,          // high bytes
                                  'N', 20,  2, 1};
  EXPECT_THAT(Bytes(bytes).list(bytes.size()), ElementsAreArray(expected));
}

// Level 255 stands for 510, as all Ts are 255.
TEST(TracePicture, HoldsLevelsLessWhatTheOnesBeforeLetExpect) {
  MadeTrace trace;
  trace.channels = {Samples{20, 0, 40, 0, 100, 0, 60, 0, 0}, Samples{2, 0, 8, 0, 18, 0, 18, 0, 18},
                    Samples(9), Samples(9, 255)};

  const std::string bytes = bytesOf(trace);

  const std::vector<int> expected{
      10, 0, 25, 211, 0,  // 10, 20, 50, 30, 0 where 0, 20, 25, 75, -5 are expected
      1,  2, 3,  253, 3,  // 1, 4, 9, 9, 9 where 0, 2, 6.5, 12.5, 6.5 are
      0,  0, 0,  0,   0,  //
  };
  const std::vector<int> all = Bytes(bytes).list(bytes.size());
  EXPECT_THAT(std::vector<int>(all.begin() + 32, all.begin() + 47), ElementsAreArray(expected));
}

TEST(TracePicture, KeepsTheLastOfAnOddNumberOfSamples) {
  for (const std::uint32_t count : {1U, 2U, 3U, 4U, 7U}) {
    const MadeTrace trace{
        .channels = {Samples(count), Samples(count), Samples(count), Samples(count)}};
    const Picture picture = pictureOf(trace);
    EXPECT_EQ(picture.head[0], count);
    EXPECT_EQ(picture.head[1], (count + 1) / 2);
    EXPECT_THAT(picture.levels[3], Each(0));
  }
}

// Of 30 heights from 100 to 390 the 16th is 250.
TEST(TracePicture, ReachesToFourMediansOfTheCalledHeights) {
  const Picture picture = pictureOf(calledAt(rising(30, 100, 10)));

  EXPECT_EQ(picture.head[2], 1000U);
  EXPECT_EQ(picture.head[3], 625U);
  EXPECT_EQ(picture.levels[0].front(), 26);  // 25.5
  EXPECT_EQ(picture.levels[0].back(), 97);   // of 380: 96.9
}

TEST(PictureScale, RoundsWhatIsInSightUp) {
  const Quillet::PictureScale scale = scaleOf(calledAt(Samples(20, 3)));

  EXPECT_EQ(scale.top, 12U);
  EXPECT_EQ(scale.inSight, 8U);  // 7.5
}

TEST(PictureScale, AsksTheCalledChannelOfEachBase) {
  MadeTrace trace;
  trace.channels = {Samples(40, 100), Samples(40, 200), Samples(40, 300), Samples(40, 400)};
  trace.bases =
      std::string(5, 'A') + std::string(5, 'c') + std::string(9, 'G') + std::string(5, 't');

  EXPECT_EQ(scaleOf(trace).top, 1200U);  // 5, 5, 9, 5: the 13th is a G's
}

// The noise after the trim range is a tenth as high, and there is more of it.
TEST(PictureScale, AsksTheTrimRangeWhenThatHasTwentyPeaks) {
  Samples heights(50, 30);
  std::fill(heights.begin() + 5, heights.begin() + 25, 300);
  const Quillet::TraceContent content = calledAt(heights).content();

  EXPECT_EQ(Quillet::pictureScale(content, 5, 25).top, 1200U);
  EXPECT_EQ(Quillet::pictureScale(content, 5, 25).inSight, 750U);
  EXPECT_EQ(Quillet::pictureScale(content, 5, 24).top, 120U);
  EXPECT_EQ(Quillet::pictureScale(content, 30, 999).top, 120U);
  EXPECT_EQ(Quillet::pictureScale(content, 60, 5).top, 120U);
}

TEST(TracePicture, HasTheScaleOfTheTrimRange) {
  Samples heights(50, 30);
  std::fill(heights.begin() + 5, heights.begin() + 25, 300);
  const Quillet::TraceContent content = calledAt(heights).content();
  Quillet::SampleRow row = rowOf("a", Quillet::SampleState::converted);
  row.figures = Quillet::CallFigures{};
  row.figures->trimStart = 5;
  row.figures->trimEnd = 25;

  const Picture picture =
      read(Quillet::tracePicture({.row = row, .content = &content, .result = nullptr}).bytes);

  EXPECT_EQ(picture.head[2], 1200U);
  EXPECT_EQ(picture.head[3], 750U);
}

// Only 19 peaks are called inside the trace, so that all samples tell: the highest is 50.
TEST(PictureScale, CountsOnlyACGTInsideTheTrace) {
  MadeTrace trace = calledAt(Samples(24, 50));
  EXPECT_EQ(scaleOf(trace).top, 200U);
  trace.bases[3] = 'N';
  trace.bases[4] = '-';
  trace.positions[5] = 24;
  trace.positions[6] = 0xFFFFFFFF;
  EXPECT_EQ(scaleOf(trace).top, 200U);
  trace.positions[7] = 0x80000000;

  EXPECT_EQ(scaleOf(trace).top, 100U);
  EXPECT_EQ(scaleOf(trace).inSight, 100U);
}

// One sample of a hundred may be higher than the 99th percentile.
TEST(PictureScale, WithoutPeaksIsTwiceThe99thPercentileOfTheHighestChannel) {
  MadeTrace trace;
  trace.channels = {Samples(101, 7), rising(101, 0, 10), Samples(101, 30), Samples(101, 0)};
  trace.channels[2][50] = 60000;

  EXPECT_EQ(scaleOf(trace).top, 1980U);
}

TEST(PictureScale, OfPeaksWithoutHeightIsThatOfATraceWithoutPeaks) {
  MadeTrace trace = calledAt(Samples(30, 0));
  trace.channels[2] = Samples(30, 8);

  EXPECT_EQ(scaleOf(trace).top, 16U);
}

TEST(PictureScale, IsNeverNothing) {
  for (const MadeTrace& trace : {MadeTrace(), calledAt(Samples(30, 0))}) {
    EXPECT_EQ(scaleOf(trace).top, 1U);
    EXPECT_EQ(scaleOf(trace).inSight, 1U);
  }
}

TEST(TracePicture, HoldsTheHighestSamples) {
  const Picture picture = pictureOf(calledAt(Samples(30, 65535)));

  EXPECT_EQ(picture.head[2], 262140U);
  EXPECT_EQ(picture.head[3], 163838U);       // 163837.5
  EXPECT_THAT(picture.levels[0], Each(64));  // 63.75
}

TEST(TracePicture, HoldsTheCallsAsStored) {
  const MadeTrace trace{.channels = {},
                        .bases = std::string("Ac\0N-", 5),
                        .qualities = {0, 62, 255, 127, 128},
                        .positions = {0, 12, 11, 40000, 40012}};

  const Picture picture = pictureOf(trace);

  EXPECT_EQ(picture.head[4], 5U);
  EXPECT_EQ(picture.bases, trace.bases);
  EXPECT_THAT(picture.qualities, ElementsAre(0, 62, 255, 127, 128));
  EXPECT_THAT(picture.positions, ElementsAre(0, 12, 11, 32778, 40012));
}

TEST(TracePicture, CatchesUpOnJumpsThatDoNotFit) {
  const MadeTrace trace{.channels = {},
                        .bases = "AAAAAAA",
                        .qualities = {},
                        .positions = {100'000, 100'001, 100'002, 100'003, 5, 6, 0xFFFFFFFF}};

  EXPECT_THAT(pictureOf(trace).positions,
              ElementsAre(32767, 65534, 98301, 100'003, 67235, 34467, 1699));
}

TEST(TracePicture, HoldsOnlyBytesThatFitAMillionBases) {
  MadeTrace trace;
  trace.bases = std::string(1'000'000, 'A');

  EXPECT_EQ(bytesOf(trace).size(), 32U + 4'000'000U);
}

TEST(TracePicture, HoldsTheSecondPeakOfEachMixedBase) {
  const MadeTrace trace{.channels = {Samples(9), Samples(9), Samples(9), Samples(9)},
                        .bases = "AAAAA",
                        .qualities = {40, 40, 40, 40, 40},
                        .positions = {1, 3, 5, 7, 8}};
  const Quillet::TraceContent content = trace.content();
  Quillet::SampleRow row = rowOf("a", Quillet::SampleState::converted);
  row.figures = Quillet::CallFigures{};
  row.figures->mixed = {{2, 'C', 0.5}, {3, 'T', 0.3358}, {4, 'G', 3.25}, {5, 'C', 1.205}};
  const double infinite = std::numeric_limits<double>::infinity();
  row.figures->mixed.push_back({6, 'G', infinite});

  const Picture picture =
      read(Quillet::tracePicture({.row = row, .content = &content, .result = nullptr}).bytes);

  EXPECT_EQ(picture.head[5], 5U);
  EXPECT_EQ(picture.seconds, "CTGCG");
  EXPECT_THAT(picture.percents, ElementsAre(50, 34, 255, 121, 255));
}

TEST(TracePicture, HoldsTheResultWhereItSaysSomethingElse) {
  const Quillet::PhdResult result{.bases = "gattaca",
                                  .qualities = {-3, 0, 40, 255, 256, 2147483647, -2147483647 - 1},
                                  .positions = {5, 17, -12, 40000, 0, 2147483647, 7}};
  const MadeTrace trace{.channels = {Samples(3), Samples(3), Samples(3), Samples(3)},
                        .bases = "AC"};

  const Picture picture = read(bytesOf(trace, &result));

  EXPECT_EQ(picture.head[6], 7U);
  EXPECT_EQ(picture.head[7], 1U);
  EXPECT_EQ(picture.bases, "AC");
  EXPECT_EQ(picture.resultBases, "gattaca");
  EXPECT_THAT(picture.resultQualities, ElementsAre(0, 0, 40, 255, 255, 255, 0));
  EXPECT_THAT(picture.resultPositions, ElementsAre(5, 17, -12, 32755, 0, 32767, 7));
}

TEST(TracePicture, OfAnOrphanIsItsResult) {
  const Quillet::SampleRow row = orphanRow();
  const Quillet::PhdResult result{.bases = "A", .qualities = {9}, .positions = {4}};

  const Quillet::TracePicture picture =
      Quillet::tracePicture({.row = row, .content = nullptr, .result = &result});

  EXPECT_THAT(read(picture.bytes).head, ElementsAre(0, 0, 1, 1, 0, 0, 1, 1));
  EXPECT_EQ(read(picture.bytes).resultBases, "A");
}

TEST(TracePicture, OfNothingIsEmpty) {
  const Quillet::SampleRow row = orphanRow();
  const Quillet::TraceContent content;
  for (const Quillet::TraceContent* each : {&content, static_cast<decltype(&content)>(nullptr)}) {
    const Quillet::TracePicture picture =
        Quillet::tracePicture({.row = row, .content = each, .result = nullptr});
    EXPECT_EQ(picture.bytes, "");
    EXPECT_THAT(picture.cuts, IsEmpty());
  }
}

// 32 bytes of head and 4 of samples; then bases, qualities, and two planes of positions.
TEST(TracePicture, IsCutWhereAnotherKindOfBytesBegins) {
  const MadeTrace trace{.channels = {Samples(1), Samples(1), Samples(1), Samples(1)},
                        .bases = "ACG"};
  const Quillet::TraceContent content = trace.content();
  const Quillet::SampleRow row = rowOf("a", Quillet::SampleState::differs);
  const Quillet::PhdResult result{.bases = "AC", .qualities = {9, 9}, .positions = {4, 5}};

  const Quillet::TracePicture picture =
      Quillet::tracePicture({.row = row, .content = &content, .result = &result});

  EXPECT_THAT(picture.cuts, ElementsAre(36, 39, 42, 45, 48, 50, 52, 54));
  EXPECT_EQ(picture.bytes.size(), 56U);
}
