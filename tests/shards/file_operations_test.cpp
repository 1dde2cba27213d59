#include "shards/file_operations.h"

#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>

#include "tests/shards/planned_project.h"
#include "tests/support/scratch_folder.h"

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::StartsWith;

namespace {

/// A folder on another file system than the test's own; empty where there is none.
std::string otherFileSystem(const ScratchFolder& folder) {
  struct stat here;
  struct stat there;
  const bool isOther = stat(folder.path().c_str(), &here) == 0 && stat("/dev/shm", &there) == 0 &&
                       here.st_dev != there.st_dev;
  if (!isOther) return {};
  std::string path = "/dev/shm/quillet-test-XXXXXX";
  return mkdtemp(path.data()) == nullptr ? std::string() : path;
}

}  // namespace

TEST(FileOperations, WriteAndReadAWholeFile) {
  const ScratchFolder folder;
  const std::string bytes(200000, 'x');

  Quillet::writeWholeFile("file", bytes);
  Quillet::writeWholeFile("short", "long before");
  Quillet::writeWholeFile("short", "s");

  EXPECT_EQ(Quillet::readWholeFile("file"), bytes);
  EXPECT_EQ(Quillet::readWholeFile("short"), "s");
}

TEST(FileOperations, NameTheFileAndTheReasonOfAFailure) {
  const ScratchFolder folder;

  EXPECT_EQ(complaintOf([] { Quillet::readWholeFile("none"); }),
            "can not read none: No such file or directory");
  EXPECT_EQ(complaintOf([] { Quillet::writeWholeFile("none/file", ""); }),
            "can not write none/file: No such file or directory");
  EXPECT_EQ(complaintOf([] { Quillet::writeWholeFile("/dev/full", "x"); }),
            "can not write /dev/full: No space left on device");
  EXPECT_EQ(complaintOf([] { Quillet::makeFolder("none/folder"); }),
            "can not make none/folder: No such file or directory");
}

TEST(FileOperations, MoveAFileInPlaceOfAnother) {
  const ScratchFolder folder;
  folder.write("from", "new");
  folder.write("to", "old");

  Quillet::moveFile("from", "to", ".hidden");

  EXPECT_EQ(folder.read("to"), "new");
  EXPECT_FALSE(folder.has("from"));
  EXPECT_FALSE(folder.has(".hidden"));
}

TEST(FileOperations, CopyAFileToAnotherFileSystem) {
  const ScratchFolder folder;
  const std::string other = otherFileSystem(folder);
  if (other.empty()) GTEST_SKIP() << "there is one file system";
  const std::string bytes(200000, 'y');
  folder.write("from", bytes);

  Quillet::moveFile("from", other + "/to", other + "/.hidden");

  EXPECT_EQ(Quillet::readWholeFile(other + "/to"), bytes);
  EXPECT_FALSE(fs::exists(other + "/.hidden"));
  EXPECT_EQ(folder.read("from"), bytes);  // goes with the shard
  fs::remove_all(other);
}

TEST(FileOperations, LeaveNothingOfACopyThatFails) {
  const ScratchFolder folder;
  const std::string other = otherFileSystem(folder);
  if (other.empty()) GTEST_SKIP() << "there is one file system";
  folder.write("from", "bytes");
  fs::create_directory(other + "/to");  // a file can not take its name

  const std::string complaint =
      complaintOf([&] { Quillet::moveFile("from", other + "/to", other + "/.hidden"); });

  EXPECT_EQ(complaint, "can not write " + other + "/to: Is a directory");
  EXPECT_FALSE(fs::exists(other + "/.hidden"));
  EXPECT_EQ(folder.read("from"), "bytes");
  fs::remove_all(other);
}

TEST(FileOperations, RemoveATreeButNotWhatItsLinksLeadTo) {
  const ScratchFolder folder;
  folder.write("kept/file", "x");
  folder.write("tree/a/b/file", "x");
  fs::create_directory_symlink(folder.path() / "kept", "tree/link");

  EXPECT_TRUE(Quillet::removeTree("tree"));
  EXPECT_TRUE(Quillet::removeTree("tree"));  // nothing to do

  EXPECT_FALSE(folder.has("tree"));
  EXPECT_TRUE(folder.has("kept/file"));
}

TEST(FileOperations, RemoveATreeThatSomebodyStillFills) {
  for (int round = 0; round < 2; ++round) {
    const ScratchFolder folder;
    folder.write("tree/a/file", "x");
    std::atomic<int> madeCount = 0;
    std::atomic<bool> isOver = false;
    std::thread other([&] {
      // Adds files as long as the folder is there, as a late run does.
      while (!isOver) {
        const std::string name = "tree/a/" + std::to_string(madeCount++);
        if (FILE* file = fopen(name.c_str(), "w")) fclose(file);
      }
    });
    while (madeCount < 300) std::this_thread::yield();

    const bool isGone = Quillet::removeTree("tree");
    isOver = true;
    other.join();

    EXPECT_TRUE(isGone);
    EXPECT_FALSE(folder.has("tree"));
  }
}
