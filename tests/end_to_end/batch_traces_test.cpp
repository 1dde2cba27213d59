#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

/// `count` samples: 0, except for the given ones.
std::vector<int> samples(std::size_t count, const std::map<std::size_t, int>& given) {
  std::vector<int> values(count);
  for (const auto& [index, value] : given) values[index] = value;
  return values;
}

/// Expects a message for every trace and no output file.
void expectAllInvalid(const ProjectFolder& project, const std::vector<std::string>& names) {
  std::string errors;
  for (const std::string& name : names) errors += project.invalidTrace(name);

  const ProgramResult result = project.runList(names);

  std::string reported;
  std::istringstream lines(result.err.substr(banner().size()));
  for (std::string line; std::getline(lines, line);) {
    if (!line.ends_with("% done")) reported += line + '\n';
  }
  EXPECT_EQ(reported, errors);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
  EXPECT_THAT(project.entries("poly_dir"), IsEmpty());
}

struct NamedTrace {
  std::string name;
  std::string bytes;
};

void expectAllInvalid(const std::vector<NamedTrace>& traces) {
  const ProjectFolder project;
  std::vector<std::string> names;
  for (const NamedTrace& trace : traces) {
    project.addTrace(trace.name, trace.bytes);
    names.push_back(trace.name);
  }
  expectAllInvalid(project, names);
}

}  // namespace

// The highest sample, 1020, becomes 65280: a factor of 64. The trace is too short for the channel
// balance, so all normalised heights are 0. The search ranges of the bases are 2 to 8, 8 to 16,
// 16 to 24 and 24 to 30. A peak's position is the index after its maximum.
//   A: maximum at 4. G and T have the height 20 * 64 at 6 and 5; the first of equals is chosen.
//   C: no maximum, since its samples from 8 to 17 are equal: it falls back to its position, 12.
//      A has a maximum at 12.
//   G: maximum at 20. The end of C's samples, 17, is a maximum too.
//   N: heights but no second base. The first of A's two equal samples counts.
TEST(BatchTraces, AWorkedExampleGivesBothFilesToTheLastByte) {
  const ProjectFolder project;
  const std::vector<int> adenine =
      samples(32, {{3, 400}, {4, 1020}, {5, 400}, {12, 100}, {26, 10}, {27, 10}});
  std::vector<int> cytosine(32);
  for (std::size_t i = 8; i <= 17; ++i) cytosine[i] = 300;
  project.addTrace("worked.ab1",
                   AbifBuilder()
                       .bases("ACGN")
                       .qualities({20, 35, 12, 200})
                       .peaks({4, 12, 20, 28})
                       .callerName("caller 1.0")
                       .channel('A', adenine)
                       .channel('C', cytosine)
                       .channel('G', samples(32, {{6, 20}, {19, 200}, {20, 510}, {21, 200}}))
                       .channel('T', samples(32, {{5, 20}, {28, 700}}))
                       .build());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + "   0% done\n 100% done\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(project.timelessPhd("worked"), R"(BEGIN_SEQUENCE worked

BEGIN_COMMENT
CHROMAT_FILE: worked
ABI_THUMBPRINT: 0
PHRED_VERSION: quillet
CALL_METHOD: caller 1.0
QUALITY_LEVELS: 99
TIME: @TIME@
TRACE_ARRAY_MIN_INDEX: 0
TRACE_ARRAY_MAX_INDEX: 31
CHEM: term
DYE: big
END_COMMENT

BEGIN_DNA
A 20 4
C 35 12
G 12 20
N -56 28
END_DNA
END_SEQUENCE
)");
  EXPECT_EQ(project.poly("worked"), R"(worked 1 1 1 1 1
A 4 0 0 G 7 0 0 65280 0 1280 1280
C 12 0 0 A 13 0 0 6400 19200 0 0
G 20 0 0 C 18 0 0 0 19200 32640 0
N 28 0 0 N 0 0 0 640 0 0 44800
)");
}

TEST(BatchTraces, AreKnownByTheirContentAndNotByTheirExtension) {
  const ProjectFolder project;
  project.addTrace("a.scf", anyTrace());
  project.addTrace("b.ab1", ScfBuilder().build());
  project.addTrace("c.txt", anyTrace());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 34, 67, 100}));
  EXPECT_THAT(project.phd("a"), HasSubstr("\nCALL_METHOD: built.bcp\n"));
  EXPECT_THAT(project.phd("b"), HasSubstr("\nCALL_METHOD: built.scf\n"));
  EXPECT_EQ(project.phdBases("b"), "A 11 1\nC 12 4\nG 13 7\nT 14 10\n");
  EXPECT_THAT(project.phd("c.txt"), HasSubstr("\nCALL_METHOD: built.bcp\n"));
}

