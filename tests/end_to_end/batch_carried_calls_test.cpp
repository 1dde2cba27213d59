#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

// A batch keeps the base calls from one file to the next. A trace without calls gets those of an
// earlier file; a trace without usable qualities gets only the qualities.

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

std::string trace(const std::string& bases, const std::vector<int>& qualities) {
  return AbifBuilder().bases(bases).qualities(qualities).build();
}

/// `count` samples: `height` at `position`, 0 elsewhere.
std::vector<int> spike(std::size_t count, std::size_t position, int height) {
  std::vector<int> samples(count);
  samples[position] = height;
  return samples;
}

/// 60 bases A with qualities 33, 20, 20... and a 100, for which the quality gate skips the trace.
std::string stoppedTrace() {
  std::vector<int> qualities(60, 20);
  qualities[0] = 33;
  qualities[50] = 100;
  return trace(std::string(60, 'A'), qualities);
}

}  // namespace

// The second trace has its own samples and, without base calls, no caller. Its highest sample, 255,
// becomes 65280: a factor of 256. The search range of its last base ends at (7 + 12) / 2 = 9,
// midway to the end of the first trace, so the spike at 10 is outside.
TEST(CarriedCalls, ATraceWithoutBaseCallsTakesOverBasesQualitiesAndPeaks) {
  const ProjectFolder project;
  std::vector<int> thymine = spike(20, 6, 51);
  thymine[10] = 255;
  project.addTrace("a.ab1", AbifBuilder()
                                .bases("ACG")
                                .qualities({20, 30, 40})
                                .peaks({1, 4, 7})
                                .callerName("first")
                                .build());
  project.addTrace("b.ab1", AbifBuilder()
                                .without("PBAS", 1)
                                .callerName("second")
                                .channel('A', spike(20, 1, 255))
                                .channel('C', std::vector<int>(20))
                                .channel('G', std::vector<int>(20))
                                .channel('T', thymine)
                                .build());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.timelessPhd("b"), R"(BEGIN_SEQUENCE b

BEGIN_COMMENT
CHROMAT_FILE: b
ABI_THUMBPRINT: 0
PHRED_VERSION: quillet
CALL_METHOD: 
QUALITY_LEVELS: 99
TIME: @TIME@
TRACE_ARRAY_MIN_INDEX: 0
TRACE_ARRAY_MAX_INDEX: 19
CHEM: term
DYE: big
END_COMMENT

BEGIN_DNA
A 20 1
C 30 4
G 40 7
END_DNA
END_SEQUENCE
)");
  EXPECT_EQ(project.poly("b"), R"(b 1 1 1 1 1
A 1 0 0 N 0 0 0 65280 0 0 0
C 4 0 0 N 0 0 0 0 0 0 0
G 7 0 0 T 7 0 0 0 0 0 13056
)");
}

TEST(CarriedCalls, PeaksTakenOverMayLiePastTheEndOfTheTrace) {
  const ProjectFolder project;
  AbifBuilder longer;
  for (const char letter : {'A', 'C', 'G', 'T'}) longer.channel(letter, spike(40, 35, 100));
  project.addTrace("a.ab1", longer.bases("A").qualities({20}).peaks({35}).build());
  project.addTrace("b.ab1", traceWithoutCalls());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(project.phdBases("b"), "A 20 35\n");
  EXPECT_EQ(project.poly("b"), "b 1 1 1 1 1\nA 35 0 0 N 0 0 0 0 0 0 0\n");
}

TEST(CarriedCalls, ATraceWithoutUsableQualitiesTakesOverTheQualitiesAlone) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace("ACGTA", {20, 30, 40, 50, 60}));
  project.addTrace("b.ab1", trace("GG", {5, 9}));
  project.addTrace("c.ab1", trace("TTTTTTT", {9, 9, 9, 9, 9, 9, 9}));
  project.addTrace("d.ab1", trace("CC", {200, 128}));
  project.addTrace("e.ab1", trace("CC", {0, 0}));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 20, 40, 60, 80, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.phdBases("b"), "G 20 1\nG 30 4\n");
  EXPECT_EQ(project.phdBases("c"),
            "T 20 1\nT 30 4\nT 40 7\nT 50 10\nT 60 13\n"
            "T 0 16\nT 0 19\n");
  EXPECT_EQ(project.phdBases("d"), "C 20 1\nC 30 4\n");
  EXPECT_EQ(project.phdBases("e"), "C 20 1\nC 30 4\n");
}

TEST(CarriedCalls, OneQualityAbove9MakesAllOfATraceItsOwn) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace("ACGT", {20, 30, 40, 50}));
  project.addTrace("b.ab1", trace("GGGG", {5, 10, 200, 9}));
  project.addTrace("c.ab1", trace("TTTT", {1, 1, 1, 1}));

  project.run();

  EXPECT_EQ(project.phdBases("b"), "G 5 1\nG 10 4\nG -56 7\nG 9 10\n");
  EXPECT_EQ(project.phdBases("c"), "T 5 1\nT 10 4\nT -56 7\nT 9 10\n");
}

