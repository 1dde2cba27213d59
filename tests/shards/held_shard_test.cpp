#include "shards/held_shard.h"

#include <barrier>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using Quillet::AttemptFolder;
using Quillet::HeldShard;
using Quillet::ShardFolder;
using Publication = HeldShard::Publication;

/// A shard with two attempts in it, both with a result.
class HeldShardTest : public testing::Test {
 protected:
  HeldShardTest() {
    write(one_, "one");
    write(two_, "two");
  }

  void write(const AttemptFolder& attempt, const std::string& messages) const {
    scratch_.write("01/" + attempt.path().substr(folder_.path().size() + 1) + "/result/messages",
                   messages);
  }
  std::string messages() const { return scratch_.read("01/result/messages"); }

  const ScratchFolder scratch_;
  const bool isMade_ = fs::create_directory("01");
  const ShardFolder folder_{scratch_.at("01").text()};
  const AttemptFolder one_{{.folder = folder_.path(), .prefix = ""}};
  const AttemptFolder two_{{.folder = folder_.path(), .prefix = ""}};
  const HeldShard held_{folder_};
};

TEST_F(HeldShardTest, TheFirstOfTwoAttemptsWins) {
  EXPECT_FALSE(held_.isDone());
  EXPECT_EQ(held_.publish(two_), Publication::published);
  EXPECT_EQ(held_.publish(one_), Publication::doneBefore);

  EXPECT_TRUE(held_.isDone());
  EXPECT_EQ(messages(), "two");
  EXPECT_TRUE(fs::exists(one_.path() + "/result/messages"));
}

TEST_F(HeldShardTest, AFolderWithoutMessagesIsNoResult) {
  scratch_.write("01/result/phd_dir/x.phd.1", "");

  EXPECT_EQ(held_.publish(one_), Publication::published);

  EXPECT_EQ(messages(), "one");
  EXPECT_FALSE(scratch_.has("01/result/phd_dir"));
  EXPECT_FALSE(scratch_.has("01/" + one_.nameOnceGone()));
}

TEST_F(HeldShardTest, OfTwoAtTheSameTimeTheFirstWinsThoughAFolderLiesThere) {
  for (int round = 0; round < 300; ++round) {
    fs::remove_all("01/result");
    scratch_.write("01/result/phd_dir/x.phd.1", "");
    write(one_, "one");
    write(two_, "two");
    std::barrier start(2);
    Publication ofOne{};
    std::thread beside([&] {
      start.arrive_and_wait();
      ofOne = held_.publish(one_);
    });
    start.arrive_and_wait();
    const Publication ofTwo = held_.publish(two_);
    beside.join();

    ASSERT_EQ((ofOne == Publication::published) + (ofTwo == Publication::published), 1) << round;
    ASSERT_EQ(messages(), ofOne == Publication::published ? "one" : "two");
    for (const AttemptFolder* attempt : {&one_, &two_}) {
      ASSERT_FALSE(scratch_.has("01/" + attempt->nameOnceGone()));
      fs::remove_all(attempt->path() + "/result");
    }
  }
}

TEST_F(HeldShardTest, NothingHappensInAnotherFolderOfItsName) {
  fs::rename("01", "joined");
  fs::create_directories("01/" + one_.path().substr(folder_.path().size() + 1) + "/result");

  EXPECT_FALSE(held_.isInPlace());
  EXPECT_THROW(held_.publish(one_), std::runtime_error);
  EXPECT_FALSE(scratch_.has("01/result"));
  EXPECT_FALSE(scratch_.has("joined/result"));
}

TEST_F(HeldShardTest, ThereMustBeAFolder) {
  const ShardFolder missing(scratch_.at("02").text());
  EXPECT_THROW(HeldShard{missing}, std::runtime_error);
}

}  // namespace
