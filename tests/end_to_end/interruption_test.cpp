#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// A run that is stopped, or whose disk fills up, keeps the results that it has written before.

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

using Names = std::vector<std::string>;

std::string sampleName(int number) {
  return "s" + std::string(number < 10 ? "0" : "") + std::to_string(number);
}

/// Adds `count` different traces and returns their samples: "s00", "s01"...
Names addTraces(const ProjectFolder& project, int count) {
  Names names;
  for (int i = 0; i < count; ++i) {
    names.push_back(sampleName(i));
    const auto seed = static_cast<std::uint32_t>(i);
    project.addTrace(names.back() + ".ab1", believableTrace(seed, 200 + 10 * i).abif().build());
  }
  return names;
}

/// A running program, as a child process.
class StartedRun {
 public:
  /// Converts the names in the file "names". PATH is the caller's.
  StartedRun(const ProjectFolder& project, const Names& arguments) {
    std::vector<std::string> texts{QUILLET_PROGRAM};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& text : texts) argv.push_back(text.data());
    argv.push_back(nullptr);
    const std::string folder = project.path().string();
    std::string pwd = "PWD=" + folder;
    std::string path = "PATH=" + folder + "/bin:/usr/bin:/bin";
    char* envp[] = {pwd.data(), path.data(), nullptr};

    child_ = fork();
    if (child_ < 0) throw std::runtime_error("can not fork");
    if (child_ == 0) {
      const int nothing = open("/dev/null", O_RDWR);
      for (int stream = 0; stream < 3; ++stream) dup2(nothing, stream);
      if (chdir(folder.c_str()) != 0) _exit(126);
      execve(argv[0], argv.data(), envp);
      _exit(127);
    }
  }
  ~StartedRun() {
    if (child_ > 0) stop(SIGKILL);
  }
  StartedRun(const StartedRun&) = delete;
  StartedRun& operator=(const StartedRun&) = delete;

  /// Sends the signal and waits for the end. True when the signal has ended the run.
  bool stop(int signalNumber) {
    kill(child_, signalNumber);
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = -1;
    return WIFSIGNALED(status) && WTERMSIG(status) == signalNumber;
  }

 private:
  pid_t child_;
};

