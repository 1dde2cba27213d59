#include "audit/project_audit.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// Small projects, converted by the real program and then changed.

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Quillet::AuditedSample;
using Quillet::SampleRow;
using Quillet::SampleState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string trace(std::uint32_t seed = 1) { return believableTrace(seed, 80).abif().build(); }

/// A trace whose calls pass the gate and whose qualities are placeholders.
std::string traceWithoutQualities(int baseCount) {
  TraceContents contents = believableTrace(90, baseCount);
  contents.qualities.assign(contents.qualities.size(), 5);
  return contents.abif().build();
}
std::string traceWithoutCalls() {
  return believableTrace(91, 80).abif().without("PBAS", 1).build();
}

class ProjectAudit : public ::testing::Test {
 protected:
  void convert(std::vector<std::string> arguments = {}) const {
    ASSERT_EQ(project_.run(std::move(arguments)).status, 0);
  }

  /// The rows of an audit of the project.
  std::vector<SampleRow> rows() {
    std::vector<SampleRow> found;
    steps_ = 0;
    audit([&](const AuditedSample& sample) { found.push_back(sample.row); });
    return found;
  }

  void audit(const std::function<void(const AuditedSample&)>& visit) {
    settings_.dataDir = project_.path().string() + "/";
    Quillet::Project prepared(settings_);
    prepared.prepare(Quillet::ProjectUse::read);
    Quillet::ProjectAudit audit(settings_, prepared, 0.33);
    names_ = audit.nameCount();
    audit.run(visit, [&] { ++steps_; });
  }

  /// One line for every row: trace or (sample), state, detail.
  std::vector<std::string> lines() {
    std::vector<std::string> texts;
    for (const SampleRow& row : rows()) {
      texts.push_back(row.trace.value_or("(" + row.sample + ")") + ": " + textOf(row.state) +
                      (row.detail.empty() ? "" : " " + row.detail));
    }
    return texts;
  }

  std::string only() {
    const std::vector<std::string> all = lines();
    return all.size() == 1 ? all[0] : std::to_string(all.size()) + " rows";
  }

  void change(const std::string& file, const std::string& part, const std::string& replacement) {
    std::string text = project_.read(file);
    const std::size_t found = text.find(part);
    ASSERT_NE(found, std::string::npos) << part;
    project_.write(file, text.replace(found, part.size(), replacement));
  }

  void writeList(const std::string& names) {
    settings_.listFile_ = project_.write("names", names).text();
  }

  ProjectFolder project_;
  Quillet::Settings settings_;
  std::size_t names_ = 0;
  int steps_ = 0;
};

TEST_F(ProjectAudit, AnEmptyProjectHasNoRows) { EXPECT_THAT(lines(), IsEmpty()); }

TEST_F(ProjectAudit, ConvertedTracesOfEveryKindAreConverted) {
  project_.addTrace("a.ab1", trace(1));
  project_.addGzipped("b.ab1.gz", trace(2));
  project_.addTrace("c.scf", believableTrace(3, 80).scf().build());
  project_.addGzipped("d.scf.gz", believableTrace(4, 80).scf().build());
  project_.addTrace("e f'g\".ab1", trace(5));
  project_.addTrace("h", AbifBuilder().prefix(128).build());
  project_.addTrace("line\nfeed.ab1", AbifBuilder().bases("A\n C").callerName("x\ny").build());
  convert();

  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "b.ab1.gz: converted", "c.scf: converted",
                                   "d.scf.gz: converted", "e f'g\".ab1: converted", "h: converted",
                                   "line\nfeed.ab1: converted"));
  EXPECT_EQ(steps_, 7);
  EXPECT_EQ(names_, 7U);
}

TEST_F(ProjectAudit, NothingIsWritten) {
  project_.addTrace("a.ab1", trace(1));
  project_.addGzipped("b.ab1.gz", trace(2));
  project_.addTrace("c.ab1.gz", "damaged");
  for (const char* folder : {"chromat_dir", "phd_dir", "poly_dir", "."}) {
    fs::permissions(project_.path() / folder, static_cast<fs::perms>(0500));
  }

  EXPECT_THAT(lines(),
              ElementsAre("a.ab1: waiting", "b.ab1.gz: waiting", "c.ab1.gz: invalid not a trace"));
  for (const char* folder : {"phd_dir", "poly_dir", "edit_dir"}) {
    EXPECT_THAT(project_.entries(folder), IsEmpty());
  }
  EXPECT_EQ(project_.entries(".").size(), 4U);
}

