#include "shards/all_shards.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/shards/laid_shard.h"
#include "tests/shards/started_run.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_generator.h"

// The whole way: plan, runs and join, by one command and by its steps.

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

ProgramResult runShards(const ProjectFolder& project, std::vector<std::string> arguments,
                        const std::string& program = QUILLET_SHARDS_PROGRAM) {
  return runProgram(program, {.folder = project.path().string(), .arguments = arguments});
}

/// Results by folder and name, the times left out.
std::vector<std::map<std::string, std::string>> resultsOf(const ProjectFolder& project) {
  return {timelessFiles(project.at("phd_dir").text()),
          timelessFiles(project.at("poly_dir").text())};
}

void removeResults(const ProjectFolder& project) {
  for (const char* folder : {"phd_dir", "poly_dir"}) {
    for (const std::string& name : project.entries(folder)) fs::remove(fs::path(folder) / name);
  }
}

/// 40 believable traces, after each tenth one that gets its calls from the trace before it, one
/// that gets its qualities, and one that can not be read.
void addTraces(const ProjectFolder& project) {
  for (unsigned number = 0; number < 40; ++number) {
    const std::string name = "t" + std::to_string(100 + number);
    project.addTrace(name + ".ab1", believableTrace(number, 80).abif().build());
    if (number % 10 != 9) continue;
    project.addTrace(name + "a.ab1", AbifBuilder().bases("").build());
    const std::vector<int> placeholders(30, 0);
    project.addTrace(name + "b.ab1",
                     AbifBuilder().bases(std::string(30, 'C')).qualities(placeholders).build());
    project.addTrace(name + "c.ab1", "no trace");
  }
}

std::vector<std::string> rootEntries(const ProjectFolder& project) { return project.entries("."); }

std::vector<std::string> sortedLines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// A copy of quillet-shards beside a script that is its quillet.
std::string programWith(const ProjectFolder& project, const std::string& script) {
  project.write("bin/quillet", "#!/bin/sh\n" + script);
  fs::permissions("bin/quillet", fs::perms(0755));
  fs::copy_file(QUILLET_SHARDS_PROGRAM, "bin/quillet-shards");
  return project.at("bin/quillet-shards").text();
}

}  // namespace

TEST(AllShards, MakeShardsForProcesses) {
  using Quillet::sizeForProcesses;

  EXPECT_EQ(sizeForProcesses(1000000, 2), 2000U);
  EXPECT_EQ(sizeForProcesses(16000, 2), 2000U);
  EXPECT_EQ(sizeForProcesses(15999, 2), 1999U);
  EXPECT_EQ(sizeForProcesses(17, 2), 2U);  // nine shards
  EXPECT_EQ(sizeForProcesses(10, 2), 1U);
  EXPECT_EQ(sizeForProcesses(1, 8), 1U);
}

TEST(AllShards, GiveWhatAPlainRunGives) {
  const ProjectFolder project;
  addTraces(project);
  const std::string messages = plainMessages(project);
  const auto results = resultsOf(project);
  ASSERT_EQ(results[0].size(), 40U + 4U + 4U);

  for (const char* processes : {"1", "3"}) {
    removeResults(project);
    const ProgramResult all = runShards(project, {"all", "-j", processes});

    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.out, "");
    EXPECT_EQ(all.err, messages);
    EXPECT_EQ(resultsOf(project), results);
    EXPECT_THAT(rootEntries(project),
                ElementsAre("chromat_dir", "edit_dir", "phd_dir", "poly_dir"));
  }
}

TEST(AllShards, GiveWhatAPlainRunGivesStepByStep) {
  const ProjectFolder project;
  addTraces(project);
  const std::string messages = plainMessages(project);
  const auto results = resultsOf(project);
  removeResults(project);

  EXPECT_EQ(runShards(project, {"plan", "-n", "7"}).status, 0);
  ASSERT_THAT(project.entries("shards"),
              ElementsAre("0001", "0002", "0003", "0004", "0005", "0006", "0007", "plan.tsv"));
  EXPECT_EQ(runShards(project, {"plan", "-n", "7"}).status, 1);
  for (const char* shard : {"7", "2", "5", "2", "1", "3", "6"}) {
    EXPECT_EQ(runShards(project, {"run", std::string("shards/000") + shard + '/'}).status, 0);
  }
  const ProgramResult unfinished = runShards(project, {"join"});
  EXPECT_EQ(unfinished.status, 2);
  EXPECT_THAT(unfinished.err, HasSubstr("\nquillet-shards: not finished: 0004\n"));
  EXPECT_THAT(project.entries("shards"), ElementsAre("0004", "plan.tsv"));
  EXPECT_EQ(runShards(project, {"run", "shards/0004"}).status, 0);
  const ProgramResult rest = runShards(project, {"join"});

  EXPECT_EQ(rest.status, 0);
  EXPECT_EQ(resultsOf(project), results);
  EXPECT_FALSE(project.has("shards"));
  EXPECT_EQ(sortedLines(unfinished.err + rest.err),
            sortedLines(messages + "quillet-shards: not finished: 0004\n"));
}