/// Waits until the project has the file, for 20 seconds at most. True when it has.
bool waitFor(const ProjectFolder& project, const std::string& file) {
  for (int tries = 0; tries < 20'000 && !project.has(file); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return project.has(file);
}

/// The results of an undisturbed run over the same traces in another project.
class WholeResults {
 public:
  explicit WholeResults(const ProjectFolder& traces) {
    std::filesystem::copy(traces.path() / "chromat_dir", project_.path() / "chromat_dir",
                          std::filesystem::copy_options::recursive);
    if (project_.run().status != 0) throw std::runtime_error("no results to compare with");
  }

  /// The .phd.1 file of a run that began at `time`.
  std::string phd(const std::string& sample, const std::string& time) const {
    std::string text = project_.timelessPhd(sample);
    return text.replace(text.find("@TIME@"), 6, time);
  }
  std::string poly(const std::string& sample) const { return project_.poly(sample); }

 private:
  ProjectFolder project_;
};

bool startsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

// A run that is stopped. The names repeat, so that the run does not end on its own. With
// -overwrite, only the sample that is being written can be cut.

constexpr int stoppedSampleCount = 20;

std::string namesOverAndOver(const Names& names) {
  std::string list;
  for (int round = 0; round < 20'000; ++round) {
    for (const std::string& name : names) list += name + ".ab1\n";
  }
  return list;
}

/// The samples with a file that is not whole.
Names cutSamples(const ProjectFolder& project, const Names& names, const WholeResults& whole) {
  Names cut;
  for (const std::string& name : names) {
    const std::string phd = project.phd(name);
    if (phd != whole.phd(name, project.phdTime(name)) || project.poly(name) != whole.poly(name)) {
      cut.push_back(name);
    }
  }
  return cut;
}

void expectOneCutSampleAtMost(int signalNumber) {
  const ProjectFolder project;
  const Names names = addTraces(project, stoppedSampleCount);
  const WholeResults whole(project);
  project.write("names", namesOverAndOver(names));
  std::mt19937 engine(static_cast<std::uint32_t>(signalNumber));

  for (int round = 0; round < 5; ++round) {
    for (const std::string& name : names) {
      std::filesystem::remove(project.path() / "phd_dir" / (name + ".phd.1"));
      std::filesystem::remove(project.path() / "poly_dir" / (name + ".poly"));
    }
    StartedRun run(project, {"-o", "-l", "names"});
    // Once the last sample has a .poly file, all samples have been written once.
    ASSERT_TRUE(waitFor(project, "poly_dir/" + names.back() + ".poly"));
    std::this_thread::sleep_for(std::chrono::microseconds(engine() % 30'000));

    ASSERT_TRUE(run.stop(signalNumber));

    EXPECT_THAT(cutSamples(project, names, whole), SizeIs(testing::Le(1U)));
  }
}

TEST(StoppedRun, ByATerminationSignalCutsTheSampleInHandAtMost) {
  expectOneCutSampleAtMost(SIGTERM);
}

TEST(StoppedRun, ByAKillSignalCutsTheSampleInHandAtMost) { expectOneCutSampleAtMost(SIGKILL); }

TEST(StoppedRun, WhileATraceIsUnpackedHasWrittenAllBeforeItAndNothingOfIt) {
  const ProjectFolder project;
  Names names = addTraces(project, 5);
  const WholeResults whole(project);
  project.addTrace("t.ab1.gz", "packed");
  project.addTrace("u.ab1", AbifBuilder().build());
  project.withGunzip("echo > unpacking\nexec sleep 20\n");
  StartedRun run(project, {});
  ASSERT_TRUE(waitFor(project, "unpacking"));

  ASSERT_TRUE(run.stop(SIGKILL));

  EXPECT_THAT(cutSamples(project, names, whole), SizeIs(0));
  EXPECT_THAT(project.entries("phd_dir"), SizeIs(5));
  EXPECT_THAT(project.entries("poly_dir"), SizeIs(5));
}

TEST(StoppedRun, IsContinuedAfterTheResultsThatExist) {
  const ProjectFolder project;
  const Names names = addTraces(project, 5);
  const WholeResults whole(project);
  for (const std::string& name : {names[0], names[1]}) {
    project.write("phd_dir/" + name + ".phd.1", "written before");
  }

  ASSERT_EQ(project.run().status, 0);

  EXPECT_EQ(project.phd(names[0]), "written before");
  EXPECT_EQ(project.phd(names[1]), "written before");
  EXPECT_EQ(cutSamples(project, names, whole), (Names{names[0], names[1]}));
}

// A disk that fills up.

/// A small file system mounted over a folder while the object lives.
class SmallDisk {
 public:
  /// `options` are those of mount(8) for a tmpfs.
  SmallDisk(std::filesystem::path place, const char* options)
      : place_(std::move(place)),
        mounted_(mount("quillet-test", place_.c_str(), "tmpfs", 0, options) == 0) {}
  ~SmallDisk() {
    if (mounted_) umount2(place_.c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  bool isThere() const { return mounted_; }

 private:
  std::filesystem::path place_;
  bool mounted_;
};

/// Expects whole files first and then only cut ones. A cut file is a prefix of the whole one.
void expectWholeThenCut(const Names& texts, const Names& wholeTexts) {
  bool cut = false;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_TRUE(startsWith(wholeTexts[i], texts[i])) << i;
    EXPECT_TRUE(i > 0 || texts[i] == wholeTexts[i]) << "not even the first is whole";
    if (texts[i] != wholeTexts[i]) cut = true;
    EXPECT_EQ(texts[i] == wholeTexts[i], !cut) << i;
  }
  EXPECT_TRUE(cut) << "the disk was large enough";
}

TEST(FullDisk, LeavesEarlierResultsWholeAndTheRunGoesOnToItsEnd) {
  const ProjectFolder project;
  const SmallDisk disk(project.path() / "phd_dir", "size=64k");
  if (!disk.isThere()) GTEST_SKIP() << "can not mount: " << std::strerror(errno);
  const Names names = addTraces(project, 40);
  const WholeResults whole(project);

  const ProgramResult result = project.run();

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, Not(HasSubstr("ERROR")));
  EXPECT_THAT(result.err, HasSubstr(" 100% done\n"));
  Names phdTexts;
  Names wholePhdTexts;
  const std::string time = project.phdTime(names.front());
  for (const std::string& name : names) {
    phdTexts.push_back(project.phd(name));
    wholePhdTexts.push_back(whole.phd(name, time));
    // Deliberate: a writer that has failed once fails for the second file of its sample too.
    const bool isWhole = phdTexts.back() == wholePhdTexts.back();
    EXPECT_TRUE(project.poly(name) == (isWhole ? whole.poly(name) : "")) << name;
  }
  expectWholeThenCut(phdTexts, wholePhdTexts);
}

TEST(FullDisk, LeavesEarlierPeakFilesWholeToo) {
  const ProjectFolder project;
  const SmallDisk disk(project.path() / "poly_dir", "size=128k");
  if (!disk.isThere()) GTEST_SKIP() << "can not mount: " << std::strerror(errno);
  const Names names = addTraces(project, 40);
  const WholeResults whole(project);

  const ProgramResult result = project.run();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, Not(HasSubstr("ERROR")));
  Names polyTexts;
  Names wholePolyTexts;
  for (const std::string& name : names) {
    polyTexts.push_back(project.poly(name));
    wholePolyTexts.push_back(whole.poly(name));
    EXPECT_TRUE(project.phd(name) == whole.phd(name, project.phdTime(name))) << name;
  }
  expectWholeThenCut(polyTexts, wholePolyTexts);
}

TEST(FullDisk, WithoutRoomForANewFileLosesTheResultsInSilence) {
  const ProjectFolder project;
  const SmallDisk disk(project.path() / "phd_dir", "nr_inodes=4");  // the folder and 3 files
  if (!disk.isThere()) GTEST_SKIP() << "can not mount: " << std::strerror(errno);
  const Names names = addTraces(project, 5);
  const WholeResults whole(project);

  const ProgramResult result = project.run();

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, Not(HasSubstr("ERROR")));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("s00.phd.1", "s01.phd.1", "s02.phd.1"));
  EXPECT_EQ(project.phd("s02"), whole.phd("s02", project.phdTime("s02")));
}

}  // namespace
