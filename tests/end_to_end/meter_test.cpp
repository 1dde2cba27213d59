#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/project_folder.h"

// Samples with results are skipped in silence, so that only the meter writes.

namespace {

/// Makes results for `count` samples and returns the trace names: "0.ab1", "1.ab1"...
std::vector<std::string> doneSamples(const ProjectFolder& project, int count) {
  std::vector<std::string> names;
  for (int i = 0; i < count; ++i) {
    project.write("phd_dir/" + std::to_string(i) + ".phd.1", "done");
    names.push_back(std::to_string(i) + ".ab1");
  }
  return names;
}

/// The output of `command` on a terminal.
std::string onTerminal(const ProjectFolder& project, const std::string& command) {
  const ProgramResult result = runProgram(
      "script", {.folder = project.path().string(), .arguments = {"-qec", command, "/dev/null"}});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  return result.out;
}

/// The text as a terminal passes it on: with a carriage return before every newline.
std::string withCarriageReturns(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character == '\n') result += '\r';
    result += character;
  }
  return result;
}

/// One drawing of the meter on a terminal: erase the line, the text, up one line, newline.
std::string drawn(const std::string& text) { return "\x1b[2K" + text + "\x1b[A\n"; }

struct MeterCase {
  int count;
  std::string lines;
};

void PrintTo(const MeterCase& meterCase, std::ostream* stream) { *stream << meterCase.count; }

class RedirectedMeter : public testing::TestWithParam<MeterCase> {};

/// Tests on a terminal. Skipped where the system has no terminals, as in a bare chroot.
class TerminalMeter : public testing::Test {
 protected:
  void SetUp() override {
    const ScratchFolder folder;
    const ProgramResult trial = runProgram(
        "script",
        {.folder = folder.path().string(), .arguments = {"-qec", "test -t 2", "/dev/null"}});
    if (trial.status != 0) GTEST_SKIP() << trial.err;
  }
};

}  // namespace

TEST_P(RedirectedMeter, WritesOneLineForEachChangeAndNoEscapeSequence) {
  const ProjectFolder project;
  const std::vector<std::string> names = doneSamples(project, GetParam().count);

  const ProgramResult result = project.runList(names);

  EXPECT_EQ(result.err, banner() + GetParam().lines);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

// The percentage after k of n files is 100k/n, rounded up.
INSTANTIATE_TEST_SUITE_P(
    Counts, RedirectedMeter,
    testing::Values(MeterCase{0, "   0% done\n"}, MeterCase{1, "   0% done\n 100% done\n"},
                    MeterCase{3, "   0% done\n  34% done\n  67% done\n 100% done\n"},
                    MeterCase{7, meterLines({0, 15, 29, 43, 58, 72, 86, 100})}),
    [](const testing::TestParamInfo<MeterCase>& test) {
      return std::to_string(test.param.count) + "Files";
    });

TEST(Meter, DrawsTwoHundredFilesAtEverySecondStepOnly) {
  const ProjectFolder project;
  std::string expected = banner();
  for (int percentage = 0; percentage <= 100; ++percentage) expected += meterLines({percentage});
  const std::vector<std::string> names = doneSamples(project, 200);

  const ProgramResult result = project.runList(names);

  EXPECT_EQ(result.err, expected);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

TEST(Meter, TakesItsStepBeforeTheFileIsConverted) {
  const ProjectFolder project;
  doneSamples(project, 1);

  const ProgramResult result = project.runList({"lost.ab1", "0.ab1", "gone.ab1"});

  EXPECT_EQ(result.err, banner() + "   0% done\n  34% done\n" + project.invalidTrace("lost.ab1") +
                            "  67% done\n 100% done\n" + project.invalidTrace("gone.ab1"));
  EXPECT_EQ(result.status, 0);
}

TEST(Meter, AStepThatChangesNoPercentageLeavesNoLineBetweenTheMessages) {
  const ProjectFolder project;
  std::vector<std::string> names = doneSamples(project, 198);
  names.insert(names.begin(), {"lost.ab1", "gone.ab1"});
  std::string expected = banner() + meterLines({0, 1}) + project.invalidTrace("lost.ab1") +
                         project.invalidTrace("gone.ab1");
  for (int percentage = 2; percentage <= 100; ++percentage) expected += meterLines({percentage});

  const ProgramResult result = project.runList(names);

  EXPECT_EQ(result.err, expected);
}

TEST_F(TerminalMeter, RewritesOneLineInPlace) {
  const ProjectFolder project;
  for (const std::string& name : doneSamples(project, 3)) project.addTrace(name, "");

  const std::string screen = onTerminal(project, QUILLET_PROGRAM);

  EXPECT_EQ(screen, withCarriageReturns(banner() + drawn("   0% done") + drawn("  34% done") +
                                        drawn("  67% done") + drawn(" 100% done")));
}

TEST_F(TerminalMeter, ShowsZeroWhenThereIsNothingToConvert) {
  const ProjectFolder project;

  const std::string screen = onTerminal(project, QUILLET_PROGRAM);

  EXPECT_EQ(screen, withCarriageReturns(banner() + drawn("   0% done")));
}

TEST_F(TerminalMeter, IsOverwrittenByTheMessagesAndNotClearedAtTheEnd) {
  const ProjectFolder project;
  project.addTrace("empty.ab1", "");
  for (const std::string& name : doneSamples(project, 1)) project.addTrace(name, "");

  const std::string screen = onTerminal(project, QUILLET_PROGRAM);

  EXPECT_EQ(screen, withCarriageReturns(banner() + drawn("   0% done") + drawn("  50% done") +
                                        drawn(" 100% done") + project.invalidTrace("empty.ab1")));
}

TEST_F(TerminalMeter, LooksAtTheErrorStreamAloneForATerminal) {
  const ProjectFolder project;
  for (const std::string& name : doneSamples(project, 1)) project.addTrace(name, "");

  const std::string screen = onTerminal(project, std::string(QUILLET_PROGRAM) + " 2> log");

  EXPECT_EQ(screen, "");
  EXPECT_EQ(project.read("log"), banner() + "   0% done\n 100% done\n");
}

TEST_F(TerminalMeter, WritesTheTerminalFormWhenOnlyTheOutputStreamIsRedirected) {
  const ProjectFolder project;
  for (const std::string& name : doneSamples(project, 1)) project.addTrace(name, "");

  const std::string screen = onTerminal(project, std::string(QUILLET_PROGRAM) + " > log");

  EXPECT_EQ(screen, withCarriageReturns(banner() + drawn("   0% done") + drawn(" 100% done")));
}
