#include "output/file_writer.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tests/output/file_writer_operations.h"
#include "tests/output/written_bytes.h"
#include "tests/support/scratch_folder.h"

// Opening, closing and flushing.

namespace {

using Tessaly::FileWriter;
using Tessaly::String;

constexpr std::int32_t bufferSize = 8;  // bytes: the longest operation just fits

/// Fills `count` bytes of an empty buffer. A full buffer is not flushed.
void fill(FileWriter& writer, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) writer.writeByte('.');
}

/// The operation in a buffer with exactly the room that it needs.
Action exactlyFilling(const Operation& row) {
  return [&row](FileWriter& writer) {
    fill(writer, bufferSize - row.bytes.size());
    row.action(writer);
  };
}

std::string fillingFor(const Operation& row) {
  return std::string(bufferSize - row.bytes.size(), '.');
}

TEST(FileWriter, AFullDefaultBufferIsFlushedAtOnceAndThenEmpty) {
  ScratchFolder folder;
  {
    FileWriter writer;
    ASSERT_TRUE(writer.open("out"));

    writer.write(std::string(1024, 'a').c_str());
    writer.write(std::string(1023, 'b').c_str());
  }

  EXPECT_EQ(folder.read("out"), std::string(1024, 'a'));
}

TEST(FileWriter, OneByteLessThanTheDefaultBufferStaysPending) {
  ScratchFolder folder;
  {
    FileWriter writer;
    ASSERT_TRUE(writer.open("out"));
    writer.write(String('a', 1023));
  }

  EXPECT_EQ(folder.read("out"), "");
}

TEST(FileWriter, DestructionWithoutCloseLosesWhatWasNeverFlushed) {
  EXPECT_EQ(flushed(4, [](FileWriter& writer) { writer.write("abcdefghij"); }), "abcdefgh");
  EXPECT_EQ(written(4, [](FileWriter& writer) { writer.write("abcdefghij"); }), "abcdefghij");
}

TEST(FileWriter, PlacedBytesThatFillTheBufferAreFlushedAtOnce) {
  for (const Operation& row : placing) {
    EXPECT_EQ(flushed(bufferSize, exactlyFilling(row)), fillingFor(row) + row.bytes) << row.name;
    EXPECT_EQ(flushed(bufferSize + 1, exactlyFilling(row)), "")
        << row.name << ", one byte left free";
  }
}

TEST(FileWriter, StoredBytesMayLeaveTheBufferFull) {
  for (const Operation& row : storing) {
    EXPECT_EQ(flushed(bufferSize, exactlyFilling(row)), "") << row.name;
    EXPECT_EQ(written(bufferSize, exactlyFilling(row)), fillingFor(row) + row.bytes) << row.name;
  }
}

TEST(FileWriter, ACharacterIsStoredByWriteAndPlacedByTheOperator) {
  EXPECT_EQ(flushed(2, [](FileWriter& w) { w << 'a', w.write('b'); }), "");
  EXPECT_EQ(flushed(2, [](FileWriter& w) { w.write('a'), w << 'b'; }), "ab");
}

TEST(FileWriter, EveryOperationOnAFullBufferFlushesItFirst) {
  const std::string full(bufferSize, '.');
  const auto expectFlushFirst = [&full](const Operation& row) {
    const Action onFullBuffer = [&row](FileWriter& writer) {
      fill(writer, bufferSize);
      row.action(writer);
    };
    EXPECT_EQ(flushed(bufferSize, onFullBuffer), full) << row.name;
    EXPECT_EQ(written(bufferSize, onFullBuffer), full + row.bytes) << row.name;
  };

  for (const Operation& row : placing) expectFlushFirst(row);
  for (const Operation& row : storing) expectFlushFirst(row);
}

