#include "foundation/string_scanner.h"

#include <gtest/gtest.h>

#include "tests/support/thrown_text.h"

namespace {

using Tessaly::String;
using Tessaly::StringScanner;

}  // namespace

TEST(StringScanner, ThePositionStartsAtTheFirstCharacter) {
  const String text("abc");
  const String other("xyz");

  StringScanner borrowed(text);
  StringScanner owned("def");

  EXPECT_EQ(borrowed.next(), 'a');
  EXPECT_EQ(owned.next(), 'd');
  borrowed.attach(other);
  owned.attach(other);
  EXPECT_EQ(borrowed.next(), 'x');
  EXPECT_EQ(owned.next(), 'x');
  EXPECT_EQ(owned.index(), 1);
}

TEST(StringScanner, AScannerOfPlainTextOwnsACopy) {
  char plain[] = "abc";

  StringScanner scanner(plain);
  plain[0] = 'z';

  EXPECT_EQ(scanner.next(), 'a');
}

TEST(StringScanner, MovingBackStopsAtTheFirstCharacter) {
  StringScanner scanner("abcdef");
  ASSERT_TRUE(scanner.moveTo(4));

  EXPECT_TRUE(scanner.moveBack(1));
  EXPECT_EQ(scanner.index(), 3);
  EXPECT_TRUE(scanner.moveBack(3));
  EXPECT_EQ(scanner.index(), 0);
  EXPECT_TRUE(scanner.moveBack(0));
  ASSERT_TRUE(scanner.moveTo(2));
  EXPECT_FALSE(scanner.moveBack(3));
  EXPECT_EQ(scanner.index(), 0);
}

TEST(StringScanner, MovingForwardStopsAtTheEnd) {
  StringScanner scanner("abcdef");

  EXPECT_TRUE(scanner.moveForward(2));
  EXPECT_EQ(scanner.index(), 2);
  EXPECT_TRUE(scanner.moveForward(4));
  EXPECT_TRUE(scanner.atEnd());
  EXPECT_TRUE(scanner.moveForward(0));
  ASSERT_TRUE(scanner.moveTo(1));
  EXPECT_FALSE(scanner.moveForward(6));
  EXPECT_EQ(scanner.index(), 6);
  EXPECT_FALSE(scanner.moveForward(2147483647));
}

TEST(StringScanner, MovingToAnIndexNeedsACharacterThere) {
  StringScanner scanner("abc");
  ASSERT_TRUE(scanner.moveTo(2));

  EXPECT_FALSE(scanner.moveTo(3));
  EXPECT_FALSE(scanner.moveTo(-1));
  EXPECT_EQ(scanner.index(), 2);
  EXPECT_TRUE(scanner.moveTo(0));
  EXPECT_EQ(scanner.index(), 0);
}

TEST(StringScanner, ANegativeCountMovesNothing) {
  StringScanner scanner("a b\nc d");
  ASSERT_TRUE(scanner.moveTo(2));

  EXPECT_FALSE(scanner.moveBack(-1));
  EXPECT_FALSE(scanner.moveForward(-1));
  EXPECT_FALSE(scanner.skipWords(-1));
  EXPECT_FALSE(scanner.skipPast('c', -1));
  EXPECT_FALSE(scanner.skipLines(-1));

  EXPECT_EQ(scanner.index(), 2);
}

TEST(StringScanner, TheNextCharacterAtTheEndIsTheZeroByteAgainAndAgain) {
  StringScanner scanner("ab");

  EXPECT_EQ(scanner.next(), 'a');
  EXPECT_EQ(scanner.next(), 'b');
  EXPECT_EQ(scanner.next(), '\0');
  EXPECT_EQ(scanner.next(), '\0');
  EXPECT_EQ(scanner.index(), 2);
}

