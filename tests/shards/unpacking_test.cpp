#include "shards/unpacking.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

#include "tests/support/environment.h"
#include "tests/support/project_folder.h"

namespace {

using Quillet::StopSignals;
using Quillet::Unpacking;
using ::testing::ElementsAre;

constexpr std::int64_t limit = 1 << 20;

Unpacking unpack(const ScratchFolder& folder, std::int64_t most = limit) {
  const StopSignals signals;
  return Quillet::unpackInto(folder.at("x").text(), folder.at("x.gz").text(), most, signals);
}

/// What the converter's own command makes of x.gz.
std::string gunzipped(const ScratchFolder& folder) {
  const std::string command =
      "gunzip -c -f " + std::string(folder.at("x.gz").text()) + " > expected 2> complaints";
  if (std::system(command.c_str()) == -1) throw std::runtime_error("no shell");
  return folder.read("expected");
}

TEST(Unpacking, GivesWhatTheConvertersGunzipGives) {
  const ScratchFolder folder;
  const std::string packed = gzipped(std::string(5000, 'A') + "end");
  std::string wrongChecksum = packed;
  wrongChecksum[packed.size() - 8] ^= 1;
  for (const std::string& bytes :
       {packed, packed + packed, std::string(), std::string("plain"), std::string("\x1f"),
        wrongChecksum, packed.substr(0, packed.size() - 9), packed + "garbage",
        packed + std::string(300, '\0'), packed + packed.substr(0, 30), gzipped(packed)}) {
    folder.write("x.gz", bytes);
    std::filesystem::remove("x");

    const Unpacking unpacking = unpack(folder);

    EXPECT_TRUE(unpacking.isUnpacked);
    EXPECT_TRUE(folder.read("x") == gunzipped(folder)) << bytes.size();
    EXPECT_EQ(unpacking.complaints, folder.read("complaints"));
  }
}

TEST(Unpacking, StopsAfterTheMostBytes) {
  for (const bool isIntact : {true, false}) {
    const ScratchFolder folder;
    const std::string tail = isIntact ? "" : "garbage";
    folder.write("x.gz", gzipped(std::string(limit, 'A') + tail) + tail);

    const std::int64_t size = limit + static_cast<std::int64_t>(2 * tail.size());
    EXPECT_FALSE(unpack(folder, size - 1).isUnpacked);
    EXPECT_FALSE(folder.has("x"));
    EXPECT_TRUE(unpack(folder, size).isUnpacked);
    EXPECT_EQ(static_cast<std::int64_t>(folder.read("x").size()), size);
  }
}

TEST(Unpacking, LeavesAloneWhatIsNoRegularFile) {
  const ScratchFolder folder;
  EXPECT_FALSE(unpack(folder).isUnpacked) << "nothing there";
  ASSERT_EQ(mkfifo("x.gz", 0600), 0);
  EXPECT_FALSE(unpack(folder).isUnpacked) << "a pipe";
  std::filesystem::remove("x.gz");
  folder.makeFolder("x.gz");
  EXPECT_FALSE(unpack(folder).isUnpacked) << "a folder";
  EXPECT_FALSE(folder.has("x"));
}

TEST(Unpacking, ReplacesNoFile) {
  const ScratchFolder folder;
  folder.write("x.gz", gzipped("new"));
  folder.write("x", "old");

  EXPECT_THROW(unpack(folder), std::runtime_error);

  EXPECT_EQ(folder.read("x"), "old");
}

TEST(Unpacking, WithoutGunzipOnlyIntactFilesCanBeUnpacked) {
  const ScratchFolder folder;
  const EnvironmentVariable path("PATH", "/nowhere");
  folder.write("x.gz", "plain");
  EXPECT_THROW(unpack(folder), std::runtime_error);
  EXPECT_FALSE(folder.has("x"));
}

class FailingGunzip : public testing::TestWithParam<const char*> {
 protected:
  /// A gunzip that gives a few bytes, and then ends in its own way.
  explicit FailingGunzip() {
    folder_.write("bin/gunzip", std::string("#!/bin/sh\necho some\n") + GetParam() + '\n');
    std::filesystem::permissions("bin/gunzip", std::filesystem::perms::owner_all);
    folder_.write("x.gz", gzipped("bytes") + "garbage");
    path_.emplace("PATH",
                  (folder_.at("bin").text() + std::string(":") + std::getenv("PATH")).c_str());
  }

  const ScratchFolder folder_;
  std::optional<EnvironmentVariable> path_;
};

TEST_P(FailingGunzip, IsNoVerdictOnTheFile) {
  try {
    unpack(folder_);
    ADD_FAILURE() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(),
                testing::StartsWith("gunzip of " + std::string(folder_.at("x.gz").text()) +
                                    " ended with status 1"));
  }
  EXPECT_FALSE(folder_.has("x"));
}

INSTANTIATE_TEST_SUITE_P(Ends, FailingGunzip,
                         testing::Values("kill -9 $$", "kill -15 $$", "exec /nowhere/gzip",
                                         "exec /"));

class WarningGunzip : public FailingGunzip {};

TEST_P(WarningGunzip, GivesItsBytes) {
  EXPECT_TRUE(unpack(folder_).isUnpacked);
  EXPECT_EQ(folder_.read("x"), "some\n");
}

INSTANTIATE_TEST_SUITE_P(Ends, WarningGunzip, testing::Values("exit 0", "exit 1", "exit 2"));

TEST(Unpacking, ASignalStopsItAndLeavesNoFile) {
  const ScratchFolder folder;
  folder.write("x.gz", "plain");
  const auto former = std::signal(SIGTERM, [](int) {});
  {
    const StopSignals signals;
    std::raise(SIGTERM);
    EXPECT_THROW(
        Quillet::unpackInto(folder.at("x").text(), folder.at("x.gz").text(), limit, signals),
        Quillet::Stopped);
  }
  std::signal(SIGTERM, former);
  EXPECT_FALSE(folder.has("x"));
}

}  // namespace
