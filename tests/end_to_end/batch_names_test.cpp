#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

/// The start of the .phd.1 file of a sample.
std::string phdStart(const std::string& sample) {
  return "BEGIN_SEQUENCE " + sample + "\n\nBEGIN_COMMENT\nCHROMAT_FILE: " + sample +
         "\nABI_THUMBPRINT: 0\n";
}

std::string polyStart(const std::string& sample) { return sample + " 1 1 1 1 1\n"; }

struct NameCase {
  std::string listed;
  std::string sample;            // with known extensions stripped
  std::string unstrippedSample;  // with -nostrip
};

void PrintTo(const NameCase& nameCase, std::ostream* stream) { *stream << nameCase.listed; }

class ListedName : public testing::TestWithParam<NameCase> {
 protected:
  // gunzip copies a file that is not packed, so every name can have a plain trace.
  void expectSample(const std::string& sample, const std::vector<std::string>& flags) const {
    const ProjectFolder project;
    project.addTrace(GetParam().listed, anyTrace());

    const ProgramResult result = project.runList({GetParam().listed}, flags);

    EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(project.entries("phd_dir"), ElementsAre(sample + ".phd.1"));
    EXPECT_THAT(project.entries("poly_dir"), ElementsAre(sample + ".poly"));
    EXPECT_THAT(project.phd(sample), StartsWith(phdStart(sample)));
    EXPECT_THAT(project.poly(sample), StartsWith(polyStart(sample)));
  }
};

}  // namespace

TEST_P(ListedName, BecomesTheSampleNameInTheFileNamesAndInTheFiles) {
  expectSample(GetParam().sample, {});
}

TEST_P(ListedName, LosesNoExtensionButGzWithNostrip) {
  expectSample(GetParam().unstrippedSample, {"-nostrip"});
}

INSTANTIATE_TEST_SUITE_P(KnownExtensionsAreCut, ListedName,
                         testing::Values(NameCase{"x.ab1", "x", "x.ab1"},
                                         NameCase{"x.abi", "x", "x.abi"},
                                         NameCase{"x.scf", "x", "x.scf"},
                                         NameCase{"a.b.ab1", "a.b", "a.b.ab1"},
                                         NameCase{"x.ab1.ab1", "x.ab1", "x.ab1.ab1"},
                                         NameCase{"x.gz.ab1", "x.gz", "x.gz.ab1"}));

INSTANTIATE_TEST_SUITE_P(FinalGzIsCutFirst, ListedName,
                         testing::Values(NameCase{"x.ab1.gz", "x", "x.ab1"},
                                         NameCase{"x.gz", "x", "x"},
                                         NameCase{"a.b.scf.gz", "a.b", "a.b.scf"},
                                         NameCase{"x.ab1.gz.gz", "x.ab1.gz", "x.ab1.gz"}));

INSTANTIATE_TEST_SUITE_P(AnyPartOfTheExtensionListIsCut, ListedName,
                         testing::Values(NameCase{"x.ab", "x", "x.ab"}, NameCase{"x.a", "x", "x.a"},
                                         NameCase{"x.sc", "x", "x.sc"}, NameCase{"x.s", "x", "x.s"},
                                         NameCase{"x.", "x", "x."}, NameCase{"x..", "x.", "x.."}));

INSTANTIATE_TEST_SUITE_P(OtherExtensionsAreKept, ListedName,
                         testing::Values(NameCase{"x.AB1", "x.AB1", "x.AB1"},
                                         NameCase{"x.scf2", "x.scf2", "x.scf2"},
                                         NameCase{"x.b1", "x.b1", "x.b1"},
                                         NameCase{"x.abi1", "x.abi1", "x.abi1"},
                                         NameCase{"x.GZ", "x.GZ", "x.GZ"},
                                         NameCase{"a.ab1.run", "a.ab1.run", "a.ab1.run"},
                                         NameCase{"x", "x", "x"}, NameCase{"ab1", "ab1", "ab1"}));

INSTANTIATE_TEST_SUITE_P(ListedHiddenFiles, ListedName,
                         testing::Values(NameCase{".ab1", "", ".ab1"},
                                         NameCase{".x.ab1", ".x", ".x.ab1"},
                                         NameCase{".gz", ".gz", ".gz"}));

TEST(BatchNames, AnExtensionAloneGivesAnEmptySampleName) {
  const ProjectFolder project;
  project.addTrace(".ab1", anyTrace());

  const ProgramResult result = project.runList({".ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_THAT(project.read("phd_dir/.phd.1"), StartsWith("BEGIN_SEQUENCE \n\nBEGIN_COMMENT\n"
                                                         "CHROMAT_FILE: \nABI_THUMBPRINT: 0\n"));
  EXPECT_THAT(project.read("poly_dir/.poly"), StartsWith(" 1 1 1 1 1\nA 1 "));
}

