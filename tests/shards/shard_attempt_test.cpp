#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/shards/laid_shard.h"
#include "tests/shards/started_run.h"
#include "tests/support/ordinary_user.h"

// Attempts that fail, are killed, or meet others: each gives a whole result or none.

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Names = std::vector<std::string>;

const Names doneContent = {"chromat_dir",
                           "chromat_dir/a.ab1",
                           "chromat_dir/b.ab1.gz",
                           "names",
                           "result",
                           "result/messages",
                           "result/phd_dir",
                           "result/phd_dir/a.phd.1",
                           "result/phd_dir/b.phd.1",
                           "result/poly_dir",
                           "result/poly_dir/a.poly",
                           "result/poly_dir/b.poly",
                           "settings"};

/// A project of two traces with a shard of both.
class ShardAttempt : public testing::Test {
 protected:
  ShardAttempt() {
    project_.addTrace("a.ab1", anyTrace());
    project_.addGzipped("b.ab1.gz", anyTrace());
    lay();
  }

  void lay(const Names& names = {"a.ab1", "b.ab1.gz"}) { shard_.emplace(project_, names); }
  const LaidShard& shard() const { return *shard_; }
  std::string at(const std::string& name) const { return project_.at(name).text(); }

  /// The shard's program in a folder without the converter, and a shell script as the converter.
  /// There, $quillet is the real one.
  ProgramResult runWithConverter(const std::string& script, bool isBeside = true) const {
    const std::string folder = at("programs");
    fs::create_directories(folder);
    fs::copy_file(QUILLET_SHARDS_PROGRAM, folder + "/quillet-shards",
                  fs::copy_options::overwrite_existing);
    const std::string converter = isBeside ? "programs/quillet" : "found/quillet";
    project_.write(converter, "#!/bin/sh\nquillet=" QUILLET_PROGRAM "\n" + script);
    fs::permissions(at(converter), fs::perms::owner_all);
    const std::string path = at("found") + ':' + std::getenv("PATH");
    return runProgram(
        folder + "/quillet-shards",
        {.folder = "/", .arguments = {"run", shard().path()}, .environment = {{"PATH", path}}});
  }

  /// Starts a run whose converter stops in gunzip until the file "go" is there, and waits for that.
  /// That gunzip ends by itself once the file "started" has gone, with the project at the latest.
  std::unique_ptr<StartedRun> startStopped(Names flags = {"--keep-gzip"}) {
    const std::map<std::string, std::string> environment = project_.withGunzip(
        "echo $$ >" + at("id") + "\n>" + at("started") + "\nwhile [ ! -e " + at("go") +
        " ] && [ -e " + at("started") + " ]; do sleep 0.01; done\nexec gzip -d \"$@\"\n");
    flags.insert(flags.begin(), {"run", shard().path()});
    auto run = std::make_unique<StartedRun>(
        QUILLET_SHARDS_PROGRAM,
        ProgramRun{.folder = "/", .arguments = flags, .environment = environment});
    EXPECT_TRUE(appears(at("started")));
    return run;
  }
  void letGo() const { project_.write("go", ""); }

  void expectDone() const {
    EXPECT_EQ(shard().content(), doneContent);
    EXPECT_EQ(shard().messages(), "");
    ASSERT_EQ(project_.run().status, 0);
    EXPECT_EQ(timelessFiles(shard().folder().resultPhds()), timelessFiles("phd_dir"));
    EXPECT_EQ(timelessFiles(shard().folder().resultPolys()), timelessFiles("poly_dir"));
  }
  void expectNothingLeft() const { EXPECT_EQ(shard().content(), laidContent(shard())); }
  void expectErrorWhenGone(const std::string& name) const {
    const std::string bytes = project_.read("chromat_dir/" + name);
    fs::remove(at("chromat_dir/" + name));

    const ProgramResult result = shard().run();

    EXPECT_EQ(result.status, 1) << name;
    EXPECT_EQ(result.err, "quillet-shards: " + at("chromat_dir/" + name) +
                              " has gone since the plan: No such file or directory\n");
    expectNothingLeft();
    project_.addTrace(name, bytes);
  }

  const ProjectFolder project_;

 private:
  std::optional<LaidShard> shard_;
};

/// How many processes named `quillet` work below a folder.
int convertersIn(const std::string& folder) {
  int count = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    std::error_code error;
    const fs::path program = fs::read_symlink(entry.path() / "exe", error);
    const std::string place = error ? "" : fs::read_symlink(entry.path() / "cwd", error).string();
    if (!error && program == QUILLET_PROGRAM && place.starts_with(folder)) ++count;
  }
  return count;
}

