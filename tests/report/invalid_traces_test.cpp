#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/report/report_run.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/sanitizer.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// Why a trace has no result: each reason by a file that has just this fault. The converter runs
// first, so that the report speaks about what it really leaves out.

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

struct InvalidTrace {
  std::string name;
  std::string bytes;
  std::string detail;
};

std::string soundTrace() { return believableTrace(1, 60).abif().build(); }

std::vector<InvalidTrace> invalidTraces() {
  const AbifBuilder bare;
  const std::string sound = soundTrace();
  const std::uint32_t beyond = 0x7FFFFFFF;
  const std::string longName(250, 'n');
  return {
      {"analysed empty.ab1", AbifBuilder().count("DATA", 11, 0).build(), "no analysed channels"},
      {"analysed missing.ab1", AbifBuilder().without("DATA", 10).build(), "no analysed channels"},
      {"base order doubtful.ab1", AbifBuilder().baseOrder("GATX").build(), "no base order"},
      {"base order missing.ab1", AbifBuilder().without("FWO_", 1).build(), "no base order"},
      {"counts.ab1", AbifBuilder().bases("ACGTA").qualities({1, 2, 3, 4}).build(),
       "call counts differ"},
      {"cut to its directory.ab1", bare.build().substr(0, bare.build().size() - 40),
       "directory cut"},
      {"cut to the magic.ab1", sound.substr(0, 4), "directory cut"},
      {"data.ab1", AbifBuilder().dataOffset("DATA", 9, 0x80000000).build(), "data beyond the file"},
      {"data.scf", ScfBuilder().header(4, beyond).build(), "data beyond the file"},
      {"empty.ab1", "", "not a trace"},
      {"gzip cut.ab1.gz", gzipped(sound).substr(0, 30), "damaged gzip"},
      {"gzip of a page.ab1.gz", gzipped("<html></html>"), "not a trace"},
      {"lengths.ab1", AbifBuilder().last("DATA", 11).count("DATA", 11, 11).build(),
       "channel lengths differ"},
      {longName + ".ab1", sound, "name too long"},
      {"page.ab1", "<html></html>", "not a trace"},
      {"shell & co.ab1.gz", gzipped(sound), "name not for a shell"},
      {"shell'quote.ab1.gz", gzipped(sound), "name not for a shell"},
      {"shell;.ab1.gz", gzipped(sound), "name not for a shell"},
      {"text.ab1.gz", "not packed at all", "not a trace"},
  };
}

std::string expected(const InvalidTrace& trace) {
  std::string sample = trace.name;
  for (const char* ending : {".gz", ".ab1", ".scf"}) {
    if (sample.ends_with(ending)) sample.resize(sample.size() - std::string(ending).size());
  }
  return trace.name + ' ' + sample + " invalid [" + trace.detail + ']';
}

}  // namespace

TEST(InvalidTraces, HaveTheirReason) {
  const ProjectFolder project;
  std::vector<std::string> rows;
  for (const InvalidTrace& trace : invalidTraces()) {
    project.addTrace(trace.name, trace.bytes);
    rows.push_back(expected(trace));
  }
  std::sort(rows.begin(), rows.end());
  project.addTrace("a sound one.ab1", soundTrace());
  rows.insert(rows.begin(), "a sound one.ab1 a sound one converted []");
  ASSERT_EQ(project.run().status, 0);

  const ReportResult result = reportTable(project);

  EXPECT_THAT(statesOf(result), ElementsAreArray(rows));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "");
}

TEST(InvalidTraces, HaveNoFiguresUnlessTheyCanBeRead) {
  const ProjectFolder project;
  project.addTrace("page.ab1", "<html></html>");
  project.addTrace("x y.ab1.gz", gzipped(soundTrace()));

  const ReportResult result = reportTable(project);

  ASSERT_EQ(result.rows.size(), 2U);
  for (const char* column : {"bases", "mean_quality", "q20", "contiguous", "trim_start", "trim_end",
                             "no_calls", "mixed", "mixed_positions", "caller"}) {
    EXPECT_EQ(result.rows[0].at(column), "") << column;
  }
  EXPECT_EQ(result.rows[1].at("detail"), "name not for a shell");
  EXPECT_EQ(result.rows[1].at("bases"), "60");
}

TEST(InvalidTraces, ThatAreNoFilesAreFoundByAList) {
  const ProjectFolder project;
  project.makeFolder("chromat_dir/folder");
  project.makeFolder("chromat_dir/folder.ab1.gz");
  ASSERT_EQ(mkfifo((project.path() / "chromat_dir/pipe").c_str(), 0600), 0);
  const std::string names = "nothing.ab1\nnothing.ab1.gz\nfolder\npipe\nfolder.ab1\nnothing.ab1\n";

  const ReportResult result = reportTable(project, {"-l", "-"}, names);

  EXPECT_THAT(statesOf(result),
              ElementsAre("nothing.ab1 nothing invalid [no such file]",
                          "nothing.ab1.gz nothing invalid [no such file]",
                          "folder folder invalid [not a file]", "pipe pipe invalid [not a file]",
                          "folder.ab1 folder invalid [not a file]"));
  EXPECT_EQ(result.status, 2);
}

