#include "shards/join_shards.h"

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "shards/file_operations.h"
#include "shards/new_file.h"
#include "shards/shard_folder.h"
#include "shards/shard_plan.h"
#include "shards/shards_folder.h"
#include "tests/shards/planned_project.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/trace_builder.h"

namespace {

namespace fs = std::filesystem;
using Quillet::joinShards;
using Quillet::planShards;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Outcome {
  int status = -1;
  std::string messages;
};

Outcome join(const PlannedProject& project) {
  testing::internal::CaptureStderr();
  Outcome outcome;
  try {
    outcome.status = joinShards(project.flags());
  } catch (const std::exception& error) {
    outcome.messages = std::string("thrown: ") + error.what();
  }
  outcome.messages = testing::internal::GetCapturedStderr() + outcome.messages;
  return outcome;
}

/// A project with a shard for each of its traces a, b and c.
class ThreeShards : public PlannedProject {
 public:
  explicit ThreeShards(std::vector<std::string> planFlags = {}) {
    for (const char* name : {"a", "b", "c"}) addTrace(name, AbifBuilder().build());
    planAll(std::move(planFlags));
  }
  void planAll(std::vector<std::string> planFlags) const {
    Quillet::PlanOptions options;
    options.projectFlags = flags(std::move(planFlags));
    options.size = 1;
    options.force = true;
    planShards(options);
  }
  /// As a run leaves it: both results of the sample, and a message.
  void finishSample(const std::string& shard, const std::string& sample) const {
    finish(shard, {{sample + ".phd.1", sample + " phd"}}, {{sample + ".poly", sample + " poly"}},
           "message of " + sample + "\n");
  }
  std::vector<std::string> rootEntries() const { return entries("."); }
};

}  // namespace

TEST(JoinShards, MovesResultsAndPrintsMessagesInOrder) {
  const ThreeShards project;
  project.finishSample("0003", "c");
  project.finishSample("0001", "a");
  project.finishSample("0002", "b");

  const Outcome outcome = join(project);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "message of a\nmessage of b\nmessage of c\n");
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1", "b.phd.1", "c.phd.1"));
  EXPECT_THAT(project.entries("poly_dir"), ElementsAre("a.poly", "b.poly", "c.poly"));
  EXPECT_EQ(project.phd("b"), "b phd");
  EXPECT_EQ(project.poly("b"), "b poly");
  EXPECT_THAT(project.rootEntries(), ElementsAre("chromat_dir", "edit_dir", "phd_dir", "poly_dir"));
}

TEST(JoinShards, HasNothingToDoWithoutShards) {
  const PlannedProject project;

  EXPECT_EQ(join(project).status, 0);
  EXPECT_EQ(join(project).messages, "");
}

TEST(JoinShards, NamesUnfinishedShardsAndJoinsTheOthers) {
  const ThreeShards project;
  project.finishSample("0002", "b");
  project.makeFolder("shards/0001/result/phd_dir");  // as an engine makes it
  project.write("shards/0003/attempt-x/phd_dir/c.phd.1", "begun");

  const Outcome outcome = join(project);

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, "message of b\nquillet-shards: not finished: 0001 0003\n");
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("b.phd.1"));
  EXPECT_THAT(project.shards(), ElementsAre("0001", "0003"));
}

TEST(JoinShards, CanBeRepeatedUntilAllIsJoined) {
  const ThreeShards project;
  project.finishSample("0002", "b");
  join(project);
  EXPECT_EQ(join(project).messages, "quillet-shards: not finished: 0001 0003\n");

  project.finishSample("0001", "a");
  project.finishSample("0003", "c");
  const Outcome outcome = join(project);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "message of a\nmessage of c\n");
  EXPECT_FALSE(project.has("shards"));
  EXPECT_EQ(join(project).status, 0);
}

TEST(JoinShards, PrintsMessagesByteForByte) {
  const ThreeShards project;
  const std::string messages("ERROR: \x1b a\nb\0c - skipping.\n", 28);
  project.finish("0001", {}, {}, messages);

  EXPECT_EQ(join(project).messages, messages + "quillet-shards: not finished: 0002 0003\n");
}

TEST(JoinShards, MovesHiddenResults) {
  const ThreeShards project;
  project.finish("0001", {{".phd.1", "x"}}, {{".poly", "y"}}, "");

  join(project);

  EXPECT_EQ(project.phd(""), "x");
  EXPECT_EQ(project.poly(""), "y");
}