/// The names of the attempts in a folder.
Names attemptsIn(const std::string& folder) {
  Names names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename();
    if (name.find("attempt-") != std::string::npos) names.push_back(name);
  }
  return names;
}

TEST_F(ShardAttempt, AWholeRunLeavesItsResultAlone) {
  EXPECT_EQ(shard().run().status, 0);

  expectDone();
}

TEST_F(ShardAttempt, AShardThatIsDoneIsLeftAlone) {
  ASSERT_EQ(shard().run().status, 0);
  project_.write("shards/01/result/messages", "said before");
  fs::remove(project_.path() / "chromat_dir/a.ab1");

  const ProgramResult result = shard().run();

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(shard().messages(), "said before");
  EXPECT_EQ(shard().content(), doneContent);
}

TEST_F(ShardAttempt, AResultFolderWithoutMessagesIsReplaced) {
  for (const char* left : {"", "/phd_dir", "/phd_dir/stale.phd.1"}) {
    fs::remove_all(shard().folder().result());
    fs::create_directories(shard().folder().result() + left);

    EXPECT_EQ(shard().run().status, 0) << left;

    EXPECT_EQ(shard().content(), doneContent) << left;
  }
}

TEST_F(ShardAttempt, AFileInPlaceOfTheResultIsAnError) {
  project_.write("shards/01/result", "");

  const ProgramResult result = shard().run();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("quillet-shards: " + shard().path()));
  EXPECT_EQ(attemptsIn(shard().path()), Names{});
}

TEST_F(ShardAttempt, ATraceThatHasGoneIsAnError) {
  expectErrorWhenGone("a.ab1");
  expectErrorWhenGone("b.ab1.gz");
}

TEST_F(ShardAttempt, ALinkThatHasGoneIsAnError) {
  fs::remove(shard().folder().chromats() + "/a.ab1");

  const ProgramResult result = shard().run();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("there is no link " + shard().path() + "/chromat_dir/a.ab1"));
  expectNothingLeft();
}

/// A shard of which no trace is packed: an attempt takes the shard's own links.
class UnpackedShardAttempt : public ShardAttempt {
 protected:
  UnpackedShardAttempt() {
    fs::remove_all("shards");
    project_.addTrace("c.ab1", anyTrace());
    lay({"a.ab1", "c.ab1"});
  }

  std::string link(const std::string& name) const {
    return shard().folder().chromats() + '/' + name;
  }
};

TEST_F(UnpackedShardAttempt, ATraceThatHasGoneIsAnError) {
  expectErrorWhenGone("a.ab1");
  expectErrorWhenGone("c.ab1");
}

TEST_F(UnpackedShardAttempt, ALinkThatHasGoneIsAnErrorWhateverIsThereInstead) {
  for (const bool isReplaced : {false, true}) {
    fs::remove(link("c.ab1"));
    if (isReplaced) fs::create_symlink(at("chromat_dir/c.ab1"), link("d.ab1"));

    const ProgramResult result = shard().run();

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "quillet-shards: there is no link " + link("c.ab1") + '\n');
    EXPECT_EQ(shard().content(), laidContent(shard())) << isReplaced;
  }
}

TEST_F(UnpackedShardAttempt, AFileInPlaceOfALinkIsAnError) {
  fs::remove(link("c.ab1"));
  project_.write("shards/01/chromat_dir/c.ab1", anyTrace());

  const ProgramResult result = shard().run();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "quillet-shards: there is no link " + link("c.ab1") + '\n');
}

TEST_F(UnpackedShardAttempt, TheFolderOfLinksThatHasGoneIsAnError) {
  fs::remove_all(shard().folder().chromats());

  const ProgramResult result = shard().run();

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "quillet-shards: there is no link " + link("a.ab1") + '\n');
}

const std::string onlyThroughALink = "[ -L chromat_dir ] || exit 3; exec $quillet \"$@\"\n";

TEST_F(UnpackedShardAttempt, TakesTheFolderOfLinksItself) {
  EXPECT_EQ(runWithConverter(onlyThroughALink).status, 0);
}

