#include "shards/shard_plan.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <vector>

#include "shards/shard_folder.h"
#include "shards/shards_folder.h"
#include "tests/shards/planned_project.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/trace_builder.h"

namespace {

namespace fs = std::filesystem;
using Quillet::LaidPlan;
using Quillet::PlanOptions;
using Quillet::planShards;
using Quillet::ShardContents;
using Quillet::ShardFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::StartsWith;

const std::string good = AbifBuilder().build();
const std::string withoutCalls = AbifBuilder().bases("").build();
const std::string placeholders = AbifBuilder().qualities({0, 5, 0, 5}).build();

PlanOptions counted(const PlannedProject& project, std::size_t count,
                    std::vector<std::string> flags = {}) {
  PlanOptions options;
  options.projectFlags = project.flags(std::move(flags));
  options.count = count;
  return options;
}

PlanOptions sized(const PlannedProject& project, std::size_t size,
                  std::vector<std::string> flags = {}) {
  PlanOptions options;
  options.projectFlags = project.flags(std::move(flags));
  options.size = size;
  return options;
}

PlanOptions forced(PlanOptions options) {
  options.force = true;
  return options;
}

PlanOptions listed(const PlannedProject& project, std::size_t size, const std::string& list,
                   std::vector<std::string> more = {}) {
  project.write("list", list);
  more.insert(more.end(), {"-l", project.absolute("list")});
  return sized(project, size, std::move(more));
}

void addGood(const PlannedProject& project, const std::vector<std::string>& names) {
  for (const std::string& name : names) project.addTrace(name, good);
}

/// All names of the project's root but for those of a project.
std::vector<std::string> others(const PlannedProject& project) {
  std::vector<std::string> found;
  for (const std::string& name : project.entries(".")) {
    if (!name.ends_with("_dir") && name != "list") found.push_back(name);
  }
  return found;
}

}  // namespace

TEST(ShardPlan, LaysTheNamesOfAPlainRunInItsOrder) {
  const PlannedProject project;
  addGood(project, {"b.ab1", "a.ab1", "d.scf", "C.ab1"});

  const LaidPlan plan = planShards(sized(project, 3));

  EXPECT_THAT(project.shards(), ElementsAre("0001", "0002"));
  EXPECT_THAT(project.names("0001"), ElementsAre("C.ab1", "a.ab1", "b.ab1"));
  EXPECT_THAT(project.names("0002"), ElementsAre("d.scf"));
  EXPECT_THAT(plan.shards,
              ElementsAre(project.absolute("shards/0001"), project.absolute("shards/0002")));
  EXPECT_THAT(plan.nameCounts, ElementsAre(3, 1));
}

TEST(ShardPlan, LinksToTheTraces) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "b c.ab1"});

  planShards(sized(project, 9));

  EXPECT_THAT(project.links("0001"),
              ElementsAre(Pair("a.ab1", project.absolute("chromat_dir/a.ab1")),
                          Pair("b c.ab1", project.absolute("chromat_dir/b c.ab1"))));
}

TEST(ShardPlan, TellsARunWhatItMustKnow) {
  const PlannedProject project;
  addGood(project, {"a.ab1"});
  project.makeFolder("results");

  planShards(sized(project, 9, {"-s", "-o"}));
  const ShardContents flagged = readShard(ShardFolder(project.absolute("shards/0001")));
  project.write(".quilletrc", "phddir results\n");
  planShards(forced(sized(project, 9)));
  const ShardContents plain = readShard(ShardFolder(project.absolute("shards/0001")));

  EXPECT_TRUE(flagged.settings.keepExtensions);
  EXPECT_TRUE(flagged.settings.overwrite);
  EXPECT_FALSE(flagged.settings.listed);
  EXPECT_EQ(flagged.settings.project, project.path().string() + '/');
  EXPECT_EQ(flagged.settings.chromatPath, project.absolute("chromat_dir/"));
  EXPECT_EQ(flagged.settings.phdPath, project.absolute("phd_dir/"));
  EXPECT_EQ(flagged.settings.polyPath, project.absolute("poly_dir/"));
  EXPECT_FALSE(plain.settings.keepExtensions);
  EXPECT_FALSE(plain.settings.overwrite);
  EXPECT_EQ(plain.settings.phdPath, project.absolute("results/"));
  EXPECT_NE(plain.settings.planId, flagged.settings.planId);
  EXPECT_THAT(plain.settings.planId, ::testing::MatchesRegex("[0-9a-f]{16}"));
}

