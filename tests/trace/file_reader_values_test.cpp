#include "trace/file_reader.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/trace/counting_bytes.h"

namespace {

using Tessaly::FileReader;
using testing::ElementsAre;

/// A text of the given byte values.
std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

class FileReaderValues : public testing::Test {
 protected:
  FileReader& opened(const std::string& contents, std::int32_t blockSize = 1024) {
    reader_.setBufferSize(blockSize);
    EXPECT_TRUE(reader_.open(folder_.write("file", contents)));
    return reader_;
  }

 private:
  ScratchFolder folder_;
  FileReader reader_;
};

TEST_F(FileReaderValues, NumbersAreStoredMostSignificantByteFirst) {
  FileReader& reader = opened(bytes({0x12, 0xFE, 0x12, 0x34, 0xFF, 0xFE, 0x89, 0xAB, 0xCD, 0xEF,  //
                                     0xFF, 0xFF, 0xFF, 0xFD}));
  std::int8_t int8 = 0;
  std::uint8_t uint8 = 0;
  std::int16_t int16 = 0;
  std::uint16_t uint16 = 0;
  std::int32_t int32 = 0;
  std::uint32_t uint32 = 0;

  EXPECT_TRUE(reader.readUInt8(uint8) && reader.readInt8(int8) && reader.readUInt16(uint16) &&
              reader.readInt16(int16) && reader.readUInt32(uint32) && reader.readInt32(int32));

  EXPECT_EQ(uint8, 0x12);
  EXPECT_EQ(int8, -2);
  EXPECT_EQ(uint16, 0x1234);
  EXPECT_EQ(int16, -2);
  EXPECT_EQ(uint32, 0x89ABCDEFu);
  EXPECT_EQ(int32, -3);
}

TEST_F(FileReaderValues, NumbersCanBeReadAtAPosition) {
  FileReader& reader = opened(bytes({0, 0, 0xFF, 0xFE, 0x01, 0x02}), 2);
  std::int8_t int8 = 0;
  std::uint8_t uint8 = 0;
  std::int16_t int16 = 0;
  std::uint16_t uint16 = 0;
  std::int32_t int32 = 0;
  std::uint32_t uint32 = 0;

  EXPECT_TRUE(reader.readUInt32At(2, uint32));
  EXPECT_TRUE(reader.readInt32At(2, int32));
  EXPECT_TRUE(reader.readUInt16At(2, uint16));
  EXPECT_TRUE(reader.readInt16At(2, int16));
  EXPECT_TRUE(reader.readUInt8At(2, uint8));
  EXPECT_TRUE(reader.readInt8At(3, int8));

  EXPECT_EQ(uint32, 0xFFFE0102u);
  EXPECT_EQ(int32, -130814);  // 0xFFFE0102 - 2^32 = -0x1FEFE
  EXPECT_EQ(uint16, 0xFFFE);
  EXPECT_EQ(int16, -2);
  EXPECT_EQ(uint8, 0xFF);
  EXPECT_EQ(int8, -2);
}

TEST_F(FileReaderValues, FloatingValuesAreCopiedInHostOrder) {
  const float stored32 = -1.5f;
  const double stored64 = 0.1;
  std::string contents(12, '\0');
  std::memcpy(contents.data(), &stored32, 4);
  std::memcpy(contents.data() + 4, &stored64, 8);
  FileReader& reader = opened(contents, 5);

  float float32 = 0;
  double float64 = 0;
  EXPECT_TRUE(reader.readFloat(float32) && reader.readDouble(float64));
  EXPECT_EQ(float32, -1.5f);
  EXPECT_EQ(float64, 0.1);

  float32 = 0;
  float64 = 0;
  EXPECT_TRUE(reader.readDoubleAt(4, float64) && reader.readFloatAt(0, float32));
  EXPECT_EQ(float32, -1.5f);
  EXPECT_EQ(float64, 0.1);
}

TEST_F(FileReaderValues, FloatingArraysAreCopiedInHostOrder) {
  const float stored32[] = {1.25f, -8.0f, 0.5f};
  const double stored64[] = {1e300, -2.0};
  std::string contents(28, '\0');
  std::memcpy(contents.data(), stored32, 12);
  std::memcpy(contents.data() + 12, stored64, 16);
  FileReader& reader = opened(contents, 10);

  float floats[3] = {};
  double doubles[3] = {0, 0, 7};
  EXPECT_EQ(reader.readFloatArray(floats, 3), 3);
  EXPECT_EQ(reader.readDoubleArray(doubles, 3), 2);

  EXPECT_THAT(floats, ElementsAre(1.25f, -8.0f, 0.5f));
  EXPECT_THAT(doubles, ElementsAre(1e300, -2.0, 7));
}

TEST_F(FileReaderValues, A32BitValueAcrossTwoBlocksIsWhole) {
  FileReader& reader = opened(countingBytes(3000));

  std::uint32_t value = 0;
  EXPECT_TRUE(reader.readUInt32At(1022, value));

  EXPECT_EQ(value, 0x12131415u);  // 1022 = 4 x 251 + 18
}

TEST_F(FileReaderValues, AValueAcrossManySmallBlocksIsWhole) {
  for (const std::int32_t blockSize : {1, 2, 3}) {
    FileReader& reader = opened(countingBytes(20), blockSize);
    std::uint8_t first = 9;
    std::uint32_t second = 0;

    EXPECT_TRUE(reader.readUInt8(first) && reader.readUInt32(second));

    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0x01020304u) << blockSize;
  }
}

