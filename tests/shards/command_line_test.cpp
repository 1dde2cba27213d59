#include "shards/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "audit/companion_program.h"

using Quillet::readShardsCommand;
using Quillet::ShardsCommand;
using Quillet::ShardsTask;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

std::string faultOf(const std::vector<std::string>& words) {
  try {
    readShardsCommand(words);
  } catch (const Quillet::UsageError& error) {
    return error.what();
  }
  return {};
}

}  // namespace

TEST(ShardsCommandLine, Plans) {
  const ShardsCommand command = readShardsCommand({"plan", "-d", "lab", "-n", "64"});

  EXPECT_EQ(command.task, ShardsTask::plan);
  EXPECT_THAT(command.plan.projectFlags, ElementsAre("-d", "lab"));
  EXPECT_EQ(command.plan.count, 64U);
  EXPECT_FALSE(command.plan.size);
  EXPECT_FALSE(command.plan.force);
}

TEST(ShardsCommandLine, HandsTheConvertersFlagsOn) {
  const ShardsCommand command = readShardsCommand(
      {"plan", "-o", "--size", "500", "-l", "-", "-f", "-s", "-d", "a", "-d", "b"});

  EXPECT_EQ(command.plan.size, 500U);
  EXPECT_FALSE(command.plan.count);
  EXPECT_TRUE(command.plan.force);
  EXPECT_THAT(command.plan.projectFlags, ElementsAre("-d", "b", "-l", "-", "-s", "-o"));
}

TEST(ShardsCommandLine, TakesTheConvertersSpellings) {
  const ShardsCommand command = readShardsCommand(
      {"all", "-dir", "lab", "-list", "names", "-nostrip", "-overwrite", "-j", "2"});

  EXPECT_EQ(command.task, ShardsTask::all);
  EXPECT_THAT(command.plan.projectFlags, ElementsAre("-d", "lab", "-l", "names", "-s", "-o"));
  EXPECT_EQ(command.processCount, 2U);
}

TEST(ShardsCommandLine, LeavesAWordThatIsAValueAsItIs) {
  EXPECT_THAT(readShardsCommand({"join", "-d", "-list"}).plan.projectFlags,
              ElementsAre("-d", "-list"));
  EXPECT_THAT(readShardsCommand({"join", "-dir", "run"}).plan.projectFlags,
              ElementsAre("-d", "run"));
}

TEST(ShardsCommandLine, UsesEachProcessorUnlessItIsToldANumber) {
  EXPECT_GE(readShardsCommand({"all"}).processCount, 1U);
  EXPECT_FALSE(readShardsCommand({"all"}).plan.size);
  EXPECT_EQ(readShardsCommand({"all", "-j", "3", "--size", "7"}).plan.size, 7U);
  EXPECT_EQ(readShardsCommand({"all", "-j", "3", "-j", "4"}).processCount, 4U);
}

TEST(ShardsCommandLine, RunsAShard) {
  const ShardsCommand bare = readShardsCommand({"run", "p/shards/0001/"});
  const ShardsCommand full =
      readShardsCommand({"run", "--scratch", "/tmp", "--keep-gzip", "p/shards/0001"});

  EXPECT_EQ(bare.task, ShardsTask::run);
  EXPECT_EQ(bare.shard, "p/shards/0001/");
  EXPECT_FALSE(bare.scratch);
  EXPECT_FALSE(bare.keepGzip);
  EXPECT_EQ(full.shard, "p/shards/0001");
  EXPECT_EQ(full.scratch, "/tmp");
  EXPECT_TRUE(full.keepGzip);
}

TEST(ShardsCommandLine, Joins) {
  const ShardsCommand command = readShardsCommand({"join"});

  EXPECT_EQ(command.task, ShardsTask::join);
  EXPECT_THAT(command.plan.projectFlags, IsEmpty());
}

TEST(ShardsCommandLine, AnswersQuestionsWhateverElseItSays) {
  for (const char* word : {"-h", "--help", "-help"}) {
    EXPECT_THAT(readShardsCommand({word}).answer, HasSubstr("join")) << word;
    EXPECT_THAT(readShardsCommand({"plan", word}).answer, HasSubstr("--size TRACES")) << word;
    EXPECT_THAT(readShardsCommand({"run", word}).answer, HasSubstr("--keep-gzip")) << word;
    EXPECT_EQ(readShardsCommand({"run", word}).task, ShardsTask::answer) << word;
  }
  for (const char* word : {"--version", "-version"}) {
    EXPECT_THAT(readShardsCommand({word}).answer,
                ::testing::MatchesRegex("quillet-shards [0-9.]+\n"));
    EXPECT_THAT(readShardsCommand({"all", word}).answer,
                ::testing::MatchesRegex("quillet-shards [0-9.]+\n"));
  }
}

TEST(ShardsCommandLine, RefusesWhatItDoesNotKnow) {
  const std::vector<std::vector<std::string>> wrong{{},
                                                    {"nothing"},
                                                    {"-d", "lab"},
                                                    {"--nothing"},
                                                    {"plan"},
                                                    {"plan", "-d", "lab"},
                                                    {"plan", "-n", "0"},
                                                    {"plan", "-n", "-1"},
                                                    {"plan", "-n", "4x"},
                                                    {"plan", "-n", ""},
                                                    {"plan", "-n", "99999999999999999999999"},
                                                    {"plan", "-n"},
                                                    {"plan", "--size", "0"},
                                                    {"plan", "--size", "1.5"},
                                                    {"plan", "-n", "2", "--size", "2"},
                                                    {"plan", "-n", "2", "more"},
                                                    {"plan", "-n", "2", "-j", "2"},
                                                    {"plan", "-n", "2", "--scratch", "x"},
                                                    {"plan", "-n", "2", "-f=1"},
                                                    {"plan", "-n", "2", "-d"},
                                                    {"plan", "-n", "2", "join"},
                                                    {"run"},
                                                    {"run", "a", "b"},
                                                    {"run", "a", "-d", "lab"},
                                                    {"run", "a", "--scratch"},
                                                    {"join", "-s"},
                                                    {"join", "-l", "x"},
                                                    {"join", "-n", "2"},
                                                    {"all", "-j", "0"},
                                                    {"all", "-j"},
                                                    {"all", "-j", "-2"}};
  for (const std::vector<std::string>& words : wrong) {
    EXPECT_NE(faultOf(words), "") << ::testing::PrintToString(words);
  }
}

TEST(ShardsCommandLine, SaysWhatIsWrongWithANumber) {
  EXPECT_THAT(faultOf({"plan", "-n", "many"}),
              HasSubstr("COUNT is a number, 1 or more, not `many'"));
  EXPECT_EQ(faultOf({"plan"}), "plan needs -n or --size");
  EXPECT_EQ(faultOf({"all", "-n", "2", "--size", "2"}), "-n and --size exclude each other");
}
