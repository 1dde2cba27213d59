#include "trace/file_reader.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/sanitizer.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"
#include "tests/trace/counting_bytes.h"
#include "tests/trace/single_bytes.h"

// Opening, closing, and files that change while they are open.

namespace {

using Tessaly::FileReader;

/// The memory of this process as a file. Its size is given as 0. Reading fails where there is no
/// memory.
const char* const ownMemory = "/proc/self/mem";
constexpr std::int32_t mebibyte = 1'048'576;  // bytes

/// Memory of zeros at a given address, if the system gives it. No memory follows it.
class Memory {
 public:
  Memory(std::uintptr_t address, std::int32_t size)
      : wanted_(reinterpret_cast<void*>(address)),
        size_(static_cast<std::size_t>(size)),
        start_(mmap(wanted_, size_, PROT_READ,
                    MAP_PRIVATE | MAP_ANONYMOUS | (address == 0 ? MAP_FIXED : 0), -1, 0)) {}
  ~Memory() {
    if (start_ != MAP_FAILED) munmap(start_, size_);
  }
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;

  bool isReadable() const {
    return start_ == wanted_ && std::ifstream(ownMemory, std::ios::binary).is_open();
  }

 private:
  void* wanted_;
  std::size_t size_;
  void* start_;
};

std::int32_t pageSize() { return static_cast<std::int32_t>(sysconf(_SC_PAGESIZE)); }

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
  alarm(10);  // seconds: stops a reader that waits for a writer
  const bool opened = reader.open(path);
  alarm(0);

  EXPECT_FALSE(opened);
  EXPECT_FALSE(reader.is_open());
}

TEST(FileReaderOpen, AnOpenThatTheSystemRefusesLeavesAClearState) {
  if (underAddressSanitizer) GTEST_SKIP() << "the sanitizer opens files of its own";
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
  EXPECT_TRUE(reader.open(path));  // a later one succeeds
  EXPECT_EQ(nextByte(reader), 'a');
}

TEST(FileReaderOpen, AnEmptyFileOpensAndHoldsNothing) {
  ScratchFolder folder;

  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("empty", "")));

  EXPECT_TRUE(reader.atEnd());
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_EQ(byteAt(reader, 0), -1);
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

TEST(FileReaderOpen, AnOpenReaderClosesItsFileBeforeItOpensTheNext) {
  if (underAddressSanitizer) GTEST_SKIP() << "the sanitizer opens files of its own";
  ScratchFolder folder;
  const Tessaly::String first = folder.write("first", "abc");
  const Tessaly::String second = folder.write("second", "xyz");
  FileReader reader;
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const int lowestFree = dup(STDIN_FILENO);
  ASSERT_GE(lowestFree, 0);
  ::close(lowestFree);
  const rlimit roomForOne{static_cast<rlim_t>(lowestFree) + 1, limit.rlim_max};

  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &roomForOne), 0);
  const bool openedFirst = reader.open(first);
  const bool openedSecond = reader.open(second);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);

  EXPECT_TRUE(openedFirst);
  EXPECT_TRUE(openedSecond);
  EXPECT_EQ(nextByte(reader), 'x');
}

TEST(FileReaderOpen, ClosingWithoutAFileIsAFailureThatTheNextOpenClears) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", "abc");
  FileReader reader;
  ASSERT_TRUE(reader.open(path));

  reader.close();
  EXPECT_TRUE(reader.good());
  EXPECT_FALSE(reader.is_open());
  reader.close();
  EXPECT_TRUE(reader.fail());

  EXPECT_TRUE(reader.open(path));
  EXPECT_TRUE(reader.good());
  EXPECT_TRUE(reader.is_open());
  reader.close();
  reader.close();
  EXPECT_FALSE(reader.open("missing"));
  EXPECT_TRUE(reader.good());
}

TEST(FileReaderOpen, ADestroyedReaderClosesItsFile) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", "abc");
  const int lowestFree = dup(STDIN_FILENO);
  ASSERT_GE(lowestFree, 0);
  ::close(lowestFree);
  {
    FileReader reader;
    ASSERT_TRUE(reader.open(path));
  }

  const int next = dup(STDIN_FILENO);
  ::close(next);

  EXPECT_EQ(next, lowestFree);
}

TEST(FileReaderOpen, AFailedOpenGivesUpTheFormerFile) {
  ScratchFolder folder;
  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("first", "abc")));

  EXPECT_FALSE(reader.open(folder.at("missing")));

  EXPECT_EQ(nextByte(reader), -1);
}

TEST(FileReaderOpen, AFailedOpenCountsLinesAfreshToo) {
  ScratchFolder folder;
  FileReader reader;
  ASSERT_TRUE(reader.open(folder.write("first", "a\nb\n")));
  Tessaly::String line;
  ASSERT_TRUE(reader.readLine(line));
  ASSERT_EQ(reader.lineCount(), 1);

  EXPECT_FALSE(reader.open(folder.at("missing")));

  EXPECT_EQ(reader.lineCount(), 0);
}

TEST(FileReaderOpen, TheFileSizeIsThatOfTheOpenFile) {
  ScratchFolder folder;
  FileReader reader;
  EXPECT_EQ(reader.fileSize(), 0);

  ASSERT_TRUE(reader.open(folder.write("file", "abcdefgh")));
  EXPECT_EQ(reader.fileSize(), 8);
  reader.close();
  EXPECT_EQ(reader.fileSize(), 0);

  ASSERT_TRUE(reader.open(folder.at("file")));
  EXPECT_FALSE(reader.open(folder.at("missing")));
  EXPECT_EQ(reader.fileSize(), 0);
}

