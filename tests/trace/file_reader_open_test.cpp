#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/scratch_folder.h"
#include "trace/file_reader.h"

// Opening and closing, and files that change while they are open.

namespace {

using Tessaly::FileReader;

/// `size` bytes that count upwards and start again at `cycle`, so that each tells where it stands.
std::string countingBytes(int size, int cycle) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(i % cycle);
  return bytes;
}

int byteAt(FileReader& reader, std::int32_t position) {
  std::uint8_t value = 0;
  return reader.readUInt8At(position, value) ? value : -1;
}

int nextByte(FileReader& reader) {
  std::uint8_t value = 0;
  return reader.readUInt8(value) ? value : -1;
}

std::string textOf(const Tessaly::String& text) {
  return {text.text(), static_cast<std::size_t>(text.length())};
}

TEST(FileReaderOpen, OpenTakesCharacterTextToo) {
  ScratchFolder folder;
  folder.write("file", "x");

  FileReader reader;

  EXPECT_TRUE(reader.open("file"));
  EXPECT_EQ(nextByte(reader), 'x');
}

TEST(FileReaderOpen, AFailedOpenLeavesNothingToReadAndAClearState) {
  ScratchFolder folder;

  FileReader reader;
  EXPECT_FALSE(reader.open(folder.at("missing")));

  EXPECT_TRUE(reader.good());
  EXPECT_FALSE(reader.is_open());
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_FALSE(reader.seek(5000));
  EXPECT_EQ(reader.bytesLeft(), 0);
}

TEST(FileReaderOpen, OpenRefusesADirectory) {
  ScratchFolder folder;
  folder.makeFolder("trace.ab1");

  FileReader reader;
  EXPECT_FALSE(reader.open(folder.at("trace.ab1")));

  EXPECT_TRUE(reader.good());
  EXPECT_EQ(nextByte(reader), -1);
}

TEST(FileReaderOpen, OpenRefusesAPipeWithoutWaiting) {
  ScratchFolder folder;
  const Tessaly::String path = folder.at("pipe");
  ASSERT_EQ(mkfifo(path.text(), 0600), 0);

  FileReader reader;
  alarm(10);  // seconds; a reader that waits for a writer ends the test here
  const bool opened = reader.open(path);
  alarm(0);

  EXPECT_FALSE(opened);
  EXPECT_FALSE(reader.is_open());
}

TEST(FileReaderOpen, AnOpenThatTheSystemRefusesLeavesAClearState) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", "abc");
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{0, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);  // no further file can be opened

  FileReader reader;
  const bool opened = reader.open(path);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);

  EXPECT_FALSE(opened);
  EXPECT_TRUE(reader.good());
  EXPECT_TRUE(reader.open(path));  // and a later one succeeds
  EXPECT_EQ(nextByte(reader), 'a');
}

TEST(FileReaderOpen, AnEmptyFileOpensAndHoldsNothing) {
  ScratchFolder folder;

  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("empty", "")));

  EXPECT_TRUE(reader.atEnd());
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_EQ(byteAt(reader, 0), -1);
  EXPECT_EQ(reader.bytesLeft(), 0);
}

TEST(FileReaderOpen, AReaderCanOpenASecondFile) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("first", "a\nbcdefgh")));
  Tessaly::String line;
  ASSERT_TRUE(reader.readLine(line));
  ASSERT_TRUE(reader.seek(8));

  ASSERT_TRUE(reader.open(folder.write("second", "xyz")));

  EXPECT_EQ(reader.lineCount(), 0);
  EXPECT_EQ(reader.block(), 0);
  EXPECT_EQ(nextByte(reader), 'x');
}

TEST(FileReaderOpen, AFailedOpenGivesUpTheFormerFile) {
  ScratchFolder folder;
  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("first", "abc")));

  EXPECT_FALSE(reader.open(folder.at("missing")));

  EXPECT_EQ(nextByte(reader), -1);
}

TEST(FileReaderOpen, AClosedReaderStillShowsItsBlockAndNoMore) {
  ScratchFolder folder;
  FileReader reader(4);
  ASSERT_TRUE(reader.open(folder.write("file", "abcdefgh")));

  reader.close();

  EXPECT_FALSE(reader.seek(5));
  EXPECT_EQ(byteAt(reader, 3), 'd');
  EXPECT_EQ(nextByte(reader), -1);
}

TEST(FileReaderOpen, ExistsIsTrueForEntriesOfAnyKind) {
  ScratchFolder folder;
  folder.write("file", "");
  folder.makeFolder("folder");
  ASSERT_EQ(mkfifo(folder.at("pipe").text(), 0600), 0);

  EXPECT_TRUE(FileReader::exists(folder.at("file")));
  EXPECT_TRUE(FileReader::exists(folder.at("folder")));
  EXPECT_TRUE(FileReader::exists(folder.at("pipe")));
  EXPECT_TRUE(FileReader::exists("file"));
  EXPECT_FALSE(FileReader::exists(folder.at("missing")));
  EXPECT_FALSE(FileReader::exists(""));
}

TEST(FileReaderOpen, AFileOfOrdinarySizeIsReadOnceWhateverTheMoves) {
  ScratchFolder folder;
  const std::string contents(250'000, 'a');
  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("file", contents)));

  folder.write("file", std::string(250'000, 'b'));  // in place: the open file changes

  for (const std::int32_t position : {249'999, 0, 130'000, 1024, 200'001})
    EXPECT_EQ(byteAt(reader, position), 'a') << position;
}

TEST(FileReaderOpen, AFileThatShrinksWhileItIsReadEndsWhereItEndsNow) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", countingBytes(2'000'000, 251));
  FileReader reader;
  ASSERT_TRUE(reader.open(path));

  std::filesystem::resize_file(path.text(), 1'000'000);

  EXPECT_EQ(byteAt(reader, 1'900'000), -1);
  EXPECT_EQ(byteAt(reader, 1'000'000), -1);
  EXPECT_EQ(byteAt(reader, 999'999), 15);  // 3984 x 251 = 999984
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_TRUE(reader.good());
}

TEST(FileReaderOpen, WhatIsAddedToAnOpenFileIsNotRead) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", countingBytes(2'000'000, 251));
  FileReader reader;
  ASSERT_TRUE(reader.open(path));

  std::filesystem::resize_file(path.text(), 3'000'000);

  EXPECT_EQ(byteAt(reader, 1'999'999), 31);  // 7968 x 251 = 1999968
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_EQ(byteAt(reader, 2'500'000), -1);
}

TEST(FileReaderOpen, AFileThatClaimsToBeEmptyIsReadForWhatItHolds) {
  const char* const madeUp = "/proc/self/status";  // its size is given as 0
  if (!FileReader::exists(madeUp)) GTEST_SKIP() << "no such file system here";

  FileReader reader;
  ASSERT_TRUE(reader.open(madeUp));

  Tessaly::String word;
  EXPECT_TRUE(reader.readWord(word));
  EXPECT_EQ(textOf(word), "Name:");
}

}  // namespace
