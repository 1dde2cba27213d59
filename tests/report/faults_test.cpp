#include <algorithm>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/report/converted_project.h"
#include "tests/report/report_run.h"
#include "tests/support/trace_builder.h"

// One converted project, to which faults are done. Each row that a report on it has is reckoned
// here from what was done; what nothing was done to must not change.

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// What became of a trace, or of a result without one.
struct Outcome {
  std::string state;
  std::string detail;
};

/// What a fault does, and what the report must say then.
struct Fault {
  std::string title;
  std::function<void(const ConvertedProject&)> inject;
  std::map<std::string, Outcome> changed = {};      // traces whose file is as before
  std::map<std::string, Outcome> renewed = {};      // traces that are new or have another content
  std::vector<std::string> gone = {};               // traces
  std::map<std::string, std::string> orphans = {};  // details by sample
};

std::string sampleOf(const std::string& trace) {
  std::string sample = trace;
  for (const char* ending : {".gz", ".ab1", ".scf"}) {
    if (sample.ends_with(ending)) sample.resize(sample.size() - std::string(ending).size());
  }
  return sample;
}

/// The columns that say what became of a row; the others count only where the trace is as before.
ReportRow outcomeOf(const ReportRow& row) {
  return {{"sample", row.at("sample")},
          {"trace", row.at("trace")},
          {"state", row.at("state")},
          {"detail", row.at("detail")}};
}

/// The rows that a report must have, by the rows before the faults.
std::vector<ReportRow> expectedRows(const std::vector<ReportRow>& before, const Fault& fault) {
  std::map<std::string, ReportRow> byTrace;  // byte order is the converter's order
  for (const ReportRow& row : before) byTrace[row.at("trace")] = row;
  for (const std::string& trace : fault.gone) byTrace.erase(trace);
  for (const auto& [trace, outcome] : fault.changed) {
    byTrace.at(trace)["state"] = outcome.state;
    byTrace.at(trace)["detail"] = outcome.detail;
  }
  for (const auto& [trace, outcome] : fault.renewed) {
    byTrace[trace] = {{"sample", sampleOf(trace)},
                      {"trace", trace},
                      {"state", outcome.state},
                      {"detail", outcome.detail}};
  }
  std::vector<ReportRow> rows;
  for (const auto& [trace, row] : byTrace) rows.push_back(row);
  for (const auto& [sample, detail] : fault.orphans) {
    ReportRow row;
    for (const auto& [column, text] : before.front()) row[column] = "";
    row["sample"] = sample;
    row["state"] = "orphan";
    row["detail"] = detail;
    rows.push_back(row);
  }
  return rows;
}

int expectedStatus(const std::vector<ReportRow>& rows) {
  const std::set<std::string> untrusted{"differs", "borrowed", "cut", "orphan"};
  int status = 0;
  for (const ReportRow& row : rows) {
    const std::string& state = row.at("state");
    status = std::max(status, untrusted.contains(state) ? 3 : state == "converted" ? 0 : 2);
  }
  return status;
}

/// Runs a report on the faulty project and compares each row with what it must be.
void expectReport(const ConvertedProject& project, const std::vector<ReportRow>& before,
                  const Fault& fault) {
  SCOPED_TRACE(fault.title);
  const std::vector<ReportRow> expected = expectedRows(before, fault);

  const ReportResult result = reportTable(project);

  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, expectedStatus(expected));
  ASSERT_EQ(result.rows.size(), expected.size()) << ::testing::PrintToString(statesOf(result));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const bool isRenewed = fault.renewed.contains(expected[i].at("trace"));
    EXPECT_EQ(isRenewed ? outcomeOf(result.rows[i]) : result.rows[i], expected[i]);
  }
}

const Outcome cutPhd{"cut", "phd"};
const Outcome cutPoly{"cut", "poly"};

Outcome differs(const std::string& detail) { return {"differs", detail}; }

