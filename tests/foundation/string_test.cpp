#include "foundation/string.h"

#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>

#include "tests/support/thrown_text.h"

namespace {

using Tessaly::String;

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

const char* const allocationText = "ERROR: String can not be allocated.";
const char* const positionText   = "ERROR: String position is out of range";
const char* const parameterText  = "ERROR: String parameter is invalid";

// Text, length, capacity and final zero byte at once.
void expectState(const String& actual, const std::string& text, std::int32_t capacity) {
  EXPECT_EQ(std::string(actual.text(), static_cast<std::size_t>(actual.length())), text);
  EXPECT_EQ(actual.capacity(), capacity);
  EXPECT_EQ(actual.text()[actual.length()], '\0');
}

String withCapacity(const char* text, std::int32_t capacity) {
  String result(text);
  result.setCapacity(capacity);
  return result;
}

}  // namespace

TEST(String, ConstructionSizesTheBufferByItsSource) {
  const String room = withCapacity("abc", 50);

  expectState(String(), "", 1);
  expectState(String(std::int32_t{20}), "", 21);
  expectState(String(std::int32_t{-5}), "", 1);
  expectState(String("abc"), "abc", 4);
  expectState(String(""), "", 1);
  expectState(String(room), "abc", 50);
  expectState(String('x'), "x", 2);
  expectState(String('x', 3), "xxx", 4);
  expectState(String('x', 0), "", 1);
}

TEST(String, ACopyHasItsOwnCharacters) {
  String original("abc");

  const String copy(original);
  original.fill('z');

  EXPECT_EQ(copy, "abc");
  EXPECT_EQ(original, "zzz");
}

TEST(String, ANegativeFillCountIsAParameterError) {
  String text("abc");

  EXPECT_EQ(thrownText([] { String unusable('x', -1); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.fill('x', -1); }), parameterText);

  expectState(text, "abc", 4);
}

TEST(String, ARoomThatLeavesNoPlaceForTheZeroByteIsAnAllocationError) {
  EXPECT_EQ(thrownText([] { String unusable(largest); }), allocationText);
  EXPECT_EQ(thrownText([] { String unusable('x', largest); }), allocationText);
}

TEST(String, ADoublingPastTheLargestCapacityIsAnAllocationError) {
  constexpr std::int32_t half = 1 << 30;  // twice this is one more than fits
  String text("abc");

  EXPECT_EQ(thrownText([&] { text.fill('x', half); }), allocationText);
  EXPECT_EQ(thrownText([&] { text.append("never read", half - 3); }), allocationText);
  EXPECT_EQ(thrownText([&] { text.append("never read", largest); }), allocationText);

  expectState(text, "abc", 4);
}

