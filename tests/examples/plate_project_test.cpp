#include "examples/plate.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/report/report_run.h"
#include "tests/support/program.h"
#include "tests/support/project_folder.h"

namespace {

using Names = std::set<std::string>;

/// "A01": the well in a sample's name.
std::string wellOf(const ReportRow& row) { return row.at("sample").substr(4, 3); }

int numberIn(const ReportRow& row, const std::string& column) { return std::stoi(row.at(column)); }

bool isWhole(const ReportRow& row) { return row.at("state") == "converted"; }

std::set<int> mixedPositionsOf(const ReportRow& row) {
  std::set<int> positions;
  std::istringstream text(row.at("mixed_positions"));
  for (std::string number; std::getline(text, number, ',');) positions.insert(std::stoi(number));
  return positions;
}

/// The project as plate_project makes it, converted and reported, once for all tests.
class PlateProject : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    project_ = std::make_unique<ProjectFolder>();
    const ProgramResult made =
        runProgram(QUILLET_PLATE_PROGRAM,
                   {.folder = project_->path().string(), .arguments = {project_->path().string()}});
    if (made.status != 0) throw std::runtime_error("plate_project failed: " + made.err);
    if (project_->run().status != 0) throw std::runtime_error("the converter failed");
    report_ = reportTable(*project_);
  }
  static void TearDownTestSuite() { project_.reset(); }

  /// The wells of the rows for which `holds`.
  template <typename Condition>
  static Names wellsWhere(Condition holds) {
    Names wells;
    for (const ReportRow& row : report_.rows) {
      if (holds(row)) wells.insert(wellOf(row));
    }
    return wells;
  }
  static const ReportRow& rowOf(const std::string& well) {
    return *std::ranges::find_if(report_.rows,
                                 [&](const ReportRow& row) { return wellOf(row) == well; });
  }

  static inline std::unique_ptr<ProjectFolder> project_;
  static inline ReportResult report_;
};

TEST_F(PlateProject, HasASampleInAllWellsButFour) {
  Names all;
  for (char letter = 'A'; letter <= 'H'; ++letter) {
    for (int column = 1; column <= 12; ++column) {
      all.insert(letter + std::string(column < 10 ? "0" : "") + std::to_string(column));
    }
  }

  const Names filled = wellsWhere([](const ReportRow&) { return true; });

  Names empty;
  std::ranges::set_difference(all, filled, std::inserter(empty, empty.end()));
  EXPECT_EQ(report_.rows.size(), 92U);
  EXPECT_EQ(empty, (Names{"E02", "G12", "H11", "H12"}));
}

TEST_F(PlateProject, HasOneTraceWithoutCallsAndADamagedOne) {
  std::vector<std::string> notWhole;
  for (const std::string& state : statesOf(report_)) {
    if (!state.ends_with(" converted []")) notWhole.push_back(state);
  }

  EXPECT_EQ(report_.status, 3);
  EXPECT_EQ(notWhole,
            (std::vector<std::string>{"P01_B06_COI_F.ab1 P01_B06_COI_F borrowed [calls]",
                                      "P01_F09_COI_F.ab1 P01_F09_COI_F invalid [directory cut]"}));
}

TEST_F(PlateProject, HasMixedBasesInTwoReadsOnly) {
  const Names mixed =
      wellsWhere([](const ReportRow& row) { return isWhole(row) && row.at("mixed") != "0"; });

  EXPECT_EQ(mixed, (Names{"E10", "G03"}));
  EXPECT_EQ(rowOf("E10").at("mixed_positions"), "247");
}