TEST(FileWriter, OfLengthZeroATextOrRunFlushesAFullBufferAndAnArrayDoesNot) {
  struct Case {
    const char* name;
    Action action;
    const char* expected;
  };
  const char* const noCharacters = nullptr;
  const unsigned char* const noBytes = nullptr;
  const Case cases[] = {
      {"String", [](FileWriter& w) { w.write(String()); }, "...."},
      {"text", [](FileWriter& w) { w.write(""); }, "...."},
      {"operator", [](FileWriter& w) { w << ""; }, "...."},
      {"char run", [](FileWriter& w) { w.writeBytes(characters, 0); }, "...."},
      {"unsigned char run", [](FileWriter& w) { w.writeBytes(octets, 0); }, "...."},
      {"char run, null", [&](FileWriter& w) { w.writeBytes(noCharacters, 0); }, "...."},
      {"unsigned char run, null", [&](FileWriter& w) { w.writeBytes(noBytes, 0); }, "...."},
      {"repeated", [](FileWriter& w) { w.writeRepeated('a', 0); }, "...."},
      {"field", [](FileWriter& w) { w.writeField("ab", 0); }, "...."},
      {"aligned", [](FileWriter& w) { w.writeAligned("", 0, true); }, "...."},
      {"char run of -1", [](FileWriter& w) { w.writeBytes(characters, -1); }, ""},
      {"repeated, -1", [](FileWriter& w) { w.writeRepeated('a', -1); }, ""},
      {"int16 array", [](FileWriter& w) { w.writeBigEndian(int16s, 0); }, ""},
      {"double array", [](FileWriter& w) { w.writeNative(doubles, 0); }, ""},
  };

  for (const Case& row : cases) {
    const Action onFullBuffer = [&row](FileWriter& writer) {
      fill(writer, 4);
      row.action(writer);
    };
    EXPECT_EQ(flushed(4, onFullBuffer), row.expected) << row.name;
    EXPECT_EQ(written(4, onFullBuffer), "....") << row.name;
  }
}

TEST(FileWriter, AnIntegerOf11CharactersFills11FreeBytesExactly) {
  constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
  const auto after = [](std::size_t pending) -> Action {
    return [pending](FileWriter& writer) {
      fill(writer, pending);
      writer.write(smallest);
    };
  };

  EXPECT_EQ(flushed(16, after(4)), "") << "12 bytes free";
  EXPECT_EQ(flushed(16, after(5)), ".....-2147483648") << "11 bytes free";
  EXPECT_EQ(flushed(16, after(6)), "......-214748364") << "10 bytes free";
}

TEST(FileWriter, ANumberOrAlignedFieldThatFillsTwoBuffersIsFlushedTwice) {
  const Operation cases[] = {
      {"integer", [](FileWriter& w) { w.write(1234567); }, "1234567"},
      {"double", [](FileWriter& w) { w.write(12345.5); }, "12345.5"},
      {"left", [](FileWriter& w) { w.writeAligned("ab", 7, false); }, "ab     "},
      {"right", [](FileWriter& w) { w.writeAligned(12, 7, true); }, "     12"},
      {"right, unpadded", [](FileWriter& w) { w.writeAligned("abcdefg", 2, true); }, "abcdefg"},
  };

  for (const Operation& row : cases) {
    const Action afterOneByte = [&row](FileWriter& writer) {
      writer.write('.');
      row.action(writer);
    };
    EXPECT_EQ(flushed(4, afterOneByte), "." + row.bytes) << row.name;
  }
}

TEST(FileWriter, OpenEmptiesAnExistingFile) {
  ScratchFolder folder;
  const String path = folder.write("out", "a long former content");

  FileWriter writer;
  ASSERT_TRUE(writer.open(path));
  writer.write("new");
  writer.close();

  EXPECT_EQ(folder.read("out"), "new");
}

TEST(FileWriter, OpenAppendContinuesAnExistingFileAndMakesAMissingOne) {
  ScratchFolder folder;
  const String path = folder.write("out", "former,");

  FileWriter writer;
  ASSERT_TRUE(writer.openAppend(path));
  writer.write("new");
  writer.close();
  ASSERT_TRUE(writer.openAppend("fresh"));
  writer.write("first");
  writer.close();

  EXPECT_EQ(folder.read("out"), "former,new");
  EXPECT_EQ(folder.read("fresh"), "first");
}

