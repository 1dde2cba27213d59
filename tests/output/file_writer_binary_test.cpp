#include "output/file_writer.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/output/written_bytes.h"

// The bytes that the binary operations of FileWriter write.

namespace {

using Tessaly::FileWriter;
using Tessaly::String;

TEST(FileWriterBinary, RawBytesAreWrittenUnchanged) {
  const char characters[] = {'\0', '\n', '\r', '\x7F'};
  const unsigned char octets[] = {0x00, 0x80, 0xFF};

  EXPECT_EQ(written([&](FileWriter& w) { w.writeBytes(characters, 4); }), bytes({0, 10, 13, 0x7F}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeBytes(octets, 3); }), bytes({0, 0x80, 0xFF}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeByte('\0'), w.writeByte('\n'); }), bytes({0, 10}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeByte(octets[2]); }), bytes({0xFF}));
}

TEST(FileWriterBinary, A16BitValueIsItsHighByteThenItsLowByte) {
  EXPECT_EQ(written([](FileWriter& w) { w.writeBigEndian(std::int16_t{0x0102}); }), bytes({1, 2}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeBigEndian(std::int16_t{-2}); }),
            bytes({0xFF, 0xFE}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeBigEndian(std::uint16_t{0xFE01}); }),
            bytes({0xFE, 1}));
}

TEST(FileWriterBinary, A32BitValueIsWrittenMostSignificantByteFirst) {
  EXPECT_EQ(written([](FileWriter& w) { w.writeBigEndian(std::int32_t{0x01020304}); }),
            bytes({1, 2, 3, 4}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeBigEndian(std::int32_t{-2}); }),
            bytes({0xFF, 0xFF, 0xFF, 0xFE}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeBigEndian(std::uint32_t{0xFE020304}); }),
            bytes({0xFE, 2, 3, 4}));
}

TEST(FileWriterBinary, A32BitValueIsSplitAcrossTheFlushWithoutLossOrReordering) {
  const std::string text(1022, 't');  // leaves 2 bytes free
  const Action textAndValue = [&](FileWriter& w) {
    w.write(text.c_str());
    w.writeBigEndian(std::int32_t{0x01020304});
  };

  EXPECT_EQ(flushed(1024, textAndValue), text + bytes({1, 2}));
  EXPECT_EQ(written(1024, textAndValue), text + bytes({1, 2, 3, 4}));
}

TEST(FileWriterBinary, ArraysAreTheirElementsInOrder) {
  const std::int16_t int16s[] = {0x0102, -1};
  const std::uint16_t uint16s[] = {0x0102, 0xFFFE};
  const std::int32_t int32s[] = {0x01020304, -1};
  const std::uint32_t uint32s[] = {0x01020304, 0xFFFFFFFE};
  const float floats[] = {1.5f, -2.0f};
  const double doubles[] = {1.5, -2.0};

  EXPECT_EQ(written([&](FileWriter& w) { w.writeBigEndian(int16s, 2); }),
            bytes({1, 2, 0xFF, 0xFF}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeBigEndian(uint16s, 2); }),
            bytes({1, 2, 0xFF, 0xFE}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeBigEndian(int32s, 2); }),
            bytes({1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeBigEndian(uint32s, 2); }),
            bytes({1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFE}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeNative(floats, 2); }), memoryOf(floats));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeNative(doubles, 2); }), memoryOf(doubles));
}

TEST(FileWriterBinary, ACountOfZeroOrLessWritesNothing) {
  for (const std::int32_t count : {0, -1}) {
    EXPECT_EQ(written([count](FileWriter& w) {
                w.writeBytes(static_cast<const char*>(nullptr), count);
                w.writeBytes(static_cast<const unsigned char*>(nullptr), count);
                w.writeBigEndian(static_cast<const std::int16_t*>(nullptr), count);
                w.writeBigEndian(static_cast<const std::uint16_t*>(nullptr), count);
                w.writeBigEndian(static_cast<const std::int32_t*>(nullptr), count);
                w.writeBigEndian(static_cast<const std::uint32_t*>(nullptr), count);
                w.writeNative(static_cast<const float*>(nullptr), count);
                w.writeNative(static_cast<const double*>(nullptr), count);
              }),
              "")
        << count;
  }
}

TEST(FileWriterBinary, FloatingPointValuesKeepTheirMemoryBytes) {
  EXPECT_EQ(written([](FileWriter& w) { w.writeNative(0.1); }), memoryOf(0.1));
  EXPECT_EQ(written([](FileWriter& w) { w.writeNative(0.1f); }), memoryOf(0.1f));
}

TEST(FileWriterBinary, ATerminatedTextEndsInOneZeroByte) {
  String withZero;
  withZero.append("a\0b", 3);

  EXPECT_EQ(written([](FileWriter& w) { w.writeTerminated("ab"); }), bytes({'a', 'b', 0}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeTerminated(""); }), bytes({0}));
  EXPECT_EQ(written([](FileWriter& w) { w.writeTerminated(String("ab")); }), bytes({'a', 'b', 0}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeTerminated(withZero); }), bytes({'a', 0, 'b', 0}));
}

TEST(FileWriterBinary, ATerminatedTextLongerThanTheBufferIsWrittenWhole) {
  const std::string text(3000, 't');

  EXPECT_EQ(written([&](FileWriter& w) { w.writeTerminated(text.c_str()); }), text + bytes({0}));
  EXPECT_EQ(written([&](FileWriter& w) { w.writeTerminated(String(text.c_str())); }),
            text + bytes({0}));
}

}  // namespace