TEST(StringScanner, SkippingToACharacterStopsAtIt) {
  StringScanner scanner("a,b,c");

  EXPECT_TRUE(scanner.skipTo(','));
  EXPECT_EQ(scanner.index(), 1);
  EXPECT_TRUE(scanner.skipTo(','));
  EXPECT_EQ(scanner.index(), 1);
  EXPECT_FALSE(scanner.skipTo('x'));
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, SkippingWhiteSpaceStopsAtTheNextOtherCharacter) {
  StringScanner scanner(" \t\r\n\v\fx ");

  scanner.skipWhiteSpace();
  EXPECT_EQ(scanner.index(), 6);
  scanner.skipWhiteSpace();
  EXPECT_EQ(scanner.index(), 6);
  scanner.next();
  scanner.skipWhiteSpace();
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, SkippingWordsStopsAfterTheLastOfThem) {
  StringScanner scanner("  one two\nthree ");

  EXPECT_TRUE(scanner.skipWords(1));
  EXPECT_EQ(scanner.index(), 5);
  EXPECT_TRUE(scanner.skipWords(2));
  EXPECT_EQ(scanner.index(), 15);
  EXPECT_FALSE(scanner.skipWords(1));
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, SkippingPastOccurrencesStopsAfterTheLastOfThem) {
  StringScanner scanner("a,b,,c");

  EXPECT_TRUE(scanner.skipPast(',', 2));
  EXPECT_EQ(scanner.index(), 4);
  EXPECT_TRUE(scanner.skipPast(',', 1));
  EXPECT_EQ(scanner.index(), 5);
  EXPECT_FALSE(scanner.skipPast(',', 1));
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, SkippingLinesCountsALastLineWithoutNewline) {
  StringScanner scanner("one\n\ntwo\nlast");

  EXPECT_TRUE(scanner.skipLines(2));
  EXPECT_EQ(scanner.index(), 5);
  EXPECT_TRUE(scanner.skipLines(2));
  EXPECT_TRUE(scanner.atEnd());
  ASSERT_TRUE(scanner.moveTo(0));
  EXPECT_FALSE(scanner.skipLines(5));
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, ACountOf0DoesNothingAndIsTrue) {
  StringScanner scanner(" one");

  EXPECT_TRUE(scanner.skipWords(0));
  EXPECT_TRUE(scanner.skipPast('x', 0));
  EXPECT_TRUE(scanner.skipLines(0));
  EXPECT_EQ(scanner.index(), 0);

  ASSERT_TRUE(scanner.moveForward(4));  // at the end
  EXPECT_TRUE(scanner.skipWords(0));
  EXPECT_TRUE(scanner.skipPast('x', 0));
  EXPECT_TRUE(scanner.skipLines(0));
}

TEST(StringScanner, AWordIsReadAfterTheWhiteSpace) {
  StringScanner scanner(" one\ttwo  ");
  String word("old");

  EXPECT_TRUE(scanner.readWord(word));
  EXPECT_EQ(word, "one");
  EXPECT_EQ(scanner.index(), 4);
  EXPECT_TRUE(scanner.readWord(word));
  EXPECT_EQ(word, "two");
  EXPECT_FALSE(scanner.readWord(word));
  EXPECT_EQ(word, "");
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, ReadingUpToACharacterLeavesItThere) {
  StringScanner scanner("a b,,rest");
  String piece;

  EXPECT_TRUE(scanner.readUpTo(',', piece));
  EXPECT_EQ(piece, "a b");
  EXPECT_EQ(scanner.next(), ',');
  EXPECT_TRUE(scanner.readUpTo(',', piece));
  EXPECT_EQ(piece, "");
  EXPECT_EQ(scanner.next(), ',');
  EXPECT_TRUE(scanner.readUpTo(',', piece));
  EXPECT_EQ(piece, "rest");
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, TheRestGoesToTheEnd) {
  StringScanner scanner("one two");
  String rest;
  ASSERT_TRUE(scanner.moveTo(3));

  EXPECT_TRUE(scanner.readRest(rest));

  EXPECT_EQ(rest, " two");
  EXPECT_TRUE(scanner.atEnd());
}

