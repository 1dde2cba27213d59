#include "output/height_key.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>

namespace {

TEST(HeightKey, GivesBackItsHeightAndItsIndex) {
  using Key = Quillet::HeightKey<4>;

  EXPECT_EQ(Key::of(9U, 3U), 9U * 16 + 12);
  EXPECT_EQ(Key::height(156U), 9U);
  EXPECT_EQ(Key::index(156U), 3U);
}

TEST(HeightKey, TheLargestKeyIsTheFirstOfTheHighest) {
  using Key = Quillet::HeightKey<2>;
  const std::uint32_t heights[] = {5, 9, 9, 8};

  std::uint32_t best = 0;
  for (std::uint32_t i = 0; i < 4; ++i) best = std::max(best, Key::of(heights[i], i));

  EXPECT_EQ(Key::height(best), 9U);
  EXPECT_EQ(Key::index(best), 1U);
}

TEST(HeightKey, HoldsThe32BitEndsIn64Bits) {
  using Key = Quillet::HeightKey<32>;

  const std::uint64_t key = Key::of(std::uint64_t{65535}, std::uint64_t{0xFFFFFFFF});

  EXPECT_EQ(Key::height(key), 65535U);
  EXPECT_EQ(Key::index(key), 0xFFFFFFFFU);
}

TEST(HeightKey, HoldsNegativeHeights) {
  using Key = Quillet::HeightKey<16>;

  const std::int32_t key = Key::of(-32768, 15);

  EXPECT_EQ(Key::height(key), -32768);
  EXPECT_EQ(Key::index(key), 15);
  EXPECT_LT(key, Key::of(-32767, 15));
}

}  // namespace
