#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

/// 70 bases A of quality 20, except at the given positions.
std::string longTrace(const std::map<int, int>& qualitiesAt,
                      const std::map<int, char>& basesAt = {}) {
  std::string bases(70, 'A');
  std::vector<int> qualities(70, 20);
  for (const auto& [position, base] : basesAt) bases[static_cast<std::size_t>(position)] = base;
  for (const auto& [position, quality] : qualitiesAt) {
    qualities[static_cast<std::size_t>(position)] = quality;
  }
  return AbifBuilder().bases(bases).qualities(qualities).build();
}

/// `count` bases A of quality 20, except for quality 0 at `zeroPosition`.
std::string traceWithZero(int count, int zeroPosition) {
  std::vector<int> qualities(static_cast<std::size_t>(count), 20);
  qualities[static_cast<std::size_t>(zeroPosition)] = 0;
  return AbifBuilder()
      .bases(std::string(static_cast<std::size_t>(count), 'A'))
      .qualities(qualities)
      .build();
}

struct GateCase {
  std::string claim;  // names the trace
  std::string trace;
  bool converted;
};

/// Converts all cases in one run and checks which were converted and which were skipped.
void expectFates(const std::vector<GateCase>& cases) {
  const ProjectFolder project;
  std::vector<std::string> names;
  std::string warnings;
  for (const GateCase& gateCase : cases) {
    project.addTrace(gateCase.claim, gateCase.trace);
    names.push_back(gateCase.claim);
    if (!gateCase.converted) warnings += project.missingQualities(gateCase.claim);
  }

  const ProgramResult result = project.runList(names);

  EXPECT_EQ(result.out, warnings);
  EXPECT_THAT(result.err, testing::Not(HasSubstr("ERROR")));
  EXPECT_EQ(result.status, 0);
  for (const GateCase& gateCase : cases) {
    EXPECT_EQ(project.has("phd_dir/" + gateCase.claim + ".phd.1"), gateCase.converted)
        << gateCase.claim;
    EXPECT_EQ(project.has("poly_dir/" + gateCase.claim + ".poly"), gateCase.converted)
        << gateCase.claim;
  }
}

}  // namespace

TEST(ExistingResult, SkipsTheTraceInSilenceEvenIfThePolyFileIsMissing) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.write("phd_dir/x.phd.1", "old");

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(project.phd("x"), "old");
  EXPECT_THAT(project.entries("poly_dir"), IsEmpty());
}

TEST(ExistingResult, LeavesAnOldPolyFileAlone) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.write("phd_dir/x.phd.1", "old");
  project.write("poly_dir/x.poly", "older");

  project.run();

  EXPECT_EQ(project.phd("x"), "old");
  EXPECT_EQ(project.poly("x"), "older");
}

TEST(ExistingResult, IsThePhdFileAndNotThePolyFile) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.write("poly_dir/x.poly", "old");

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("x"), anyBases);
  EXPECT_THAT(project.poly("x"), StartsWith("x 1 1 1 1 1\nA 1 "));
}

TEST(ExistingResult, MayBeADirectory) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.makeFolder("phd_dir/x.phd.1");

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("poly_dir"), IsEmpty());
}

// The link is followed, by the test and by the writer.
TEST(ExistingResult, IsNotADanglingLink) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  std::filesystem::create_symlink("elsewhere", project.at("phd_dir/x.phd.1").text());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("x"), anyBases);
  EXPECT_TRUE(std::filesystem::is_symlink(project.at("phd_dir/x.phd.1").text()));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("elsewhere", "x.phd.1"));
}