TEST(FileWriter, OneObjectWritesSeveralFilesInTurn) {
  ScratchFolder folder;
  FileWriter writer(4);

  ASSERT_TRUE(writer.open("first"));
  writer.write("abcdef");
  writer.close();
  ASSERT_TRUE(writer.open("second"));
  writer.write("ghi");
  writer.close();

  EXPECT_EQ(folder.read("first"), "abcdef");
  EXPECT_EQ(folder.read("second"), "ghi");
}

TEST(FileWriter, OpenDropsPendingBytes) {
  ScratchFolder folder;
  FileWriter writer;
  writer.write("before any file");

  ASSERT_TRUE(writer.open("out"));
  writer.write("kept");
  writer.close();

  EXPECT_EQ(folder.read("out"), "kept");
}

TEST(FileWriter, AFailedOpenMakesEveryLaterOpenFail) {
  ScratchFolder folder;
  FileWriter writer;

  EXPECT_FALSE(writer.open("missing/out"));
  EXPECT_FALSE(writer.open("valid"));
  writer.write(std::string(2000, 'a').c_str());
  writer.close();
  EXPECT_FALSE(writer.openAppend("valid"));

  EXPECT_TRUE(folder.has("valid")) << "the file itself is opened";
  EXPECT_EQ(folder.read("valid"), "") << "but takes no bytes";
  writer.close();
  folder.write("old", "former");
  EXPECT_FALSE(writer.open("old"));
  EXPECT_EQ(folder.read("old"), "") << "and is emptied";
}

TEST(FileWriter, AFailedOpenAppendMakesEveryLaterOpenFail) {
  ScratchFolder folder;
  FileWriter writer, stringWriter;

  EXPECT_FALSE(writer.openAppend("missing/out"));
  EXPECT_FALSE(writer.openAppend("valid"));
  writer.close();
  EXPECT_FALSE(writer.open("valid"));
  EXPECT_FALSE(stringWriter.openAppend(folder.at("missing/out")));
  EXPECT_FALSE(stringWriter.openAppend(folder.at("valid")));
  stringWriter.close();
  EXPECT_FALSE(stringWriter.open(folder.at("valid")));
}

TEST(FileWriter, AFailedWriteOrCloseMakesEveryLaterOpenFail) {
  struct Case {
    const char* name;
    Action action;
  };
  const std::vector<Case> cases = {
      {"close without open", [](FileWriter& w) { w.close(); }},
      {"a block without open", [](FileWriter& w) { w.write("abcd"); }},
      {"second close", [](FileWriter& w) { w.open("one"), w.write("abcd"), w.close(), w.close(); }},
      {"bytes after those of a closed file, filling the buffer",
       [](FileWriter& w) { w.open("one"), w.write("ab"), w.close(), w.write("cd"); }},
      {"open while open", [](FileWriter& w) { w.open("one"), w.open("two"); }},
  };

  for (const Case& row : cases) {
    ScratchFolder folder;
    FileWriter writer(4);
    row.action(writer);
    EXPECT_FALSE(writer.open("valid")) << row.name;
  }
}

TEST(FileWriter, AnUnwritableDeviceShowsOnlyInTheNextOpen) {
  ScratchFolder folder;
  FileWriter writer;
  if (!writer.open("/dev/full")) GTEST_SKIP() << "no /dev/full here";

  writer.write(String('a', 100000));
  writer.close();

  EXPECT_FALSE(writer.open("valid"));
}