TEST(FileReaderOpen, AnEmptyFileHasASizeOfZeroWhateverTheBlockSize) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("empty", "");
  for (const std::int32_t blockSize : {0, 1, 1024}) {
    FileReader reader(blockSize);
    ASSERT_TRUE(reader.open(path));

    EXPECT_EQ(reader.fileSize(), 0) << blockSize;
  }
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

  for (const std::int32_t position : {249'999, 0, 130'000, 1024, 200'001}) {
    EXPECT_EQ(byteAt(reader, position), 'a') << position;
  }
}

TEST(FileReaderOpen, AFileThatShrinksWhileItIsReadEndsWhereItEndsNow) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", countingBytes(2'000'000));
  FileReader reader;
  ASSERT_TRUE(reader.open(path));

  std::filesystem::resize_file(path.text(), 1'000'000);

  EXPECT_EQ(reader.fileSize(), 2'000'000);
  EXPECT_EQ(byteAt(reader, 1'900'000), -1);
  EXPECT_EQ(byteAt(reader, 1'000'000), -1);
  EXPECT_EQ(reader.fileSize(), 1'000'000);  // found by reading
  EXPECT_EQ(byteAt(reader, 999'999), 15);   // 3984 x 251 = 999984
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_TRUE(reader.good());
}

TEST(FileReaderOpen, WhatIsAddedToAnOpenFileIsNotRead) {
  ScratchFolder folder;
  const Tessaly::String path = folder.write("file", countingBytes(2'000'000));
  FileReader reader;
  ASSERT_TRUE(reader.open(path));

  std::filesystem::resize_file(path.text(), 3'000'000);

  EXPECT_EQ(byteAt(reader, 1'999'999), 31);  // 7968 x 251 = 1999968
  EXPECT_EQ(nextByte(reader), -1);
  EXPECT_EQ(byteAt(reader, 2'500'000), -1);
}

TEST(FileReaderOpen, AFileThatClaimsToBeEmptyIsReadAllTheSame) {
  const char* const madeUp = "/proc/self/status";  // its size is given as 0
  if (!FileReader::exists(madeUp)) GTEST_SKIP() << "no such file system here";

  FileReader reader;
  ASSERT_TRUE(reader.open(madeUp));

  Tessaly::String word;
  EXPECT_TRUE(reader.readWord(word));
  EXPECT_EQ(textOf(word), "Name:");
}

TEST(FileReaderOpen, TheSizeOfAFileThatClaimsToBeEmptyIsFoundByReading) {
  const char* const madeUp = "/proc/self/cmdline";
  std::ifstream stream(madeUp, std::ios::binary);
  if (!stream.is_open()) GTEST_SKIP() << "no such file system here";
  const std::string contents{std::istreambuf_iterator<char>(stream), {}};

  FileReader reader;
  ASSERT_TRUE(reader.open(madeUp));

  EXPECT_EQ(reader.fileSize(), static_cast<std::int64_t>(contents.size()));
}

TEST(FileReaderOpen, AFileThatClaimsToBeEmptyIsReadUpToAMebibyte) {
  const std::int32_t start = mebibyte - pageSize();
  const Memory memory(static_cast<std::uintptr_t>(start), 2 * pageSize());
  if (!memory.isReadable()) GTEST_SKIP() << "no memory at the address, or no such file";

  FileReader reader;
  ASSERT_TRUE(reader.open(ownMemory));
  std::string bytes(static_cast<std::size_t>(2 * pageSize()), '?');
  const std::int32_t count = reader.readBytesAt(start, bytes.data(), 2 * pageSize());

  EXPECT_EQ(count, pageSize());
}

TEST(FileReaderOpen, BlocksAfterAnErrorAreRead) {
  constexpr std::int32_t start = 0x40000;  // reading fails before it
  const Memory memory(start, pageSize());
  if (!memory.isReadable()) GTEST_SKIP() << "no memory at the address, or no such file";

  FileReader reader;
  ASSERT_TRUE(reader.open(ownMemory));
  EXPECT_TRUE(reader.good());
  EXPECT_EQ(nextByte(reader), -1);
  std::string bytes(static_cast<std::size_t>(2 * pageSize()), '?');
  const std::int32_t count = reader.readBytesAt(start, bytes.data(), 2 * pageSize());

  EXPECT_EQ(count, pageSize());
  EXPECT_EQ(bytes.find_first_not_of('\0'), static_cast<std::size_t>(pageSize()));
  EXPECT_EQ(byteAt(reader, start - 1), -1);
  EXPECT_EQ(byteAt(reader, start + 5), 0);  // and once more
}

// Only a superuser may have memory at address 0.
TEST(FileReaderOpen, BlocksBeforeAnErrorAreRead) {
  const Memory memory(0, pageSize());
  if (!memory.isReadable()) GTEST_SKIP() << "no memory at the address, or no such file";

  FileReader reader;
  ASSERT_TRUE(reader.open(ownMemory));
  std::string bytes(static_cast<std::size_t>(2 * pageSize()), '?');
  const std::int32_t count = reader.readBytes(bytes.data(), 2 * pageSize());

  EXPECT_EQ(count, pageSize());
  EXPECT_EQ(bytes.find_first_not_of('\0'), static_cast<std::size_t>(pageSize()));
  EXPECT_TRUE(reader.good());
}

}  // namespace
