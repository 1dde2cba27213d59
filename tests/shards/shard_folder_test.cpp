#include "shards/shard_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "tests/support/scratch_folder.h"

using Quillet::readShard;
using Quillet::ShardContents;
using Quillet::ShardFolder;

namespace {

using namespace std::string_literals;

ShardContents someContents() {
  return {.settings = {.keepExtensions = true,
                       .overwrite = false,
                       .listed = true,
                       .planId = "0123456789abcdef",
                       .project = "/my project/",
                       .chromatPath = "/my project/chromat_dir/",
                       .phdPath = "/x\ny/",
                       .polyPath = "/poly/"},
          .names = {"b.ab1", "a b\n.ab1", "", "b.ab1"}};
}

std::string complaintOf(const ShardFolder& folder) {
  try {
    readShard(folder);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

}  // namespace

TEST(ShardFolder, SaysWhereThingsAre) {
  const ShardFolder folder("/p/shards/0012/");

  EXPECT_EQ(folder.path(), "/p/shards/0012");
  EXPECT_EQ(folder.name(), "0012");
  EXPECT_EQ(folder.names(), "/p/shards/0012/names");
  EXPECT_EQ(folder.settings(), "/p/shards/0012/settings");
  EXPECT_EQ(folder.chromats(), "/p/shards/0012/chromat_dir");
  EXPECT_EQ(folder.resultPhds(), "/p/shards/0012/result/phd_dir");
  EXPECT_EQ(folder.resultPolys(), "/p/shards/0012/result/poly_dir");
  EXPECT_EQ(folder.messages(), "/p/shards/0012/result/messages");
}

TEST(ShardFolder, HasANameThatSorts) {
  using Quillet::shardName;

  EXPECT_EQ(shardName(1, 1), "0001");
  EXPECT_EQ(shardName(64, 200), "0064");
  EXPECT_EQ(shardName(9999, 9999), "9999");
  EXPECT_EQ(shardName(1, 10000), "00001");
  EXPECT_EQ(shardName(10000, 10000), "10000");
}

TEST(ShardFolder, ReadsWhatItWrote) {
  const ScratchFolder scratch;
  const ShardFolder folder(scratch.path().string());
  const ShardContents written = someContents();

  writeShard(folder, written);
  const ShardContents read = readShard(folder);

  EXPECT_EQ(read.names, written.names);
  EXPECT_TRUE(read.settings.keepExtensions);
  EXPECT_FALSE(read.settings.overwrite);
  EXPECT_TRUE(read.settings.listed);
  EXPECT_EQ(read.settings.planId, "0123456789abcdef");
  EXPECT_EQ(read.settings.project, "/my project/");
  EXPECT_EQ(read.settings.chromatPath, "/my project/chromat_dir/");
  EXPECT_EQ(read.settings.phdPath, "/x\ny/");
  EXPECT_EQ(read.settings.polyPath, "/poly/");
}

TEST(ShardFolder, EndsEachNameByAZeroByte) {
  const ScratchFolder scratch;

  writeShard(ShardFolder(scratch.path().string()), someContents());

  EXPECT_EQ(scratch.read("names"), "b.ab1\0a b\n.ab1\0\0b.ab1\0"s);
}

TEST(ShardFolder, RefusesWhatIsNoShard) {
  const ScratchFolder scratch;
  const ShardFolder folder(scratch.path().string());

  EXPECT_EQ(complaintOf(folder), folder.path() + " is no shard: no " + folder.path() + "/settings");
}

TEST(ShardFolder, RefusesCutFiles) {
  const ScratchFolder scratch;
  const ShardFolder folder(scratch.path().string());
  const std::string start = folder.path() + " is no shard: ";
  writeShard(folder, someContents());
  const std::string names = scratch.read("names");
  const std::string settings = scratch.read("settings");

  // Every cut of either file is found.
  for (std::size_t length = 0; length < names.size(); ++length) {
    scratch.write("names", names.substr(0, length));
    EXPECT_EQ(complaintOf(folder), start + folder.names() + " is not whole") << length;
  }
  scratch.write("names", names);
  for (std::size_t length = 0; length < settings.size(); ++length) {
    scratch.write("settings", settings.substr(0, length));
    EXPECT_THAT(complaintOf(folder), testing::StartsWith(start)) << length;
  }
}

TEST(ShardFolder, IsDoneWithItsMessagesAndNotBefore) {
  const ScratchFolder scratch;
  const ShardFolder folder(scratch.path().string());

  EXPECT_FALSE(folder.isDone());
  scratch.makeFolder("result/phd_dir");
  EXPECT_FALSE(folder.isDone());
  scratch.write("result/messages", "");
  EXPECT_TRUE(folder.isDone());
}
