#include "foundation/vector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tests/foundation/numbers.h"
#include "tests/support/thrown_text.h"

// Construction, traversal, reading and assignment. Other files test changes and sorting.

using testing::ElementsAre;

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

TEST(Vector, PreviousAfterTheLastElementIsOutOfRange) {
  Numbers vector;
  vector.assign(numbers({1, 2, 3}));  // leaves the cursor at the end
  ASSERT_EQ(vector.cursor(), 3);

  EXPECT_EQ(thrownText([&] { vector.previous(); }), rangeText);

  EXPECT_EQ(vector.cursor(), 3);
}

TEST(Vector, AVectorJustAssignedCanNotBeWalkedBack) {
  const Numbers source = numbers({1, 2, 3});
  Numbers fromVector, fromVectorWithCopy, fromArray, fromValue;

  fromVector.assign(source);
  fromVectorWithCopy.assignAndCopy(source);
  fromArray.assign(source.data(), 3);
  fromValue.assign(7);

  for (Numbers* vector : {&fromVector, &fromVectorWithCopy, &fromArray, &fromValue}) {
    EXPECT_EQ(thrownText([&] { vector->previous(); }), rangeText);
  }
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
  vector.append(4);  // the spare capacity is out of range too
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

TEST(Vector, AssigningAndCopyingAlsoTakesALargerCapacity) {
  Numbers source = numbers({1, 2});
  source.append(3);  // capacity 6
  Numbers smaller = numbers({9, 8, 7, 5});

  const Numbers copy = smaller.assignAndCopy(source);

  EXPECT_THAT(elementsOf(smaller), ElementsAre(1, 2, 3));
  EXPECT_EQ(smaller.capacity(), 6);  // although 4 would have been enough
  EXPECT_EQ(smaller.cursor(), 3);
  EXPECT_THAT(elementsOf(copy), ElementsAre(1, 2, 3));
  EXPECT_EQ(copy.capacity(), 6);
}

TEST(Vector, AssigningAndCopyingKeepsAnArrayOfTheSameCapacity) {
  const Numbers source = numbers({1, 2, 3});
  Numbers vector = numbers({9, 8, 7});
  const std::int32_t* const data = vector.data();

  const Numbers copy = vector.assignAndCopy(source);

  EXPECT_EQ(vector.data(), data);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3));
  EXPECT_NE(copy.data(), data);
}

TEST(Vector, AssigningAVectorKeepsALargeEnoughArrayAndMovesTheCursorToTheEnd) {
  Numbers large = numbers({9, 8, 7, 6});
  Numbers small = numbers({9});
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
  Numbers large = numbers({9, 8, 7, 6});
  Numbers small = numbers({9, 8});
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
  const Numbers vector = numbers({1, 2, 3});
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

TEST(Vector, CopyingOutAndLookingForAValueLeaveTheCursor) {
  Numbers vector = numbers({1, 2, 3});
  std::int32_t places[] = {9, 9};
  vector.at(1);

  vector.copyOut();
  vector.copyOut(places, 2);
  EXPECT_TRUE(vector.contains(3));

  EXPECT_EQ(vector.cursor(), 1);
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