TEST(BatchTraces, MayStandAfterAHeaderOf128Bytes) {
  const ProjectFolder project;
  project.addTrace("x.ab1", AbifBuilder().prefix(128).build());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("x"), anyBases);
  EXPECT_THAT(project.phd("x"), HasSubstr("\nCALL_METHOD: built.bcp\n"));
}

TEST(BatchTraces, ThatHoldNoTraceAreReportedAndSkipped) {
  std::string lowerCase = anyTrace();
  lowerCase.replace(0, 4, "abif");
  expectAllInvalid({{"empty.ab1", ""},
                    {"one-byte.ab1", "A"},
                    {"three-bytes.ab1", "ABI"},
                    {"four-bytes.ab1", "ABIF"},
                    {"four-other-bytes.ab1", "none"},
                    {"text.ab1", "This is no trace.\n"},
                    {"long-text.ab1", std::string(5000, 'A')},
                    {"lower-case.ab1", lowerCase},
                    {"short-prefix.ab1", AbifBuilder().prefix(64).build()},
                    {"long-prefix.ab1", AbifBuilder().prefix(129).build()}});
}

TEST(BatchTraces, WithAnUnusableDirectoryAreReportedAndSkipped) {
  expectAllInvalid({
      {"no-base-order", AbifBuilder().without("FWO_", 1).build()},
      {"long-base-order", AbifBuilder().dataSize("FWO_", 1, 5).build()},
      {"strange-base-order", AbifBuilder().baseOrder("GATN").build()},
      {"no-channel-9", AbifBuilder().without("DATA", 9).build()},
      {"no-channel-12", AbifBuilder().without("DATA", 12).build()},
      {"no-channels", AbifBuilder()
                          .without("DATA", 9)
                          .without("DATA", 10)
                          .without("DATA", 11)
                          .without("DATA", 12)
                          .build()},
      {"empty-entry-for-a-channel", AbifBuilder().dataSize("DATA", 9, 4).build()},
      {"unequal-channels", AbifBuilder().count("DATA", 12, 11).last("DATA", 12).build()},
      {"unequal-first-channel", AbifBuilder().count("DATA", 9, 11).build()},
      {"too-few-qualities", AbifBuilder().count("PCON", 1, 3).build()},
      {"too-many-qualities", AbifBuilder().count("PCON", 1, 5).build()},
      {"no-qualities", AbifBuilder().without("PCON", 1).build()},
      {"too-few-peaks", AbifBuilder().count("PLOC", 1, 3).build()},
      {"too-many-peaks", AbifBuilder().count("PLOC", 1, 5).build()},
      {"no-peaks", AbifBuilder().without("PLOC", 1).build()},
      {"directory-past-the-end", AbifBuilder().headerDirectoryOffset(5000).build()},
      {"more-entries-than-there-are", AbifBuilder().headerEntryCount(13).build()},
      {"no-entries", AbifBuilder().headerEntryCount(0).build()},
  });
}

// Only one channel's count is compared: the one that the number of the last entry, "SPAC" 2, names.
TEST(BatchTraces, AnUnequalChannelThatTheLastEntryDoesNotNameIsNotNoticed) {
  const ProjectFolder project;
  project.addTrace("compared", AbifBuilder().count("DATA", 11, 11).build());
  project.addTrace("ignored", AbifBuilder().count("DATA", 10, 11).build());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err,
            banner() + meterLines({0, 50}) + project.invalidTrace("compared") + meterLines({100}));
  EXPECT_EQ(project.phdBases("ignored"), anyBases);
}