TEST_F(ShardAttempt, OfPackedTracesOrWithAListHasAFolderOfItsOwn) {
  EXPECT_THAT(runWithConverter(onlyThroughALink).err, HasSubstr("ended with status 3"));

  Quillet::ShardSettings settings;
  settings.listed = true;
  fs::remove_all("shards");
  const LaidShard listed(project_, {"a.ab1"}, settings);
  EXPECT_THAT(runWithConverter(onlyThroughALink).err, HasSubstr("ended with status 3"));
}

TEST_F(UnpackedShardAttempt, ALinkThatComesDuringTheRunIsAnError) {
  const ProgramResult result = runWithConverter("ln -s " + at("chromat_dir/a.ab1") + ' ' +
                                                link("foreign.ab1") + "\nexec $quillet \"$@\"\n");

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "quillet-shards: there are other files than before in " +
                            shard().folder().chromats() + '\n');
  EXPECT_FALSE(shard().folder().isDone());
}

TEST_F(UnpackedShardAttempt, AShardThatIsRemovedDuringTheRunGetsNoResult) {
  const std::string remove = "mv " + at("shards") + ' ' + at("joined") + "; rm -r " + at("joined");
  for (const std::string& other : {std::string(), "; cp -a " + at("kept") + ' ' + at("shards")}) {
    fs::remove_all("kept");
    fs::copy("shards", "kept", fs::copy_options::recursive | fs::copy_options::copy_symlinks);

    const ProgramResult result = runWithConverter(remove + other + "\nexec $quillet \"$@\"\n");

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "quillet-shards: " + shard().path() +
                              " has been removed: No such file or directory\n");
    EXPECT_FALSE(shard().folder().isDone());
    EXPECT_EQ(fs::exists("shards"), !other.empty());
    if (other.empty()) fs::rename("kept", "shards");
  }
}

TEST_F(UnpackedShardAttempt, WhatElseLiesBesideTheLinksIsNotConverted) {
  fs::create_symlink(at("chromat_dir/a.ab1"), link("foreign.ab1"));

  EXPECT_EQ(shard().run().status, 0);

  EXPECT_THAT(project_.entries("shards/01/result/phd_dir"), ElementsAre("a.phd.1", "c.phd.1"));
}

TEST_F(UnpackedShardAttempt, LinksOutliveTheAttemptThatTookThem) {
  EXPECT_EQ(runWithConverter("exit 3\n").status, 1);
  expectNothingLeft();

  EXPECT_EQ(shard().run().status, 0);

  EXPECT_EQ(fs::read_symlink(link("a.ab1")), at("chromat_dir/a.ab1"));
  EXPECT_EQ(fs::read_symlink(link("c.ab1")), at("chromat_dir/c.ab1"));
}

TEST_F(ShardAttempt, ATraceThatGoesDuringTheRunIsAnError) {
  const ProgramResult result =
      runWithConverter("rm " + at("chromat_dir/a.ab1") + "\nexec $quillet \"$@\"\n");

  EXPECT_EQ(result.status, 1);
  expectNothingLeft();
}

TEST_F(ShardAttempt, ATraceThatGoesDuringARunWithAListIsAnErrorAsWell) {
  Quillet::ShardSettings settings;
  settings.listed = true;
  fs::remove_all("shards");
  const LaidShard listed(project_, {"a.ab1", "b.ab1.gz", "missing.ab1"}, settings);

  const ProgramResult result =
      runWithConverter("rm " + at("chromat_dir/a.ab1") + "\nexec $quillet \"$@\"\n");

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("/chromat_dir/a.ab1 has gone since the plan"));
  EXPECT_EQ(listed.content(), laidContent(listed));
}

TEST_F(ShardAttempt, AConverterThatFailsIsAnError) {
  const ProgramResult result = runWithConverter("echo out of order; exit 3\n");

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillet-shards: " + shard().path() + ": quillet ended with status 3:\nout of order\n");
  expectNothingLeft();
}

TEST_F(ShardAttempt, AConverterThatFailsIsAnErrorAlsoUnderAnIgnoredSigchld) {
  const std::string wholeButFailed = "$quillet \"$@\"; exit 3\n";
  ASSERT_EQ(runWithConverter(wholeButFailed).status, 1);

  const ProgramResult result =
      runProgram("env", {.folder = "/",
                         .arguments = {"--ignore-signal=CHLD", at("programs/quillet-shards"), "run",
                                       shard().path()}});

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("quillet ended with status 3"));
  expectNothingLeft();
}

