#include "audit/phd_result.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>

namespace {

using namespace std::string_literals;
using Quillet::splitPhd;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string header =
    "BEGIN_SEQUENCE clone\n\nBEGIN_COMMENT\nTIME: Sat\nEND_COMMENT\n\nBEGIN_DNA\n";
const std::string lines = "A 20 5\nc 9 17\n";
const std::string ending = "END_DNA\nEND_SEQUENCE\n";

bool isWhole(const std::string& text) { return splitPhd(text).has_value(); }

std::optional<Quillet::PhdResult> readPhdResult(const std::string& text) {
  const auto parts = splitPhd(text);
  if (!parts) return std::nullopt;
  return valuesOf(*parts);
}

TEST(PhdResult, GivesBasesQualitiesAndPositions) {
  const auto result = readPhdResult(header + lines + ending);

  ASSERT_TRUE(result);
  EXPECT_EQ(result->bases, "Ac");
  EXPECT_THAT(result->qualities, ElementsAre(20, 9));
  EXPECT_THAT(result->positions, ElementsAre(5, 17));
}

TEST(PhdResult, MayHoldNoBases) {
  const auto result = readPhdResult(header + ending);

  ASSERT_TRUE(result);
  EXPECT_EQ(result->bases, "");
  EXPECT_THAT(result->qualities, IsEmpty());
}

TEST(PhdResult, EveryByteIsABase) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string base(1, static_cast<char>(byte));
    const auto result = readPhdResult(header + base + " 1 2\n" + base + " 3 4\n" + ending);
    ASSERT_TRUE(result) << byte;
    EXPECT_EQ(result->bases, base + base);
    EXPECT_THAT(result->qualities, ElementsAre(1, 3));
  }
}

TEST(PhdResult, NumbersAreIntegersOfAnySizeAndSign) {
  const auto result =
      readPhdResult(header + "A -128 -2147483648\nA 007 2147483648\nA -0 -99999999999\n" + ending);

  ASSERT_TRUE(result);
  EXPECT_THAT(result->qualities, ElementsAre(-128, 7, 0));
  EXPECT_THAT(result->positions, ElementsAre(std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max(),
                                             std::numeric_limits<std::int32_t>::min()));
}

TEST(PhdResult, TheHeaderEndsWithTheLastLineBeginDna) {
  const std::string longer = "BEGIN_SEQUENCE a\nBEGIN_DNA\nA 1 2\nBEGIN_DNA\n";

  const std::string text = longer + lines + ending;

  const auto parts = splitPhd(text);

  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->header, longer);
  EXPECT_EQ(parts->lines, lines);
  EXPECT_EQ(parts->baseCount, 2U);
}

TEST(PhdResult, NoCutTextIsWhole) {
  const std::string text = header + lines + ending;
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_FALSE(isWhole(text.substr(0, size))) << size;
  }
}

TEST(PhdResult, AnythingElseIsNotWhole) {
  const std::string texts[] = {
      "begin_sequence clone\nBEGIN_DNA\n" + ending,
      " " + header + ending,
      "BEGIN_SEQUENCE clone\n" + lines + ending,      // no BEGIN_DNA
      "BEGIN_SEQUENCE clone\n BEGIN_DNA\n" + ending,  // not the whole line
      "BEGIN_SEQUENCE clone\nBEGIN_DNA \n" + ending,  //
      header + "A 20\n" + ending,                     // two fields
      header + "A 20 5 6\n" + ending,                 // four
      header + "AB 20 5\n" + ending,                  // no single byte
      header + "A  20 5\n" + ending,                  // two blanks
      header + "A\t20 5\n" + ending,                  //
      header + "A 20 5 \n" + ending,                  //
      header + "A 20 5\r\n" + ending,                 //
      header + "A x 5\n" + ending,                    // no integers
      header + "A 2.0 5\n" + ending,                  //
      header + "A - 5\n" + ending,                    //
      header + "A +1 5\n" + ending,                   //
      header + "\n" + ending,                         // an empty line among the bases
      header + lines + "END_DNA \nEND_SEQUENCE\n",    //
      header + lines + "END_SEQUENCE\n",              // no END_DNA
      header + lines + "END_DNA\nEND_DNA\nEND_SEQUENCE\n",
      header + lines + ending + "x",
      header + lines + ending + "END_SEQUENCE\n",
      header + lines + ending + '\0',
  };
  for (const std::string& text : texts) EXPECT_FALSE(isWhole(text)) << text;
}

TEST(PhdResult, BlocksOfOtherToolsArePassedOverAfterEndDnaAndAfterEndSequence) {
  const std::string tag = "BEGIN_TAG\nTYPE: comment\n\nSOURCE: x\nEND_TAG\n";
  const std::string item = "WR{\ntemplate tool 1\nname: x\n}\n";
  for (const std::string& block :
       {"\n"s, "\n\n\n"s, tag, item, tag + tag, "\n" + item + "\n" + tag + "\n", "WR{\n}\n"s}) {
    for (const std::string& text : {"END_DNA\n" + block + "END_SEQUENCE\n", ending + block,
                                    "END_DNA\n" + block + "END_SEQUENCE\n" + block}) {
      const auto result = readPhdResult(header + lines + text);
      ASSERT_TRUE(result) << text;
      EXPECT_EQ(result->bases, "Ac");
    }
  }
}

TEST(PhdResult, BlocksWithoutTheirEndAreNotWhole) {
  for (const std::string& block :
       {"BEGIN_TAG\n"s, "BEGIN_TAG\nEND_TAG"s, "BEGIN_TAG\n}\n"s, "WR{\nEND_TAG\n"s, "WR{\n}"s,
        "WR{\n }\n"s, "END_TAG\n"s, "}\n"s, "BEGIN_TAG x\nEND_TAG\n"s, "WR {\n}\n"s, " \n"s,
        "\r\n"s, "BEGIN_OTHER\nEND_OTHER\n"s}) {
    EXPECT_FALSE(isWhole(header + lines + ending + block)) << block;
    EXPECT_FALSE(isWhole(header + lines + "END_DNA\n" + block + "END_SEQUENCE\n")) << block;
  }
}

}  // namespace