// Rows.

TEST_F(ProjectAudit, ARowHasFiguresCallerAndNotes) {
  project_.addTrace(
      "a.ab1",
      AbifBuilder().bases("ACGN").qualities({10, 20, 30, 200}).callerName("caller 1").build());

  const std::vector<SampleRow> found = rows();

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].sample, "a");
  EXPECT_EQ(found[0].trace, "a.ab1");
  EXPECT_EQ(found[0].bases, 4U);
  ASSERT_TRUE(found[0].figures);
  EXPECT_EQ(found[0].figures->meanQuality, 15);
  EXPECT_EQ(found[0].figures->q20, 2U);
  EXPECT_EQ(found[0].figures->trimEnd, 4U);
  EXPECT_EQ(found[0].figures->noCalls, 1U);
  EXPECT_EQ(found[0].caller, "caller 1");
  EXPECT_EQ(found[0].notes.well, std::nullopt);
}

TEST_F(ProjectAudit, FiguresCountBasesAfterAZeroByteAsWell) {
  project_.addTrace("a.ab1", AbifBuilder().bases("AC\0N"s).qualities({30, 0, 40, 30}).build());

  const std::vector<SampleRow> found = rows();

  EXPECT_EQ(found[0].bases, 4U);
  EXPECT_EQ(found[0].figures->meanQuality, 25);
  EXPECT_EQ(found[0].figures->noCalls, 2U);
}

TEST_F(ProjectAudit, ATraceWithoutCallsHas0BasesAndNoFigures) {
  project_.addTrace("a.ab1", traceWithoutCalls());

  const std::vector<SampleRow> found = rows();

  EXPECT_EQ(found[0].bases, 0U);
  EXPECT_FALSE(found[0].figures);
  EXPECT_EQ(found[0].caller, "");
}

TEST_F(ProjectAudit, ATraceThatCanNotBeReadHasNoFigures) {
  project_.addTrace("a.ab1", "text");

  const std::vector<SampleRow> found = rows();

  EXPECT_FALSE(found[0].bases);
  EXPECT_FALSE(found[0].figures);
  EXPECT_FALSE(found[0].caller);
}

TEST_F(ProjectAudit, AVisitBorrowsContentAndWhatAWrongResultSays) {
  project_.addTrace("a.ab1", AbifBuilder().bases("ACGT").build());
  project_.addTrace("b.ab1", AbifBuilder().bases("ACGT").build());
  project_.addTrace("c.ab1", "text");
  convert();
  change("phd_dir/b.phd.1", "\nC 40 4\n", "\nT 40 4\n");

  std::vector<std::string> seen;
  audit([&](const AuditedSample& sample) {
    std::string text = sample.row.sample;
    if (sample.content != nullptr) {
      text += " " + std::string(sample.content->calls.bases.get(), 4) + " " +
              std::to_string(sample.content->channels[0][3]);
    }
    if (sample.result != nullptr) text += " " + sample.result->bases;
    seen.push_back(text);
  });

  // Sample 3 of channel A, as stored.
  EXPECT_THAT(seen, ElementsAre("a ACGT 103", "b ACGT 103 ATGT", "c"));
}

// States.

TEST_F(ProjectAudit, ChangedResultsDiffer) {
  project_.addTrace("a.ab1", AbifBuilder().bases("ACGT").build());
  convert();
  const struct {
    const char* file;
    const char* part;
    const char* replacement;
    const char* detail;
  } cases[] = {
      {"phd_dir/a.phd.1", "\nC 40 4\n", "\nT 40 4\n", "bases"},
      {"phd_dir/a.phd.1", "\nC 40 4\n", "\nC 41 4\n", "qualities"},
      {"phd_dir/a.phd.1", "\nC 40 4\n", "\nC 40 5\n", "positions"},
      {"phd_dir/a.phd.1", "FILE: a\n", "FILE: b\n", "header"},
      {"phd_dir/a.phd.1", "\nC 40 4\n", "\n", "bases,qualities,positions"},
      {"poly_dir/a.poly", "\nC 4 ", "\nC 5 ", "poly"},
      {"poly_dir/a.poly", "a 1 1 1 1 1\n", "b 1 1 1 1 1\n", "poly"},
  };
  for (const auto& row : cases) {
    const std::string before = project_.read(row.file);
    change(row.file, row.part, row.replacement);
    EXPECT_EQ(only(), "a.ab1: differs "s + row.detail);
    project_.write(row.file, before);
  }
  EXPECT_EQ(only(), "a.ab1: converted");
}

