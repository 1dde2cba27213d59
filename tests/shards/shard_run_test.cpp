#include "shards/shard_run.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "app/name_list.h"
#include "tests/shards/laid_shard.h"
#include "tests/support/trace_builder.h"

// A run over one shard gives what a plain run over the same names gives.

namespace {

namespace fs = std::filesystem;
using Quillet::ShardSettings;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using Names = std::vector<std::string>;

std::string trace(int seed) {
  const std::string letters = "ACGT";
  std::string bases;
  std::vector<int> qualities;
  for (int i = 0; i < 10 + seed % 50; ++i) {
    bases += letters[static_cast<std::size_t>((i * i + seed) % 4)];
    qualities.push_back(10 + (i + seed) % 50);
  }
  return AbifBuilder().bases(bases).qualities(qualities).build();
}

std::string withoutCalls() { return AbifBuilder().without("PBAS", 1).build(); }

std::string withoutQualities() {
  return AbifBuilder().bases(std::string(60, 'C')).qualities(std::vector<int>(60, 0)).build();
}

/// The bytes of gzipped traces with every damage, by name. A trace without calls after each of them
/// shows what it carried over.
std::map<std::string, std::string> gzippedTraces() {
  std::string wrongChecksum = gzipped(trace(3));
  wrongChecksum[wrongChecksum.size() - 8] ^= 1;
  const std::string packed = gzipped(trace(4));
  std::map<std::string, std::string> traces = {
      {"g01.ab1.gz", gzipped(trace(1))},
      {"g02.ab1.gz", gzipped(trace(2).substr(0, 300)) + gzipped(trace(2).substr(300))},
      {"g03.ab1.gz", wrongChecksum},
      {"g04.ab1.gz", packed.substr(0, packed.size() - 5)},
      {"g05.ab1.gz", packed.substr(0, packed.size() / 2)},
      {"g06.ab1.gz", gzipped(trace(5).substr(0, 300)) + trace(5).substr(300)},
      {"g07.ab1.gz", gzipped(trace(6)) + std::string(700, '\0')},
      {"g08.ab1.gz", gzipped(gzipped(trace(7)))},
      {"g09.ab1.gz", trace(8)},
      {"g10.ab1.gz", ""},
      {"g11.ab1.gz", gzipped("no trace")},
      {"g12.gz.gz", gzipped(trace(9))},
      {"g13.ab1.GZ", trace(10)},
      {"g14.ab1.GZ", gzipped(trace(10))},
      {"g15.ab1.gz", gzipped(withoutQualities())},
      {"g16.gz", gzipped(trace(11))},
      {"g17", trace(12)},
      {"g17.gz", gzipped(trace(13))},
      {"g18.ab1-1.ab1", trace(14)},
      {"g18.ab1.gz", gzipped(trace(15))},
      {"g19.ab1", "no trace"},
      {"g19.ab1.gz", gzipped(trace(16))},
      {"g20.ab1", "no trace"},
      {"g20.ab1.gz", "no trace"},
  };
  std::map<std::string, std::string> all = traces;
  for (const auto& [name, bytes] : traces) all[name + "~"] = withoutCalls();
  return all;
}

void addAll(const ProjectFolder& project) {
  for (const auto& [name, bytes] : gzippedTraces()) project.addTrace(name, bytes);
  project.addTrace(".hidden.ab1", trace(20));
  project.addTrace("folder/x.ab1", trace(21));
  project.addTrace("a b.ab1", trace(22));
  project.addTrace("-d.ab1", trace(23));
  project.addTrace("-f.ab1.gz", gzipped(trace(24)));
  project.addTrace("q'\"$(touch made)`touch made`;\\.ab1", trace(25));
  project.addTrace("tab\tand\nline feed.ab1", trace(26));
  project.addTrace("bad\nline feed.ab1", "no trace");
  project.addTrace("two.ab1", trace(27));
  project.addTrace("two.scf", ScfBuilder().build());
  project.addTrace("long" + std::string(251, 'g'), trace(28));
  project.addTrace("short" + std::string(240, 't') + ".ab1", trace(29));
  project.addTrace("w.ab1", withoutQualities());
  fs::create_symlink(project.path() / "chromat_dir/two.ab1", "chromat_dir/link.ab1");
  fs::create_symlink("nowhere", "chromat_dir/dangling.ab1");
  mkfifo("chromat_dir/pipe.ab1", 0600);
}

Names namesOf(const ProjectFolder& project) {
  return Quillet::namesInDirectory(project.at("chromat_dir"));
}

std::string longNameMessage(const ProjectFolder& project, const std::string& name) {
  return "quillet-shards: " + project.path().string() + "/chromat_dir/" + name +
         " gives nothing: its .phd.1 would have a name of more than 255 bytes\n";
}

/// Expects of a run over the shard what a plain run with these flags gives. `own` is the only
/// message of its own, which stands right before `next`.
void expectAsPlain(const ProjectFolder& project, const LaidShard& shard,
                   const std::vector<std::string>& runFlags,
                   const std::vector<std::string>& plainFlags, const std::string& own = {},
                   const std::string& next = {}) {
  const ProgramResult result = shard.run(runFlags);

  std::string messages = plainMessages(project, plainFlags);
  if (!own.empty()) {
    ASSERT_THAT(messages, HasSubstr(next));
    messages.insert(messages.find(next), own);
  }
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, messages);
  EXPECT_EQ(shard.messages(), messages);
  EXPECT_EQ(timelessFiles(shard.folder().resultPhds()), timelessFiles("phd_dir"));
  EXPECT_EQ(timelessFiles(shard.folder().resultPolys()), timelessFiles("poly_dir"));
  EXPECT_FALSE(fs::exists("made"));
}

