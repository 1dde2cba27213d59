#include "report/output_file.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/support/ordinary_user.h"
#include "tests/support/scratch_folder.h"

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What writing `bytes` to `name` complains about; empty when it works.
std::string faultOf(const std::string& name, const std::string& bytes = "new") {
  try {
    Quillet::OutputFile file(name);
    file.write(bytes);
    file.finish();
    file.publish();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

std::vector<std::string> entriesOf(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

mode_t modeOf(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(stat(name.c_str(), &status), 0);
  return status.st_mode & 07777;
}

class Umask {
 public:
  explicit Umask(mode_t mask) : former_(umask(mask)) {}
  ~Umask() { umask(former_); }
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;

 private:
  mode_t former_;
};

}  // namespace

TEST(OutputFile, AppearsUnderItsNameWhenItIsPublished) {
  const ScratchFolder folder;
  folder.write("out", "old");
  const std::string bytes(300'000, 'x');

  Quillet::OutputFile file("out");
  file.write(bytes.substr(0, 5));
  file.write(bytes.substr(5));
  file.finish();

  EXPECT_EQ(folder.read("out"), "old");
  EXPECT_EQ(entriesOf(folder.path()).size(), 2U);
  file.publish();
  EXPECT_EQ(folder.read("out"), bytes);
  EXPECT_THAT(entriesOf(folder.path()), ElementsAre("out"));
}

TEST(OutputFile, LeavesNothingWhenItIsGivenUp) {
  const ScratchFolder folder;
  folder.write("old", "old");
  for (const bool finished : {false, true}) {
    for (const char* name : {"old", "new"}) {
      Quillet::OutputFile file(name);
      file.write("bytes");
      if (finished) file.finish();
    }
  }

  EXPECT_EQ(folder.read("old"), "old");
  EXPECT_THAT(entriesOf(folder.path()), ElementsAre("old"));
}

TEST(OutputFile, MayHaveAnyNameThatAFileMayHave) {
  const ScratchFolder folder;
  for (const std::string& name :
       {std::string(255, 'n'), std::string("a b'\"\n"), std::string("-x")}) {
    EXPECT_EQ(faultOf(name), "");
    EXPECT_EQ(folder.read(name), "new");
  }
}

TEST(OutputFile, HasThePermissionsOfANewFile) {
  const ScratchFolder folder;
  const Umask mask(027);

  EXPECT_EQ(faultOf("new"), "");

  EXPECT_EQ(modeOf("new"), 0640U);
}

TEST(OutputFile, KeepsThePermissionsOfThePresentFile) {
  const ScratchFolder folder;
  const Umask mask(077);
  folder.write("out", "old");
  chmod("out", 0664);

  EXPECT_EQ(faultOf("out"), "");

  EXPECT_EQ(modeOf("out"), 0664U);
}

TEST(OutputFile, FollowsSymbolicLinks) {
  const ScratchFolder folder;
  folder.write("data/present", "old");
  fs::create_symlink("data/present", "one");
  fs::create_symlink("one", "two");
  fs::create_symlink("data/absent", "dangling");
  fs::create_symlink(folder.path() / "data/third", "absolute");

  for (const char* name : {"two", "dangling", "absolute"}) EXPECT_EQ(faultOf(name), "") << name;

  EXPECT_EQ(folder.read("data/present"), "new");
  EXPECT_EQ(folder.read("data/absent"), "new");
  EXPECT_EQ(folder.read("data/third"), "new");
  for (const char* name : {"one", "two", "dangling", "absolute"}) {
    EXPECT_TRUE(fs::is_symlink(name)) << name;
  }
  EXPECT_THAT(entriesOf("data"), ElementsAre("absent", "present", "third"));
}

TEST(OutputFile, RefusesLinksWithoutEnd) {
  const ScratchFolder folder;
  fs::create_symlink("b", "a");
  fs::create_symlink("a", "b");

  EXPECT_EQ(faultOf("a"), "can not write a: Too many levels of symbolic links");
}

TEST(OutputFile, WritesStraightWhatIsNoRegularFile) {
  const ScratchFolder folder;
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  const int reader = open("pipe", O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);

  EXPECT_EQ(faultOf("pipe"), "");
  EXPECT_EQ(faultOf("/dev/null"), "");

  char bytes[8];
  EXPECT_EQ(read(reader, bytes, sizeof bytes), 3);
  close(reader);
  EXPECT_TRUE(fs::is_fifo("pipe"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_THAT(entriesOf(folder.path()), ElementsAre("pipe"));
}

TEST(OutputFile, ReportsAFullDevice) {
  const ScratchFolder folder;
  fs::create_symlink("/dev/full", "link");

  EXPECT_EQ(faultOf("/dev/full"), "can not write /dev/full: No space left on device");
  EXPECT_EQ(faultOf("link"), "can not write link: No space left on device");
  EXPECT_EQ(faultOf("/dev/full", std::string(100'000, 'x')),
            "can not write /dev/full: No space left on device");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(OutputFile, RefusesNamesThatNoFileCanHave) {
  const ScratchFolder folder;
  folder.makeFolder("folder");
  folder.write("file", "");

  EXPECT_EQ(faultOf("folder"), "can not write folder: Is a directory");
  EXPECT_EQ(faultOf("nothing/file"), "can not write nothing/file: No such file or directory");
  EXPECT_EQ(faultOf("file/file"), "can not write file/file: Not a directory");
  EXPECT_EQ(faultOf("new/"), "can not write new/: Is a directory");
  EXPECT_EQ(faultOf(""), "can not write : No such file or directory");
  EXPECT_NE(faultOf(std::string(256, 'n')), "");
  EXPECT_THAT(entriesOf(folder.path()), ElementsAre("file", "folder"));
}

TEST(OutputFile, RefusesFoldersAndFilesThatAreReadOnly) {
  const OpenScratchFolder folder;
  folder.makeFolder("closed");
  folder.write("open/kept", "old");
  chmod((folder.path() / "open").c_str(), 0777);
  chmod((folder.path() / "open/kept").c_str(), 0444);
  chmod((folder.path() / "closed").c_str(), 0555);
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "root may write everywhere";

  EXPECT_EQ(faultOf("closed/new"), "can not write closed/new: Permission denied");
  EXPECT_EQ(faultOf("open/kept"), "can not write open/kept: Permission denied");
  EXPECT_EQ(folder.read("open/kept"), "old");
  EXPECT_THAT(entriesOf("open"), ElementsAre("kept"));
}

TEST(OutputFile, ReportsALimitOnTheSizeOfFiles) {
  const ScratchFolder folder;
  folder.write("out", "old");

  const pid_t child = fork();
  if (child == 0) {
    Quillet::removeBegunFilesOnSignals();
    const rlimit limit{1 << 16, 1 << 16};
    setrlimit(RLIMIT_FSIZE, &limit);
    const std::string fault = faultOf("out", std::string(200'000, 'x'));
    _exit(fault == "can not write out: File too large" ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);

  EXPECT_EQ(status, 0);
  EXPECT_EQ(folder.read("out"), "old");
  EXPECT_THAT(entriesOf(folder.path()), ElementsAre("out"));
}

TEST(OutputFile, IsGoneWhenASignalEndsTheProgram) {
  const ScratchFolder folder;

  const pid_t child = fork();
  if (child == 0) {
    Quillet::removeBegunFilesOnSignals();
    const Quillet::OutputFile one("one");
    const Quillet::OutputFile two("two");
    raise(SIGTERM);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);

  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGTERM);
  EXPECT_THAT(entriesOf(folder.path()), IsEmpty());
}
