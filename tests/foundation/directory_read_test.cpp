#include "foundation/directory.h"

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/socket_file.h"

// The entries that are listed, and their order.

namespace {

using Tessaly::Directory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

}  // namespace

TEST(DirectoryRead, ListsSortedFilesAndSubdirectoriesWithoutHiddenOnes) {
  ScratchFolder folder;
  folder.write("b.ab1", "");
  folder.write("a.scf", "");
  folder.write(".hidden", "");
  folder.makeFolder("z");

  const Directory directory(folder.path().c_str());

  EXPECT_THAT(directory.files(), ElementsAre("a.scf", "b.ab1"));
  EXPECT_THAT(directory.subdirectories(), ElementsAre("z"));
}

TEST(DirectoryRead, HiddenEntriesComeWithTheDotsWhenAskedFor) {
  ScratchFolder folder;
  folder.write("b.ab1", "");
  folder.write(".hidden", "");
  folder.makeFolder("z");
  folder.makeFolder(".y");
  Directory directory("nowhere");

  EXPECT_TRUE(directory.read(folder.path().c_str(), true));

  EXPECT_THAT(directory.files(), ElementsAre(".hidden", "b.ab1"));
  EXPECT_THAT(directory.subdirectories(), ElementsAre(".", "..", ".y", "z"));
}

TEST(DirectoryRead, NamesSortByUnsignedBytes) {
  ScratchFolder folder;
  for (const char* name : {"\xC3\xA9", "a.b", "B9", "a", "Z", "B10"}) folder.write(name, "");
  for (const char* name : {"\xFF.d", "d.d", "d", "D"}) folder.makeFolder(name);

  const Directory directory(folder.path().c_str());

  EXPECT_THAT(directory.files(), ElementsAre("B10", "B9", "Z", "a", "a.b", "\xC3\xA9"));
  EXPECT_THAT(directory.subdirectories(), ElementsAre("D", "d", "d.d", "\xFF.d"));
}

TEST(DirectoryRead, EveryKindOfEntryIsSortedByWhatOpeningItAsADirectoryGives) {
  OpenScratchFolder folder;
  const std::filesystem::path entries = folder.path() / "entries";
  folder.write("plain", "");
  folder.makeFolder("target");
  folder.write("entries/plain", "x");
  folder.write("entries/unreadable", "x");
  chmod(folder.at("entries/unreadable").text(), 0);
  folder.makeFolder("entries/folder");
  folder.makeFolder("entries/closed");
  chmod(folder.at("entries/closed").text(), 0);
  std::filesystem::create_symlink("../plain", "entries/link-to-file");
  std::filesystem::create_symlink("../target", "entries/link-to-folder");
  std::filesystem::create_symlink("nothing", "entries/dangling");
  std::filesystem::create_symlink("loop", "entries/loop");
  ASSERT_EQ(mkfifo(folder.at("entries/fifo").text(), 0600), 0);
  makeSocket("entries/socket");
  std::vector<std::string> files;
  std::vector<std::string> subdirectories;
  bool ordinary = false;

  {
    OrdinaryUser user;
    ordinary = user.isOrdinary();
    const Directory directory(entries.c_str());
    files = directory.files();
    subdirectories = directory.subdirectories();
  }
  chmod(folder.at("entries/closed").text(), 0700);
  if (!ordinary) std::erase(subdirectories, "closed");  // the superuser can open it

  EXPECT_THAT(files, ElementsAre("fifo", "link-to-file", "plain", "socket", "unreadable"));
  EXPECT_THAT(subdirectories, ElementsAre("folder", "link-to-folder"));
}

TEST(DirectoryRead, AnEntryThatCanNotBeOpenedIsLeftOut) {
  ScratchFolder folder;
  std::filesystem::create_symlink("nothing", "dangling");
  std::filesystem::create_symlink("loop", "loop");
  folder.write("b.ab1", "");

  const Directory directory(folder.path().c_str());

  EXPECT_THAT(directory.files(), ElementsAre("b.ab1"));
  EXPECT_THAT(directory.subdirectories(), IsEmpty());
}

TEST(DirectoryRead, WhatLiesInADirectoryThatMayNotBeSearchedIsLeftOut) {
  OpenScratchFolder folder;
  folder.write("d/b.ab1", "");
  folder.makeFolder("d/z");
  chmod(folder.at("d").text(), 0444);
  bool ordinary = false;
  bool opened = false;
  Directory directory("nowhere");

  {
    OrdinaryUser user;
    ordinary = user.isOrdinary();
    opened = directory.read(folder.at("d").text(), false);
  }
  chmod(folder.at("d").text(), 0700);

  if (!ordinary) GTEST_SKIP() << "the superuser passes every permission test";
  EXPECT_TRUE(opened);
  EXPECT_THAT(directory.files(), IsEmpty());
  EXPECT_THAT(directory.subdirectories(), IsEmpty());
}