TEST(ShardPlan, ReadsTheFlagsOfTheResourceFileInSilence) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "b.ab1"});
  project.write("list", "b.ab1\n");
  project.write(".quilletrc", "flag -o -l " + project.absolute("list") + "\n");

  testing::internal::CaptureStderr();
  planShards(sized(project, 9));

  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  const ShardContents shard = readShard(ShardFolder(project.absolute("shards/0001")));
  EXPECT_TRUE(shard.settings.overwrite);
  EXPECT_TRUE(shard.settings.listed);
  EXPECT_THAT(shard.names, ElementsAre("b.ab1"));
}

TEST(ShardPlan, WritesATableOfShardsAndTraces) {
  const PlannedProject project;
  addGood(project, {"a\tb.ab1", "c\nd\\.ab1", "e.ab1"});

  planShards(sized(project, 2));

  EXPECT_EQ(project.read("shards/plan.tsv"),
            "shard\ttrace\n"
            "0001\ta\\tb.ab1\n"
            "0001\tc\\nd\\\\.ab1\n"
            "0002\te.ab1\n");
}

TEST(ShardPlan, GivesFoldersTheUsualPermissions) {
  const PlannedProject project;
  addGood(project, {"a.ab1"});
  const mode_t former = umask(0027);

  planShards(sized(project, 9));
  umask(former);

  for (const char* name : {"shards", "shards/0001", "shards/0001/chromat_dir"}) {
    struct stat status;
    ASSERT_EQ(stat(name, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0750U) << name;
  }
  struct stat status;
  ASSERT_EQ(stat("shards/0001/names", &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST(ShardPlan, LeavesOutWhatThePlainRunDoesNotConvert) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "b.ab1", ".hidden.ab1", "sub/c.ab1"});
  fs::create_symlink("nowhere", "chromat_dir/dangling.ab1");
  fs::create_symlink("b.ab1", "chromat_dir/linked.ab1");
  ASSERT_EQ(mkfifo("chromat_dir/pipe", 0600), 0);
  project.write("phd_dir/a.phd.1", "");

  planShards(sized(project, 9));

  EXPECT_THAT(project.names("0001"), ElementsAre("b.ab1", "linked.ab1", "pipe"));
}

TEST(ShardPlan, TakesWhatIsDoneWithOverwrite) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "b.ab1"});
  project.write("phd_dir/a.phd.1", "");

  planShards(sized(project, 9, {"-overwrite"}));

  EXPECT_THAT(project.names("0001"), ElementsAre("a.ab1", "b.ab1"));
}

TEST(ShardPlan, KnowsASampleByItsNameAsTheConverterCutsIt) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "a.ab1.gz", "b.ab1", "c.AB1", "d.gz"});
  for (const char* sample : {"a", "b.ab1", "c", "d"}) {
    project.write("phd_dir/" + std::string(sample) + ".phd.1", "");
  }

  planShards(sized(project, 9));
  EXPECT_THAT(project.names("0001"), ElementsAre("b.ab1", "c.AB1"));
  planShards(forced(sized(project, 9, {"-s"})));
  EXPECT_THAT(project.names("0001"), ElementsAre("a.ab1", "a.ab1.gz", "c.AB1"));
}

