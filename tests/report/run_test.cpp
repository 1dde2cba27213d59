#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/report/report_run.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// Outputs, streams and exit statuses of the built program.

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Three converted traces: 60, 80 and 100 bases.
class Run : public testing::Test {
 protected:
  Run() {
    project_.addTrace("a.ab1", a_.abif().build());
    project_.addTrace("b.scf", b_.scf().build());
    project_.addGzipped("c d.ab1", c_.abif().build());
    fs::rename(project_.path() / "chromat_dir/c d.ab1", project_.path() / "chromat_dir/c.ab1.gz");
    EXPECT_EQ(project_.run().status, 0);
  }

  ProjectFolder project_;
  TraceContents a_ = believableTrace(1, 60);
  TraceContents b_ = believableTrace(2, 80);
  TraceContents c_ = believableTrace(3, 100);
};

std::string zeroCounts() {
  return "differs         0\nborrowed        0\ncut             0\nno-poly         0\n"
         "orphan          0\ninvalid         0\nrefused         0\nhidden          0\n"
         "waiting         0\nconverted       0\n";
}

std::string withCount(const std::string& counts, const std::string& state, int count) {
  std::string result = counts;
  const std::size_t end = result.find('\n', result.find("\n" + state + " ") + 1);
  return result.replace(end - 1, 1, std::to_string(count));
}

/// Bases and qualities as FASTQ has them.
std::string fastq(const std::string& id, const TraceContents& trace) {
  std::string qualities;
  for (const int quality : trace.qualities) qualities += static_cast<char>('!' + quality);
  return '@' + id + '\n' + trace.bases + "\n+\n" + qualities + '\n';
}

}  // namespace

TEST_F(Run, SaysThatAllIsConverted) {
  const ProgramResult result = runReport(project_, {});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, withCount(zeroCounts(), "converted", 3));
  EXPECT_EQ(result.err, "");
}

TEST_F(Run, NamesWhatIsNotConverted) {
  project_.write("phd_dir/a.phd.1", "");
  project_.addTrace("e.ab1", "<html>");

  const ProgramResult result = runReport(project_, {});

  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(result.out, ::testing::EndsWith("\nconverted       2\n\n"
                                              "cut        a (a.ab1): phd\n"
                                              "invalid    e (e.ab1): not a trace\n"));
}