TEST(JoinShards, ReplacesOldResults) {
  const ThreeShards project({"-o"});
  project.write("phd_dir/a.phd.1", "old");
  project.write("poly_dir/a.poly", "old");
  project.write("phd_dir/b.phd.1", "old");  // its trace gives nothing any longer
  project.finishSample("0001", "a");
  project.finish("0002", {}, {}, "");

  join(project);

  EXPECT_EQ(project.phd("a"), "a phd");
  EXPECT_EQ(project.poly("a"), "a poly");
  EXPECT_EQ(project.phd("b"), "old");
}

TEST(JoinShards, UsesTheResultFoldersOfThePlan) {
  const ThreeShards project;
  project.makeFolder("phds");
  project.makeFolder("polys");
  project.write(".quilletrc", "phddir phds\npolydir polys\n");
  project.planAll({});
  fs::remove(".quilletrc");
  project.finishSample("0001", "a");

  join(project);

  EXPECT_EQ(project.read("phds/a.phd.1"), "a phd");
  EXPECT_EQ(project.read("polys/a.poly"), "a poly");
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
}

TEST(JoinShards, TakesLateAttemptsAway) {
  const ThreeShards project;
  for (const auto& [shard, sample] : {std::pair("0001", "a"), {"0002", "b"}, {"0003", "c"}}) {
    project.finishSample(shard, sample);
    project.write(std::string("shards/") + shard + "/attempt-late/phd_dir/x.phd.1", "late");
  }

  EXPECT_EQ(join(project).status, 0);

  EXPECT_FALSE(project.has("shards"));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1", "b.phd.1", "c.phd.1"));
}

TEST(JoinShards, GoesOnAfterAKillAtAnyMoment) {
  // The steps of a join of shard 0001, with -o, as an interrupted one leaves them.
  const std::vector<void (*)(const ThreeShards&)> steps = {
      [](const ThreeShards&) { fs::remove("phd_dir/a.phd.1"); },
      [](const ThreeShards&) { fs::remove("phd_dir/d.phd.1"); },
      [](const ThreeShards&) {
        fs::rename("shards/0001/result/poly_dir/a.poly", "poly_dir/a.poly");
      },
      [](const ThreeShards&) {
        fs::rename("shards/0001/result/poly_dir/d.poly", "poly_dir/d.poly");
      },
      [](const ThreeShards&) {
        fs::rename("shards/0001/result/phd_dir/a.phd.1", "phd_dir/a.phd.1");
      },
      [](const ThreeShards&) {
        fs::rename("shards/0001/result/phd_dir/d.phd.1", "phd_dir/d.phd.1");
      },
      [](const ThreeShards&) { fs::rename("shards/0001", "shards/.joined-0001"); },
      [](const ThreeShards&) { fs::remove_all("shards/.joined-0001/result"); },
      [](const ThreeShards&) { fs::remove_all("shards/.joined-0001"); }};
  for (std::size_t done = 0; done <= steps.size(); ++done) {
    const ThreeShards project({"-o"});
    for (const char* sample : {"a", "d"}) {
      project.write(std::string("phd_dir/") + sample + ".phd.1", "old");
      project.write(std::string("poly_dir/") + sample + ".poly", "old");
    }
    project.finish("0001", {{"a.phd.1", "a phd"}, {"d.phd.1", "d phd"}},
                   {{"a.poly", "a poly"}, {"d.poly", "d poly"}}, "message\n");
    for (std::size_t step = 0; step < done; ++step) steps[step](project);

    const Outcome outcome = join(project);

    EXPECT_EQ(outcome.status, 2) << done;  // 0002 and 0003 are not finished
    const bool isRetired = done >= 7;
    EXPECT_EQ(outcome.messages, std::string(isRetired ? "" : "message\n") +
                                    "quillet-shards: not finished: 0002 0003\n")
        << done;
    for (const char* sample : {"a", "d"}) {
      EXPECT_EQ(project.phd(sample), sample + std::string(" phd")) << done;
      EXPECT_EQ(project.poly(sample), sample + std::string(" poly")) << done;
    }
    project.finishSample("0002", "b");
    project.finishSample("0003", "c");
    EXPECT_EQ(join(project).status, 0) << done;
    EXPECT_THAT(project.rootEntries(),
                ElementsAre("chromat_dir", "edit_dir", "phd_dir", "poly_dir"))
        << done;
  }
}

