#include "foundation/vector.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "tests/foundation/numbers.h"
#include "tests/support/thrown_text.h"

// Arrays that can not be allocated.

namespace {

using testing::ElementsAre;

const char* const allocationText = "ERROR: Can not allocate memory for vector array";

/// An element type that allows only a given number of array allocations.
struct Rare {
  std::int32_t value = 0;

  static inline int arraysLeft = 1000;

  static void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (arraysLeft == 0) return nullptr;
    --arraysLeft;
    return ::operator new[](size, std::nothrow);
  }
  static void operator delete[](void* array) noexcept { ::operator delete[](array); }

  friend auto operator<=>(const Rare& left, const Rare& right) = default;
};

using RareVector = Tessaly::Vector<Rare>;

/// Expects `action` to fail and to leave `vector` unchanged when it can allocate `count` arrays.
void expectFailure(const char* name, int count, RareVector& vector,
                   const std::function<void()>& action) {
  const std::vector<Rare> before = elementsOf(vector);
  const std::int32_t capacity = vector.capacity();
  const std::int32_t cursor = vector.cursor();

  Rare::arraysLeft = count;
  const std::string text = thrownText(action);
  Rare::arraysLeft = 1000;

  EXPECT_EQ(text, allocationText) << name;
  EXPECT_EQ(elementsOf(vector), before) << name;
  EXPECT_EQ(vector.capacity(), capacity) << name;
  EXPECT_EQ(vector.cursor(), cursor) << name;
}

}  // namespace

TEST(Vector, LackOfMemoryIsAnAllocationErrorAndChangesNothing) {
  const Rare values[] = {{7}, {8}, {9}};
  RareVector vector;
  vector.assign(values, 2);
  vector.at(1);
  RareVector other;
  other.assign(values, 3);

  expectFailure("making", 0, vector, [] { RareVector unusable; });
  expectFailure("copying", 0, vector, [&] { RareVector unusable(vector); });
  expectFailure("assigning", 0, vector, [&] { vector.assign(other); });
  expectFailure("assigning an array", 0, vector, [&] { vector.assign(values, 3); });
  expectFailure("assigning and copying", 0, vector, [&] { vector.assignAndCopy(other); });
  expectFailure("assigning and copying", 1, vector, [&] { vector.assignAndCopy(other); });
  expectFailure("copying out", 0, vector, [&] { vector.copyOut(); });
  expectFailure("appending", 0, vector, [&] { vector.append(other); });
  expectFailure("appending an array", 0, vector, [&] { vector.append(values, 3); });
  expectFailure("appending a value", 0, vector, [&] { vector.append(values[0]); });
  expectFailure("inserting", 0, vector, [&] { vector.insert(1, other); });
  expectFailure("inserting an array", 0, vector, [&] { vector.insert(1, values, 3); });
  expectFailure("inserting a value", 0, vector, [&] { vector.insert(1, values[0]); });
}

TEST(Vector, AGrowthPastTheLargestCapacityIsAnAllocationError) {
  constexpr std::int32_t half = 1 << 30;  // twice this is one more than fits
  const std::int32_t values[] = {8, 9};   // never read
  Numbers vector = numbers({1, 2, 3});

  EXPECT_EQ(thrownText([&] { vector.append(values, half - 3); }), allocationText);
  EXPECT_EQ(thrownText([&] { vector.insert(0, values, std::numeric_limits<std::int32_t>::max()); }),
            allocationText);

  EXPECT_THAT(elementsOf(vector), ElementsAre(1, 2, 3));
  EXPECT_EQ(vector.capacity(), 3);
}