const std::string toolBlocks =
    "\nBEGIN_TAG\nTYPE: polymorphism\nSOURCE: other\nUNPADDED_READ_POS: 3 4\nDATE: 21/11/26\n"
    "END_TAG\n\n\nWR{\nchecked other 261121:101010\nfine\n}\n";

std::vector<Fault> resultFaults() {
  using Project = const ConvertedProject&;
  return {
      {"nothing", [](Project) {}},
      {"two results swapped, as many bases",
       [](Project p) {
         p.swap(p.phdName("s00"), p.phdName("s01"));
         p.swap(p.polyName("s00"), p.polyName("s01"));
       },
       {{"s00.ab1", differs("bases,qualities,positions,header,poly")},
        {"s01.ab1", differs("bases,qualities,positions,header,poly")}}},
      {"two .phd.1 swapped, other numbers of bases",
       [](Project p) { p.swap(p.phdName("s08"), p.phdName("s16")); },
       {{"s08.ab1", differs("bases,qualities,positions,header")},
        {"s16.ab1", differs("bases,qualities,positions,header")}}},
      {"the calls of another read under the own header",
       [](Project p) { p.replace(p.phdName("s04"), p.phdBases("s04"), p.phdBases("s05")); },
       {{"s04.ab1.gz", differs("bases,qualities,positions")}}},
      {"one base", [](Project p) { p.changePhd("s02", 60, 0); }, {{"s02.scf", differs("bases")}}},
      {"one quality",
       [](Project p) { p.changePhd("s03", 0, 1); },
       {{"s03.scf", differs("qualities")}}},
      {"one position",
       [](Project p) { p.changePhd("s05", 91, 2); },
       {{"s05.scf.gz", differs("positions")}}},
      {"a base and a position",
       [](Project p) {
         p.changePhd("s06 a b", 10, 0);
         p.changePhd("s06 a b", 20, 2);
       },
       {{"s06 a b.ab1", differs("bases,positions")}}},
      {"the caller's name",
       [](Project p) { p.replace(p.phdName("s07'\"q\""), "CALL_METHOD: ", "CALL_METHOD: x"); },
       {{"s07'\"q\".scf", differs("header")}}},
      {"the sample's name in the .phd.1",
       [](Project p) { p.replace(p.phdName("s09"), "BEGIN_SEQUENCE s09", "BEGIN_SEQUENCE s08"); },
       {{"s09.ab1", differs("header")}}},
      {"a last base less, which makes the .poly too long",
       [](Project p) {
         const std::string bases = p.phdBases("s10");
         p.replace(p.phdName("s10"), bases,
                   bases.substr(0, bases.rfind('\n', bases.size() - 2) + 1));
       },
       {{"s10.scf", differs("bases,qualities,positions")}}},
      {"a .poly's second base",
       [](Project p) { p.changePoly("s11", 30, 4); },
       {{"s11.scf", differs("poly")}}},
      {"a .poly's height",
       [](Project p) { p.changePoly("s12", 0, 11); },
       {{"s12.ab1.gz", differs("poly")}}},
      {"a .poly's name",
       [](Project p) { p.replace(p.polyName("s13"), "s13 1", "s12 1"); },
       {{"s13.scf.gz", differs("poly")}}},
      {"a quality and a .poly's position",
       [](Project p) {
         p.changePhd("s14 a b", 5, 1);
         p.changePoly("s14 a b", 6, 1);
       },
       {{"s14 a b.ab1", differs("qualities,poly")}}},
      {"a quality, and the .poly cut",
       [](Project p) {
         p.changePhd("s16", 5, 1);
         p.cut(p.polyName("s16"), 100);
       },
       {{"s16.ab1", differs("qualities")}}},
      {"a quality, and the .poly gone",
       [](Project p) {
         p.changePhd("s17", 5, 1);
         p.remove(p.polyName("s17"));
       },
       {{"s17.ab1", differs("qualities")}}},
      {"another time",
       [](Project p) {
         p.replace(p.phdName("s18"), "TIME: " + p.phdTime("s18"), "TIME: Sat Jan  1 00:00:00 2000");
       }},
      {"blocks of other tools",
       [](Project p) {
         p.replace(p.phdName("s19"), "END_DNA\n", "END_DNA\n" + toolBlocks);
         p.replace(p.phdName("s20"), "END_SEQUENCE\n", "END_SEQUENCE\n" + toolBlocks);
         p.replace(p.phdName("s21"), "END_SEQUENCE\n", "\n\nEND_SEQUENCE\n\n");
       }},
      {"blocks of other tools in a result that differs",
       [](Project p) {
         p.replace(p.phdName("s19"), "END_DNA\n", "END_DNA\n" + toolBlocks);
         p.changePhd("s19", 7, 1);
       },
       {{"s19.scf", differs("qualities")}}},
      {"other lines after the bases",
       [](Project p) {
         p.replace(p.phdName("s22 a b"), "END_DNA\n", "END_DNA\nhello\n");
         p.replace(p.phdName("s24"), "END_SEQUENCE\n", "END_SEQUENCE\nhello\n");
         p.replace(p.phdName("s25"), "END_DNA\n", "END_DNA\nBEGIN_TAG\n");
         p.replace(p.phdName("s26"), "END_SEQUENCE\n", "END_SEQUENCE\nWR{\n");
       },
       {{"s22 a b.ab1", cutPhd}, {"s24.ab1", cutPhd}, {"s25.ab1", cutPhd}, {"s26.scf", cutPhd}}},
      {"a .phd.1 without its beginning",
       [](Project p) { p.replace(p.phdName("s27"), "BEGIN_SEQUENCE", "\nBEGIN_SEQUENCE"); },
       {{"s27.scf", cutPhd}}},
      {"results of no length",
       [](Project p) {
         p.write(p.phdName("s28"), "");
         p.write(p.polyName("s29"), "");
         p.write(p.phdName("s30 a b"), "");
         p.write(p.polyName("s30 a b"), "");
       },
       {{"s28.ab1.gz", cutPhd}, {"s29.scf.gz", cutPoly}, {"s30 a b.ab1", {"cut", "phd,poly"}}}},
      {"both halves cut",
       [](Project p) {
         p.cut(p.phdName("s32"), 700);
         p.cut(p.polyName("s32"), 700);
       },
       {{"s32.ab1", {"cut", "phd,poly"}}}},
      {"a .poly with a line too many",
       [](Project p) { p.write(p.polyName("s33"), p.poly("s33") + "A 1 2 0 N 0 0 0 1 2 3 4\n"); },
       {{"s33.ab1", cutPoly}}},
      {"a .poly's line with a field less",
       [](Project p) {
         std::string poly = p.poly("s34");
         poly.erase(poly.rfind(' '), poly.size() - 1 - poly.rfind(' '));
         p.write(p.polyName("s34"), poly);
       },
       {{"s34.scf", cutPoly}}},
      {"folders in the place of results",
       [](Project p) {
         p.remove(p.phdName("s35"));
         p.makeFolder(p.phdName("s35"));
         p.remove(p.polyName("s36"));
         p.makeFolder(p.polyName("s36"));
       },
       {{"s35.scf", cutPhd}, {"s36.ab1.gz", cutPoly}}},
      {"no .poly",
       [](Project p) { p.remove(p.polyName("s37")); },
       {{"s37.scf.gz", {"no-poly", ""}}}},
      {"no .phd.1",
       [](Project p) { p.remove(p.phdName("s38 a b")); },
       {{"s38 a b.ab1", {"waiting", ""}}}},
      {"no .phd.1, and a .poly that is cut",
       [](Project p) {
         p.remove(p.phdName("s40"));
         p.cut(p.polyName("s40"), 5);
       },
       {{"s40.ab1", {"waiting", ""}}}},
      {"no result where there are no calls",
       [](Project p) { p.remove(p.phdName("t_no_calls")); },
       {{"t_no_calls.ab1", {"refused", "no calls"}}}},
      {"no result where there are no qualities",
       [](Project p) { p.remove(p.phdName("t_no_qualities")); },
       {{"t_no_qualities.ab1", {"refused", "no qualities"}}}},
      {"results of no trace",
       [](Project p) {
         p.write(p.phdName("zz"), p.phd("s00"));
         p.write(p.polyName("a old"), "x");
         p.write(p.phdName("m"), "");
         p.write(p.polyName("m"), "");
         p.write(p.phdName(".hidden"), "");
         p.write(p.polyName(".hidden"), "");
         p.write("phd_dir/s00.phd.2", "");
         p.write("phd_dir/notes", "");
       },
       {},
       {},
       {},
       {{"a old", "poly"}, {"m", "phd,poly"}, {"zz", "phd"}}},
  };
}

