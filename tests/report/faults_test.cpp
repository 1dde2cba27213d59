#include "tests/report/faults.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/report/converted_project.h"
#include "tests/report/report_run.h"

// One converted project, to which faults are done. Each row that a report on it has is reckoned
// here from what was done; what nothing was done to must not change.

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// The columns of a verdict; the others are compared only when the trace is unchanged.
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
                    .changed = {{trace, {"cut", ofPhd ? "phd" : "poly"}}}});
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
