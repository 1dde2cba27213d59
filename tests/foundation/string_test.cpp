#include "foundation/string.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/foundation/string_state.h"
#include "tests/support/thrown_text.h"

// Construction, assignment and setting. Other files test changes in place, memory and streams.

namespace {

using Tessaly::String;

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

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

TEST(String, ANullTextIsAParameterError) {
  const char* const missing = nullptr;
  String text("abc");

  EXPECT_EQ(thrownText([&] { String unusable(missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text = missing; }), parameterText);
  EXPECT_EQ(thrownText([&] { text.set(missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.setPrefix(missing, 2); }), parameterText);
  EXPECT_EQ(thrownText([&] { text.append(missing); }), parameterText);
  EXPECT_EQ(thrownText([&] { text = text + missing; }), parameterText);
  EXPECT_EQ(thrownText([&] { static_cast<void>(text == missing); }), parameterText);

  EXPECT_EQ(text, "abc");
}

TEST(String, ExactAssignmentOfAbToACapacityOf100LeavesACapacityOf3) {
  String fromString(std::int32_t{99});
  String fromText(std::int32_t{99});
  ASSERT_EQ(fromString.capacity(), 100);

  fromString = String("ab");
  fromText = "ab";

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
  whole = same;
  tail = tail.text() + 2;
  fitting = fitting.text();

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

TEST(String, TheCopyingSetReplacesABufferThatIsTooSmallByOneThatJustFits) {
  String fromString("ab");
  String fromText("ab");  // capacity 3 is not above the length 3
  String fromInteger("ab");
  String fromDouble("ab");
  String justLargeEnough("abc");

  fromString.set(String("abcdef"));
  fromText.set("abc");
  fromInteger.set(std::int32_t{-12});
  fromDouble.set(-0.25);
  justLargeEnough.set("xyz");

  expectState(fromString, "abcdef", 7);
  expectState(fromText, "abc", 4);
  expectState(fromInteger, "-12", 4);
  expectState(fromDouble, "-0.25", 6);
  expectState(justLargeEnough, "xyz", 4);
}

TEST(String, PrefixAndTailReplaceABufferThatIsTooSmallByOneThatJustFits) {
  const String source("abcdef");
  String prefix;
  String textPrefix;
  String tail;

  prefix.setPrefix(source, 4);
  textPrefix.setPrefix("abcdef", 4);
  tail.setTail(source, 1);

  expectState(prefix, "abcd", 5);
  expectState(textPrefix, "abcd", 5);
  expectState(tail, "bcdef", 6);
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
