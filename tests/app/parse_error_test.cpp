#include "app/parse_error.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>

namespace {

using Tessaly::ParseError;

TEST(ParseError, TheTextNamesWhatIsKnownAboutThePlace) {
  constexpr std::int32_t lastLine = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t firstLine = std::numeric_limits<std::int32_t>::min();
  const struct {
    const char* fileName;
    std::int32_t lineNumber;
    const char* message;
    const char* expected;
  } cases[] = {
      {"", 0, "no place", "no place"},
      {"COMMAND LINE", 0, "invalid flag `-q'", "in COMMAND LINE: invalid flag `-q'"},
      {"", 3, "no file", "line 3: no file"},
      {"/etc/rc", 12, "both", "in /etc/rcline 12: both"},
      {"/etc/rc", lastLine, "far", "in /etc/rcline 2147483647: far"},
      {"/etc/rc", -1, "before", "in /etc/rcline -1: before"},
      {"/etc/rc", firstLine, "before", "in /etc/rcline -2147483648: before"},
      {"/etc/rc", 1, "", "in /etc/rcline 1: "},
      {"", 0, "", ""},
  };
  for (const auto& row : cases) {
    const ParseError error(row.fileName, row.lineNumber, row.message);
    EXPECT_STREQ(error.what(), row.expected);
  }
}

TEST(ParseError, NothingStandsBetweenTheFileNameAndLine) {
  const ParseError error("/home/ann/.quilletrc", 3, "invalid option: chromat");

  EXPECT_STREQ(error.what(), "in /home/ann/.quilletrcline 3: invalid option: chromat");
}

TEST(ParseError, TheTextIsTheSameAtEachCall) {
  const ParseError error("file", 7, "wrong");

  EXPECT_STREQ(error.what(), "in fileline 7: wrong");
  EXPECT_STREQ(error.what(), "in fileline 7: wrong");
}

TEST(ParseError, TheTextStaysValidAfterTheCall) {
  const ParseError error("a file whose name is longer than any small buffer", 7, "wrong");
  const ParseError other("another file whose name is longer than small buffers", 8, "bad");

  const char* text = error.what();
  other.what();

  EXPECT_STREQ(text, "in a file whose name is longer than any small bufferline 7: wrong");
}

TEST(ParseError, ACopyCarriesTheTextWithoutTheOriginal) {
  auto original = std::make_unique<ParseError>("file", 7, "wrong");
  const ParseError copy(*original);

  original.reset();

  EXPECT_STREQ(copy.what(), "in fileline 7: wrong");
}

TEST(ParseError, IsCaughtAsAStandardExceptionWithItsText) {
  std::string text;

  try {
    throw ParseError("", 0, "as any other");
  } catch (const std::exception& exception) {
    text = exception.what();
  }

  EXPECT_EQ(text, "as any other");
}

}  // namespace