TEST_F(Run, OfAnEmptyProjectIsFine) {
  const ProjectFolder empty;

  const ProgramResult result = runReport(empty, {"--json", "table.json", "--fastq", "reads"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, zeroCounts());
  EXPECT_TRUE(nlohmann::json::parse(empty.read("table.json"))["samples"].empty());
  EXPECT_TRUE(empty.has("reads"));
  EXPECT_EQ(empty.read("reads"), "");
}

TEST_F(Run, WritesAllOutputsInOnePass) {
  const ProgramResult result =
      runReport(project_, {"--tsv", "t", "--json", "j", "--fastq", "q", "--fasta", "a"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, withCount(zeroCounts(), "converted", 3));
  EXPECT_EQ(project_.entries("."), (std::vector<std::string>{"a", "chromat_dir", "edit_dir", "j",
                                                             "phd_dir", "poly_dir", "q", "t"}));
  const auto rows = rowsOf(project_.read("t"));
  const auto json = nlohmann::json::parse(project_.read("j"));
  EXPECT_EQ(json["project"], project_.path().string());
  ASSERT_EQ(rows.size(), 3U);
  ASSERT_EQ(json["samples"].size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(json["samples"][i]["sample"], rows[i].at("sample"));
    EXPECT_EQ(json["samples"][i]["state"], "converted");
    EXPECT_EQ(json["samples"][i]["q20"].dump(), rows[i].at("q20"));
    EXPECT_EQ(json["samples"][i]["mean_quality"].get<double>(),
              std::stod(rows[i].at("mean_quality")));
  }
  EXPECT_EQ(json["counts"]["converted"], 3);
  EXPECT_EQ(project_.read("q"), fastq("a", a_) + fastq("b", b_) + fastq("c", c_));
  EXPECT_EQ(project_.read("a"),
            ">a\n" + a_.bases + "\n>b\n" + b_.bases + "\n>c\n" + c_.bases + '\n');
}

TEST_F(Run, WritesEachOutputToStandardOutputAsToAFile) {
  for (const char* flag : {"--tsv", "--json", "--fastq", "--fasta"}) {
    ASSERT_EQ(runReport(project_, {flag, "file"}).status, 0);

    const ProgramResult result = runReport(project_, {flag, "-"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, project_.read("file")) << flag;
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(Run, TrimsReadsToTheRangeThatTheTableNames) {
  TraceContents poor = believableTrace(4, 50);
  std::fill(poor.qualities.begin(), poor.qualities.end(), 3);
  poor.qualities[0] = 10;
  project_.addTrace("poor.ab1", poor.abif().build());

  ASSERT_EQ(runReport(project_, {"--tsv", "t", "--fasta", "a", "--trim"}).status, 2);

  std::string expected;
  for (const ReportRow& row : rowsOf(project_.read("t"))) {
    if (row.at("sample") == "poor") {
      EXPECT_EQ(row.at("trim_start") + '-' + row.at("trim_end"), "0-0");
      continue;
    }
    const TraceContents& trace = row.at("sample") == "a" ? a_ : row.at("sample") == "b" ? b_ : c_;
    const std::size_t start = std::stoul(row.at("trim_start"));
    const std::size_t end = std::stoul(row.at("trim_end"));
    EXPECT_LT(end - start, trace.bases.size());
    expected += '>' + row.at("sample") + '\n' + trace.bases.substr(start, end - start) + '\n';
  }
  EXPECT_EQ(project_.read("a"), expected);
}

TEST_F(Run, LeavesHiddenReadsOut) {
  project_.addTrace("a.scf", believableTrace(9, 50).scf().build());

  EXPECT_EQ(runReport(project_, {"--fastq", "q"}).status, 2);

  EXPECT_EQ(project_.read("q"), fastq("a", a_) + fastq("b", b_) + fastq("c", c_));
}

TEST_F(Run, FindsTheProjectAsTheConverterDoes) {
  const std::vector<std::vector<std::string>> ways{
      {"-d", project_.path()}, {"-dir", project_.path()}, {"-d", "chromat_dir/.."}};
  for (std::vector<std::string> words : ways) {
    EXPECT_EQ(reportTable(project_, words).rows.size(), 3U) << words[0];
  }
  const ProgramResult inside =
      runProgram(QUILLET_REPORT_PROGRAM,
                 {.folder = project_.path() / "edit_dir", .arguments = {"--tsv", "-"}});
  EXPECT_EQ(rowsOf(inside.out).size(), 3U);
}

TEST_F(Run, TakesNamesFromAListOnceEach) {
  const std::string names = "c.ab1\n\na.ab1 and more\nc.ab1\n";
  project_.write("names", names);

  for (const ReportResult& result :
       {reportTable(project_, {"-l", "names"}), reportTable(project_, {"-list", "-"}, names)}) {
    EXPECT_THAT(statesOf(result), ElementsAre("c.ab1 c converted []", "a.ab1 a converted []"));
    EXPECT_EQ(result.status, 0);
  }
}

TEST_F(Run, KeepsExtensionsOnDemand) {
  for (const char* flag : {"-s", "-nostrip"}) {
    const ReportResult result = reportTable(project_, {flag});

    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(statesOf(result), ElementsAre("a.ab1 a.ab1 waiting []", "b.scf b.scf waiting []",
                                              "c.ab1.gz c.ab1 waiting []", " a orphan [phd,poly]",
                                              " b orphan [phd,poly]", " c orphan [phd,poly]"));
  }
}

TEST_F(Run, ObeysTheResourceFileWithoutAWord) {
  fs::rename(project_.path() / "phd_dir", project_.path() / "calls");
  project_.write(".quilletrc", "phddir calls\n");

  const ReportResult result = reportTable(project_);

  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.rows.size(), 3U);
}

TEST_F(Run, ThatCanNotBeMadeSaysWhyAndHasStatus1) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"--nothing"}, "quillet-report: The following argument was not expected: --nothing\n"},
      {{"--tsv", "-", "--json", "-"}, "only one output can be `-'"},
      {{"-d", "nowhere"}, "no such file or directory"},
      {{"-l", "nothing"}, "ERROR: can not open the file nothing"},
      {{"--tsv", "nowhere/t"}, "can not write nowhere/t: No such file or directory\n"},
      {{"--tsv", "chromat_dir"}, "can not write chromat_dir: Is a directory\n"},
      {{"--tsv", "new", "--fastq", "/dev/full"}, "can not write /dev/full: No space left"},
      {{"--tsv", "new", "--json", "./link"}, "two outputs are the same file: "},
      {{"--tsv", "new", "-o", "./link"}, "two outputs are the same file: "},
      {{"--html", "nowhere/page"}, "can not write nowhere/page: No such file or directory\n"},
      {{"--html", "chromat_dir"}, "can not write chromat_dir: Is a directory\n"}};
  fs::create_symlink("new", project_.path() / "link");
  const std::vector<std::string> before = project_.entries(".");
  for (const auto& [words, message] : cases) {
    const ProgramResult result = runReport(project_, words);

    EXPECT_EQ(result.status, 1) << message;
    EXPECT_EQ(result.out, "") << message;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_TRUE(result.err.ends_with('\n')) << message;
    EXPECT_EQ(project_.entries("."), before) << message;
  }
}

