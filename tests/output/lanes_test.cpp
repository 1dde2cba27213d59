#include "output/lanes.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>

// What the vocabulary means, lane by lane. Its users have tests of their own.

namespace {

using namespace Quillet;

using Shorts = std::array<std::int16_t, 8>;
using Longs = std::array<std::int32_t, 4>;

const Shorts ascending = {1, 2, 3, 4, 5, 6, 7, 8};
const Shorts mixed = {-1, 2, -3, 40, 5, -32768, 32767, 0};

Shorts valuesOf(Lanes<std::int16_t, 8> lanes) {
  Shorts values;
  store(lanes, values.data());
  return values;
}

TEST(Lanes, LanesAreReadAndStoredAtAnyAddress) {
  const std::int16_t source[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  std::int16_t destination[10] = {};

  store(lanesAt<8>(source + 1), destination + 1);

  for (int k = 0; k < 10; ++k) EXPECT_EQ(destination[k], k == 9 ? 0 : k) << k;
}

TEST(Lanes, EveryLaneTakesTheValue) {
  EXPECT_EQ(valuesOf(everyLane<8>(std::int16_t{-7})), (Shorts{-7, -7, -7, -7, -7, -7, -7, -7}));
}

TEST(Lanes, TheLargerTheSmallerAndTheChosenAreTakenLaneByLane) {
  const auto left = lanesAt<8>(ascending.data());
  const auto right = lanesAt<8>(mixed.data());

  EXPECT_EQ(valuesOf(larger(left, right)), (Shorts{1, 2, 3, 40, 5, 6, 32767, 8}));
  EXPECT_EQ(valuesOf(smaller(left, right)), (Shorts{-1, 2, -3, 4, 5, -32768, 7, 0}));
  EXPECT_EQ(valuesOf(choose(right < 0, left, right)), (Shorts{1, 2, 3, 40, 5, 6, 32767, 0}));
}

TEST(Lanes, HalvesJoinToNumbersOfTwiceTheWidth) {
  const auto upper = lanesAt<8>(mixed.data());
  const auto lower = lanesAt<8>(ascending.data());

  Longs first;
  Longs last;
  store(join<0>(upper, lower), first.data());
  store(join<4>(upper, lower), last.data());

  EXPECT_EQ(first, (Longs{-65536 + 1, 2 * 65536 + 2, -3 * 65536 + 3, 40 * 65536 + 4}));
  EXPECT_EQ(last, (Longs{5 * 65536 + 5, -32768 * 65536 + 6, 32767 * 65536 + 7, 8}));
}

TEST(Lanes, TheSumOfAllLanesWraps) {
  const std::uint32_t values[] = {0xFFFF'FFFF, 10, 200, 3000};

  EXPECT_EQ(sumOf(lanesAt<4>(values)), 3209U);
}

TEST(Lanes, TheBitsOfAllLanesAreCollected) {
  for (int lane = 0; lane < 8; ++lane) {
    std::uint16_t values[8] = {};
    values[lane] = 0x8001;
    values[0] |= 0x0100;

    EXPECT_EQ(bitsOf(lanesAt<8>(values)), 0x8101) << lane;
  }
}

}  // namespace
