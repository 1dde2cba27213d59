#include "foundation/string.h"

#include <gtest/gtest.h>

#include "tests/support/thrown_text.h"

namespace {

using Tessaly::String;

const char* const positionText = "ERROR: String position is out of range";

/// A text and a pattern with the expected answer.
struct TestCase {
  const char* text;
  const char* pattern;
  bool expected;
};

struct IndexCase {
  const char* text;
  const char* pattern;
  std::int32_t expected;
};

struct WalkCase {
  const char* text;
  const char* pattern;
  std::int32_t start;
  bool found;
  std::int32_t end;
};

}  // namespace

TEST(StringSearch, StartsWithComparesTheFirstCharacters) {
  const TestCase cases[] = {{"abc", "", true},    {"", "", true},       {"abc", "ab", true},
                            {"abc", "abc", true}, {"ab", "abc", false}, {"abc", "b", false},
                            {"abc", "AB", false}, {"", "a", false}};

  for (const TestCase& one : cases) {
    EXPECT_EQ(String(one.text).startsWith(one.pattern), one.expected) << one.text;
    EXPECT_EQ(String(one.text).startsWith(String(one.pattern)), one.expected) << one.text;
  }
}

TEST(StringSearch, MatchesAtComparesFromAPositionInsideTheText) {
  const String text("abcab");

  EXPECT_TRUE(text.matchesAt("ab", 0));
  EXPECT_TRUE(text.matchesAt("ab", 3));
  EXPECT_TRUE(text.matchesAt("", 4));
  EXPECT_FALSE(text.matchesAt("ab", 1));
  EXPECT_FALSE(text.matchesAt("ab", 4));  // too few characters remain
}

TEST(StringSearch, MatchingOutsideTheTextIsAPositionError) {
  EXPECT_EQ(thrownText([] { String("abc").matchesAt("c", 3); }), positionText);
  EXPECT_EQ(thrownText([] { String("abc").matchesAt("c", -1); }), positionText);
  EXPECT_EQ(thrownText([] { String("").matchesAt("", 0); }), positionText);
}

TEST(StringSearch, TheTextDotGzDoesNotEndWithDotGzButXDotGzDoes) {
  const TestCase cases[] = {{".gz", ".gz", false},  {"x.gz", ".gz", true}, {"", "", false},
                            {"x", "", true},        {"gz", ".gz", false},  {"x.gz ", ".gz", false},
                            {"x.GZ", ".gz", false}, {"", ".gz", false}};

  for (const TestCase& one : cases) {
    EXPECT_EQ(String(one.text).endsWith(one.pattern), one.expected) << one.text;
    EXPECT_EQ(String(one.text).endsWith(String(one.pattern)), one.expected) << one.text;
  }
}

TEST(StringSearch, EndsWithACharacterLooksAtTheLastOne) {
  EXPECT_TRUE(String("dir/").endsWith('/'));
  EXPECT_TRUE(String("/").endsWith('/'));
  EXPECT_FALSE(String("/dir").endsWith('/'));
  EXPECT_FALSE(String("").endsWith('/'));
  EXPECT_FALSE(String("").endsWith('\0'));
}

TEST(StringSearch, NothingContainsTheEmptyTextOrTheZeroCharacter) {
  const TestCase cases[] = {{"abc", "", false},   {"", "", false},        {"abc", "bc", true},
                            {"abc", "abc", true}, {"abc", "abcd", false}, {"aab", "ab", true},
                            {"abc", "B", false}};

  for (const TestCase& one : cases) {
    EXPECT_EQ(String(one.text).contains(one.pattern), one.expected) << one.text;
    EXPECT_EQ(String(one.text).contains(String(one.pattern)), one.expected) << one.text;
  }
  EXPECT_TRUE(String("abc").contains('c'));
  EXPECT_FALSE(String("abc").contains('d'));
  EXPECT_FALSE(String("abc").contains('\0'));
}

TEST(StringSearch, TheZeroCharacterIsNotContainedEvenWhereItStands) {
  String text;
  text.append("a\0b", 3);

  EXPECT_FALSE(text.contains('\0'));
  EXPECT_EQ(text.firstIndex('\0'), 3);
  EXPECT_EQ(text.firstIndex('b'), 2);
}

TEST(StringSearch, TheEmptyStringOccursInEveryText) {
  EXPECT_TRUE(String("").occursIn("abc"));
  EXPECT_TRUE(String("").occursIn(""));
  EXPECT_TRUE(String("bc").occursIn("abcd"));
  EXPECT_FALSE(String("bd").occursIn("abcd"));
  EXPECT_FALSE(String("abc").occursIn("ab"));
}