TEST(StringScanner, ReadingAtTheEndClearsTheTarget) {
  StringScanner scanner("abc");
  ASSERT_TRUE(scanner.moveForward(3));
  String word("old");
  String piece("old");
  String rest("old");

  EXPECT_FALSE(scanner.readWord(word));
  EXPECT_FALSE(scanner.readUpTo(',', piece));
  EXPECT_FALSE(scanner.readRest(rest));

  EXPECT_EQ(word, "");
  EXPECT_EQ(piece, "");
  EXPECT_EQ(rest, "");
}

TEST(StringScanner, MatchingComparesAtThePosition) {
  StringScanner scanner("abcab");
  ASSERT_TRUE(scanner.moveTo(3));

  EXPECT_TRUE(scanner.matches("ab"));
  EXPECT_TRUE(scanner.matches("a"));
  EXPECT_FALSE(scanner.matches("abc"));  // too few characters are left
  EXPECT_FALSE(scanner.matches("b"));
  EXPECT_FALSE(scanner.matches(""));
  EXPECT_EQ(scanner.index(), 3);
}

TEST(StringScanner, FindingStartsAtTheBeginningNotAtThePosition) {
  StringScanner scanner("abcabc");
  ASSERT_TRUE(scanner.moveTo(4));

  EXPECT_TRUE(scanner.find("bc"));
  EXPECT_EQ(scanner.index(), 1);
  ASSERT_TRUE(scanner.moveTo(5));
  EXPECT_TRUE(scanner.find('c'));
  EXPECT_EQ(scanner.index(), 2);
}

TEST(StringScanner, TheEmptyStringTheZeroCharacterAndWhatIsMissingAreNotFound) {
  StringScanner scanner("abcabc");
  ASSERT_TRUE(scanner.moveTo(4));

  EXPECT_FALSE(scanner.find(""));
  EXPECT_FALSE(scanner.find('\0'));
  EXPECT_FALSE(scanner.find("bd"));
  EXPECT_FALSE(scanner.find('x'));

  EXPECT_EQ(scanner.index(), 4);
}

TEST(StringScanner, EveryOperationIsSafeOnAnEmptyText) {
  const String empty;
  StringScanner scanner(empty);
  String target("old");

  EXPECT_TRUE(scanner.atEnd());
  EXPECT_EQ(scanner.next(), '\0');
  EXPECT_FALSE(scanner.moveBack(1));
  EXPECT_FALSE(scanner.moveForward(1));
  EXPECT_FALSE(scanner.moveTo(0));
  EXPECT_FALSE(scanner.skipTo('a'));
  EXPECT_FALSE(scanner.skipTo('\0'));
  scanner.skipWhiteSpace();
  EXPECT_FALSE(scanner.skipWords(1));
  EXPECT_FALSE(scanner.skipPast('a', 1));
  EXPECT_FALSE(scanner.skipLines(1));
  EXPECT_FALSE(scanner.readWord(target));
  EXPECT_FALSE(scanner.readUpTo('a', target));
  EXPECT_FALSE(scanner.readRest(target));
  EXPECT_FALSE(scanner.matches("a"));
  EXPECT_FALSE(scanner.matches(empty));
  EXPECT_FALSE(scanner.find("a"));
  EXPECT_FALSE(scanner.find(empty));
  EXPECT_EQ(scanner.index(), 0);
}

TEST(StringScanner, ReadingIntoTheScannedStringIsAParameterErrorAndMovesNothing) {
  const char* const parameterText = "ERROR: String parameter is invalid";
  String text("one two");
  StringScanner scanner(text);
  ASSERT_TRUE(scanner.moveTo(3));  // at white space

  EXPECT_EQ(thrownText([&] { scanner.readWord(text); }), parameterText);
  EXPECT_EQ(thrownText([&] { scanner.readUpTo('w', text); }), parameterText);
  EXPECT_EQ(thrownText([&] { scanner.readRest(text); }), parameterText);

  EXPECT_EQ(scanner.index(), 3);
  EXPECT_EQ(text, "one two");
}
