#include "trace/file_window.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <type_traits>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/trace/counting_bytes.h"

// What the window holds, and what it makes of a system that interrupts, shortens or refuses reads.

namespace {

/// What the system does to the reads of this program.
struct System {
  int interruptions = 0;                // of the next reads
  std::size_t most = ~std::size_t{0};   // bytes that one read gives
  off_t badByte = -1;                   // can not be read; -1 for none
  std::vector<std::size_t> asked = {};  // sizes of the reads so far
};
System asUsual;
System* current = &asUsual;

/// The system of one test.
class SystemOf {
 public:
  explicit SystemOf(System system) : system_(std::move(system)) { current = &system_; }
  ~SystemOf() { current = &asUsual; }
  SystemOf(const SystemOf&) = delete;
  SystemOf& operator=(const SystemOf&) = delete;

  System& operator*() { return system_; }
  System* operator->() { return &system_; }

 private:
  System system_;
};

}  // namespace

/// Stands in for the C library's function in the whole program.
extern "C" ssize_t pread(int file, void* bytes, std::size_t count, off_t offset) {
  if (current != &asUsual) current->asked.push_back(count);
  if (current->interruptions > 0) {
    --current->interruptions;
    errno = EINTR;
    return -1;
  }
  const auto end = offset + static_cast<off_t>(std::min(count, current->most));
  if (offset <= current->badByte && current->badByte < end) {
    errno = EIO;
    return -1;
  }
  if (lseek(file, offset, SEEK_SET) < 0) return -1;
  return read(file, bytes, static_cast<std::size_t>(end - offset));
}