TEST_F(ShardAttempt, ResultsThatAreNotWholeAreAnError) {
  const std::pair<std::string, std::string> damages[] = {
      {"truncate -s -1 phd_dir/a.phd.1", "1 of 2 samples, such as a"},
      {"truncate -s -1 poly_dir/b.poly", "1 of 2 samples, such as b"},
      {"rm poly_dir/a.poly", "1 of 2 samples, such as a"},
      {"rm */b.*", "1 of 2 samples, such as b"},
      {"rm */*.p*", "2 of 2 samples, such as a"},
      {"truncate -s 0 */a.p*", "1 of 2 samples, such as a"},
      {"mv poly_dir/a.poly poly_dir/b.poly", "2 of 2 samples, such as a"},
  };
  for (const auto& [damage, samples] : damages) {
    const ProgramResult result = runWithConverter("$quillet \"$@\" && " + damage + "\n");

    EXPECT_EQ(result.status, 1) << damage;
    EXPECT_EQ(result.err, "quillet-shards: " + shard().path() +
                              ": no whole results and no message for " + samples +
                              ". Is there room on the disk?\n");
    expectNothingLeft();
  }
}

TEST_F(ShardAttempt, AMessageOfOneNameDoesNotStandForAnother) {
  EXPECT_EQ(runWithConverter("rm chromat_dir/b.ab1; exec $quillet \"$@\"\n").status, 1);
  EXPECT_EQ(runWithConverter("rm chromat_dir/b.ab1; $quillet \"$@\"\n"
                             "echo \"ERROR: invalid trace file $2/chromat_dir/b.ab - skipping.\"\n")
                .status,
            1);
  EXPECT_EQ(
      runWithConverter("rm chromat_dir/b.ab1; $quillet \"$@\"\n"
                       "echo \"ERROR: invalid trace file $2/chromat_dir/b.ab1 - skipping.\"\n")
          .status,
      0);
}

TEST_F(ShardAttempt, TheConverterIsTheOneBesideTheProgramOrElseInPath) {
  EXPECT_EQ(runWithConverter("exec $quillet \"$@\"\n", false).status, 0);
  expectDone();
  fs::remove_all(shard().folder().result());

  EXPECT_EQ(runWithConverter("exit 7\n", true).status, 1) << "both are there now";
}

TEST_F(ShardAttempt, AFolderBesideTheProgramIsNoConverter) {
  fs::create_directories(at("programs/quillet"));

  EXPECT_EQ(runWithConverter("exec $quillet \"$@\"\n", false).status, 0);
  expectDone();
}

TEST_F(ShardAttempt, AShardThatIsRemovedDuringTheRunIsNamedAsTheReason) {
  const ProgramResult result =
      runWithConverter("mv " + at("shards") + ' ' + at("joined") + "; rm -r " + at("joined") +
                       "; echo strange; exit 3\n");

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillet-shards: " + shard().path() + " has been removed: No such file or directory\n");
}

TEST_F(ShardAttempt, WhatIsNoShardIsAnError) {
  for (const std::string& path : {at("nowhere"), at("chromat_dir"), std::string("")}) {
    const ProgramResult result =
        runProgram(QUILLET_SHARDS_PROGRAM, {.folder = "/", .arguments = {"run", path}});

    EXPECT_EQ(result.status, 1) << path;
    EXPECT_THAT(result.err, HasSubstr("quillet-shards: "));
  }
  EXPECT_THAT(project_.entries("chromat_dir"), ElementsAre("a.ab1", "b.ab1.gz"));
}

TEST_F(ShardAttempt, AFolderThatIsNotWriteableIsAnError) {
  fs::permissions(project_.path(), fs::perms{0755});
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "every folder is writeable to this user";
  if (!OrdinaryUser::mayRun(QUILLET_SHARDS_PROGRAM)) {
    GTEST_SKIP() << "an ordinary user may not run the program where it lies";
  }

  const ProgramResult result = shard().run();

  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("can not make " + shard().path()));
  expectNothingLeft();
}

TEST_F(ShardAttempt, AFileThatCanNotBeWrittenIsAnError) {
  // b.ab1 is longer than 512 bytes: it can not be unpacked. With --keep-gzip the converter fails.
  for (const char* flag : {"", "--keep-gzip"}) {
    const ProgramResult result = runProgram(
        "sh",
        {.folder = "/",
         .arguments = {"-c", std::string("ulimit -c 0; ulimit -f 1; exec ") +
                                 QUILLET_SHARDS_PROGRAM + " run " + shard().path() + ' ' + flag}});

    EXPECT_EQ(result.status, 1) << flag;
    EXPECT_THAT(result.err, HasSubstr("quillet-shards: ")) << flag;
    expectNothingLeft();
  }
}