TEST_F(FileReaderValues, AValueThatTheFileCutsLeavesTheOutputAlone) {
  // 1024: the file is one short block. 2: the second block is short. 3 and 1: the last block is
  // full and no other follows.
  for (const std::int32_t blockSize : {1024, 2, 3, 1}) {
    FileReader& reader = opened("abc", blockSize);
    std::uint32_t uint32 = 77;
    std::int32_t int32 = 78;
    float float32 = 79;
    double float64 = 80;

    EXPECT_FALSE(reader.readUInt32(uint32));
    EXPECT_FALSE(reader.readInt32At(0, int32));
    EXPECT_FALSE(reader.readFloatAt(0, float32));
    EXPECT_FALSE(reader.readDoubleAt(0, float64));

    EXPECT_EQ(uint32, 77u);
    EXPECT_EQ(int32, 78);
    EXPECT_EQ(float32, 79);
    EXPECT_EQ(float64, 80);
  }
}

TEST_F(FileReaderValues, TheBytesOfACutValueStayUnreadInTheLastBlock) {
  FileReader& reader = opened("abc");
  std::uint32_t uint32 = 0;
  std::uint16_t uint16 = 0;

  EXPECT_FALSE(reader.readUInt32(uint32));

  EXPECT_TRUE(reader.readUInt16(uint16));
  EXPECT_EQ(uint16, 0x6162);
}

TEST_F(FileReaderValues, TheBytesOfACutValueAreUsedUpWhenARefillWasTried) {
  FileReader& reader = opened("abc", 2);
  std::uint32_t uint32 = 0;
  std::uint8_t uint8 = 5;

  EXPECT_FALSE(reader.readUInt32(uint32));

  EXPECT_FALSE(reader.readUInt8(uint8));
  EXPECT_EQ(uint8, 5);
}

TEST_F(FileReaderValues, AValueAtANegativePositionIsNotReadElsewhere) {
  FileReader& reader = opened("abcdefgh");
  std::uint16_t uint16 = 5;
  char run[2] = {'.', '.'};

  EXPECT_FALSE(reader.readUInt16At(-1, uint16));
  EXPECT_EQ(reader.readBytesAt(-1, run, 2), 0);

  EXPECT_EQ(uint16, 5);
  EXPECT_EQ(run[0], '.');
  EXPECT_TRUE(reader.readUInt16(uint16));
  EXPECT_EQ(uint16, 0x6162);  // still at the start
}

TEST_F(FileReaderValues, A16BitArrayIsTheSameAtEveryBlockSize) {
  for (std::int32_t blockSize = 1; blockSize <= 12; ++blockSize) {
    FileReader& reader =
        opened(bytes({0, 1, 0xFF, 0xFE, 0x12, 0x34, 0x80, 0, 0xAB, 0xCD}), blockSize);
    std::uint16_t values[4] = {};
    std::int16_t last[1] = {};

    EXPECT_EQ(reader.readUInt16Array(values, 4), 4);
    EXPECT_EQ(reader.readInt16Array(last, 1), 1);

    EXPECT_THAT(values, ElementsAre(0x0001, 0xFFFE, 0x1234, 0x8000)) << blockSize;
    EXPECT_THAT(last, ElementsAre(-21555)) << blockSize;  // 0xABCD = 43981; less 65536
  }
}

TEST_F(FileReaderValues, A32BitArrayIsTheSameAtEveryBlockSize) {
  for (std::int32_t blockSize = 1; blockSize <= 12; ++blockSize) {
    FileReader& reader =
        opened(bytes({'?', 0, 0, 1, 0, 0xFF, 0xFF, 0xFF, 0xFE, 0x80, 0, 0, 1}), blockSize);
    std::uint8_t odd = 0;  // so that values cross the ends of blocks
    std::uint32_t values[1] = {};
    std::int32_t signs[2] = {};

    EXPECT_TRUE(reader.readUInt8(odd));
    EXPECT_EQ(reader.readUInt32Array(values, 1), 1);
    EXPECT_EQ(reader.readInt32Array(signs, 2), 2);

    EXPECT_THAT(values, ElementsAre(256u)) << blockSize;
    EXPECT_THAT(signs, ElementsAre(-2, -2147483647)) << blockSize;
  }
}

TEST_F(FileReaderValues, A16BitArrayLongerThanTheFileGivesTheNumberItCouldRead) {
  for (const std::int32_t blockSize : {1024, 7, 6, 4, 1}) {
    FileReader& reader = opened(bytes({0, 1, 0, 2, 0, 3, 9}), blockSize);
    std::vector<std::uint16_t> values(5, 0xEEEE);

    EXPECT_EQ(reader.readUInt16Array(values.data(), 5), 3) << blockSize;

    EXPECT_THAT(values, ElementsAre(1, 2, 3, 0xEEEE, 0xEEEE));
  }
}

