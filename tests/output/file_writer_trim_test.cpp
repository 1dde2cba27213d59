#include "output/file_writer.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/support/scratch_folder.h"

// FileWriter::trimTrailingSpace(), which changes the pending bytes in place.

namespace {

using Tessaly::FileWriter;

/// The file after these steps: write `before` (which is flushed when it fills the buffer), write
/// `pending`, trim, close.
std::string trimmed(std::int32_t bufferSize, const char* before, const char* pending) {
  ScratchFolder folder;
  FileWriter writer(bufferSize);
  EXPECT_TRUE(writer.open("out"));
  writer.write(before);
  writer.write(pending);
  writer.trimTrailingSpace();
  writer.close();
  return folder.read("out");
}

using namespace std::string_literals;

TEST(FileWriterTrim, PendingBytesEndAfterTheFirstLineFeedOfTheirTrailingSpace) {
  struct Case {
    const char* pending;
    const char* expected;
  };
  const Case cases[] = {
      {"line\n", "line\n"},
      {"line\n\n\n", "line\n"},
      {"line \t\n \r\n ", "line \t\n"},  // blanks before the line feed stay
      {"a\nb \n\v\f", "a\nb \n"},
      {"a \n", "a \n"},
  };

  for (const Case& row : cases) {
    EXPECT_EQ(trimmed(64, "", row.pending), row.expected) << row.pending;
  }
}

TEST(FileWriterTrim, AnEmptyBufferStaysEmpty) {
  EXPECT_EQ(trimmed(8, "", ""), "");
  EXPECT_EQ(trimmed(8, "abcdef \n", ""), "abcdef \n");
}

TEST(FileWriterTrim, FlushedWhiteSpaceIsOutOfReach) {
  EXPECT_EQ(trimmed(4, "ab\n\n", "c\n\n"), "ab\n\nc\n");
}

TEST(FileWriterTrim, WithoutALineFeedTheScanRunsOverStaleBytesToTheirFirstLineFeed) {
  // The flush of "12345\n7x" leaves these bytes in the buffer; "ab " covers the first three.
  EXPECT_EQ(trimmed(8, "12345\n7x", "ab "), "12345\n7xab 45\n");
  EXPECT_EQ(trimmed(8, "12345\n7x", "ab"), "12345\n7xab345\n");
}

TEST(FileWriterTrim, WithoutAnyLineFeedTheBufferEndsUpFull) {
  EXPECT_EQ(trimmed(8, "12345678", "ab "), "12345678ab 45678");
  // A new buffer holds zero bytes.
  EXPECT_EQ(trimmed(8, "", "ab "), "ab \0\0\0\0\0"s);
}

TEST(FileWriterTrim, TheFirstByteOfTheBufferIsAlwaysKept) {
  EXPECT_EQ(trimmed(8, "", "\n\n\n"), "\n\n");
  EXPECT_EQ(trimmed(8, "", " \n\n"), " \n");
  EXPECT_EQ(trimmed(4, "", "\n"), "\n\0\0\0"s);
}

TEST(FileWriterTrim, NumberTextLeavesTheStaleBytesAfterItUnchanged) {
  ScratchFolder folder;
  FileWriter writer(16);
  ASSERT_TRUE(writer.open("out"));
  writer.write("0123456789abcd\nf");  // flushed; its bytes are stale now

  writer.write(7);
  writer.trimTrailingSpace();
  writer.close();

  EXPECT_EQ(folder.read("out"), "0123456789abcd\nf7123456789abcd\n");
}

TEST(FileWriterTrim, ABufferThatIsExactlyFullIsTrimmedToo) {
  ScratchFolder folder;
  FileWriter writer(4);
  ASSERT_TRUE(writer.open("out"));
  for (const char byte : {'a', 'b', '\n', '\n'}) writer.writeByte(byte);

  writer.trimTrailingSpace();
  writer.close();

  EXPECT_EQ(folder.read("out"), "ab\n");
}

TEST(FileWriterTrim, WritingContinuesAfterTheTrimmedBytes) {
  ScratchFolder folder;
  FileWriter writer(8);
  ASSERT_TRUE(writer.open("out"));

  writer.write("a\n\n\n");
  writer.trimTrailingSpace();
  writer.writeLine("b");
  writer.write("c ");
  writer.trimTrailingSpace();  // leaves the buffer full
  writer.writeLine('d');
  writer.close();

  EXPECT_EQ(folder.read("out"), "a\nb\nc \0\0d\n"s);
}

}  // namespace
