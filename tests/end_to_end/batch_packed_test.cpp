#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

#include "tests/end_to_end/any_trace.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

// The system's gunzip unpacks packed traces; its messages appear among the program's own. The tests
// get the expected ones from gunzip itself, so that its version does not matter.

using ::testing::AnyOfArray;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

/// The messages of gunzip for a file of chromat_dir.
std::string complaintsAbout(const ProjectFolder& project, const std::string& name) {
  return gunzipComplaints(project, project.at("chromat_dir/" + name).text());
}

/// Expects nothing in the project's root but its directories and the list file.
void expectNoTemporaryFile(const ProjectFolder& project) {
  std::vector<std::string> left = project.entries(".");
  std::erase(left, "names");
  EXPECT_THAT(left, ElementsAre("chromat_dir", "edit_dir", "phd_dir", "poly_dir"));
}

struct PackedCase {
  std::string claim;  // names the trace
  std::string bytes;  // of a file whose name ends in ".gz"
  bool complains;
  bool converted;
};

class PackedTrace : public testing::TestWithParam<PackedCase> {};

void PrintTo(const PackedCase& packedCase, std::ostream* stream) { *stream << packedCase.claim; }

std::string withoutEnd(std::string bytes, std::size_t count) {
  bytes.resize(bytes.size() - count);
  return bytes;
}

/// The packed trace with a wrong checksum: the 4 bytes before the last 4, which are the length.
std::string withWrongChecksum() {
  std::string bytes = gzipped(anyTrace());
  char& byte = bytes[bytes.size() - 8];
  byte = static_cast<char>(byte ^ 1);
  return bytes;
}

}  // namespace

TEST_P(PackedTrace, IsWhatGunzipMakesOfIt) {
  const ProjectFolder project;
  project.addTrace("x.ab1.gz", GetParam().bytes);
  const std::string complaints = complaintsAbout(project, "x.ab1.gz");
  EXPECT_EQ(complaints.empty(), !GetParam().complains);

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}) + complaints +
                            (GetParam().converted ? "" : project.invalidTrace("x.ab1")));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(project.phdBases("x"), GetParam().converted ? anyBases : "");
  EXPECT_EQ(project.has("phd_dir/x.phd.1"), GetParam().converted);
  EXPECT_EQ(project.has("poly_dir/x.poly"), GetParam().converted);
  expectNoTemporaryFile(project);
}

// gunzip -f copies what is not packed. From a cut file it writes all that it could unpack; the
// program ignores its exit status. The last 8 bytes of a packed file are only checksum and length.
INSTANTIATE_TEST_SUITE_P(
    Contents, PackedTrace,
    testing::Values(
        PackedCase{"whole", gzipped(anyTrace()), false, true},
        PackedCase{"not packed", anyTrace(), false, true},
        PackedCase{"neither packed nor a trace", "no trace\n", false, false},
        PackedCase{"packed, but no trace", gzipped("no trace\n"), false, false},
        PackedCase{"packed twice", gzipped(gzipped(anyTrace())), false, false},
        PackedCase{"two members",
                   gzipped(anyTrace().substr(0, 300)) + gzipped(anyTrace().substr(300)), false,
                   true},
        PackedCase{"rubbish after it", gzipped(anyTrace()) + "rubbish", false, true},
        PackedCase{"wrong checksum", withWrongChecksum(), true, true},
        PackedCase{"without its last byte", withoutEnd(gzipped(anyTrace()), 1), true, true},
        PackedCase{"without its trailer", withoutEnd(gzipped(anyTrace()), 8), true, true},
        PackedCase{"cut in the middle", withoutEnd(gzipped(anyTrace()), 100), true, false},
        PackedCase{"cut in its header", gzipped(anyTrace()).substr(0, 5), true, false}));

TEST(PackedTraces, AnEmptyFileNamedGzIsReportedWithoutItsGz) {
  const ProjectFolder project;
  project.addTrace("x.ab1.gz", "");
  const std::string complaints = complaintsAbout(project, "x.ab1.gz");

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err,
            banner() + meterLines({0, 100}) + complaints + project.invalidTrace("x.ab1"));
  expectNoTemporaryFile(project);
}