/// The calls that the converter carried over from another trace, by a run of the converter.
std::vector<Fault> borrowedFaults() {
  using Project = const ConvertedProject&;
  return {
      {"borrowed calls",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_calls.ab1"});
       },
       {{"t_no_calls.ab1", {"borrowed", "calls"}}}},
      {"borrowed qualities",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_qualities.ab1"});
       },
       {{"t_no_qualities.ab1", {"borrowed", "qualities"}}}},
      {"borrowed qualities of a trace that would be refused without them",
       [](Project p) {
         TraceContents content = believableTrace(102, 150);
         std::fill(content.qualities.begin(), content.qualities.end(), 9);
         p.addTrace("u.ab1", content.abif().build());
         p.convert({"s60.ab1.gz", "u.ab1"});
       },
       {},
       {{"u.ab1", {"borrowed", "qualities"}}}},
      {"borrowed qualities with another base",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_qualities.ab1"});
         p.changePhd("t_no_qualities", 3, 0);
       },
       {{"t_no_qualities.ab1", differs("bases,qualities")}}},
      {"borrowed calls under another header",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_calls.ab1"});
         p.replace(p.phdName("t_no_calls"), "CALL_METHOD: ", "CALL_METHOD: x");
       },
       {{"t_no_calls.ab1", differs("bases,qualities,positions,header,poly")}}},
  };
}

