#include "output/decimal.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

using Put = char* (*)(char* text, std::int32_t value);
constexpr Put puts[] = {Quillet::putDecimal, Quillet::putShortDecimal};

std::string textOf(Put put, std::int32_t value) {
  std::array<char, Quillet::longestDecimal> bytes{};
  return {bytes.data(), put(bytes.data(), value)};
}

TEST(Decimal, TheTextHasTheDigitsOfTheNumberAndNothingElse) {
  struct Case {
    std::int32_t value;
    const char* text;
  };
  const Case cases[] = {
      {0, "0"},
      {7, "7"},
      {10, "10"},
      {999, "999"},
      {1000, "1000"},
      {1001, "1001"},
      {9999, "9999"},
      {10000, "10000"},
      {10203, "10203"},
      {65280, "65280"},
      {99999, "99999"},
      {100000, "100000"},
      {100001, "100001"},
      {100100, "100100"},
      {999999, "999999"},
      {1000000, "1000000"},
      {9999999, "9999999"},
      {10000000, "10000000"},
      {10000100, "10000100"},
      {20030004, "20030004"},
      {99999999, "99999999"},
      {100000000, "100000000"},
      {999999999, "999999999"},
      {1000000000, "1000000000"},
      {2147483647, "2147483647"},
      {-1, "-1"},
      {-45, "-45"},
      {-128, "-128"},
      {std::numeric_limits<std::int32_t>::min(), "-2147483648"},
  };
  for (const Put put : puts) {
    for (const Case& c : cases) EXPECT_EQ(textOf(put, c.value), c.text);
  }
}

TEST(Decimal, EveryNumberOfUpToFiveDigitsIsRight) {
  for (const Put put : puts) {
    for (std::int32_t value = 0; value <= 100000; ++value) {
      ASSERT_EQ(textOf(put, value), std::to_string(value));
    }
  }
}

TEST(Decimal, NumbersOfEveryLengthAreRight) {
  std::mt19937 random(1);
  for (int round = 0; round < 200000; ++round) {
    const auto bits = static_cast<std::uint32_t>(random());
    const auto value = static_cast<std::int32_t>(bits >> (random() % 32));
    for (const Put put : puts) ASSERT_EQ(textOf(put, value), std::to_string(value));
  }
}

TEST(Decimal, ABlankFollowsTheText) {
  for (const Put put : puts) {
    for (const std::int32_t value : {0, 9, 10, 12345, 123456, 99999999, 100000000, -1}) {
      std::string bytes(Quillet::longestDecimal, '#');

      EXPECT_EQ(*put(bytes.data(), value), ' ') << value;
    }
  }
}

TEST(Decimal, NoByteAfterTheLongestTextIsTouched) {
  for (const Put put : puts) {
    for (const std::int32_t value : {0, 12345, 99999999, 2147483647, -2147483647}) {
      std::string bytes(Quillet::longestDecimal + 4, '#');

      put(bytes.data(), value);

      EXPECT_EQ(bytes.substr(Quillet::longestDecimal), "####") << value;
    }
  }
}

}  // namespace
