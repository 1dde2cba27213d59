#include "foundation/vector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "tests/foundation/numbers.h"
#include "tests/support/thrown_text.h"

// Sorting, and the ranges that a sort calls sortRange() for.

namespace {

using testing::ElementsAre;

/// A vector that records the ranges that sortRange() gets.
class NotingNumbers : public Numbers {
 public:
  void sortRange(std::int32_t first, std::int32_t last) override {
    ranges.emplace_back(first, last);
    Numbers::sortRange(first, last);
  }
  std::vector<std::pair<std::int32_t, std::int32_t>> ranges;
};

}  // namespace

TEST(Vector, SortingAnEmptyVectorSortsTheRange0ToMinus1AndChangesNothing) {
  NotingNumbers vector;

  vector.sort();

  EXPECT_THAT(vector.ranges, ElementsAre(std::pair(0, -1)));
  EXPECT_EQ(vector.size(), 0);
  EXPECT_EQ(vector.capacity(), 1);
}

TEST(Vector, SortingOrdersByValue) {
  struct Case {
    std::vector<std::int32_t> values;
    std::vector<std::int32_t> expected;
  };
  const Case cases[] = {{{5}, {5}},
                        {{2, 1}, {1, 2}},
                        {{1, 2, 3, 4}, {1, 2, 3, 4}},
                        {{4, 3, 2, 1}, {1, 2, 3, 4}},
                        {{3, 3, 3}, {3, 3, 3}},
                        {{3, -1, 3, 0, -7, 9, 0}, {-7, -1, 0, 0, 3, 3, 9}}};

  for (const Case& one : cases) {
    Numbers vector;
    vector.assign(one.values.data(), static_cast<std::int32_t>(one.values.size()));
    vector.sort();
    EXPECT_EQ(elementsOf(vector), one.expected);
  }
}

TEST(Vector, SortingLeavesTheCursor) {
  Numbers vector = numbers({3, 1, 2});
  vector.at(1);

  vector.sort();
  vector.sortRange(0, 2);

  EXPECT_EQ(vector.cursor(), 1);
}

TEST(Vector, SortingARangeLeavesTheRestAlone) {
  Numbers vector = numbers({9, 4, 3, 2, 0});

  vector.sortRange(1, 3);
  EXPECT_THAT(elementsOf(vector), ElementsAre(9, 2, 3, 4, 0));
  vector.sortRange(3, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(9, 2, 3, 4, 0));

  EXPECT_EQ(thrownText([&] { vector.sortRange(-1, 3); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.sortRange(0, 5); }), rangeText);
}

TEST(Vector, ASortGoesThroughTheReplacedRangeSortForEveryPart) {
  // Pivot 3: the loop turns 3 5 1 4 2 into 3 1 2 4 5 with the boundary at 2; the last swap gives
  // 2 1 3 4 5. The parts 0..1 and 3..4 have one element beside their pivots, so they have no parts.
  NotingNumbers vector;
  vector.assign(numbers({3, 5, 1, 4, 2}));

  vector.sort();

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(vector.ranges, ElementsAre(std::pair(0, 4), std::pair(0, 1), std::pair(3, 4)));
}

TEST(Vector, EqualElementsStayOnThePivotsRight) {
  // No element is below the pivot: there is no left part, and each right part is one shorter.
  NotingNumbers vector;
  vector.assign(numbers({7, 7, 7, 7}));

  vector.sort();

  EXPECT_THAT(vector.ranges, ElementsAre(std::pair(0, 3), std::pair(1, 3), std::pair(2, 3)));
}