TEST_F(ProjectAudit, SwappedResultsDifferInAllTheirParts) {
  project_.addTrace("a.ab1", trace(1));
  project_.addTrace("b.ab1", believableTrace(2, 90).abif().build());
  convert();
  const auto swap = [&](const std::string& one, const std::string& other) {
    const std::string kept = project_.read(one);
    project_.write(one, project_.read(other));
    project_.write(other, kept);
  };

  swap("phd_dir/a.phd.1", "phd_dir/b.phd.1");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: differs bases,qualities,positions,header",
                                   "b.ab1: differs bases,qualities,positions,header"));
  swap("poly_dir/a.poly", "poly_dir/b.poly");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: differs bases,qualities,positions,header,poly",
                                   "b.ab1: differs bases,qualities,positions,header,poly"));
  swap("phd_dir/a.phd.1", "phd_dir/b.phd.1");
  // Each .poly has another number of lines than the .phd.1 has bases.
  EXPECT_THAT(lines(), ElementsAre("a.ab1: cut poly", "b.ab1: cut poly"));
}

TEST_F(ProjectAudit, ATraceThatWentOrWasDamagedAfterTheRunIsADifference) {
  project_.addTrace("a.ab1", trace(1));
  convert();

  project_.addTrace("a.ab1", "text");
  EXPECT_EQ(only(), "a.ab1: differs invalid");
  project_.addTrace("a.ab1", doubtfulTrace(1, 80).abif().build());
  EXPECT_EQ(only(), "a.ab1: differs refused");
  fs::remove(project_.path() / "chromat_dir/a.ab1");
  EXPECT_EQ(only(), "(a): orphan phd,poly");
  writeList("a.ab1\n");
  EXPECT_EQ(only(), "a.ab1: differs invalid");
}

TEST_F(ProjectAudit, CutResultsAreCut) {
  project_.addTrace("a.ab1", trace(1));
  convert();
  const std::string phd = project_.phd("a");
  const std::string poly = project_.poly("a");
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, phd.size() / 2, phd.size() - 1}) {
    project_.write("phd_dir/a.phd.1", phd.substr(0, size));
    EXPECT_EQ(only(), "a.ab1: cut phd") << size;
  }
  project_.write("poly_dir/a.poly", "");
  EXPECT_EQ(only(), "a.ab1: cut phd,poly");
  project_.write("phd_dir/a.phd.1", phd);
  for (const std::size_t size : {std::size_t{0}, poly.size() / 2, poly.size() - 1}) {
    project_.write("poly_dir/a.poly", poly.substr(0, size));
    EXPECT_EQ(only(), "a.ab1: cut poly") << size;
  }
  fs::remove(project_.path() / "poly_dir/a.poly");
  EXPECT_EQ(only(), "a.ab1: no-poly");
  fs::remove(project_.path() / "phd_dir/a.phd.1");
  project_.write("poly_dir/a.poly", poly);
  EXPECT_EQ(only(), "a.ab1: waiting");
}

TEST_F(ProjectAudit, ResultsThatAreNoFilesAreCut) {
  project_.addTrace("a.ab1", trace(1));
  convert();
  const std::string poly = (project_.path() / "poly_dir/a.poly").string();
  const std::string phd = (project_.path() / "phd_dir/a.phd.1").string();

  fs::remove(poly);
  ASSERT_EQ(mkfifo(poly.c_str(), 0600), 0);
  EXPECT_EQ(only(), "a.ab1: cut poly");
  fs::remove(phd);
  project_.makeFolder("phd_dir/a.phd.1");
  EXPECT_EQ(only(), "a.ab1: cut phd,poly");
  fs::remove(phd);
  fs::create_symlink("nowhere", phd);  // the converter sees no file there
  EXPECT_EQ(only(), "a.ab1: waiting");
}

TEST_F(ProjectAudit, ResultsThatMayNotBeReadAreCut) {
  project_.addTrace("a.ab1", trace(1));
  convert();
  for (const char* name : {".", "phd_dir", "poly_dir", "chromat_dir"}) {
    fs::permissions(project_.path() / name, static_cast<fs::perms>(0755));
  }
  fs::permissions(project_.path() / "phd_dir/a.phd.1", fs::perms::none);
  fs::permissions(project_.path() / "poly_dir/a.poly", fs::perms::none);
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "the superuser reads every file";

  EXPECT_EQ(only(), "a.ab1: cut phd,poly");
}

