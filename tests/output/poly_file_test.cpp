#include "output/poly_file.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "output/file_writer.h"
#include "output/poly_peaks.h"
#include "tests/output/plain_poly.h"
#include "tests/output/poly_arrays.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string written(const std::string& sampleName, PolyInput& input) {
  ScratchFolder folder;
  Quillet::PolyPeaks found;
  Tessaly::FileWriter writer;
  const Tessaly::String bases(input.bases.c_str());

  Quillet::Channels channels = channelsOf(input);
  found.compute({channels, bases, input.peaks.data()});
  copyBack(channels, input);
  Quillet::writePolyFile(writer, folder.at("s.poly"),
                         {.sampleName = sampleName.c_str(),
                          .bases = bases,
                          .peaks = input.peaks.data(),
                          .found = found});
  return folder.read("s.poly");
}

PolyInput flatTrace(std::size_t pointCount, const std::string& bases,
                    const std::vector<std::int32_t>& peaks) {
  PolyInput input;
  for (auto& channel : input.channels) channel.assign(pointCount, 0);
  input.bases = bases;
  input.peaks = peaks;
  return input;
}

/// Peaks of A and C around 100 and 1570. Both channels have an average.
PolyInput balancedTrace(const std::string& bases, const std::vector<std::int32_t>& peaks) {
  PolyInput input = flatTrace(1600, bases, peaks);
  auto& [a, c, g, t] = input.channels;
  // The highest sample is already 65280, so the first scaling changes nothing.
  a[99] = 16320;
  a[100] = 65280;
  a[101] = 16320;
  c[100] = 2000;
  c[101] = 500;
  // The average of A comes from 1551 and is 8192, that of C from 1571 and is 16384: C is halved.
  a[1550] = 16384;
  a[1551] = 8192;
  c[1570] = 32768;
  c[1571] = 16384;
  // Equal samples: no maximum.
  g[1595] = g[1596] = g[1597] = 3;
  return input;
}

TEST(PolyFile, EveryBaseHasALineWithBothPeaksAndAllHeights) {
  PolyInput input = balancedTrace("ACNG", {100, 1570, 1590, 1596, 1600});

  const std::string text = written("sample", input);

  // Run of A at 99: 97920 / 65280 = 1.5, times 8192 / 16384, times 65280.
  // Run of C at 100: 1250 / 1000 = 1.25, times 16384 / 16384, times 1000.
  // Run of C at 1570: 24576 / 16384 = 1.5, times 1, times 16384.
  // Run of A at 1550: 24576 / 16384 = 1.5, times 0.5, times 16384.
  EXPECT_EQ(text, R"(sample 1 1 1 1 1
A 100 48960 0 C 101 1250 0 65280 1000 0 0
C 1570 24576 0 A 1551 12288 0 16384 16384 0 0
N 1590 0 0 N 0 0 0 0 0 0 0
G 1596 0 0 N 0 0 0 0 0 3 0
)");
}

TEST(PolyFile, ABaseThatIsNotUpperCaseACGTHasNoHeightsAndNoSecondPeak) {
  // Called A and C, these two bases have the heights 48960 and 24576, and second peaks.
  PolyInput input = balancedTrace("Nc", {100, 1570, 1600});

  EXPECT_EQ(written("s", input), R"(s 1 1 1 1 1
N 100 0 0 N 0 0 0 65280 1000 0 0
c 1570 0 0 N 0 0 0 16384 16384 0 0
)");
}

TEST(PolyFile, TheSecondPeakIsThatOfTheHighestOtherChannel) {
  PolyInput input = flatTrace(100, "T", {30, 60});
  for (auto& channel : input.channels) channel[29] = 65280;
  input.channels[0][29] = 100;
  input.channels[1][27] = 200;
  input.channels[1][29] = 0;
  input.channels[2][29] = 150;

  EXPECT_EQ(written("s", input), "s 1 1 1 1 1\nT 30 0 0 C 28 0 0 100 200 150 65280\n");
}

TEST(PolyFile, WithoutBasesOnlyTheFirstLineIsWritten) {
  PolyInput input = flatTrace(100, "", {100});

  EXPECT_EQ(written("s", input), "s 1 1 1 1 1\n");
}

TEST(PolyFile, ASampleNameCanBeEmpty) {
  PolyInput input = flatTrace(100, "", {100});

  EXPECT_EQ(written("", input), " 1 1 1 1 1\n");
}

TEST(PolyFile, PeakIndicesFrom2147483648OnPrintAsNegativeNumbers) {
  constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
  PolyInput input = flatTrace(10, "AN", {smallest, -1, 10});

  EXPECT_EQ(written("s", input), R"(s 1 1 1 1 1
A -2147483648 0 0 N 0 0 0 0 0 0 0
N -1 0 0 N 0 0 0 0 0 0 0
)");
}

TEST(PolyFile, AHeightThatDoesNotFitPrintsAsTheSmallestInteger) {
  // One run of A, area 78041090, average 30000. The sum of the three heights, 131080, wraps to 8.
  PolyInput input = flatTrace(2600, "AAA", {100, 200, 300, 400});
  auto& a = input.channels[0];
  a.assign(2600, 30000);
  a[100] = 65280;
  a[200] = 32900;
  a[300] = 32900;
  a[1600] = 30010;

  EXPECT_EQ(written("s", input), R"(s 1 1 1 1 1
A 100 -2147483648 0 N 0 0 0 65280 0 0 0
A 200 -2147483648 0 N 0 0 0 32900 0 0 0
A 300 -2147483648 0 N 0 0 0 32900 0 0 0
)");
}

TEST(PolyFile, AgreesWithThePlainTextOnRandomTraces) {
  std::mt19937 random(11);
  for (int round = 0; round < 40; ++round) {
    PolyInput input = flatTrace(1500 + random() % 1500, "", {});
    for (auto& channel : input.channels) {
      for (std::uint16_t& sample : channel) sample = static_cast<std::uint16_t>(random() % 3000);
    }
    for (std::int32_t peak = 0; peak < input.pointCount();
         peak += 1 + static_cast<int>(random() % 20)) {
      input.bases += "ACGTNg"[random() % 6];
      input.peaks.push_back(peak);
    }
    input.peaks.push_back(static_cast<std::int32_t>(input.pointCount()));
    PolyInput plain = input;
    const PolyResult result = plainPoly(plain);

    ASSERT_EQ(written("random", input), plainPolyText("random", plain, result)) << round;
  }
}

}  // namespace