TEST(ShardPlan, CutsOnlyInFrontOfATraceWithCallsAndQualities) {
  const PlannedProject project;
  addGood(project, {"a", "g", "i"});
  project.addTrace("b", withoutCalls);
  project.addTrace("c", placeholders);
  project.addTrace("d", "no trace");
  project.addTrace("e.gz", gzipped(good) + "more");
  project.addTrace("f.gz", good);
  project.addGzipped("h.gz", good);

  planShards(sized(project, 1));

  EXPECT_THAT(project.names("0001"), ElementsAre("a", "b", "c", "d", "e.gz", "f.gz"));
  EXPECT_THAT(project.names("0002"), ElementsAre("g"));
  EXPECT_THAT(project.names("0003"), ElementsAre("h.gz"));
  EXPECT_THAT(project.names("0004"), ElementsAre("i"));
}

TEST(ShardPlan, DoesNotCutInFrontOfATraceThatARunMayLeaveOut) {
  const PlannedProject project;
  addGood(project, {"a"});
  for (const char* name : {"b.gz", "b.gz.gz", "c d.gz", "c d.gz.gz"}) {
    project.addGzipped(name, good);
  }

  planShards(sized(project, 1));

  // A shell tears the path of the last one, and it stays packed.
  EXPECT_THAT(project.names("0003"), ElementsAre("b.gz.gz"));
  EXPECT_THAT(project.names("0004"), ElementsAre("c d.gz", "c d.gz.gz"));
}

TEST(ShardPlan, DoesNotCutWhereATraceIsUnpackedOnlyAsTheFirst) {
  const PlannedProject project;
  project.addTrace("m b.ab1-1.ab1", good);
  project.addGzipped("m b.ab1.gz", good);  // unpacked, it would sort before the other
  addGood(project, {"n"});

  planShards(sized(project, 1));

  EXPECT_THAT(project.names("0001"), ElementsAre("m b.ab1-1.ab1", "m b.ab1.gz"));
}

TEST(ShardPlan, DoesNotCutInFrontOfAListedTraceThatARunMayLeaveOut) {
  const PlannedProject project;
  addGood(project, {"a", "z"});
  for (const char* name : {"b;c.gz", "d;e.gz", "f;g.gz", "h.gz"}) project.addGzipped(name, good);

  // "b;c" is only there as "b;c.gz"; "d;e" is not there at all; "h" is for a shell.
  planShards(listed(project, 1, "a\nb;c\nf;g.gz\nd;e.gz\nx\nd;e.gz\nh\nz\n"));

  EXPECT_THAT(project.names("0001"), ElementsAre("a", "b;c"));
  EXPECT_THAT(project.names("0002"), ElementsAre("f;g.gz"));
  EXPECT_THAT(project.names("0003"), ElementsAre("d;e.gz", "x", "d;e.gz"));
  planShards(forced(listed(project, 1, "a\nd;e.gz\nd;e\nz\n")));
  EXPECT_THAT(project.names("0001"), ElementsAre("a", "d;e.gz", "d;e"));
}

TEST(ShardPlan, RefusesALinkInPlaceOfTheShards) {
  const PlannedProject project;
  addGood(project, {"a"});
  project.makeFolder("elsewhere");
  fs::create_directory_symlink("elsewhere", "shards");

  EXPECT_EQ(complaintOf([&] { planShards(sized(project, 9)); }),
            project.absolute("shards") + " is a symbolic link");
}

TEST(ShardPlan, KeepsTheNamesOfASampleTogether) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "b.ab1", "b.ab1-x", "b.scf", "c.ab1"});

  planShards(sized(project, 1));

  EXPECT_THAT(project.shards(), ElementsAre("0001", "0002", "0003"));
  EXPECT_THAT(project.names("0002"), ElementsAre("b.ab1", "b.ab1-x", "b.scf"));
}

TEST(ShardPlan, LaysTheCountThatItIsToldOrFewer) {
  const PlannedProject project;
  addGood(project, {"a", "b", "c", "d", "e", "f", "g"});

  planShards(counted(project, 3));
  EXPECT_THAT(project.shards(), ElementsAre("0001", "0002", "0003"));
  EXPECT_THAT(project.names("0001"), ElementsAre("a", "b"));
  EXPECT_THAT(project.names("0002"), ElementsAre("c", "d"));
  EXPECT_THAT(project.names("0003"), ElementsAre("e", "f", "g"));

  planShards(forced(counted(project, 100)));
  EXPECT_EQ(project.shards().size(), 7U);
}

