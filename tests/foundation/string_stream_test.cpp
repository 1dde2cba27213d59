#include "foundation/string.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <ios>
#include <sstream>
#include <string>

#include "tests/support/text_of.h"

// Writing to a stream and reading lines from one.

namespace {

using Tessaly::String;

}  // namespace

TEST(String, OutputWritesTheStoredCharacters) {
  String text;
  text.append("a\0b", 3);
  std::ostringstream stream;

  stream << text << String("!") << String();

  EXPECT_EQ(stream.str(), std::string("a\0b!", 4));
}

TEST(String, OutputIgnoresTheStreamsWidth) {
  std::ostringstream stream;

  stream << std::setw(6) << String("ab");

  EXPECT_EQ(stream.str(), "ab");
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

  EXPECT_EQ(textOf(line), std::string("a\0b", 3));
}

TEST(String, EveryByteButTheNewlineBelongsToALine) {
  std::string whole;
  for (int code = 0; code < 256; ++code) {
    if (code != '\n') whole += static_cast<char>(code);
  }
  std::istringstream stream(whole + "\n");
  String line;

  EXPECT_TRUE(readLine(stream, line));

  EXPECT_EQ(textOf(line), whole);
}

TEST(String, AFailedStreamGivesNoLine) {
  for (const std::ios_base::iostate failure : {std::ios_base::failbit, std::ios_base::badbit}) {
    std::istringstream stream("one\ntwo");
    stream.setstate(failure);
    String line("old");

    EXPECT_FALSE(readLine(stream, line));

    EXPECT_EQ(line, "");
    stream.clear();
    EXPECT_EQ(stream.get(), 'o');  // nothing was taken
  }
}

TEST(String, ReadingLinesIsNoFailureOfTheStream) {
  std::istringstream stream(std::string(5000, 'x') + "\n\n" + std::string(511, 'y'));
  stream.exceptions(std::ios_base::failbit | std::ios_base::badbit);
  String line;

  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(textOf(line), std::string(5000, 'x'));
  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(line, "");
  EXPECT_TRUE(readLine(stream, line));
  EXPECT_EQ(textOf(line), std::string(511, 'y'));
  EXPECT_FALSE(readLine(stream, line));
  EXPECT_FALSE(readLine(stream, line));

  EXPECT_TRUE(stream.eof());
  EXPECT_FALSE(stream.fail());
}
