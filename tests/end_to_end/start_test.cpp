#include <ctime>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/support/program.h"
#include "tests/support/project_folder.h"

namespace {

using ::testing::Contains;
using ::testing::MatchesRegex;
using Words = std::vector<std::string>;

const std::string terminating = "\n\nQUILLET is terminating.\n\n";

const std::string helpTable = R"( flag               function
 ---------------    ----------------------------
 -dir       (-d)    set the data directory
 -help      (-h)    print this information
 -list      (-l)    set the chromat list file
 -overwrite (-o)    overwrite existing files
 -nostrip   (-s)    leave extensions intact
 -version           print Quillet version
--------------------------------------------------------------

)";

const std::string criticalRule(68, '-');
const std::string criticalBanner =
    "\n" + criticalRule + "\n A critical error has occurred." + std::string(37, ' ') +
    "\n Please notify the Hallorand group, quillet@hallorand.example " + "\n" + criticalRule +
    "\n\n";

// The banner, help and version.

TEST(Start, WithoutArgumentsTheBannerIsFollowedByTheBatch) {
  const ProjectFolder folder;

  const ProgramResult result = folder.run();

  EXPECT_EQ(result.err, R"(
QUILLET   Version 1.1.0
--------------------------------------------------------------
   0% done
)");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

TEST(Start, HelpIsAnsweredWhereverItStands) {
  const Words cases[] = {{"-help"},        {"--help"},         {"-h"},
                         {"-x", "-help"},  {"-help", "-x"},    {"sample.ab1", "-v", "-h", "-D"},
                         {"-l", "--help"}, {"-o", "-d", "-h"}, {"-d", "/no/such/place", "-help"},
                         {"-h", "-d"}};
  for (const Words& words : cases) {
    SCOPED_TRACE(::testing::PrintToString(words));
    const ProjectFolder folder;
    folder.write(".quilletrc", "wrong\n");  // help comes before the resource file

    const ProgramResult result = folder.run(words);

    EXPECT_EQ(result.err, banner() + helpTable);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
  }
}

TEST(Start, VersionIsAnsweredWhereverItStandsAndBeforeHelp) {
  const Words cases[] = {{"-version"},
                         {"--version"},
                         {"-help", "-version"},
                         {"--version", "-h"},
                         {"-x", "-version", "sample.ab1"},
                         {"-d", "-version"},
                         {"-version", "-l"}};
  // The stamp is the time of the build and, when known, its commit.
  const auto expected = MatchesRegex(
      "\nQUILLET   Version 1\\.1\\.0\n"
      "Build [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}( [0-9a-f]{7,})?\n\n");
  for (const Words& words : cases) {
    SCOPED_TRACE(::testing::PrintToString(words));
    const ProjectFolder folder;
    folder.write(".quilletrc", "wrong\n");  // version comes before the resource file

    const ProgramResult result = folder.run(words);

    EXPECT_THAT(result.err, expected);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
  }
}

// Flags.

TEST(Start, AnInvalidFlagIsReportedAndNothingIsConverted) {
  for (const std::string word : {"-v", "-verbose", "--dir", "-D", "sample.ab1", "", "-", "-os",
                                 "-d=proj", "-Help", "--h", "-versions", "-V", "-help "}) {
    const ProjectFolder folder;
    folder.addTrace("a.ab1", anyTrace());

    const ProgramResult result = folder.run({"-o", word});

    EXPECT_EQ(result.err,
              banner() + "ERROR: in COMMAND LINE: invalid flag `" + word + "'\n" + terminating);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(folder.entries("phd_dir").empty());
  }
}

TEST(Start, AMissingArgumentIsReportedInTheFlagsOwnSpelling) {
  for (const std::string word : {"-d", "-dir", "-l", "-list"}) {
    const ProjectFolder folder;

    const ProgramResult result = folder.run({"-o", word});

    EXPECT_EQ(result.err, banner() + "ERROR: in COMMAND LINE: `" + word +
                              "' requires an argument.\n" + terminating);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 1);
  }
}

TEST(Start, FlagsAreReportedBeforeTheProjectIsLookedAt) {
  const ScratchFolder folder;

  const ProgramResult result =
      runQuillet({.folder = folder.path().string(), .arguments = {"-d", "nowhere", "-v"}});

  EXPECT_EQ(result.err, banner() + "ERROR: in COMMAND LINE: invalid flag `-v'\n" + terminating);
  EXPECT_EQ(result.status, 1);
}

TEST(Start, AnArgumentMayBeginWithAHyphen) {
  const ProjectFolder folder;

  const ProgramResult result = folder.run({"-d", "-o"});

  EXPECT_EQ(result.err, banner() + "ERROR: no such file or directory: " + folder.path().string() +
                            "/-o/\n" + terminating);
  EXPECT_EQ(result.status, 1);
}