class ShardRun : public testing::TestWithParam<Names> {};

TEST_P(ShardRun, GivesWhatAPlainRunGives) {
  const ProjectFolder project;
  addAll(project);
  Names plainFlags = GetParam();
  const bool keepsGzip = std::erase(plainFlags, "--keep-gzip") > 0;
  ShardSettings settings;
  settings.keepExtensions = std::ranges::count(plainFlags, "-s") > 0;
  settings.overwrite = std::ranges::count(plainFlags, "-o") > 0;
  const LaidShard shard(project, namesOf(project), settings);

  expectAsPlain(project, shard, keepsGzip ? Names{"--keep-gzip"} : Names{}, plainFlags,
                longNameMessage(project, "long" + std::string(251, 'g')),
                project.invalidTrace("pipe.ab1"));

  EXPECT_GT(timelessFiles("phd_dir").size(), 40U);
}

INSTANTIATE_TEST_SUITE_P(Flags, ShardRun,
                         testing::Values(Names{}, Names{"-s"}, Names{"-o"}, Names{"-o", "-s"},
                                         Names{"--keep-gzip"}, Names{"--keep-gzip", "-o"}));

class ListedShardRun : public testing::TestWithParam<Names> {};

TEST_P(ListedShardRun, GivesWhatAPlainRunWithTheListGives) {
  const ProjectFolder project;
  for (const auto& [name, bytes] : gzippedTraces()) project.addTrace(name, bytes);
  project.addTrace(".hidden.ab1", trace(20));
  project.addTrace("folder/x.ab1", trace(21));
  const Names names = {"g05.ab1.gz", "g18.ab1.gz",    "g03.ab1.gz",  "g03.ab1.gz~", "missing.ab1",
                       "g03.ab1.gz", "g05.ab1.gz",    "g01.ab1",     "g01.ab1.gz",  "g02.ab1",
                       "g17.gz",     "g17",           "missing.gz",  ".hidden.ab1", "folder",
                       "g12.gz.gz",  "g19.ab1.gz",    "g06.ab1.gz",  "g06.ab1.gz~", "-none",
                       "g11.ab1",    "g18.ab1-1.ab1", "g02.ab1.gz~", "g04.ab1",     "",
                       "g11.ab1.gz", "g16",           ".gz",         "g04.ab1.gz"};
  std::string list;
  for (const std::string& name : names) list += (name.empty() ? std::string(1, '\0') : name) + '\n';
  project.write("list", list);
  Names plainFlags = GetParam();
  const bool keepsGzip = std::erase(plainFlags, "--keep-gzip") > 0;
  plainFlags.insert(plainFlags.end(), {"-l", "list"});
  ShardSettings settings;
  settings.listed = true;
  settings.keepExtensions = std::ranges::count(plainFlags, "-s") > 0;
  settings.overwrite = std::ranges::count(plainFlags, "-o") > 0;
  const LaidShard shard(project, names, settings);

  expectAsPlain(project, shard, keepsGzip ? Names{"--keep-gzip"} : Names{}, plainFlags);

  EXPECT_GT(timelessFiles("phd_dir").size(), 10U);
}

