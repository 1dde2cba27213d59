#include "foundation/directory.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <typeinfo>
#include <unistd.h>

#include "tests/support/captured_stderr.h"
#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"

namespace {

using Tessaly::Directory;
using Tessaly::String;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The system's superuser passes every permission test: until the object goes, act as somebody else.
class OrdinaryUser {
 public:
  OrdinaryUser() : former_(geteuid()), changed_(former_ == 0 && seteuid(65534) == 0) {}
  ~OrdinaryUser() {
    if (changed_ && seteuid(former_) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&)            = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  bool isOrdinary() const { return geteuid() != 0; }

 private:
  uid_t former_;
  bool changed_;
};

// A scratch folder that other users may enter.
class OpenScratchFolder : public ScratchFolder {
 public:
  OpenScratchFolder() { chmod(path().c_str(), 0755); }
};

// What check() throws, as "<message> <path>"; empty when it throws nothing.
std::string complaint(const String& path, bool mustBeReadable, bool mustBeWriteable) {
  try {
    Directory::check(path.text(), mustBeReadable, mustBeWriteable);
  } catch (const Directory::Exception& problem) {
    return std::string(problem.message()) + " " + problem.path();
  }
  return {};
}

// Is `Expected` itself what check() throws?
template <typename Expected>
bool checkThrows(const String& path, bool mustBeReadable, bool mustBeWriteable) {
  try {
    Directory::check(path.text(), mustBeReadable, mustBeWriteable);
  } catch (const Directory::Exception& problem) {
    return typeid(problem) == typeid(Expected);
  }
  return false;
}

std::string textOf(const String& text) {
  return {text.text(), static_cast<std::size_t>(text.length())};
}

void makeLink(const ScratchFolder& folder, const char* target, const char* name) {
  ASSERT_EQ(symlink(target, folder.at(name).text()), 0);
}

// Binds a socket to `name` in the working directory; the name stays when the socket is closed.
void makeSocket(const char* name) {
  const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, name, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  close(handle);
}

}  // namespace

// Checking

TEST(DirectoryCheck, ADirectoryWithItsPermissionsPasses) {
  ScratchFolder folder;
  folder.makeFolder("d");
  chmod(folder.at("d").text(), 0700);

  EXPECT_EQ(complaint(folder.at("d"), true, true), "");
}

TEST(DirectoryCheck, AMissingPathIsNotFound) {
  ScratchFolder folder;
  const String path = folder.at("none");

  EXPECT_TRUE(checkThrows<Directory::NotFound>(path, true, false));
  EXPECT_EQ(complaint(path, false, false), "no such file or directory: " + textOf(path));
}

TEST(DirectoryCheck, APathBelowARegularFileIsNotFound) {
  ScratchFolder folder;
  folder.write("file", "x");
  const String path = folder.at("file/d");

  EXPECT_TRUE(checkThrows<Directory::NotFound>(path, true, false));
  EXPECT_EQ(complaint(path, true, false), "no such file or directory: " + textOf(path));
}

TEST(DirectoryCheck, ARegularFileIsNotADirectory) {
  ScratchFolder folder;
  const String path = folder.write("file", "x");

  EXPECT_TRUE(checkThrows<Directory::NotADirectory>(path, true, true));
  EXPECT_EQ(complaint(path, true, true), "not a directory " + textOf(path));
}

TEST(DirectoryCheck, APathBehindAClosedDirectoryIsDenied) {
  OpenScratchFolder folder;
  folder.makeFolder("closed/d");
  chmod(folder.at("closed").text(), 0);
  const String path = folder.at("closed/d");
  bool ordinary     = false;
  bool denied       = false;
  std::string text;

  {
    OrdinaryUser user;
    ordinary = user.isOrdinary();
    denied   = checkThrows<Directory::PermissionDenied>(path, false, false);
    text     = complaint(path, false, false);
  }
  chmod(folder.at("closed").text(), 0700);

  if (!ordinary) GTEST_SKIP() << "the superuser passes every permission test";
  EXPECT_TRUE(denied);
  EXPECT_EQ(text, "permission denied " + textOf(path));
}

TEST(DirectoryCheck, AnyOtherFailureIsAnAccessError) {
  ScratchFolder folder;
  makeLink(folder, "loop", "loop");
  const String path = folder.at("loop");

  EXPECT_TRUE(checkThrows<Directory::AccessError>(path, false, false));
  EXPECT_EQ(complaint(path, false, false), "could not access directory: " + textOf(path));
}

TEST(DirectoryCheck, WithoutOwnerReadADirectoryIsNotReadable) {
  ScratchFolder folder;
  folder.makeFolder("d");
  const String path = folder.at("d");
  chmod(path.text(), 0300);

  EXPECT_TRUE(checkThrows<Directory::NotReadable>(path, true, false));
  EXPECT_EQ(complaint(path, true, false), "could not read directory: " + textOf(path));
  EXPECT_EQ(complaint(path, false, true), "");
  EXPECT_EQ(complaint(path, false, false), "");
}

TEST(DirectoryCheck, WithoutOwnerWriteADirectoryIsNotWriteable) {
  ScratchFolder folder;
  folder.makeFolder("d");
  const String path = folder.at("d");
  chmod(path.text(), 0500);

  EXPECT_TRUE(checkThrows<Directory::NotWriteable>(path, true, true));
  EXPECT_EQ(complaint(path, true, true), "could not write to directory: " + textOf(path));
  EXPECT_EQ(complaint(path, true, false), "");
}

TEST(DirectoryCheck, WritingIsTestedOnlyAfterReadingPassed) {
  ScratchFolder folder;
  folder.makeFolder("d");
  const String path = folder.at("d");
  chmod(path.text(), 0100);

  EXPECT_TRUE(checkThrows<Directory::NotReadable>(path, true, true));
  EXPECT_TRUE(checkThrows<Directory::NotWriteable>(path, false, true));
}

TEST(DirectoryCheck, OnlyTheOwnersBitsCountWhoeverAsks) {
  OpenScratchFolder folder;
  folder.makeFolder("others");
  folder.makeFolder("owner");
  const String others = folder.at("others");
  const String owner  = folder.at("owner");
  chmod(others.text(), 0077);
  chmod(owner.text(), 0700);

  EXPECT_TRUE(checkThrows<Directory::NotReadable>(others, true, false));
  EXPECT_TRUE(checkThrows<Directory::NotWriteable>(others, false, true));
  OrdinaryUser stranger;  // may use "others" and not "owner"
  EXPECT_TRUE(checkThrows<Directory::NotReadable>(others, true, false));
  EXPECT_TRUE(checkThrows<Directory::NotWriteable>(others, false, true));
  EXPECT_EQ(complaint(owner, true, true), "");
}

TEST(DirectoryCheck, ASocketPassesAsADirectory) {
  ScratchFolder folder;
  makeSocket("socket");
  chmod("socket", 0600);

  EXPECT_EQ(complaint("socket", true, true), "");
}

TEST(DirectoryCheck, TheExceptionKeepsItsOwnCopyOfThePath) {
  char path[] = "nowhere/at/all";
  std::string kept;

  try {
    Directory::check(path, false, false);
  } catch (const Directory::Exception& problem) {
    std::strcpy(path, "changed");
    kept = problem.path();
  }

  EXPECT_EQ(kept, "nowhere/at/all");
}

TEST(DirectoryExists, IsTrueForFilesOfEveryKind) {
  ScratchFolder folder;
  folder.write("file", "");
  folder.makeFolder("d");
  makeLink(folder, "nothing", "dangling");

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

TEST(DirectoryHome, IsEmptyWhenUnsetAndASlashWhenEmpty) {
  {
    EnvironmentVariable home("HOME", nullptr);
    EXPECT_EQ(textOf(Directory::homeDirectory()), "");
  }
  EnvironmentVariable home("HOME", "");
  EXPECT_EQ(textOf(Directory::homeDirectory()), "/");
}

TEST(DirectoryCurrent, IsPwdPlusASlashWithoutAskingTheSystem) {
  ScratchFolder folder;
  EnvironmentVariable noted("PWD", "/not/the/working/directory");

  EXPECT_EQ(textOf(Directory::currentDirectory()), "/not/the/working/directory/");
}

TEST(DirectoryCurrent, APwdEndingInASlashIsUnchanged) {
  EnvironmentVariable noted("PWD", "/some/where/");

  EXPECT_EQ(textOf(Directory::currentDirectory()), "/some/where/");
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
  folder.makeFolder("gone");
  ASSERT_EQ(chdir("gone"), 0);
  ASSERT_EQ(rmdir(folder.at("gone").text()), 0);
  std::string warning;

  String path;
  {
    CapturedStderr captured;
    path    = Directory::currentDirectory();
    warning = captured.text();
  }

  EXPECT_EQ(textOf(path), "/");
  EXPECT_EQ(warning, "Warning: getpwd failed: 2\n");  // 2 is "no such file or directory"
}

// Listing

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
  makeLink(folder, "../plain", "entries/link-to-file");
  makeLink(folder, "../target", "entries/link-to-folder");
  makeLink(folder, "nothing", "entries/dangling");
  makeLink(folder, "loop", "entries/loop");
  ASSERT_EQ(mkfifo(folder.at("entries/fifo").text(), 0600), 0);
  makeSocket("entries/socket");
  std::vector<std::string> files;
  std::vector<std::string> subdirectories;
  bool ordinary = false;

  {
    OrdinaryUser user;
    ordinary = user.isOrdinary();
    const Directory directory(entries.c_str());
    files          = directory.files();
    subdirectories = directory.subdirectories();
  }
  chmod(folder.at("entries/closed").text(), 0700);
  if (!ordinary) std::erase(subdirectories, "closed");  // the superuser opens it all the same

  EXPECT_THAT(files, ElementsAre("fifo", "link-to-file", "plain", "socket", "unreadable"));
  EXPECT_THAT(subdirectories, ElementsAre("folder", "link-to-folder"));
}

TEST(DirectoryRead, AnEntryThatCanNotBeOpenedIsLeftOut) {
  ScratchFolder folder;
  makeLink(folder, "nothing", "dangling");
  makeLink(folder, "loop", "loop");
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
  bool opened   = false;
  Directory directory("nowhere");

  {
    OrdinaryUser user;
    ordinary = user.isOrdinary();
    opened   = directory.read(folder.at("d").text(), false);
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

  rlimit one   = former;
  one.rlim_cur = static_cast<rlim_t>(lowest) + 1;  // enough for the directory itself alone
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