TEST(DirectoryRead, AnEntryWhosePathIsTooLongIsLeftOut) {
  ScratchFolder folder;
  folder.write("d/a", "");
  folder.write("d/bb", "");
  std::string path = folder.path().string() + "/d/";
  while (path.size() < 4093) path += "./";  // PATH_MAX is 4096 with the zero byte
  if (path.size() < 4094) path += "/";
  ASSERT_EQ(path.size(), 4094U);

  const Directory directory(path.c_str());

  EXPECT_THAT(directory.files(), ElementsAre("a"));
}

TEST(DirectoryRead, WithoutAFreeFileHandleEveryEntryIsLeftOut) {
  ScratchFolder folder;
  folder.write("b.ab1", "");
  folder.makeFolder("z");
  rlimit former{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
  const int lowest = open("/dev/null", O_RDONLY);
  close(lowest);

  rlimit one = former;
  one.rlim_cur = static_cast<rlim_t>(lowest) + 1;  // enough for the directory itself only
  Directory directory("nowhere");
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &one), 0);
  const bool opened = directory.read(folder.path().c_str(), false);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);

  EXPECT_TRUE(opened);
  EXPECT_THAT(directory.files(), IsEmpty());
  EXPECT_THAT(directory.subdirectories(), IsEmpty());
}

TEST(DirectoryRead, APathWithOrWithoutFinalSlashReadsTheSame) {
  ScratchFolder folder;
  folder.write("d/b.ab1", "");

  const Directory without("d");
  const Directory with("d/");

  EXPECT_THAT(without.files(), ElementsAre("b.ab1"));
  EXPECT_THAT(with.files(), ElementsAre("b.ab1"));
}

TEST(DirectoryRead, AnEmptyPathReadsTheRoot) {
  Directory directory("nowhere");

  EXPECT_TRUE(directory.read("", true));

  EXPECT_THAT(directory.subdirectories(), ::testing::IsSupersetOf({".", ".."}));
  const Directory root("/");
  EXPECT_FALSE(root.subdirectories().empty());
  EXPECT_THAT(directory.subdirectories(), ::testing::IsSupersetOf(root.subdirectories()));
}

TEST(DirectoryRead, TheConstructorLeavesEmptyListsWhenItCanNotOpen) {
  ScratchFolder folder;
  folder.write("file", "");

  const Directory missing("missing");
  const Directory file("file");

  EXPECT_THAT(missing.files(), IsEmpty());
  EXPECT_THAT(missing.subdirectories(), IsEmpty());
  EXPECT_THAT(file.files(), IsEmpty());
  EXPECT_THAT(file.subdirectories(), IsEmpty());
}

TEST(DirectoryRead, AFailureKeepsTheFormerLists) {
  ScratchFolder folder;
  folder.write("d/b.ab1", "");
  folder.makeFolder("d/z");
  Directory directory("d");

  EXPECT_FALSE(directory.read("missing", false));

  EXPECT_THAT(directory.files(), ElementsAre("b.ab1"));
  EXPECT_THAT(directory.subdirectories(), ElementsAre("z"));
}

TEST(DirectoryRead, AnotherReadReplacesTheLists) {
  ScratchFolder folder;
  folder.write("d/b.ab1", "");
  folder.makeFolder("d/z");
  folder.write("e/c.ab1", "");
  Directory directory("d");

  EXPECT_TRUE(directory.read("e", false));

  EXPECT_THAT(directory.files(), ElementsAre("c.ab1"));
  EXPECT_THAT(directory.subdirectories(), IsEmpty());
}

TEST(DirectoryRead, ReadCurrentReadsTheNotedWorkingDirectory) {
  ScratchFolder folder;
  folder.write("here", "");
  folder.write("noted/there", "");
  folder.write("noted/.hidden", "");
  Directory directory("nowhere");

  {
    EnvironmentVariable noted("PWD", folder.at("noted").text());
    EXPECT_TRUE(directory.readCurrent(false));
    EXPECT_THAT(directory.files(), ElementsAre("there"));
    EXPECT_TRUE(directory.readCurrent(true));
    EXPECT_THAT(directory.files(), ElementsAre(".hidden", "there"));
  }

  EnvironmentVariable unset("PWD", nullptr);
  EXPECT_TRUE(directory.readCurrent(false));
  EXPECT_THAT(directory.files(), ElementsAre("here"));
}