TEST(BatchNames, AnExtensionWithAFinalBlankIsCutOff) {
  const ProjectFolder project;
  project.addTrace("x.ab1 ", anyTrace());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_THAT(project.phd("x"), StartsWith(phdStart("x")));
  EXPECT_THAT(project.poly("x"), StartsWith(polyStart("x")));
}

TEST(BatchNames, ABareGzKeepsItsNameButIsUnpacked) {
  const ProjectFolder project;
  project.addGzipped(".gz", anyTrace());

  const ProgramResult result = project.runList({".gz"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre(".gz.phd.1"));
}

TEST(BatchNames, ABareGzThatIsMissingIsReportedWithoutItsName) {
  const ProjectFolder project;
  const std::string complaints = gunzipComplaints(project, project.at("chromat_dir/.gz").text());

  const ProgramResult result = project.runList({".gz"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}) + complaints + project.invalidTrace(""));
}

TEST(BatchNames, TheOnlyDotOfAListedPathMayStandInItsFolder) {
  const ProjectFolder project;
  project.addTrace("run.1/x", anyTrace());
  project.makeFolder("phd_dir/run.1");
  project.makeFolder("poly_dir/run.1");

  const ProgramResult result = project.runList({"run.1/x"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_THAT(project.phd("run.1/x"), StartsWith(phdStart("run.1/x")));
  EXPECT_THAT(project.poly("run.1/x"), StartsWith(polyStart("run.1/x")));
}

TEST(BatchNames, TheFirstWordOfEachLineOfTheListFileIsAName) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());
  project.addTrace("b.scf", anyTrace());
  project.addTrace("extra", anyTrace());
  project.addTrace("c.ab1", anyTrace());
  project.write("names", "a.ab1 extra\n\nb.scf\n");

  const ProgramResult result = project.run({"-l", "names"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1", "b.phd.1"));
  EXPECT_THAT(project.entries("poly_dir"), ElementsAre("a.poly", "b.poly"));
}

TEST(BatchNames, AnyWhiteSpaceSeparatesTheWordsOfTheListFile) {
  const ProjectFolder project;
  for (const char* name : {"a", "b", "c", "d", "e"}) project.addTrace(name, anyTrace());
  project.write("names", "a\r\n\r\n \t \n\tb extra\n  c\vextra\nd\fextra\r\n\ne");

  const ProgramResult result = project.run({"-l", "names"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 20, 40, 60, 80, 100}));
  EXPECT_THAT(project.entries("phd_dir"),
              ElementsAre("a.phd.1", "b.phd.1", "c.phd.1", "d.phd.1", "e.phd.1"));
}

TEST(BatchNames, AWordOfTheListFileThatBeginsWithANumberSignIsAName) {
  const ProjectFolder project;
  project.addTrace("#a.ab1", anyTrace());

  const ProgramResult result = project.runList({"#a.ab1", "# b.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}) + project.invalidTrace("#"));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("#a.phd.1"));
}

TEST(BatchNames, AreTakenInTheOrderOfTheListFile) {
  const ProjectFolder project;

  const ProgramResult result = project.runList({"c.ab1", "a.ab1", "B.ab1", "a.abi"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 25}) + project.invalidTrace("c.ab1") +
                            meterLines({50}) + project.invalidTrace("a.ab1") + meterLines({75}) +
                            project.invalidTrace("B.ab1") + meterLines({100}) +
                            project.invalidTrace("a.abi"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

TEST(BatchNames, ThatDoNotExistAreReportedAndTheOthersConverted) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.runList({"lost.ab1", "a.ab1", "gone"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 34}) + project.invalidTrace("lost.ab1") +
                            meterLines({67, 100}) + project.invalidTrace("gone"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1"));
}

TEST(BatchNames, AMissingListFileEndsTheRun) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.run({"-l", "nowhere/names"});

  EXPECT_EQ(result.err, banner() + "ERROR: can not open the file nowhere/names" +
                            "\n\nQUILLET is terminating.\n\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
}

TEST(BatchNames, AnEmptyListFileConvertsNothing) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.runList({});

  EXPECT_EQ(result.err, banner() + "   0% done\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
}

TEST(BatchNames, AListFileThatIsADirectoryHoldsNoNames) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.run({"-l", "edit_dir"});

  EXPECT_EQ(result.err, banner() + "   0% done\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

TEST(BatchNames, AnEmptyListFileNameStandsForTheChromatDirectory) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.run({"-l", ""});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1"));
}

TEST(BatchNames, TheListFileIsSoughtInTheWorkingDirectoryAndNotInTheProject) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());
  project.addTrace("b.ab1", anyTrace());
  project.write("names", "b.ab1\n");
  project.write("elsewhere/names", "a.ab1\n");

  const ProgramResult result =
      runQuillet({.folder = project.at("elsewhere").text(),
                  .arguments = {"-d", project.path().string(), "-l", "names"}});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1"));
}

TEST(BatchNames, AHyphenReadsTheNamesFromStandardInput) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());
  project.addTrace("b.ab1", anyTrace());
  project.addTrace("c.ab1", anyTrace());
  project.write("-", "b.ab1\n");

  const ProgramResult result = project.run({"-l", "-"}, "c.ab1 extra\n\na.ab1");

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1", "c.phd.1"));
}

TEST(BatchNames, EmptyStandardInputConvertsNothing) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.run({"-list", "-"}, "");

  EXPECT_EQ(result.err, banner() + "   0% done\n");
  EXPECT_EQ(result.status, 0);
}