std::vector<Fault> traceFaults() {
  using Project = const ConvertedProject&;
  return {
      {"a trace gone",
       [](Project p) { p.remove("chromat_dir/s42.scf"); },
       {},
       {},
       {"s42.scf"},
       {{"s42", "phd,poly"}}},
      {"traces damaged after the run",
       [](Project p) {
         p.addTrace("s43.scf", "<html>");
         p.addTrace("s44.ab1.gz", p.read("chromat_dir/s44.ab1.gz").substr(0, 20));
         p.addTrace("s45.scf.gz", "");
       },
       {},
       {{"s43.scf", differs("invalid")},
        {"s44.ab1.gz", differs("invalid")},
        {"s45.scf.gz", differs("invalid")}}},
      {"a trace whose calls the gate refuses now",
       [](Project p) {
         TraceContents content = p.trace("s48").content;
         content.qualities[42] = 0;
         p.addTrace("s48.ab1", content.abif().callerName("caller 6").build());
       },
       {},
       {{"s48.ab1", differs("refused")}}},
      {"a trace without results that the gate refuses",
       [](Project p) {
         TraceContents content = believableTrace(103, 100);
         content.qualities[42] = 0;
         p.addTrace("u.ab1", content.abif().build());
         content.qualities[42] = 100;
         p.addTrace("v.ab1", content.abif().build());
         content.qualities[42] = 30;
         content.qualities[12] = 0;
         p.addTrace("w.ab1", content.abif().build());
       },
       {},
       {{"u.ab1", {"refused", "quality 0 at base 43"}},
        {"v.ab1", {"refused", "quality 100 at base 43"}},
        {"w.ab1", {"refused", "quality 0 at base 13"}}}},
      {"a new trace",
       [](Project p) { p.addTrace("u.ab1", believableTrace(104, 100).abif().build()); },
       {},
       {{"u.ab1", {"waiting", ""}}}},
      {"a second trace of a sample that is done",
       [](Project p) { p.addTrace("s49.scf", believableTrace(105, 100).scf().build()); },
       {},
       {{"s49.scf", {"hidden", "s49.ab1"}}}},
      {"a second trace of a sample, first in order, that is done by the other",
       [](Project p) { p.addTrace("s50.ab1", believableTrace(106, 100).abif().build()); },
       {},
       {{"s50.ab1", {"hidden", "s50.scf"}}}},
      {"a second trace of a sample that is done, unreadable",
       [](Project p) { p.addTrace("s51.ab1", "nothing"); },
       {},
       {{"s51.ab1", {"invalid", "not a trace"}}}},
      {"two traces of a sample that is not done",
       [](Project p) {
         p.addTrace("u.ab1", believableTrace(107, 100).abif().build());
         p.addTrace("u.scf", believableTrace(108, 100).scf().build());
       },
       {},
       {{"u.ab1", {"waiting", ""}}, {"u.scf", {"hidden", "u.ab1"}}}},
      {"the later trace of a sample over the earlier one's result",
       [](Project p) {
         p.addTrace("s56.scf", believableTrace(109, 100).scf().build());
         p.convert({"s56.ab1", "s56.scf"});
       },
       {{"s56.ab1", {"hidden", "s56.scf"}}},
       {{"s56.scf", {"converted", ""}}}},
      {"one of two traces gone, its result is the other's",
       [](Project p) {
         p.remove("chromat_dir/s57.ab1");
         p.addTrace("s57.scf", p.trace("s57").content.scf().build());
       },
       {},
       {{"s57.scf", differs("header")}},
       {"s57.ab1"}},
  };
}

