#include "foundation/directory.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/captured_stderr.h"
#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"

// Home, the working directory and paths. Other files test checking and listing.

namespace {

using Tessaly::Directory;
using Tessaly::String;

/// Makes a removed folder the working directory: getcwd() has no path for it.
void standInRemovedFolder(const ScratchFolder& folder) {
  folder.makeFolder("gone");
  ASSERT_EQ(chdir("gone"), 0);
  ASSERT_EQ(rmdir(folder.at("gone").text()), 0);
}

}  // namespace

TEST(DirectoryExists, IsTrueForFilesOfEveryKind) {
  ScratchFolder folder;
  folder.write("file", "");
  folder.makeFolder("d");
  std::filesystem::create_symlink("nothing", "dangling");

  EXPECT_TRUE(Directory::exists("file"));
  EXPECT_TRUE(Directory::exists("d"));
  EXPECT_TRUE(Directory::exists(folder.at("d")));
  EXPECT_FALSE(Directory::exists("none"));
  EXPECT_FALSE(Directory::exists(folder.at("none")));
  EXPECT_FALSE(Directory::exists("dangling"));
}

// Home and working directory

TEST(DirectoryHome, AValueEndingInASlashIsUnchanged) {
  EnvironmentVariable home("HOME", "/home/ann/");

  EXPECT_EQ(textOf(Directory::homeDirectory()), "/home/ann/");
}

TEST(DirectoryHome, AMissingSlashIsAdded) {
  EnvironmentVariable home("HOME", "/home/ann");

  EXPECT_EQ(textOf(Directory::homeDirectory()), "/home/ann/");
}

TEST(DirectoryHome, TheRootStaysOneSlash) {
  EnvironmentVariable home("HOME", "/");

  EXPECT_EQ(textOf(Directory::homeDirectory()), "/");
}

TEST(DirectoryHome, IsEmptyWhenUnsetAndASlashWhenEmpty) {
  {
    EnvironmentVariable home("HOME", nullptr);
    EXPECT_EQ(textOf(Directory::homeDirectory()), "");
  }
  EnvironmentVariable home("HOME", "");
  EXPECT_EQ(textOf(Directory::homeDirectory()), "/");
}

TEST(DirectoryCurrent, IsPwdPlusASlash) {
  EnvironmentVariable noted("PWD", "/not/the/working/directory");

  EXPECT_EQ(textOf(Directory::currentDirectory()), "/not/the/working/directory/");
}

TEST(DirectoryCurrent, WithPwdTheSystemIsNotAsked) {
  ScratchFolder folder;
  EnvironmentVariable noted("PWD", "/some/where");
  standInRemovedFolder(folder);
  std::string warning;

  String path;
  {
    CapturedStderr captured;
    path = Directory::currentDirectory();
    warning = captured.text();
  }

  EXPECT_EQ(textOf(path), "/some/where/");
  EXPECT_EQ(warning, "");  // getcwd() would fail here, with a warning
}

TEST(DirectoryCurrent, APwdEndingInASlashIsUnchanged) {
  EnvironmentVariable noted("PWD", "/some/where/");

  EXPECT_EQ(textOf(Directory::currentDirectory()), "/some/where/");
}

TEST(DirectoryCurrent, TheRootStaysOneSlash) {
  EnvironmentVariable noted("PWD", "/");

  EXPECT_EQ(textOf(Directory::currentDirectory()), "/");
}

TEST(DirectoryCurrent, IsTheSystemsAnswerWhenPwdIsUnsetOrEmpty) {
  ScratchFolder folder;

  for (const char* value : {static_cast<const char*>(nullptr), ""}) {
    EnvironmentVariable noted("PWD", value);
    EXPECT_EQ(textOf(Directory::currentDirectory()), folder.path().string() + "/");
  }
}

TEST(DirectoryCurrent, APathOfAnyLengthIsAnswered) {
  ScratchFolder folder;
  EnvironmentVariable noted("PWD", nullptr);
  std::string expected = folder.path().string();
  const std::string part(200, 'd');

  for (int depth = 0; depth < 6; ++depth) {  // past 256 and 1024 bytes
    ASSERT_EQ(mkdir(part.c_str(), 0700), 0);
    ASSERT_EQ(chdir(part.c_str()), 0);
    expected += "/" + part;
    EXPECT_EQ(textOf(Directory::currentDirectory()), expected + "/");
  }

  ASSERT_EQ(chdir(folder.path().c_str()), 0);
  EXPECT_EQ(textOf(Directory::currentDirectory()), folder.path().string() + "/");
}

TEST(DirectoryCurrent, AnUnknownWorkingDirectoryIsWarnedOfAndBecomesASlash) {
  ScratchFolder folder;
  EnvironmentVariable noted("PWD", nullptr);
  standInRemovedFolder(folder);
  std::string warning;

  String path;
  {
    CapturedStderr captured;
    path = Directory::currentDirectory();
    warning = captured.text();
  }

  EXPECT_EQ(textOf(path), "/");
  EXPECT_EQ(warning, "Warning: getpwd failed: 2\n");  // 2 is "no such file or directory"
}

// Parts of a path

TEST(DirectoryPaths, FileNameIsWhatFollowsTheLastSlash) {
  const struct {
    const char* path;
    const char* expected;
  } cases[] = {{"a.ab1", "a.ab1"}, {"/x/a.ab1", "a.ab1"},
               {"x/y/a", "a"},     {"/x/y/", ""},
               {"/", ""},          {"", ""}};
  for (const auto& row : cases) {
    EXPECT_EQ(textOf(Directory::fileName(row.path)), row.expected) << row.path;
  }
}

TEST(DirectoryPaths, ExtensionIsWhatFollowsTheLastDotOfTheFileName) {
  const struct {
    const char* path;
    const char* expected;
  } cases[] = {{"a.ab1", "ab1"},   {"a.ab1.gz", "gz"}, {"/x.y/a", ""}, {"/x.y/a.scf", "scf"},
               {".profile", ""},   {"a", ""},          {"a.", ""},     {"", ""},
               {".rc.old", "old"}, {"x/.rc", "rc"}};  // only a dot that begins the path is skipped
  for (const auto& row : cases) {
    EXPECT_EQ(textOf(Directory::extension(row.path)), row.expected) << row.path;
  }
}

TEST(DirectoryPaths, DirectoryNameEndsWithTheLastSlash) {
  const struct {
    const char* path;
    const char* expected;
  } cases[] = {{"a.ab1", ""},      {"/x/a.ab1", "/x/"}, {"x/y", "x/"},
               {"/x/y/", "/x/y/"}, {"/", "/"},          {"", ""}};
  for (const auto& row : cases) {
    EXPECT_EQ(textOf(Directory::directoryName(row.path)), row.expected) << row.path;
  }
}

TEST(DirectoryPaths, ParentDirectoryTakesAFinalSlashOffItsArgument) {
  const struct {
    const char* path;
    const char* expected;
    const char* left;
  } cases[] = {{"/x/y/", "/x/", "/x/y"}, {"/x/y", "/x/", "/x/y"}, {"x/", "", "x"},   {"x", "", "x"},
               {"/x//", "/x/", "/x/"},   {"/", "", ""},           {"/x", "/", "/x"}, {"", "", ""}};
  for (const auto& row : cases) {
    String path(row.path);
    EXPECT_EQ(textOf(Directory::parentDirectory(path)), row.expected) << row.path;
    EXPECT_EQ(textOf(path), row.left) << row.path;
  }
}
