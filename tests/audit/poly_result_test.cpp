#include "audit/poly_result.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

using namespace std::string_literals;
using Quillet::isWholePoly;

const std::string first = "clone 1 1 1 1 1\n";
const std::string line = "A 5 100 0 C 6 50 0 900 450 0 3\n";

TEST(PolyResult, IsWholeWithOneLineOfTwelveFieldsForEveryBase) {
  EXPECT_TRUE(isWholePoly(first, 0));
  EXPECT_TRUE(isWholePoly(first + line, 1));
  EXPECT_TRUE(isWholePoly(first + line + line, 2));
}

TEST(PolyResult, AnotherNumberOfLinesIsNotWhole) {
  EXPECT_FALSE(isWholePoly(first, 1));
  EXPECT_FALSE(isWholePoly(first + line, 0));
  EXPECT_FALSE(isWholePoly(first + line, 2));
}

TEST(PolyResult, AnyNumberOfLinesWillDoWhereTheBasesAreNotKnown) {
  EXPECT_TRUE(isWholePoly(first, std::nullopt));
  EXPECT_TRUE(isWholePoly(first + line + line, std::nullopt));
  EXPECT_FALSE(isWholePoly(first + line + "A", std::nullopt));
}

TEST(PolyResult, NoCutTextIsWhole) {
  const std::string text = first + line + line;
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_FALSE(isWholePoly(text.substr(0, size), 2)) << size;
  }
}

TEST(PolyResult, EveryByteIsABase) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string changed = static_cast<char>(byte) + line.substr(1);
    EXPECT_TRUE(isWholePoly(first + changed + changed, 2)) << byte;
  }
}

TEST(PolyResult, OneLineCanNotMakeUpForAnother) {
  const std::string eleven = "A 5 100 0 C 6 50 0 900 450 0\n";
  const std::string thirteen = "A 5 100 0 C 6 50 0 900 450 0 3 4\n";
  EXPECT_FALSE(isWholePoly(first + eleven + thirteen, 2));
  EXPECT_FALSE(isWholePoly(first + thirteen + eleven, std::nullopt));
  EXPECT_FALSE(isWholePoly(first + line + thirteen + line + eleven, 4));
}

TEST(PolyResult, LinesOfAnyLengthAreCountedByTheirFields) {
  for (int digits = 1; digits < 600; ++digits) {
    const std::string number(static_cast<std::size_t>(digits), '7');
    const std::string twelve = "A 5 " + number + " 0 C 6 50 0 900 450 0 3\n";
    const std::string eleven = "A 5 " + number + " 0 C 6 50 0 900 450 0\n";
    const std::string thirteen = "A 5 100 0 C 6 50 0 900 450 0 " + number + " 3\n";
    EXPECT_TRUE(isWholePoly(first + line + twelve, 2)) << digits;
    EXPECT_FALSE(isWholePoly(first + line + thirteen, 2)) << digits;
    EXPECT_TRUE(isWholePoly(first + twelve + line + line + line, 4)) << digits;
    EXPECT_FALSE(isWholePoly(first + line + eleven, 2)) << digits;
    EXPECT_FALSE(isWholePoly(first + eleven + line + line + line, 4)) << digits;
  }
}

TEST(PolyResult, NoOtherNumberOfFieldsPassesForTwelve) {
  std::string fields = "A";
  for (int count = 2; count < 600; ++count) {
    fields += " 1";
    EXPECT_EQ(isWholePoly(first + fields + '\n', 1), count == 12) << count;
    for (int digits = 1; count < 30 && digits < 70; ++digits) {
      const std::string number(static_cast<std::size_t>(digits), '7');
      const std::string next = "A 5 " + number + " 0 C 6 50 0 900 450 0 3\n";
      EXPECT_EQ(isWholePoly(first + fields + '\n' + next + next, 3), count == 12) << count;
    }
  }
}

TEST(PolyResult, ABlankAsBaseBetweenOrdinaryOnesIsWhole) {
  const std::string blank = " " + line.substr(1);
  const std::string lineFeed = "\n" + line.substr(1);
  EXPECT_TRUE(isWholePoly(first + line + blank + line + lineFeed, 4));
  EXPECT_TRUE(isWholePoly(first + lineFeed + line + blank, 3));
  EXPECT_FALSE(isWholePoly(first + line + blank + line + lineFeed, 5));
}

TEST(PolyResult, AnythingElseIsNotWhole) {
  const std::string texts[] = {
      "clone 1 1 1 1\n" + line,
      "clone 1 1 1 1 1 \n" + line,
      "1 1 1 1 1\n" + line,
      "\n" + first + line,
      first + "A 5 100 0 C 6 50 0 900 450 0\n",      // eleven fields
      first + "A 5 100 0 C 6 50 0 900 450 0 3 4\n",  // thirteen
      first + "A 5 100 0 C 6 50 0 900 450 0 \n",     // an empty one
      first + "A 5 100 0 C 6 50 0  900 450 0 3\n",   //
      first + "A 5 100 0 C 6 50 0 900 450 0 3 \n",
      first + line + "\n",
      first + "\n" + line,
  };
  for (const std::string& text : texts) EXPECT_FALSE(isWholePoly(text, 1)) << text;
}

}  // namespace
