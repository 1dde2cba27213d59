#include "foundation/vector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/thrown_text.h"

namespace {

using Numbers = Tessaly::Vector<std::int32_t>;
using testing::ElementsAre;
using testing::IsEmpty;

const char* const rangeText      = "ERROR: Vector array parameter is out of range";
const char* const allocationText = "ERROR: Can not allocate memory for vector array";

Numbers numbers(std::initializer_list<std::int32_t> values) {
  Numbers result;
  result.assign(values.begin(), static_cast<std::int32_t>(values.size()));
  return result;
}

template <typename T>
std::vector<T> elementsOf(const Tessaly::Vector<T>& vector) {
  return {vector.data(), vector.data() + vector.size()};
}

// A vector that notes the ranges it is asked to sort.
class NotingNumbers : public Numbers {
 public:
  void sortRange(std::int32_t first, std::int32_t last) override {
    ranges.emplace_back(first, last);
    Numbers::sortRange(first, last);
  }
  std::vector<std::pair<std::int32_t, std::int32_t>> ranges;
};

}  // namespace

TEST(Vector, ANewVectorHasSize0AndCapacity1AndGrowsTo4And10) {
  struct Case {
    std::int32_t size;
    std::int32_t capacity;
  };
  Numbers vector;
  EXPECT_EQ(vector.size(), 0);
  EXPECT_EQ(vector.capacity(), 1);
  EXPECT_EQ(vector.cursor(), 0);

  for (const Case& one : {Case{1, 1}, Case{2, 4}, Case{3, 4}, Case{4, 4}, Case{5, 10}}) {
    vector.append(one.size * 10);
    EXPECT_EQ(vector.size(), one.size);
    EXPECT_EQ(vector.capacity(), one.capacity);
  }

  EXPECT_THAT(elementsOf(vector), ElementsAre(10, 20, 30, 40, 50));
}

TEST(Vector, TheStepwiseOperationsOnANewVectorAreOutOfRange) {
  Numbers vector;

  EXPECT_EQ(thrownText([&] { vector.current(); }), "ERROR: Vector array parameter is out of range");
  EXPECT_EQ(thrownText([&] { vector.next(); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.previous(); }), rangeText);
}

TEST(Vector, ACopyTakesTheCapacityAndStartsItsCursorAt0) {
  Numbers original = numbers({1, 2, 3});
  original.append(4);  // capacity 8
  original.at(2);

  const Numbers copy(original);
  original.replace(0, 99);

  EXPECT_THAT(elementsOf(copy), ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(copy.capacity(), 8);
  EXPECT_EQ(copy.cursor(), 0);
}

TEST(Vector, ClearingKeepsTheCapacity) {
  Numbers vector = numbers({1, 2, 3});
  vector.at(1);

  vector.clear();

  EXPECT_EQ(vector.size(), 0);
  EXPECT_EQ(vector.capacity(), 3);
  EXPECT_EQ(vector.cursor(), 0);
}

TEST(Vector, NextWalksToTheEnd) {
  Numbers vector = numbers({1, 2});

  EXPECT_EQ(vector.current(), 1);
  EXPECT_EQ(vector.next(), 1);
  EXPECT_EQ(vector.current(), 2);
  EXPECT_EQ(vector.next(), 2);
  EXPECT_EQ(vector.cursor(), 2);

  EXPECT_EQ(thrownText([&] { vector.next(); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.current(); }), rangeText);
}

TEST(Vector, PreviousReturnsTheElementAtTheCursorAndStopsAt0) {
  Numbers vector = numbers({1, 2, 3});
  vector.at(2);

  EXPECT_EQ(vector.previous(), 3);
  EXPECT_EQ(vector.previous(), 2);
  EXPECT_EQ(vector.cursor(), 0);

  EXPECT_EQ(thrownText([&] { vector.previous(); }), rangeText);
}

TEST(Vector, PreviousBehindTheLastElementIsOutOfRange) {
  Numbers vector;
  vector.assign(numbers({1, 2, 3}));  // leaves the cursor at the end
  ASSERT_EQ(vector.cursor(), 3);

  EXPECT_EQ(thrownText([&] { vector.previous(); }), rangeText);

  EXPECT_EQ(vector.cursor(), 3);
}

TEST(Vector, ElementsByIndexMoveTheCursor) {
  Numbers vector = numbers({1, 2, 3});

  EXPECT_EQ(vector.at(2), 3);
  EXPECT_EQ(vector.cursor(), 2);
  EXPECT_EQ(vector.elementAt(1), 2);
  EXPECT_EQ(vector.cursor(), 1);
  vector.set(0, 10);
  EXPECT_EQ(vector.cursor(), 0);

  EXPECT_THAT(elementsOf(vector), ElementsAre(10, 2, 3));
}

TEST(Vector, ReplacingAnElementLeavesTheCursor) {
  Numbers vector = numbers({1, 2, 3});
  vector.at(1);

  vector.replace(2, 30);

  EXPECT_EQ(vector.cursor(), 1);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 30));
}

