#include "audit/call_figures.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

// All expected values are reckoned by hand.

namespace {

using namespace std::string_view_literals;
using Qualities = std::vector<std::uint8_t>;
using Quillet::CallFigures;

CallFigures figuresOf(const Qualities& qualities) {
  return Quillet::figuresOf(std::string(qualities.size(), 'A'), qualities);
}

/// Runs of equal qualities, one after the other.
struct Run {
  std::size_t count;
  std::uint8_t quality;
};
Qualities runs(std::initializer_list<Run> parts) {
  Qualities qualities;
  for (const Run& part : parts) qualities.insert(qualities.end(), part.count, part.quality);
  return qualities;
}

TEST(CallFigures, TheMeanIsThatOfAllBases) {
  EXPECT_DOUBLE_EQ(figuresOf({10, 20, 30, 41}).meanQuality, 25.25);
  EXPECT_DOUBLE_EQ(figuresOf({0}).meanQuality, 0);
  EXPECT_DOUBLE_EQ(Quillet::figuresOf("", {}).meanQuality, 0);
}

TEST(CallFigures, AQualityAbove127CountsAs0) {
  const CallFigures figures = figuresOf({127, 128, 255, 20});

  EXPECT_DOUBLE_EQ(figures.meanQuality, 147 / 4.0);
  EXPECT_EQ(figures.q20, 2U);
}

TEST(CallFigures, Q20CountsBasesOf20AndMore) { EXPECT_EQ(figuresOf({19, 20, 21, 0, 93}).q20, 3U); }

TEST(CallFigures, ContiguousIsTheLongestRunWhoseEvery20NeighboursHave400Together) {
  const struct {
    const char* what;
    Qualities qualities;
    std::uint32_t contiguous;
  } cases[] = {
      {"nothing", {}, 0},
      {"one base too few", runs({{19, 90}}), 0},
      {"exactly a window", runs({{20, 20}}), 20},
      {"a window that lacks 1", runs({{19, 20}, {1, 19}}), 0},
      {"one long run", runs({{75, 20}}), 75},
      {"one bad base ends a run", runs({{24, 20}, {1, 0}, {5, 20}}), 24},
      {"the longer of two runs", runs({{21, 20}, {1, 0}, {30, 20}}), 30},
      {"good neighbours make up for a bad base", runs({{15, 30}, {1, 0}, {15, 30}}), 31},
      // 10 good bases carry 10 bad ones: 10 x 40 = 400 in a window; with 11 bad ones it is 360.
      {"a run goes on into bad bases", runs({{20, 40}, {20, 0}}), 30},
      {"above 127 is bad", runs({{19, 20}, {1, 200}}), 0},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(figuresOf(row.qualities).contiguous, row.contiguous) << row.what;
  }
}

// A base of quality 30 adds 0.049 to the running sum, one of 20 adds 0.04; one of 0 takes 0.95.
TEST(CallFigures, TrimsWhereTheRunningSumIsNotNegativeUpToItsFirstMaximum) {
  const struct {
    const char* what;
    Qualities qualities;
    std::uint32_t start;
    std::uint32_t end;
  } cases[] = {
      {"20 bases are not trimmed", runs({{20, 0}}), 0, 20},
      {"nor is one", {0}, 0, 1},
      {"nor are none", {}, 0, 0},
      {"the first base goes, and the last is the maximum", runs({{21, 20}}), 1, 20},
      {"nothing is left", runs({{21, 0}}), 0, 0},
      {"bad ends", runs({{5, 2}, {15, 30}, {5, 2}}), 5, 19},
      {"the end is the higher hill's", runs({{11, 30}, {1, 0}, {12, 30}}), 1, 23},
      {"the start stays the first hill's", runs({{3, 0}, {1, 30}, {3, 0}, {20, 30}}), 3, 26},
      {"a later lower hill does not count", runs({{13, 30}, {1, 0}, {10, 30}}), 1, 12},
      // Both hills are 11 bases of the same sum; the first maximum counts.
      {"equal hills", runs({{1, 0}, {11, 30}, {1, 0}, {11, 30}}), 1, 11},
      {"only the last base is good", runs({{20, 0}, {1, 30}}), 0, 0},
      {"a small dip does not end it", runs({{15, 30}, {1, 10}, {10, 30}}), 1, 25},
      // One of 13 takes 0.0001: without the first base the sum is negative there.
      {"the first base adds nothing", runs({{1, 30}, {1, 13}, {20, 30}}), 2, 21},
      {"above 127 is 0", runs({{5, 200}, {20, 30}}), 5, 24},
  };
  for (const auto& row : cases) {
    const CallFigures figures = figuresOf(row.qualities);
    EXPECT_EQ(figures.trimStart, row.start) << row.what;
    EXPECT_EQ(figures.trimEnd, row.end) << row.what;
  }
}

TEST(CallFigures, NoCallsAreAllBasesButACGTInEitherCase) {
  const std::string_view bases = "ACGTacgtNn-RU\0\xFF"sv;

  EXPECT_EQ(Quillet::figuresOf(bases, Qualities(bases.size(), 20)).noCalls, 7U);
  EXPECT_EQ(Quillet::figuresOf("", {}).noCalls, 0U);
}

}  // namespace