TEST_F(ShardAttempt, AttemptsThatNobodyUsesAreRemoved) {
  for (const std::string name : {"attempt-aaaaaa", "attempt-bbbbbb", "gone-cccccc"}) {
    project_.write("shards/01/" + name + "/phd_dir/x.phd.1", "");
  }
  project_.write("shards/01/attempt-aaaaaa/lock", "");
  project_.write("shards/01/attempt-dddddd/lock", "");
  const int used = open("shards/01/attempt-dddddd/lock", O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(used, LOCK_EX), 0);
  project_.write("shards/01/attempt-other", "");

  EXPECT_EQ(shard().run().status, 0);

  EXPECT_THAT(attemptsIn(shard().path()),
              testing::UnorderedElementsAre("attempt-dddddd", "attempt-other"));
  EXPECT_FALSE(project_.has("shards/01/gone-cccccc"));
  close(used);
}

TEST_F(ShardAttempt, AttemptsThatWereBegunLongAgoAreRemoved) {
  for (const std::string folder : {"shards/01/", "edit_dir/quillet-"}) {
    for (const char* name : {"begun-aaaaaa", "begun-bbbbbb", "begun-other"}) {
      project_.write(folder + name + "/lock", "");
      const auto age = std::chrono::minutes(name == std::string("begun-bbbbbb") ? 50 : 70);
      fs::last_write_time(at(folder + name), fs::file_time_type::clock::now() - age);
    }
  }

  EXPECT_EQ(shard().run({"--scratch", at("edit_dir")}).status, 0);

  EXPECT_THAT(project_.entries("edit_dir"),
              testing::UnorderedElementsAre("quillet-begun-bbbbbb", "quillet-begun-other"));
  EXPECT_FALSE(project_.has("shards/01/begun-aaaaaa"));
  EXPECT_TRUE(project_.has("shards/01/begun-bbbbbb"));
}

TEST_F(ShardAttempt, OfAScratchFolderOnlyOurOwnIsRemoved) {
  for (const std::string name : {"attempt-aaaaaa", "gone-cccccc", "quillet-attempt-aaaaaa",
                                 "quillet-gone-cccccc", "quillet-attempt-longer"}) {
    project_.write("edit_dir/" + name + "/file", "");
  }

  EXPECT_EQ(shard().run({"--scratch", at("edit_dir")}).status, 0);

  EXPECT_THAT(project_.entries("edit_dir"), ElementsAre("attempt-aaaaaa", "gone-cccccc"));
  expectDone();
}

class EndingSignal : public ShardAttempt, public testing::WithParamInterface<int> {};

TEST_P(EndingSignal, RemovesTheAttemptAndStopsTheConverter) {
  for (const Names& flags : {Names{"--keep-gzip"}, Names{"--scratch", at("edit_dir")}}) {
    // Damaged, so that the program itself calls gunzip when it does not leave that to the
    // converter.
    project_.addTrace("b.ab1.gz", gzipped(anyTrace()) + "x");
    fs::remove(at("started"));
    const auto run = startStopped(flags);
    const pid_t gunzip = std::stoi(project_.read("id"));
    EXPECT_EQ(attemptsIn(shard().path()).size() + attemptsIn(at("edit_dir")).size(), 1U);

    run->signal(GetParam());

    EXPECT_EQ(run->wait(), 128 + GetParam());
    expectNothingLeft();
    EXPECT_TRUE(fs::is_empty("edit_dir"));
    for (int tries = 0; kill(gunzip, 0) == 0 && tries < 500; ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(kill(gunzip, 0) != 0 && errno == ESRCH);
  }
}

INSTANTIATE_TEST_SUITE_P(Signals, EndingSignal, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGXCPU));

TEST_F(ShardAttempt, AnIgnoredSignalStaysIgnored) {
  const auto former = std::signal(SIGHUP, SIG_IGN);
  const auto run = startStopped();
  std::signal(SIGHUP, former);

  run->signal(SIGHUP);
  letGo();

  EXPECT_EQ(run->wait(), 0);
  expectDone();
}

