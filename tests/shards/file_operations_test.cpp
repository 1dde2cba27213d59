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

namespace {}  // namespace

TEST(FileOperations, ReadAWholeFile) {
  const ScratchFolder folder;
  const std::string bytes(200000, 'x');
  folder.write("file", bytes);

  EXPECT_EQ(Quillet::readWholeFile("file"), bytes);
}

TEST(FileOperations, NameTheFileAndTheReasonOfAFailure) {
  const ScratchFolder folder;

  EXPECT_EQ(complaintOf([] { Quillet::readWholeFile("none"); }),
            "can not read none: No such file or directory");
  EXPECT_EQ(complaintOf([] { Quillet::makeFolder("none/folder"); }),
            "can not make none/folder: No such file or directory");
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