TEST(ShardPlan, KeepsTheOrderAndTheRepetitionsOfAList) {
  const PlannedProject project;
  addGood(project, {"a", "b", "c", "d"});

  planShards(listed(project, 1, "d\nb more\n\nb\na\nmissing\n"));

  EXPECT_THAT(project.names("0001"), ElementsAre("d"));
  EXPECT_THAT(project.names("0002"), ElementsAre("b", "b"));
  EXPECT_THAT(project.names("0003"), ElementsAre("a", "missing"));
  EXPECT_TRUE(readShard(ShardFolder(project.absolute("shards/0001"))).settings.listed);
  EXPECT_EQ(project.read("shards/plan.tsv"),
            "shard\ttrace\n0001\td\n0002\tb\n0002\tb\n0003\ta\n0003\tmissing\n");
}

TEST(ShardPlan, LinksListedNamesToWhatTheConverterWouldOpen) {
  const PlannedProject project;
  addGood(project, {"plain", "both", ".hidden"});
  project.addGzipped("both.gz", good);
  project.addGzipped("packed.gz", good);
  project.addGzipped("twice.gz.gz", good);
  project.addGzipped("astray.gz", good);
  fs::create_symlink("nowhere", "chromat_dir/astray");
  project.makeFolder("chromat_dir/sub");
  const auto target = [&project](const std::string& name) {
    return Pair(name, project.absolute("chromat_dir/" + name));
  };
  const std::string longName(255, 'x');

  planShards(listed(project, 99,
                    "plain\nboth\npacked\npacked.gz\npacked\ntwice.gz\nastray\nsub\n.hidden\n"
                    "missing\nmissing.gz\n" +
                        longName + "\n" + longName + "x\n" + std::string("\0\n", 2)));

  EXPECT_THAT(project.links("0001"),
              ElementsAre(target(".hidden"), target("astray.gz"), target("both"),
                          target("packed.gz"), target("plain"), target("sub")));
  EXPECT_EQ(project.names("0001").size(), 14U);
  EXPECT_EQ(project.names("0001").back(), "");
}

TEST(ShardPlan, RefusesPathsInAList) {
  for (const char* name : {"a/b", "/a", "../a", ".", "..", "a/"}) {
    const PlannedProject project;
    addGood(project, {"a"});

    EXPECT_EQ(complaintOf([&] { planShards(listed(project, 9, std::string("a\n") + name)); }),
              std::string("the list holds a path instead of a name: ") + name);
    EXPECT_THAT(others(project), IsEmpty());
  }
}

TEST(ShardPlan, SendsNoControlCharacterOfANameToATerminal) {
  const PlannedProject project;

  EXPECT_EQ(complaintOf([&] { planShards(listed(project, 9, "a/\x1b[2J\n")); }),
            "the list holds a path instead of a name: a/\\x1b[2J");
}

TEST(ShardPlan, LeavesOutListedNamesThatAreDone) {
  const PlannedProject project;
  addGood(project, {"a.ab1", "b.ab1", "c.ab1"});
  project.write("phd_dir/b.phd.1", "");

  planShards(listed(project, 9, "c.ab1\nb.ab1\nmissing\nb.scf\na.ab1\n"));

  EXPECT_THAT(project.names("0001"), ElementsAre("c.ab1", "missing", "a.ab1"));
}

TEST(ShardPlan, SaysThatAListCanNotBeOpened) {
  const PlannedProject project;
  addGood(project, {"a"});

  testing::internal::CaptureStderr();
  EXPECT_THROW(planShards(sized(project, 9, {"-l", "none"})), int);

  EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: can not open the file none\n");
  EXPECT_THAT(others(project), IsEmpty());
}