INSTANTIATE_TEST_SUITE_P(Flags, ListedShardRun,
                         testing::Values(Names{}, Names{"-s"}, Names{"-o"}, Names{"-o", "-s"},
                                         Names{"--keep-gzip"}, Names{"--keep-gzip", "-o"}));

TEST(ShardRunNames, AGzThatNoShellTakesIsUnpackedOrLeftOut) {
  const ProjectFolder project;
  const Names names = {"a;touch made;.ab1.gz", "b $(touch made).gz", "b $(touch made).gz.gz",
                       "c.ab1"};
  for (const std::string& name : names) project.addGzipped(name, trace(1));
  project.addTrace("c.ab1", trace(2));
  const LaidShard shard(project, names);

  const ProgramResult result = shard.run();

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "quillet-shards: " + project.path().string() +
                            "/chromat_dir/b $(touch made).gz.gz is left out: gunzip would get a "
                            "path that is not for a shell\n");
  EXPECT_EQ(shard.messages(), result.err);
  EXPECT_THAT(project.entries("shards/01/result/phd_dir"),
              ElementsAreArray({"a;touch made;.phd.1", "b $(touch made).phd.1", "c.phd.1"}));
  EXPECT_FALSE(project.has("made"));
}

TEST(ShardRunNames, AScratchFolderThatNoShellTakesDoesNoHarm) {
  const ProjectFolder project;
  project.addGzipped("a.ab1.gz", trace(1));
  project.addGzipped("a.gz.gz", trace(1));
  project.makeFolder("scratch; touch made");
  const LaidShard shard(project, {"a.ab1.gz", "a.gz.gz"});

  const ProgramResult result = shard.run({"--scratch", "scratch; touch made"}, {});

  EXPECT_NE(result.status, 0) << "relative to the root folder";
  const ProgramResult second =
      shard.run({"--scratch", project.at("scratch; touch made").text()}, {});
  EXPECT_EQ(second.status, 0);
  EXPECT_THAT(second.err, HasSubstr("/chromat_dir/a.gz.gz is left out"));
  EXPECT_THAT(project.entries("shards/01/result/phd_dir"), ElementsAreArray({"a.phd.1"}));
  EXPECT_FALSE(project.has("made"));
  EXPECT_TRUE(fs::is_empty("scratch; touch made"));
}