TEST_F(PlateProject, TheSecondTemplateShowsWhereItDiffersFromTheFirst) {
  const MixedTemplates templates = templatesOfG03();
  const ReportRow& row = rowOf("G03");
  std::set<int> differing;
  for (int base = 381; base <= numberIn(row, "trim_end"); ++base) {
    const auto index = static_cast<std::size_t>(base - 1);
    if (templates.first[index] != templates.second[index - 380]) differing.insert(base);
  }

  const std::set<int> marked = mixedPositionsOf(row);

  EXPECT_TRUE(std::ranges::includes(differing, marked));
  EXPECT_GE(marked.size(), 0.9 * static_cast<double>(differing.size()));
  EXPECT_GE(marked.size(), 200U);
}

TEST_F(PlateProject, CapillarySevenFailsInEveryRun) {
  const auto ofSeven = [](const ReportRow& row) { return row.at("capillary") == "7"; };
  const Names wells{"D01", "D03", "D05", "D07", "D09", "D11"};
  Names dates;
  for (const ReportRow& row : report_.rows) {
    if (ofSeven(row)) dates.insert(row.at("run_date"));
  }

  EXPECT_EQ(wellsWhere(ofSeven), wells);
  EXPECT_EQ(wellsWhere([](const ReportRow& row) { return row.at("contiguous") == "0"; }), wells);
  EXPECT_EQ(wellsWhere([](const ReportRow& row) {
              return isWhole(row) && numberIn(row, "signal_to_noise") < 10;
            }),
            wells);
  EXPECT_EQ(dates.size(), 6U);
}

TEST_F(PlateProject, FiveReadsAreShort) {
  const auto between = [](int least, int most) {
    return wellsWhere([=](const ReportRow& row) {
      return isWhole(row) && numberIn(row, "contiguous") >= least &&
             numberIn(row, "contiguous") <= most;
    });
  };
  const Names good = between(601, 950);

  EXPECT_EQ(between(1, 299), (Names{"B11", "C08"}));
  EXPECT_EQ(between(300, 600), (Names{"A04", "F05", "H07"}));
  EXPECT_EQ(good.size(), 92U - 2 - 6 - 5);  // no calls and damaged, capillary 7, short
  for (const std::string& well : good) {
    EXPECT_GE(numberIn(rowOf(well), "bases"), 700) << well;
    EXPECT_LE(numberIn(rowOf(well), "bases"), 950) << well;
  }
}

TEST_F(PlateProject, EveryRunServesTwoColumnsByItsSixteenCapillaries) {
  std::map<std::string, std::map<int, std::string>> runs;  // well by date and capillary
  std::map<std::string, Names> columns;
  for (const ReportRow& row : report_.rows) {
    if (row.at("state") == "invalid") continue;
    EXPECT_EQ(row.at("plate"), "P01_COI");
    EXPECT_EQ(row.at("well"), wellOf(row)[0] + std::to_string(std::stoi(wellOf(row).substr(1))));
    EXPECT_TRUE(runs[row.at("run_date")].emplace(numberIn(row, "capillary"), wellOf(row)).second);
    columns[row.at("run_date")].insert(wellOf(row).substr(1));
  }

  EXPECT_EQ(runs.size(), 6U);
  for (const auto& [date, wells] : runs) {
    EXPECT_GE(wells.begin()->first, 1) << date;
    EXPECT_LE(wells.rbegin()->first, 16) << date;
    EXPECT_EQ(columns[date].size(), 2U) << date;
  }
  EXPECT_EQ(columns["2026-03-02"], (Names{"01", "02"}));
  EXPECT_EQ(columns["2026-03-07"], (Names{"11", "12"}));
}

TEST_F(PlateProject, IsTheSameEveryTime) {
  const ProjectFolder again;
  runProgram(QUILLET_PLATE_PROGRAM,
             {.folder = again.path().string(), .arguments = {again.path().string()}});

  ASSERT_EQ(again.entries("chromat_dir"), project_->entries("chromat_dir"));
  for (const std::string& name : again.entries("chromat_dir")) {
    EXPECT_TRUE(again.read("chromat_dir/" + name) == project_->read("chromat_dir/" + name)) << name;
  }
}

}  // namespace