TEST_F(ProjectAudit, BlocksOfOtherToolsAreNoDifference) {
  project_.addTrace("a.ab1", trace(1));
  convert();

  project_.write("phd_dir/a.phd.1",
                 project_.phd("a") + "\nWR{\ntool\n}\n\nBEGIN_TAG\nx\nEND_TAG\n");
  EXPECT_EQ(only(), "a.ab1: converted");
  change("phd_dir/a.phd.1", "END_DNA\n", "END_DNA\nBEGIN_TAG\nx\nEND_TAG\n");
  EXPECT_EQ(only(), "a.ab1: converted");
  project_.write("phd_dir/a.phd.1", project_.phd("a") + "END_TAG\n");
  EXPECT_EQ(only(), "a.ab1: cut phd");
}

TEST_F(ProjectAudit, BorrowedCallsAreTold) {
  project_.addTrace("a.ab1", trace(1));
  project_.addTrace("b.ab1", traceWithoutCalls());
  convert();
  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "b.ab1: borrowed calls"));

  fs::remove(project_.path() / "phd_dir/b.phd.1");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "b.ab1: refused no calls"));

  ASSERT_EQ(project_.runList({"b.ab1"}).status, 0);  // alone
  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "b.ab1: converted"));
}

TEST_F(ProjectAudit, BorrowedQualitiesAreTold) {
  project_.addTrace("a.ab1", trace(1));
  project_.addTrace("b.ab1", traceWithoutQualities(80));
  project_.addTrace("c.ab1", traceWithoutQualities(30));
  convert();
  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "b.ab1: borrowed qualities",
                                   "c.ab1: borrowed qualities"));

  for (const char* name : {"b", "c"}) {
    fs::remove(project_.path() / ("phd_dir/"s + name + ".phd.1"));
  }
  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "b.ab1: refused no qualities",
                                   "c.ab1: refused no qualities"));

  // Alone the gate refuses the long one and lets the short one pass.
  ASSERT_EQ(project_.runList({"b.ab1", "c.ab1"}).status, 0);
  EXPECT_THAT(lines(),
              ElementsAre("a.ab1: converted", "b.ab1: refused no qualities", "c.ab1: converted"));
}

// No run gives a long trace without qualities a result of its own, not even one of zeros.
TEST_F(ProjectAudit, AResultThatTheGateWouldHaveRefusedIsNotRight) {
  project_.addTrace("a.ab1", trace(1));
  project_.addTrace("b.ab1", traceWithoutQualities(80));
  convert();
  std::string phd = project_.phd("b");
  std::string zeros = phd.substr(0, phd.find("\nBEGIN_DNA\n") + 11);
  std::istringstream lines(project_.phdBases("b"));
  for (std::string base, quality, position; lines >> base >> quality >> position;) {
    zeros += base + " 0 " + position + "\n";
  }
  project_.write("phd_dir/b.phd.1", zeros + "END_DNA\nEND_SEQUENCE\n");

  EXPECT_THAT(this->lines(), ElementsAre("a.ab1: converted", "b.ab1: borrowed qualities"));
}

TEST_F(ProjectAudit, RefusedTracesNameTheBase) {
  const auto withQuality = [](int base, int quality) {
    TraceContents contents = believableTrace(1, 80);
    contents.bases = std::string(80, 'A');
    contents.qualities.assign(80, 30);
    contents.qualities[static_cast<std::size_t>(base - 1)] = quality;
    return contents.abif().build();
  };
  project_.addTrace("a.ab1", withQuality(43, 0));
  project_.addTrace("b.ab1", withQuality(43, 100));
  project_.addTrace("c.ab1", withQuality(60, 255));
  project_.addTrace("d.ab1", withQuality(7, 0));
  project_.addTrace("e.ab1", withQuality(61, 0));
  convert();

  EXPECT_THAT(lines(), ElementsAre("a.ab1: refused quality 0 at base 43",
                                   "b.ab1: refused quality 100 at base 43",
                                   "c.ab1: refused quality 255 at base 60",
                                   "d.ab1: refused quality 0 at base 7", "e.ab1: converted"));
}

