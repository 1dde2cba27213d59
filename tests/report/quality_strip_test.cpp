#include "report/quality_strip.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::string strip(const std::vector<std::uint8_t>& qualities) {
  return Quillet::qualityStrip(qualities);
}

}  // namespace

TEST(QualityStrip, OfNoBasesIsEmpty) { EXPECT_EQ(strip({}), ""); }

TEST(QualityStrip, HasACharacterForEachTenBasesAndOneForTheRest) {
  EXPECT_EQ(strip(std::vector<std::uint8_t>(9, 40)), "e");
  EXPECT_EQ(strip(std::vector<std::uint8_t>(10, 40)), "e");
  EXPECT_EQ(strip(std::vector<std::uint8_t>(11, 40)), "ee");
  EXPECT_EQ(strip(std::vector<std::uint8_t>(735, 40)), std::string(74, 'e'));
}

TEST(QualityStrip, WritesTheMeanAsOneOf62Characters) {
  const struct {
    std::uint8_t quality;
    const char* character;
  } cases[] = {{0, "0"},  {9, "9"},  {10, "A"}, {35, "Z"},  {36, "a"},  {60, "y"},
               {61, "z"}, {62, "z"}, {93, "z"}, {127, "z"}, {128, "0"}, {255, "0"}};
  for (const auto& row : cases) {
    EXPECT_EQ(strip(std::vector<std::uint8_t>(10, row.quality)), row.character) << int{row.quality};
  }
}

TEST(QualityStrip, RoundsTheMeanOfEachGroup) {
  EXPECT_EQ(strip({20, 20, 20, 20, 20, 20, 20, 20, 20, 24}), "K");   // 20.4
  EXPECT_EQ(strip({20, 20, 20, 20, 20, 20, 20, 20, 20, 25}), "L");   // 20.5
  EXPECT_EQ(strip({20, 20, 20, 20, 20, 20, 20, 20, 20, 200}), "I");  // 18
  // The rest has three bases: 31 / 3 is 10.3, and 32 / 3 is 10.7.
  EXPECT_EQ(strip({7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 10, 10, 11}), "7A");
  EXPECT_EQ(strip({7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 10, 11, 11}), "7B");
}