TEST(Vector, AnIndexOutsideTheElementsIsOutOfRange) {
  Numbers vector = numbers({1, 2, 3});
  vector.append(4);  // room behind the last element is outside too
  vector.at(1);

  for (const std::int32_t index : {-1, 4, std::numeric_limits<std::int32_t>::max(),
                                   std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(thrownText([&] { vector.at(index); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.elementAt(index); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.set(index, 9); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.replace(index, 9); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.remove(index); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.erase(index); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.removeRange(index, 0); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.truncate(index); }), rangeText);
  }

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(vector.cursor(), 1);
}

TEST(Vector, AssigningAndCopyingTakesTheOthersCapacity) {
  Numbers source = numbers({1, 2});
  source.append(3);  // capacity 6
  source.at(1);
  Numbers larger;
  larger.assign(source.data(), 3);
  for (int count = 0; count < 9; ++count) larger.append(count);

  const Numbers copy = larger.assignAndCopy(source);

  EXPECT_THAT(elementsOf(larger), ElementsAre(1, 2, 3));
  EXPECT_EQ(larger.capacity(), 6);
  EXPECT_EQ(larger.cursor(), 3);
  EXPECT_THAT(elementsOf(copy), ElementsAre(1, 2, 3));
  EXPECT_EQ(copy.capacity(), 6);
  EXPECT_EQ(copy.cursor(), 0);
}

TEST(Vector, AssigningAVectorKeepsALargeEnoughArrayAndMovesTheCursorToTheEnd) {
  Numbers large  = numbers({9, 8, 7, 6});
  Numbers small  = numbers({9});
  Numbers source = numbers({1, 2});
  source.append(3);  // capacity 6

  large.assign(source);
  small.assign(source);

  EXPECT_THAT(elementsOf(large), ElementsAre(1, 2, 3));
  EXPECT_EQ(large.capacity(), 4);
  EXPECT_EQ(large.cursor(), 3);
  EXPECT_THAT(elementsOf(small), ElementsAre(1, 2, 3));
  EXPECT_EQ(small.capacity(), 3);  // the size, not the other's capacity
  EXPECT_EQ(small.cursor(), 3);
}

TEST(Vector, AssigningAnArrayKeepsALargeEnoughArrayAndMovesTheCursorToTheStart) {
  const std::int32_t values[] = {1, 2, 3};
  Numbers large               = numbers({9, 8, 7, 6});
  Numbers small               = numbers({9, 8});
  large.at(3);
  small.at(1);

  large.assign(values, 3);
  small.assign(values, 3);

  EXPECT_THAT(elementsOf(large), ElementsAre(1, 2, 3));
  EXPECT_EQ(large.capacity(), 4);
  EXPECT_EQ(large.cursor(), 0);
  EXPECT_THAT(elementsOf(small), ElementsAre(1, 2, 3));
  EXPECT_EQ(small.capacity(), 3);
  EXPECT_EQ(small.cursor(), 0);
}

TEST(Vector, AssigningNoValuesKeepsTheCapacity) {
  Numbers vector = numbers({1, 2, 3});

  vector.assign(nullptr, 0);

  EXPECT_EQ(vector.size(), 0);
  EXPECT_EQ(vector.capacity(), 3);
}

TEST(Vector, AssigningAValueLeavesItAlone) {
  Numbers vector = numbers({1, 2, 3});
  vector.at(2);

  vector.assign(7);

  EXPECT_THAT(elementsOf(vector), ElementsAre(7));
  EXPECT_EQ(vector.capacity(), 3);
  EXPECT_EQ(vector.cursor(), 0);
}

TEST(Vector, CopyingOutGivesTheElements) {
  const Numbers vector  = numbers({1, 2, 3});
  std::int32_t places[] = {9, 9, 9, 9};

  const auto owned = vector.copyOut();
  EXPECT_THAT(std::vector<std::int32_t>(owned.get(), owned.get() + 3), ElementsAre(1, 2, 3));
  vector.copyOut(places, 2);
  EXPECT_THAT(places, ElementsAre(1, 2, 9, 9));
  vector.copyOut(places, 4);
  EXPECT_THAT(places, ElementsAre(1, 2, 3, 9));
  vector.copyOut(places, 0);
  EXPECT_EQ(thrownText([&] { vector.copyOut(places, -1); }), rangeText);

  EXPECT_THAT(places, ElementsAre(1, 2, 3, 9));
}

TEST(Vector, AppendingGrowsToTwiceWhatIsNeeded) {
  const std::int32_t values[] = {4, 5};
  Numbers vector              = numbers({1, 2, 3});
  vector.at(1);

  vector.append(values, 2);  // 5 needed
  EXPECT_EQ(vector.capacity(), 10);
  vector.append(numbers({6, 7, 8}));
  EXPECT_EQ(vector.capacity(), 10);
  vector.append(numbers({9, 10, 11}));  // 11 needed
  EXPECT_EQ(vector.capacity(), 22);

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
  EXPECT_EQ(vector.cursor(), 1);
}

TEST(Vector, ANegativeCountIsOutOfRange) {
  const std::int32_t values[] = {8, 9};
  Numbers vector              = numbers({1, 2, 3});

  EXPECT_EQ(thrownText([&] { vector.assign(values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.append(values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.overwrite(1, values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.insert(1, values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.removeRange(1, -1); }), rangeText);

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3));
}

TEST(Vector, AGrowthPastTheLargestCapacityIsAnAllocationError) {
  constexpr std::int32_t half = 1 << 30;  // twice this is one more than fits
  const std::int32_t values[] = {8, 9};   // never read
  Numbers vector              = numbers({1, 2, 3});

  EXPECT_EQ(thrownText([&] { vector.append(values, half - 3); }), allocationText);
  EXPECT_EQ(thrownText([&] { vector.insert(0, values, std::numeric_limits<std::int32_t>::max()); }),
            allocationText);

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3));
  EXPECT_EQ(vector.capacity(), 3);
}

TEST(Vector, OverwritingReplacesABlockInTheMiddle) {
  const std::int32_t values[] = {20, 30};
  Numbers vector              = numbers({1, 2, 3, 4, 5});

  vector.overwrite(1, values, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 20, 30, 4, 5));
  vector.overwrite(2, numbers({40, 50}));
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 20, 40, 50, 5));
  vector.overwrite(4, values, 0);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 20, 40, 50, 5));
}