TEST(ShardRunNames, MoreThan256MiBStayPacked) {
  const ProjectFolder project;
  project.addGzipped("a.ab1.gz", trace(1));
  // Many members, since 256 MiB would take long to pack.
  const std::string mebibyte = gzipped(std::string(std::size_t{1} << 20, '\0'));
  std::string packed = gzipped(trace(1));
  for (int i = 0; i < 256; ++i) packed += mebibyte;
  project.addTrace("b.ab1.gz", packed);
  const LaidShard shard(project, {"a.ab1.gz", "b.ab1.gz"});
  // The converter's own gunzip leaves a trace of its call.
  const std::map<std::string, std::string> environment = project.withGunzip(
      "echo \"$*\" >>" + std::string(project.at("calls").text()) + "\nexec gzip -d \"$@\"\n");

  const ProgramResult result = shard.run({}, environment);

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(project.entries("shards/01/result/phd_dir").size(), 2U);
  EXPECT_THAT(project.read("calls"), HasSubstr("/chromat_dir/b.ab1.gz"));
  EXPECT_THAT(project.read("calls"), testing::Not(HasSubstr("/chromat_dir/a.ab1.gz")));
}

TEST(ShardRunSettings, NoResourceFileOfTheUserCounts) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace(1));
  project.write(".quilletrc", "flag -s\nchromatdir nowhere\n");
  const LaidShard shard(project, {"a.ab1"});

  const ProgramResult result = shard.run({}, {{"PWD", project.path().string()},
                                              {"HOME", project.path().string()},
                                              {"TESSALY_PATH", project.path().string() + "/"}});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(project.entries("shards/01/result/phd_dir"), ElementsAreArray({"a.phd.1"}));
}

TEST(ShardRunSettings, ARelativePathBeginsInTheWorkingDirectory) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace(1));
  const LaidShard shard(project, {"a.ab1"});

  const ProgramResult result = runProgram(
      QUILLET_SHARDS_PROGRAM, {.folder = project.path().string(),
                               .arguments = {"run", "shards/01/", "--scratch", "edit_dir/"}});

  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(shard.folder().isDone());
  EXPECT_TRUE(fs::is_empty("edit_dir"));
}

TEST(ShardRunSettings, ThatDirectoryIsNotTheOneOfAnEarlierPwd) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace(1));
  const LaidShard shard(project, {"a.ab1"});

  const ProgramResult result = runProgram(
      QUILLET_SHARDS_PROGRAM, {.folder = project.path().string(),
                               .arguments = {"run", "shards/01", "--scratch", "edit_dir"},
                               .environment = {{"PWD", "/"}}});

  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(shard.folder().isDone());
}

TEST(ShardRunSettings, OptionsOfGunzipInTheEnvironmentDoWhatTheyDoInAPlainRun) {
  for (const char* options : {"-9", "-q", "-v"}) {
    const ProjectFolder project;
    project.addGzipped("a.gz.gz", trace(1));
    project.addTrace("b.ab1.gz", gzipped(trace(2)) + "garbage");
    project.addTrace("c.ab1.gz", "\x1f\x8b garbage");
    const LaidShard shard(project, {"a.gz.gz", "b.ab1.gz", "c.ab1.gz"});
    const std::map<std::string, std::string> environment = {{"GZIP", options}};

    const ProgramResult result = shard.run({}, environment);

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, plainMessages(project, {}, environment)) << options;
    EXPECT_EQ(timelessFiles(shard.folder().resultPhds()), timelessFiles("phd_dir"));
    EXPECT_EQ(timelessFiles("phd_dir").size(), 2U);
  }
}

TEST(ShardRunSettings, TheResultHasTheUsualPermissions) {
  for (const auto& [mask, expected] : {std::pair{0022, 0755}, {0002, 0775}, {0077, 0700}}) {
    const ProjectFolder project;
    project.addTrace("a.ab1", trace(1));
    const LaidShard shard(project, {"a.ab1"});
    const mode_t former = umask(static_cast<mode_t>(mask));
    EXPECT_EQ(shard.run().status, 0);
    umask(former);

    for (const char* folder : {"", "/phd_dir", "/poly_dir"}) {
      const fs::path path = shard.folder().result() + folder;
      EXPECT_EQ(static_cast<int>(fs::status(path).permissions()), expected) << folder;
    }
    EXPECT_EQ(static_cast<int>(fs::status(shard.folder().messages()).permissions()),
              expected & 0666);
  }
}

}  // namespace