TEST(CarriedCalls, QualitiesThatEndAtAZeroAreTakenOverUpToThere) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace("ACGT", {20, 30, 0, 40}));
  project.addTrace("b.ab1", trace("GGGG", {1, 1, 1, 1}));
  project.addTrace("c.ab1", trace("ACGT", {0, 30, 30, 30}));
  project.addTrace("d.ab1", trace("GGGG", {1, 1, 1, 1}));

  project.run();

  EXPECT_EQ(project.phdBases("b"), "G 20 1\nG 30 4\nG 0 7\nG 0 10\n");
  EXPECT_EQ(project.phdBases("d"), "G 0 1\nG 0 4\nG 0 7\nG 0 10\n");
}

TEST(CarriedCalls, NothingOfALongerFileStaysInATraceWithCallsOfItsOwn) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace(std::string(30, 'A'), std::vector<int>(30, 20)));
  project.addTrace("b.ab1", trace("GT", {30, 35}));
  project.addTrace("c.ab1", traceWithoutCalls());

  project.run();

  EXPECT_EQ(project.phdBases("b"), "G 30 1\nT 35 4\n");
  EXPECT_EQ(project.phdBases("c"), "G 30 1\nT 35 4\n");
  const std::string poly = project.poly("b");
  EXPECT_EQ(std::count(poly.begin(), poly.end(), '\n'), 3);
}

TEST(CarriedCalls, ATraceThatTheQualityGateStoppedLeavesItsQualities) {
  const ProjectFolder project;
  project.addTrace("a.ab1", stoppedTrace());
  project.addTrace("b.ab1", trace("CG", {1, 1}));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.out, project.missingQualities("a.ab1"));
  EXPECT_EQ(project.phdBases("b"), "C 33 1\nG 20 4\n");
}

TEST(CarriedCalls, ATraceWithoutCallsIsStoppedAfterOneThatTheQualityGateStopped) {
  const ProjectFolder project;
  project.addTrace("a.ab1", stoppedTrace());
  project.addTrace("b.ab1", traceWithoutCalls());
  project.addTrace("c.ab1", trace("ACGT", {40, 40, 40, 40}));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 34, 67, 100}));
  EXPECT_EQ(result.out, project.missingQualities("a.ab1") + project.missingQualities("b.ab1"));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("c.phd.1"));
}

TEST(CarriedCalls, ATraceThatIsPassedOverForItsExistingResultLeavesNothing) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace("ACGT", {20, 30, 40, 50}));
  project.addTrace("b.ab1", trace("CG", {1, 1}));
  project.addTrace("c.ab1", traceWithoutCalls());
  project.write("phd_dir/a.phd.1", "old");

  project.run();

  EXPECT_EQ(project.phdBases("b"), "C 0 1\nG 0 4\n");
  EXPECT_EQ(project.phdBases("c"), "C 0 1\nG 0 4\n");
}

TEST(CarriedCalls, ATraceThatCanNotBeReadLeavesNothing) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace("ACGT", {20, 30, 40, 50}));
  project.addTrace("b.ab1",
                   AbifBuilder().bases("TTT").qualities({60, 60, 60}).count("PLOC", 1, 2).build());
  project.addTrace("c.ab1", traceWithoutCalls());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err,
            banner() + meterLines({0, 34, 67}) + project.invalidTrace("b.ab1") + meterLines({100}));
  EXPECT_EQ(project.phdBases("c"), "A 20 1\nC 30 4\nG 40 7\nT 50 10\n");
}

TEST(CarriedCalls, WithoutQualitiesInTheFirstFileAShortTraceGetsZeroEverywhere) {
  const ProjectFolder project;
  std::string expected;
  for (int i = 0; i < 40; ++i) expected += "A 0 " + std::to_string(1 + 3 * i) + "\n";
  project.addTrace("a.ab1", trace(std::string(40, 'A'), std::vector<int>(40, 9)));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.phdBases("a"), expected);
}

TEST(CarriedCalls, WithoutQualitiesInTheFirstFileATraceThatReachesTheWindowIsSkipped) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace(std::string(41, 'A'), std::vector<int>(41, 9)));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.out, project.missingQualities("a.ab1"));
  EXPECT_EQ(result.status, 0);
}

TEST(CarriedCalls, WithoutBaseCallsInTheFirstFileTheOutputsHoldNoBases) {
  const ProjectFolder project;
  project.addTrace("a.ab1", traceWithoutCalls());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_THAT(project.phd("a"), HasSubstr("\nTRACE_ARRAY_MAX_INDEX: 11\n"));
  EXPECT_THAT(project.phd("a"), HasSubstr("\n\nBEGIN_DNA\nEND_DNA\nEND_SEQUENCE\n"));
  EXPECT_EQ(project.poly("a"), "a 1 1 1 1 1\n");
}

TEST(CarriedCalls, AreForgottenFromOneRunToTheNext) {
  const ProjectFolder project;
  project.addTrace("a.ab1", trace("ACGT", {20, 30, 40, 50}));
  project.addTrace("b.ab1", traceWithoutCalls());

  project.runList({"a.ab1"});
  project.runList({"b.ab1"});

  EXPECT_EQ(project.phdBases("b"), "");
  EXPECT_EQ(project.poly("b"), "b 1 1 1 1 1\n");
}
