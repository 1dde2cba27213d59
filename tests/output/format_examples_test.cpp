#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "output/file_writer.h"
#include "output/phd_file.h"
#include "output/poly_file.h"
#include "output/poly_peaks.h"
#include "tests/support/scratch_folder.h"

// The worked examples of docs/formats/phd.md and docs/formats/poly.md: the program must write what
// the pages show.

namespace {

using Tessaly::String;

/// Samples at consecutive indices; all other samples of the channel are 0.
struct Stretch {
  std::size_t firstIndex;
  std::vector<std::uint16_t> samples;
};
using Channel = std::vector<Stretch>;

std::string polyFile(std::uint32_t pointCount, const std::array<Channel, 4>& channels,
                     const char* baseText, const std::vector<std::int32_t>& peaks) {
  Quillet::Channels samples(pointCount);
  for (int channel = 0; channel < 4; ++channel) {
    std::ranges::fill(samples[channel], std::uint16_t{0});
    for (const Stretch& stretch : channels[static_cast<std::size_t>(channel)]) {
      std::ranges::copy(stretch.samples, samples[channel].subspan(stretch.firstIndex).begin());
    }
  }

  const ScratchFolder folder;
  const String bases(baseText);
  Quillet::PolyPeaks found;
  Tessaly::FileWriter writer;
  found.compute({samples, bases, peaks.data()});
  Quillet::writePolyFile(
      writer, folder.at("demo.poly"),
      {.sampleName = "demo", .bases = bases, .peaks = peaks.data(), .found = found});
  return folder.read("demo.poly");
}

TEST(FormatExamples, ThePhdFile) {
  const ScratchFolder folder;
  const String sampleName("demo"), callerName("Caller 1.2"), timeText("Sun Nov 15 12:04:40 2026");
  const String bases("ACn"), qualities("\x14\xC8");  // 20 and 200
  const std::int32_t peaks[] = {13, 25, 37, 50};

  Tessaly::FileWriter writer;
  Quillet::writePhdFile(writer, folder.at("demo.phd.1"),
                        {sampleName, callerName, timeText, 50, bases, qualities, peaks});

  EXPECT_EQ(folder.read("demo.phd.1"), R"(BEGIN_SEQUENCE demo

BEGIN_COMMENT
CHROMAT_FILE: demo
ABI_THUMBPRINT: 0
PHRED_VERSION: quillet
CALL_METHOD: Caller 1.2
QUALITY_LEVELS: 99
TIME: Sun Nov 15 12:04:40 2026
TRACE_ARRAY_MIN_INDEX: 0
TRACE_ARRAY_MAX_INDEX: 49
CHEM: term
DYE: big
END_COMMENT

BEGIN_DNA
A 20 13
C -56 25
n 0 37
END_DNA
END_SEQUENCE
)");
}

TEST(FormatExamples, ThePolyFileOfAShortTrace) {
  const Channel a{{3, {100, 255, 100}}};
  const Channel c{{4, {40, 60, 40}}};
  const Channel g{{7, {50, 50, 50, 50, 50, 50}}};
  const Channel t{{14, {10, 20, 10}}};

  EXPECT_EQ(polyFile(20, {a, c, g, t}, "AGN", {4, 10, 15, 20}), R"(demo 1 1 1 1 1
A 4 0 0 C 6 0 0 65280 15360 0 0
G 10 0 0 N 0 0 0 0 0 12800 0
N 15 0 0 N 0 0 0 0 0 0 5120
)");
}

TEST(FormatExamples, ThePolyFileWithBalanceAndAreas) {
  const Channel a{{1504, {64, 128, 64}}};
  const Channel c{{1504, {16, 32, 16}}, {1514, {32, 64, 32}}};
  const Channel g{};
  const Channel t{{19, {100, 255, 100}}};

  EXPECT_EQ(polyFile(1540, {a, c, g, t}, "TAC", {20, 1505, 1515, 1540}), R"(demo 1 1 1 1 1
T 20 0 0 N 0 0 0 0 0 0 65280
A 1505 32768 0 C 1506 8192 0 16384 8192 0 0
C 1515 16384 0 N 0 0 0 0 16384 0 0
)");
}

}  // namespace