TEST(Vector, OverwritingABlockThatEndsAtTheLastElementIsOutOfRange) {
  const std::int32_t values[] = {20, 30};
  Numbers vector              = numbers({1, 2, 3, 4, 5});

  EXPECT_EQ(thrownText([&] { vector.overwrite(3, values, 2); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.overwrite(3, numbers({20, 30})); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.overwrite(-1, values, 2); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.overwrite(-1, numbers({20})); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.overwrite(5, values, 0); }), rangeText);
  EXPECT_EQ(
      thrownText([&] { vector.overwrite(1, values, std::numeric_limits<std::int32_t>::max()); }),
      rangeText);

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3, 4, 5));
}

TEST(Vector, InsertingShiftsTheTailUp) {
  const std::int32_t values[] = {8, 9};
  Numbers vector              = numbers({1, 2, 3});

  vector.insert(1, 7);  // 4 needed
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 7, 2, 3));
  EXPECT_EQ(vector.capacity(), 8);
  vector.insert(0, values, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(8, 9, 1, 7, 2, 3));
  vector.insert(5, numbers({5, 6}));
  EXPECT_THAT(elementsOf(vector), ElementsAre(8, 9, 1, 7, 2, 5, 6, 3));
  EXPECT_EQ(vector.capacity(), 8);
}

