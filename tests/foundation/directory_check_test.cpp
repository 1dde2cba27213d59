#include "foundation/directory.h"

#include <cstring>
#include <exception>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <type_traits>
#include <typeinfo>

#include "tests/support/ordinary_user.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/slot_of.h"
#include "tests/support/socket_file.h"
#include "tests/support/text_of.h"

// Which paths pass as directories, and the exceptions for the others.

namespace {

using Tessaly::Directory;
using Tessaly::String;

// A handler of standard exceptions does not catch these.
static_assert(!std::is_base_of_v<std::exception, Directory::Exception>);

template <typename Kind, typename... Others>
constexpr bool derivesFromNone = (... && (std::is_same_v<Kind, Others> ||
                                          !std::is_base_of_v<Others, Kind>));
template <typename... Kinds>
constexpr bool areSeparateKinds = (... && (std::is_base_of_v<Directory::Exception, Kinds> &&
                                           derivesFromNone<Kinds, Kinds...>));

/// The exception that check() throws, as "<message> <path>"; empty when it throws none.
std::string complaint(const String& path, bool mustBeReadable, bool mustBeWriteable) {
  try {
    Directory::check(path.text(), mustBeReadable, mustBeWriteable);
  } catch (const Directory::Exception& problem) {
    return std::string(problem.message()) + " " + problem.path();
  }
  return {};
}

/// Whether check() throws exactly `Expected`, and no class derived from it.
template <typename Expected>
bool checkThrows(const String& path, bool mustBeReadable, bool mustBeWriteable) {
  try {
    Directory::check(path.text(), mustBeReadable, mustBeWriteable);
  } catch (const Directory::Exception& problem) {
    return typeid(problem) == typeid(Expected);
  }
  return false;
}

}  // namespace

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

TEST(DirectoryCheck, ARegularFileOfMode0IsNotADirectoryBeforeItIsUnreadable) {
  ScratchFolder folder;
  const String path = folder.write("file", "x");
  chmod(path.text(), 0);

  EXPECT_TRUE(checkThrows<Directory::NotADirectory>(path, true, false));
  EXPECT_TRUE(checkThrows<Directory::NotADirectory>(path, false, true));
  EXPECT_TRUE(checkThrows<Directory::NotADirectory>(path, true, true));
}

TEST(DirectoryCheck, APathInsideAClosedDirectoryIsDenied) {
  OpenScratchFolder folder;
  folder.makeFolder("closed/d");
  chmod(folder.at("closed").text(), 0);
  const String path = folder.at("closed/d");
  bool ordinary = false;
  bool denied = false;
  std::string text;

  {
    OrdinaryUser user;
    ordinary = user.isOrdinary();
    denied = checkThrows<Directory::PermissionDenied>(path, false, false);
    text = complaint(path, false, false);
  }
  chmod(folder.at("closed").text(), 0700);

  if (!ordinary) GTEST_SKIP() << "the superuser passes every permission test";
  EXPECT_TRUE(denied);
  EXPECT_EQ(text, "permission denied " + textOf(path));
}

TEST(DirectoryCheck, AnyOtherFailureIsAnAccessError) {
  ScratchFolder folder;
  std::filesystem::create_symlink("loop", "loop");
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
  const String owner = folder.at("owner");
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

// A handler of one kind catches that kind alone.
TEST(DirectoryException, EveryKindIsAnExceptionAndNoneIsAnother) {
  constexpr bool separate = areSeparateKinds<Directory::AccessError, Directory::NotFound,
                                             Directory::NotADirectory, Directory::PermissionDenied,
                                             Directory::NotReadable, Directory::NotWriteable>;
  EXPECT_TRUE(separate);
}

TEST(DirectoryException, VirtualOperationsStandInTheirFixedOrder) {
  using E = Directory::Exception;

  // The destructor takes the slots 0 and 1.
  EXPECT_EQ(slotOf<const char*() const>(&E::message), 2U);
  EXPECT_EQ(slotOf<const char*() const>(&E::path), 3U);
}