TEST(JoinShards, MovesEveryPolyBeforeTheFirstPhd) {
  const ThreeShards project({"-o"});
  project.write("phd_dir/a.phd.1", "old");
  project.write("phd_dir/z.phd.1", "old");
  project.finish("0001", {{"a.phd.1", "a phd"}, {"z.phd.1", "z phd"}},
                 {{"a.poly", "a poly"}, {"z.poly", "z poly"}}, "message\n");
  project.makeFolder("poly_dir/z.poly");  // in the way of a file

  const Outcome interrupted = join(project);

  EXPECT_EQ(interrupted.messages,
            "thrown: can not write " + project.absolute("poly_dir/z.poly") + ": Is a directory");
  EXPECT_EQ(project.poly("a"), "a poly");
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());  // neither old ones nor new ones

  fs::remove("poly_dir/z.poly");
  EXPECT_EQ(join(project).messages, "message\nquillet-shards: not finished: 0002 0003\n");
  EXPECT_EQ(project.phd("a") + project.poly("a"), "a phda poly");
  EXPECT_EQ(project.phd("z") + project.poly("z"), "z phdz poly");
}

TEST(JoinShards, LeavesASampleThatSomebodyHasConvertedSinceThePlan) {
  const ThreeShards project;
  project.finish("0001", {{"a.phd.1", "a phd"}, {"y.phd.1", "y phd"}, {"z.phd.1", "z phd"}},
                 {{"a.poly", "a poly"}, {"y.poly", "y poly"}, {"z.poly", "z poly"}}, "message\n");
  project.write("phd_dir/a.phd.1", "edited");
  project.write("poly_dir/a.poly", "edited poly");
  project.write("phd_dir/y.phd.1", "y phd");  // the copy of a join that was interrupted
  project.makeFolder("phd_dir/z.phd.1");

  EXPECT_EQ(join(project).messages,
            "message\n"
            "quillet-shards: 0001: 2 samples were converted after the plan and stay, such as a\n"
            "quillet-shards: not finished: 0002 0003\n");

  EXPECT_EQ(project.phd("a") + project.poly("a"), "editededited poly");
  EXPECT_EQ(project.phd("y") + project.poly("y"), "y phdy poly");
  EXPECT_EQ(project.poly("z"), "");
}

TEST(JoinShards, TouchNoOtherProjectThanTheirOwn) {
  const ThreeShards project({"-o"});
  project.write("phd_dir/a.phd.1", "old");
  project.finishSample("0001", "a");
  project.makeFolder("copy");
  fs::copy("shards", "copy/shards", fs::copy_options::recursive | fs::copy_options::copy_symlinks);

  const std::string complaint = complaintOf([&] { joinShards({"-d", project.absolute("copy")}); });

  EXPECT_EQ(complaint, project.absolute("copy/shards/0001") + " was planned for " +
                           project.path().string() + "/, another folder: plan again with -f");
  EXPECT_EQ(project.phd("a"), "old");
}

TEST(JoinShards, LosesNoMessageThatCanNotBeWritten) {
  const ThreeShards project;
  project.finishSample("0001", "a");
  const int saved = dup(STDERR_FILENO);
  const int full = open("/dev/full", O_WRONLY);
  dup2(full, STDERR_FILENO);

  const std::string complaint = complaintOf([&] { joinShards(project.flags()); });
  dup2(saved, STDERR_FILENO);
  close(saved);
  close(full);

  EXPECT_EQ(complaint, "can not write the messages to standard error");
  EXPECT_EQ(join(project).messages, "message of a\nquillet-shards: not finished: 0002 0003\n");
}

TEST(JoinShards, SaysThatAResultIsNotWhole) {
  const ThreeShards project;
  project.write("shards/0001/result/messages", "");

  EXPECT_EQ(join(project).messages, "thrown: " + project.absolute("shards/0001/result") +
                                        " is not whole: remove it and run the shard again");
}

TEST(JoinShards, GoesOnAfterAKillWhenTheWholeFolderGoes) {
  const PlannedProject project;
  project.write("shards/plan.tsv", "shard\ttrace\n0001\ta\n");
  project.write("shards/.joined-0001/names", "a");
  project.write(".quillet-shards-77-0/shards/plan.tsv", "shard\ttrace\n");

  EXPECT_EQ(join(project).status, 0);

  EXPECT_THAT(project.entries("."), ElementsAre("chromat_dir", "edit_dir", "phd_dir", "poly_dir"));
}

