#include "report/spool.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/scratch_folder.h"

namespace fs = std::filesystem;

namespace {

std::string contentOf(Quillet::Spool& spool) {
  std::string content;
  spool.read([&content](std::string_view bytes) { content += bytes; });
  return content;
}

/// The description of the only regular file of this process that has no name; a mode of 0 when
/// there is none.
struct stat unnamedFile(const fs::path& folder) {
  struct stat found {};
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    const std::string target = fs::read_symlink(entry.path(), error).string();
    struct stat status {};
    const int descriptor = std::stoi(entry.path().filename());
    if (target.starts_with(folder.string()) && fstat(descriptor, &status) == 0 &&
        S_ISREG(status.st_mode)) {
      found = status;
    }
  }
  return found;
}

}  // namespace

TEST(Spool, HandsOverWhatWasWritten) {
  const ScratchFolder folder;
  std::string expected;
  Quillet::Spool spool(folder.path());
  for (int i = 0; i < 2000; ++i) {
    const std::string piece(static_cast<std::size_t>(i), static_cast<char>('a' + i % 26));
    spool.write(piece);
    expected += piece;
  }
  const std::string large(1'000'000, 'x');
  spool.write(large);

  EXPECT_TRUE(contentOf(spool) == expected + large);
}

TEST(Spool, WithoutBytesHandsOverNothing) {
  Quillet::Spool spool("");  // the working directory

  EXPECT_EQ(contentOf(spool), "");
}

TEST(Spool, HasNoNameAndIsForItsUserAlone) {
  const ScratchFolder folder;
  const mode_t former = umask(0);
  Quillet::Spool spool(folder.path());
  umask(former);
  spool.write(std::string(200'000, 'x'));

  EXPECT_TRUE(fs::is_empty(folder.path()));
  const struct stat status = unnamedFile(folder.path());
  EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | 0600));
  EXPECT_EQ(status.st_nlink, 0U);
}

TEST(Spool, SaysWhereItCanNotBe) {
  try {
    const Quillet::Spool spool("/nowhere/at/all");
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(),
                 "can not make a temporary file in /nowhere/at/all: No such file or directory");
  }
}

TEST(Spool, SaysWhenThereIsNoMoreRoom) {
  const ScratchFolder folder;

  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1 << 17, 1 << 17};
    setrlimit(RLIMIT_FSIZE, &limit);
    Quillet::Spool spool(folder.path());
    try {
      for (int i = 0; i < 10; ++i) spool.write(std::string(50'000, 'x'));
    } catch (const std::runtime_error& error) {
      const std::string expected =
          "can not write a temporary file in " + folder.path().string() + ": File too large";
      _exit(error.what() == expected ? 0 : 1);
    }
    _exit(2);
  }
  int status = -1;
  waitpid(child, &status, 0);

  EXPECT_EQ(status, 0);
}