class Faults : public testing::Test {
 protected:
  void expectEach(const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) {
      fault.inject(project_);
      expectReport(project_, before_, fault);
      project_.restore();
    }
  }

  ConvertedProject project_;
  std::vector<ReportRow> before_ = reportTable(project_).rows;
};

/// Length of the longest run of bases in which every 20 neighbours have 400 together: by trying
/// all.
std::size_t contiguous(const std::vector<int>& qualities) {
  std::size_t longest = 0;
  for (std::size_t start = 0; start < qualities.size(); ++start) {
    for (std::size_t end = start + 20; end <= qualities.size(); ++end) {
      int sum = 0;
      for (std::size_t i = end - 20; i < end; ++i) sum += qualities[i];
      if (sum < 400) break;
      longest = std::max(longest, end - start);
    }
  }
  return longest;
}

}  // namespace

TEST_F(Faults, AConvertedProjectHasARowForEachTraceAndNothingToComplainAbout) {
  const ReportResult result = reportTable(project_);

  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  std::vector<std::string> expected;
  for (const auto& trace : project_.traces()) {
    expected.push_back(trace.name + ' ' + trace.sample + " converted []");
  }
  EXPECT_THAT(statesOf(result), ElementsAreArray(expected));
}

TEST_F(Faults, FiguresAreThoseOfTheCallsAsStored) {
  ASSERT_EQ(before_.size(), project_.traces().size());
  for (std::size_t i = 0; i < before_.size(); ++i) {
    const auto& [name, sample, content] = project_.traces()[i];
    const std::vector<int>& qualities = content.qualities;
    SCOPED_TRACE(name);
    EXPECT_EQ(before_[i].at("bases"), std::to_string(qualities.size()));
    if (qualities.empty()) {
      EXPECT_EQ(before_[i].at("mean_quality"), "");
      continue;
    }
    double sum = 0;
    for (const int quality : qualities) sum += quality;
    char mean[32];
    std::snprintf(mean, sizeof mean, "%.1f", sum / static_cast<double>(qualities.size()));
    const auto q20 =
        std::count_if(qualities.begin(), qualities.end(), [](int q) { return q >= 20; });
    EXPECT_EQ(before_[i].at("mean_quality"), mean);
    EXPECT_EQ(before_[i].at("q20"), std::to_string(q20));
    EXPECT_EQ(before_[i].at("contiguous"), std::to_string(contiguous(qualities)));
    EXPECT_EQ(before_[i].at("no_calls"), "0");
  }
}

