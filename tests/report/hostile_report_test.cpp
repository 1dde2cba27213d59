#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/report/report_run.h"
#include "tests/support/hostile_traces.h"
#include "tests/support/project_folder.h"
#include "tests/support/sanitizer.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// The hostile traces of the converter's tests, as a report meets them.

namespace {

constexpr int promisedMemory = 256 * 1024;  // KiB
#ifdef NDEBUG
constexpr int secondsForAll = 17;  // one for each trace
#else
constexpr int secondsForAll = 180;
#endif

/// The table of a report, with all other outputs, within the promised memory and time.
ReportResult reportWithin(const ProjectFolder& project, int kibibytes) {
  const std::string memory =
      underAddressSanitizer ? "" : "ulimit -v " + std::to_string(kibibytes) + " && ";
  const ProgramResult result = runProgram(
      "sh", {.folder = project.path().string(),
             .arguments = {"-c", memory + "ulimit -t " + std::to_string(secondsForAll) +
                                     " && exec '" QUILLET_REPORT_PROGRAM "' --tsv - --json j" +
                                     " --fastq q --fasta a --html h"}});
  EXPECT_TRUE(result.out.ends_with('\n')) << result.err;
  if (!result.out.ends_with('\n')) return {result.status, result.err, {}};
  return {result.status, result.err, rowsOf(result.out)};
}

std::string goodTrace() { return believableTrace(7, 300).abif().build(); }

}  // namespace

TEST(HostileReport, FilesOf2MebibytesCostARowAndNeither256MebibytesNorMinutes) {
  const ProjectFolder project;
  project.addTrace("0_before", goodTrace());
  project.addTrace("z_after", goodTrace());
  std::map<std::string, std::string> expected{{"0_before", "converted"}, {"z_after", "converted"}};
  for (const HostileTrace& hostile : hostileTraces()) {
    project.addTrace(hostile.name, hostile.bytes);
    expected[hostile.name] = hostile.converted ? "converted" : "invalid";
  }
  // These say that they have no calls, and get those of the trace before.
  for (const char* name : {"scf_endless_line", "scf_line_feeds"}) expected[name] = "borrowed";
  ASSERT_EQ(project.run().status, 0);

  const ReportResult result = reportWithin(project, promisedMemory);

  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 3);
  std::map<std::string, std::string> found;
  for (const ReportRow& row : result.rows) found[row.at("trace")] = row.at("state");
  EXPECT_EQ(found, expected);
}

TEST(HostileReport, PackedFilesOf2MebibytesCostNoMore) {
  const ProjectFolder project;
  std::map<std::string, std::string> expected;
  const std::vector<std::string> readers{"abif_mixed", "abif_most", "scf3_backed_bases",
                                         "scf_endless_line", "nothing_but_zeros"};
  for (const HostileTrace& hostile : hostileTraces()) {
    if (std::find(readers.begin(), readers.end(), hostile.name) == readers.end()) continue;
    project.addGzipped(hostile.name + ".gz", hostile.bytes);
    expected[hostile.name + ".gz"] = hostile.converted ? "converted" : "invalid";
    ASSERT_EQ(project.runList({hostile.name + ".gz"}).status, 0);  // alone: no calls to take over
  }

  const ReportResult result = reportWithin(project, promisedMemory);

  EXPECT_EQ(result.err, "");
  std::map<std::string, std::string> found;
  for (const ReportRow& row : result.rows) found[row.at("trace")] = row.at("state");
  EXPECT_EQ(found, expected);
}

TEST(HostileReport, ResultsOfAnyBytesCostARow) {
  const ProjectFolder project;
  const std::vector<std::string> contents{
      std::string(1 << 21, '\0'),
      std::string(1 << 21, '\n'),
      "BEGIN_SEQUENCE x\nBEGIN_DNA\n" + std::string(1 << 21, '9'),
      "BEGIN_SEQUENCE x\nBEGIN_DNA\nA -\nEND_DNA\nEND_SEQUENCE\n",
      "BEGIN_SEQUENCE ",
      "BEGIN_SEQUENCE x\nBEGIN_DNA"};
  for (std::size_t i = 0; i < contents.size(); ++i) {
    const std::string name = "r" + std::to_string(i);
    project.addTrace(name, goodTrace());
    project.write("phd_dir/" + name + ".phd.1", contents[i]);
    project.write("poly_dir/" + name + ".poly", name + " 1 1 1 1 1\n");
  }

  // Whole, with a number that fits no integer.
  project.addTrace("s", goodTrace());
  project.write("phd_dir/s.phd.1",
                "BEGIN_SEQUENCE x\nBEGIN_DNA\nA 99999999999999999999 1\nEND_DNA\nEND_SEQUENCE\n");

  ReportResult result = reportWithin(project, promisedMemory);

  EXPECT_EQ(result.err, "");
  ASSERT_EQ(result.rows.size(), contents.size() + 1);
  EXPECT_EQ(result.rows.back().at("state"), "differs");
  result.rows.pop_back();
  for (const ReportRow& row : result.rows) {
    EXPECT_EQ(row.at("state") + ' ' + row.at("detail"), "cut phd") << row.at("trace");
  }
}
