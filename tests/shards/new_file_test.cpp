#include "shards/new_file.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "tests/shards/planned_project.h"
#include "tests/support/scratch_folder.h"

namespace fs = std::filesystem;

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

TEST(NewFile, HoldsWhatIsWrittenAndCopied) {
  const ScratchFolder folder;
  const std::string bytes(600000, 'x');
  folder.write("from", bytes);

  Quillet::NewFile file("to");
  file.write("begin");
  file.writeFrom("from");
  EXPECT_EQ(file.size(), 600005);
  file.finish();

  EXPECT_EQ(folder.read("to"), "begin" + bytes);
}

TEST(NewFile, IsGoneUnlessFinished) {
  const ScratchFolder folder;
  { Quillet::NewFile("file").write("bytes"); }

  EXPECT_FALSE(folder.has("file"));
}

TEST(NewFile, CanBeginAnew) {
  const ScratchFolder folder;
  Quillet::NewFile file("file");
  file.write("dropped");

  file.clear();
  file.write("kept");
  file.finish();

  EXPECT_EQ(folder.read("file"), "kept");
}

TEST(NewFile, ReplacesNoOther) {
  const ScratchFolder folder;
  folder.write("file", "old");

  EXPECT_EQ(complaintOf([] { Quillet::writeNewFile("file", "new"); }),
            "can not write file: File exists");

  EXPECT_EQ(folder.read("file"), "old");
}

TEST(NewFile, NamesTheFileAndTheReasonOfAFailure) {
  const ScratchFolder folder;

  EXPECT_EQ(complaintOf([] { Quillet::writeNewFile("none/file", ""); }),
            "can not write none/file: No such file or directory");
  EXPECT_EQ(complaintOf([] { Quillet::copyToNewFile("none", "file"); }),
            "can not read none: No such file or directory");
  EXPECT_FALSE(folder.has("file"));
}

TEST(MoveFile, PutsItInPlaceOfAnother) {
  const ScratchFolder folder;
  folder.write("from", "new");
  folder.write("to", "old");

  Quillet::moveFile("from", "to", ".hidden");

  EXPECT_EQ(folder.read("to"), "new");
  EXPECT_FALSE(folder.has("from"));
  EXPECT_FALSE(folder.has(".hidden"));
}

TEST(MoveFile, CopiesToAnotherFileSystem) {
  const ScratchFolder folder;
  const std::string other = otherFileSystem(folder);
  if (other.empty()) GTEST_SKIP() << "there is one file system";
  const std::string bytes(200000, 'y');
  folder.write("from", bytes);
  folder.write(other + "/.hidden", "half a copy");

  Quillet::moveFile("from", other + "/to", other + "/.hidden");

  EXPECT_EQ(folder.read(other + "/to"), bytes);
  EXPECT_FALSE(fs::exists(other + "/.hidden"));
  EXPECT_EQ(folder.read("from"), bytes);  // goes with the shard
  fs::remove_all(other);
}

TEST(MoveFile, LeavesNothingOfACopyThatFails) {
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