TEST(ExistingResult, KeepsTheTraceFromBeingOpened) {
  const ProjectFolder project;
  project.addTrace("packed.ab1.gz", "no gzip data");
  project.addTrace("x.ab1", "no trace");
  project.write("phd_dir/packed.phd.1", "old");
  project.write("phd_dir/lost.phd.1", "old");
  project.write("phd_dir/x.phd.1", "old");

  const ProgramResult result = project.runList({"packed.ab1.gz", "x.ab1", "lost.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 34, 67, 100}));
  EXPECT_EQ(result.out, "");
}

TEST(ExistingResult, OfTheUnstrippedNameCountsWithNostrip) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.write("phd_dir/x.phd.1", "old");

  project.run({"-s"});

  EXPECT_EQ(project.phd("x"), "old");
  EXPECT_EQ(project.phdBases("x.ab1"), anyBases);
}

TEST(ExistingResult, IsReplacedWholeWithOverwrite) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.write("phd_dir/x.phd.1", std::string(5000, '#'));
  project.write("poly_dir/x.poly", std::string(5000, '#'));

  const ProgramResult result = project.run({"-overwrite"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.phd("x"), StartsWith("BEGIN_SEQUENCE x\n"));
  EXPECT_THAT(project.phd("x"), EndsWith("T 40 10\nEND_DNA\nEND_SEQUENCE\n"));
  EXPECT_THAT(project.poly("x"), StartsWith("x 1 1 1 1 1\nA 1 "));
  EXPECT_THAT(project.poly("x"), testing::Not(HasSubstr("#")));
}

TEST(ExistingResult, StaysWhenTheTraceCanNotBeUsedWithOverwrite) {
  const ProjectFolder project;
  project.addTrace("doubtful.ab1", longTrace({{40, 0}}));
  project.addTrace("fake.ab1", "no trace");
  for (const char* sample : {"doubtful", "fake"}) {
    project.write("phd_dir/" + std::string(sample) + ".phd.1", "old");
    project.write("poly_dir/" + std::string(sample) + ".poly", "older");
  }

  const ProgramResult result = project.run({"-o"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}) + project.invalidTrace("fake.ab1"));
  EXPECT_EQ(result.out, project.missingQualities("doubtful.ab1"));
  for (const char* sample : {"doubtful", "fake"}) {
    EXPECT_EQ(project.phd(sample), "old");
    EXPECT_EQ(project.poly(sample), "older");
  }
}