TEST(JoinShards, ChangesNothingWhenAResultFolderIsReadOnly) {
  for (const char* folder : {"phd_dir", "poly_dir"}) {
    const ThreeShards project({"-o"});
    project.write("phd_dir/a.phd.1", "old");
    project.finishSample("0001", "a");
    for (const char* open : {".", "phd_dir", "poly_dir"}) fs::permissions(open, fs::perms(0777));
    fs::permissions(folder, fs::perms(0555));
    Outcome outcome;
    {
      const OrdinaryUser user;
      if (!user.isOrdinary()) GTEST_SKIP() << "the superuser writes everywhere";
      outcome = join(project);
    }

    EXPECT_EQ(outcome.messages,
              "thrown: can not write to " + project.absolute(folder) + "/: Permission denied");
    EXPECT_EQ(project.phd("a"), "old");
    EXPECT_EQ(project.read("shards/0001/result/phd_dir/a.phd.1"), "a phd");
    EXPECT_EQ(project.read("shards/0001/result/poly_dir/a.poly"), "a poly");
  }
}

TEST(JoinShards, RemovesNothingThatItCanNotRead) {
  for (const char* closed : {"shards", "shards/0002"}) {
    const ThreeShards project;
    for (const char* open : {".", "phd_dir", "poly_dir", "shards"}) {
      fs::permissions(open, fs::perms(0777));
    }
    project.finishSample("0002", "b");
    fs::permissions(closed, fs::perms(0));
    Outcome outcome;
    {
      const OrdinaryUser user;
      if (!user.isOrdinary()) GTEST_SKIP() << "the superuser reads everything";
      outcome = join(project);
    }
    fs::permissions(closed, fs::perms(0777));

    EXPECT_THAT(outcome.messages, HasSubstr("thrown: can not "));
    EXPECT_THAT(outcome.messages, HasSubstr(": Permission denied"));
    EXPECT_EQ(project.read("shards/0002/result/phd_dir/b.phd.1"), "b phd");
  }
}

TEST(JoinShards, CopiesToAnotherFileSystem) {
  struct stat here;
  struct stat there;
  if (stat("/dev/shm", &there) != 0 || stat(".", &here) != 0 || here.st_dev == there.st_dev) {
    GTEST_SKIP() << "there is one file system";
  }
  std::string other = "/dev/shm/quillet-test-XXXXXX";
  ASSERT_NE(mkdtemp(other.data()), nullptr);
  const PlannedProject project;
  project.addTrace("a", AbifBuilder().build());
  fs::create_directories(other + "/phd");
  fs::create_directories(other + "/poly");
  project.write(".quilletrc", "phddir " + other + "/phd\npolydir " + other + "/poly\n");
  Quillet::PlanOptions options;
  options.projectFlags = project.flags({"-o"});
  options.size = 9;
  Quillet::writeNewFile(other + "/phd/a.phd.1", "old");
  planShards(options);
  project.finish("0001", {{"a.phd.1", "new phd"}}, {{"a.poly", "new poly"}}, "message\n");

  const Outcome outcome = join(project);

  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(Quillet::readWholeFile(other + "/phd/a.phd.1"), "new phd");
  EXPECT_EQ(Quillet::readWholeFile(other + "/poly/a.poly"), "new poly");
  int entryCount = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(other)) {
    entryCount += entry.is_regular_file() ? 1 : 0;
  }
  EXPECT_EQ(entryCount, 2);  // no hidden file stays
  EXPECT_FALSE(project.has("shards"));
  fs::remove_all(other);
}

TEST(JoinShards, SaysThatAShardIsDamaged) {
  const ThreeShards project;
  project.finishSample("0001", "a");
  project.write("shards/0001/settings", "");

  EXPECT_THAT(join(project).messages, HasSubstr("shards/0001 is no shard"));
  EXPECT_TRUE(project.has("shards/0001/result/phd_dir/a.phd.1"));
}

TEST(JoinShards, LeavesAFolderThatIsSomebodyElses) {
  const PlannedProject project;
  project.write("shards/letter", "x");

  EXPECT_EQ(join(project).status, 0);

  EXPECT_EQ(project.read("shards/letter"), "x");
}

TEST(JoinShards, LockTheTableOfThePlanForOtherMachines) {
  const ThreeShards project;
  project.finishSample("0001", "a");
  const int table = open("shards/plan.tsv", O_RDWR);
  ASSERT_EQ(flock(table, LOCK_EX | LOCK_NB), 0);

  EXPECT_THAT(join(project).messages, HasSubstr("thrown: another quillet-shards"));
  close(table);
  EXPECT_EQ(join(project).status, 2);
}

TEST(JoinShards, LetsOneProcessJoinAtATime) {
  const ThreeShards project;
  project.finishSample("0001", "a");
  const Quillet::ProjectLock other(project.path().string() + '/');

  EXPECT_THAT(join(project).messages, HasSubstr("thrown: another quillet-shards"));
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
}