TEST(Vector, InsertingAtTheSizeAppendsAndBehindItIsOutOfRange) {
  const std::int32_t values[] = {8, 9};
  Numbers vector              = numbers({1, 2});

  vector.insert(2, 3);
  vector.insert(3, values, 2);
  vector.insert(5, numbers({10}));
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3, 8, 9, 10));

  for (const std::int32_t index : {-1, 7}) {
    EXPECT_EQ(thrownText([&] { vector.insert(index, 3); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.insert(index, values, 2); }), rangeText);
    EXPECT_EQ(thrownText([&] { vector.insert(index, numbers({10})); }), rangeText);
  }
  EXPECT_EQ(vector.size(), 6);
}

TEST(Vector, RemovingMovesTheLaterElementsDownAndTheCursorToTheStart) {
  Numbers vector = numbers({1, 2, 3, 4, 5, 6});

  vector.at(3);
  vector.remove(1);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 3, 4, 5, 6));
  EXPECT_EQ(vector.cursor(), 0);
  vector.at(3);
  vector.erase(4);  // the last one
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 3, 4, 5));
  EXPECT_EQ(vector.cursor(), 0);
  vector.at(3);
  vector.removeRange(1, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 5));
  EXPECT_EQ(vector.cursor(), 0);
  EXPECT_EQ(vector.capacity(), 6);
}

TEST(Vector, RemovingARangeMayReachTheEndButNotPassIt) {
  Numbers vector = numbers({1, 2, 3});

  EXPECT_EQ(thrownText([&] { vector.removeRange(1, 3); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.removeRange(1, std::numeric_limits<std::int32_t>::max()); }),
            rangeText);
  vector.removeRange(2, 0);
  EXPECT_EQ(vector.size(), 3);
  vector.removeRange(1, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1));
  vector.removeRange(0, 1);
  EXPECT_THAT(elementsOf(vector), IsEmpty());
}

TEST(Vector, TruncatingToThePresentSizeIsOutOfRange) {
  Numbers vector = numbers({1, 2, 3});
  vector.at(2);

  EXPECT_EQ(thrownText([&] { vector.truncate(3); }), rangeText);
  EXPECT_EQ(vector.cursor(), 2);
  vector.truncate(2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2));
  EXPECT_EQ(vector.cursor(), 0);
  vector.truncate(0);
  EXPECT_EQ(vector.size(), 0);
}

TEST(Vector, ContainsLooksAtTheElementsInUseOnly) {
  Numbers vector = numbers({1, 2, 3});
  vector.truncate(2);

  EXPECT_TRUE(vector.contains(1));
  EXPECT_TRUE(vector.contains(2));
  EXPECT_FALSE(vector.contains(3));
  EXPECT_FALSE(Numbers().contains(0));
}

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
  // Pivot 3: 3 1 2 5 4 walks to 3 1 2 | 5 4 with the boundary at 2, then 2 1 3 5 4; parts 0..1
  // and 3..4. Of 2 1 only the pivot's place 1 is left, of 5 4 too: no part of two elements.
  NotingNumbers vector;
  vector.assign(numbers({3, 5, 1, 4, 2}));

  vector.sort();

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(vector.ranges, ElementsAre(std::pair(0, 4), std::pair(0, 1), std::pair(3, 4)));
}