// The file of 602 bytes ends with the directory, 12 entries of 28 bytes. The last entry, "SPAC" 2,
// is read up to its offset field; its last four bytes are not needed.
TEST(BatchTraces, CutAnywhereBeforeTheLastFieldOfTheDirectoryAreReportedAndSkipped) {
  const ProjectFolder project;
  const std::string whole = anyTrace();
  ASSERT_EQ(whole.size(), 602u);
  std::vector<std::string> names;
  std::string expected = banner() + meterLines({0});
  int shown = 0;
  for (int size = 0; size <= 602; ++size) {
    const std::string name = "cut-to-" + std::to_string(size);
    project.addTrace(name, AbifBuilder().truncatedTo(static_cast<std::size_t>(size)).build());
    names.push_back(name);
    const int percentage = (100 * (size + 1) + 602) / 603;
    if (percentage != shown) expected += meterLines({shown = percentage});
    if (size < 598) expected += project.invalidTrace(name);
  }

  const ProgramResult result = project.runList(names);

  EXPECT_EQ(result.err, expected);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"),
              ElementsAre("cut-to-598.phd.1", "cut-to-599.phd.1", "cut-to-600.phd.1",
                          "cut-to-601.phd.1", "cut-to-602.phd.1"));
  EXPECT_EQ(project.phdBases("cut-to-598"), anyBases);
}

// The directory starts at 128; its last entry, "SPAC" 2, is at 436. The data follows: the channels
// at 464, the bases at 560, the qualities at 568, the peaks at 576 and the caller name at 592.
TEST(BatchTraces, CutInTheirDataAreConvertedWithZerosForWhatIsMissing) {
  const ProjectFolder project;
  std::vector<std::string> names;
  for (const int size : {459, 460, 464, 562, 570, 580, 597, 602}) {
    names.push_back(std::to_string(size));
    project.addTrace(
        names.back(),
        AbifBuilder().directoryFirst().truncatedTo(static_cast<std::size_t>(size)).build());
  }

  const ProgramResult result = project.runList(names);

  EXPECT_EQ(result.err, banner() + meterLines({0, 13}) + project.invalidTrace("459") +
                            meterLines({25, 38, 50, 63, 75, 88, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.phdBases("460"), "");
  EXPECT_THAT(project.phd("460"), HasSubstr("\nTRACE_ARRAY_MAX_INDEX: 11\n"));
  EXPECT_EQ(project.poly("464"), "464 1 1 1 1 1\n");
  EXPECT_EQ(project.phdBases("562"), "A 0 0\nC 0 0\n");
  EXPECT_EQ(project.phdBases("570"), "A 40 0\nC 40 0\nG 0 0\nT 0 0\n");
  EXPECT_EQ(project.phdBases("580"), "A 40 1\nC 40 4\nG 40 0\nT 40 0\n");
  EXPECT_THAT(project.phd("580"), HasSubstr("\nCALL_METHOD: \n"));
  EXPECT_EQ(project.phdBases("597"), anyBases);
  EXPECT_THAT(project.phd("597"), HasSubstr("\nCALL_METHOD: buil\n"));
}

TEST(BatchTraces, AMultitudeOfOtherEntriesDoesNoHarm) {
  const ProjectFolder project;
  project.addTrace("x.ab1", AbifBuilder().otherEntries(200).build());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("x"), anyBases);
}

TEST(BatchTraces, ADirectoryNamedLikeATraceIsReported) {
  const ProjectFolder project;
  project.addTrace("x.ab1/inside", "");
  project.addTrace("a.ab1", anyTrace());

  const ProgramResult result = project.runList({"x.ab1", "a.ab1"});

  EXPECT_EQ(result.err,
            banner() + meterLines({0, 50}) + project.invalidTrace("x.ab1") + meterLines({100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), ElementsAre("a.phd.1"));
}

// Opening a pipe would wait forever for a writer.
TEST(BatchTraces, ANamedPipeIsReportedAndDoesNotHoldUpTheBatch) {
  const ProjectFolder project;
  project.addTrace("y.ab1", anyTrace());
  ASSERT_EQ(mkfifo(project.at("chromat_dir/x.ab1").text(), 0600), 0);
  project.write("names", "x.ab1\n");

  const ProgramResult scanned = runProgram(
      "timeout", {.folder = project.path().string(), .arguments = {"20", QUILLET_PROGRAM}});
  const ProgramResult listed = runProgram(
      "timeout",
      {.folder = project.path().string(), .arguments = {"20", QUILLET_PROGRAM, "-l", "names"}});

  EXPECT_EQ(scanned.err,
            banner() + meterLines({0, 50}) + project.invalidTrace("x.ab1") + meterLines({100}));
  EXPECT_EQ(scanned.status, 0);
  EXPECT_EQ(project.phdBases("y"), anyBases);
  EXPECT_EQ(listed.err, banner() + meterLines({0, 100}) + project.invalidTrace("x.ab1"));
  EXPECT_EQ(listed.status, 0);
}
