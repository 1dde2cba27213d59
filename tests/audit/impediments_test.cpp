#include "audit/impediments.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using Quillet::isTooLongForResult;
using Quillet::isTornByShell;

TEST(Impediments, AResultNameOf255BytesIsTheLongest) {
  EXPECT_FALSE(isTooLongForResult(""));
  EXPECT_FALSE(isTooLongForResult(std::string(249, 'x')));
  EXPECT_TRUE(isTooLongForResult(std::string(250, 'x')));
}

TEST(Impediments, OnlyTheLastPartOfAPathCounts) {
  EXPECT_FALSE(isTooLongForResult(std::string(300, 'x') + '/' + std::string(249, 'x')));
  EXPECT_TRUE(isTooLongForResult("x/" + std::string(250, 'x')));
}

TEST(Impediments, AShellTearsWhiteSpaceAndItsOwnCharacters) {
  for (const char byte : std::string(" \t\n\v\f\r|&;<>()$`\\\"'")) {
    EXPECT_TRUE(isTornByShell(std::string("/p/x") + byte + "y.gz")) << static_cast<int>(byte);
  }
}

TEST(Impediments, AShellTakesOtherNamesAsTheyAre) {
  for (const char* path :
       {"", "/p/x.gz", "/p/-x.gz", "/p/x#1~.gz", "/p/x=1,2:3@%+^!.gz", "/p/\xC3"}) {
    EXPECT_FALSE(isTornByShell(path)) << path;
  }
}

}  // namespace
