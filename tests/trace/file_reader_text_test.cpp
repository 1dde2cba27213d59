#include "trace/file_reader.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"

namespace {

using Tessaly::FileReader;
using namespace std::string_literals;

class FileReaderText : public testing::Test {
 protected:
  FileReader& opened(const std::string& contents, std::int32_t blockSize = 1024) {
    reader_.setBufferSize(blockSize);
    EXPECT_TRUE(reader_.open(folder_.write("file", contents)));
    return reader_;
  }

  Tessaly::String text_ = "before";

 private:
  ScratchFolder folder_;
  FileReader reader_;
};

TEST_F(FileReaderText, ATextReplacesWhatWasThereAndGoesAcrossBlocks) {
  FileReader& reader = opened("abcdefgh", 3);

  EXPECT_TRUE(reader.readText(text_, 7));

  EXPECT_EQ(textOf(text_), "abcdefg");
}

TEST_F(FileReaderText, ATextKeepsItsZeroBytes) {
  FileReader& reader = opened("a\0b\0\0c"s, 4);

  EXPECT_TRUE(reader.readText(text_, 5));

  EXPECT_EQ(textOf(text_), "a\0b\0\0"s);
}

TEST_F(FileReaderText, ATextIsShorterAtTheEndOfTheFileAndThenThereIsNone) {
  FileReader& reader = opened("abc");

  EXPECT_TRUE(reader.readText(text_, 4));
  EXPECT_EQ(textOf(text_), "abc");
  EXPECT_FALSE(reader.readText(text_, 4));

  EXPECT_EQ(textOf(text_), "abc");  // untouched
}

TEST_F(FileReaderText, ATextAfterAFullLastBlockIsEmptyOnce) {
  FileReader& reader = opened("abcd", 4);

  EXPECT_TRUE(reader.readText(text_, 4));
  EXPECT_TRUE(reader.readText(text_, 4));
  EXPECT_EQ(textOf(text_), "");

  EXPECT_FALSE(reader.readText(text_, 4));
}

TEST_F(FileReaderText, AHugeLengthCostsNoMoreThanTheFile) {
  FileReader& reader = opened("abcde");

  EXPECT_TRUE(reader.readText(text_, std::numeric_limits<std::int32_t>::max()));

  EXPECT_EQ(textOf(text_), "abcde");
  EXPECT_LT(text_.capacity(), 100);
}

TEST_F(FileReaderText, ALengthOfZeroOrLessIsAnEmptyText) {
  for (const std::int32_t length : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    FileReader& reader = opened("abc");
    text_ = "before";

    EXPECT_TRUE(reader.readText(text_, length));

    EXPECT_EQ(textOf(text_), "");
    EXPECT_EQ(reader.tell(), 0);
  }
}

TEST_F(FileReaderText, ATextCanBeReadAtAPosition) {
  FileReader& reader = opened("abcdefgh", 3);

  EXPECT_TRUE(reader.readTextAt(2, text_, 4));
  EXPECT_EQ(textOf(text_), "cdef");
  EXPECT_TRUE(reader.readTextAt(0, text_, 2));
  EXPECT_EQ(textOf(text_), "ab");
}

TEST_F(FileReaderText, OnceTheEndIsReachedAPositionedTextNoLongerMoves) {
  FileReader& reader = opened("abcdef", 4);
  EXPECT_TRUE(reader.readTextAt(3, text_, 9));
  EXPECT_EQ(textOf(text_), "def");

  EXPECT_FALSE(reader.readTextAt(0, text_, 2));
  EXPECT_FALSE(reader.readTextAt(-1, text_, 2));
  EXPECT_EQ(textOf(text_), "def");  // untouched

  EXPECT_TRUE(reader.seek(0));  // seek() still works, and then the text too
  EXPECT_TRUE(reader.readTextAt(1, text_, 2));
  EXPECT_EQ(textOf(text_), "bc");
}

TEST_F(FileReaderText, APositionedTextPastTheEndIsFalseAndEmpty) {
  FileReader& reader = opened("abcdef", 4);

  EXPECT_FALSE(reader.readTextAt(6, text_, 2));

  EXPECT_EQ(textOf(text_), "");
}

TEST_F(FileReaderText, ANegativePositionIsAnEmptyTextAndNoFailure) {
  FileReader& reader = opened("abcdef", 4);

  EXPECT_TRUE(reader.readTextAt(-1, text_, 2));
  EXPECT_EQ(textOf(text_), "");

  EXPECT_TRUE(reader.readText(text_, 2));
  EXPECT_EQ(textOf(text_), "ab");  // the position is as it was
}

TEST_F(FileReaderText, LinesComeWithoutTheirLineFeedsWhichAreCounted) {
  for (const std::int32_t blockSize : {1024, 4, 1}) {
    FileReader& reader = opened("first\n\nthird\r\n!", blockSize);

    EXPECT_TRUE(reader.readLine(text_));
    EXPECT_EQ(textOf(text_), "first");
    EXPECT_EQ(reader.lineCount(), 1);
    EXPECT_TRUE(reader.readLine(text_));
    EXPECT_EQ(textOf(text_), "");
    EXPECT_EQ(reader.lineCount(), 2);
    EXPECT_TRUE(reader.readLine(text_));
    EXPECT_EQ(textOf(text_), "third\r");  // carriage returns are ordinary characters
    EXPECT_EQ(reader.lineCount(), 3);
  }
}

TEST_F(FileReaderText, AFinalLineWithoutALineFeedComesOnceAndThenLinesEnd) {
  FileReader& reader = opened("a\nlast");
  EXPECT_TRUE(reader.readLine(text_));

  EXPECT_TRUE(reader.readLine(text_));
  EXPECT_EQ(textOf(text_), "last");
  EXPECT_EQ(reader.lineCount(), 1);

  EXPECT_FALSE(reader.readLine(text_));
  EXPECT_EQ(textOf(text_), "last");  // untouched
}

TEST_F(FileReaderText, AFinalLineFeedIsFollowedByNoLine) {
  FileReader& reader = opened("a\nb\n");
  EXPECT_TRUE(reader.readLine(text_));
  EXPECT_TRUE(reader.readLine(text_));

  EXPECT_FALSE(reader.readLine(text_));
}

TEST_F(FileReaderText, AFileThatEndsWhereABlockEndsHasAFurtherEmptyLine) {
  FileReader& reader = opened("abc\n", 4);
  EXPECT_TRUE(reader.readLine(text_));
  EXPECT_EQ(textOf(text_), "abc");

  EXPECT_TRUE(reader.readLine(text_));
  EXPECT_EQ(textOf(text_), "");
  EXPECT_EQ(reader.lineCount(), 1);

  EXPECT_FALSE(reader.readLine(text_));
}

TEST_F(FileReaderText, ALineCanBeReadAtAPosition) {
  FileReader& reader = opened("first\nsecond\n", 4);

  EXPECT_TRUE(reader.readLineAt(8, text_));
  EXPECT_EQ(textOf(text_), "cond");
  EXPECT_FALSE(reader.readLineAt(-1, text_));
  EXPECT_FALSE(reader.readLineAt(14, text_));
  EXPECT_EQ(textOf(text_), "cond");
  EXPECT_TRUE(reader.readLineAt(0, text_));  // moves back, unlike a positioned text

  EXPECT_EQ(textOf(text_), "first");
}

TEST_F(FileReaderText, ReadUntilTakesTheDelimiterAndCountsNoLines) {
  FileReader& reader = opened("a\nb;;rest", 2);

  EXPECT_TRUE(reader.readUntil(text_, ';'));
  EXPECT_EQ(textOf(text_), "a\nb");
  EXPECT_TRUE(reader.readUntil(text_, ';'));
  EXPECT_EQ(textOf(text_), "");
  EXPECT_TRUE(reader.readUntil(text_, ';'));
  EXPECT_EQ(textOf(text_), "rest");
  EXPECT_FALSE(reader.readUntil(text_, ';'));

  EXPECT_EQ(textOf(text_), "rest");
  EXPECT_EQ(reader.lineCount(), 0);
}

TEST_F(FileReaderText, ADelimiterCanBeAnyByte) {
  FileReader& reader = opened("a\0b\xFFz"s);

  EXPECT_TRUE(reader.readUntil(text_, '\0'));
  EXPECT_EQ(textOf(text_), "a");
  EXPECT_TRUE(reader.readUntil(text_, '\xFF'));

  EXPECT_EQ(textOf(text_), "b");
}

TEST_F(FileReaderText, SkipUntilPassesOverTheDelimiter) {
  FileReader& reader = opened("abc\n;def;", 2);

  EXPECT_TRUE(reader.skipUntil(';'));
  EXPECT_TRUE(reader.readText(text_, 2));
  EXPECT_EQ(textOf(text_), "de");
  EXPECT_TRUE(reader.skipUntil(';'));
  EXPECT_FALSE(reader.skipUntil(';'));

  EXPECT_EQ(reader.lineCount(), 0);
}

TEST_F(FileReaderText, SkippingWhiteSpaceCountsItsLineFeeds) {
  for (const std::int32_t blockSize : {1024, 3, 1}) {
    FileReader& reader = opened(" \t\n\v\f\r\n x\n", blockSize);

    EXPECT_TRUE(reader.skipWhiteSpace());
    EXPECT_EQ(reader.lineCount(), 2);
    EXPECT_TRUE(reader.readText(text_, 1));
    EXPECT_EQ(textOf(text_), "x");
    EXPECT_FALSE(reader.skipWhiteSpace());

    EXPECT_EQ(reader.lineCount(), 3);
  }
}

TEST_F(FileReaderText, ZeroAndHighBytesAreNoWhiteSpace) {
  for (const char byte : {'\0', '\x08', '\x0E', '\x1F', '\x85', '\xA0'}) {
    FileReader& reader = opened(std::string(" ") + byte);

    EXPECT_TRUE(reader.skipWhiteSpace());

    EXPECT_TRUE(reader.readText(text_, 1));
    EXPECT_EQ(textOf(text_), std::string(1, byte));
  }
}

TEST_F(FileReaderText, WordsAreDelimitedByWhiteSpace) {
  for (const std::int32_t blockSize : {1024, 5, 4, 1}) {
    FileReader& reader = opened("\n one\ttwo\r\nthree \n", blockSize);

    EXPECT_TRUE(reader.readWord(text_));
    EXPECT_EQ(textOf(text_), "one");
    EXPECT_EQ(reader.lineCount(), 1);
    EXPECT_TRUE(reader.readWord(text_));
    EXPECT_EQ(textOf(text_), "two");
    EXPECT_EQ(reader.lineCount(), 1);  // the white space after the word is still unread
    EXPECT_TRUE(reader.readWord(text_));
    EXPECT_EQ(textOf(text_), "three");
    EXPECT_FALSE(reader.readWord(text_));

    EXPECT_EQ(textOf(text_), "three");
    EXPECT_EQ(reader.lineCount(), 3);
  }
}

TEST_F(FileReaderText, ALastWordMayEndTheFile) {
  for (const std::int32_t blockSize : {1024, 4, 1}) {
    FileReader& reader = opened("last", blockSize);

    EXPECT_TRUE(reader.readWord(text_));
    EXPECT_EQ(textOf(text_), "last");

    EXPECT_FALSE(reader.readWord(text_));
  }
}

TEST_F(FileReaderText, TheRestOfTheFirstLineWithALabelIsRead) {
  struct Case {
    std::string contents;
    std::string rest;
    std::int32_t lineCount;
  };
  for (const std::int32_t blockSize : {1, 3, 5, 6, 1024}) {
    for (const Case& c :
         {Case{"BCAL=one\nx", "one", 1}, Case{"\nBCA\nBCAL=one", "one", 2},
          Case{"xBCAL=no\nBCAL=\n", "", 2}, Case{"BCAL=", "", 0}, Case{"x\nBCAL=", "", 1}}) {
      FileReader& reader = opened(c.contents, blockSize);
      text_ = "before";

      EXPECT_TRUE(reader.readLineAfter("BCAL=", text_)) << c.contents;

      EXPECT_EQ(textOf(text_), c.rest) << c.contents << blockSize;
      EXPECT_EQ(reader.lineCount(), c.lineCount) << c.contents << blockSize;
    }
  }
}

TEST_F(FileReaderText, WithoutALineThatHasTheLabelTheTextStays) {
  for (const char* contents : {"", "BCAL", "NAME=x\nBCAL\n", " BCAL=x"}) {
    FileReader& reader = opened(contents, 4);

    EXPECT_FALSE(reader.readLineAfter("BCAL=", text_)) << contents;

    EXPECT_EQ(textOf(text_), "before") << contents;
  }
}

}  // namespace