TEST(PackedTraces, AListedGzThatIsMissingIsLeftToGunzipAndReportedWithoutItsGz) {
  const ProjectFolder project;
  project.addTrace("x.ab1", anyTrace());
  const std::string complaints = complaintsAbout(project, "x.ab1.gz");
  EXPECT_THAT(complaints, HasSubstr("x.ab1.gz"));

  const ProgramResult result = project.runList({"x.ab1.gz"});

  EXPECT_EQ(result.err,
            banner() + meterLines({0, 100}) + complaints + project.invalidTrace("x.ab1"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(project.entries("phd_dir"), IsEmpty());
  expectNoTemporaryFile(project);
}

TEST(PackedTraces, AListedNameIsAlsoFoundWithGzAppended) {
  const ProjectFolder project;
  project.addGzipped("x.ab1.gz", anyTrace());
  project.addGzipped("y.gz", anyTrace());

  const ProgramResult result = project.runList({"x.ab1", "y"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(project.phdBases("x"), anyBases);
  EXPECT_EQ(project.phdBases("y"), anyBases);
  expectNoTemporaryFile(project);
}

TEST(PackedTraces, ANameFoundWithGzAppendedIsReportedAsItIsListed) {
  const ProjectFolder project;
  project.addGzipped("x.ab1.gz", "no trace");

  const ProgramResult result = project.runList({"x.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}) + project.invalidTrace("x.ab1"));
}

TEST(PackedTraces, ThePlainFileIsPreferredToThePackedOneOfThatName) {
  const ProjectFolder project;
  project.addTrace("x.ab1", AbifBuilder().callerName("plain").build());
  project.addGzipped("x.ab1.gz", AbifBuilder().callerName("packed").build());

  project.runList({"x.ab1"});

  EXPECT_THAT(project.phd("x"), HasSubstr("\nCALL_METHOD: plain\n"));
}

TEST(PackedTraces, ADirectoryNamedLikeAPackedTraceIsReported) {
  const ProjectFolder project;
  project.addTrace("x.ab1.gz/inside", "");
  const std::string complaints = complaintsAbout(project, "x.ab1.gz");

  const ProgramResult result = project.runList({"x.ab1.gz", "x.ab1"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 50}) + complaints +
                            project.invalidTrace("x.ab1") + meterLines({100}) + complaints +
                            project.invalidTrace("x.ab1"));
  EXPECT_EQ(result.status, 0);
  expectNoTemporaryFile(project);
}

// gunzip gets two words: "my" in chromat_dir, and a file in the working directory.
TEST(PackedTraces, NamesReachTheShellUnquotedSoThatASpaceMakesTwoOfOne) {
  const ProjectFolder project;
  project.addTrace("my", anyTrace());
  project.addGzipped("my trace.ab1.gz", "no trace, and never looked at");
  const std::string complaints =
      gunzipComplaints(project, project.at("chromat_dir/my").text() + std::string(" trace.ab1.gz"));
  EXPECT_THAT(complaints, HasSubstr(" trace.ab1.gz: "));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 50, 100}) + complaints);
  EXPECT_EQ(project.phdBases("my trace"), anyBases);
}

TEST(PackedTraces, ASpaceThatLeadsNowhereIsReportedWithTheWholeName) {
  const ProjectFolder project;
  project.addGzipped("my trace.ab1.gz", anyTrace());
  const std::string complaints =
      gunzipComplaints(project, project.at("chromat_dir/my").text() + std::string(" trace.ab1.gz"));

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err,
            banner() + meterLines({0, 100}) + complaints + project.invalidTrace("my trace.ab1"));
  EXPECT_EQ(result.status, 0);
  expectNoTemporaryFile(project);
}

TEST(PackedTraces, ASpaceInTheNameOfAPlainTraceDoesNoHarm) {
  const ProjectFolder project;
  project.addTrace("my trace.ab1", anyTrace());

  const ProgramResult result = project.run();

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("my trace"), anyBases);
}

TEST(PackedTraces, NamesReachTheShellUnquotedSoThatPatternsAreExpanded) {
  const ProjectFolder project;
  project.addGzipped("a.ab1.gz", anyTrace());

  const ProgramResult result = project.runList({"?.ab1.gz"});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("?"), anyBases);
}

// The gunzip of this test lists the working directory while it runs.
TEST(PackedTraces, AreUnpackedIntoAFileOfTheWorkingDirectoryThatIsNamedByTheMoment) {
  const ProjectFolder project;
  project.addGzipped("x.ab1.gz", anyTrace());
  project.makeFolder("elsewhere");
  const auto environment = project.withGunzip("ls > ../seen\nexec gzip -d \"$@\"\n");
  const std::time_t before = std::time(nullptr);

  const ProgramResult result = runQuillet({.folder = project.at("elsewhere").text(),
                                           .arguments = {"-d", project.path().string()},
                                           .environment = environment});

  EXPECT_EQ(result.err, banner() + meterLines({0, 100}));
  EXPECT_EQ(project.phdBases("x"), anyBases);
  std::string name = project.read("seen");
  ASSERT_THAT(name, testing::EndsWith("\n"));
  name.pop_back();
  EXPECT_THAT(name, AnyOfArray(momentTexts(before, std::time(nullptr), "temp%y%m%d%H%M%S")));
  EXPECT_THAT(project.entries("elsewhere"), IsEmpty());
}

TEST(PackedTraces, AreGivenToTheGunzipOfTheSearchPathWithTheWholePath) {
  const ProjectFolder project;
  project.addTrace("x.ab1.gz", "anything");

  runQuillet({.folder = project.path().string(),
              .environment = project.withGunzip("echo \"$@\" > edit_dir/seen\n")});

  EXPECT_EQ(project.read("edit_dir/seen"),
            "-c -f " + project.path().string() + "/chromat_dir/x.ab1.gz\n");
}