TEST(String, ANullTextIsAParameterError) {
  const char* const missing = nullptr;
  String text("abc");

  EXPECT_EQ(thrownText([&] { String unusable(missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text = missing; }), parameterText);
  EXPECT_EQ(thrownText([&] { text.set(missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setPrefix(missing, 2); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.append(missing); }), parameterText);

  EXPECT_EQ(text, "abc");
}

TEST(String, ExactAssignmentOfAbToACapacityOf100LeavesACapacityOf3) {
  String fromString(std::int32_t{99});
  String fromText(std::int32_t{99});
  ASSERT_EQ(fromString.capacity(), 100);

  fromString = String("ab");
  fromText   = "ab";

  expectState(fromString, "ab", 3);
  expectState(fromText, "ab", 3);
}

TEST(String, ExactAssignmentKeepsABufferThatFitsAlready) {
  String text("abc");
  const char* const buffer = text.text();

  text = "xyz";

  EXPECT_EQ(text.text(), buffer);
  expectState(text, "xyz", 4);
}

TEST(String, ExactAssignmentFromItselfKeepsTheText) {
  String whole = withCapacity("abcdef", 20);
  String tail("abcdef");
  String fitting = withCapacity("abcdef", 4);

  const String& same = whole;
  whole              = same;
  tail               = tail.text() + 2;
  fitting            = fitting.text();

  expectState(whole, "abcdef", 7);
  expectState(tail, "cdef", 5);
  expectState(fitting, "abc", 4);
}

TEST(String, TheCopyingSetKeepsACapacityOf100) {
  String fromString(std::int32_t{99});
  String fromText(std::int32_t{99});
  String fromInteger(std::int32_t{99});
  String fromDouble(std::int32_t{99});

  fromString.set(String("ab"));
  fromText.set("ab");
  fromInteger.set(std::int32_t{-12});
  fromDouble.set(2.5);

  expectState(fromString, "ab", 100);
  expectState(fromText, "ab", 100);
  expectState(fromInteger, "-12", 100);
  expectState(fromDouble, "2.5", 100);
}

TEST(String, TheCopyingSetReplacesABufferThatIsTooSmall) {
  String small("ab");
  String justLargeEnough("abc");

  small.set("abc");  // capacity 3 is not above the length 3
  justLargeEnough.set("xyz");

  EXPECT_GE(small.capacity(), 4);
  EXPECT_EQ(small, "abc");
  expectState(justLargeEnough, "xyz", 4);
}

TEST(String, TheCopyingSetTakesItsOwnText) {
  String same("abcdef");
  String tail("abcdef");

  same.set(same);
  tail.set(tail.text() + 2);

  EXPECT_EQ(same, "abcdef");
  EXPECT_EQ(tail, "cdef");
}

TEST(String, APrefixOfZeroCharactersIsTheWholeSource) {
  String fromString;
  String fromText;

  fromString.setPrefix(String("abcdef"), 0);
  fromText.setPrefix("abcdef", 0);

  EXPECT_EQ(fromString, "abcdef");
  EXPECT_EQ(fromText, "abcdef");
}

TEST(String, APrefixIsNoLongerThanItsSource) {
  struct Case {
    std::int32_t count;
    const char* expected;
  };
  const String source("abcdef");

  for (const Case& one : {Case{1, "a"}, Case{5, "abcde"}, Case{6, "abcdef"}, Case{7, "abcdef"},
                          Case{largest, "abcdef"}}) {
    String fromString(std::int32_t{99});
    String fromText(std::int32_t{99});
    fromString.setPrefix(source, one.count);
    fromText.setPrefix("abcdef", one.count);

    expectState(fromString, one.expected, 100);
    expectState(fromText, one.expected, 100);
  }
}

TEST(String, ANegativePrefixCountIsAParameterError) {
  String text("abc");

  EXPECT_EQ(thrownText([&] { text.setPrefix(String("xyz"), -1); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setPrefix("xyz", -1); }), parameterText);

  EXPECT_EQ(text, "abc");
}

TEST(String, APrefixOfATextStopsAtItsZeroByteAndNeedsNoneWithinTheCount) {
  const char run[] = {'a', 'b', 'c'};
  String counted;
  String stopped;

  counted.setPrefix(run, 3);
  stopped.setPrefix("ab\0cd", 5);

  EXPECT_EQ(counted, "abc");
  EXPECT_EQ(stopped, "ab");
}

TEST(String, APrefixOfAStringKeepsItsZeroBytes) {
  String source;
  source.append("ab\0cd", 5);

  String text;
  text.setPrefix(source, 4);

  EXPECT_EQ(std::string(text.text(), 4), std::string("ab\0c", 4));
  EXPECT_EQ(text.length(), 4);
}

TEST(String, ATailStartsAnywhereFromZeroToTheLength) {
  const String source("abc");
  String text;

  text.setTail(source, 0);
  EXPECT_EQ(text, "abc");
  text.setTail(source, 1);
  EXPECT_EQ(text, "bc");
  text.setTail(source, 3);
  EXPECT_EQ(text, "");

  EXPECT_EQ(thrownText([&] { text.setTail(source, 4); }), positionText);
  EXPECT_EQ(thrownText([&] { text.setTail(source, -1); }), positionText);
}

TEST(String, PrefixAndTailOfItselfShortenInPlace) {
  String text("abcdef");

  text.setTail(text, 2);
  expectState(text, "cdef", 7);
  text.setPrefix(text, 3);
  expectState(text, "cde", 7);
}

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

TEST(String, OutputWritesTheStoredCharacters) {
  String text;
  text.append("a\0b", 3);
  std::ostringstream stream;

  stream << text << String("!") << String();

  EXPECT_EQ(stream.str(), std::string("a\0b!", 4));
}

TEST(String, ALineEndsAtItsNewlineOrAtTheEndOfTheStream) {
  std::istringstream stream("one\n\ntwo\r\nlast");
  String line("old");

  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(line, "one");
  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(line, "");
  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(line, "two\r");
  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(line, "last");
  EXPECT_FALSE(readLine(stream, line));
  EXPECT_EQ(line, "");
}

TEST(String, ALineIsReadWholeWhateverItsLength) {
  for (const std::size_t length : {510U, 511U, 512U, 1022U, 1023U, 5000U}) {
    const std::string whole(length, 'x');
    for (const char* const ending : {"", "\n", "\nnext"}) {
      std::istringstream stream(whole + ending);
      String line;

      EXPECT_TRUE(readLine(stream, line));
      EXPECT_EQ(line, whole.c_str());
      EXPECT_EQ(readLine(stream, line), std::string(ending) == "\nnext");
    }
  }
}

TEST(String, ALineKeepsItsZeroBytes) {
  std::istringstream stream(std::string("a\0b\nc", 5));
  String line;

  EXPECT_TRUE(readLine(stream, line));

  EXPECT_EQ(std::string(line.text(), 3), std::string("a\0b", 3));
  EXPECT_EQ(line.length(), 3);
}