TEST(StringSearch, TheFirstIndexOfTheEmptyTextIs0) {
  const IndexCase cases[] = {{"abc", "", 0},  {"", "", 0},      {"abcabc", "bc", 1},
                             {"abc", "c", 2}, {"abc", "x", -1}, {"ab", "abc", -1},
                             {"", "a", -1},   {"aaab", "ab", 2}};

  for (const IndexCase& one : cases) {
    EXPECT_EQ(String(one.text).firstIndex(one.pattern), one.expected) << one.text;
    EXPECT_EQ(String(one.text).firstIndex(String(one.pattern)), one.expected) << one.text;
  }
}

TEST(StringSearch, TheFirstIndexOfTheZeroCharacterIsTheLength) {
  EXPECT_EQ(String("abc").firstIndex('\0'), 3);
  EXPECT_EQ(String("").firstIndex('\0'), 0);
  EXPECT_EQ(String("abcb").firstIndex('b'), 1);
  EXPECT_EQ(String("abc").firstIndex('x'), -1);
}

TEST(StringSearch, FindingFromAPositionMovesItOnlyOnSuccess) {
  const WalkCase cases[] = {{"abcabc", "bc", 0, true, 1},  {"abcabc", "bc", 1, true, 1},
                            {"abcabc", "bc", 2, true, 4},  {"abcabc", "bc", 5, false, 5},
                            {"abcabc", "bc", 6, false, 6}, {"abcabc", "bc", -1, false, -1},
                            {"abc", "", 2, true, 2},       {"abc", "", 3, false, 3},
                            {"", "", 0, false, 0},         {"abc", "abcd", 0, false, 0}};

  for (const WalkCase& one : cases) {
    std::int32_t position = one.start;
    EXPECT_EQ(String(one.text).findFrom(one.pattern, position), one.found) << one.start;
    EXPECT_EQ(position, one.end);
  }
}

TEST(StringSearch, TheLastIndexOfACharacterComesFromTheEnd) {
  EXPECT_EQ(String("a.b.c").lastIndex('.'), 3);
  EXPECT_EQ(String(".abc").lastIndex('.'), 0);
  EXPECT_EQ(String("abc").lastIndex('.'), -1);
  EXPECT_EQ(String("").lastIndex('.'), -1);
  EXPECT_EQ(String("abc").lastIndex('\0'), -1);
}

TEST(StringSearch, TheLastIndexOfATextComesFromTheEnd) {
  const IndexCase cases[] = {{"abcabc", "bc", 4}, {"abcab", "abc", 0}, {"abc", "abc", 0},
                             {"abc", "abcd", -1}, {"abc", "x", -1},    {"aaa", "aa", 1}};

  for (const IndexCase& one : cases) {
    EXPECT_EQ(String(one.text).lastIndex(String(one.pattern)), one.expected) << one.text;
  }
}

TEST(StringSearch, TheLastIndexOfTheEmptyTextIsTheLengthMinus1) {
  EXPECT_EQ(String("abc").lastIndex(String("")), 2);
  EXPECT_EQ(String("a").lastIndex(String("")), 0);
  EXPECT_EQ(String("").lastIndex(String("")), -1);
}

TEST(StringSearch, FindingBackwardsStartsAtThePositionOrTheLastIndex) {
  const WalkCase cases[] = {{"abcabc", "bc", -1, true, 4},   {"abcabc", "bc", 5, true, 4},
                            {"abcabc", "bc", 4, true, 4},    {"abcabc", "bc", 3, true, 1},
                            {"abcabc", "bc", 0, false, 0},   {"abcabc", "bc", 6, false, 6},
                            {"abcabc", "bc", -2, false, -2}, {"abc", "x", -1, false, -1},
                            {"abc", "abcd", -1, false, -1},  {"", "", -1, false, -1},
                            {"abc", "", -1, true, 2}};

  for (const WalkCase& one : cases) {
    std::int32_t position = one.start;
    EXPECT_EQ(String(one.text).findBackwards(one.pattern, position), one.found) << one.start;
    EXPECT_EQ(position, one.end);
  }
}

TEST(StringSearch, EqualityComparesTheStoredCharacters) {
  String withZero;
  withZero.append("ab\0c", 4);

  EXPECT_TRUE(String("abc") == String("abc"));
  EXPECT_TRUE(String("abc") == "abc");
  EXPECT_FALSE(String("abc") == String("abC"));
  EXPECT_FALSE(withZero == "ab");
  EXPECT_FALSE(withZero == String("ab"));
}

TEST(StringSearch, ANullTextIsAParameterError) {
  const char* const missing = nullptr;
  const String text("abc");

  for (const auto& search : {+[](const String&in, const char*for_) { in.startsWith(for_); },
                             +[](const String&in, const char*for_) { in.endsWith(for_); },
                             +[](const String&in, const char*for_) { in.contains(for_); },
                             +[](const String&in, const char*for_) { in.firstIndex(for_); },
                             +[](const String&in, const char*for_) { in.occursIn(for_); }}) {
    EXPECT_EQ(thrownText([&] { search(text, missing); }), "ERROR: String parameter is invalid");
  }
}
