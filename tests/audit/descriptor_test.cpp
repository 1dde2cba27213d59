#include "audit/descriptor.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"

namespace {

using Quillet::Descriptor;

bool isOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

/// A file in memory that holds the bytes and stands at its end.
Descriptor memoryWith(const std::string& bytes) {
  const int file = ::memfd_create("test", 0);
  EXPECT_TRUE(Quillet::writeAll(file, bytes));
  return Descriptor(file);
}

TEST(Descriptor, IsClosedWithItsOwner) {
  int number = -1;
  {
    const Descriptor file = memoryWith("");
    number = file.number();
    EXPECT_TRUE(file.isOpen());
    EXPECT_TRUE(isOpen(number));
  }
  EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, IsNoLongerClosedOnceGivenAway) {
  int number = -1;
  {
    Descriptor file = memoryWith("");
    number = file.release();
    EXPECT_FALSE(file.isOpen());
  }
  EXPECT_TRUE(isOpen(number));
  ::close(number);
}

TEST(Descriptor, TellsWhenClosingFails) {
  Descriptor file = memoryWith("");
  EXPECT_TRUE(file.close());
  EXPECT_TRUE(file.close());  // there is nothing left to close

  Descriptor closed = memoryWith("");
  ::close(closed.number());
  EXPECT_FALSE(closed.close());
}

TEST(Descriptor, IsMovedWithItsFile) {
  Descriptor file = memoryWith("abc");
  const int number = file.number();

  const Descriptor other = std::move(file);

  EXPECT_EQ(other.number(), number);
  EXPECT_TRUE(isOpen(number));
}

TEST(Descriptor, ClosesTheFormerFileForAnother) {
  Descriptor file = memoryWith("");
  Descriptor other = memoryWith("");
  const int former = file.number();
  const int latter = other.release();

  file.reset(latter);

  EXPECT_FALSE(isOpen(former));
  EXPECT_EQ(file.number(), latter);
}

TEST(DescriptorReading, GoesToTheEnd) {
  const Descriptor file = memoryWith("abcde");
  ::lseek(file.number(), 0, SEEK_SET);
  std::array<char, 3> bytes{};

  EXPECT_EQ(Quillet::readSome(file.number(), bytes.data(), bytes.size()), 3);
  EXPECT_EQ(Quillet::readSome(file.number(), bytes.data(), bytes.size()), 2);
  EXPECT_EQ(std::string(bytes.data(), 2), "de");
  EXPECT_EQ(Quillet::readSome(file.number(), bytes.data(), bytes.size()), 0);
  EXPECT_LT(Quillet::readSome(-1, bytes.data(), bytes.size()), 0);
}

TEST(DescriptorReading, FromAPlaceLeavesTheFileWhereItStands) {
  const Descriptor file = memoryWith("abcde");
  std::array<char, 3> bytes{};

  EXPECT_EQ(Quillet::readSomeAt(file.number(), bytes.data(), bytes.size(), 1), 3);

  EXPECT_EQ(std::string(bytes.data(), 3), "bcd");
  EXPECT_EQ(::lseek(file.number(), 0, SEEK_CUR), 5);
}

TEST(DescriptorReading, TheWholeContentBeginsAtTheStart) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{5}, std::size_t{100'000}}) {
    const std::string bytes(size, 'x');
    EXPECT_EQ(Quillet::contentOf(memoryWith(bytes).number()), bytes);
  }
  EXPECT_EQ(Quillet::contentOf(-1), "");
}

TEST(DescriptorReading, IsNotEndedByASignal) {
  struct sigaction formerAction {};
  struct sigaction action {};  // without SA_RESTART: the system's call ends
  action.sa_handler = [](int) {};
  ::sigaction(SIGUSR1, &action, &formerAction);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const pthread_t reader = ::pthread_self();
  std::thread disturber([&] {
    for (int i = 0; i < 20; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      ::pthread_kill(reader, SIGUSR1);
    }
    Quillet::writeAll(writing.number(), "abc");
  });
  std::array<char, 8> bytes{};

  EXPECT_EQ(Quillet::readSome(reading.number(), bytes.data(), bytes.size()), 3);

  disturber.join();
  ::sigaction(SIGUSR1, &formerAction, nullptr);
}

TEST(DescriptorWriting, TemporaryFilesLieWhereTheEnvironmentSays) {
  for (const auto& [value, folder] : {std::pair{"/var/tmp", "/var/tmp"}, std::pair{"", "/tmp"}}) {
    const EnvironmentVariable variable("TMPDIR", value);
    EXPECT_EQ(Quillet::temporaryFolder(), folder);
  }
}

TEST(DescriptorWriting, TellsThatTheDiskIsFull) {
  const Descriptor full(::open("/dev/full", O_WRONLY));
  ASSERT_TRUE(full.isOpen());

  EXPECT_FALSE(Quillet::writeAll(full.number(), "a"));

  EXPECT_EQ(errno, ENOSPC);
}

TEST(DescriptorWriting, NobodyElseFindsAFileWithoutAName) {
  const ScratchFolder folder;
  const Descriptor file(Quillet::openUnnamedFile(folder.path().string()));
  ASSERT_TRUE(file.isOpen());

  EXPECT_TRUE(Quillet::writeAll(file.number(), "abc"));

  EXPECT_EQ(Quillet::contentOf(file.number()), "abc");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  struct stat status;
  ASSERT_EQ(::fstat(file.number(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  EXPECT_LT(Quillet::openUnnamedFile(folder.path().string() + "/none"), 0);
}

}  // namespace