TEST_F(ShardAttempt, AKilledRunTakesItsConverterAlongAndIsClearedAwayByTheNext) {
  for (const Names& flags :
       {Names{"--keep-gzip"}, Names{"--keep-gzip", "--scratch", at("edit_dir")}}) {
    fs::remove(at("started"));
    const auto run = startStopped(flags);

    EXPECT_EQ(convertersIn(project_.path()), 1);

    run->signal(SIGKILL);

    EXPECT_EQ(run->wait(), 128 + SIGKILL);
    for (int tries = 0; convertersIn(project_.path()) > 0 && tries < 500; ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(convertersIn(project_.path()), 0);
    EXPECT_FALSE(shard().folder().isDone());
    EXPECT_EQ(attemptsIn(shard().path()).size() + attemptsIn(at("edit_dir")).size(), 1U);
    EXPECT_EQ(shard().run({"--scratch", at("edit_dir")}).status, 0);
    EXPECT_EQ(shard().content(), doneContent);
    EXPECT_TRUE(fs::is_empty("edit_dir"));
    fs::remove_all(shard().folder().result());
  }
}

/// Where a second attempt meets a first one that was stopped: in the shard, or in a scratch folder.
class LateAttempt : public ShardAttempt, public testing::WithParamInterface<const char*> {
 protected:
  LateAttempt() {
    if (*GetParam() == '\0') return;
    place_ = GetParam() == std::string("near") ? at("edit_dir") : otherFileSystem();
    flags_ = {"--keep-gzip", "--scratch", place_};
  }
  ~LateAttempt() override {
    if (GetParam() == std::string("far")) fs::remove_all(place_);
  }

  std::string otherFileSystem() const {
    std::string folder = "/dev/shm/quillet-test-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return {};
    return folder;
  }
  bool canRun() const {
    struct stat here;
    struct stat there;
    return GetParam() != std::string("far") ||
           (stat(".", &here) == 0 && stat(place_.c_str(), &there) == 0 &&
            here.st_dev != there.st_dev);
  }
  void expectScratchIsEmpty() const { EXPECT_TRUE(place_.empty() || fs::is_empty(place_)); }

  std::string place_;
  Names flags_ = {"--keep-gzip"};
};

TEST_P(LateAttempt, FindsNoOtherAndMakesTheResult) {
  if (!canRun()) GTEST_SKIP() << "/dev/shm is no other file system";

  EXPECT_EQ(shard().run(flags_).status, 0);

  expectDone();
  expectScratchIsEmpty();
}

TEST_P(LateAttempt, LeavesTheResultOfTheFirstAlone) {
  if (!canRun()) GTEST_SKIP() << "/dev/shm is no other file system";
  const auto late = startStopped(flags_);
  ASSERT_EQ(shard().run().status, 0);
  project_.write("shards/01/result/messages", "of the first");

  letGo();

  EXPECT_EQ(late->wait(), 0);
  EXPECT_EQ(shard().messages(), "of the first");
  EXPECT_EQ(shard().content(), doneContent);
  expectScratchIsEmpty();
}

TEST_P(LateAttempt, MakesNothingOnceTheShardHasBeenRemoved) {
  if (!canRun()) GTEST_SKIP() << "/dev/shm is no other file system";
  const auto late = startStopped(flags_);
  fs::rename("shards/01", "shards/joined");
  fs::remove_all("shards");

  letGo();

  EXPECT_EQ(late->wait(), 1);
  EXPECT_FALSE(project_.has("shards"));
  expectScratchIsEmpty();
}

TEST_P(LateAttempt, MakesNothingInAShardThatWasOnlyRenamed) {
  if (!canRun()) GTEST_SKIP() << "/dev/shm is no other file system";
  const auto late = startStopped(flags_);
  fs::rename("shards/01", "shards/joined");

  letGo();

  EXPECT_EQ(late->wait(), 1);
  EXPECT_THAT(project_.entries("shards"), ElementsAre("joined"));
  EXPECT_FALSE(project_.has("shards/joined/result"));
  expectScratchIsEmpty();
}

TEST_P(LateAttempt, MakesNothingInAShardOfALaterPlan) {
  if (!canRun()) GTEST_SKIP() << "/dev/shm is no other file system";
  const auto late = startStopped(flags_);
  fs::rename("shards", "gone");
  fs::remove_all("gone");
  project_.addTrace("c.ab1", anyTrace());
  const LaidShard later(project_, {"c.ab1"});

  letGo();

  EXPECT_EQ(late->wait(), 1);
  EXPECT_EQ(later.content(), laidContent(later));
  expectScratchIsEmpty();
}

INSTANTIATE_TEST_SUITE_P(Places, LateAttempt, testing::Values("", "near", "far"));

}  // namespace