TEST(AllShards, HaveNothingToDoInAnEmptyOrConvertedProject) {
  const ProjectFolder project;
  EXPECT_EQ(runShards(project, {"all", "-j", "2"}).status, 0);

  addTraces(project);
  project.run();
  project.write("list", "t100.ab1\n");
  const ProgramResult result = runShards(project, {"all", "-j", "2", "-l", "list"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
  EXPECT_FALSE(project.has("shards"));
}

TEST(AllShards, SayWhichRunsHaveFailedAndJoinTheOthers) {
  const ProjectFolder project;
  for (const char* name : {"a.ab1", "b.ab1", "c.ab1"}) {
    project.addTrace(name, believableTrace(1, 60).abif().build());
  }
  // The converter fails where there is b.ab1.
  const std::string program = programWith(
      project,
      "[ -e chromat_dir/b.ab1 ] && { echo 'ERROR: no luck'; exit 1; }\nexec " QUILLET_PROGRAM
      " \"$@\"\n");

  const ProgramResult result = runShards(project, {"all", "-j", "2", "--size", "1"}, program);

  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("quillet-shards: "));
  EXPECT_THAT(result.err, HasSubstr("no luck"));
  EXPECT_THAT(result.err, HasSubstr("\nquillet-shards: not finished: 0002\n"));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1", "c.phd.1"));

  // What is left can be done by hand.
  EXPECT_EQ(runShards(project, {"all", "-j", "2"}).status, 1);
  EXPECT_EQ(runShards(project, {"run", "shards/0002"}).status, 0);
  EXPECT_EQ(runShards(project, {"join"}).status, 0);
  EXPECT_THAT(project.entries("poly_dir"), ElementsAre("a.poly", "b.poly", "c.poly"));
}

TEST(AllShards, SayWhichSignalHasEndedARun) {
  const ProjectFolder project;
  project.addTrace("a.ab1", believableTrace(1, 60).abif().build());
  const std::string program = programWith(project, "kill -KILL $PPID\n");

  const ProgramResult result = runShards(project, {"all", "-j", "1"}, program);

  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "quillet-shards: the run of " +
                            std::string(project.at("shards/0001").text()) +
                            " was ended by signal 9\n"
                            "quillet-shards: not finished: 0001\n");
}

TEST(AllShards, EndTheirRunsWhenTheyAreKilled) {
  const ProjectFolder project;
  project.addTrace("a.ab1", believableTrace(1, 60).abif().build());
  const std::string pidFile = project.at("pid").text();
  const std::string program = programWith(project, "echo $$ >" + pidFile + ".new; mv " + pidFile +
                                                       ".new " + pidFile + "; exec sleep 100\n");
  StartedRun all(program, {.folder = project.path().string(),
                           .arguments = {"all", "-d", project.path().string(), "-j", "1"}});
  ASSERT_TRUE(appears(pidFile));
  const pid_t converter = std::atoi(project.read("pid").c_str());

  all.signal(SIGKILL);
  all.wait();

  bool isGone = false;
  for (int tries = 0; tries < 1000 && !isGone; ++tries) {
    isGone = !fs::exists("/proc/" + std::to_string(converter) + "/exe");
    usleep(10000);
  }
  EXPECT_TRUE(isGone);
}

TEST(AllShards, ShowAPercentMeterOnATerminal) {
  const ProjectFolder project;
  addTraces(project);
  const ProgramResult trial = runProgram(
      "script",
      {.folder = project.path().string(), .arguments = {"-qec", "test -t 2", "/dev/null"}});
  if (trial.status != 0) GTEST_SKIP() << trial.err;

  const ProgramResult result = runProgram(
      "script", {.folder = project.path().string(),
                 .arguments = {"-qec", QUILLET_SHARDS_PROGRAM " all -j 1", "/dev/null"}});

  // One for the plan, one for the runs; each goes when it is done.
  EXPECT_EQ(result.status, 0);
  const std::string end = "\x1b[2K 100% done\x1b[A\r\n\x1b[2K";
  const std::size_t planned = result.out.find(end);
  ASSERT_NE(planned, std::string::npos);
  EXPECT_NE(result.out.find(end, planned + 1), std::string::npos);
  EXPECT_THAT(result.out, HasSubstr(end + "ERROR: invalid trace file"));
}

TEST(ShardsProgram, RefusesWrongFlagsWithStatusOne) {
  const ProjectFolder project;

  const ProgramResult result = runShards(project, {"plan", "-n", "none"});

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillet-shards: COUNT is a number, 1 or more, not `none'\n"
            "Try `quillet-shards --help'.\n");
}

TEST(ShardsProgram, AnswersOnStandardOutput) {
  const ProjectFolder project;

  EXPECT_THAT(runShards(project, {"--version"}).out, MatchesRegex("quillet-shards [0-9.]+\n"));
  EXPECT_THAT(runShards(project, {"-h"}).out, HasSubstr("Status: 0 done or nothing to do"));
  EXPECT_EQ(runProgram("sh", {.folder = project.path().string(),
                              .arguments = {"-c", QUILLET_SHARDS_PROGRAM " --help >/dev/full"}})
                .status,
            1);
}