TEST_F(ProjectAudit, OrphansStandAtTheEndBySample) {
  project_.addTrace("m.ab1", trace(1));
  convert();
  project_.write("phd_dir/z.phd.1", "");
  project_.write("poly_dir/z.poly", "");
  project_.write("phd_dir/a.phd.1", project_.phd("m"));
  project_.write("poly_dir/b c.poly", "");
  project_.write("phd_dir/.hidden.phd.1", "");
  project_.write("phd_dir/other.phd.2", "");
  project_.write("poly_dir/m.polyx", "");
  project_.makeFolder("phd_dir/folder.phd.1");

  EXPECT_THAT(lines(), ElementsAre("m.ab1: converted", "(a): orphan phd", "(b c): orphan poly",
                                   "(z): orphan phd,poly"));
  EXPECT_EQ(steps_, 1);

  std::string said;
  audit([&](const AuditedSample& sample) {
    if (sample.row.sample == "a") said = sample.result->bases + ' ';
    if (sample.row.sample == "z") said += sample.result == nullptr ? "none" : "some";
  });
  EXPECT_EQ(said, believableTrace(1, 80).bases + " none");

  writeList("m.ab1\n");
  EXPECT_THAT(lines(), ElementsAre("m.ab1: converted"));
}

TEST_F(ProjectAudit, NamesThatCanGiveNoResultAreInvalid) {
  const std::string longest(249, 'x');  // with ".phd.1" 255 bytes
  project_.addTrace(longest, trace(1));
  project_.addTrace(longest + "y", trace(1));
  project_.addGzipped("a b.ab1.gz", trace(1));
  project_.addTrace("c d.ab1", trace(1));
  project_.addGzipped("e$f.ab1.gz", trace(1));
  project_.addTrace("g(h.ab1.gz", "text");

  EXPECT_THAT(lines(), ElementsAre("a b.ab1.gz: invalid name not for a shell", "c d.ab1: waiting",
                                   "e$f.ab1.gz: invalid name not for a shell",
                                   "g(h.ab1.gz: invalid not a trace", longest + ": waiting",
                                   longest + "y: invalid name too long"));
}

TEST_F(ProjectAudit, EveryCharacterThatTearsANameInAShellIsKnown) {
  const std::string tearing = " \t\n|&;<>()$`\\\"'";
  for (int byte = 1; byte < 127; ++byte) {
    const char character = static_cast<char>(byte);
    if (character == '/') continue;
    const std::string name = "a"s + character + "b.gz";
    project_.addTrace(name, trace(1));
  }
  for (const SampleRow& row : rows()) {
    const char character = (*row.trace)[1];
    const bool tears =
        tearing.find(character) != std::string::npos || (character >= '\t' && character <= '\r');
    EXPECT_STREQ(textOf(row.state), tears ? "invalid" : "waiting") << *row.trace;
  }
}

// Names.

TEST_F(ProjectAudit, AListRulesAndANameThatIsListedTwiceGivesOneRow) {
  project_.addTrace("a.ab1", trace(1));
  project_.addTrace("b.ab1", trace(2));
  project_.addTrace("c.ab1", trace(3));
  writeList("c.ab1 word\na.ab1\nc.ab1\nnowhere\n");

  EXPECT_THAT(lines(),
              ElementsAre("c.ab1: waiting", "a.ab1: waiting", "nowhere: invalid no such file"));
  EXPECT_EQ(steps_, 3);
}

TEST_F(ProjectAudit, WithoutStrippingTheSampleKeepsItsExtension) {
  project_.addTrace("a.ab1", trace(1));
  convert({"-s"});

  EXPECT_THAT(lines(), ElementsAre("a.ab1: waiting", "(a.ab1): orphan phd,poly"));
  settings_.stripExtensions = false;
  EXPECT_EQ(only(), "a.ab1: converted");
}

// Names that share a sample.

TEST_F(ProjectAudit, AResultBelongsToTheNameThatGaveIt) {
  project_.addTrace("a.ab1", trace(1));
  project_.addTrace("a.abi", trace(2));
  project_.addTrace("a.scf", trace(3));
  convert();
  EXPECT_THAT(lines(),
              ElementsAre("a.ab1: converted", "a.abi: hidden a.ab1", "a.scf: hidden a.ab1"));

  convert({"-o"});  // the last one stays
  EXPECT_THAT(lines(),
              ElementsAre("a.ab1: hidden a.scf", "a.abi: hidden a.scf", "a.scf: converted"));

  fs::remove(project_.path() / "poly_dir/a.poly");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: hidden a.scf", "a.abi: hidden a.scf", "a.scf: no-poly"));
}

