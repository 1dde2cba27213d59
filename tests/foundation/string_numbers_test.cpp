#include "foundation/string.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <string>

namespace {

using Tessaly::String;

using Limits = std::numeric_limits<double>;

struct DoubleCase {
  double value;
  const char* expected;
};

void expectTexts(std::initializer_list<DoubleCase> cases) {
  for (const DoubleCase& one : cases) {
    EXPECT_EQ(String::textOf(one.value), one.expected) << one.value;
  }
}

}  // namespace

TEST(StringNumbers, ADecimalNumberHasDigitsAfterEveryPointAndExponent) {
  struct Case {
    const char* text;
    bool expected;
  };
  const Case cases[] = {
      {"0", true},         {"12", true},     {"+12", true},    {"-12", true},    {"1.5", true},
      {".5", true},        {"-.5e+3", true}, {"1e5", true},    {"1E-05", true},  {"1.5e3", true},
      {"12 apples", true}, {"12\t", true},   {"1e5\n?", true}, {"", false},      {"12.", false},
      {".", false},        {"-", false},     {"+.", false},    {" 12", false},   {"12x", false},
      {"1e", false},       {"1e+", false},   {"e5", false},    {"1.5.2", false}, {"--1", false},
      {"1.e5", false},     {"0x1F", false},  {"1e5.0", false}, {"12. ", false},  {"- 1", false}};

  for (const Case& one : cases) {
    EXPECT_EQ(String(one.text).isDecimalNumber(), one.expected) << '"' << one.text << '"';
  }
}

TEST(StringNumbers, AZeroByteIsNoEndOfANumber) {
  String text;
  text.append("12\0", 3);

  EXPECT_FALSE(text.isDecimalNumber());
}

TEST(StringNumbers, Hexadecimal0x1FAnd1fAre31And0X1FIs0) {
  EXPECT_EQ(String("0x1F").hexadecimalValue(), 31);
  EXPECT_EQ(String("1f").hexadecimalValue(), 31);
  EXPECT_EQ(String("0X1F").hexadecimalValue(), 0);
}

TEST(StringNumbers, HexadecimalDigitsEndAtTheFirstOtherCharacter) {
  struct Case {
    const char* text;
    std::int32_t expected;
  };
  const Case cases[] = {{"", 0},
                        {"0x", 0},
                        {"xyz", 0},
                        {"-1", 0},
                        {" 1", 0},
                        {"0x0x1", 0},
                        {"aBcDeF", 0xABCDEF},
                        {"10g7", 16},
                        {"1f.2", 31},
                        {"0x@1", 0},
                        {"9:", 9},
                        {"7fffffff", 2147483647},
                        {"80000000", std::int32_t{-2147483647} - 1},
                        {"ffffffff", -1},
                        {"100000001", 1}};  // the low 32 bits

  for (const Case& one : cases) {
    EXPECT_EQ(String(one.text).hexadecimalValue(), one.expected) << '"' << one.text << '"';
  }
}

TEST(StringNumbers, AnIntegerHasItsDigitsAndAMinusOnly) {
  struct Case {
    std::int32_t value;
    const char* expected;
  };
  const Case cases[] = {{0, "0"},
                        {7, "7"},
                        {-7, "-7"},
                        {1200, "1200"},
                        {std::numeric_limits<std::int32_t>::max(), "2147483647"},
                        {std::numeric_limits<std::int32_t>::min(), "-2147483648"}};

  for (const Case& one : cases) {
    String text("longer than any number");
    text.set(one.value);
    char digits[String::integerTextSize];
    const std::int32_t length = String::writeInteger(one.value, digits);

    EXPECT_EQ(text, one.expected);
    EXPECT_EQ(String::textOf(one.value), one.expected);
    EXPECT_EQ(std::string(digits, static_cast<std::size_t>(length)), one.expected);
  }
}

TEST(StringNumbers, TheDouble100Is100AndAQuarterBelowZeroIsMinus0Point25) {
  expectTexts({{100, "100"}, {-0.25, "-0.25"}});
}

TEST(StringNumbers, TheDouble1e15IsFixedAnd1e16And1eMinus7UseExponentNotation) {
  expectTexts({{1e15, "1000000000000000"}, {1e16, "1.e+16"}, {1e-7, "1.e-07"}});
}

TEST(StringNumbers, FixedNotationHasNoUselessZerosAndNoUselessPoint) {
  expectTexts({{0, "0"},
               {-0.0, "0"},
               {3, "3"},
               {-3, "-3"},
               {10, "10"},
               {9.5, "9.5"},
               {1234500, "1234500"},
               {2.5, "2.5"},
               {0.1, "0.1"},
               {0.3, "0.3"},
               {0.05, "0.05"},
               {123456.789, "123456.789"},
               {123456789012345, "123456789012345"},
               {0.000001, "0.000001"},
               {0.00000125, "0.00000125"},
               {-0.0009765625, "-0.0009765625"}});
}

