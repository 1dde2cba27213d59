#include "foundation/vector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "tests/foundation/numbers.h"
#include "tests/support/thrown_text.h"

// Appending, overwriting, inserting and removing.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

}  // namespace

TEST(Vector, AppendingGrowsToTwiceWhatIsNeeded) {
  const std::int32_t values[] = {4, 5};
  Numbers vector = numbers({1, 2, 3});
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
  Numbers vector = numbers({1, 2, 3});

  EXPECT_EQ(thrownText([&] { vector.assign(values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.append(values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.overwrite(1, values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.insert(1, values, -1); }), rangeText);
  EXPECT_EQ(thrownText([&] { vector.removeRange(1, -1); }), rangeText);

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3));
}

TEST(Vector, OverwritingReplacesABlockInTheMiddle) {
  const std::int32_t values[] = {20, 30};
  Numbers vector = numbers({1, 2, 3, 4, 5});

  vector.overwrite(1, values, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 20, 30, 4, 5));
  vector.overwrite(2, numbers({40, 50}));
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 20, 40, 50, 5));
  vector.overwrite(4, values, 0);
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 20, 40, 50, 5));
}

TEST(Vector, OverwritingABlockThatEndsAtTheLastElementIsOutOfRange) {
  const std::int32_t values[] = {20, 30};
  Numbers vector = numbers({1, 2, 3, 4, 5});

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
  Numbers vector = numbers({1, 2, 3});

  vector.insert(1, 7);  // 4 needed
  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 7, 2, 3));
  EXPECT_EQ(vector.capacity(), 8);
  vector.insert(0, values, 2);
  EXPECT_THAT(elementsOf(vector), ElementsAre(8, 9, 1, 7, 2, 3));
  vector.insert(5, numbers({5, 6}));
  EXPECT_THAT(elementsOf(vector), ElementsAre(8, 9, 1, 7, 2, 5, 6, 3));
  EXPECT_EQ(vector.capacity(), 8);
}

TEST(Vector, InsertingAndOverwritingLeaveTheCursor) {
  const std::int32_t values[] = {8, 9};
  Numbers vector = numbers({1, 2, 3, 4, 5});
  vector.at(3);

  vector.insert(1, 7);
  vector.insert(0, values, 2);
  vector.insert(5, numbers({5, 6}));
  vector.overwrite(2, values, 2);
  vector.overwrite(4, numbers({5, 6}));

  EXPECT_EQ(vector.cursor(), 3);
}

TEST(Vector, InsertingAtTheSizeAppendsAndPastItIsOutOfRange) {
  const std::int32_t values[] = {8, 9};
  Numbers vector = numbers({1, 2});

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
  vector.at(1);
  vector.removeRange(2, 0);
  EXPECT_EQ(vector.size(), 3);
  EXPECT_EQ(vector.cursor(), 0);
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

TEST(Vector, AVectorMayBeGivenToItself) {
  Numbers assigned = numbers({1, 2, 3});
  Numbers growing = numbers({1, 2, 3});
  Numbers roomy = numbers({1, 2, 3});
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
  Numbers assigned = numbers({1, 2, 3, 4});
  Numbers appended = numbers({1, 2, 3});
  Numbers inserted = numbers({1, 2, 3});
  Numbers roomy = numbers({1, 2, 3, 4, 5, 6});
  Numbers leftward = numbers({1, 2, 3, 4, 5});
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