namespace {

using Tessaly::FileWindow;

static_assert(!std::is_copy_constructible_v<FileWindow> && !std::is_copy_assignable_v<FileWindow>);
static_assert(std::is_nothrow_move_constructible_v<FileWindow> &&
              std::is_nothrow_move_assignable_v<FileWindow>);

constexpr std::int64_t mebibyte = 1 << 20;
constexpr std::int64_t step = 1 << 16;  // bytes that a large file is read by

std::string_view stretchOf(const std::string& bytes, std::int64_t offset, std::int64_t count) {
  return std::string_view(bytes).substr(static_cast<std::size_t>(offset),
                                        static_cast<std::size_t>(count));
}

/// Up to `count` bytes that the window holds from `offset` on.
std::string_view shown(const FileWindow& window, std::int64_t offset, std::int64_t count) {
  const auto there = static_cast<std::size_t>(std::min(window.bytesFrom(offset), count));
  return there == 0 ? std::string_view() : std::string_view(window.at(offset), there);
}

TEST(FileWindow, WithoutAFileNothingIsShown) {
  FileWindow window;

  EXPECT_FALSE(window.isOpen());
  EXPECT_FALSE(window.show(0, 1));
  EXPECT_FALSE(window.close());
  EXPECT_EQ(window.size(), 0);
  EXPECT_EQ(window.bytesFrom(0), 0);
}

TEST(FileWindow, AFileOfUpToAMebibyteIsReadWholeByOneRead) {
  ScratchFolder folder;
  const std::string bytes = countingBytes(mebibyte);
  SystemOf system({});

  FileWindow window(folder.write("file", bytes).text());
  for (const std::int64_t offset : {std::int64_t{5000}, std::int64_t{0}, mebibyte - 10}) {
    ASSERT_TRUE(window.show(offset, 10));
    EXPECT_EQ(shown(window, offset, 10), stretchOf(bytes, offset, 10)) << offset;
  }

  EXPECT_EQ(system->asked, std::vector<std::size_t>{mebibyte});
  EXPECT_EQ(window.bytesFrom(0), mebibyte);
  EXPECT_EQ(window.bytesFrom(mebibyte - 3), 3);
  EXPECT_EQ(window.bytesFrom(mebibyte), 0);
  EXPECT_EQ(window.bytesFrom(mebibyte + 3), 0);
}

TEST(FileWindow, ALargerFileIsReadInStretches) {
  ScratchFolder folder;
  const std::string bytes = countingBytes(mebibyte + 100);
  SystemOf system({});

  FileWindow window(folder.write("file", bytes).text());
  for (const std::int64_t offset : {2 * step + 7, 3 * step - 1, 5 * step, 16 * step + 90}) {
    ASSERT_TRUE(window.show(offset, 50));
    EXPECT_EQ(shown(window, offset, 50), stretchOf(bytes, offset, 50)) << offset;
  }

  // The first two lie in one stretch, and the last one is what the file has left.
  EXPECT_EQ(system->asked, (std::vector<std::size_t>{step + 50, step + 50, 100}));
  EXPECT_EQ(window.bytesFrom(16 * step), 100);
  EXPECT_EQ(window.bytesFrom(16 * step - 1), 0);  // before the stretch
}

TEST(FileWindow, WhatTheFileDoesNotHoldIsNotThere) {
  ScratchFolder folder;

  FileWindow window(folder.write("file", "abcdef").text());

  ASSERT_TRUE(window.show(4, 10));
  EXPECT_EQ(shown(window, 4, 10), "ef");
  ASSERT_TRUE(window.show(6, 10));
  EXPECT_EQ(shown(window, 6, 10), "");
}

TEST(FileWindow, InterruptedReadsAreRepeated) {
  ScratchFolder folder;
  SystemOf system({.interruptions = 3});

  FileWindow window(folder.write("file", "abcdef").text());

  ASSERT_TRUE(window.show(0, 4));
  EXPECT_EQ(shown(window, 0, 6), "abcdef");
  EXPECT_EQ(system->asked, (std::vector<std::size_t>{6, 6, 6, 6}));
}

TEST(FileWindow, ShortReadsAreContinued) {
  ScratchFolder folder;
  SystemOf system({.most = 4});

  FileWindow window(folder.write("file", "abcdefghij").text());

  ASSERT_TRUE(window.show(0, 10));
  EXPECT_EQ(shown(window, 0, 10), "abcdefghij");
  EXPECT_EQ(system->asked, (std::vector<std::size_t>{10, 6, 2}));
}

TEST(FileWindow, BytesThatCanNotBeReadTakeNoOthersWithThem) {
  ScratchFolder folder;
  const std::string bytes = countingBytes(100);
  SystemOf system({.most = 4, .badByte = 45});

  FileWindow window(folder.write("file", bytes).text());

  for (const std::int64_t offset : {0, 30, 50, 90}) {
    ASSERT_TRUE(window.show(offset, 10));
    EXPECT_EQ(shown(window, offset, 10), stretchOf(bytes, offset, 10)) << offset;
  }
  ASSERT_TRUE(window.show(40, 10));
  EXPECT_EQ(shown(window, 40, 10), "");
  EXPECT_EQ(window.size(), 100);  // an error is no end
}

TEST(FileWindow, AnErrorInALargeFileLosesWhatIsAskedForAlone) {
  ScratchFolder folder;
  const std::string bytes = countingBytes(2 * mebibyte);
  SystemOf system({.most = step / 2, .badByte = 3 * step + 40'000});

  FileWindow window(folder.write("file", bytes).text());

  ASSERT_TRUE(window.show(3 * step, 100));  // the error lies in this stretch, in its second read
  EXPECT_EQ(shown(window, 3 * step, 100), stretchOf(bytes, 3 * step, 100));
  EXPECT_EQ(window.bytesFrom(3 * step + 100), 0);
  ASSERT_TRUE(window.show(3 * step + 40'000, 1));
  EXPECT_EQ(shown(window, 3 * step + 40'000, 1), "");
  // The stretch in two reads, then only what is asked for.
  EXPECT_EQ(system->asked, (std::vector<std::size_t>{step + 100, step / 2 + 100, 100, 1}));
}

TEST(FileWindow, AnEmptySizeIsBelievedOnlyAfterTheFirstLook) {
  ScratchFolder folder;
  SystemOf system({});

  FileWindow window(folder.write("file", "").text());
  ASSERT_TRUE(window.isOpen());
  EXPECT_TRUE(window.show(0, 0));  // asks for nothing
  EXPECT_TRUE(system->asked.empty());
  EXPECT_TRUE(window.show(0, 10));
  EXPECT_TRUE(window.show(0, 10));

  EXPECT_EQ(window.size(), 0);
  EXPECT_EQ(system->asked, std::vector<std::size_t>{mebibyte});
}

TEST(FileWindow, AClosedWindowKeepsItsBytes) {
  ScratchFolder folder;
  FileWindow window(folder.write("file", "abcdef").text());
  ASSERT_TRUE(window.show(0, 6));

  EXPECT_TRUE(window.close());

  EXPECT_FALSE(window.isOpen());
  EXPECT_FALSE(window.show(0, 6));
  EXPECT_EQ(shown(window, 2, 6), "cdef");
}

TEST(FileWindow, AMoveTakesFileAndBytesAlong) {
  ScratchFolder folder;
  FileWindow first(folder.write("file", "abcdef").text());
  ASSERT_TRUE(first.show(0, 6));

  FileWindow second(std::move(first));
  FileWindow third(folder.write("other", "xyz").text());
  third = std::move(second);

  EXPECT_TRUE(third.isOpen());
  EXPECT_EQ(third.size(), 6);
  EXPECT_EQ(shown(third, 0, 6), "abcdef");
  for (const FileWindow* const empty : {&first, &second}) {
    EXPECT_FALSE(empty->isOpen());
    EXPECT_EQ(empty->size(), 0);
    EXPECT_EQ(empty->bytesFrom(0), 0);
  }
}

TEST(FileWindow, OnlyRegularFilesOpen) {
  ScratchFolder folder;
  folder.makeFolder("folder");

  EXPECT_FALSE(FileWindow(folder.at("folder").text()).isOpen());
  EXPECT_FALSE(FileWindow(folder.at("missing").text()).isOpen());
  EXPECT_FALSE(FileWindow("/dev/null").isOpen());
}

}  // namespace
