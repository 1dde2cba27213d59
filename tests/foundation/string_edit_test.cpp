#include "foundation/string.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/foundation/string_state.h"
#include "tests/support/thrown_text.h"

// Appending, removing, capacity, fill, letters and white space.

namespace {

using Tessaly::String;

}  // namespace

TEST(String, AppendingOneCharacterToADefaultStringGrowsTheCapacityTo2) {
  String text;

  text.append('x');

  expectState(text, "x", 2);
}

TEST(String, AppendingAbcToAnEmptyStringGivesACapacityOf6) {
  String fromText;
  String fromString;
  String fromRun;

  fromText.append("abc");
  fromString.append(String("abc"));
  fromRun.append("abcdef", 3);

  expectState(fromText, "abc", 6);
  expectState(fromString, "abc", 6);
  expectState(fromRun, "abc", 6);
}

TEST(String, AppendingGrowsOnlyAFullBufferToTwiceTheNewLength) {
  String text;

  text.append("abc");  // capacity 6
  text.append("de");   // length 5 and the zero byte fit exactly
  expectState(text, "abcde", 6);
  text.append('f');  // 2 * (5 + 1)
  expectState(text, "abcdef", 12);
  text.append("");
  expectState(text, "abcdef", 12);
}

TEST(String, AppendingARunKeepsItsZeroBytes) {
  String text("ab");

  text.append("\0cd", 3);

  expectState(text, std::string("ab\0cd", 5), 10);
}

TEST(String, AppendingARunOfANegativeCountIsAParameterError) {
  String text("ab");

  EXPECT_EQ(thrownText([&] { text.append("cd", -1); }), parameterText);

  expectState(text, "ab", 3);
}

TEST(String, AppendingItsOwnTextDoublesIt) {
  String growing("abc");
  String roomy = withCapacity("abc", 50);
  String text("abc");
  String tail = withCapacity("abc", 50);

  growing.append(growing);
  roomy.append(roomy);
  text.append(text.text());
  tail.append(tail.text() + 1);

  expectState(growing, "abcabc", 12);
  expectState(roomy, "abcabc", 50);
  expectState(text, "abcabc", 12);
  expectState(tail, "abcbc", 50);
}

TEST(String, ConcatenationHasRoomForExactlyTheCombinedLength) {
  const String left = withCapacity("ab", 50);

  expectState(left + String("cde"), "abcde", 6);
  expectState(left + "cde", "abcde", 6);
  expectState(String() + "", "", 1);
  EXPECT_EQ(left, "ab");
}

TEST(String, Removing9CharactersFromALengthOf5LeavesItEmpty) {
  String text("abcde");

  text.removeLast(9);

  expectState(text, "", 6);
}

TEST(String, RemovingTheLastCharactersKeepsTheCapacity) {
  String text("abcde");

  text.removeLast(0);
  expectState(text, "abcde", 6);
  text.removeLast(2);
  expectState(text, "abc", 6);

  EXPECT_EQ(thrownText([&] { text.removeLast(-1); }), parameterText);
  expectState(text, "abc", 6);
}

TEST(String, CuttingALengthOf5AtPosition5IsAPositionError) {
  String text("abcde");

  EXPECT_EQ(thrownText([&] { text.cut(5); }), "ERROR: String position is out of range");

  expectState(text, "abcde", 6);
}

TEST(String, CuttingKeepsWhatStandsBeforeThePosition) {
  String text("abcde");

  text.cut(4);
  expectState(text, "abcd", 6);
  text.cut(0);
  expectState(text, "", 6);

  EXPECT_EQ(thrownText([&] { text.cut(0); }), positionText);
  EXPECT_EQ(thrownText([&] { text.cut(-1); }), positionText);
}

TEST(String, ClearingKeepsTheCapacity) {
  String text = withCapacity("abc", 50);

  text.clear();

  expectState(text, "", 50);
}

TEST(String, SettingTheCapacityCutsTheTextWhereItMust) {
  String text("abcde");

  text.setCapacity(20);
  expectState(text, "abcde", 20);
  text.setCapacity(6);
  expectState(text, "abcde", 6);
  text.setCapacity(4);
  expectState(text, "abc", 4);
  text.setCapacity(1);
  expectState(text, "", 1);
}

TEST(String, SettingThePresentCapacityKeepsTheBuffer) {
  String text("abc");
  const char* const buffer = text.text();

  text.setCapacity(4);

  EXPECT_EQ(text.text(), buffer);
}

TEST(String, ACapacityBelow1IsAParameterError) {
  String text("abc");

  EXPECT_EQ(thrownText([&] { text.setCapacity(0); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setCapacity(-1); }), parameterText);

  expectState(text, "abc", 4);
}

TEST(String, FillingKeepsTheLengthOrMakesCopies) {
  String text("abc");

  text.fill('x');
  expectState(text, "xxx", 4);
  text.fill('y', 2);
  expectState(text, "yy", 4);
  text.fill('z', 4);  // capacity 4 is not above 4: twice 4
  expectState(text, "zzzz", 8);
  text.fill('z', 0);
  expectState(text, "", 8);
}

TEST(String, CaseConversionChangesEveryLetterInPlace) {
  String upper("aZ-9 b\xe9");
  String lower("aZ-9 B\xc9");

  upper.upperCase();
  lower.lowerCase();

  EXPECT_EQ(upper, "AZ-9 B\xe9");
  EXPECT_EQ(lower, "az-9 b\xc9");
}

TEST(String, StrippingTakesWhiteSpaceFromTheEndsOnly) {
  struct Case {
    const char* text;
    const char* leading;
    const char* trailing;
    const char* both;
  };
  const Case cases[] = {{"", "", "", ""},
                        {" \t\n\v\f\r", "", "", ""},
                        {"a b", "a b", "a b", "a b"},
                        {"  a b\r\n", "a b\r\n", "  a b", "a b"},
                        {"\xa0 a", "\xa0 a", "\xa0 a", "\xa0 a"}};

  for (const Case& one : cases) {
    String leading(one.text);
    String trailing(one.text);
    String both(one.text);
    leading.stripLeading();
    trailing.stripTrailing();
    both.strip();

    EXPECT_EQ(leading, one.leading);
    EXPECT_EQ(trailing, one.trailing);
    EXPECT_EQ(both, one.both);
    EXPECT_EQ(both.text()[both.length()], '\0');
  }
}

TEST(String, OnlyACharacterThatIsNotWhiteSpaceIsNotBlank) {
  EXPECT_FALSE(String("").isNotBlank());
  EXPECT_FALSE(String(" \t\r\n").isNotBlank());
  EXPECT_TRUE(String(" x ").isNotBlank());
  EXPECT_TRUE(String("\xa0").isNotBlank());
}

TEST(String, WhiteSpaceIsTheBlankAndWhatStandsFromTabToCarriageReturn) {
  const std::string whiteSpace = " \t\n\v\f\r";

  for (int code = 0; code < 256; ++code) {
    const char character = static_cast<char>(code);
    EXPECT_EQ(Tessaly::isWhiteSpace(character), whiteSpace.find(character) != std::string::npos)
        << code;
  }
}