TEST(FileWriter, ADirectoryAndAFileBothExist) {
  ScratchFolder folder;
  folder.write("file", "");
  folder.makeFolder("folder");
  FileWriter writer;

  EXPECT_TRUE(writer.exists("file"));
  EXPECT_TRUE(writer.exists("folder"));
  EXPECT_FALSE(writer.exists("nothing"));
  EXPECT_TRUE(writer.exists(folder.at("file")));
  EXPECT_TRUE(writer.exists(folder.at("folder")));
  EXPECT_FALSE(writer.exists(folder.at("nothing")));
}

TEST(FileWriter, ALinkExistsWhenItsTargetDoes) {
  ScratchFolder folder;
  folder.write("file", "");
  std::filesystem::create_symlink("file", "link");
  std::filesystem::create_symlink("nothing", "dangling");
  FileWriter writer;

  EXPECT_TRUE(writer.exists("link"));
  EXPECT_TRUE(writer.exists(folder.at("link")));
  EXPECT_FALSE(writer.exists("dangling"));
  EXPECT_FALSE(writer.exists(folder.at("dangling")));
}

TEST(FileWriter, SetBufferSizeDiscardsPendingBytesAndSetsTheBlockSize) {
  const Action action = [](FileWriter& writer) {
    writer.write("lost");
    writer.setBufferSize(3);
    writer.write("abcdefgh");
  };

  EXPECT_EQ(written(16, action), "abcdefgh");
  EXPECT_EQ(flushed(16, action), "abcdef");
}

TEST(FileWriter, SetBufferSizeLeavesAFailedStreamFailed) {
  ScratchFolder folder;
  FileWriter writer;
  ASSERT_FALSE(writer.open("missing/out"));

  writer.setBufferSize(16);

  EXPECT_FALSE(writer.open("valid"));
  writer.write(String('a', 100));
  writer.close();
  EXPECT_EQ(folder.read("valid"), "");
}

TEST(FileWriter, AWriterThatFailedBetweenTwoFilesStaysFailed) {
  ScratchFolder folder;
  FileWriter writer;
  ASSERT_TRUE(writer.open("first"));
  writer.close();
  writer.close();  // nothing is open: a failure

  EXPECT_FALSE(writer.open("second"));
  writer.close();
  EXPECT_FALSE(writer.open("third"));
}

/// System writes of this process so far; -1 where the system does not count them.
long systemWrites() {
  std::ifstream stream("/proc/self/io");
  std::string name;
  long count = 0;
  while (stream >> name >> count) {
    if (name == "syscw:") return count;
  }
  return -1;
}

TEST(FileWriter, EveryFileOfAWriterIsWrittenInLargeRuns) {
  if (systemWrites() < 0) GTEST_SKIP() << "the system does not count writes";
  ScratchFolder folder;
  FileWriter writer;

  for (const char* const name : {"first", "second", "third"}) {
    const long before = systemWrites();
    ASSERT_TRUE(writer.open(name));
    writer.write(String('a', 50'000));
    writer.close();

    EXPECT_LE(systemWrites() - before, 3) << name;  // a library may split the last run
    EXPECT_EQ(folder.read(name).size(), 50'000U);
  }
}

TEST(FileWriter, WithoutABufferEveryWriteIsDropped) {
  const Action everyManner = [](FileWriter& writer) {
    const std::int32_t values[] = {1, 2};
    writer.write("text");
    writer.write('c');
    writer.write(12);
    writer.write(2.5);
    writer.newline();
    writer.writeLine('c');
    writer.writeBytes("ab", 2);
    writer.writeBytes("ab", 0);
    writer.writeBigEndian(values, 2);
    writer.writeNative(2.5);
    writer.writeTerminated("");
    writer.writeRepeated('r', 3);
    writer.writeField("ab", 1);
    writer.writeAligned("ab", 4, true);
    writer.trimTrailingSpace();
  };

  for (const std::int32_t size : {0, -1, -1024}) {
    EXPECT_EQ(written(size, everyManner), "") << size;
  }
  EXPECT_EQ(written(8, [&](FileWriter& writer) { writer.setBufferSize(0), everyManner(writer); }),
            "");
}

}  // namespace