TEST_F(FileReaderValues, TheCutValueOfAnArrayStaysUnreadInTheLastBlock) {
  FileReader& reader = opened(bytes({0, 1, 0, 2, 9}));
  std::uint16_t values[4];
  std::uint8_t odd = 0;

  EXPECT_EQ(reader.readUInt16Array(values, 4), 2);

  EXPECT_TRUE(reader.readUInt8(odd));
  EXPECT_EQ(odd, 9);
}

TEST_F(FileReaderValues, TheCutValueOfAnArrayIsUsedUpWhenARefillWasTried) {
  FileReader& reader = opened(bytes({0, 1, 0, 2, 9}), 5);  // the last block is full
  std::uint16_t values[4];
  std::uint8_t odd = 0;

  EXPECT_EQ(reader.readUInt16Array(values, 4), 2);

  EXPECT_FALSE(reader.readUInt8(odd));
}

TEST_F(FileReaderValues, ByteRunsGoAcrossBlocksAndStopAtTheEnd) {
  FileReader& reader = opened("abcdefg\xFF", 3);
  char text[4] = {};
  std::int8_t signs[2]{};
  std::uint8_t rest[4] = {1, 1, 1, 1};

  EXPECT_EQ(reader.readBytes(text, 4), 4);
  EXPECT_EQ(reader.readBytes(signs, 2), 2);
  EXPECT_EQ(reader.readBytes(rest, 4), 2);

  EXPECT_EQ(std::string(text, 4), "abcd");
  EXPECT_THAT(signs, ElementsAre('e', 'f'));
  EXPECT_THAT(rest, ElementsAre('g', 0xFF, 1, 1));
}

// Blocks of 4 bytes: 0-3, 4-7, 8-11, ...
TEST_F(FileReaderValues, AnArrayLeavesTheBlockOfItsLastByteInView) {
  struct {
    std::int32_t count, block, tell;
  } const arrays[] = {{1, 0, 3}, {2, 1, 5}, {3, 1, 7}, {4, 2, 9}, {9, 4, 19}, {10, 5, 21}};
  for (const auto& array : arrays) {
    FileReader& reader = opened(countingBytes(22), 4);
    std::uint8_t first = 0;
    std::uint16_t values[10];
    reader.readUInt8(first);  // so that values cross the ends of blocks

    EXPECT_EQ(reader.readUInt16Array(values, array.count), array.count);

    EXPECT_EQ(reader.block(), array.block) << array.count;
    EXPECT_EQ(reader.tell(), array.tell) << array.count;
    EXPECT_EQ(reader.blockBytes(), array.block == 5 ? 2 : 4) << array.count;
    EXPECT_EQ(reader.atEnd(), array.block == 5) << array.count;
  }
}

TEST_F(FileReaderValues, AnArrayThatEndsWithItsBlockShowsNoFurtherOne) {
  FileReader& reader = opened(countingBytes(20), 4);
  std::uint16_t values[6];

  EXPECT_EQ(reader.readUInt16Array(values, 6), 6);

  EXPECT_EQ(reader.block(), 2);
  EXPECT_EQ(reader.tell(), 12);
  EXPECT_EQ(reader.readUInt16Array(values, 4), 4);
  EXPECT_FALSE(reader.atEnd());  // a full last block is not yet the end
}

TEST_F(FileReaderValues, AnArrayFromAClosedReaderEndsWithTheBlockInView) {
  FileReader& reader = opened(countingBytes(20), 4);
  std::uint16_t values[6];
  reader.close();

  EXPECT_EQ(reader.readUInt16Array(values, 6), 2);
}

TEST_F(FileReaderValues, ByteRunsCanBeReadAtAPosition) {
  FileReader& reader = opened("abcdefgh", 3);
  char text[3] = {};
  std::int8_t signs[2]{};
  std::uint8_t rest[4] = {1, 1, 1, 1};

  EXPECT_EQ(reader.readBytesAt(4, text, 3), 3);
  EXPECT_EQ(reader.readBytesAt(0, signs, 2), 2);
  EXPECT_EQ(reader.readBytesAt(6, rest, 4), 2);
  EXPECT_EQ(reader.readBytesAt(8, rest, 4), 0);

  EXPECT_EQ(std::string(text, 3), "efg");
  EXPECT_THAT(signs, ElementsAre('a', 'b'));
  EXPECT_THAT(rest, ElementsAre('g', 'h', 1, 1));
}

TEST_F(FileReaderValues, CountsOfZeroOrLessReadNothing) {
  FileReader& reader = opened("abcd");
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(reader.readBytes(static_cast<char*>(nullptr), count), 0);
    EXPECT_EQ(reader.readUInt16Array(nullptr, count), 0);
    EXPECT_EQ(reader.readUInt32Array(nullptr, count), 0);
    EXPECT_EQ(reader.readDoubleArray(nullptr, count), 0);
  }
  EXPECT_EQ(reader.tell(), 0);
}

}  // namespace