TEST(Start, TheLastListFileIsTheOneThatIsOpened) {
  const ProjectFolder folder;

  const ProgramResult result = folder.run({"-l", "one.txt", "-list", "two.txt"});

  EXPECT_EQ(result.err, banner() + "ERROR: can not open the file two.txt" + terminating);
  EXPECT_EQ(result.status, 1);
}

TEST(Start, SkippedFilesLeaveTheExitStatusAtZero) {
  const ProjectFolder folder;
  folder.addTrace("bad.ab1", "no trace");

  const ProgramResult result = folder.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}) + folder.invalidTrace("bad.ab1"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

// The start time of the run.

TEST(Start, EveryPhdFileOfARunCarriesTheSameTimeHoweverLongTheBatchTakes) {
  const ProjectFolder folder;  // unpacking the second trace takes more than a second
  folder.addTrace("a.ab1", anyTrace());
  folder.addGzipped("b.ab1.gz", anyTrace());
  folder.addTrace("c.ab1", anyTrace());
  const auto environment = folder.withGunzip("sleep 1.1\nexec gzip -d \"$@\"\n");
  const std::time_t before = std::time(nullptr);

  const ProgramResult result =
      runQuillet({.folder = folder.path().string(), .environment = environment});

  EXPECT_EQ(result.err, banner() + meterLines({0, 34, 67, 100}));
  const Words possible = momentTexts(before, std::time(nullptr) - 1, "%a %b %e %H:%M:%S %Y");
  EXPECT_THAT(possible, Contains(folder.phdTime("a")));  // the time of the start
  EXPECT_EQ(folder.phdTime("b"), folder.phdTime("a"));
  EXPECT_EQ(folder.phdTime("c"), folder.phdTime("a"));
}

// Signals.

/// A pipe whose ends child programs do not inherit.
struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  ~Pipe() {
    for (const int end : ends) {
      if (end >= 0) close(end);
    }
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  /// Reads until all writers have closed. Stops after 20 seconds without data.
  std::string read() const {
    std::string text;
    pollfd readable{ends[0], POLLIN, 0};
    char byte = 0;
    while (poll(&readable, 1, 20000) == 1 && ::read(ends[0], &byte, 1) == 1) text += byte;
    return text;
  }
  void closeEnd(int index) {
    close(ends[index]);
    ends[index] = -1;
  }

  int ends[2] = {-1, -1};  // to read from, to write to
};

/// Waits until the reader has emptied the pipe, for 20 seconds at most.
void waitUntilEmpty(const Pipe& pipe) {
  for (int tries = 0, left = 1; left > 0 && tries < 20000; ++tries) {
    if (ioctl(pipe.ends[0], FIONREAD, &left) != 0) throw std::runtime_error("no pipe size");
    usleep(1000);
  }
}

/// Starts the program and sends it the signal `number` while it waits for a second name on standard
/// input. By then it has printed its banner and writes nothing else.
ProgramResult runUntilSignal(const ProjectFolder& folder, int number) {
  Pipe input;
  Pipe out;
  Pipe err;
  const std::string path = folder.path().string();
  std::string pwd = "PWD=" + path;
  std::string home = "HOME=" + path;
  std::string program = QUILLET_PROGRAM;
  std::string flag = "-l";
  std::string standard = "-";
  char* argv[] = {program.data(), flag.data(), standard.data(), nullptr};
  char* envp[] = {pwd.data(), home.data(), nullptr};

  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("can not fork");
  if (child == 0) {
    dup2(input.ends[0], 0);
    dup2(out.ends[1], 1);
    dup2(err.ends[1], 2);
    if (chdir(path.c_str()) != 0) _exit(126);
    execve(program.c_str(), argv, envp);
    _exit(127);
  }
  out.closeEnd(1);
  err.closeEnd(1);

  ProgramResult result;
  if (write(input.ends[1], "a\n", 2) != 2) throw std::runtime_error("no input");
  waitUntilEmpty(input);
  kill(child, number);
  result.err = err.read();
  result.out = out.read();
  kill(child, SIGKILL);  // in case it is still running
  int status = 0;
  waitpid(child, &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

TEST(Start, ASegmentationFaultGivesTheBannerAndStatus11) {
  const ProjectFolder folder;

  const ProgramResult result = runUntilSignal(folder, SIGSEGV);

  EXPECT_EQ(result.err, banner() + criticalBanner);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 11);
}

TEST(Start, ABusErrorGivesTheBannerAndStatus7) {
  const ProjectFolder folder;

  const ProgramResult result = runUntilSignal(folder, SIGBUS);

  EXPECT_EQ(result.err, banner() + criticalBanner);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 7);
}

TEST(Start, OtherSignalsEndTheProgramWithoutABanner) {
  for (const int number : {SIGTERM, SIGUSR1}) {
    const ProjectFolder folder;

    const ProgramResult result = runUntilSignal(folder, number);

    EXPECT_EQ(result.err, banner());
    EXPECT_EQ(result.status, 128 + number);
  }
}

}  // namespace
