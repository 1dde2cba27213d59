#include "trace/file_reader.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"
#include "tests/trace/counting_bytes.h"
#include "tests/trace/single_bytes.h"

// Blocks and positions. Other files test opening, values and texts.

namespace {

using Tessaly::FileReader;

TEST(FileReader, ANewReaderHasAKilobyteBlockAndNothingRead) {
  FileReader reader;

  EXPECT_EQ(reader.blockSize(), 1024);
  EXPECT_EQ(reader.block(), 0);
  EXPECT_EQ(reader.blockBytes(), 0);
  EXPECT_EQ(reader.lineCount(), 0);
  EXPECT_EQ(reader.tell(), 0);
  EXPECT_FALSE(reader.atEnd());
}

TEST(FileReader, OpenShowsBlockZero) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", countingBytes(10));

  FileReader reader(4);
  ASSERT_TRUE(reader.open(path));

  EXPECT_EQ(reader.block(), 0);
  EXPECT_EQ(reader.blockBytes(), 4);
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(reader.tell(), 0);
  EXPECT_EQ(nextByte(reader), 0);
}

TEST(FileReader, ASeekToANegativePositionFailsAndLeavesThePosition) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(40))));
  ASSERT_TRUE(reader.seek(9));

  EXPECT_FALSE(reader.seek(-1));
  EXPECT_FALSE(reader.seek(std::numeric_limits<std::int32_t>::min()));

  EXPECT_EQ(nextByte(reader), 9);
}

TEST(FileReader, SeekMovesForwardsBackwardsAndWithinABlock) {
  ScratchFolder folder;
  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(5000))));

  EXPECT_EQ(byteAt(reader, 4999), 230);  // 19 x 251 = 4769
  EXPECT_EQ(byteAt(reader, 0), 0);
  EXPECT_EQ(byteAt(reader, 1023), 19);  // 4 x 251 = 1004
  EXPECT_EQ(nextByte(reader), 20);      // across the end of the block
  EXPECT_EQ(byteAt(reader, 1030), 26);
}

TEST(FileReader, ASeekPastTheEndMovesAndLeavesNothingToRead) {
  ScratchFolder folder;
  FileReader reader(8);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(10))));

  EXPECT_TRUE(reader.seek(13));  // in the last block, after its two bytes
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_TRUE(reader.seek(std::numeric_limits<std::int32_t>::max()));
  EXPECT_EQ(nextByte(reader), -1);

  EXPECT_EQ(byteAt(reader, 9), 9);  // moving back works
}

TEST(FileReader, AfterASeekTheBlockNumberIsTheBytePositionOfTheBlock) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(64))));

  ASSERT_TRUE(reader.seek(9));  // block 2 starts at byte 8

  EXPECT_EQ(reader.block(), 8);
  EXPECT_EQ(reader.tell(), 33);  // 4 x 8 + 1
  EXPECT_EQ(nextByte(reader), 9);
}

TEST(FileReader, ASeekToTheBlockWhoseNumberEqualsTheStoredPositionKeepsTheOldBlock) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(64))));
  ASSERT_TRUE(reader.seek(4));  // bytes 4 to 7, stored as block 4

  EXPECT_EQ(byteAt(reader, 17), 5);   // block 4 by number: bytes 4 to 7 stay loaded
  EXPECT_EQ(byteAt(reader, 20), 20);  // block 5 differs and is read
  EXPECT_EQ(byteAt(reader, 17), 17);  // block 4 differs from the stored 20 now
}

TEST(FileReader, TheRefillAfterAKeptBlockContinuesAfterTheBlockReadLast) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(64))));
  ASSERT_TRUE(reader.seek(4));
  ASSERT_TRUE(reader.seek(19));  // kept: the position is byte 7

  EXPECT_EQ(nextByte(reader), 7);
  EXPECT_EQ(nextByte(reader), 8);    // refilled from byte 8: the block count goes from 4 to 5
  EXPECT_EQ(byteAt(reader, 20), 8);  // so block 5 counts as loaded
}

TEST(FileReader, AFileOverAMebibyteShowsTheOldBlockWhereNumberAndPositionMeet) {
  ScratchFolder folder;
  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(1'100'000))));
  ASSERT_TRUE(reader.seek(1024));

  EXPECT_EQ(byteAt(reader, 1'048'581), 25);  // in block 1024: gives byte 1029 = 4 x 251 + 25

  EXPECT_EQ(byteAt(reader, 0), 0);
  EXPECT_EQ(byteAt(reader, 1'048'581), 154);  // reloaded: 4177 x 251 + 154
}

TEST(FileReader, WithoutASeekTellIsTheFilePosition) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(64))));

  char bytes[6];
  ASSERT_EQ(reader.readBytes(bytes, 6), 6);

  EXPECT_EQ(reader.block(), 1);
  EXPECT_EQ(reader.tell(), 6);
}

