#include "output/file_writer.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

// Opening, closing, and when the buffer is handed to the stream.

namespace {

using Tessaly::FileWriter;
using Tessaly::String;
using Action = std::function<void(FileWriter&)>;

/// The file after `action` and close().
std::string written(std::int32_t bufferSize, const Action& action) {
  ScratchFolder folder;
  FileWriter writer(bufferSize);
  EXPECT_TRUE(writer.open("out"));
  action(writer);
  writer.close();
  return folder.read("out");
}

/// The file after `action` and destruction without close(): only the bytes that were flushed.
std::string flushed(std::int32_t bufferSize, const Action& action) {
  ScratchFolder folder;
  {
    FileWriter writer(bufferSize);
    EXPECT_TRUE(writer.open("out"));
    action(writer);
  }
  return folder.read("out");
}

/// Fills an empty buffer of 4 bytes to the brim without a flush.
void fillFour(FileWriter& writer) {
  for (const char byte : {'w', 'x', 'y', 'z'}) writer.writeByte(byte);
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
  struct Case {
    const char* name;
    Action action;
    const char* expected;
  };
  const std::vector<Case> cases = {
      {"String", [](FileWriter& w) { w.write(String("abcd")); }, "abcd"},
      {"text", [](FileWriter& w) { w.write("abcd"); }, "abcd"},
      {"integer", [](FileWriter& w) { w.write(-123); }, "-123"},
      {"double", [](FileWriter& w) { w.write(12.5); }, "12.5"},
      {"newline", [](FileWriter& w) { w.write("abc"), w.newline(); }, "abc\n"},
      {"line", [](FileWriter& w) { w.writeLine("abc"); }, "abc\n"},
      {"line of a character", [](FileWriter& w) { w.write("ab"), w.writeLine('c'); }, "abc\n"},
      {"word", [](FileWriter& w) { w.writeWord(123); }, "123 "},
      {"word of a character", [](FileWriter& w) { w.write("ab"), w.writeWord('c'); }, "abc "},
      {"separator", [](FileWriter& w) { w.writeWithSeparator("abc", ';'); }, "abc;"},
      {"bytes", [](FileWriter& w) { w.writeBytes("abcd", 4); }, "abcd"},
      {"repeated", [](FileWriter& w) { w.writeRepeated('a', 4); }, "aaaa"},
      {"field", [](FileWriter& w) { w.writeField("ab", 4); }, "ab  "},
      {"aligned left", [](FileWriter& w) { w.writeAligned("ab", 4, false); }, "ab  "},
      {"aligned right", [](FileWriter& w) { w.writeAligned(7, 4, true); }, "   7"},
      {"aligned character", [](FileWriter& w) { w.writeAligned('c', 4, true); }, "   c"},
      {"operator on a text", [](FileWriter& w) { w << "abcd"; }, "abcd"},
      {"operator on a character", [](FileWriter& w) { w << 'a' << 'b' << 'c' << 'd'; }, "abcd"},
  };

  for (const Case& row : cases) EXPECT_EQ(flushed(4, row.action), row.expected) << row.name;
  const Action terminated = [](FileWriter& w) { w.writeTerminated("abc"); };
  EXPECT_EQ(flushed(4, terminated), std::string("abc\0", 4));
}

TEST(FileWriter, StoredBytesMayLeaveTheBufferFull) {
  struct Case {
    const char* name;
    Action action;
  };
  const std::vector<Case> cases = {
      {"char bytes", [](FileWriter& w) { fillFour(w); }},
      {"unsigned char bytes",
       [](FileWriter& w) {
         for (unsigned char byte = 'w'; byte <= 'z'; ++byte) w.writeByte(byte);
       }},
      {"characters", [](FileWriter& w) { w.write('w'), w.write('x'), w.write('y'), w.write('z'); }},
      {"16-bit values",
       [](FileWriter& w) {
         w.writeBigEndian(static_cast<std::int16_t>(0x7778));
         w.writeBigEndian(static_cast<std::uint16_t>(0x797A));
       }},
      {"32-bit value", [](FileWriter& w) { w.writeBigEndian(std::int32_t{0x7778797A}); }},
      {"unsigned 32-bit value", [](FileWriter& w) { w.writeBigEndian(0x7778797Au); }},
  };

  for (const Case& row : cases) {
    EXPECT_EQ(flushed(4, row.action), "") << row.name;
    EXPECT_EQ(written(4, row.action), "wxyz") << row.name;
  }
}

TEST(FileWriter, EveryOperationOnAFullBufferFlushesItFirst) {
  struct Case {
    const char* name;
    Action action;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"text", [](FileWriter& w) { w.write("a"); }, "a"},
      {"character", [](FileWriter& w) { w.write('a'); }, "a"},
      {"integer", [](FileWriter& w) { w.write(5); }, "5"},
      {"double", [](FileWriter& w) { w.write(0.5); }, "0.5"},
      {"newline", [](FileWriter& w) { w.newline(); }, "\n"},
      {"line of a character", [](FileWriter& w) { w.writeLine('a'); }, "a\n"},
      {"byte", [](FileWriter& w) { w.writeByte('a'); }, "a"},
      {"16-bit value", [](FileWriter& w) { w.writeBigEndian(std::int16_t{0x6162}); }, "ab"},
      {"repeated", [](FileWriter& w) { w.writeRepeated('a', 2); }, "aa"},
      {"field", [](FileWriter& w) { w.writeField("a", 2); }, "a "},
      {"aligned", [](FileWriter& w) { w.writeAligned("a", 2, true); }, " a"},
      {"operator on a character", [](FileWriter& w) { w << 'a'; }, "a"},
  };

  for (const Case& row : cases) {
    const Action onFullBuffer = [&row](FileWriter& writer) {
      fillFour(writer);
      row.action(writer);
    };
    EXPECT_EQ(flushed(4, onFullBuffer), "wxyz") << row.name;
    EXPECT_EQ(written(4, onFullBuffer), "wxyz" + row.expected) << row.name;
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
}

TEST(FileWriter, AFailedWriteOrCloseMakesEveryLaterOpenFail) {
  struct Case {
    const char* name;
    Action action;
  };
  const std::vector<Case> cases = {
      {"close without open", [](FileWriter& w) { w.close(); }},
      {"a block without open", [](FileWriter& w) { w.write("abcd"); }},
      {"second close, bytes pending",
       [](FileWriter& w) { w.open("one"), w.write("ab"), w.close(), w.close(); }},
      {"second close, nothing pending",
       [](FileWriter& w) { w.open("one"), w.write("abcd"), w.close(), w.close(); }},
      {"bytes behind those of a closed file, filling the buffer",
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

TEST(FileWriter, SetBufferSizeDiscardsPendingBytesAndSetsTheBlockSize) {
  const Action action = [](FileWriter& writer) {
    writer.write("lost");
    writer.setBufferSize(3);
    writer.write("abcdefgh");
  };

  EXPECT_EQ(written(16, action), "abcdefgh");
  EXPECT_EQ(flushed(16, action), "abcdef");
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
