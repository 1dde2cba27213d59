#include "foundation/string.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <string>

#include "tests/support/thrown_text.h"

namespace {

using Tessaly::String;

struct TextCase {
  const char* value;
  std::int32_t width;
  const char* format;
  const char* expected;
};

template <typename Number>
struct NumberCase {
  Number value;
  std::int32_t width;
  const char* format;
  const char* expected;
};

template <typename Case>
void expectFields(std::initializer_list<Case> cases) {
  for (const Case& one : cases) {
    String field("old");
    String line("<");
    field.setField(one.value, one.width, one.format);
    line.appendField(one.value, one.width, one.format);
    line.append(">");

    EXPECT_EQ(field, one.expected) << one.format;
    EXPECT_EQ(line, (String("<") + one.expected + ">").text()) << one.format;
  }
}

}  // namespace

TEST(StringFields, ATextStandsAtTheLeftRightOrCentre) {
  expectFields<TextCase>({{"ab", 5, "", "ab   "},
                          {"ab", 5, "JR", "   ab"},
                          {"ab", 6, "JC", "  ab  "},
                          {"ab", 5, "JC", " ab  "},
                          {"", 3, "JR", "   "},
                          {"ab", 5, "JL", "ab   "},
                          {"ab", 5, "J", "ab   "}});
}

TEST(StringFields, AValueLongerThanTheWidthWidensTheField) {
  expectFields<TextCase>({{"abcdef", 3, "JR", "abcdef"}, {"abc", 3, "", "abc"}, {"", 0, "", ""}});
}

TEST(StringFields, AnyCharacterFillsTheField) {
  expectFields<TextCase>({{"ab", 5, "F*", "ab***"},
                          {"ab", 5, "JRF0", "000ab"},
                          {"ab", 5, "FJR", "abJJJ"},  // the second letter is the fill character
                          {"ab", 5, "F", "ab   "}});
}

TEST(StringFields, ThePositionMovesAValueInwardsAndKeepsItWhole) {
  expectFields<TextCase>({{"ab", 6, "A1", " ab   "},
                          {"ab", 6, "A1JR", "   ab "},
                          {"ab", 6, "JCA1", "   ab "},
                          {"ab", 6, "A", "ab    "},
                          {"ab", 6, "A99", "    ab"},
                          {"ab", 6, "A99JR", "ab    "},
                          {"ab", 6, "JCA99", "    ab"},
                          {"ab", 6, "A99999999999", "    ab"}});
}

TEST(StringFields, OtherCharactersOfTheFormatAreIgnored) {
  expectFields<TextCase>({{"ab", 5, "x, JR;7", "   ab"}, {"ab", 5, "jrf*", "ab   "}});
}

TEST(StringFields, ACharacterIsATextOfOne) {
  expectFields<NumberCase<char>>({{'x', 3, "JC", " x "}, {'x', 0, "", "x"}});
}

TEST(StringFields, AStringKeepsItsZeroBytes) {
  String value;
  value.append("a\0b", 3);

  String field;
  field.setField(value, 5, "F-");

  EXPECT_EQ(std::string(field.text(), 5), std::string("a\0b--", 5));
}

TEST(StringFields, AnIntegerTakesASignOnRequest) {
  expectFields<NumberCase<std::int32_t>>({{42, 5, "JR", "   42"},
                                          {-42, 5, "JR", "  -42"},
                                          {42, 5, "JRS", "  +42"},
                                          {0, 3, "S", "+0 "},
                                          {-42, 5, "S", "-42  "},
                                          {42, 2, "S", "+42"}});
}

TEST(StringFields, TheSignOfANumberStandsAtTheRimOnRequest) {
  expectFields<NumberCase<std::int32_t>>({{-42, 6, "JRF0R", "-00042"},
                                          {42, 6, "JRF0RS", "+00042"},
                                          {42, 6, "JRF0R", "000042"},
                                          {-42, 6, "JRF0", "000-42"}});
  expectFields<TextCase>({{"-a", 4, "JRF0R", "00-a"}});  // a text has no sign
}

TEST(StringFields, ADoubleHasTheDecimalsOfItsPrecision) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  expectFields<NumberCase<double>>({{2.5, 6, "JR", "   2.5"},
                                    {2.5, 6, "JRP0", "   2.5"},
                                    {2.5, 6, "JRP3", " 2.500"},
                                    {-0.25, 6, "P1S", "-0.2  "},  // an exact half rounds to even
                                    {1.5, 0, "P2S", "+1.50"},
                                    {-0.0, 0, "P2", "0.00"},
                                    {1.5, 0, "P99", "1.500000000000000"},
                                    {1e-7, 8, "", "1.e-07  "},
                                    {infinity, 5, "JRSP2", " +inf"},
                                    {-infinity, 5, "JRS", " -inf"},
                                    {nan, 5, "JRS", "  nan"}});
}

TEST(StringFields, TheLargestDoubleWithDecimalsFits) {
  String field;

  field.setField(-std::numeric_limits<double>::max(), 0, "P15");

  EXPECT_EQ(field.length(), 1 + 309 + 1 + 15);
  EXPECT_TRUE(field.startsWith("-17976931348623157"));
}

TEST(StringFields, ANegativeWidthIsAParameterError) {
  const char* const parameterText = "ERROR: String parameter is invalid";
  String text("old");

  EXPECT_EQ(thrownText([&] { text.setField("ab", -1, ""); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setField('x', -1, ""); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setField(std::int32_t{1}, -1, ""); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.appendField(2.5, -1, ""); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.appendField(String("ab"), -1, ""); }), parameterText);

  EXPECT_EQ(text, "old");
}

TEST(StringFields, ANullTextOrFormatIsAParameterError) {
  const char* const parameterText = "ERROR: String parameter is invalid";
  const char* const missing = nullptr;
  String text("old");

  EXPECT_EQ(thrownText([&] { text.setField(missing, 3, ""); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.appendField(missing, 3, ""); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setField("ab", 3, missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setField('x', 3, missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.appendField(std::int32_t{1}, 3, missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.appendField(2.5, 3, missing); }), parameterText);

  EXPECT_EQ(text, "old");
}

TEST(StringFields, AWidthThatNoBufferHoldsIsAnAllocationError) {
  String text("old");

  EXPECT_EQ(thrownText([&] { text.setField("ab", std::numeric_limits<std::int32_t>::max(), ""); }),
            "ERROR: String can not be allocated.");

  EXPECT_EQ(text, "old");
}

TEST(StringFields, AStringMayBeItsOwnValueAndFormat) {
  String value("ab");
  String format("JR");

  value.setField(value, 4, "JR");
  value.appendField(value.text(), 5, "F*");
  format.setField("x", 3, format.text());

  EXPECT_EQ(value, "  ab  ab*");
  EXPECT_EQ(format, "  x");
}