TEST_F(Faults, OfResultsAreFoundOneAtATime) { expectEach(resultFaults()); }

TEST_F(Faults, OfTracesAreFoundOneAtATime) { expectEach(traceFaults()); }

TEST_F(Faults, BorrowedCallsAndQualitiesAreFound) { expectEach(borrowedFaults()); }

TEST_F(Faults, ACutIsFoundWhereverItIs) {
  constexpr std::size_t places = 20;
  for (const bool ofPhd : {true, false}) {
    const std::string sample = ofPhd ? "s00" : "s05";
    const std::string trace = project_.trace(sample).name;
    const std::string name = ofPhd ? project_.phdName(sample) : project_.polyName(sample);
    for (std::size_t place = 0; place < places; ++place) {
      // The first place is the start of the file, the last one its last line feed.
      const std::size_t size = (project_.read(name).size() - 1) * place / (places - 1);
      project_.cut(name, size);
      expectReport(project_, before_,
                   {.title = name + " cut to " + std::to_string(size),
                    .inject = {},
                    .changed = {{trace, ofPhd ? cutPhd : cutPoly}}});
      project_.restore();
    }
  }
}

TEST_F(Faults, AreFoundWhenThereAreManyAtOnce) {
  Fault all{.title = "all", .inject = {}};
  std::set<std::string> taken;
  for (const auto& faults : {traceFaults(), borrowedFaults(), resultFaults()}) {
    for (const Fault& fault : faults) {
      std::set<std::string> traces;
      for (const auto& [trace, outcome] : fault.changed) traces.insert(trace);
      for (const auto& [trace, outcome] : fault.renewed) traces.insert(trace);
      const bool isFree = std::none_of(traces.begin(), traces.end(), [&](const auto& trace) {
        return taken.contains(sampleOf(trace));
      });
      if (!isFree) continue;
      for (const std::string& trace : traces) taken.insert(sampleOf(trace));
      fault.inject(project_);
      all.changed.insert(fault.changed.begin(), fault.changed.end());
      all.renewed.insert(fault.renewed.begin(), fault.renewed.end());
      all.gone.insert(all.gone.end(), fault.gone.begin(), fault.gone.end());
      all.orphans.insert(fault.orphans.begin(), fault.orphans.end());
    }
  }

  ASSERT_GT(taken.size(), 40U);
  expectReport(project_, before_, all);
}

TEST_F(Faults, OfResultsWithoutATraceCountOnlyWithoutAList) {
  std::vector<std::string> names;
  for (const auto& trace : project_.traces()) {
    if (trace.name.find(' ') == std::string::npos) names.push_back(trace.name);
  }
  project_.remove("chromat_dir/s42.scf");
  project_.write(project_.phdName("zz"), "");
  std::string list = "\n";
  for (const std::string& name : names) list += name + " further words\n";

  const ReportResult result = reportTable(project_, {"-l", "-"}, list);

  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 3);
  std::vector<std::string> expected;
  for (const std::string& name : names) {
    expected.push_back(name + ' ' + sampleOf(name) +
                       (name == "s42.scf" ? " differs [invalid]" : " converted []"));
  }
  EXPECT_THAT(statesOf(result), ElementsAreArray(expected));
}

TEST_F(Faults, AreLookedForWithoutWritingIntoTheProject) {
  project_.remove(project_.polyName("s00"));
  for (const char* folder : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir", "."}) {
    fs::permissions(project_.path() / folder, fs::perms::owner_read | fs::perms::owner_exec);
  }
  const auto state = [this] {
    std::map<std::string, fs::file_time_type> times;
    for (const auto& entry : fs::recursive_directory_iterator(project_.path())) {
      times[entry.path()] = entry.last_write_time();
    }
    return times;
  };
  const auto former = state();

  const ReportResult result = reportTable(project_);

  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(state(), former);
  for (const char* folder : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir", "."}) {
    fs::permissions(project_.path() / folder, fs::perms::owner_all);
  }
}