TEST(ShardPlan, RefusesAProjectThatTheConverterRefuses) {
  const PlannedProject project;
  addGood(project, {"a"});
  fs::remove("poly_dir");

  testing::internal::CaptureStderr();
  EXPECT_THROW(planShards(sized(project, 9)), int);

  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "ERROR: no such file or directory: " + project.absolute("poly_dir/") + "\n");
}

TEST(ShardPlan, LaysNothingWhenThereIsNothingToDo) {
  const PlannedProject project;
  EXPECT_THAT(planShards(sized(project, 9)).shards, IsEmpty());
  EXPECT_THAT(others(project), IsEmpty());

  addGood(project, {"a.ab1"});
  project.write("phd_dir/a.phd.1", "");
  EXPECT_THAT(planShards(counted(project, 9)).shards, IsEmpty());
  EXPECT_THAT(others(project), IsEmpty());
}

TEST(ShardPlan, RefusesWhileThereIsAShardFinishedOrNot) {
  const PlannedProject project;
  addGood(project, {"a", "b"});
  planShards(sized(project, 1));
  const std::string refusal =
      project.absolute("shards") + " holds shards: run and join them, or give -f to remove them";

  EXPECT_EQ(complaintOf([&] { planShards(sized(project, 9)); }), refusal);
  project.finish("0001", {}, {}, "");
  fs::remove_all("shards/0002");
  EXPECT_EQ(complaintOf([&] { planShards(sized(project, 9)); }), refusal);
  fs::remove("shards/0001/names");  // damaged
  EXPECT_EQ(complaintOf([&] { planShards(sized(project, 9)); }), refusal);

  EXPECT_EQ(project.read("shards/plan.tsv"), "shard\ttrace\n0001\ta\n0002\tb\n");
}

TEST(ShardPlan, RemovesTheShardsWithForce) {
  const PlannedProject project;
  addGood(project, {"a", "b"});
  planShards(sized(project, 1));
  project.finish("0001", {{"a.phd.1", "x"}}, {}, "");

  planShards(forced(sized(project, 9)));
  EXPECT_THAT(project.shards(), ElementsAre("0001"));
  EXPECT_THAT(project.entries("shards/0001"), ElementsAre("chromat_dir", "names", "settings"));
  EXPECT_THAT(others(project), ElementsAre("shards"));

  // Also where nothing is left to be planned.
  project.write("phd_dir/a.phd.1", "");
  project.write("phd_dir/b.phd.1", "");
  planShards(forced(sized(project, 9)));
  EXPECT_THAT(others(project), IsEmpty());
}

TEST(ShardPlan, TakesThePlaceOfEmptyFolders) {
  const PlannedProject project;
  addGood(project, {"a"});
  project.makeFolder("shards/0001/result");  // as an engine makes them

  planShards(sized(project, 9));

  EXPECT_THAT(project.entries("shards/0001"), ElementsAre("chromat_dir", "names", "settings"));
}

TEST(ShardPlan, TouchesNoFolderThatIsSomebodyElses) {
  const PlannedProject project;
  addGood(project, {"a"});
  project.write("shards/pottery/letter", "x");

  for (const PlanOptions& options : {sized(project, 9), forced(sized(project, 9))}) {
    EXPECT_EQ(complaintOf([&] { planShards(options); }),
              project.absolute("shards/pottery/letter") + " is not from a plan");
  }

  EXPECT_TRUE(project.has("shards/pottery/letter"));
  EXPECT_THAT(others(project), ElementsAre("shards"));
}

TEST(ShardPlan, RemovesWhatAKilledPlanHasLeft) {
  const PlannedProject project;
  addGood(project, {"a"});
  project.write(".quillet-shards-123-0/0001/names", "x");
  project.write(".quillet-shards-124-0/shards/0001/names", "x");

  planShards(sized(project, 9));

  EXPECT_THAT(others(project), ElementsAre("shards"));
}