TEST(InvalidTraces, ThatMayNotBeReadSaySo) {
  const ProjectFolder project;
  fs::permissions(project.path(), fs::perms(0755));
  project.addTrace("a.ab1", soundTrace());
  project.addTrace("b.ab1", soundTrace());
  project.addGzipped("c.ab1.gz", soundTrace());
  for (const char* name : {"b.ab1", "c.ab1.gz"}) {
    fs::permissions(project.path() / "chromat_dir" / name, fs::perms::none);
  }
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "root may read everything";
  if (!OrdinaryUser::mayRun(QUILLET_REPORT_PROGRAM)) {
    GTEST_SKIP() << "an ordinary user may not run the program where it lies";
  }

  const ReportResult result = reportTable(project);

  EXPECT_THAT(statesOf(result), ElementsAre("a.ab1 a waiting []", "b.ab1 b invalid [not readable]",
                                            "c.ab1.gz c invalid [not readable]"));
}

TEST(UnreadableResults, AreNotWhole) {
  const ProjectFolder project;
  fs::permissions(project.path(), fs::perms(0755));
  for (const char* name : {"a", "b", "c", "d"}) project.addTrace(name, soundTrace());
  ASSERT_EQ(project.run().status, 0);
  for (const char* name :
       {"phd_dir/b.phd.1", "poly_dir/c.poly", "phd_dir/d.phd.1", "poly_dir/d.poly"}) {
    fs::permissions(project.path() / name, fs::perms::none);
  }
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "root may read everything";
  if (!OrdinaryUser::mayRun(QUILLET_REPORT_PROGRAM)) {
    GTEST_SKIP() << "an ordinary user may not run the program where it lies";
  }

  const ReportResult result = reportTable(project);

  EXPECT_THAT(statesOf(result), ElementsAre("a a converted []", "b b cut [phd]", "c c cut [poly]",
                                            "d d cut [phd,poly]"));
  // The leak check does not work in a program that another user started, and ends it with 1.
  EXPECT_TRUE(result.status == 3 || underAddressSanitizer) << result.status << result.err;
}

// The converter takes what gunzip makes of a file, and an SCF trace that is cut can still be read.
TEST(PackedTraces, InHowGreatAPartTheyAreReadGiveNoFalseAlarm) {
  const ProjectFolder project;
  const std::string packed = gzipped(believableTrace(2, 120).scf().build());
  const std::string other = gzipped(believableTrace(3, 90).scf().build());
  const std::string early =  // its samples stand last, so that a cut leaves its calls
      gzipped(believableTrace(4, 100).abif().directoryFirst().build());
  const auto with = [](std::string bytes, std::size_t at, char flip) {
    bytes[at] = static_cast<char>(bytes[at] ^ flip);
    return bytes;
  };
  project.addTrace("double.scf.gz", packed + other);
  project.addTrace("double_of_one.scf.gz", packed + packed);
  project.addTrace("followed_by_text.scf.gz", packed + "hello");
  project.addTrace("followed_by_zeros.scf.gz", packed + std::string(512, '\0'));
  project.addTrace("followed_by_magic.scf.gz", packed + "\x1f\x8b");
  project.addTrace("followed_by_a_cut_one.scf.gz", packed + other.substr(0, other.size() / 2));
  project.addTrace("checksum.scf.gz", with(packed, packed.size() - 8, 1));
  project.addTrace("length.scf.gz", with(packed, packed.size() - 1, 1));
  project.addTrace("not_packed.scf.gz", believableTrace(5, 80).scf().build());
  for (std::size_t part = 1; part < 10; ++part) {
    const std::string digit = std::to_string(part);
    project.addTrace("cut_" + digit + ".scf.gz", packed.substr(0, packed.size() * part / 10));
    project.addTrace("cut_early_" + digit + ".ab1.gz", early.substr(0, early.size() * part / 10));
    project.addTrace("flipped_" + digit + ".scf.gz", with(packed, packed.size() * part / 10, 4));
  }
  for (std::size_t end = 1; end <= 12; ++end) {
    project.addTrace("end_" + std::to_string(end) + ".scf.gz",
                     packed.substr(0, packed.size() - end));
  }
  for (const std::string& name : project.entries("chromat_dir")) {
    ASSERT_EQ(project.runList({name}).status, 0);  // alone, it takes over nothing
  }
  std::size_t converted = 0;

  const ReportResult result = reportTable(project);

  ASSERT_EQ(result.rows.size(), 9 + 3 * 9 + 12U);
  for (const ReportRow& row : result.rows) {
    SCOPED_TRACE(row.at("trace"));
    if (project.has("phd_dir/" + row.at("sample") + ".phd.1")) {
      ++converted;
      EXPECT_EQ(row.at("state"), "converted");
    } else {
      EXPECT_THAT(row.at("state"), ::testing::AnyOf("invalid", "refused"));
      EXPECT_EQ(row.at("detail") == "damaged gzip", row.at("state") == "invalid");
    }
  }
  EXPECT_EQ(result.status, 2);
  EXPECT_GT(converted, 20U);
}