TEST(FileReader, AFullLastBlockIsNotYetTheEnd) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", "abcdefgh")));

  char bytes[8];
  ASSERT_EQ(reader.readBytes(bytes, 8), 8);
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(nextByte(reader), -1);

  EXPECT_TRUE(reader.atEnd());
  EXPECT_EQ(reader.block(), 2);  // an empty refill counts
  EXPECT_EQ(reader.blockBytes(), 0);
  EXPECT_TRUE(reader.good());
}

TEST(FileReader, HasEndedWhileTheLastBlockIsUsedUp) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", "abcdef")));
  char bytes[4];

  ASSERT_EQ(reader.readBytes(bytes, 4), 4);
  EXPECT_FALSE(reader.hasEnded());  // this block has ended, but another one follows
  ASSERT_EQ(reader.readBytes(bytes, 1), 1);
  EXPECT_FALSE(reader.hasEnded());
  ASSERT_EQ(reader.readBytes(bytes, 1), 1);
  EXPECT_TRUE(reader.hasEnded());
  ASSERT_TRUE(reader.seek(0));
  EXPECT_FALSE(reader.hasEnded());
}

TEST(FileReader, SetBufferSizeGivesUpTheBlockAndReadsNothing) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", countingBytes(11))));
  EXPECT_EQ(nextByte(reader), 0);

  reader.setBufferSize(3);

  EXPECT_EQ(reader.blockSize(), 3);
  EXPECT_EQ(reader.tell(), 0);
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(nextByte(reader), 4);  // the stream was after the first block of four
  EXPECT_EQ(reader.blockBytes(), 3);
}

TEST(FileReader, SetBufferSizeTakesTheEndBack) {
  ScratchFolder folder;
  FileReader reader(16);
  ASSERT_TRUE(reader.open(folder.write("file", "abc")));
  ASSERT_TRUE(reader.atEnd());

  reader.setBufferSize(16);

  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_TRUE(reader.atEnd());
}

/// Whether every operation on texts, lines and words is false and leaves its text as it was.
void expectNoText(FileReader& reader) {
  Tessaly::String text("kept");
  EXPECT_FALSE(reader.readText(text, 2));
  EXPECT_FALSE(reader.readText(text, 0));
  EXPECT_FALSE(reader.readTextAt(0, text, 2));
  EXPECT_FALSE(reader.readTextAt(-1, text, 2));
  EXPECT_FALSE(reader.readLine(text));
  EXPECT_FALSE(reader.readLineAt(0, text));
  EXPECT_FALSE(reader.readUntil(text, 'm'));
  EXPECT_FALSE(reader.readWord(text));
  EXPECT_FALSE(reader.skipUntil('s'));
  EXPECT_FALSE(reader.skipWhiteSpace());
  EXPECT_EQ(textOf(text), "kept");
}

TEST(FileReader, AReaderWithoutABufferFindsNothing) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", "some words\n");
  for (const std::int32_t blockSize : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    FileReader reader(blockSize);
    EXPECT_EQ(reader.blockSize(), 0);
    ASSERT_TRUE(reader.open(path));

    std::uint32_t value = 7;
    std::uint16_t values[2];
    char bytes[2];
    EXPECT_FALSE(reader.seek(0));
    EXPECT_FALSE(reader.readUInt32(value));
    EXPECT_FALSE(reader.readUInt32At(0, value));
    EXPECT_EQ(reader.readUInt16Array(values, 2), 0);
    EXPECT_EQ(reader.readBytes(bytes, 2), 0);
    expectNoText(reader);
    EXPECT_EQ(reader.tell(), 0);

    EXPECT_EQ(value, 7u);
  }
}

TEST(FileReader, AReaderWhoseBufferIsTakenAwayFindsNoText) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", "some words\n")));

  reader.setBufferSize(0);

  EXPECT_FALSE(reader.atEnd());
  expectNoText(reader);
}

TEST(FileReader, AReaderWithoutBufferOrFileFindsNoText) {
  for (const bool afterSeveral : {false, true}) {
    FileReader reader(0);
    if (afterSeveral) {
      EXPECT_FALSE(reader.skipUntil('s'));
    }

    expectNoText(reader);
  }
}

TEST(FileReader, ABufferTakenAwayAndGivenBackGoesOnReading) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", "abcdefgh")));

  reader.setBufferSize(0);
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_EQ(nextByte(reader), -1);
  reader.setBufferSize(2);

  EXPECT_EQ(nextByte(reader), 'e');
}

TEST(FileReader, AGiantBlockSizeShowsTheWholeFile) {
  ScratchFolder folder;
  FileReader reader(std::numeric_limits<std::int32_t>::max());

  ASSERT_TRUE(reader.open(folder.write("file", "abc")));

  EXPECT_EQ(reader.blockBytes(), 3);
  EXPECT_TRUE(reader.atEnd());
  EXPECT_EQ(byteAt(reader, 2), 'c');
}

}  // namespace