TEST(ShardPlan, LeavesNothingWhenItFails) {
  const PlannedProject project;
  addGood(project, {"a"});
  const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit former;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
  const struct rlimit none { .rlim_cur = 0, .rlim_max = former.rlim_max };
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);  // no file can hold a byte

  const std::string complaint = complaintOf([&] { planShards(sized(project, 9)); });
  setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, formerHandler);

  EXPECT_THAT(complaint, StartsWith("can not write " + project.absolute(".quillet-shards-")));
  EXPECT_THAT(complaint, HasSubstr("/0001/names: File too large"));
  EXPECT_THAT(others(project), IsEmpty());
}

TEST(ShardPlan, KeepsTheShardsThatForceWouldRemoveWhenItFails) {
  const PlannedProject project;
  addGood(project, {"a"});
  planShards(sized(project, 9));
  const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit former;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
  const struct rlimit none { .rlim_cur = 0, .rlim_max = former.rlim_max };
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);

  EXPECT_NE(complaintOf([&] { planShards(forced(sized(project, 9))); }), "");
  setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, formerHandler);

  EXPECT_THAT(project.names("0001"), ElementsAre("a"));
  EXPECT_THAT(others(project), ElementsAre("shards"));
}

TEST(ShardPlan, SaysThatTheProjectIsReadOnly) {
  const PlannedProject project;
  addGood(project, {"a"});
  fs::permissions(".", fs::perms(0555));
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "the superuser writes everywhere";

  EXPECT_THAT(complaintOf([&] { planShards(sized(project, 9)); }),
              HasSubstr(": Permission denied"));
}

TEST(ShardPlan, LetsOneProcessPlanAtATime) {
  const PlannedProject project;
  addGood(project, {"a"});
  const std::string root = project.path().string() + '/';

  {
    const Quillet::ProjectLock other(root);
    EXPECT_EQ(complaintOf([&] { planShards(sized(project, 9)); }),
              "another quillet-shards plans or joins in " + root);
  }

  planShards(sized(project, 9));
  EXPECT_THAT(project.shards(), ElementsAre("0001"));
}

TEST(ShardPlan, OfARandomProjectCutsAsThePlainRuleDoes) {
  enum Kind { isGood, isPacked, isWithoutCalls, isPlaceholder, isInvalid, isDamaged };
  const std::string packed = gzipped(good);
  for (unsigned seed = 0; seed < 8; ++seed) {
    const PlannedProject project;
    std::mt19937 random(seed);
    // Names in the converter's order with their kind and sample. Some samples have two names.
    struct Trace {
      std::string name;
      std::string sample;
      Kind kind;
    };
    std::vector<Trace> traces;
    for (int number = 10; number < 50; ++number) {
      const auto kind = random() % 3 == 0 ? static_cast<Kind>(random() % 6) : isGood;
      const std::string sample = std::to_string(number);
      const bool isPackedName = kind == isPacked || kind == isDamaged;
      traces.push_back({sample + (isPackedName ? ".ab1.gz" : ".ab1"), sample, kind});
      if (random() % 5 == 0) traces.push_back({sample + ".scf", sample, isGood});
    }
    for (const Trace& trace : traces) {
      const std::string bytes[] = {good, packed, withoutCalls, placeholders, "text", packed + "x"};
      project.addTrace(trace.name, bytes[trace.kind]);
    }

    planShards(sized(project, 1));

    // Every allowed cut is made with a size of 1, and no other.
    std::vector<std::vector<std::string>> expected;
    for (std::size_t index = 0; index < traces.size(); ++index) {
      const bool isAllowed = traces[index].kind <= isPacked &&
                             (index == 0 || traces[index].sample != traces[index - 1].sample);
      if (index == 0 || isAllowed) expected.emplace_back();
      expected.back().push_back(traces[index].name);
    }
    std::vector<std::vector<std::string>> found;
    for (const std::string& shard : project.shards()) found.push_back(project.names(shard));
    EXPECT_EQ(found, expected) << seed;
  }
}