TEST(BatchNames, AnotherPathToAFileNamedHyphenIsAnOrdinaryListFile) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());
  project.addTrace("b.ab1", anyTrace());
  project.write("-", "b.ab1\n");

  project.run({"-l", "./-"}, "a.ab1\n");

  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("b.phd.1"));
}

TEST(BatchNames, ADuplicateIsPassedOverSinceItsResultExistsByThen) {
  const ProjectFolder project;
  project.addTrace("empty.ab1", traceWithoutCalls());
  project.addTrace("full.ab1", anyTrace());

  const ProgramResult result = project.runList({"empty.ab1", "full.ab1", "empty.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 34, 67, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.phdBases("empty"), "");
  EXPECT_EQ(project.poly("empty"), "empty 1 1 1 1 1\n");
}

TEST(BatchNames, ADuplicateIsWrittenASecondTimeWithOverwrite) {
  const ProjectFolder project;
  project.addTrace("empty.ab1", traceWithoutCalls());
  project.addTrace("full.ab1", anyTrace());

  const ProgramResult result = project.runList({"empty.ab1", "full.ab1", "empty.ab1"}, {"-o"});

  // The second time the trace gets the base calls of the file before it.
  EXPECT_EQ(result.err, banner() + meterLines({0, 34, 67, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.phdBases("empty"), "A 40 1\nC 40 4\nG 40 7\nT 40 10\n");
}

TEST(BatchNames, ADuplicateThatCanNotBeReadIsReportedTwice) {
  const ProjectFolder project;

  const ProgramResult result = project.runList({"lost.ab1", "lost.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50}) + project.invalidTrace("lost.ab1") +
                            meterLines({100}) + project.invalidTrace("lost.ab1"));
}

TEST(BatchNames, TwoNamesOfOneSampleAreConvertedOnceTheFirstOfThem) {
  const ProjectFolder project;
  project.addTrace("x.abi", AbifBuilder().callerName("abi").build());
  project.addTrace("x.ab1", AbifBuilder().callerName("ab1").build());

  project.run();

  EXPECT_THAT(project.phd("x"), testing::HasSubstr("\nCALL_METHOD: ab1\n"));
}

TEST(BatchNames, TheChromatDirectoryIsTakenInAscendingByteOrder) {
  const ProjectFolder project;
  for (const char* name : {"b", "a", "a.1", "B", "9", "10", "\xe9", "~", "_", "a-1"}) {
    project.addTrace(name, "no trace");
  }

  const ProgramResult result = project.run();

  std::string expected = banner() + meterLines({0});
  int percentage = 0;
  for (const char* name : {"10", "9", "B", "_", "a", "a-1", "a.1", "b", "~", "\xe9"}) {
    expected += meterLines({percentage += 10}) + project.invalidTrace(name);
  }
  EXPECT_EQ(result.err, expected);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}

TEST(BatchNames, HiddenFilesAndSubdirectoriesOfTheChromatDirectoryAreNeverConverted) {
  const ProjectFolder project;
  project.addTrace("a.ab1", anyTrace());
  project.addTrace(".hidden.ab1", anyTrace());
  project.addTrace(".ab1", anyTrace());
  project.addTrace("folder.ab1/inside.ab1", anyTrace());
  project.addTrace(".folder/inside.ab1", anyTrace());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1"));
  EXPECT_THAT(project.entries("poly_dir"), ElementsAre("a.poly"));
}

TEST(BatchNames, AnEmptyChromatDirectoryConvertsNothing) {
  const ProjectFolder project;

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + "   0% done\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
}