TEST_F(Run, FailsWhenStandardOutputDoes) {
  const std::vector<std::string> commands{" > /dev/full",           " --tsv - > /dev/full",
                                          " --fastq - > /dev/full", " >&-",
                                          " --tsv t >&-",           " --tsv t > /dev/full",
                                          " --version > /dev/full", " --tsv t --json - > /dev/full",
                                          " --html - > /dev/full",  " --tsv t --html - >&-"};
  const std::vector<std::string> before = project_.entries(".");
  for (const std::string& command : commands) {
    const ProgramResult result =
        runProgram("sh", {.folder = project_.path().string(),
                          .arguments = {"-c", "exec '" QUILLET_REPORT_PROGRAM "'" + command}});

    EXPECT_EQ(result.status, 1) << command;
    EXPECT_THAT(result.err, HasSubstr("can not write standard output: ")) << command;
    EXPECT_EQ(project_.entries("."), before) << command;
  }
}

TEST_F(Run, FailsWhenNobodyReadsItsOutput) {
  const ProgramResult result =
      runProgram("bash", {.folder = project_.path().string(),
                          .arguments = {"-c", "(sleep 1; '" QUILLET_REPORT_PROGRAM
                                              "' --fastq q --tsv -; echo $? >&2) | true"}});

  EXPECT_EQ(result.err, "quillet-report: can not write standard output: Broken pipe\n1\n");
  EXPECT_FALSE(project_.has("q"));
}

TEST_F(Run, AnswersQuestionsOnStandardOutput) {
  const ProgramResult help = runReport(project_, {"--help"});
  const ProgramResult version = runReport(project_, {"--version"});

  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("--mixed RATIO"));
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, ::testing::MatchesRegex("quillet-report [0-9.]+\n"));
  EXPECT_EQ(help.err + version.err, "");
}

TEST_F(Run, ShowsThePercentMeterOnATerminalAndTakesItAway) {
  const ProgramResult trial = runProgram(
      "script",
      {.folder = project_.path().string(), .arguments = {"-qec", "test -t 2", "/dev/null"}});
  if (trial.status != 0) GTEST_SKIP() << trial.err;
  const auto drawn = [](const std::string& text) { return "\x1b[2K" + text + "\x1b[A\r\n"; };

  const ProgramResult result = runProgram(
      "script", {.folder = project_.path().string(),
                 .arguments = {"-qec", QUILLET_REPORT_PROGRAM " --json j >summary", "/dev/null"}});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, drawn("   0% done") + drawn("  34% done") + drawn("  67% done") +
                            drawn(" 100% done") + "\x1b[2K");
  EXPECT_EQ(project_.read("summary"), withCount(zeroCounts(), "converted", 3));
}

TEST_F(Run, SendsATerminalNoControlCharacters) {
  project_.write("phd_dir/\x1b[31m.phd.1", "");

  const ProgramResult result = runProgram(
      "script", {.folder = project_.path().string(),
                 .arguments = {"-qec", QUILLET_REPORT_PROGRAM " --tsv - 2>errors", "/dev/null"}});

  if (result.out.find("converted") == std::string::npos) GTEST_SKIP() << "no terminal";
  EXPECT_THAT(result.out, HasSubstr("\n\\x1b[31m\t\torphan\tphd"));
  EXPECT_EQ(result.out.find('\x1b'), std::string::npos);

  const ProgramResult page = runProgram(
      "script", {.folder = project_.path().string(),
                 .arguments = {"-qec", QUILLET_REPORT_PROGRAM " --html - 2>errors", "/dev/null"}});

  EXPECT_THAT(page.out, HasSubstr("<td>&#27;[31m</td>"));
  EXPECT_EQ(page.out.find('\x1b'), std::string::npos);
}