TEST(StringNumbers, ASingleDigitInExponentNotationKeepsItsPoint) {
  expectTexts({{1e-7, "1.e-07"}, {-2e-8, "-2.e-08"}, {3e20, "3.e+20"}});
}

TEST(StringNumbers, TheExponentHasTwoDigitsOrThree) {
  expectTexts({{1.25e-7, "1.25e-07"},
               {-1.25e16, "-1.25e+16"},
               {1.5e-99, "1.5e-99"},
               {1e99, "1.e+99"},
               {1e100, "1.e+100"},
               {1e-100, "1.e-100"},
               {-1.5e300, "-1.5e+300"}});
}

TEST(StringNumbers, FifteenDigitsAreKept) {
  expectTexts({{1.0 / 3, "0.333333333333333"},
               {2.0 / 3, "0.666666666666667"},
               {1234567890123456, "1234567890123460"}});
}

TEST(StringNumbers, TheSixteenthDigitAloneRounds) {
  // 22 units in the last place are 4.885e-15, 23 are 5.107e-15: the 16th digits are 4 and 5.
  expectTexts(
      {{1 + 22 * Limits::epsilon(), "1"}, {1 + 23 * Limits::epsilon(), "1.00000000000001"}});
}

TEST(StringNumbers, RoundingUpDropsNines) {
  // 1.99999999999999911 and 129.99999999999997: after the digit that goes up, only nines follow.
  expectTexts({{2 - 4 * Limits::epsilon(), "2"}, {129.99999999999997, "130"}});
}

TEST(StringNumbers, FifteenNinesRoundToOneAndTheNextExponent) {
  // The last one goes from exponent 15 (fixed notation) to 16 (exponent notation).
  expectTexts({{99.99999999999999, "100"}, {9999999999999998, "1.e+16"}});
}

// Powers made by repeated multiplication are off in the 15th digit from 1e89 on.
TEST(StringNumbers, EveryPowerOfTenHasOneDigit) {
  for (int exponent = -307; exponent <= 308; ++exponent) {
    if (exponent >= -6 && exponent <= 15) {
      continue;  // fixed notation
    }
    const std::string magnitude = std::to_string(std::abs(exponent));
    const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);

    EXPECT_EQ(String::textOf(power), ((exponent < 0 ? "1.e-" : "1.e+") +
                                      std::string(magnitude.length() < 2 ? "0" : "") + magnitude)
                                         .c_str());
  }
}

// The double just below each of these powers is the power when rounded to 15 digits. Brought into
// [1, 10) by a multiplication, it rounds to 10.
TEST(StringNumbers, AMantissaThatRoundsTo10IsOneOfTheNextExponent) {
  const auto justBelow = [](double value) { return std::nextafter(value, 0.0); };
  expectTexts({{justBelow(1e-1), "0.1"},
               {justBelow(1e-4), "0.0001"},
               {justBelow(1e-17), "1.e-17"},
               {-justBelow(1e-31), "-1.e-31"}});
}

TEST(StringNumbers, ExtremeDoublesKeepTheirDigits) {
  // 1.7976931348623157e308 and 2.2250738585072014e-308
  expectTexts({{Limits::max(), "1.79769313486232e+308"},
               {-Limits::max(), "-1.79769313486232e+308"},
               {1e308, "1.e+308"},
               {Limits::min(), "2.2250738585072e-308"},
               {1e-307, "1.e-307"}});
}

TEST(StringNumbers, PowersOfTenAreCorrectlyRounded) {
  // Reckoned apart from the program: with the power one unit in the last place up (first of each
  // pair) or down (second), the last digit is another one.
  expectTexts({{2.199532218291915e+23, "2.19953221829192e+23"},
               {6.142330489676224e+23, "6.14233048967622e+23"},
               {6.083377532334135e+45, "6.08337753233414e+45"},
               {5.789312364130644e+45, "5.78931236413064e+45"},
               {6.485013776091656e+199, "6.48501377609166e+199"},
               {8.107529090913266e+199, "8.10752909091326e+199"},
               {8.177764720608027e+300, "8.17776472060803e+300"},
               {5.013976885766565e+300, "5.01397688576656e+300"}});
}

TEST(StringNumbers, DenormalDoublesEndAndKeepTheirMagnitude) {
  for (const double value :
       {1e-308, 9.99e-309, 1e-310, 1.5e-322, Limits::denorm_min(), -Limits::denorm_min()}) {
    const String text = String::textOf(value);
    const double again = std::strtod(text.text(), nullptr);

    EXPECT_LT(std::abs(again / value - 1), 1e-14) << text;
    EXPECT_LE(text.length(), 22);  // a sign, 15 digits, a point and "e-308"
  }
}

TEST(StringNumbers, WhatIsNoFiniteNumberHasAName) {
  expectTexts({{Limits::quiet_NaN(), "nan"},
               {-Limits::quiet_NaN(), "nan"},
               {Limits::infinity(), "inf"},
               {-Limits::infinity(), "-inf"}});
}

TEST(StringNumbers, SettingADoubleIsItsText) {
  String text("old");

  text.set(-0.25);

  EXPECT_EQ(text, "-0.25");
}