TEST_F(ProjectAudit, OtherNamesHaveTheStateThatTheyHaveWithoutAResult) {
  project_.addTrace("a.ab1", "text");
  project_.addTrace("a.abi", traceWithoutCalls());
  project_.addTrace("a.scf", trace(3));
  convert();

  // The trace without calls comes first and has no others' calls to go on with.
  EXPECT_THAT(lines(),
              ElementsAre("a.ab1: invalid not a trace", "a.abi: converted", "a.scf: hidden a.abi"));

  ASSERT_EQ(project_.runList({"a.scf"}, {"-o"}).status, 0);
  EXPECT_THAT(lines(), ElementsAre("a.ab1: invalid not a trace", "a.abi: refused no calls",
                                   "a.scf: converted"));
}

TEST_F(ProjectAudit, ABorrowedResultComesBeforeOneThatDiffers) {
  project_.addTrace("0.ab1", trace(1));
  project_.addTrace("a.ab1", trace(2));
  project_.addTrace("a.scf", traceWithoutCalls());
  ASSERT_EQ(project_.runList({"0.ab1", "a.scf"}).status, 0);

  EXPECT_THAT(lines(),
              ElementsAre("0.ab1: converted", "a.ab1: hidden a.scf", "a.scf: borrowed calls"));
}

TEST_F(ProjectAudit, AResultOfNobodyBelongsToTheFirstThatWouldWaitElseCouldBeReadElseTheFirst) {
  project_.addTrace("a.ab1", "text");
  project_.addTrace("a.abi", traceWithoutQualities(80));
  project_.addTrace("a.scf", trace(3));
  project_.write("phd_dir/a.phd.1", "");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: invalid not a trace", "a.abi: refused no qualities",
                                   "a.scf: cut phd"));

  fs::remove(project_.path() / "chromat_dir/a.scf");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: invalid not a trace", "a.abi: cut phd"));

  project_.addTrace("a.abi", "text");
  EXPECT_THAT(lines(), ElementsAre("a.ab1: cut phd", "a.abi: invalid not a trace"));
}

TEST_F(ProjectAudit, WithoutAResultTheFirstWaitingNameWillOwnIt) {
  project_.addTrace("a.ab1", "text");
  project_.addTrace("a.abi", trace(2));
  project_.addTrace("a.scf", trace(3));
  EXPECT_THAT(lines(),
              ElementsAre("a.ab1: invalid not a trace", "a.abi: waiting", "a.scf: hidden a.abi"));

  project_.addTrace("a.abi", "text");
  project_.addTrace("a.scf", traceWithoutCalls());
  EXPECT_THAT(lines(), ElementsAre("a.ab1: invalid not a trace", "a.abi: invalid not a trace",
                                   "a.scf: refused no calls"));
}

TEST_F(ProjectAudit, TwoNamesOfOneFileShareItsResult) {
  project_.addGzipped("a.ab1.gz", trace(1));
  writeList("a.ab1\na.ab1.gz\n");
  ASSERT_EQ(project_.runList({"a.ab1", "a.ab1.gz"}).status, 0);

  EXPECT_THAT(lines(), ElementsAre("a.ab1: converted", "a.ab1.gz: hidden a.ab1"));
}

// Gzipped files that are not intact: the converter reads what gunzip passes on.

TEST_F(ProjectAudit, DamagedFollowedAndDoubleGzipFilesGiveNoFalseAlarm) {
  const std::string packed = gzipped(believableTrace(4, 80).scf().build());
  std::string wrongChecksum = packed;
  wrongChecksum[packed.size() - 7] ^= 1;
  std::string wrongByte = packed;
  wrongByte[packed.size() / 2] ^= 4;
  project_.addTrace("a.gz", packed.substr(0, packed.size() / 2));
  project_.addTrace("b.gz", packed.substr(0, packed.size() - 5));
  project_.addTrace("c.gz", packed + "more");
  project_.addTrace("d.gz", packed + packed);
  project_.addTrace("e.gz", wrongChecksum);
  project_.addTrace("f.gz", wrongByte);
  project_.addTrace("g.gz", gzipped(packed));
  convert();

  EXPECT_THAT(lines(), ElementsAre("a.gz: converted", "b.gz: converted", "c.gz: converted",
                                   "d.gz: converted", "e.gz: converted",
                                   ::testing::StartsWith("f.gz: "), "g.gz: invalid not a trace"));
  const std::string f = lines()[5];
  EXPECT_TRUE(f == "f.gz: converted" || f == "f.gz: invalid damaged gzip") << f;
}

}  // namespace