// A writer that has failed to open a file stays failed: the second file is made but stays empty.
// The next trace has a new writer.
TEST(OutputFile, APhdFileThatCanNotBeOpenedLeavesAnEmptyPolyFileAndTheRunGoesOn) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.addTrace("y.ab1", anyTrace());
  project.makeFolder("phd_dir/x.phd.1");
  project.write("poly_dir/x.poly", "old");

  const ProgramResult result = project.run({"-o"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir/x.phd.1"), IsEmpty());
  EXPECT_THAT(project.entries("poly_dir"), ElementsAre("x.poly", "y.poly"));
  EXPECT_EQ(project.poly("x"), "");
  EXPECT_EQ(project.phdBases("y"), anyBases);
  EXPECT_THAT(project.poly("y"), StartsWith("y 1 1 1 1 1\nA 1 "));
}

// One writer writes both files: if the .phd.1 came second, it would be lost.
TEST(OutputFile, APolyFileThatCanNotBeOpenedLeavesThePhdFileWholeAndTheRunGoesOn) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  project.addTrace("y.ab1", anyTrace());
  project.write("phd_dir/x.phd.1", "old");
  project.makeFolder("poly_dir/x.poly");

  const ProgramResult result = project.run({"-o"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.phd("x"), StartsWith("BEGIN_SEQUENCE x\n"));
  EXPECT_EQ(project.phdBases("x"), anyBases);
  EXPECT_THAT(project.phd("x"), EndsWith("END_DNA\nEND_SEQUENCE\n"));
  EXPECT_THAT(project.entries("poly_dir/x.poly"), IsEmpty());
  EXPECT_EQ(project.phdBases("y"), anyBases);
  EXPECT_THAT(project.poly("y"), StartsWith("y 1 1 1 1 1\nA 1 "));
}

TEST(OutputFile, IsLostInSilenceWhenItsFolderIsMissing) {
  const ProjectFolder project;
  project.addTrace("run/x.ab1", anyTrace());

  const ProgramResult result = project.runList({"run/x.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
  EXPECT_THAT(project.entries("poly_dir"), IsEmpty());
}

TEST(QualityGate, SkipsATraceWithTheWarningOnStandardOutputAlone) {
  const ProjectFolder project;
  project.addTrace("x.ab1", longTrace({{50, 0}}));
  project.addTrace("y.ab1", anyTrace());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "Warning: missing quality values in trace file " + project.path().string() +
                            "/chromat_dir/x.ab1 - skipping.\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("y.phd.1"));
  EXPECT_THAT(project.entries("poly_dir"), ElementsAre("y.poly"));
}

TEST(QualityGate, NamesAPackedTraceWithoutItsGz) {
  const ProjectFolder project;
  project.addGzipped("listed.ab1.gz", longTrace({{50, 0}}));
  project.addGzipped("found.ab1.gz", longTrace({{50, 0}}));

  const ProgramResult result = project.runList({"listed.ab1.gz", "found.ab1"});

  EXPECT_EQ(result.out,
            project.missingQualities("listed.ab1") + project.missingQualities("found.ab1"));
  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
}

TEST(QualityGate, AZeroQualityAtAnyPositionOfTheWindowSkipsTheTrace) {
  std::vector<GateCase> cases;
  for (int position = 40; position <= 59; ++position) {
    cases.push_back({"zero-at-" + std::to_string(position), longTrace({{position, 0}}), false});
  }
  expectFates(cases);
}

TEST(QualityGate, AQualityOfAHundredCountsAtThePositions40To59Only) {
  std::vector<GateCase> cases;
  for (int position = 0; position < 70; ++position) {
    cases.push_back({"hundred-at-" + std::to_string(position), longTrace({{position, 100}}),
                     position < 40 || position > 59});
  }
  expectFates(cases);
}

TEST(QualityGate, TakesQualitiesFrom1To99AsUsable) {
  expectFates({{"1-at-40", longTrace({{40, 1}}), true},
               {"9-at-45", longTrace({{45, 9}}), true},
               {"98-at-50", longTrace({{50, 98}}), true},
               {"99-at-59", longTrace({{59, 99}}), true},
               {"100-at-40", longTrace({{40, 100}}), false},
               {"101-at-59", longTrace({{59, 101}}), false},
               {"127-at-50", longTrace({{50, 127}}), false},
               {"128-at-50", longTrace({{50, 128}}), false},
               {"200-at-50", longTrace({{50, 200}}), false},
               {"255-at-50", longTrace({{50, 255}}), false}});
}

// The quality text ends at the first 0, at any position.
TEST(QualityGate, TakesAPositionPastTheEndOfTheQualitiesAsAZeroQuality) {
  expectFates({{"zero-at-0", longTrace({{0, 0}}), false},
               {"zero-at-39", longTrace({{39, 0}}), false},
               {"zero-at-60", longTrace({{60, 0}}), true},
               {"zero-at-69", longTrace({{69, 0}}), true}});
}

TEST(QualityGate, ExemptsBasesNOfEitherCase) {
  std::map<int, char> allN;
  std::map<int, char> allLowerN;
  std::map<int, char> allBut59;
  for (int i = 40; i <= 59; ++i) {
    allN[i] = 'N';
    allLowerN[i] = 'n';
    if (i != 59) allBut59[i] = 'N';
  }
  expectFates({{"100-under-N", longTrace({{50, 100}}, {{50, 'N'}}), true},
               {"200-under-n", longTrace({{50, 200}}, {{50, 'n'}}), true},
               {"0-under-N-at-59", longTrace({{59, 0}}, {{59, 'N'}}), true},
               {"0-under-n-at-59", longTrace({{59, 0}}, {{59, 'n'}}), true},
               {"0-under-N-and-none-after-it", longTrace({{58, 0}}, {{58, 'N'}}), false},
               {"none-under-N", longTrace({{40, 0}}, allN), true},
               {"none-under-n", longTrace({{40, 0}}, allLowerN), true},
               {"none-under-N-but-the-last", longTrace({{40, 0}}, allBut59), false},
               {"100-under-a", longTrace({{50, 100}}, {{50, 'a'}}), false},
               {"100-under-R", longTrace({{50, 100}}, {{50, 'R'}}), false},
               {"100-under-hyphen", longTrace({{50, 100}}, {{50, '-'}}), false}});
}

// The peak of base i is 1 + 3 i.
TEST(QualityGate, LeavesTheCaseOfTheBasesAsItIs) {
  const ProjectFolder project;
  project.addTrace("x", longTrace({{50, 100}}, {{45, 'a'}, {50, 'n'}, {55, 'r'}, {60, 'N'}}));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.out, "");
  EXPECT_THAT(project.phdBases("x"), AllOf(HasSubstr("\na 20 136\n"), HasSubstr("\nn 100 151\n"),
                                           HasSubstr("\nr 20 166\n"), HasSubstr("\nN 20 181\n")));
}

TEST(QualityGate, PassesATraceThatEndsBeforeTheWindow) {
  expectFates({{"40-bases-zero-at-39", traceWithZero(40, 39), true},
               {"40-bases-zero-at-0", traceWithZero(40, 0), true},
               {"41-bases-zero-at-0", traceWithZero(41, 0), false},
               {"41-bases-zero-at-40", traceWithZero(41, 40), false},
               {"60-bases-zero-at-59", traceWithZero(60, 59), false},
               {"61-bases-zero-at-60", traceWithZero(61, 60), true},
               {"1-base", traceWithZero(1, 0), true}});
}

TEST(QualityGate, WritesQualityZeroFromThatPositionOnInATraceThatPasses) {
  const ProjectFolder project;
  project.addTrace("x", AbifBuilder().bases("ACGT").qualities({20, 30, 0, 40}).build());

  project.run();

  EXPECT_EQ(project.phdBases("x"), "A 20 1\nC 30 4\nG 0 7\nT 0 10\n");
}