TEST(Vector, EqualElementsStayOnThePivotsRight) {
  // Nothing is below the pivot, so the left part is never sorted and each right part is one less.
  NotingNumbers vector;
  vector.assign(numbers({7, 7, 7, 7}));

  vector.sort();

  EXPECT_THAT(vector.ranges, ElementsAre(std::pair(0, 3), std::pair(1, 3), std::pair(2, 3)));
}

TEST(Vector, AVectorMayBeGivenToItself) {
  Numbers assigned = numbers({1, 2, 3});
  Numbers growing  = numbers({1, 2, 3});
  Numbers roomy    = numbers({1, 2, 3});
  Numbers inserted = numbers({1, 2, 3});
  roomy.append(4);  // capacity 8
  Numbers insertedRoomy(roomy);

  assigned.assign(assigned);
  growing.append(growing);
  roomy.append(roomy);
  inserted.insert(1, inserted);
  insertedRoomy.insert(1, insertedRoomy);
  const Numbers copy = assigned.assignAndCopy(assigned);

  EXPECT_THAT(elementsOf(assigned), ElementsAre(1, 2, 3));
  EXPECT_THAT(elementsOf(copy), ElementsAre(1, 2, 3));
  EXPECT_THAT(elementsOf(growing), ElementsAre(1, 2, 3, 1, 2, 3));
  EXPECT_THAT(elementsOf(roomy), ElementsAre(1, 2, 3, 4, 1, 2, 3, 4));
  EXPECT_THAT(elementsOf(inserted), ElementsAre(1, 1, 2, 3, 2, 3));
  EXPECT_THAT(elementsOf(insertedRoomy), ElementsAre(1, 1, 2, 3, 4, 2, 3, 4));
  EXPECT_EQ(thrownText([&] { roomy.overwrite(0, roomy); }), rangeText);
}

TEST(Vector, ElementsOfAVectorMayBeGivenToItself) {
  Numbers assigned  = numbers({1, 2, 3, 4});
  Numbers appended  = numbers({1, 2, 3});
  Numbers inserted  = numbers({1, 2, 3});
  Numbers roomy     = numbers({1, 2, 3, 4, 5, 6});
  Numbers leftward  = numbers({1, 2, 3, 4, 5});
  Numbers rightward = numbers({1, 2, 3, 4, 5});
  roomy.truncate(4);

  assigned.assign(assigned.data() + 1, 2);
  appended.append(appended.data() + 1, 2);
  appended.append(appended.at(0));
  inserted.insert(0, inserted.data() + 1, 2);
  roomy.insert(1, roomy.data(), 2);
  leftward.overwrite(0, leftward.data() + 1, 3);
  rightward.overwrite(1, rightward.data(), 3);

  EXPECT_THAT(elementsOf(assigned), ElementsAre(2, 3));
  EXPECT_THAT(elementsOf(appended), ElementsAre(1, 2, 3, 2, 3, 1));
  EXPECT_THAT(elementsOf(inserted), ElementsAre(2, 3, 1, 2, 3));
  EXPECT_THAT(elementsOf(roomy), ElementsAre(1, 1, 2, 2, 3, 4));
  EXPECT_THAT(elementsOf(leftward), ElementsAre(2, 3, 4, 4, 5));
  EXPECT_THAT(elementsOf(rightward), ElementsAre(1, 1, 2, 3, 5));
}

TEST(Vector, OtherElementTypesWorkAlike) {
  Tessaly::Vector<std::string> words;

  words.append("beta");
  words.append("alpha");
  words.insert(1, words.at(0));
  words.sort();
  words.remove(1);

  EXPECT_THAT(elementsOf(words), ElementsAre("alpha", "beta"));
  EXPECT_TRUE(words.contains("beta"));
}
